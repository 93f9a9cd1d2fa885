// Indexes: the primary key, single-field and composite secondary indexes,
// the extended twins that keep positional counting fast, and the composite
// index descriptors.
#include <algorithm>

#include "sqltable/pgcatalog.h"
#include "sqltable/pgtable.h"

namespace {

constexpr int kDescriptorCount = kPGLastComposite - kPGFirstComposite + 1;
std::array<std::unique_ptr<PGCompositeIndex>, kDescriptorCount> gDescriptors;

std::unique_ptr<PGCompositeIndex>* DescriptorSlot(int handle) {
  if (handle < kPGFirstComposite || handle > kPGLastComposite) return nullptr;
  return &gDescriptors[static_cast<std::size_t>(handle - kPGFirstComposite)];
}

bool IsBlob(const PGCatalogueRow& row) {
  PGTypeInfo info;
  return PGParseType(ShortText(row.typp), false, info) && info.kind == PGKind::Blob;
}

int CountKeyFields(const std::vector<PGCatalogueRow>& rows) {
  return static_cast<int>(std::count_if(rows.begin(), rows.end(), [](const auto& r) { return r.key; }));
}

// Per-warehouse tables that are browsed by one column get a second index of
// that column and the key, so that counting rows before a key stays indexed.
bool WantsExtendedIndex(const ShortText& sqlName, int field, bool keyField) {
  if (keyField || sqlName.Copy(1, 5) != "DANE_" || sqlName == "DANE_NAGLOWKI") return false;
  const ShortText last8 = sqlName.Copy(sqlName.Length() - 7, 8);
  if (last8 == "NAGLOWKI" || last8 == "KASA____") return field == 4;
  if (last8 == "KAT_TOW_") return field != 20;
  return false;
}

int16_t AddPrimaryKey(const ShortText& name, const std::vector<PGCatalogueRow>& rows, int n,
                      const int16_t fields[]) {
  std::string list;
  for (int i = 0; i < n; ++i) {
    if (fields[i] < 1 || fields[i] > static_cast<int>(rows.size())) return kPGArgRange;
    if (IsBlob(rows[fields[i] - 1])) return kPGBlobKey;
    if (!list.empty()) list += ',';
    list += rows[fields[i] - 1].nazp.Str();
  }
  const std::string t = name.Str();
  // The oldest row of each key wins; later repeats are dropped without warning.
  if (PGRunStatement("DELETE FROM " + t + " WHERE OID NOT IN (SELECT MIN(OID) FROM " + t +
                     " GROUP BY " + list + ")") != 0)
    return kPGSqlFailed;
  if (PGRunStatement("ALTER TABLE " + t + " ADD PRIMARY KEY (" + list + ")") != 0)
    return kPGIndexNotCreated;
  if (PGRunStatement("UPDATE tables_list SET k='*' WHERE nazt='" + t + "' AND lp<=" + PGNum(n)) != 0)
    return kPGSqlFailed;
  return kPGOk;
}

const char* CreateIndexWord(int kind) {
  return (kind == 3 || kind == 4) ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
}

int16_t AddFieldIndex(const ShortText& name, const std::vector<PGCatalogueRow>& rows, int field,
                      int kind) {
  if (field < 1 || field > static_cast<int>(rows.size())) return kPGArgRange;
  const PGCatalogueRow& row = rows[field - 1];
  if (IsBlob(row)) return kPGBlobKey;
  const std::string t = name.Str(), f = row.nazp.Str();
  if (PGRunStatement(CreateIndexWord(kind) + t + "_" + f + " ON " + t + " (" + f + ")") != 0)
    return kPGIndexNotCreated;
  if (WantsExtendedIndex(name, field, row.key)) {
    const std::string keys = PGJoinFieldNames(rows, 1, CountKeyFields(rows));
    if (PGRunStatement("CREATE INDEX " + t + "_" + f + "_U ON " + t + " (" + f + "," + keys + ")") != 0)
      return kPGIndexNotCreated;
  }
  if (PGRunStatement("UPDATE tables_list SET i='*',typi=" + PGNum(kind) + " WHERE nazt='" + t +
                     "' AND lp=" + PGNum(field)) != 0)
    return kPGSqlFailed;
  return kPGOk;
}

int16_t AddCompositeIndex(const ShortText& name, const std::vector<PGCatalogueRow>& rows, int handle,
                          int kind) {
  const auto* slot = DescriptorSlot(handle);
  if (!slot || !*slot) return kPGBadArgument;
  const PGCompositeIndex& d = **slot;
  std::string fields, numbers;
  for (int16_t f : d.fieldNumbers) {
    if (f < 1 || f > static_cast<int>(rows.size())) return kPGBadArgument;
    if (IsBlob(rows[f - 1])) return kPGBlobKey;
    fields += (fields.empty() ? "" : ",") + rows[f - 1].nazp.Str();
    numbers += (numbers.empty() ? "" : ",") + PGNum(f);
  }
  const std::string t = name.Str(), ix = d.indexName.Str();
  if (PGRunStatement(CreateIndexWord(kind) + t + "_" + ix + " ON " + t + "(" + fields + ")") != 0)
    return kPGIndexNotCreated;
  if (PGRunStatement("UPDATE tables_list SET ci='" + ix + "',typci=" + PGNum(kind) + " WHERE nazt='" +
                     t + "' AND lp in (" + numbers + ")") != 0)
    return kPGSqlFailed;
  for (std::size_t i = 0; i < d.fieldNumbers.size(); ++i)
    if (PGRunStatement("UPDATE tables_list SET cilp=" + PGNum(static_cast<long long>(i) + 1) +
                       " WHERE nazt='" + t + "' AND lp=" + PGNum(d.fieldNumbers[i])) != 0)
      return kPGSqlFailed;
  return kPGOk;
}

int16_t DropIndex(const std::string& indexName) {
  return PGRunStatement("DROP INDEX " + indexName) == 0 ? kPGOk : kPGIndexNotFound;
}

// The extended twin exists only for some fields; its absence is no failure.
void DropExtendedTwin(const std::string& indexName) {
  (void)PGRunStatement("DROP INDEX IF EXISTS " + indexName + "_U");
}

int16_t DropAllIndexes(const ShortText& name, const std::vector<PGCatalogueRow>& rows) {
  const std::string t = name.Str();
  std::vector<PGName> composites;
  for (const PGCatalogueRow& row : rows) {
    if (row.indexed) {
      if (DropIndex(t + "_" + row.nazp.Str()) != 0) return kPGIndexNotFound;
      DropExtendedTwin(t + "_" + row.nazp.Str());
    }
    if (!row.ci.Empty() && std::find(composites.begin(), composites.end(), row.ci) == composites.end())
      composites.push_back(row.ci);
  }
  for (const PGName& ci : composites)
    if (DropIndex(t + "_" + ci.Str()) != 0) return kPGIndexNotFound;
  if (PGRunStatement("ALTER TABLE " + t + " DROP CONSTRAINT " + t + "_pkey") != 0) return kPGNoPrimaryKey;
  if (PGRunStatement("UPDATE tables_list SET k='',i='',ci='',cilp=0,typi=0,typci=0 WHERE nazt='" + t +
                     "'") != 0)
    return kPGSqlFailed;
  return kPGOk;
}

int16_t DropComposite(const ShortText& name, const std::vector<PGCatalogueRow>& rows, int handle) {
  const PGCompositeIndex* d = PGKeyDescriptor(handle);
  if (!d) return kPGCompositeNotFound;
  const bool known = std::any_of(rows.begin(), rows.end(), [&](const auto& r) { return r.ci == d->indexName; });
  if (!known) return kPGCompositeNotFound;
  const std::string t = name.Str(), ix = d->indexName.Str();
  if (DropIndex(t + "_" + ix) != 0) return kPGIndexNotFound;
  // typi, not typci, is cleared here: old rows depend on this order of updates.
  if (PGRunStatement("UPDATE tables_list SET ci='',cilp=0,typi=0 WHERE nazt='" + t + "' AND ci='" + ix +
                     "'") != 0)
    return kPGSqlFailed;
  return kPGOk;
}

bool SameFields(const PGCompositeIndex& d, int n, const int16_t fields[]) {
  if (static_cast<int>(d.fieldNumbers.size()) != n) return false;
  return std::equal(d.fieldNumbers.begin(), d.fieldNumbers.end(), fields);
}

}  // namespace

const PGCompositeIndex* PGKeyDescriptor(int indexHandle) {
  const auto* slot = DescriptorSlot(indexHandle);
  return slot ? slot->get() : nullptr;
}

void PGKeyRelease(int indexHandle) {
  if (auto* slot = DescriptorSlot(indexHandle)) slot->reset();
}

int16_t PGKeyMap(const ShortText& name, int nFields, const int16_t fields[], const PGName& indexName,
                 int& indexHandle) {
  PGLastOp = "PGKeyMap";
  indexHandle = 0;
  if (nFields < 1 || nFields > kPGMaxFields) return kPGArgRange;
  const ShortText table = PGSqlName(name);
  const PGName ixName = PGName(PGSqlName(ShortText(indexName)));
  std::vector<PGCatalogueRow> rows;
  if (PGReadCatalogue(table, rows) != 0) return kPGSqlFailed;
  for (int i = 0; i < nFields; ++i) {
    if (fields[i] < 1 || fields[i] > static_cast<int>(rows.size())) {
      PGLastOp += " col(" + PGNum(fields[i]) + ")";
      return kPGBadArgument;
    }
  }
  int free = 0;
  for (int h = kPGFirstComposite; h <= kPGLastComposite; ++h) {
    const PGCompositeIndex* d = PGKeyDescriptor(h);
    if (!d) {
      if (free == 0) free = h;
      continue;
    }
    if (PGSqlName(d->tablePath) != table || d->indexName != ixName) continue;
    if (!SameFields(*d, nFields, fields)) return kPGBadArgument;
    indexHandle = h;
    return kPGOk;
  }
  if (free == 0) return kPGBadArgument;
  auto d = std::make_unique<PGCompositeIndex>();
  d->indexName = ixName;
  d->tablePath = name;
  for (int i = 0; i < nFields; ++i) {
    d->fieldNumbers.push_back(fields[i]);
    d->fieldNames.push_back(rows[fields[i] - 1].nazp);
  }
  *DescriptorSlot(free) = std::move(d);
  indexHandle = free;
  return kPGOk;
}

int16_t PGKeyAdd(const ShortText& name, int nFields, const int16_t fields[], int kind) {
  PGLastOp = "PGKeyAdd";
  if (nFields < 1) return kPGArgRange;
  const ShortText table = PGSqlName(name);
  std::vector<PGCatalogueRow> rows;
  if (PGReadCatalogue(table, rows) != 0) return kPGSqlFailed;
  if (rows.empty()) return kPGTableNotFound;
  if (kind == 0) return AddPrimaryKey(table, rows, nFields, fields);
  if (CountKeyFields(rows) == 0) return kPGNoPrimaryKey;
  if (fields[0] <= kPGMaxFields) return AddFieldIndex(table, rows, fields[0], kind);
  return AddCompositeIndex(table, rows, fields[0], kind);
}

int16_t PGKeyDrop(const ShortText& name, int indexHandle) {
  PGLastOp = "PGKeyDrop";
  const ShortText table = PGSqlName(name);
  std::vector<PGCatalogueRow> rows;
  if (PGReadCatalogue(table, rows) != 0) return kPGSqlFailed;
  if (rows.empty()) return kPGTableNotFound;
  if (indexHandle == 0) return DropAllIndexes(table, rows);
  if (indexHandle >= kPGFirstComposite) return DropComposite(table, rows, indexHandle);
  if (indexHandle < 0 || indexHandle > static_cast<int>(rows.size())) return kPGIndexNotFound;
  const std::string t = table.Str(), f = rows[indexHandle - 1].nazp.Str();
  if (DropIndex(t + "_" + f) != 0) return kPGIndexNotFound;
  DropExtendedTwin(t + "_" + f);
  if (PGRunStatement("UPDATE tables_list SET i='',typi=0 WHERE nazt='" + t + "' AND lp=" +
                     PGNum(indexHandle)) != 0)
    return kPGSqlFailed;
  return kPGOk;
}
