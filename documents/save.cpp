// The save's core: one transaction under the waiting locks of the warehouse's
// tables, the stock read under them, and a few statements of many rows each.
#include <ctime>
#include <set>

#include "documents/docdetail.h"
#include "documents/entry_detail.h"
#include "documents/numbering.h"
#include "documents/save_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pglock.h"
#include "sqltable/pgrecord.h"

namespace {

using docdetail::DateLiteral;
using docdetail::SqlTable;
using savedetail::TextSql;
using savedetail::NumberSql;

// The save's transaction: the outer logical transaction and the waiting
// locks inside it. Rolled back to where it began, and the locks let go,
// unless Commit ran.
class SaveTransaction {
 public:
  SaveTransaction() : depth_(PGTransDepth) { (void)PGTransBegin(); }
  ~SaveTransaction() {
    while (PGTransDepth > depth_) (void)PGTransRollback();
    Release();
  }
  SaveTransaction(const SaveTransaction&) = delete;
  SaveTransaction& operator=(const SaveTransaction&) = delete;
  // The exclusive lock of a table until the end; waits in the server's queue.
  void Lock(const ShortText& path) {
    LockTableExcl(path);
    locked_.push_back(path);
  }
  [[nodiscard]] int16_t Commit() {
    int16_t code = 0;
    while (code == 0 && PGTransDepth > depth_) code = PGTransCommit();
    Release();
    return code;
  }

 private:
  void Release() {
    for (const ShortText& path : locked_) PGLockUnregister(path);
    locked_.clear();
  }
  int32_t depth_;
  std::vector<ShortText> locked_;
};

ShortText Cut(const ShortText& text, int width) { return text.Copy(1, width); }
std::string Char(char c) { return c ? TextSql(ShortText(std::string(1, c))) : "''"; }

// The header row of naglowki, columns 1 to 26 in order.
std::string HeaderValues(const DocumentHeader& h, Real total) {
  return std::to_string(h.kind) + "," + std::to_string(h.coded) + "," + TextSql(Cut(h.mark, 4)) + "," +
         DateLiteral(h.date) + ",0,0,''," + NumberSql(total) + "," +
         DateLiteral(h.saleDate ? h.saleDate : h.date) + "," + DateLiteral(h.settleDate ? h.settleDate : h.date) +
         "," + std::to_string(h.contractor) + "," + TextSql(Cut(h.contractorName, 17)) + "," +
         std::to_string(h.operatorNumber) + "," + std::to_string(h.otherWarehouse) + "," +
         TextSql(Cut(h.payment, 15)) + "," + TextSql(Cut(h.extraName, 15)) + "," +
         TextSql(Cut(h.extraNumber, 17)) + "," + Char(h.deposit) + "," + Char(h.cash) + "," +
         TextSql(h.comment) + ",'" + kPGBlankDate + "'," + Char(kHeaderUnlocked) + "," +
         std::to_string(static_cast<double>(std::time(nullptr))) + ",'',0,'N'";
}

// One line of specyfik at its position.
std::string LineValues(const DocumentHeader& h, const DocLine& line, int position) {
  const ItemData& i = line.item;
  const bool deposit = h.deposit == 'T';
  return "(DEFAULT," + std::to_string(h.kind) + "," + std::to_string(h.coded) + "," + TextSql(Cut(h.mark, 4)) + "," +
         std::to_string(position) + "," + DateLiteral(h.date) + ",'','','','',''," + std::to_string(i.number) + "," +
         TextSql(Cut(i.vat, 5)) + "," + TextSql(Cut(i.sww, 10)) + "," + NumberSql(line.quantity) + "," +
         NumberSql(i.buyNet) + "," + NumberSql(i.buyGross) + "," + NumberSql(i.saleNet) + "," +
         NumberSql(i.saleGross) + "," + NumberSql(line.catalogueNet) + "," + NumberSql(line.catalogueGross) +
         ",''," + NumberSql(deposit ? line.quantity : 0) + "," + TextSql(Cut(i.vatPayer, 1)) + "," +
         std::to_string(i.supplier) + ")";
}

// The statements of the save against one warehouse's tables.
struct SaveTables {
  ShortText naglowki, stany, specyfik;
  explicit SaveTables(int32_t warehouse)
      : naglowki(WarehouseTablePath(warehouse, "naglowki")),
        stany(WarehouseTablePath(warehouse, "stany_mg")),
        specyfik(WarehouseTablePath(warehouse, "specyfik")) {}
};

// The stock rows and catalogue prices of the items of the lines.
int16_t ReadStock(const SaveTables& t, std::vector<DocLine>& lines, StockLevels& levels) {
  std::set<int32_t> items;
  for (const DocLine& l : lines) items.insert(l.item.number);
  std::string list;
  for (int32_t n : items) list += (list.empty() ? "(" : ",(") + std::to_string(n) + ")";
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup(
          "SELECT L.n,K.cena_s_n,K.cena_s_b,S.ilosc,S.ilosc_zamowiona_odb,S.nr_wewn IS NOT NULL FROM (VALUES " +
              list + ") AS L(n) LEFT JOIN " + SqlTable(kKatTowTable) + " K ON K.nr_wewn=L.n LEFT JOIN " +
              SqlTable(t.stany) + " S ON S.nr_wewn=L.n",
          res))
    return code;
  std::map<int32_t, std::pair<Real, Real>> prices;
  for (int r = 0; r < res.Rows(); ++r) {
    const auto n = static_cast<int32_t>(savedetail::IntOf(res.Value(r, 0)));
    prices[n] = {savedetail::RealOf(res.Value(r, 1)), savedetail::RealOf(res.Value(r, 2))};
    if (res.Value(r, 5) == "t")
      levels[n] = {savedetail::RealOf(res.Value(r, 3)), savedetail::RealOf(res.Value(r, 4)), true};
  }
  for (DocLine& l : lines) std::tie(l.catalogueNet, l.catalogueGross) = prices[l.item.number];
  return 0;
}

// The stock rows as the plan leaves them: existing rows by their change, new
// rows with the catalogue's sale prices.
int16_t WriteStock(const SaveTables& t, const std::vector<DocLine>& lines, const StockLevels& before,
                   const StockLevels& after) {
  std::string changes, added;
  std::set<int32_t> seen;
  for (const DocLine& l : lines) {
    const int32_t n = l.item.number;
    const auto a = after.find(n);
    if (a == after.end() || !seen.insert(n).second) continue;
    const auto b = before.find(n);
    if (b != before.end()) {
      changes += (changes.empty() ? "(" : ",(") + std::to_string(n) + "," +
                 NumberSql(a->second.quantity - b->second.quantity) + "," +
                 NumberSql(a->second.ordered - b->second.ordered) + ")";
    } else {
      added += (added.empty() ? "(" : ",(") + std::to_string(n) + "," + NumberSql(a->second.quantity) + "," +
               NumberSql(a->second.ordered) + "," + NumberSql(l.catalogueNet) + "," + NumberSql(l.catalogueGross) +
               ",0,'')";
    }
  }
  const std::string stany = SqlTable(t.stany);
  if (!changes.empty())
    if (const int16_t code = PGRunQueryNoTup("UPDATE " + stany +
                                             " AS S SET ilosc=S.ilosc+V.q,ilosc_zamowiona_odb="
                                             "COALESCE(S.ilosc_zamowiona_odb,0)+V.o FROM (VALUES " +
                                             changes + ") AS V(n,q,o) WHERE S.nr_wewn=V.n"))
      return code;
  if (!added.empty())
    return PGRunQueryNoTup("INSERT INTO " + stany + " (nr_wewn,ilosc,ilosc_zamowiona_odb,csn,csb,nr_zwiaz,oznacz) VALUES " +
                           added);
  return 0;
}

int16_t WriteLines(const SaveTables& t, const DocumentHeader& h, const std::vector<DocLine>& lines) {
  std::string values;
  int position = 0;
  for (const DocLine& l : lines) values += (values.empty() ? "" : ",") + LineValues(h, l, ++position);
  return PGRunQueryNoTup("INSERT INTO " + SqlTable(t.specyfik) + " VALUES " + values);
}

// Other users' views of the changed tables are told to refresh.
int16_t BumpCounters(const std::vector<ShortText>& paths) {
  std::string names;
  for (const ShortText& p : paths) names += (names.empty() ? "'" : ",'") + SqlTable(p) + "'";
  return PGRunQueryNoTup("UPDATE tables_list set il_zm=il_zm+1 where nazt IN (" + names + ") AND lp=1");
}

int16_t KeyTaken(const ShortText& naglowki, const DocumentHeader& h, bool& taken) {
  std::string value;
  bool isNull = true;
  const int16_t code = docdetail::QueryValue(
      "SELECT 1 FROM " + SqlTable(naglowki) + " WHERE typ_dok=" + std::to_string(h.kind) + " AND nr_dok=" +
          std::to_string(h.coded) + " AND znak_dok=" + TextSql(Cut(h.mark, 4)) + " LIMIT 1",
      value, isNull);
  taken = !isNull;
  return code;
}

}  // namespace

int16_t SaveDocument(int32_t warehouse, DocumentHeader& header, std::vector<DocLine> lines,
                     const SaveSettings& settings, SaveResult& result) {
  result = SaveResult{};
  std::erase_if(lines, [](const DocLine& l) { return l.quantity == 0; });
  if (lines.empty()) {
    result.outcome = SaveOutcome::kNoLines;
    return 0;
  }
  const TotalMethod method = KindTotalMethod(header.kind, settings.vatMode);
  result.totalBeforeReduction = ComputeTotals(lines, method).total;
  const SaveTables t(warehouse);
  const bool common = UnderCommonNumbering(header.kind, settings.numbering);
  SaveTransaction tx;
  if (common) tx.Lock(kRegisterTable);
  tx.Lock(t.naglowki);
  NextNumber next;
  if (const int16_t code = NextDocNumber(header.date, header.kind,
                                         NumberTablePath(header.kind, warehouse, settings.numbering),
                                         settings.numbering, next))
    return code;
  if (next.failed) {
    result.outcome = SaveOutcome::kNoNumber;
    return 0;
  }
  header.coded = next.coded;
  bool taken = false;
  if (const int16_t code = KeyTaken(t.naglowki, header, taken)) return code;
  if (taken) {
    result.outcome = SaveOutcome::kKeyTaken;
    return 0;
  }
  if (const int16_t code = RegisterDocNumber(header.kind, header.coded, header.mark, header.date, settings.numbering))
    return code;
  tx.Lock(t.stany);
  tx.Lock(t.specyfik);
  StockLevels before;
  if (const int16_t code = ReadStock(t, lines, before)) return code;
  const bool noChange =
      !settings.changeStock ||
      savedetail::DecideStockChange(header.kind, settings.stockDecidedKinds, settings.stockChangeOption) ==
          savedetail::StockDecision::kNoChange;
  const StockEffect effect = noChange ? StockEffect::kNone : KindStockEffect(header.kind, settings.orderHandling);
  const bool cutToOrders =
      settings.respectOrders && effect == StockEffect::kIssue && entrydetail::LimitToUnreserved(lines, before);
  const StockPlan plan = PlanStock(lines, effect, settings.mayGoBelowZero, before);
  for (std::size_t i = 0; i < lines.size(); ++i) lines[i].quantity = plan.quantities[i];
  result.totals = ComputeTotals(lines, method);
  result.reduced = plan.reduced || cutToOrders;
  if (const int16_t code = PGRunQueryNoTup("INSERT INTO " + SqlTable(t.naglowki) + " VALUES (DEFAULT," +
                                           HeaderValues(header, result.totals.total) + ")"))
    return code;
  if (const int16_t code = WriteStock(t, lines, before, plan.after)) return code;
  if (const int16_t code = WriteLines(t, header, lines)) return code;
  std::vector<ShortText> changed{t.naglowki, t.stany, t.specyfik};
  if (const ShortText place = savedetail::ReceiptPlaceValue(header.kind, settings, header.date); !place.Empty()) {
    if (const int16_t code = savedetail::UpdateCatalogueFromReceipt(lines, place)) return code;
    changed.emplace_back(kKatTowTable);
  }
  if (common) changed.emplace_back(kRegisterTable);
  if (const int16_t code = BumpCounters(changed)) return code;
  if (const int16_t code = savedetail::WriteDocumentPayment(warehouse, header, result.totals, settings.paidVat)) return code;
  if (const int16_t code = tx.Commit()) return code;
  result.outcome = SaveOutcome::kSaved;
  result.coded = header.coded;
  result.mark = header.mark;
  result.lines = static_cast<int>(lines.size());
  return 0;
}
