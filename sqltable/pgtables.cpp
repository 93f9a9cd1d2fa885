// The handle table of open tables: open, close, the facts of an open table,
// and the shutdown of the whole layer.
#include <cstdlib>

#include "base/codepage.h"
#include "sqltable/pgcatalog.h"
#include "sqltable/pgtable.h"

bool PGNextTblTemp = false;
ShortText PGGlobalFilterTable;
std::string PGGlobalFilterText;

namespace {

std::array<std::unique_ptr<PGTable>, kPGMaxTables + 1> gTables;
int gOpenCount = 0;

int FreeSlot() {
  for (int h = 1; h <= kPGMaxTables; ++h)
    if (!gTables[h]) return h;
  return 0;
}

int ToInt(std::string_view text) { return std::atoi(std::string(text).c_str()); }

PGCatalogueRow RowAt(const PGResult& res, int r) {
  PGCatalogueRow row;
  row.nazp = PGName(res.Value(r, 1));
  row.typp = PGName(res.Value(r, 2));
  row.key = res.Value(r, 3) == "*";
  row.indexed = res.Value(r, 4) == "*";
  row.ci = PGName(res.Value(r, 5));
  row.temp = res.Value(r, 6) == "*";
  row.lp = ToInt(res.Value(r, 8));
  row.cilp = ToInt(res.Value(r, 9));
  row.typi = ToInt(res.Value(r, 11));
  row.typci = ToInt(res.Value(r, 12));
  row.ilZm = ToInt(res.Value(r, 13));
  return row;
}

// Fills the field arrays and value slots from the catalogue rows; false on an
// unknown type letter.
bool FillFields(PGTable& t, const std::vector<PGCatalogueRow>& rows) {
  t.nFields = static_cast<int16_t>(rows.size());
  t.fields.assign(rows.size() + 1, PGField{});
  t.curValues.assign(rows.size() + 1, std::string());
  t.curValues[0].reserve(22);
  if (!rows.empty()) t.ilZm = rows[0].ilZm;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const PGCatalogueRow& row = rows[i];
    PGTypeInfo info;
    if (!PGParseType(ShortText(row.typp), false, info)) return false;
    PGField& f = t.fields[i + 1];
    f.name = row.nazp;
    f.type = row.typp;
    f.typi = static_cast<int16_t>(row.typi);
    f.indexed = row.indexed;
    f.ci = row.ci;
    f.cilp = static_cast<int16_t>(row.cilp);
    f.typci = static_cast<int16_t>(row.typci);
    f.bufSize = info.bufSize;
    f.textLen = info.letter == 'A' ? info.size : 0;
    f.kind = info.kind;
    t.curValues[i + 1].reserve(static_cast<std::size_t>(info.bufSize));
    if (row.temp) t.isTemp = true;
    if (row.key) ++t.nKeyFields;
  }
  return true;
}

// Statements that end a table's life on the server side; false if one failed.
bool ReleaseServerState(PGTable& t) {
  bool ok = true;
  if (t.cursorOpen) {
    PGLastOp += " CLOSE CUR.";
    PGResult res;
    ok = PGExecCur(res, "CLOSE " + t.cursorName.Str(), false) == 0 && ok;
    if (!t.savedName.Empty()) {
      ok = PGExecCur(res, "DROP TABLE " + t.sqlName.Str(), false) == 0 && ok;
      t.sqlName = t.savedName;
      t.savedName.Clear();
    }
    t.cursorOpen = false;
  }
  if (t.viewActive) {
    ok = PGRunStatement("DROP VIEW " + t.viewName.Str()) == 0 && ok;
    t.viewActive = false;
  }
  return PGBumpChangeCounter(t) == 0 && ok;
}

}  // namespace

PGTableHooks& PGHooks() {
  static PGTableHooks hooks;
  return hooks;
}

int16_t PGRunStatement(const std::string& sql) {
  PGResult res;
  return PGExec(res, sql, false);
}

int16_t PGRunSelect(const std::string& sql, PGResult& out) { return PGExec(out, sql, true); }

std::string PGNum(long long value) { return std::to_string(value); }

int16_t PGReadCatalogue(const ShortText& sqlName, std::vector<PGCatalogueRow>& rows) {
  rows.clear();
  PGResult res;
  if (PGRunSelect("SELECT * FROM tables_list WHERE nazt='" + sqlName.Str() + "' ORDER BY lp", res) != 0)
    return kPGSqlFailed;
  for (int r = 0; r < res.Rows(); ++r) rows.push_back(RowAt(res, r));
  return kPGOk;
}

std::string PGJoinFieldNames(const std::vector<PGCatalogueRow>& rows, int from, int to) {
  std::string out;
  for (int f = from; f <= to && f <= static_cast<int>(rows.size()); ++f) {
    if (!out.empty()) out += ',';
    out += rows[f - 1].nazp.Str();
  }
  return out;
}

PGTable* PGTableAt(int handle) {
  if (handle < 1 || handle > kPGMaxTables) return nullptr;
  return gTables[handle].get();
}

int PGOpenTableCount() { return gOpenCount; }

int16_t PGTblOpen(const ShortText& name, int16_t& handle, int indexHandle, int /*flag*/) {
  PGLastOp = "PGTblOpen";
  handle = 0;
  const int slot = gOpenCount >= kPGMaxTables ? 0 : FreeSlot();
  if (slot == 0) return kPGNoTableHandle;
  auto t = std::make_unique<PGTable>();
  t->handle = static_cast<int16_t>(slot);
  t->name = name;
  t->sqlName = t->baseName = PGSqlName(name);
  t->cursorName = ShortText("c" + std::to_string(slot));
  t->indexHandle = indexHandle;
  if (!PGGlobalFilterTable.Empty() && name == PGGlobalFilterTable) t->globalFilter = PGGlobalFilterText;
  std::vector<PGCatalogueRow> rows;
  if (PGReadCatalogue(t->baseName, rows) != 0) return kPGSqlFailed;
  if (!FillFields(*t, rows)) return kPGBadArgument;
  gTables[slot] = std::move(t);
  ++gOpenCount;
  handle = static_cast<int16_t>(slot);
  return kPGOk;
}

int16_t PGTblClose(int16_t handle) {
  PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  PGLastOp = "PGTblClose";
  if (PGHooks().releaseControlCache) PGHooks().releaseControlCache(handle);
  const bool ok = ReleaseServerState(*t);
  gTables[handle].reset();
  --gOpenCount;
  if (PGHooks().closeRecordBuffersOf) PGHooks().closeRecordBuffersOf(handle);
  return ok ? kPGOk : kPGBadTableHandle;
}

int16_t PGBumpChangeCounter(PGTable& table) {
  if (table.isTemp || !table.changedByUs) return kPGOk;
  table.changedByUs = false;
  return PGRunStatement("UPDATE tables_list set il_zm=il_zm+1 where nazt='" + table.baseName.Str() +
                        "' AND lp=1") == 0
             ? kPGOk
             : kPGSqlFailed;
}

void PGShutdownTables(int mode) {
  if (mode < 2 && PGHooks().clearLockRegister) PGHooks().clearLockRegister();
  if (mode > 0) {
    for (int h = 1; h <= kPGMaxTables; ++h)
      if (gTables[h]) (void)PGTblClose(static_cast<int16_t>(h));
    for (int i = kPGFirstComposite; i <= kPGLastComposite; ++i) PGKeyRelease(i);
  }
  if (PGHooks().freeAllRecordBuffers) PGHooks().freeAllRecordBuffers();
  for (auto& slot : gTables) slot.reset();
  gOpenCount = 0;
}

int16_t PGTblName(int16_t handle, ShortText& name) {
  const PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  name = t->name;
  return kPGOk;
}

int16_t PGRecNFlds(int16_t handle, int16_t& count) {
  const PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  count = t->nFields;
  return kPGOk;
}

int16_t PGKeyNFlds(int16_t handle, int16_t& count) {
  const PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  count = t->nKeyFields;
  return kPGOk;
}

int16_t PGFldHandle(int16_t handle, const ShortText& fieldName, int16_t& field) {
  const PGTable* t = PGTableAt(handle);
  field = 0;
  if (!t) return kPGBadTableHandle;
  const ShortText wanted = MazUpCaseText(fieldName);
  for (int f = 1; f <= t->nFields; ++f) {
    if (MazUpCaseText(ShortText(t->fields[f].name)) == wanted) {
      field = static_cast<int16_t>(f);
      return kPGOk;
    }
  }
  return kPGBadFieldName;
}

int16_t PGFldType(int16_t handle, int field, ShortText& type) {
  const PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  if (field < 1 || field > t->nFields) return kPGBadFieldHandle;
  type = ShortText(t->fields[field].type);
  return kPGOk;
}

int16_t PGFldName(int16_t handle, int field, ShortText& fieldName) {
  const PGTable* t = PGTableAt(handle);
  if (!t) return kPGBadTableHandle;
  if (field < 1 || field > t->nFields) return kPGBadFieldHandle;
  fieldName = ShortText(t->fields[field].name);
  return kPGOk;
}
