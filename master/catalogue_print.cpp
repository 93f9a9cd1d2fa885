// The printed catalogues: formed page by page into the print file, then the
// print flow.
#include "master/catalogue_print.h"

#include <algorithm>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "master/contractors_detail.h"
#include "print/print.h"
#include "print/printtext.h"
#include "tui/askvalue.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

using contractors_detail::Checked;
using contractors_detail::SqlText;

namespace {

using C = KontrahentCol;
using Block = std::vector<ShortText>;

ShortText Trimmed(const ShortText& text) { return TrimBoth(TrimRightAll(text, ' '), ' '); }

// "kod miasto, ulica", leaving out what is empty.
ShortText Address(const ShortText& code, const ShortText& town, const ShortText& street) {
  ShortText place = Trimmed(code);
  if (!Trimmed(town).Empty()) place += (place.Empty() ? "" : " ") + Trimmed(town);
  if (!Trimmed(street).Empty()) place += (place.Empty() ? "" : ", ") + Trimmed(street);
  return place;
}

ShortText VatMark(ContractorKind kind, const Contractor& c) {
  if (kind == ContractorKind::kWarehouse) return ShortText();
  return Trimmed(c[C::czy_podmiot_gosp]) == ShortText("N") ? " [nie jest płatnikiem VAT]"_mz
                                                           : " [jest płatnikiem VAT]"_mz;
}

// Pages of the heading and the blocks: a block that does not fit the rest of
// a page opens the next one; a block longer than a page stands alone on it.
// No block: the heading alone.
std::string Paginate(const ShortText& heading, const std::vector<Block>& blocks, int linesPerPage) {
  constexpr int kHeadLines = 2;
  std::string out;
  int used = 0;  // lines of the open page, 0 before the first
  const auto line = [&out](const ShortText& text) { out += text.Str() + "\r\n"; };
  const auto openPage = [&] {
    if (!out.empty()) out += kFormFeed;
    line(heading);
    line(ShortText());
    used = kHeadLines;
  };
  for (const Block& block : blocks) {
    const int need = static_cast<int>(block.size());
    if (used == 0 || (used > kHeadLines && used + need > linesPerPage)) openPage();
    for (const ShortText& text : block) line(text);
    used += need;
  }
  if (out.empty()) openPage();
  return out;
}

const char* SortSql(CatalogueSort sort) {
  switch (sort) {
    case CatalogueSort::kName: return " ORDER BY nazwa, nazwa_inne, numer";
    case CatalogueSort::kNumber: return " ORDER BY numer";
    case CatalogueSort::kTown: return " ORDER BY COALESCE(miasto,''), numer";
    case CatalogueSort::kPerson: return " ORDER BY COALESCE(osoba,''), numer";
    case CatalogueSort::kNip: return " ORDER BY COALESCE(nip,''), numer";
    case CatalogueSort::kMailTown: return " ORDER BY COALESCE(kor_miasto,''), numer";
  }
  return " ORDER BY numer";
}

// The print into the user's print file and on to the print flow.
bool HandToPrintFlow(const std::string& bytes) {
  const ShortText printFile = PrintFilePath();
  if (!contractors_detail::WriteWhole(printFile, bytes)) {
    (void)MessageBox("Nie można zapisywać do pliku wydruku.@Może nie masz odpowiednich uprawnień ?"_mz, 0);
    return false;
  }
  PrintTarget taken = PrintTarget::kNone;
  return PrintDestination(printFile, PrintTarget::kNone, taken);
}

ShortText KindStem(ContractorKind kind) {
  return kind == ContractorKind::kWarehouse ? "magazyn"_mz : kind == ContractorKind::kSupplier ? "dostawc"_mz : "odbiorc"_mz;
}

// "Podaj zakres numerów ": false on Esc; bounds kept within 1..2,147,483,647.
bool AskNumberRange(CataloguePrintChoice& choice) {
  ShortText from("1"), to(std::to_string(kContractorMaxNumber));
  if (!AskValueRange("Podaj zakres numerów "_mz, from, to, 10, 3, ShortText(), ShortText())) return false;
  const auto bound = [](const ShortText& text, int32_t otherwise) {
    const long double n = TextToRealLoose(Trimmed(text));
    return n < 1 || n > kContractorMaxNumber ? otherwise : static_cast<int32_t>(n);
  };
  choice.from = bound(from, 1);
  choice.to = bound(to, kContractorMaxNumber);
  return true;
}

// The towns marked one by one: Enter marks or unmarks the town under the bar
// ("*" before it), Esc ends the choice.
void ChooseTowns(ContractorKind kind, std::vector<ShortText>& chosen) {
  std::vector<ShortText> towns;
  Checked(CatalogueTowns(kind, towns));
  if (towns.size() > static_cast<std::size_t>(kPickMaxChoices)) towns.resize(kPickMaxChoices);
  for (int16_t at = 1;;) {
    std::vector<ShortText> lines;
    for (const ShortText& town : towns)
      lines.push_back((std::find(chosen.begin(), chosen.end(), town) != chosen.end() ? "* " : "  ") + town);
    unsigned char ch = 0, scan = 0;
    at = PickListHooked(1, at, 1, 0, 0, ShortText(), lines, {}, ch, scan);
    if (at < 1 || lines.empty()) return;
    const ShortText& town = towns[static_cast<std::size_t>(at - 1)];
    const auto found = std::find(chosen.begin(), chosen.end(), town);
    if (found != chosen.end()) chosen.erase(found);
    else chosen.push_back(town);
  }
}

}  // namespace

ShortText CatalogueHeading(ContractorKind kind) {
  return kind == ContractorKind::kWarehouse ? "Katalog magazynów"_mz
         : kind == ContractorKind::kSupplier ? "Katalog dostawców"_mz
                                             : "Katalog odbiorców"_mz;
}

std::vector<ShortText> ContractorPrintLines(ContractorKind kind, const Contractor& c) {
  const ShortText discount = TrimLeft(FormatFixed(12, 2, c.discount), ' ');
  return {"Nazwa: "_mz + Trimmed(c[C::nazwa]),
          "Nazwa, inne: "_mz + Trimmed(c[C::nazwa_inne]),
          "Numer: "_mz + ShortText(std::to_string(c.number)) + VatMark(kind, c),
          "Adres: "_mz + Address(c[C::kod], c[C::miasto], c[C::ulica]),
          "NIP: "_mz + Trimmed(c[C::nip]),
          "REGON: "_mz + Trimmed(c[C::regon]),
          "PESEL: "_mz + Trimmed(c[C::pesel]),
          "NUMER REJ.DZIAŁALNOŚCI: "_mz + Trimmed(c[C::nr_rej]),
          "Konto: "_mz + Trimmed(c[C::konto]),
          "Symb.FK: "_mz + Trimmed(c[C::symbol_fk]),
          "Telefony: "_mz + Trimmed(c[C::telefony]),
          "e-mail: "_mz + Trimmed(c[C::email]),
          "Adres do korespondencji: "_mz + Address(c[C::kor_kod], c[C::kor_miasto], c[C::kor_ulica]),
          "rabat: "_mz + discount,
          PadRight("", "-", 79)};
}

std::string FormatContractorCatalogue(ContractorKind kind, const std::vector<Contractor>& rows, int linesPerPage) {
  std::vector<Block> blocks;
  for (const Contractor& c : rows) blocks.push_back(ContractorPrintLines(kind, c));
  return Paginate(CatalogueHeading(kind), blocks, linesPerPage);
}

int16_t ReadCatalogueForPrint(ContractorKind kind, const CataloguePrintChoice& choice, std::vector<Contractor>& rows) {
  std::string where = "numer BETWEEN " + std::to_string(choice.from) + " AND " + std::to_string(choice.to);
  if (!choice.towns.empty()) {
    std::string list;
    for (const ShortText& town : choice.towns) list += (list.empty() ? "" : ",") + SqlText(town);
    where += " AND COALESCE(miasto,'') IN (" + list + ")";
  }
  return contractors_detail::SelectRows(kind, where, SortSql(choice.sort), rows);
}

int16_t CatalogueTowns(ContractorKind kind, std::vector<ShortText>& towns) {
  towns.clear();
  std::vector<Contractor> rows;
  const int16_t code = contractors_detail::SelectRows(kind, std::string(), " ORDER BY COALESCE(miasto,''), numer", rows);
  for (const Contractor& c : rows)
    if (towns.empty() || towns.back() != c[C::miasto]) towns.push_back(c[C::miasto]);
  return code;
}

bool PrintContractorCatalogue(ContractorKind kind) {
  CataloguePrintChoice choice;
  if (!AskNumberRange(choice)) return false;
  if (MessageBox("Czy chcesz ograniczyć zestawienie do "_mz + KindStem(kind) + "ów z wybranych miast ?"_mz, 1))
    ChooseTowns(kind, choice.towns);
  unsigned char ch = 0, scan = 0;
  const int16_t sort = PickList(1, 1, 1, 0, 0, "Posortować wydruk według:"_mz,
                                "nazwy@numeru@miasta@osoby@NIP-u@miasta do korespondencji"_mz, ch, scan);
  if (sort < 1) return false;
  choice.sort = static_cast<CatalogueSort>(sort);
  std::vector<Contractor> rows;
  Checked(ReadCatalogueForPrint(kind, choice, rows));
  return HandToPrintFlow(FormatContractorCatalogue(kind, rows, kCatalogueLinesPerPage));
}

std::string FormatDictionaryCatalogue(const ShortText& name, const std::vector<DictionaryEntry>& rows,
                                      int linesPerPage) {
  std::vector<Block> blocks;
  for (const DictionaryEntry& e : rows)
    blocks.push_back({PadRight(Trimmed(e.indeks), " ", 15) + " | " + PadRight(Trimmed(e.opis), " ", 50) + " | " +
                      Trimmed(e.czyBylObrot)});
  return Paginate("Katalog "_mz + name, blocks, linesPerPage);
}

bool PrintDictionaryCatalogue(const ShortText& name, const ShortText& path) {
  std::string bytes;
  {
    contractors_detail::BoxKeeper keeper;
    const ShortText box = "Trwa przygotowanie wydruku...[          ]"_mz;
    (void)MessageBox(box, 2);
    std::vector<DictionaryEntry> rows;
    CheckDBError(DictionaryRead(path, rows));
    bytes = FormatDictionaryCatalogue(name, rows, kCatalogueLinesPerPage);
    ShowProgress(FindProgressBar(box), 1, 1);
  }
  return HandToPrintFlow(bytes);
}
