// The control mirrors: two process-wide slots, each owned by one open table,
// holding its (kind, number, name) rows in key order with the run of each kind.
#include "sqltable/pgcontrol.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgui.h"

namespace {

constexpr int kNameBytes = 15;

// Where the entries of one kind begin and end; the load's order makes every
// kind one run, so a question looks at its own kind's entries only.
struct KindRun {
  int32_t begin = 0;
  int32_t end = 0;
};

struct Slot {
  int16_t owner = 0;
  std::vector<PGControlEntry> entries;
  std::array<KindRun, 256> runs{};
};

std::array<Slot, kPGControlSlots + 1> gSlots;  // 1..2; 0 unused

// A slot whose owner closed without the hook (a shutdown that only cleared
// the handles) counts as free.
bool SlotFree(int s) {
  const int16_t owner = gSlots[s].owner;
  const PGTable* t = owner ? PGTableAt(owner) : nullptr;
  return !t || t->controlSlot != s;
}

void FreeSlot(int s) {
  gSlots[s].owner = 0;
  std::vector<PGControlEntry>().swap(gSlots[s].entries);
  gSlots[s].runs.fill(KindRun{});
}

void ReleaseTable(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t || t->controlSlot == 0) return;
  if (!SlotFree(t->controlSlot)) FreeSlot(t->controlSlot);
  t->controlSlot = 0;
  t->controlCount = -1;
}

int TakeFreeSlot(int16_t tbl) {
  PGHooks().releaseControlCache = ReleaseTable;  // closing the table frees its slot
  for (int s = 1; s <= kPGControlSlots; ++s) {
    if (!SlotFree(s)) continue;
    FreeSlot(s);
    gSlots[s].owner = tbl;
    return s;
  }
  return 0;
}

// From now on this table's questions go to the server.
void GiveUp(PGTable& t, const ShortText& why) {
  PGUiMessageBox(why, 0);
  if (t.controlSlot != 0) FreeSlot(t.controlSlot);
  t.controlSlot = 0;
  t.controlCount = -1;
  t.controlUse = false;
}

// The table's change counter; false when it cannot be read.
bool ReadCounter(const PGTable& t, int32_t& value) {
  PGResult res;
  if (PGRunQueryWithTup("SELECT il_zm FROM tables_list WHERE nazt='" + t.baseName.Str() + "' AND lp=1", res) != 0 ||
      res.Rows() < 1)
    return false;
  value = static_cast<int32_t>(std::atol(std::string(res.Value(0, 0)).c_str()));
  return true;
}

PGControlEntry MakeEntry(const PGResult& res, int r) {
  PGControlEntry e;
  const std::string_view kind = res.Value(r, 0);
  e.kind = kind.empty() ? ' ' : static_cast<char>(DbToMaz(static_cast<unsigned char>(kind[0])));
  e.number = static_cast<int32_t>(std::atol(std::string(res.Value(r, 1)).c_str()));
  const std::string_view name = res.Value(r, 2).substr(0, kNameBytes);
  std::memcpy(e.name, name.data(), name.size());
  DbToMazInPlace(e.name, name.size());
  return e;
}

void FillSlot(Slot& slot, const PGResult& res) {
  slot.entries.reserve(static_cast<std::size_t>(res.Rows()));
  for (int r = 0; r < res.Rows(); ++r) {
    const PGControlEntry e = MakeEntry(res, r);
    KindRun& run = slot.runs[static_cast<unsigned char>(e.kind)];
    if (run.end == 0) run.begin = static_cast<int32_t>(slot.entries.size());
    slot.entries.push_back(e);
    run.end = static_cast<int32_t>(slot.entries.size());
  }
}

std::string LoadQuery(const PGTable& t) {
  std::string keys;
  const int nKeys = t.nKeyFields > 0 ? t.nKeyFields : 3;
  for (int f = 1; f <= nKeys; ++f) keys += std::string(f > 1 ? "," : "") + t.fields[f].name.Str();
  return "SELECT " + t.fields[1].name.Str() + "," + t.fields[2].name.Str() + "," + t.fields[3].name.Str() +
         " FROM " + t.sqlName.Str() + " ORDER BY " + keys;
}

// Whether the mirror must be (re)loaded before it answers.
bool MirrorOutOfDate(PGTable& t) {
  if (t.controlCount < 0 || t.controlStale) return true;
  int32_t counter = 0;
  return t.isTemp ? false : !ReadCounter(t, counter) || counter != t.controlIlZm;
}

// The question asked of the server: true when no row matches.
bool AskServer(int16_t tbl, int16_t rec, char kind, int32_t number, const ShortText* name) {
  CheckDBError(PGRecBufEmpty(rec));
  CheckDBError(PGPutAlpha(rec, 1, ShortText(std::string_view(&kind, 1))));
  int16_t code = 0;
  if (name) {
    CheckDBError(PGPutAlpha(rec, 3, *name));
    code = PGSrchFlds(tbl, rec, "1,3", 0);
  } else {
    CheckDBError(PGPutLong(rec, 2, number));
    code = PGSrchKey(tbl, rec, 2, 0);
  }
  if (code == kPGRecordNotFound) return true;
  CheckDBError(code);
  return false;
}

bool SameName(const PGControlEntry& e, const ShortText& name) {
  const std::string_view asked = name.View().substr(0, kNameBytes);
  return std::string_view(e.name) == asked;
}

// A control table has the three fields; anything else is a fault of the caller.
bool UsableTable(int16_t tbl, PGTable*& t) {
  t = PGTableAt(tbl);
  if (!t) CheckDBError(kPGBadTableHandle);
  else if (t->nFields < 3) CheckDBError(kPGBadFieldHandle);
  return t && t->nFields >= 3;
}

bool Ask(char kind, int32_t number, const ShortText* name, int16_t tbl, int16_t rec) {
  PGTable* t = PGTableAt(tbl);
  if (!UsableTable(tbl, t)) return true;
  if (t->controlUse && MirrorOutOfDate(*t)) PGControlLoad(tbl);
  if (!t->controlUse) return AskServer(tbl, rec, kind, number, name);
  const Slot& slot = gSlots[t->controlSlot];
  const KindRun run = slot.runs[static_cast<unsigned char>(kind)];
  for (int32_t i = run.begin; i < run.end; ++i) {
    const PGControlEntry& e = slot.entries[static_cast<std::size_t>(i)];
    if (name ? SameName(e, *name) : e.number == number) return false;
  }
  return true;
}

}  // namespace

void PGControlLoad(int16_t tbl) {
  PGTable* t = nullptr;
  if (!UsableTable(tbl, t)) return;
  t->controlStale = false;
  if (t->controlSlot != 0) {  // the slot stays ours; only its entries go
    FreeSlot(t->controlSlot);
    gSlots[t->controlSlot].owner = tbl;
  }
  t->controlCount = -1;
  if (t->controlSlot == 0 && (t->controlSlot = TakeFreeSlot(tbl)) == 0)
    return GiveUp(*t, "Za mało tablic kontrolnych.@Program będzie kontynuował pracę z większym obciążeniem "
                      "serwera.@Zawiadom o tym serwis programu."_mz);
  // Read before the rows: a change published meanwhile makes the next question load again.
  if (!t->isTemp && !ReadCounter(*t, t->controlIlZm)) CheckDBError(kPGSqlFailed);
  int32_t rows = 0;
  CheckDBError(PGTblNRecs(tbl, rows));
  if (rows > kPGControlMaxEntries)
    return GiveUp(*t, "Przekroczenie cache tablicy kontrolnej.@Program będzie kontynuował pracę z większym "
                      "obciążeniem serwera.@Zawiadom o tym serwis programu."_mz);
  PGResult res;
  CheckDBError(PGRunQueryWithTup(LoadQuery(*t), res));
  FillSlot(gSlots[t->controlSlot], res);
  t->controlCount = static_cast<int32_t>(gSlots[t->controlSlot].entries.size());
}

bool PGControlHasNumber(char kind, int32_t number, int16_t tbl, int16_t rec) {
  return Ask(kind, number, nullptr, tbl, rec);
}

bool PGControlHasName(char kind, const ShortText& name, int16_t tbl, int16_t rec) {
  return Ask(kind, 0, &name, tbl, rec);
}

int16_t PGControlSlotOwner(int slot) {
  if (slot < 1 || slot > kPGControlSlots || SlotFree(slot)) return 0;
  return gSlots[slot].owner;
}
