// The form of a contractor (add and change) and the delete with its
// questions. The form is a box of labelled fields; Enter, Tab and the arrows
// move between them, F10 or Enter on the last confirms, Esc gives up.
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "master/contractor_screens.h"
#include "master/contractors_detail.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "users/users.h"

using contractors_detail::BoxKeeper;

namespace {

using C = KontrahentCol;

constexpr int kLabelWidth = 15;
constexpr int kFieldNumber = 0;
// The configuration line of the repeat check: the percent of likeness, 0 off.
constexpr int kRepeatCheckLine = 83;
// The configuration line saying that customers and suppliers are kept alike.
constexpr int kSameCataloguesLine = 160;  // the number is not a text column of the form

struct FormField {
  int column;  // KontrahentCol, kFieldNumber for the number
  ShortText label;
  int width;
  int mode;  // EditField mode
};

// The fields in the order of the form; the flag and the document place are not a warehouse's.
const FormField kFields[] = {
    {kFieldNumber, "numer:"_mz, 10, 9},
    {C::nazwa, "nazwa:"_mz, 50, 1},
    {C::nazwa_inne, "nazwa, inne:"_mz, 50, 1},
    {C::kod, "   kod   "_mz, 6, 1},
    {C::miasto, "miasto:"_mz, 30, 1},
    {C::ulica, "ulica:"_mz, 40, 1},
    {C::czy_podmiot_gosp, "płatnik VAT:"_mz, 1, 8},
    {C::nip, "NIP:"_mz, 13, 10},
    {C::pesel, "PESEL:"_mz, 11, 3},
    {C::regon, "REGON:"_mz, 14, 3},
    {C::nr_rej, "nr rej.:"_mz, 20, 1},
    {C::telefony, "telefony:"_mz, 40, 1},
    {C::konto, " nr konta:"_mz, 60, 1},
    {C::osoba, "osoba:"_mz, 40, 1},
    {C::miejsce_wyst, "miejsce wyst.:"_mz, 30, 1},
    {C::kor_kod, "kod kor.:"_mz, 6, 1},
    {C::kor_miasto, "miasto kor.:"_mz, 30, 1},
    {C::kor_ulica, "ulica kor.:"_mz, 40, 1},
    {C::rabat, " rabat:"_mz, 10, 14},
    {C::email, "e-mail:"_mz, 60, 1},
};
constexpr int kFieldCount = static_cast<int>(std::size(kFields));

bool Shown(ContractorKind kind, const FormField& f) {
  return kind != ContractorKind::kWarehouse || (f.column != C::czy_podmiot_gosp && f.column != C::miejsce_wyst);
}

ShortText LabelOf(ContractorKind kind, const FormField& f) {
  if (f.column != C::rabat) return f.label;
  return kind == ContractorKind::kWarehouse ? " marża:"_mz : kind == ContractorKind::kSupplier ? "narzut:"_mz : f.label;
}

ShortText ValueText(const Contractor& c, const FormField& f) {
  if (f.column == kFieldNumber) return c.number == 0 ? ShortText() : ShortText(std::to_string(c.number));
  if (f.column == C::rabat) return ShortText(std::to_string(static_cast<double>(c.discount))).Copy(1, 8);
  return TrimRightAll(c.text[static_cast<std::size_t>(f.column)], ' ');
}

void TakeValue(Contractor& c, const FormField& f, const ShortText& value) {
  const ShortText v = TrimRightAll(value, ' ');
  if (f.column == kFieldNumber) c.number = v.Empty() ? 0 : static_cast<int32_t>(std::min<long double>(TextToRealLoose(v), 2147483648.0L));
  else if (f.column == C::rabat) c.discount = TextToRealLoose(v);
  else c.text[static_cast<std::size_t>(f.column)] = v;
}

// The checks of one field's value; the message, or empty. An empty number
// on adding takes the next one of the configured range.
ShortText FieldRefusal(const FormField& f, const ShortText& value) {
  const ShortText v = TrimRightAll(value, ' ');
  if (f.column == kFieldNumber) {
    const long double n = TextToRealLoose(v);
    if (!v.Empty() && (ContainsChar('-', v) || n < 1 || n > kContractorMaxNumber))
      return "Dana poza dozwolonym zakresem <1,2147483647>."_mz;
  }
  if (f.column == C::czy_podmiot_gosp && v != ShortText("T") && v != ShortText("N"))
    return "Ta dana może przyjąć wartość `T\" lub `N\""_mz;
  return ShortText();
}

// Runs the form over c; true when confirmed with every check passed.
bool EditForm(ContractorKind kind, const ShortText& title, Contractor& c) {
  BoxKeeper keeper;
  std::vector<int> rows;  // field indexes shown, in order
  // The box is drawn empty (its text would pass 255 bytes); labels and values go in after.
  ShortText text = PadRight(title, " ", kLabelWidth + 60);
  for (int i = 0; i < kFieldCount; ++i) {
    if (!Shown(kind, kFields[i])) continue;
    rows.push_back(i);
    text += '@';
  }
  MessageBox(text, 2);
  std::vector<ShortText> values;
  for (int i : rows) values.push_back(ValueText(c, kFields[i]));
  for (std::size_t r = 0; r < rows.size(); ++r) {
    WriteAt(2, 3 + static_cast<int>(r), PadRight(LabelOf(kind, kFields[rows[r]]), " ", kLabelWidth));
    WriteAt(2 + kLabelWidth, 3 + static_cast<int>(r), values[r]);
  }
  const int last = static_cast<int>(rows.size()) - 1;
  for (int at = 1;;) {
    const FormField& f = kFields[rows[static_cast<std::size_t>(at)]];
    GotoXY(2 + kLabelWidth, 3 + at);
    TextAttr(kAttrReverse);
    unsigned char key = 0;
    EditField(f.mode, 3, ' ', f.width, values[static_cast<std::size_t>(at)], key);
    TextAttr(kAttrBoxBody);
    if (key == 27) return false;
    const ShortText refusal = FieldRefusal(f, values[static_cast<std::size_t>(at)]);
    if (!refusal.Empty() && key != 242) {
      MessageBox(refusal, 0);
      continue;
    }
    if (key == 238 || (key == 13 && at == last)) break;
    at = key == 242 ? (at > 0 ? at - 1 : 0) : (at < last ? at + 1 : last);
  }
  for (std::size_t r = 0; r < rows.size(); ++r) TakeValue(c, kFields[rows[r]], values[r]);
  return true;
}

// A name is needed: the form comes back to it until given or given up.
bool EditUntilNamed(ContractorKind kind, const ShortText& title, Contractor& c) {
  for (;;) {
    if (!EditForm(kind, title, c)) return false;
    if (!TrimRightAll(c[C::nazwa], ' ').Empty()) return true;
    Beep(1000);
  }
}

ShortText KindNominative(ContractorKind kind) {
  return kind == ContractorKind::kWarehouse ? " magazynu:"_mz
                                            : kind == ContractorKind::kSupplier ? " dostawcy:"_mz : " odbiorcy:"_mz;
}

// The field of a repeat check as its question names it.
ShortText RepeatFieldName(KontrahentCol::Column column) {
  switch (column) {
    case C::nip: return "NIP-u@"_mz;
    case C::regon: return "REGON-u@"_mz;
    case C::miasto: return "miasta@"_mz;
    case C::ulica: return "ulicy@"_mz;
    default: return "nazwy@"_mz;
  }
}

ShortText KindOnList(ContractorKind kind) {
  return kind == ContractorKind::kWarehouse ? "magazyn"_mz : kind == ContractorKind::kSupplier ? "dostawca"_mz : "odbiorca"_mz;
}

// With the repeat check configured (a percent of likeness), a question for
// each field that a stored row holds alike; false when the operator stops.
bool RepeatCheckPassed(ContractorKind kind, const Contractor& c) {
  const int percent = ConfigInt(kRepeatCheckLine);
  if (percent <= 0) return true;
  std::vector<RepeatMatch> matches;
  contractors_detail::Checked(ContractorSimilarRows(kind, c, percent, matches));
  for (const RepeatMatch& m : matches) {
    if (!MessageBox("Kontrola powtórzenia "_mz + RepeatFieldName(m.column) + "Jest już na liście "_mz + KindOnList(kind) +
                        "@podobnym do `"_mz + TrimRight(m.value, ' ') + "@Czy pomimo to chcesz kontynuować dopisywanie ?"_mz,
                    1))
      return false;
  }
  return true;
}

// With customers and suppliers kept alike (configuration line 160), the row
// just written is looked up by number in the other catalogue: added there,
// or written over one of another name, each after a yes; one of the same
// name takes the data without a question.
void MirrorToOtherCatalogue(ContractorKind kind, const Contractor& c) {
  if (kind == ContractorKind::kWarehouse || ConfigInt(kSameCataloguesLine) != 1) return;
  const ContractorKind other = kind == ContractorKind::kCustomer ? ContractorKind::kSupplier : ContractorKind::kCustomer;
  const ShortText catalogue = other == ContractorKind::kSupplier ? "dostawców"_mz : "odbiorców"_mz;
  Contractor there;
  bool found = false;
  contractors_detail::Checked(ContractorFind(other, c.number, there, found));
  if (!found) {
    if (!MessageBox("W katalogu `"_mz + catalogue + "\" nie ma kontrahenta o takim numerze.@"_mz +
                        "Czy dopisać go tam ?@(Radzę tak)."_mz,
                    1))
      return;
    Contractor copy = c;
    if (ContractorAdd(other, copy, NumberRange{}) != ContractorOutcome::kDone)
      MessageBox("Dopisanie nie powidło się !@Twoja baza kontrahentów wymaga weryfikacji."_mz, 0);
    return;
  }
  if (TrimRight(there[C::nazwa], ' ') != TrimRight(c[C::nazwa], ' ') &&
      !MessageBox("W katalogu `"_mz + catalogue + "\" jest kontrahent o takim numerze i nazwie:@"_mz +
                      TrimRight(there[C::nazwa], ' ') + "@Czy zmienić mu dane na takie, jakie mu teraz wpisałe(aś) ?"_mz,
                  1))
    return;
  (void)ContractorStore(other, c);
}

// A change of the VAT flag of a contractor whom documents name: only after a yes.
bool FlagChangeConfirmed(ContractorKind kind, const Contractor& before, const Contractor& after) {
  if (kind == ContractorKind::kWarehouse ||
      TrimRightAll(before[C::czy_podmiot_gosp], ' ') == TrimRightAll(after[C::czy_podmiot_gosp], ' '))
    return true;
  bool inUse = false;
  contractors_detail::Checked(ContractorInUse(kind, before.number, inUse));
  const ShortText who = kind == ContractorKind::kSupplier ? "dostawcą"_mz : "kontrahentem"_mz;
  return !inUse || MessageBox("Jeżeli z tym "_mz + who +
                                  " był wykonany jakikolwiek obrót, nie należy zmieniać@tej danej. Czy chcesz ją jednak zmienić ?"_mz,
                              1);
}

}  // namespace

bool LinkWarehouseAsked(ContractorKind kind, int32_t contractor, int32_t warehouse) {
  int32_t other = 0;
  contractors_detail::Checked(WarehouseHolder(kind, contractor, warehouse, other));
  if (other != 0 && !MessageBox("Inny kontrahent (nr "_mz + ShortText(std::to_string(other)) +
                                    ") ma przyporządkowany@ten sam magazyn (nr "_mz +
                                    ShortText(std::to_string(warehouse)) + ")" + "@Czy tak ma być ?"_mz,
                                1))
    return false;
  contractors_detail::Checked(ContractorLinkWarehouse(kind, contractor, warehouse));
  return true;
}

bool AddContractor(ContractorKind kind) {
  const NumberRange range = ConfiguredNumberRange(kind);
  Contractor c;
  if (kind != ContractorKind::kWarehouse) c[C::czy_podmiot_gosp] = ShortText("T");
  for (;;) {
    if (!EditUntilNamed(kind, "Dopisanie nowego"_mz + KindNominative(kind), c)) return false;
    if (!RepeatCheckPassed(kind, c)) return false;
    const int32_t asked = c.number;
    switch (ContractorAdd(kind, c, range)) {
      case ContractorOutcome::kDone: MirrorToOtherCatalogue(kind, c); return true;
      case ContractorOutcome::kLimit:
        MessageBox("Limit numerów tego typu kontrahentów jest wyczerpany.@Nie można dopisać."_mz, 0);
        return false;
      case ContractorOutcome::kIdentical:
        MessageBox("Znaleziono identyczną daną - dopisanie nie ma sensu."_mz, 0);
        return false;
      default:
        MessageBox("Dopisanie nie powidło się !@Twoja baza kontrahentów wymaga weryfikacji."_mz, 0);
        c.number = asked;
    }
  }
}

bool ChangeContractor(ContractorKind kind, int32_t number) {
  Contractor before;
  bool found = false;
  contractors_detail::Checked(ContractorFind(kind, number, before, found));
  if (!found) {
    MessageBox("Kontrahent zniknął ?!@Zmiana nie jest możliwa."_mz, 0);
    return false;
  }
  Contractor after = before;
  if (!EditUntilNamed(kind, "Zmiana opisu"_mz + " oznaczonego ciemnym pasem"_mz + KindNominative(kind), after))
    return false;
  if (after.number != before.number) {
    MessageBox("Zmiana numeru jest zabroniona !@Poprawki odwołane."_mz, 0);
    return false;
  }
  if (!FlagChangeConfirmed(kind, before, after)) return false;
  if (ContractorStoreChanges(kind, before, after) == ContractorOutcome::kGone) {
    MessageBox("Zmiana kontrahenta nr "_mz + ShortText(std::to_string(number)) + " nie jest możliwa,@"_mz +
                   "ponieważ kontrahent taki nie istnieje w tej chwili (być może@został usunięty przez innego operatora)."_mz,
               0);
    return false;
  }
  MirrorToOtherCatalogue(kind, after);
  return true;
}

bool DeleteContractor(ContractorKind kind, int32_t number) {
  if (!CurrentUserIsManager()) {
    MessageBox("Kasować może tylko `Kierownik Systemu\" (użytkownik nr 0)."_mz, 0);
    return false;
  }
  bool inUse = false;
  contractors_detail::Checked(ContractorInUse(kind, number, inUse));
  if (kind == ContractorKind::kWarehouse) {
    const ShortText ask = inUse ? "Na koncie tego magazynu są obroty lub stany.@Na skutek skasowania znikną stany i obroty tego magazynu.@Na pewno go skasować ?"_mz
                                : "Znikną stany i obroty tego magazynu.@Na pewno go skasować ?"_mz;
    if (!MessageBox(ask, 1)) return false;
    if (!MessageBox("OSTATNIE OSTRZEŻENIE@────────────────────@Wykonujesz "_mz + "BARDZO"_mz +
                        " niebezpieczną operację."_mz +
                        "@Jeżeli nie masz całkowitej pewności, że czynisz dobrze, lepiej jej nie"_mz +
                        "@wykonuj !@Znikną stany i obroty kasowanego magazynu.@Na pewno go skasować ?"_mz,
                    1))
      return false;
  } else {
    const ShortText who = kind == ContractorKind::kSupplier ? "dostawca"_mz : "odbiorca"_mz;
    const ShortText warn = inUse ? "Jeżeli ten "_mz + who + " ma na koncie obroty, to go nie kasuj.@"_mz : ShortText();
    if (!MessageBox(warn + "Na pewno kasować ?"_mz, 1)) return false;
  }
  if (ContractorDelete(kind, number, true) == ContractorOutcome::kGone) {
    MessageBox("Kontrahent zniknął ?!@Zmiana nie jest możliwa."_mz, 0);
    return false;
  }
  (void)DeleteFile(ContractorNotePath(kind, number));
  return true;
}

namespace {

// The deleted customers, a boxful at a time; Esc ends.
void ShowDeleted(const std::vector<Contractor>& deleted) {
  constexpr std::size_t kPerBox = 16;
  for (std::size_t from = 0; from < deleted.size(); from += kPerBox) {
    ShortText text;
    for (std::size_t i = from; i < deleted.size() && i < from + kPerBox; ++i)
      text += (text.Empty() ? "" : "@") + PadLeft(ShortText(std::to_string(deleted[i].number)), ' ', 10) + " " +
              PadRight(deleted[i][C::nazwa], " ", 50);
    BoxKeeper keeper;
    MessageBox(text, 2);
    if (KeyCodeOf(ReadKeyUpper()) == 27) return;
  }
}

}  // namespace

bool DeleteCustomersWithoutTurnover() {
  if (!CurrentUserIsManager()) {
    MessageBox("Funkcja kasowania odbiorców, z którymi nie ma obrotów@jest zarezerwowana dla `Kierownika Systemu\""_mz, 0);
    return false;
  }
  if (!MessageBox("Poinformuj użytkowników, że nie wolno im zapisywać, lub kasować@dokumentów, które dotyczą odbiorców.@Czy poinformowałeś(aś) ?"_mz,
                  1)) {
    MessageBox("W takim razie nie możesz użyć funkcji kasowania odbiorców,@z którymi nie ma obrotów."_mz, 0);
    return false;
  }
  if (!MessageBox("Czy na pewno chcesz skasować odbiorców, z którymi nie ma obrotów ?"_mz, 1)) return false;
  std::vector<Contractor> deleted;
  {
    BoxKeeper keeper;
    MessageBox("Trwa kontrola i kasowanie...[      %][          ][          ]"_mz, 2);
    contractors_detail::Checked(ContractorDeleteUnused(ContractorKind::kCustomer, deleted));
  }
  for (const Contractor& c : deleted) (void)DeleteFile(ContractorNotePath(ContractorKind::kCustomer, c.number));
  if (!deleted.empty() && MessageBox("Czy pokazać ich listę ?"_mz, 1)) ShowDeleted(deleted);
  return true;
}
