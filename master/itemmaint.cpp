// Changes of whole items and the catalogue's maintenance: editing an item in
// the chosen scope (with the walk over the lines of goods documents),
// deleting one, the search by any field, counting stock rows, removing empty
// stock rows and items without turnover, hiding unused items, and putting
// digit indexes in order. Statements go to the server directly; every change
// runs under the catalogue's lock and is rolled back on any failure.
#include <string>
#include <vector>

#include <functional>
#include <iterator>

#include "base/dates.h"
#include "base/numbers.h"
#include "base/mazovia.h"
#include "base/text.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "users/users.h"

using items_detail::NumberText;
using items_detail::SqlText;

namespace items_detail {

int16_t WarehouseNumbers(std::vector<int32_t>& numbers) {
  numbers.clear();
  PGResult res;
  if (const int16_t code =
          PGRunQueryWithTup("SELECT NUMER FROM DANE_MAGAZYNY WHERE CZY_PODMIOT_GOSP='Z' ORDER BY NUMER", res))
    return code;
  for (int r = 0; r < res.Rows(); ++r) numbers.push_back(static_cast<int32_t>(IntOf(res.Value(r, 0))));
  return 0;
}

bool WarehouseHas(int32_t warehouse, const char* table) {
  bool exists = false;
  (void)PGTblExist_pg(ShortText(WarehouseSql(warehouse, table)), exists);
  return exists;
}

}  // namespace items_detail

namespace {

using items_detail::WarehouseHas;
using items_detail::WarehouseNumbers;

const std::string kKat = "DANE_KAT_TOW_";

int16_t CountOf(const std::string& sql, long& count) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup(sql, res);
  count = code == 0 && res.Rows() > 0 ? static_cast<long>(items_detail::IntOf(res.Value(0, 0))) : 0;
  return code;
}

// Rows an UPDATE or DELETE touched, through a counting wrapper the server understands.
int16_t Changed(const std::string& sql, long& count) {
  long n = 0;
  const int16_t code = CountOf("WITH c AS (" + sql + " RETURNING 1) SELECT count(*) FROM c", n);
  count += n;
  return code;
}

// The specyfik tables of the warehouses that have them.
int16_t SpecTables(std::vector<std::string>& tables) {
  std::vector<int32_t> numbers;
  if (const int16_t code = WarehouseNumbers(numbers)) return code;
  tables.clear();
  for (int32_t w : numbers)
    if (WarehouseHas(w, "specyfik")) tables.push_back(items_detail::WarehouseSql(w, "specyfik"));
  return 0;
}

// "EXISTS (...) OR EXISTS (...)": the item K.nr_wewn has a line in some warehouse (since the date, when given).
std::string TurnoverCondition(const std::vector<std::string>& specs, const std::string& since) {
  std::string out;
  for (const std::string& t : specs) {
    out += out.empty() ? "(" : " OR ";
    out += "EXISTS (SELECT 1 FROM " + t + " P WHERE P.nr_towaru=K.nr_wewn" +
           (since.empty() ? "" : " AND P.data_dok>='" + since + "'") + ")";
  }
  return out.empty() ? "FALSE" : out + ")";
}

// Stock held or ordered anywhere for K.nr_wewn.
int16_t StockCondition(std::string& out) {
  std::vector<int32_t> numbers;
  if (const int16_t code = WarehouseNumbers(numbers)) return code;
  out = "K.il_zamowiona<>0";
  for (int32_t w : numbers)
    if (WarehouseHas(w, "stany_mg"))
      out += " OR EXISTS (SELECT 1 FROM " + items_detail::WarehouseSql(w, "stany_mg") +
             " S WHERE S.nr_wewn=K.nr_wewn AND (S.ilosc<>0 OR S.ilosc_zamowiona_odb<>0))";
  out = "(" + out + ")";
  return 0;
}

std::string CatalogueSet(const ItemData& item) {
  return items_detail::DescriptiveSet(item) + ",cena_z_n=" + NumberText(item.buyNet) + ",cena_z_b=" +
         NumberText(item.buyGross) + ",cena_s_n=" + NumberText(item.saleNet) + ",cena_s_b=" +
         NumberText(item.saleGross) + ",blok_rab=" + std::to_string(item.discountLock);
}

// Another row with the same key (names, vat, sww, VAT-payer text, purchase prices) or the same character index.
int16_t KeyClash(const ItemData& item, bool& clash) {
  const std::string other = "SELECT count(*) FROM " + kKat + " WHERE nr_wewn<>" + std::to_string(item.number);
  long n = 0;
  int16_t code = CountOf(other + " AND nazwa=" + SqlText(item.name) + " AND nazwa_=" + SqlText(item.name2) +
                             " AND vat=" + SqlText(item.vat) + " AND sww=" + SqlText(item.sww) + " AND czy_od_pl_vat=" +
                             SqlText(item.vatPayer) + " AND cena_z_n=" + NumberText(item.buyNet) +
                             " AND cena_z_b=" + NumberText(item.buyGross),
                         n);
  long codes = 0;
  if (code == 0 && !TrimRightAll(item.code, ' ').Empty())
    code = CountOf(other + " AND indeks_znakowy_isbn=" + SqlText(item.code), codes);
  clash = n + codes > 0;
  return code;
}

// The lines of goods documents carry the item's VAT group, SWW and VAT-payer text.
int16_t WalkSpecifications(const ItemData& item, const ItemWalkReport& report) {
  std::vector<int32_t> numbers;
  if (const int16_t code = WarehouseNumbers(numbers)) return code;
  for (int32_t w : numbers) {
    if (!WarehouseHas(w, "specyfik")) continue;
    if (report) report("Zmiana specyfikacji operacji towarowych, magazyn nr "_mz + ShortText(std::to_string(w)));
    long n = 0;
    if (const int16_t code = Changed("UPDATE " + items_detail::WarehouseSql(w, "specyfik") + " SET vat=" +
                                         SqlText(item.vat) + ",sww=" + SqlText(item.sww) +
                                         ",czy_od_pl_vat=" + SqlText(item.vatPayer.Copy(1, 1)) +
                                         " WHERE nr_towaru=" + std::to_string(item.number),
                                     n))
      return code;
  }
  return 0;
}

// The sale prices of the item in one warehouse's stock list.
int16_t StockPrices(int32_t warehouse, const ItemData& item) {
  long n = 0;
  return Changed("UPDATE " + items_detail::WarehouseSql(warehouse, "stany_mg") + " SET csn=" +
                     NumberText(item.saleNet) + ",csb=" + NumberText(item.saleGross) +
                     " WHERE nr_wewn=" + std::to_string(item.number),
                 n);
}

}  // namespace

bool ItemKeyChanged(const ItemData& before, const ItemData& after) {
  return before.name != after.name || before.name2 != after.name2 || before.vat != after.vat ||
         before.sww != after.sww || before.vatPayer != after.vatPayer;
}

int16_t ItemEdit(const ItemData& item, ItemPriceScope scope, int32_t warehouse, const ItemWalkReport& report,
                 bool& found, ShortText& refusal) {
  refusal = CheckItemData(item, ItemRules{});
  if (!refusal.Empty()) return 0;
  items_detail::CatalogueLock lock;
  ItemData stored;
  if (const int16_t code = ItemFindByNumber(item.number, stored, found); code != 0 || !found) return code;
  if (scope != ItemPriceScope::kWarehouse) {
    bool clash = false;
    if (const int16_t code = KeyClash(item, clash)) return code;
    if (clash) {
      refusal = "Nie można dokonać korekty w głównym katalogu towarów.@Zapewne istnieje pozycja o takich cechach, jakie aktualnie@nadano zmienianej. Zmiany nie zostaną wprowadzone."_mz;
      return 0;
    }
    if (ItemKeyChanged(stored, item))
      if (const int16_t code = WalkSpecifications(item, report)) return code;
    if (report) report("Zmiana pozycji w  katalogu towarów..."_mz);
    if (const int16_t code = PGRunQueryNoTup("UPDATE " + kKat + " SET " + CatalogueSet(item) +
                                             " WHERE nr_wewn=" + std::to_string(item.number)))
      return code;
    if (const int16_t code = ItemWalkUserTables(stored, item, report)) return code;
  }
  std::vector<int32_t> numbers;
  if (scope == ItemPriceScope::kEverywhere) {
    if (const int16_t code = WarehouseNumbers(numbers)) return code;
  } else if (warehouse > 0) {
    numbers.push_back(warehouse);
  }
  for (int32_t w : numbers) {
    if (!WarehouseHas(w, "stany_mg")) continue;
    if (report) report("Zmiana pozycji w magazynie nr "_mz + ShortText(std::to_string(w)));
    if (const int16_t code = StockPrices(w, item)) return code;
  }
  return lock.Commit();
}

int16_t ItemDelete(int32_t number, bool& found, bool& hadTurnover) {
  hadTurnover = false;
  items_detail::CatalogueLock lock;
  ItemData item;
  if (const int16_t code = ItemFindByNumber(number, item, found); code != 0 || !found) return code;
  std::vector<std::string> specs;
  std::string stock;
  if (const int16_t code = SpecTables(specs)) return code;
  if (const int16_t code = StockCondition(stock)) return code;
  long used = 0;
  if (const int16_t code = CountOf("SELECT count(*) FROM " + kKat + " K WHERE K.nr_wewn=" + std::to_string(number) +
                                       " AND (" + TurnoverCondition(specs, "") + " OR " + stock + ")",
                                   used))
    return code;
  hadTurnover = used > 0;
  std::vector<int32_t> numbers;
  if (const int16_t code = WarehouseNumbers(numbers)) return code;
  for (int32_t w : numbers) {
    if (!WarehouseHas(w, "stany_mg")) continue;
    long n = 0;
    // With turnover only the empty stock rows go; without it the rows are empty anyway.
    if (const int16_t code = Changed("DELETE FROM " + items_detail::WarehouseSql(w, "stany_mg") + " WHERE nr_wewn=" +
                                         std::to_string(number) + " AND ilosc=0 AND ilosc_zamowiona_odb=0",
                                     n))
      return code;
  }
  if (!hadTurnover)
    if (const int16_t code = PGRunQueryNoTup("DELETE FROM " + kKat + " WHERE nr_wewn=" + std::to_string(number)))
      return code;
  return lock.Commit();
}

namespace {

// Rows of a table by the sign of its column ilosc.
int16_t CountBySign(const std::string& table, StockCounts& counts) {
  counts = StockCounts{};
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup(
          "SELECT count(*) FILTER (WHERE ilosc>0),count(*) FILTER (WHERE ilosc<0),count(*) FILTER (WHERE ilosc=0),"
          "count(*) FROM " + table,
          res))
    return code;
  counts.positive = static_cast<long>(items_detail::IntOf(res.Value(0, 0)));
  counts.negative = static_cast<long>(items_detail::IntOf(res.Value(0, 1)));
  counts.zero = static_cast<long>(items_detail::IntOf(res.Value(0, 2)));
  counts.all = static_cast<long>(items_detail::IntOf(res.Value(0, 3)));
  return 0;
}

}  // namespace

int16_t StockCountIn(int32_t warehouse, StockCounts& counts) {
  return CountBySign(items_detail::WarehouseSql(warehouse, "stany_mg"), counts);
}

int16_t WorkFileCountIn(int32_t user, StockCounts& counts, bool& exists) {
  counts = StockCounts{};
  const ShortText path = UserPath(user, ShortText("plikrob_"));
  if (const int16_t code = PGTblExist(path, exists); code != 0 || !exists) return code;
  return CountBySign(PGSqlName(path).Str(), counts);
}

int16_t RemoveZeroStock(int32_t warehouse, long& removed) {
  removed = 0;
  std::vector<int32_t> numbers;
  if (warehouse > 0) numbers.push_back(warehouse);
  else if (const int16_t code = WarehouseNumbers(numbers)) return code;
  items_detail::CatalogueLock lock;
  for (int32_t w : numbers)
    if (WarehouseHas(w, "stany_mg"))
      if (const int16_t code = Changed("DELETE FROM " + items_detail::WarehouseSql(w, "stany_mg") +
                                           " WHERE ilosc=0 AND ilosc_zamowiona_odb=0",
                                       removed))
        return code;
  return lock.Commit();
}

int16_t RemoveItemsWithoutTurnover(long& removed) {
  removed = 0;
  long stockRows = 0;
  if (const int16_t code = RemoveZeroStock(0, stockRows)) return code;
  std::vector<std::string> specs;
  std::string stock;
  if (const int16_t code = SpecTables(specs)) return code;
  if (const int16_t code = StockCondition(stock)) return code;
  bool keptExists = false;
  if (const int16_t code = PGTblExist(kKeptItemsTable, keptExists)) return code;
  if (!keptExists)
    if (const int16_t code = CreateTableFrom(kKeptItemsTable, TableDef{kKatTowDef.columns, 0, {}, {}})) return code;
  std::string columns;
  for (const ColumnDef& c : kKatTowDef.columns) columns += (columns.empty() ? "" : ",") + std::string(c.name);
  // The deleted rows go into the copy in the same statement: none is lost, none kept twice.
  items_detail::CatalogueLock lock;
  if (const int16_t code = CountOf("WITH d AS (DELETE FROM " + kKat + " K WHERE NOT " + TurnoverCondition(specs, "") +
                                       " AND NOT " + stock + " RETURNING " + columns + "), i AS (INSERT INTO " +
                                       PGSqlName(kKeptItemsTable).Str() + " (" + columns + ") SELECT " + columns +
                                       " FROM d RETURNING 1) SELECT count(*) FROM i",
                                   removed))
    return code;
  return lock.Commit();
}

int16_t HideUnusedItems(const ShortText& since, const std::function<void(int)>& step, long& hidden) {
  hidden = 0;
  if (!DateValid(since, 10)) return kPGArgRange;
  const std::string date = DateSwap(0, since).Str();
  std::vector<std::string> specs;
  std::string stock;
  if (step) step(1);
  if (const int16_t code = SpecTables(specs)) return code;
  if (step) step(2);
  if (const int16_t code = StockCondition(stock)) return code;
  items_detail::CatalogueLock lock;
  if (step) step(3);
  if (const int16_t code = Changed("UPDATE " + kKat + " K SET ilosc=NULL WHERE K.ilosc IS NOT NULL AND NOT " +
                                       TurnoverCondition(specs, date) + " AND NOT " + stock,
                                   hidden))
    return code;
  if (step) step(4);
  return lock.Commit();
}

int16_t ZeroDigitIndexes(int64_t limit, long& changed) {
  changed = 0;
  items_detail::CatalogueLock lock;
  if (const int16_t code = Changed("UPDATE " + kKat + " SET indeks_numeryczny=0 WHERE indeks_numeryczny<0 OR "
                                   "indeks_numeryczny>" + std::to_string(limit),
                                   changed))
    return code;
  return lock.Commit();
}

int16_t RepairDigitIndexes(long& changed, ShortText& refusal) {
  changed = 0;
  refusal.Clear();
  items_detail::CatalogueLock lock;
  // Every row but the first (by internal number) of each repeated index above 0.
  const std::string repeated = "SELECT nr_wewn FROM (SELECT nr_wewn,row_number() OVER (PARTITION BY indeks_numeryczny "
                               "ORDER BY nr_wewn) AS n FROM " + kKat + " WHERE indeks_numeryczny>0) d WHERE n>1";
  long count = 0;
  int64_t highest = 0;
  PGResult res;
  if (const int16_t code = CountOf("SELECT count(*) FROM (" + repeated + ") r", count)) return code;
  if (const int16_t code = PGRunQueryWithTup("SELECT COALESCE(MAX(indeks_numeryczny),0) FROM " + kKat, res))
    return code;
  highest = items_detail::IntOf(res.Value(0, 0));
  if (count == 0) return lock.Commit();
  if (highest > kDigitIndexMax - count) {
    refusal = "Wartość maksymalnego indeksu jest tak duża, że operacja nie jest możliwa@do przeprowadzenia. Należy użyć funkcji ƒShift+╫ê⌐, a potem ƒ╫ê⌐ (patrz@tekst pomocy dostępny pod ƒ╫à⌐)."_mz;
    return 0;
  }
  if (const int16_t code = Changed("UPDATE " + kKat + " K SET indeks_numeryczny=" + std::to_string(highest) +
                                       "+r.k FROM (SELECT nr_wewn,row_number() OVER (ORDER BY nr_wewn) AS k FROM (" +
                                       repeated + ") q) r WHERE K.nr_wewn=r.nr_wewn",
                                   changed))
    return code;
  return lock.Commit();
}

int16_t ItemFindByField(int field, const ShortText& value, ItemData& item, bool& found) {
  found = false;
  static const char* const names[] = {
#define KLOTE_ITEM_NAME(name, type) #name,
      KLOTE_COLUMNS_KAT_TOW(KLOTE_ITEM_NAME)
#undef KLOTE_ITEM_NAME
  };
  static const char* const types[] = {
#define KLOTE_ITEM_TYPE(name, type) type,
      KLOTE_COLUMNS_KAT_TOW(KLOTE_ITEM_TYPE)
#undef KLOTE_ITEM_TYPE
  };
  if (field < 1 || field > static_cast<int>(std::size(names))) return 0;
  const std::string column = std::string("K.") + names[field - 1];
  const ShortText trimmed = TrimLeftAll(TrimRightAll(value, ' '), ' ');
  std::string where;
  if (types[field - 1][0] == 'A') {
    where = "rtrim(" + column + ")=" + SqlText(trimmed);
  } else {
    if (trimmed.Empty() || NumericCheck(trimmed, false) != 0) return 0;
    where = column + "=" + NumberText(TextToRealLoose(trimmed));
  }
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup("SELECT " + items_detail::ItemColumns("K") + " FROM " + kKat +
                                                 " AS K WHERE " + where + " ORDER BY K.nazwa,K.nazwa_,K.oid LIMIT 1",
                                             res))
    return code;
  found = res.Rows() > 0;
  int64_t rowId = 0;
  if (found) items_detail::ItemFromResult(res, 0, 0, item, rowId);
  return 0;
}

int16_t SupplierClosed(int32_t supplier, bool& closed) {
  long n = 0;
  const int16_t code =
      CountOf("SELECT count(*) FROM DANE_DOSTAWCY WHERE numer=" + std::to_string(supplier) + " AND czy_podmiot_gosp='Z'", n);
  closed = n > 0;
  return code;
}
