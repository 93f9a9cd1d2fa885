// The stock lists of the warehouses: one row per item and warehouse, and the
// session's view that sums them over the warehouses.
#include <string>

#include "base/mazovia.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"

namespace items_detail {

std::string WarehouseSql(int32_t warehouse, const char* table) {
  return PGSqlName(WarehouseTablePath(warehouse, table)).Str();
}

}  // namespace items_detail

namespace {

// A warehouse's stany_mg open with a buffer placed on the item's row when it has one.
class StockCursor {
 public:
  StockCursor(int32_t warehouse, int32_t number)
      : table_(WarehouseTablePath(warehouse, "stany_mg")), code_(table_.Code()), tbl_(table_.Tbl()), rec_(table_.Rec()) {
    if (code_ == 0) code_ = PGPutLong(rec_, StanyMgCol::nr_wewn, number);
    if (code_ != 0) return;
    const int16_t search = PGSrchKey(tbl_, rec_, 1, 0);
    found_ = search == 0;
    if (search == 0) code_ = PGRecGet(tbl_, rec_);
    else if (search != kPGRecordNotFound) code_ = search;
  }
  StockCursor(const StockCursor&) = delete;
  StockCursor& operator=(const StockCursor&) = delete;

  int16_t Code() const { return code_; }
  bool Found() const { return found_; }

  int16_t Read(StockRow& row) const {
    int32_t link = 0;
    const int16_t code = First({PGGetExt(rec_, StanyMgCol::ilosc, row.quantity),
                                PGGetExt(rec_, StanyMgCol::ilosc_zamowiona_odb, row.ordered),
                                PGGetExt(rec_, StanyMgCol::csn, row.saleNet), PGGetExt(rec_, StanyMgCol::csb, row.saleGross),
                                PGGetLong(rec_, StanyMgCol::nr_zwiaz, link), PGGetAlpha(rec_, StanyMgCol::oznacz, row.mark),
                                PGGetLong(rec_, StanyMgCol::nr_wewn, row.number)});
    row.link = link;
    return code;
  }
  // Writes the row over the found one, or adds it.
  int16_t Write(const StockRow& row) const {
    const int16_t code = First({PGPutLong(rec_, StanyMgCol::nr_wewn, row.number), PGPutExt(rec_, StanyMgCol::ilosc, row.quantity),
                                PGPutExt(rec_, StanyMgCol::ilosc_zamowiona_odb, row.ordered),
                                PGPutExt(rec_, StanyMgCol::csn, row.saleNet), PGPutExt(rec_, StanyMgCol::csb, row.saleGross),
                                PGPutLong(rec_, StanyMgCol::nr_zwiaz, row.link), PGPutAlpha(rec_, StanyMgCol::oznacz, row.mark)});
    if (code != 0) return code;
    return found_ ? PGRecUpdate(tbl_, rec_) : PGRecAppend(tbl_, rec_);
  }

 private:
  static int16_t First(std::initializer_list<int16_t> codes) {
    for (int16_t c : codes)
      if (c != 0) return c;
    return 0;
  }
  items_detail::TableWithBuffer table_;
  int16_t code_ = 0;
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
  bool found_ = false;
};

bool RowInRange(const StockRow& row) {
  return AmountInRange(row.quantity) && AmountInRange(row.ordered) && AmountInRange(row.saleNet) &&
         AmountInRange(row.saleGross);
}

}  // namespace

int16_t StockRead(int32_t warehouse, int32_t number, StockRow& row, bool& found) {
  const StockCursor cursor(warehouse, number);
  found = cursor.Found();
  if (cursor.Code() != 0 || !found) return cursor.Code();
  return cursor.Read(row);
}

int16_t StockSet(int32_t warehouse, const StockRow& row, ShortText& refusal) {
  refusal = RowInRange(row) ? ShortText() : items_detail::BadAmountText();
  if (!refusal.Empty()) return 0;
  const StockCursor cursor(warehouse, row.number);
  if (cursor.Code() != 0) return cursor.Code();
  return cursor.Write(row);
}

int16_t StockChange(int32_t warehouse, int32_t number, Real delta, ShortText& refusal) {
  refusal.Clear();
  const StockCursor cursor(warehouse, number);
  if (cursor.Code() != 0) return cursor.Code();
  StockRow row;
  row.number = number;
  if (cursor.Found()) {
    if (const int16_t code = cursor.Read(row)) return code;
  } else {
    ItemData item;
    bool known = false;
    if (const int16_t code = ItemFindByNumber(number, item, known)) return code;
    row.saleNet = item.saleNet;
    row.saleGross = item.saleGross;
  }
  row.quantity += delta;
  if (!AmountInRange(delta) || !RowInRange(row)) {
    refusal = items_detail::BadAmountText();
    return 0;
  }
  return cursor.Write(row);
}

int16_t StockStorePrices(int32_t warehouse, int32_t number, Real net, Real gross) {
  const StockCursor cursor(warehouse, number);
  if (cursor.Code() != 0 || !cursor.Found()) return cursor.Code();
  StockRow row;
  if (const int16_t code = cursor.Read(row)) return code;
  row.saleNet = net;
  row.saleGross = gross;
  return cursor.Write(row);
}

int16_t BuildStockView(int& warehouses) {
  warehouses = 0;
  bool exists = false;
  (void)PGTblExist_pg(items_detail::kStockView, exists);
  if (exists)
    if (const int16_t code = PGRunQueryNoTup(std::string("DROP VIEW ") + items_detail::kStockView)) return code;
  PGResult numbers;
  if (const int16_t code = PGRunQueryWithTup("SELECT NUMER FROM DANE_MAGAZYNY WHERE CZY_PODMIOT_GOSP='Z' ORDER BY NUMER LIMIT " +
                                                 std::to_string(kStockViewMaxWarehouses),
                                             numbers))
    return code;
  if (numbers.Rows() == 0) return 0;
  std::string sql = std::string("CREATE TEMPORARY VIEW ") + items_detail::kStockView + " AS SELECT ";
  int column = 0;
#define KLOTE_STOCK_COLUMN(name, type)                                                 \
  ++column;                                                                           \
  sql += column == 1 ? std::string()                                                  \
                     : std::string(",");                                              \
  sql += column == 1 ? std::string(#name)                                             \
         : column <= 3 ? "SUM(" + std::string(#name) + ") AS " + #name                \
         : column <= 7 ? "MAX(" + std::string(#name) + ") AS " + #name                \
                       : "NULL AS " + std::string(#name);
  KLOTE_COLUMNS_STANY_MG(KLOTE_STOCK_COLUMN)
#undef KLOTE_STOCK_COLUMN
  sql += " FROM (SELECT * FROM ";
  for (int i = 0; i < numbers.Rows(); ++i) {
    if (i > 0) sql += " UNION ALL SELECT * FROM ";
    sql += items_detail::WarehouseSql(static_cast<int32_t>(items_detail::IntOf(numbers.Value(i, 0))), "stany_mg");
  }
  sql += ") AS TMP_STANYX GROUP BY nr_wewn";
  if (const int16_t code = PGRunQueryNoTup(sql)) return code;
  warehouses = numbers.Rows();
  return 0;
}
