// Helpers shared by the catalogue's sources. Private to master/.
#pragma once

#include <string>
#include <vector>

#include "base/shorttext.h"
#include "master/items.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgconn.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace items_detail {

// The session's grouped stock view.
inline constexpr const char* kStockView = "TMP_VIEW_STANYX";
// A price or quantity that no column can hold.
ShortText BadAmountText();
// A Mazovia text as an escaped SQL literal in the server's code page.
std::string SqlText(const ShortText& text);
// "A.oid,A.nazwa,...,A.il_zamowiona,A.blok_rab" with the activity as "A.ilosc IS NOT NULL".
std::string ItemColumns(const char* alias);
// Number of result columns that ItemColumns gives.
inline constexpr int kItemColumnCount = 26;
// Fills item (and rowId) from the ItemColumns of row r starting at column c.
void ItemFromResult(const PGResult& res, int r, int c, ItemData& item, int64_t& rowId);
// A number of a result cell (0 when it does not parse).
Real RealOf(std::string_view text);
int64_t IntOf(std::string_view text);
// A price or quantity as an SQL number with seven decimals.
std::string NumberText(Real value);
// "nazwa=...,...,dostawca_opis=...": the columns of an item row other than prices, quantities and marks.
std::string DescriptiveSet(const ItemData& item);
// The SQL name of a warehouse's table.
std::string WarehouseSql(int32_t warehouse, const char* table);

// The numbers of the warehouses with their own tables, in order.
int16_t WarehouseNumbers(std::vector<int32_t>& numbers);
// Whether the warehouse's table exists on the server.
bool WarehouseHas(int32_t warehouse, const char* table);

// The catalogue's exclusive lock and its transaction, rolled back unless committed.
class CatalogueLock : public ExclusiveTableLock {
 public:
  CatalogueLock() : ExclusiveTableLock(kKatTowTable) {}
};

// An open table with one record buffer, both released on every road.
class TableWithBuffer {
 public:
  explicit TableWithBuffer(const ShortText& path);
  ~TableWithBuffer();
  TableWithBuffer(const TableWithBuffer&) = delete;
  TableWithBuffer& operator=(const TableWithBuffer&) = delete;
  int16_t Code() const { return code_; }
  int16_t Tbl() const { return tbl_; }
  int16_t Rec() const { return rec_; }

 private:
  int16_t code_ = 0;
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
};

// A box with one line whose field is the run of '-' (or of the trailing
// blanks) in the text, edited in the EditField mode; false for Esc.
bool AskInLine(const ShortText& text, int mode, ShortText& value);

// The scope question, its confirmation and the change of the shown item's
// sale price, with the system's messages; true when it was written.
bool StoreSalePrice(int32_t warehouse, const ItemListRow& shown, Real gross);
// The name of an item deleted by another user with the system's message.
ShortText GoneText(const ItemData& item);

// Passes a table code that is not 0 to CheckDBError.
void Checked(int16_t code);

}  // namespace items_detail
