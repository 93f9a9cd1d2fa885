// Whole-table operations done in a few statements each.
#include "users/bulk.h"

#include <cstdlib>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "sqltable/pgnav.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"
#include "users/bulk_detail.h"

namespace bulk_detail {

int16_t Run(const std::string& sql) { return PGRunQueryNoTup(sql); }

int16_t ReadFields(const std::string& sqlName, std::vector<CatalogueField>& fields) {
  fields.clear();
  PGResult res;
  if (int16_t code = PGRunQueryWithTup(
          "SELECT NAZP,TYPP FROM TABLES_LIST WHERE NAZT='" + sqlName + "' ORDER BY LP", res))
    return code;
  for (int r = 0; r < res.Rows(); ++r) fields.push_back({std::string(res.Value(r, 0)), res.Text(r, 1)});
  return fields.empty() ? kPGSqlFailed : kPGOk;
}

std::string JoinNames(const std::vector<CatalogueField>& fields, const std::string& prefix) {
  std::string out;
  for (const CatalogueField& f : fields) out += (out.empty() ? "" : ",") + prefix + f.name;
  return out;
}

int16_t RewriteInTransaction(const std::string& sqlName, const std::function<int16_t()>& steps) {
  (void)PGTransBegin();
  int16_t code = steps();
  if (code == 0) code = Run("UPDATE tables_list set il_zm=il_zm+1 where nazt='" + sqlName + "' AND lp=1");
  if (code == 0) (void)PGTransCommit();
  else (void)PGTransRollback();
  return code;
}

ProgressBoxTen::ProgressBoxTen(const ShortText& text, long total) : total_(total) {
  ScreenSave(screen_);
  MessageBox(text, 2);
  bar_ = FindProgressBar(text);
}

ProgressBoxTen::~ProgressBoxTen() { ScreenRestore(screen_); }

void ProgressBoxTen::Show(long done) {
  const long cell = total_ > 0 ? done * 10 / total_ : 10;
  if (cell == shown_) return;
  shown_ = cell;
  ShowProgress(bar_, done, total_);
  TermFlush();
}

}  // namespace bulk_detail

using namespace bulk_detail;

namespace {

// The catalogue's temporary mark of a table ("*"), read from its first row.
int16_t IsTemporary(const std::string& t, bool& temp) {
  PGResult res;
  if (int16_t code = PGRunQueryWithTup("SELECT temp FROM tables_list WHERE nazt='" + t + "' AND lp=1", res))
    return code;
  if (res.Rows() < 1) return kPGTableNotFound;
  temp = res.Value(0, 0) == "*";
  return kPGOk;
}

int16_t AddFieldSteps(const std::string& t, const std::string& field, const ShortText& type,
                      const PGTypeInfo& info) {
  bool temp = false;
  if (int16_t code = IsTemporary(t, temp)) return code;
  if (int16_t code = Run("ALTER TABLE " + t + " ADD COLUMN " + field + " " + info.sqlType)) return code;
  PGResult res;
  if (int16_t code = PGRunQueryWithTup("SELECT MAX(lp) FROM tables_list WHERE nazt='" + t + "'", res)) return code;
  const long next = std::atol(std::string(res.Value(0, 0)).c_str()) + 1;
  return Run("INSERT INTO tables_list VALUES('" + t + "','" + field + "','" + type.Str() + "'," +
             (temp ? "'','','','*',0," : "'','','','',0,") + std::to_string(next) + ",0,'N',0,0)");
}

// A field's value for the rows that hold NULL, or empty when NULL stays.
std::string FillValue(const ShortText& type) {
  PGTypeInfo info;
  if (!PGParseType(type, false, info)) return std::string();
  switch (info.kind) {
    case PGKind::Text:
    case PGKind::Blob: return "''";
    case PGKind::Date: return "CURRENT_DATE";
    case PGKind::Number: return std::string();
  }
  return std::string();
}

}  // namespace

int16_t PGTblAddField(const ShortText& table, const ShortText& field, const ShortText& type) {
  PGLastOp = "PGTblAddField";
  PGTypeInfo info;
  const std::string name = PGSqlName(field).Str();
  if (!PGParseType(type, true, info) || name.size() > PGName::kCapacity || name == "OID") return kPGBadArgument;
  const std::string t = SqlName(table);
  return RewriteInTransaction(t, [&] { return AddFieldSteps(t, name, type, info); });
}

int16_t PGTblAddField_dow(const ShortText& table, const ShortText& field) {
  return PGTblAddField(table, field, "A255");
}

int16_t TblSortPhysical(const ShortText& table, const std::string& field, bool descending) {
  PGLastOp = "TblSortPhysical";
  const std::string t = SqlName(table);
  std::vector<CatalogueField> fields;
  if (int16_t code = ReadFields(t, fields)) return code;
  (void)Run("DROP TABLE IF EXISTS TMP_SORTY");  // left by an earlier failure of this session
  (void)Run("DROP TABLE IF EXISTS TMP_SORTX");
  if (int16_t code = Run("CREATE TEMPORARY TABLE TMP_SORTX AS SELECT * FROM " + t + " LIMIT 0")) return code;
  if (int16_t code = Run("CREATE TEMPORARY TABLE TMP_SORTY (O INT8,S SERIAL)")) return code;
  // New row ids are drawn in the wanted order: the old ones cannot be kept.
  const int16_t code = RewriteInTransaction(t, [&]() -> int16_t {
    if (int16_t c = Run("INSERT INTO TMP_SORTY (O) SELECT OID FROM " + t + " ORDER BY " + field +
                        (descending ? " DESC" : "")))
      return c;
    if (int16_t c = Run("INSERT INTO TMP_SORTX SELECT * FROM " + t)) return c;
    if (int16_t c = Run("TRUNCATE TABLE " + t)) return c;
    return Run("INSERT INTO " + t + " (" + JoinNames(fields) + ") SELECT " + JoinNames(fields, "X.") +
               " FROM TMP_SORTX AS X,TMP_SORTY WHERE X.OID=TMP_SORTY.O ORDER BY TMP_SORTY.S");
  });
  (void)Run("DROP TABLE TMP_SORTY");
  (void)Run("DROP TABLE TMP_SORTX");
  return code;
}

int16_t TblDedupe(const ShortText& table, const std::vector<std::string>& order) {
  PGLastOp = "TblDedupe";
  const std::string t = SqlName(table);
  std::vector<CatalogueField> fields;
  if (int16_t code = ReadFields(t, fields)) return code;
  std::string orderBy;
  for (const std::string& f : order) orderBy += (orderBy.empty() ? "" : ",") + f;
  (void)Run("DROP TABLE IF EXISTS TMP_0");
  // The row id differs on every row: equal rows are equal in their fields.
  const std::string names = JoinNames(fields);
  const int16_t code = RewriteInTransaction(t, [&]() -> int16_t {
    if (int16_t c = Run("CREATE TEMPORARY TABLE TMP_0 AS SELECT DISTINCT " + names + " FROM " + t +
                        (orderBy.empty() ? "" : " ORDER BY " + orderBy)))
      return c;
    if (int16_t c = Run("TRUNCATE TABLE " + t)) return c;
    return Run("INSERT INTO " + t + " (" + names + ") SELECT * FROM TMP_0");
  });
  (void)Run("DROP TABLE IF EXISTS TMP_0");
  return code;
}

int16_t DbWipe() {
  PGLastOp = "DbWipe";
  PGResult res;
  if (int16_t code = PGRunQueryWithTup("SELECT DISTINCT NAZT FROM TABLES_LIST", res)) return code;
  int16_t code = 0;
  {
    ProgressBoxTen box("Trwa usuwanie wszystkich tablic bazy...[          ]"_mz, res.Rows());
    for (int r = 0; r < res.Rows() && code == 0; ++r) {
      const std::string name(res.Value(r, 0));
      // A table already gone is no reason to keep the rest.
      if (name.rfind("TMP_", 0) != 0) code = Run("DROP TABLE IF EXISTS " + name);
      box.Show(r + 1);
    }
  }
  return code != 0 ? code : Run("TRUNCATE TABLE TABLES_LIST");
}

int16_t TblFillNulls(const ShortText& table) {
  PGLastOp = "TblFillNulls";
  const std::string t = SqlName(table);
  std::vector<CatalogueField> fields;
  if (int16_t code = ReadFields(t, fields)) return code;
  return RewriteInTransaction(t, [&]() -> int16_t {
    for (const CatalogueField& f : fields) {
      const std::string value = FillValue(f.type);
      if (value.empty()) continue;  // NULL for NULL changes nothing
      if (int16_t c = Run("UPDATE " + t + " SET " + f.name + "=" + value + " WHERE " + f.name + " IS NULL")) return c;
    }
    return kPGOk;
  });
}

int16_t TblMax(const ShortText& table, const std::string& field, std::string& value) {
  PGLastOp = "TblMax";
  value.clear();
  PGResult res;
  if (int16_t code = PGRunQueryWithTup("SELECT MAX(" + field + ") FROM " + SqlName(table), res)) return code;
  value = std::string(res.Value(0, 0));
  return kPGOk;
}

int16_t TblMaxLen(const ShortText& table, const std::string& field, const std::string& where, int32_t& length) {
  PGLastOp = "TblMaxLen";
  length = 0;
  PGResult res;
  const std::string sql = "SELECT MAX(LENGTH(" + field + ")) FROM " + SqlName(table) +
                          (where.empty() ? "" : " WHERE " + where);
  if (int16_t code = PGRunQueryWithTup(sql, res)) return code;
  length = static_cast<int32_t>(std::atol(std::string(res.Value(0, 0)).c_str()));
  return kPGOk;
}

int16_t TblDeleteWhere(const ShortText& table, const std::vector<std::string>& conditions) {
  PGLastOp = "TblDeleteWhere";
  if (conditions.empty()) return kPGBadArgument;  // never the whole table by omission
  std::string where;
  for (const std::string& c : conditions) where += (where.empty() ? "" : " AND ") + c;
  const std::string t = SqlName(table);
  return RewriteInTransaction(t, [&] { return Run("DELETE FROM " + t + " WHERE " + where); });
}

int16_t TblFindLike(const ShortText& table, const std::string& field, const ShortText& text, bool& found,
                    std::string& rowId) {
  PGLastOp = "TblFindLike";
  found = false;
  rowId.clear();
  PGResult res;
  // The text's own % _ and \ are matched as themselves, not as wildcards.
  std::string pattern;
  const ShortText dbText = MazToDb(text);
  for (char c : dbText.View()) {
    if (c == '%' || c == '_' || c == '\\') pattern += '\\';
    pattern += c;
  }
  pattern = PGEscapeStr(pattern);
  if (int16_t code = PGRunQueryWithTup("SELECT * FROM " + SqlName(table) + " WHERE " + field + " LIKE '%" +
                                           pattern + "%' LIMIT 1",
                                       res))
    return code;
  found = res.Rows() > 0;
  if (found) rowId = std::string(res.Value(0, 0));
  return kPGOk;
}
