// Structure operations over whole tables: clone with indexes, rename, views,
// type changes and names for temporary tables.
#include <algorithm>

#include "sqltable/pgcatalog.h"
#include "sqltable/pgtable.h"

namespace {

// Closes the table handle when the scope ends.
class OpenedTable {
 public:
  explicit OpenedTable(int16_t handle) : handle_(handle) {}
  ~OpenedTable() {
    if (handle_) (void)PGTblClose(handle_);
  }
  OpenedTable(const OpenedTable&) = delete;
  OpenedTable& operator=(const OpenedTable&) = delete;

 private:
  int16_t handle_;
};

int16_t CloneCompositeIndexes(const PGTable& src, const ShortText& target) {
  std::vector<PGName> done;
  for (int f = 1; f <= src.nFields; ++f) {
    const PGName ci = src.fields[f].ci;
    if (ci.Empty() || std::find(done.begin(), done.end(), ci) != done.end()) continue;
    done.push_back(ci);
    std::vector<std::pair<int16_t, int16_t>> members;  // position in the index, field
    for (int g = 1; g <= src.nFields; ++g)
      if (src.fields[g].ci == ci) members.emplace_back(src.fields[g].cilp, static_cast<int16_t>(g));
    std::sort(members.begin(), members.end());
    std::vector<int16_t> numbers;
    for (const auto& m : members) numbers.push_back(m.second);
    int handle = 0;
    int16_t code = PGKeyMap(target, static_cast<int>(numbers.size()), numbers.data(), ci, handle);
    const int16_t fields[1] = {static_cast<int16_t>(handle)};
    if (code == 0) code = PGKeyAdd(target, 1, fields, src.fields[f].typci);
    PGKeyRelease(handle);
    if (code != 0) return code;
  }
  return kPGOk;
}

int16_t CloneIndexes(const PGTable& src, const ShortText& target) {
  if (src.nKeyFields > 0) {
    std::vector<int16_t> keys;
    for (int f = 1; f <= src.nKeyFields; ++f) keys.push_back(static_cast<int16_t>(f));
    if (int16_t code = PGKeyAdd(target, src.nKeyFields, keys.data(), 0)) return code;
  }
  for (int f = 1; f <= src.nFields; ++f) {
    if (!src.fields[f].indexed) continue;
    const int16_t field[1] = {static_cast<int16_t>(f)};
    if (int16_t code = PGKeyAdd(target, 1, field, 1)) return code;
  }
  return CloneCompositeIndexes(src, target);
}

int16_t RenameIndex(const std::string& from, const std::string& to, bool ifExists = false) {
  const std::string sql =
      std::string("ALTER INDEX ") + (ifExists ? "IF EXISTS " : "") + from + " RENAME TO " + to;
  return PGRunStatement(sql) == 0 ? kPGOk : kPGSqlFailed;
}

int16_t RenameIndexes(const std::string& o, const std::string& n, const std::vector<PGCatalogueRow>& rows) {
  if (RenameIndex(o + "_oidindeks", n + "_oidindeks", true) != 0) return kPGSqlFailed;
  const bool hasKey = std::any_of(rows.begin(), rows.end(), [](const auto& r) { return r.key; });
  if (hasKey && RenameIndex(o + "_pkey", n + "_pkey") != 0) return kPGSqlFailed;
  std::vector<PGName> composites;
  for (const PGCatalogueRow& row : rows) {
    const std::string f = row.nazp.Str();
    if (row.indexed) {
      if (RenameIndex(o + "_" + f, n + "_" + f) != 0) return kPGSqlFailed;
      if (RenameIndex(o + "_" + f + "_U", n + "_" + f + "_U", true) != 0) return kPGSqlFailed;
    }
    if (!row.ci.Empty() && std::find(composites.begin(), composites.end(), row.ci) == composites.end())
      composites.push_back(row.ci);
  }
  for (const PGName& ci : composites)
    if (RenameIndex(o + "_" + ci.Str(), n + "_" + ci.Str()) != 0) return kPGSqlFailed;
  return kPGOk;
}

}  // namespace

int16_t PGTblCloneIdx(const ShortText& source, const ShortText& target) {
  PGLastOp = "PGTblCloneIdx";
  bool exists = false;
  (void)PGTblExist(target, exists);
  if (exists)
    if (int16_t code = PGTblDelete(target)) return code;
  int16_t handle = 0;
  if (int16_t code = PGTblOpen(source, handle, 0)) return code;
  OpenedTable closer(handle);
  const PGTable& src = *PGTableAt(handle);
  std::vector<PGName> names, types;
  for (int f = 1; f <= src.nFields; ++f) {
    names.push_back(src.fields[f].name);
    types.push_back(src.fields[f].type);
  }
  if (int16_t code = PGTblCreate(target, src.nFields, names.data(), types.data())) return code;
  return CloneIndexes(src, target);
}

int16_t PGTblRename(const ShortText& oldName, const ShortText& newName) {
  PGLastOp = "PGTblRename";
  const std::string o = PGSqlName(oldName).Str(), n = PGSqlName(newName).Str();
  std::vector<PGCatalogueRow> rows;
  if (PGReadCatalogue(ShortText(o), rows) != 0) return kPGSqlFailed;
  if (std::any_of(rows.begin(), rows.end(), [](const auto& r) { return r.temp; })) {
    // A temporary table cannot be renamed on the server side of another session.
    PGLastOp = "PGTblRename-Copy";
    PGNextTblTemp = true;
    if (int16_t code = PGTblCopy(oldName, newName)) return code;
    return PGTblDelete(oldName);
  }
  if (PGRunStatement("ALTER TABLE " + o + " RENAME TO " + n) != 0) return kPGSqlFailed;
  if (int16_t code = RenameIndexes(o, n, rows)) return code;
  if (PGRunStatement("UPDATE tables_list set nazt='" + n + "' WHERE nazt='" + o + "'") != 0)
    return kPGSqlFailed;
  return kPGOk;
}

int16_t PGDefNameTmpTable(ShortText& name) {
  PGLastOp = "PGDefNameTmpTable";
  name.Clear();
  PGResult res;
  if (PGRunSelect("SELECT CURRENT_TIMESTAMP", res) != 0 || res.Rows() < 1) return kPGSqlFailed;
  name = "TMP_";
  for (char c : res.Value(0, 0))
    if (c >= '0' && c <= '9') name += c;
  return kPGOk;
}

int16_t PGTblViewSet(int16_t handle, const std::string& query) {
  PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGTblViewSet";
  if (t->viewActive && PGRunStatement("DROP VIEW " + t->viewName.Str()) != 0) return kPGSqlFailed;
  t->viewActive = false;
  const ShortText view = "V" + t->baseName;
  std::string sql = "CREATE TEMPORARY VIEW " + view.Str() + "(OID";
  for (int f = 1; f <= t->nFields; ++f) sql += "," + t->fields[f].name.Str();
  sql += ") AS " + query;
  if (PGRunStatement(sql) != 0) {
    t->sqlName = t->baseName;
    return kPGSqlFailed;
  }
  t->viewName = view;
  t->sqlName = view;
  t->viewActive = true;
  t->viewStale = t->posStale = t->rebuildCursor = true;
  return kPGOk;
}

int16_t PGFldSetType(const ShortText& name, int field, const ShortText& newType) {
  PGLastOp = "PGFldSetType";
  const std::string t = PGSqlName(name).Str();
  std::vector<PGCatalogueRow> rows;
  if (PGReadCatalogue(ShortText(t), rows) != 0) return kPGSqlFailed;
  if (field < 1 || field > static_cast<int>(rows.size())) return kPGBadFieldHandle;
  PGTypeInfo info;
  // An unknown type still goes to the server, which refuses the statement.
  const std::string sqlType = PGParseType(newType, true, info) ? info.sqlType : "niepopr_typ!";
  const std::string f = rows[field - 1].nazp.Str();
  if (PGRunStatement("ALTER TABLE " + t + " ALTER COLUMN " + f + " TYPE " + sqlType) != 0) return kPGSqlFailed;
  if (PGRunStatement("UPDATE tables_list set typp='" + newType.Str() + "' where nazt='" + t + "' and lp=" +
                     PGNum(field)) != 0)
    return kPGSqlFailed;
  return kPGOk;
}
