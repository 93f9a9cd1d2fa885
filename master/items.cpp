// The catalogue and the stock lists through the table layer: adding an item
// with its stock row, finding items, prices, the activity and discount
// marks, stock rows and the grouped stock view.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/text.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgcatalog.h"
#include "sqltable/pglock.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"

namespace items_detail {

ShortText BadAmountText() { return PGErrText(kPGArgRange); }

std::string SqlText(const ShortText& text) {
  std::string bytes = text.Str();
  MazToDbInPlace(bytes.data(), bytes.size());
  return PGValueLiteral(PGKind::Text, bytes);
}

std::string ItemColumns(const char* alias) {
  const std::string a = std::string(alias) + ".";
  std::string out = a + "oid";
#define KLOTE_ITEM_COLUMN(name, type) \
  out += std::string_view(#name) == "ilosc" ? "," + a + "ilosc IS NOT NULL" : "," + a + ColumnSqlName(#name);
  KLOTE_COLUMNS_KAT_TOW(KLOTE_ITEM_COLUMN)
#undef KLOTE_ITEM_COLUMN
  return out;
}

Real RealOf(std::string_view text) { return std::strtold(std::string(text).c_str(), nullptr); }
int64_t IntOf(std::string_view text) { return std::strtoll(std::string(text).c_str(), nullptr, 10); }

std::string NumberText(Real value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.7Lf", value);
  return buf;
}

void ItemFromResult(const PGResult& res, int r, int c, ItemData& item, int64_t& rowId) {
  rowId = IntOf(res.Value(r, c));
  ItemFieldsFromRow(res, r, c, item);
  item.active = res.Value(r, c + KatTowCol::ilosc) == "t";
  item.discountLock = static_cast<int16_t>(IntOf(res.Value(r, c + KatTowCol::blok_rab)));
}

TableWithBuffer::TableWithBuffer(const ShortText& path) {
  code_ = OpenTable(path, tbl_, 0);
  if (code_ == 0) code_ = PGRecBufOpen(tbl_, rec_);
}

TableWithBuffer::~TableWithBuffer() {
  if (rec_ != 0) (void)PGRecBufClose(rec_);
  if (tbl_ != 0) (void)PGTblClose(tbl_);
}

}  // namespace items_detail

using items_detail::SqlText;

namespace {

const std::string kKatTowSql = "DANE_KAT_TOW_";

// The first code that is not 0.
int16_t First(std::initializer_list<int16_t> codes) {
  for (int16_t c : codes)
    if (c != 0) return c;
  return 0;
}

int16_t PutPrices(int16_t rec, const ItemData& item) {
  return First({PGPutExt(rec, KatTowCol::cena_z_n, item.buyNet), PGPutExt(rec, KatTowCol::cena_z_b, item.buyGross),
                PGPutExt(rec, KatTowCol::cena_s_n, item.saleNet), PGPutExt(rec, KatTowCol::cena_s_b, item.saleGross)});
}

int16_t PutItem(int16_t rec, const ItemData& item) {
  int16_t code = First({PGPutAlpha(rec, KatTowCol::nazwa, item.name), PGPutAlpha(rec, KatTowCol::nazwa_, item.name2),
                        PGPutAlpha(rec, KatTowCol::vat, item.vat), PGPutAlpha(rec, KatTowCol::sww, item.sww),
                        PGPutAlpha(rec, KatTowCol::czy_od_pl_vat, item.vatPayer),
                        PGPutLong(rec, KatTowCol::nr_wewn, item.number),
                        PGPutAlpha(rec, KatTowCol::indeks_znakowy_isbn, item.code),
                        PGPutDoub(rec, KatTowCol::indeks_numeryczny, static_cast<double>(item.digitIndex)),
                        PGPutLong(rec, KatTowCol::dostawca, item.supplier),
                        PGPutAlpha(rec, KatTowCol::miejsce_w_magazynie, item.place),
                        PGPutExt(rec, KatTowCol::ilosc, 0), PGPutAlpha(rec, KatTowCol::jednostka, item.unit),
                        PGPutExt(rec, KatTowCol::ilosc_w_opak, item.packQuantity),
                        PGPutAlpha(rec, KatTowCol::dostawca_opis, item.supplierText),
                        PGPutExt(rec, KatTowCol::il_zamowiona, item.ordered),
                        PGPutShort(rec, KatTowCol::blok_rab, item.discountLock), PutPrices(rec, item)});
  for (int k = 0; code == 0 && k < 5; ++k) code = PGPutAlpha(rec, KatTowCol::k1_pochodzenie_autor + k, item.keys[k]);
  return code;
}

// One number from a select; 0 when it gives no row or NULL.
int16_t SelectNumber(const std::string& sql, int64_t& value) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup(sql, res);
  value = code == 0 && res.Rows() > 0 ? items_detail::IntOf(res.Value(0, 0)) : 0;
  return code;
}

int16_t RowExists(const std::string& sql, bool& exists) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup(sql, res);
  exists = code == 0 && res.Rows() > 0;
  return code;
}

std::string SameFeatures(const ItemData& item) {
  return "nazwa=" + SqlText(item.name) + " AND nazwa_=" + SqlText(item.name2) + " AND vat=" + SqlText(item.vat) +
         " AND sww=" + SqlText(item.sww) + " AND czy_od_pl_vat=" + SqlText(item.vatPayer);
}

// A digit index for an item that came without one, under the option's rule.
int16_t GiveDigitIndex(const ItemRules& rules, int64_t& index) {
  const std::string k = kKatTowSql;
  if (rules.digitIndexAfterHighest) {
    PGResult res;
    const int16_t code = PGRunUnderMessage(
        "Trwa poszukiwanie indeksu cyfrowego o 1 większego od najwyższego..."_mz,
        "SELECT COALESCE(MAX(indeks_numeryczny),0)+1 FROM " + k, true, res);
    index = code == 0 ? items_detail::IntOf(res.Value(0, 0)) : 0;
    return code;
  }
  PGResult res;
  const int16_t code = PGRunUnderMessage(
      "Trwa poszukiwanie pierwszego wolnego indeksu cyfrowego..."_mz,
      "SELECT CASE WHEN NOT EXISTS (SELECT 1 FROM " + k + " WHERE indeks_numeryczny=1) THEN 1 ELSE (SELECT "
      "MIN(a.indeks_numeryczny+1) FROM " + k + " a WHERE a.indeks_numeryczny>=1 AND NOT EXISTS (SELECT 1 FROM " + k +
      " b WHERE b.indeks_numeryczny=a.indeks_numeryczny+1)) END", true, res);
  index = code == 0 ? items_detail::IntOf(res.Value(0, 0)) : 0;
  return code;
}

int16_t FindOne(const std::string& where, const std::string& order, ItemData& item, bool& found) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup(
      "SELECT " + items_detail::ItemColumns("K") + " FROM " + kKatTowSql + " AS K WHERE " + where + " ORDER BY " + order +
          " LIMIT 1", res);
  found = code == 0 && res.Rows() > 0;
  int64_t rowId = 0;
  if (found) items_detail::ItemFromResult(res, 0, 0, item, rowId);
  return code;
}

int16_t PutStock(int16_t rec, const StockRow& row) {
  return First({PGPutLong(rec, StanyMgCol::nr_wewn, row.number), PGPutExt(rec, StanyMgCol::ilosc, row.quantity),
                PGPutExt(rec, StanyMgCol::ilosc_zamowiona_odb, row.ordered), PGPutExt(rec, StanyMgCol::csn, row.saleNet),
                PGPutExt(rec, StanyMgCol::csb, row.saleGross), PGPutLong(rec, StanyMgCol::nr_zwiaz, row.link),
                PGPutAlpha(rec, StanyMgCol::oznacz, row.mark)});
}

bool StockInRange(const StockRow& row) {
  return AmountInRange(row.quantity) && AmountInRange(row.ordered) && AmountInRange(row.saleNet) &&
         AmountInRange(row.saleGross);
}

}  // namespace

int16_t ItemAdd(ItemData& item, const ItemRules& rules, int32_t warehouse, const StockRow& stock, ShortText& refusal) {
  refusal = CheckItemData(item, rules);
  if (refusal.Empty() && !StockInRange(stock)) refusal = items_detail::BadAmountText();
  if (!refusal.Empty()) return 0;
  items_detail::CatalogueLock lock;
  bool duplicate = false;
  if (const int16_t code = RowExists("SELECT 1 FROM " + kKatTowSql + " WHERE " + SameFeatures(item) + " LIMIT 1", duplicate))
    return code;
  if (!duplicate && !TrimRightAll(item.code, ' ').Empty())
    if (const int16_t code = RowExists("SELECT 1 FROM " + kKatTowSql + " WHERE indeks_znakowy_isbn=" + SqlText(item.code) +
                                           " LIMIT 1", duplicate))
      return code;
  if (duplicate) {
    refusal = "Znaleziono identyczną daną - dopisanie nie ma sensu."_mz;
    return 0;
  }
  int64_t last = 0;
  if (const int16_t code = SelectNumber("SELECT MAX(nr_wewn) FROM " + kKatTowSql, last)) return code;
  if (last >= kItemNumberMax) {
    refusal = "Skończył sie zakres numerów wewnętrznych w katalogu towarów.@W tym wypadku musisz skontaktować się z serwisem.@Program po wciśnięciu ƒ╒¿⌐ zakończy"_mz;
    return 0;
  }
  if (item.digitIndex == 0)
    if (const int16_t code = GiveDigitIndex(rules, item.digitIndex)) return code;
  if (item.digitIndex > kDigitIndexMax) {
    refusal = "Indeks numeryczny musi zawierać się w przedziale [0,999999999999999]."_mz;
    return 0;
  }
  item.number = static_cast<int32_t>(last + 1);
  {
    items_detail::TableWithBuffer kat(kKatTowTable);
    if (const int16_t code = First({kat.Code(), PutItem(kat.Rec(), item), PGRecAppend(kat.Tbl(), kat.Rec())}))
      return code;
  }
  if (warehouse > 0) {
    StockRow row = stock;
    row.number = item.number;
    row.ordered = 0;
    row.saleNet = item.saleNet;
    row.saleGross = item.saleGross;
    items_detail::TableWithBuffer stany(WarehouseTablePath(warehouse, "stany_mg"));
    if (const int16_t code = First({stany.Code(), PutStock(stany.Rec(), row), PGRecAppend(stany.Tbl(), stany.Rec())}))
      return code;
  }
  return lock.Commit();
}

int16_t ItemFindByNumber(int32_t number, ItemData& item, bool& found) {
  return FindOne("K.nr_wewn=" + std::to_string(number), "K.nr_wewn", item, found);
}

int16_t ItemFindByCode(const ShortText& code, ItemData& item, bool& found) {
  return FindOne("K.indeks_znakowy_isbn=" + SqlText(code), "K.nr_wewn", item, found);
}

int16_t ItemFindByDigitIndex(int64_t digitIndex, ItemData& item, bool& found) {
  return FindOne("K.indeks_numeryczny=" + std::to_string(digitIndex), "K.nr_wewn", item, found);
}

int16_t ItemFindByFeatures(const ItemData& item, ItemData& found, bool& exists) {
  return FindOne(SameFeatures(item), "K.nr_wewn", found, exists);
}

int16_t ItemFindByName(const ShortText& prefix, ItemData& item, bool& found) {
  std::string bytes = prefix.Str();
  MazToDbInPlace(bytes.data(), bytes.size());
  const std::string pattern = PGValueLiteral(PGKind::Text, bytes);
  return FindOne("K.nazwa>=" + pattern + " AND left(K.nazwa," + std::to_string(prefix.Length()) + ")=" + pattern,
                 "K.nazwa,K.nazwa_,K.oid", item, found);
}

namespace {

// ItemStorePrices under the catalogue's lock that the caller holds.
int16_t StorePricesLocked(const ItemData& item, bool& found, ShortText& refusal) {
  ItemData stored;
  if (const int16_t code = ItemFindByNumber(item.number, stored, found); code != 0 || !found) return code;
  // The purchase prices belong to the catalogue's key: a change that repeats another row's key is refused.
  bool clash = false;
  if (const int16_t code = RowExists("SELECT 1 FROM " + kKatTowSql + " WHERE nr_wewn<>" + std::to_string(item.number) +
                                         " AND " + SameFeatures(stored) + " AND cena_z_n=" +
                                         items_detail::NumberText(item.buyNet) + " AND cena_z_b=" +
                                         items_detail::NumberText(item.buyGross) + " LIMIT 1",
                                     clash))
    return code;
  if (clash) {
    refusal = "Nie można dokonać korekty w głównym katalogu towarów.@Zapewne istnieje pozycja o takich cechach, jakie aktualnie@nadano zmienianej. Zmiany nie zostaną wprowadzone."_mz;
    return 0;
  }
  items_detail::TableWithBuffer kat(kKatTowTable);
  if (kat.Code() != 0) return kat.Code();
  if (const int16_t code = PGPutLong(kat.Rec(), KatTowCol::nr_wewn, item.number)) return code;
  const int16_t search = PGSrchFld(kat.Tbl(), kat.Rec(), KatTowCol::nr_wewn, 0);
  if (search == kPGRecordNotFound) {
    found = false;
    return 0;
  }
  return First({search, PGRecGet(kat.Tbl(), kat.Rec()), PutPrices(kat.Rec(), item), PGRecUpdate(kat.Tbl(), kat.Rec())});
}

}  // namespace

int16_t ItemStorePrices(const ItemData& item, bool& found, ShortText& refusal) {
  found = false;
  refusal.Clear();
  for (Real v : {item.buyNet, item.buyGross, item.saleNet, item.saleGross})
    if (!AmountInRange(v)) refusal = items_detail::BadAmountText();
  if (!refusal.Empty()) return 0;
  items_detail::CatalogueLock lock;
  const int16_t code = StorePricesLocked(item, found, refusal);
  return code != 0 || !found || !refusal.Empty() ? code : lock.Commit();
}

int16_t SetItemActive(int32_t number, bool active) {
  PGResult names;
  if (const int16_t code = PGRunQueryWithTup(
          "SELECT NAZP FROM TABLES_LIST WHERE NAZT='DANE_KAT_TOW_' AND (LP=8 OR LP=20) ORDER BY LP", names))
    return code;
  if (names.Rows() < 2) return kPGBadFieldName;
  const std::string lp8(names.Value(0, 0)), lp20(names.Value(1, 0));
  const std::string sql = active ? "UPDATE DANE_KAT_TOW_ SET " + lp20 + "=0.0 WHERE " + lp8 + "=" +
                                       std::to_string(number) + " AND " + lp20 + " IS NULL"
                                 : "UPDATE DANE_KAT_TOW_ SET " + lp20 + "=NULL WHERE " + lp8 + "=" +
                                       std::to_string(number) + " AND " + lp20 + " IS NOT NULL";
  return PGRunQueryNoTup(sql);
}

int16_t SetItemDiscountLock(int32_t number, int16_t value) {
  return PGRunQueryNoTup("UPDATE DANE_KAT_TOW_ SET BLOK_RAB=" + std::to_string(value) +
                         " WHERE NR_WEWN=" + std::to_string(number));
}

namespace {

int16_t ReadListRows(const std::string& sql, bool forward, std::vector<ItemListRow>& rows) {
  rows.clear();
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup(sql, res)) return code;
  const int stockAt = items_detail::kItemColumnCount;
  rows.resize(static_cast<std::size_t>(res.Rows()));
  for (int r = 0; r < res.Rows(); ++r) {
    ItemListRow& row = rows[static_cast<std::size_t>(forward ? r : res.Rows() - 1 - r)];
    items_detail::ItemFromResult(res, r, 0, row.item, row.rowId);
    row.quantity = items_detail::RealOf(res.Value(r, stockAt));
    row.saleNet = items_detail::RealOf(res.Value(r, stockAt + 1));
    row.saleGross = items_detail::RealOf(res.Value(r, stockAt + 2));
  }
  return 0;
}

}  // namespace

int16_t ItemListRead(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, bool forward, int limit,
                     std::vector<ItemListRow>& rows) {
  return ReadListRows(ItemListQuery(kind, warehouse, from, forward, limit), forward, rows);
}

int16_t ItemListFind(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, const ShortText& fragment,
                     std::vector<ItemListRow>& rows) {
  const std::string condition = "strpos(K.nazwa||K.nazwa_," + SqlText(fragment) + ")>0";
  return ReadListRows(ItemListQueryWhere(kind, warehouse, from, true, 1, condition), true, rows);
}

int16_t ItemListRowOf(const ItemListKind& kind, int32_t warehouse, int32_t number, std::vector<ItemListRow>& rows) {
  return ReadListRows(ItemListQueryWhere(kind, warehouse, ItemListKey{}, true, 1, "K.nr_wewn=" + std::to_string(number)),
                      true, rows);
}

namespace {

// The warehouse's stock row gets the prices; a missing row is added with nothing in stock.
int16_t StockPricesOrNewRow(int32_t warehouse, int32_t number, Real net, Real gross) {
  StockRow row;
  bool found = false;
  if (const int16_t code = StockRead(warehouse, number, row, found)) return code;
  if (found) return StockStorePrices(warehouse, number, net, gross);
  row.number = number;
  row.saleNet = net;
  row.saleGross = gross;
  ShortText refusal;
  return StockSet(warehouse, row, refusal);
}

}  // namespace

int16_t ItemChangeSalePrice(int32_t number, Real gross, ItemPriceScope scope, int32_t warehouse, bool& found,
                            ShortText& refusal) {
  refusal.Clear();
  if (!AmountInRange(gross) || gross < 0) {
    refusal = items_detail::BadAmountText();
    return 0;
  }
  // One transaction over the catalogue, the users' tables and the warehouses.
  items_detail::CatalogueLock lock;
  ItemData item;
  if (const int16_t code = ItemFindByNumber(number, item, found); code != 0 || !found) return code;
  const ItemData before = item;
  item.saleGross = gross;
  item.saleNet = NetFromGross(gross, item.vat);
  if (scope != ItemPriceScope::kWarehouse) {
    if (const int16_t code = StorePricesLocked(item, found, refusal); code != 0 || !found || !refusal.Empty()) return code;
    if (const int16_t code = ItemWalkUserTables(before, item, nullptr)) return code;
  }
  if (scope == ItemPriceScope::kEverywhere) {
    PGResult numbers;
    if (const int16_t code = PGRunQueryWithTup("SELECT NUMER FROM DANE_MAGAZYNY WHERE CZY_PODMIOT_GOSP='Z' ORDER BY NUMER", numbers))
      return code;
    for (int i = 0; i < numbers.Rows(); ++i) {
      const auto other = static_cast<int32_t>(items_detail::IntOf(numbers.Value(i, 0)));
      if (other == warehouse) continue;
      if (const int16_t code = StockStorePrices(other, number, item.saleNet, item.saleGross)) return code;
    }
  }
  if (warehouse > 0)
    if (const int16_t code = StockPricesOrNewRow(warehouse, number, item.saleNet, item.saleGross)) return code;
  return lock.Commit();
}

void ItemFieldsFromRow(const PGResult& res, int r, int c, ItemData& item) {
  auto text = [&](int col) {
    ShortText t = res.Text(r, c + col);
    DbToMazInPlace(t.Data(), static_cast<std::size_t>(t.Length()));
    return t;
  };
  auto real = [&](int col) { return items_detail::RealOf(res.Value(r, c + col)); };
  auto integer = [&](int col) { return items_detail::IntOf(res.Value(r, c + col)); };
  item.name = text(KatTowCol::nazwa);
  item.name2 = text(KatTowCol::nazwa_);
  item.buyNet = real(KatTowCol::cena_z_n);
  item.buyGross = real(KatTowCol::cena_z_b);
  item.vat = text(KatTowCol::vat);
  item.sww = text(KatTowCol::sww);
  item.vatPayer = text(KatTowCol::czy_od_pl_vat);
  item.number = static_cast<int32_t>(integer(KatTowCol::nr_wewn));
  item.code = text(KatTowCol::indeks_znakowy_isbn);
  item.digitIndex = integer(KatTowCol::indeks_numeryczny);
  item.supplier = static_cast<int32_t>(integer(KatTowCol::dostawca));
  item.place = text(KatTowCol::miejsce_w_magazynie);
  for (int k = 0; k < 5; ++k) item.keys[k] = text(KatTowCol::k1_pochodzenie_autor + k);
  item.saleNet = real(KatTowCol::cena_s_n);
  item.saleGross = real(KatTowCol::cena_s_b);
  item.unit = text(KatTowCol::jednostka);
  item.packQuantity = real(KatTowCol::ilosc_w_opak);
  item.supplierText = text(KatTowCol::dostawca_opis);
  item.ordered = real(KatTowCol::il_zamowiona);
}
