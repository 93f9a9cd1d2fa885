// The user's work table praca___: the line list being written.
#include <cstdio>
#include <cstdlib>

#include "base/codepage.h"
#include "documents/docdetail.h"
#include "documents/save_detail.h"
#include "master/tables.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "users/users.h"

namespace {

// praca___ holds the 24 columns of the catalogue (without its discount lock);
// rows stay in the order written (row id), so the table has no key.
constexpr int kWorkColumns = 24;
const TableDef kWorkTableDef{kKatTowDef.columns.first(kWorkColumns), 0, {}, {}};

std::string SqlOf(const ShortText& path) { return docdetail::SqlTable(path); }

}  // namespace

namespace savedetail {

std::string TextSql(const ShortText& text) {
  std::string bytes = text.Str();
  MazToDbInPlace(bytes.data(), bytes.size());
  return PGValueLiteral(PGKind::Text, bytes);
}

std::string NumberSql(Real value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.7Lf", value);
  return buf;
}

Real RealOf(std::string_view text) { return std::strtold(std::string(text).c_str(), nullptr); }
int64_t IntOf(std::string_view text) { return std::strtoll(std::string(text).c_str(), nullptr, 10); }

ShortText TextOf(const PGResult& res, int r, int c) {
  ShortText t = res.Text(r, c);
  DbToMazInPlace(t.Data(), static_cast<std::size_t>(t.Length()));
  return t;
}

std::string WorkColumns() {
  std::string out;
  for (const ColumnDef& c : kWorkTableDef.columns) out += (out.empty() ? "" : ",") + std::string(c.name);
  return out;
}

std::string WorkValues(const DocLine& line) {
  const ItemData& i = line.item;
  using savedetail::TextSql;
  std::string v = TextSql(i.name) + "," + TextSql(i.name2) + "," + NumberSql(i.buyNet) + "," +
                  NumberSql(i.buyGross) + "," + TextSql(i.vat) + "," + TextSql(i.sww) + "," +
                  TextSql(i.vatPayer) + "," + std::to_string(i.number) + "," + TextSql(i.code) + "," +
                  std::to_string(i.digitIndex) + "," + std::to_string(i.supplier) + "," + TextSql(i.place);
  for (const ShortText& k : i.keys) v += "," + TextSql(k);
  v += "," + NumberSql(i.saleNet) + "," + NumberSql(i.saleGross) + "," + NumberSql(line.quantity) + "," +
       TextSql(i.unit) + "," + NumberSql(i.packQuantity) + "," + TextSql(i.supplierText) + "," +
       NumberSql(i.ordered);
  return v;
}

DocLine WorkLineOf(const PGResult& res, int r, int c) {
  DocLine line;
  line.rowId = IntOf(res.Value(r, c));
  ItemFieldsFromRow(res, r, c, line.item);
  line.quantity = RealOf(res.Value(r, c + KatTowCol::ilosc));
  return line;
}

}  // namespace savedetail

ShortText WorkTablePath(int32_t user) { return UserPath(user, "praca___"); }

int16_t WorkTableEnsure(int32_t user) {
  bool exists = false;
  (void)PGTblExist(WorkTablePath(user), exists);
  return exists ? 0 : CreateTableFrom(WorkTablePath(user), kWorkTableDef);
}

int16_t WorkLinesRead(const ShortText& path, std::vector<DocLine>& lines) {
  lines.clear();
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup(
          "SELECT oid," + savedetail::WorkColumns() + " FROM " + SqlOf(path) + " ORDER BY oid", res))
    return code;
  lines.reserve(static_cast<std::size_t>(res.Rows()));
  for (int r = 0; r < res.Rows(); ++r) lines.push_back(savedetail::WorkLineOf(res, r, 0));
  return 0;
}

int16_t WorkLineAppend(const ShortText& path, DocLine& line) {
  PGResult res;
  if (const int16_t code = PGRunQueryWithTup("INSERT INTO " + SqlOf(path) + " (" + savedetail::WorkColumns() +
                                                 ") VALUES (" + savedetail::WorkValues(line) + ") RETURNING oid",
                                             res))
    return code;
  line.rowId = res.Rows() > 0 ? savedetail::IntOf(res.Value(0, 0)) : 0;
  return 0;
}

int16_t WorkLineSetQuantity(const ShortText& path, int64_t rowId, Real quantity) {
  return PGRunQueryNoTup("UPDATE " + SqlOf(path) + " SET ilosc=" + savedetail::NumberSql(quantity) +
                         " WHERE oid=" + std::to_string(rowId));
}

int16_t WorkLineDelete(const ShortText& path, int64_t rowId) {
  return PGRunQueryNoTup("DELETE FROM " + SqlOf(path) + " WHERE oid=" + std::to_string(rowId));
}

int16_t WorkTableClear(const ShortText& path) { return PGTblEmpty(path); }
