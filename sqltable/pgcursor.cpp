// The cursor of a table: filter and order texts, declaring and refreshing the
// held scroll cursor (a view frozen into a snapshot table first), the change
// counter test, the global filter and the where clause.
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "sqltable/pgcatalog.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgui.h"

namespace {

// Above this many rows a refresh takes long enough for the user to be told.
constexpr int32_t kRefreshNoticeRows = 60000;

std::string SnapshotName(const PGTable& t) { return "tcur" + t.cursorName.Str(); }

// Closes the cursor and drops the snapshot table that stood in for a view.
int16_t CloseCursor(PGTable& t) {
  PGResult res;
  int16_t code = PGExecCur(res, "CLOSE " + t.cursorName.Str(), false);
  if (!t.savedName.Empty()) {
    if (PGExecCur(res, "DROP TABLE " + SnapshotName(t), false) != 0) code = kPGSqlFailed;
    t.sqlName = t.savedName;
    t.savedName.Clear();
  }
  t.cursorOpen = false;
  t.ownWrites.clear();
  return code == 0 ? kPGOk : kPGSqlFailed;
}

// Runs DECLARE (after freezing a view) and marks the fresh snapshot.
int16_t Declare(PGTable& t, const std::string& query) {
  PGResult res;
  if (PGExecCur(res, "DECLARE " + t.cursorName.Str() + " SCROLL CURSOR WITH HOLD FOR " + query, false) != 0)
    return kPGSqlFailed;
  t.cursorOpen = true;
  t.viewStale = false;
  t.posStale = true;
  t.rebuildCursor = false;
  t.cursorAt = 0;
  t.ownWrites.clear();  // the new snapshot holds them
  PGCacheClear(t);
  return kPGOk;
}

int16_t DeclareOverTable(PGTable& t) {
  if (t.viewActive) {
    // The cursor reads a frozen copy, so a long browse never re-runs the view.
    PGResult res;
    const std::string snap = SnapshotName(t);
    if (PGExecCur(res, "CREATE TEMPORARY TABLE " + snap + " AS SELECT * FROM " + t.viewName.Str(), false) != 0)
      return kPGSqlFailed;
    t.savedName = t.sqlName;
    t.sqlName = ShortText(snap);
  }
  return Declare(t, PGSelectAll(t) + t.sqlName.Str() + PGFilterText(t) + PGOrderText(t, false));
}

// Prepares the cursor for a new declaration: closes it when open.
int16_t PrepareDeclare(PGTable& t) {
  t.pendingSearch = false;
  if (t.cursorOpen) return CloseCursor(t);
  return kPGOk;
}

}  // namespace

// Every table of the layer has the row id as its first column, and a view
// exposes it first too: "*" is the row id followed by the fields.
std::string PGSelectAll(const PGTable&) { return "SELECT * FROM "; }

std::string PGFilterText(const PGTable& t) {
  const bool where = !t.whereClause.empty(), global = !t.globalFilter.empty();
  if (where && global) return " WHERE (" + t.whereClause + ") AND (" + t.globalFilter + ")";
  if (where) return " WHERE " + t.whereClause;
  if (global) return " WHERE " + t.globalFilter;
  return std::string();
}

std::vector<int> PGOrderColumns(const PGTable& t) {
  std::vector<int> cols;
  if (t.nKeyFields <= 0) return cols;
  if (t.indexHandle >= 1 && t.indexHandle <= kPGMaxFields) {
    cols.push_back(t.indexHandle);
  } else if (t.indexHandle >= kPGFirstComposite) {
    if (const PGCompositeIndex* d = PGKeyDescriptor(t.indexHandle))
      for (int16_t f : d->fieldNumbers) cols.push_back(f);
  }
  for (int f = 1; f <= t.nKeyFields; ++f) cols.push_back(f);
  return cols;
}

std::string PGOrderText(const PGTable& t, bool descending) {
  const char* dir = descending ? " DESC" : "";
  const std::vector<int> cols = PGOrderColumns(t);
  if (cols.empty()) return std::string(" ORDER BY OID") + dir;
  std::string out = " ORDER BY ";
  for (std::size_t i = 0; i < cols.size(); ++i) {
    if (i > 0) out += ',';
    if (cols[i] >= 1 && cols[i] <= t.nFields) out += t.fields[cols[i]].name.Str();
    out += dir;
  }
  return out;
}

void PGLoadCurrent(PGTable& t, const PGResult& res, int r) {
  const int n = std::min(res.Cols(), static_cast<int>(t.curValues.size()));
  for (int c = 0; c < n; ++c) t.curValues[c].assign(res.Value(r, c));
  PGApplyOwnWrite(t, t.curValues);
}

void PGApplyOwnWrite(const PGTable& t, std::vector<std::string>& values) {
  if (t.ownWrites.empty() || values.empty()) return;
  const auto written = t.ownWrites.find(values[0]);
  if (written == t.ownWrites.end()) return;
  const std::size_t n = std::min(values.size(), written->second.size());
  for (std::size_t c = 1; c < n; ++c) values[c].assign(written->second[c]);
}

void PGCacheClear(PGTable& t) {
  t.cacheOn = false;
  t.cacheCount = 0;
  t.cachePos = 0;
}

int16_t PGopC(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  if (t->cursorOpen && !t->rebuildCursor && !t->pendingSearch) return kPGOk;
  if (PrepareDeclare(*t) != 0) return kPGSqlFailed;
  if (t->rowCount > kRefreshNoticeRows) {
    PGUiNotice notice("Trwa odświeżanie widoku danych..."_mz);
    return DeclareOverTable(*t);
  }
  return DeclareOverTable(*t);
}

int16_t PGopCQ(int16_t tbl, const std::string& query) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  if (t->cursorOpen && !t->rebuildCursor && !t->pendingSearch) return kPGOk;
  if (PrepareDeclare(*t) != 0) return kPGSqlFailed;
  return Declare(*t, query);
}

bool PGOdswK(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return true;
  PGLastOp += " PGOdswK";
  if (t->cursorOpen && CloseCursor(*t) != 0) return true;
  return PGopC(tbl) != 0;
}

bool PGTblChanged(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t || t->isTemp) return false;
  PGResult res;
  if (PGRunSelect("SELECT il_zm FROM tables_list where nazt='" + t->sqlName.Str() + "' AND lp=1", res) != 0 ||
      res.Rows() < 1)
    return false;
  const int32_t seen = static_cast<int32_t>(std::atol(std::string(res.Value(0, 0)).c_str()));
  if (seen == t->ilZm) return false;
  t->ilZm = seen;
  return true;
}

void PGSetGlobalFilter(const ShortText& name, const std::string& condition) {
  if (!PGGlobalFilterTable.Empty()) {
    // A filter left on is a programming fault; the user is told to get out.
    for (int counter = 0; counter <= 4; counter += 2)
      PGUiMessageBox("Nie wyłączony filtr globalny.@Wyjdź natychmiast z programu.@["_mz +
                         TrimLeftAll(IntText(counter, 10), ' ') + "/6]",
                     2000);
    return;
  }
  PGGlobalFilterTable = name;
  PGGlobalFilterText = condition;
}

void PGClearGlobalFilter() {
  PGGlobalFilterTable.Clear();
  PGGlobalFilterText.clear();
}

int16_t PGTblWhereClauseSet(int16_t tbl, const std::string& condition) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  t->whereClause = condition;
  t->viewStale = t->posStale = t->rebuildCursor = true;
  return kPGOk;
}

int16_t PGTblWhereClauseDrop(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  t->whereClause.clear();
  t->viewStale = t->posStale = t->rebuildCursor = true;
  return kPGOk;
}
