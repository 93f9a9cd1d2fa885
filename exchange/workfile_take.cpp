// The work file taken into the line list being written (praca___): its
// prices turned by the source the operator names, every row tied to an item
// of the catalogue (items it lacks are added), the warehouse's stock rows
// made sure of, and the lines appended in one transaction.
#include <functional>
#include <set>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docsave.h"
#include "master/contractors.h"
#include "exchange/workfile.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tui/askvalue.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

namespace {

constexpr int kMarginLine = 205;          // configuration: 1 sale prices by a margin, 0 by a mark-up
constexpr int kProposedMarginLine = 206;  // configuration: the proposed margin or mark-up

// A purchase price back from a sale price, the reverse of SaleFromPurchase.
Real PurchaseFromSale(Real sale, Real percent, bool margin) {
  return margin ? sale * (100 - percent) / 100 : sale * 100 / (100 + percent);
}

// Sale prices computed from the purchase net: the gross rounded to the step, the net from it.
void SetSaleFromPurchase(ItemData& item, const TakeRules& rules) {
  item.saleGross = RoundToStep(GrossFromNet(SaleFromPurchase(item.buyNet, rules.percent, rules.margin), item.vat),
                               rules.step);
  item.saleNet = NetFromGross(item.saleGross, item.vat);
}

// The line's prices on the catalogue's item.
DocLine LineOf(const ItemData& catalogue, const WorkFileRow& row) {
  DocLine line;
  line.item = catalogue;
  line.item.buyNet = row.item.buyNet;
  line.item.buyGross = row.item.buyGross;
  line.item.saleNet = row.item.saleNet;
  line.item.saleGross = row.item.saleGross;
  line.quantity = row.quantity;
  line.catalogueNet = catalogue.saleNet;
  line.catalogueGross = catalogue.saleGross;
  return line;
}

// The catalogue's item of the row, added (with an empty stock row in the warehouse) when it is missing.
int16_t CatalogueItemOf(const WorkFileRow& row, int32_t warehouse, ItemData& item, ShortText& refusal) {
  bool exists = false;
  if (const int16_t code = ItemFindByFeatures(row.item, item, exists); code != 0 || exists) return code;
  item = row.item;
  item.number = 0;
  item.active = true;
  return ItemAdd(item, ItemRules{}, warehouse, StockRow{}, refusal);
}

// A stock row of the item in the warehouse, nothing in stock, when it has none.
int16_t EnsureStockRow(int32_t warehouse, const ItemData& item, ShortText& refusal) {
  StockRow row;
  bool found = false;
  if (const int16_t code = StockRead(warehouse, item.number, row, found); code != 0 || found) return code;
  row = StockRow{};
  row.number = item.number;
  row.saleNet = item.saleNet;
  row.saleGross = item.saleGross;
  return StockSet(warehouse, row, refusal);
}

// A supplier named by a line but missing from the supplier catalogue is
// added under that number with the row's supplier text as his name, so that
// the items just added to the catalogue never name a supplier who is not
// there. A row of the same data already in the catalogue leaves him out.
int16_t EnsureSuppliers(const std::vector<DocLine>& lines) {
  std::set<int32_t> checked;
  bool tablesMade = false;
  for (const DocLine& line : lines) {
    const int32_t number = line.item.supplier;
    if (number <= 0 || !checked.insert(number).second) continue;
    if (!tablesMade) {
      if (const int16_t code = ContractorTablesEnsure()) return code;
      tablesMade = true;
    }
    Contractor supplier;
    bool found = false;
    if (const int16_t code = ContractorFind(ContractorKind::kSupplier, number, supplier, found); code != 0)
      return code;
    if (found) continue;
    supplier = Contractor{};
    supplier.number = number;
    supplier[KontrahentCol::nazwa] = line.item.supplierText;
    (void)ContractorAdd(ContractorKind::kSupplier, supplier, NumberRange{});
  }
  return 0;
}

int16_t AppendLines(int32_t user, std::vector<DocLine>& lines) {
  if (const int16_t code = WorkTableEnsure(user)) return code;
  ExclusiveTableLock lock(WorkTablePath(user));
  for (DocLine& line : lines)
    if (const int16_t code = WorkLineAppend(WorkTablePath(user), line)) return code;
  return lock.Commit();
}

}  // namespace

bool ForeignSource(WorkFileSource source) { return source >= WorkFileSource::kForeignDelivery; }

WorkFileRow TakenRow(WorkFileRow row, const TakeRules& rules) {
  ItemData& item = row.item;
  switch (rules.source) {
    case WorkFileSource::kOwn:
      break;
    case WorkFileSource::kOwnSaleIsPurchase:
      item.buyNet = item.saleNet;
      item.buyGross = item.saleGross;
      break;
    case WorkFileSource::kForeignDelivery:  // the other firm's sale is my purchase
      item.buyNet = item.saleNet;
      item.buyGross = item.saleGross;
      SetSaleFromPurchase(item, rules);
      break;
    case WorkFileSource::kForeignSalesSamePurchase:
      SetSaleFromPurchase(item, rules);
      break;
    case WorkFileSource::kForeignSalesPurchaseIsSale:  // the other firm's purchase is my sale
      item.saleGross = RoundToStep(GrossFromNet(item.buyNet, item.vat), rules.step);
      item.saleNet = NetFromGross(item.saleGross, item.vat);
      item.buyNet = PurchaseFromSale(item.saleNet, rules.percent, rules.margin);
      item.buyGross = GrossFromNet(item.buyNet, item.vat);
      break;
  }
  if (ForeignSource(rules.source)) item.supplier = rules.supplier;
  return row;
}

int16_t WorkFileToSpecification(const ShortText& workFile, int32_t user, int32_t warehouse, const TakeRules& rules,
                                const std::function<void(int)>& phase, ShortText& refusal) {
  refusal.Clear();
  std::vector<WorkFileRow> rows;
  if (const int16_t code = WorkFileRead(workFile, rows)) return code;
  if (phase) phase(1);
  std::vector<DocLine> lines;
  for (const WorkFileRow& stored : rows) {
    const WorkFileRow row = TakenRow(stored, rules);
    ItemData item;
    if (const int16_t code = CatalogueItemOf(row, warehouse, item, refusal); code != 0 || !refusal.Empty())
      return code;
    lines.push_back(LineOf(item, row));
  }
  if (phase) phase(2);
  for (const DocLine& line : lines)
    if (const int16_t code = EnsureStockRow(warehouse, line.item, refusal); code != 0 || !refusal.Empty()) return code;
  if (phase) phase(3);
  if (const int16_t code = EnsureSuppliers(lines)) return code;
  if (phase) phase(4);
  return AppendLines(user, lines);
}

namespace {

// A value asked with the text of a line that ends in a run of '_' (the field).
bool AskField(const ShortText& text, ShortText& value, int mode) {
  const int start = text.Pos('_');
  const int width = static_cast<int>(text.View().find_last_of('_')) + 2 - start;
  return AskValue(TrimRight(text.Copy(1, start - 1), ' '), value, width, mode, ShortText(), ShortText());
}

bool AskTakeRules(TakeRules& rules) {
  unsigned char ch = 0, scan = 0;
  const int16_t source = PickList(
      2, 1, 1, 0, 0, "Jako jakie dane pobrać plik roboczy ?"_mz,
      "własne (pobrać plik jak jest)@jak własne, ale pobrane ceny sprzedaży mają być Twoimi cenami zakupu@przyjęcie lub zakup od obcej firmy@relację sprzedaży obcej firmy, której ceny zak.są równe Twoim@j.w., ale ceny zak.tej firmy to Twoje c.sprzedaży"_mz,
      ch, scan);
  if (source == 0) return false;
  rules.source = static_cast<WorkFileSource>(source);
  if (!ForeignSource(rules.source)) return true;
  ShortText supplier, percent = TrimBoth(ConfigText(kProposedMarginLine), ' '), step;
  rules.margin = ConfigInt(kMarginLine) == 1;
  if (!AskField("Podaj dostawcę towarów: ____________________ "_mz, supplier, 1)) return false;
  if (!AskField(rules.margin ? " Podaj marżę, którą narzucisz: _____ "_mz : "Podaj narzut, który narzucisz: _____ "_mz,
                percent, 4))
    return false;
  if (!AskField("Podaj, do jakiej wartości po przecinku (kropce dziesiętnej)@zaokrąglać obliczane ceny sprzedaży: _________ "_mz,
                step, 4))
    return false;
  rules.supplier = static_cast<int32_t>(TextToRealLoose(supplier));
  rules.percent = TextToRealLoose(percent);
  rules.step = TextToRealLoose(step);
  return true;
}

}  // namespace

bool AddWorkFileToSpecification(int32_t warehouse) {
  const ShortText path = WorkFileName();
  bool exists = false;
  (void)PGTblExist(path, exists);
  int32_t count = 0;
  if (exists) CheckDBError(WorkFileCount(path, count));
  if (!exists || count == 0) {
    (void)MessageBox(exists ? "Plik roboczy jest pusty."_mz : "Plik roboczy nie istnieje."_mz, 0);
    return false;
  }
  TakeRules rules;
  if (!AskTakeRules(rules)) return false;
  const ShortText kPhases[] = {"Uzupełnianie katalogu towarów...[          ]"_mz,
                               "Trwa kontrola danych aktualnego magazynu...[          ]"_mz,
                               "Trwa kontrola katalogu dostawców towarów...[          ]"_mz,
                               "Trwa dopisywanie do specyfikacji...[          ]"_mz};
  ShortText refusal;
  const int16_t code = WorkFileToSpecification(path, CurrentUserNumber(), warehouse, rules,
                                               [&](int phase) { (void)MessageBox(kPhases[phase - 1], 2); }, refusal);
  CheckDBError(code);
  if (!refusal.Empty()) (void)MessageBox(refusal, 0);
  return refusal.Empty();
}
