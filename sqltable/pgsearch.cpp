// Key and field searches: each a single indexed "LIMIT 1" select, with the
// closest walk of mode 2 and the next-after-current walk of mode 1. A search
// places the table on a row that the cursor does not know; the cursor is
// re-aligned only when someone moves from there.
#include <cstdlib>
#include <utility>

#include "sqltable/pgcatalog.h"
#include "sqltable/pgnav.h"

namespace {

struct Search {
  PGTable* t = nullptr;
  const PGRecordBuffer* buf = nullptr;
  std::vector<int> fields;  // compared fields, in order
  bool withWhere = false;   // the where clause applies too
  bool logFailure = false;  // a failed statement goes to the log
};

// "SELECT ... WHERE " and the filters that apply to a search.
std::string Head(const Search& s) {
  const PGTable& t = *s.t;
  std::string out = PGSelectAll(t) + t.sqlName.Str() + " WHERE ";
  if (s.withWhere && !t.whereClause.empty()) out += "(" + t.whereClause + ") AND ";
  if (!t.globalFilter.empty()) out += "(" + t.globalFilter + ") AND ";
  return out;
}

// f1=v1 AND ... for the first count compared fields, then the last one with op.
std::string Compare(const Search& s, int count, const char* lastOp) {
  std::string out;
  for (int i = 0; i < count; ++i) {
    if (i > 0) out += " AND ";
    const int f = s.fields[static_cast<std::size_t>(i)];
    out += PGCondition(s.t->fields[f].name.View(), s.t->fields[f].kind, s.buf->fields[f].value,
                       i + 1 == count ? lastOp : "=");
  }
  return out;
}

// Runs a select; 0 with rows in res, or 118.
int16_t Select(const Search& s, const std::string& sql, PGResult& res) {
  if (PGRunSelect(sql, res) == 0) return kPGOk;
  if (s.logFailure) PGLogBadQuery(sql);
  return kPGSqlFailed;
}

void Place(PGTable& t, const PGResult& res) {
  PGLoadCurrent(t, res, 0);
  t.positioned = t.viewStale = t.posStale = true;
  t.curRec = t.nocPos = 0;
}

// Runs one candidate select; found tells whether a row came and was placed.
int16_t TryPlace(const Search& s, const std::string& sql, bool& found) {
  PGResult res;
  if (int16_t code = Select(s, sql, res)) return code;
  found = res.Rows() > 0;
  if (found) Place(*s.t, res);
  return kPGOk;
}

// Mode 2 without an exact hit: the next higher row, else the highest below.
int16_t Closest(const Search& s, const std::string& head) {
  const int n = static_cast<int>(s.fields.size());
  bool found = false;
  for (int pass = 0; pass < 2 && !found; ++pass) {
    const char* op = pass == 0 ? ">" : "<";
    for (int i = n; i >= 1 && !found; --i)
      if (int16_t code = TryPlace(s, head + Compare(s, i, op) + PGOrderText(*s.t, pass == 1) + " LIMIT 1", found))
        return code;
  }
  if (found) s.t->pendingSearch = true;
  return kPGRecordNotFound;
}

// Mode 1: the first matching row after the current one in the order.
int16_t NextAfterCurrent(const Search& s, const std::string& equal) {
  PGTable& t = *s.t;
  const std::string asc = PGOrderText(t, false) + " LIMIT 1";
  bool found = false;
  const std::vector<int> cols = PGOrderColumns(t);
  if (cols.empty()) {
    if (int16_t code = TryPlace(s, equal + " AND OID > " + PGValueLiteral(PGKind::Number, t.curValues[0]) + asc, found))
      return code;
    return found ? kPGOk : kPGRecordNotFound;
  }
  // The current record's values are taken before any row replaces them.
  std::vector<std::pair<std::string, std::string>> current;  // column "=" value, column ">" value
  for (int c : cols) {
    const PGField& f = t.fields[c];
    current.emplace_back(PGCondition(f.name.View(), f.kind, t.curValues[c], "="),
                         PGCondition(f.name.View(), f.kind, t.curValues[c], ">"));
  }
  for (int i = static_cast<int>(cols.size()); i >= 1 && !found; --i) {
    std::string sql = equal;
    for (int j = 0; j < i; ++j) {
      const auto& [same, after] = current[static_cast<std::size_t>(j)];
      sql += " AND " + (j + 1 == i ? after : same);
    }
    if (int16_t code = TryPlace(s, sql + asc, found)) return code;
  }
  return found ? kPGOk : kPGRecordNotFound;
}

int16_t RunModes(const Search& s, int mode) {
  const std::string head = Head(s);
  const std::string equal = head + Compare(s, static_cast<int>(s.fields.size()), "=");
  if (mode == 1) return NextAfterCurrent(s, equal);
  bool found = false;
  if (int16_t code = TryPlace(s, equal + PGOrderText(*s.t, false) + " LIMIT 1", found)) return code;
  if (found) return kPGOk;
  return mode == 2 ? Closest(s, head) : kPGRecordNotFound;
}

// Checks, the first row for mode 1, and the share lock of modes 1 and 2.
int16_t Run(int16_t tbl, Search& s, int mode) {
  for (int f : s.fields)
    if (s.t->fields[f].kind == PGKind::Blob) return kPGBlobSearch;
  if (mode == 1 && !s.t->positioned)
    if (int16_t code = PGRecFirst(tbl)) return code;
  const bool lock = (mode == 1 || mode == 2) &&
                    (!PGHooks().lockKindOf || PGHooks().lockKindOf(s.t->baseName) == 0);
  if (lock) {
    (void)PGTransBegin();
    if (PGRunStatement("LOCK TABLE " + s.t->baseName.Str() + " IN SHARE MODE") != 0) {
      (void)PGTransCommit();
      return kPGSqlFailed;
    }
  }
  const int16_t code = RunModes(s, mode);
  if (lock) (void)PGTransCommit();
  return code;
}

// Table, buffer and field checks shared by every search.
int16_t Prepare(int16_t tbl, int16_t rec, Search& s) {
  s.t = PGTableAt(tbl);
  if (!s.t) return kPGBadTableHandle;
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheck(rec, buf)) return code;
  s.buf = buf;
  if (s.t->indexHandle >= kPGFirstComposite && !PGKeyDescriptor(s.t->indexHandle)) return kPGArgRange;
  return kPGOk;
}

bool FieldsFit(const Search& s) {
  for (int f : s.fields)
    if (f < 1 || f > s.t->nFields || f > s.buf->nFields) return false;
  return !s.fields.empty();
}

}  // namespace

int16_t PGSrchKey(int16_t tbl, int16_t rec, int nFields, int mode) {
  PGLastOp = "PGSrchKey";
  Search s;
  if (int16_t code = Prepare(tbl, rec, s)) return code;
  if (nFields < 1 || nFields > kPGMaxFields || nFields > s.t->nFields) return kPGArgRange;
  for (int f = 1; f <= nFields; ++f) s.fields.push_back(f);
  if (!FieldsFit(s)) return kPGArgRange;
  return Run(tbl, s, mode);
}

int16_t PGSrchFld(int16_t tbl, int16_t rec, int fieldOrIndex, int mode) {
  PGLastOp = "PGSrchFld";
  Search s;
  const int16_t code = Prepare(tbl, rec, s);
  if (code != 0) return code;
  s.withWhere = s.t->useWhereInSearch;
  s.t->useWhereInSearch = false;
  s.logFailure = true;
  if (fieldOrIndex >= kPGFirstComposite) {
    const PGCompositeIndex* d = PGKeyDescriptor(fieldOrIndex);
    if (!d) return kPGArgRange;
    for (int16_t f : d->fieldNumbers) s.fields.push_back(f);
  } else {
    s.fields.push_back(fieldOrIndex);
  }
  if (!FieldsFit(s)) return kPGArgRange;
  return Run(tbl, s, mode);
}

int16_t PGSrchFlds(int16_t tbl, int16_t rec, const ShortText& fieldList, int mode) {
  PGLastOp = "PGSrchFlds";
  Search s;
  if (int16_t code = Prepare(tbl, rec, s)) return code;
  s.withWhere = s.t->useWhereInSearch;
  s.t->useWhereInSearch = false;
  s.logFailure = true;
  const std::string list = fieldList.Str();
  std::size_t start = 0;
  while (start <= list.size()) {
    const std::size_t comma = std::min(list.find(',', start), list.size());
    const std::string item = list.substr(start, comma - start);
    if (item.find_first_not_of(' ') != std::string::npos) {
      char* end = nullptr;
      const long f = std::strtol(item.c_str(), &end, 10);
      if (end == item.c_str() || std::string_view(end).find_first_not_of(' ') != std::string_view::npos)
        return kPGArgRange;
      s.fields.push_back(static_cast<int>(f));
    }
    start = comma + 1;
  }
  if (s.fields.empty()) return kPGBadFieldName;
  if (!FieldsFit(s)) return kPGArgRange;
  return Run(tbl, s, mode);
}

int16_t PGSrchKeyFull(int16_t tbl, int16_t rec) {
  PGLastOp = "PGSrchKeyFull";
  Search s;
  if (int16_t code = Prepare(tbl, rec, s)) return code;
  if (s.t->nKeyFields < 1) return kPGNoPrimaryKey;
  for (int f = 1; f <= s.t->nKeyFields; ++f) s.fields.push_back(f);
  if (!FieldsFit(s)) return kPGArgRange;
  bool found = false;
  if (int16_t code = TryPlace(s, Head(s) + Compare(s, static_cast<int>(s.fields.size()), "="), found)) return code;
  return found ? kPGOk : kPGRecordNotFound;
}

int16_t PGSrchWithFilter(int16_t tbl) {
  PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  t->useWhereInSearch = true;
  return kPGOk;
}
