// The catalogues of contractors without screens: rules, reads and the
// locked writes of add, store and delete.
#include "master/contractors.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "master/contractors_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgwrite.h"

using contractors_detail::CatalogueTable;
using contractors_detail::Checked;

namespace {

// Configuration lines of the proposed number ranges.
constexpr int kCustomerRangeLine = 34;
constexpr int kSupplierRangeLine = 35;
constexpr int kWarehouseRangeLine = 74;

// The number read from a part of the range, or fallback when it is no number in 1..max.
int32_t RangeBound(const ShortText& part, int32_t fallback) {
  const ShortText digits = TrimBoth(TrimRightAll(part, ' '), ' ');
  if (digits.Empty() || NumericCheck(digits, true) != 0 || digits.At(1) == '-') return fallback;
  const long long value = std::stoll(digits.Str().substr(0, 12));
  return value >= 1 && value <= kContractorMaxNumber ? static_cast<int32_t>(value) : fallback;
}

// Where a warehouse's documents name other contractors and which letters of
// dok_plat column 3 name each catalogue.
const char* KindLetters(ContractorKind kind) {
  switch (kind) {
    case ContractorKind::kCustomer: return "'O','W'";
    case ContractorKind::kSupplier: return "'d','w'";
    case ContractorKind::kWarehouse: break;
  }
  return "";
}

int16_t TableExists(const ShortText& path, bool& exists) { return PGTblExist(path, exists); }

// Whether the query gives a row; 0 or the layer's code.
int16_t AnyRow(const std::string& sql, bool& any) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup(sql, res);
  any = code == 0 && res.Rows() > 0;
  return code;
}

// The numbers of the catalogue's contractors that the documents of one
// warehouse's tables name, as one SELECT of a column "nr"; empty when the
// warehouse has no document tables.
std::string NamedNumbersSql(ContractorKind kind, int32_t warehouse) {
  bool exists = false, cashExists = false, kindsExist = false;
  (void)TableExists(WarehouseTablePath(warehouse, "naglowki"), exists);
  if (!exists) return std::string();
  const std::string headers = PGSqlName(WarehouseTablePath(warehouse, "naglowki")).Str();
  if (kind == ContractorKind::kWarehouse) return "SELECT nr_magazynu_mm AS nr FROM " + headers;
  (void)TableExists(ShortText("dane\\dok_plat"), kindsExist);
  (void)TableExists(WarehouseTablePath(warehouse, "kasa____"), cashExists);
  std::string sql = "SELECT h.nr_kontrahenta AS nr FROM " + headers + " h";
  if (kindsExist)
    sql += " LEFT JOIN " + PGSqlName(ShortText("dane\\dok_plat")).Str() +
           " k ON k.typ_dok = h.typ_dok WHERE k.typ_dok IS NULL OR k.typ_kontrahenta IN (" + KindLetters(kind) + ")";
  if (cashExists)
    sql += " UNION ALL SELECT nr_kontrahenta FROM " + PGSqlName(WarehouseTablePath(warehouse, "kasa____")).Str() +
           " WHERE typ_kontrahenta IN (" + KindLetters(kind) + ")";
  return sql;
}

// Whether the documents of one warehouse's tables name the contractor.
int16_t NamedInWarehouse(ContractorKind kind, int32_t number, int32_t warehouse, bool& named) {
  named = false;
  const std::string sql = NamedNumbersSql(kind, warehouse);
  if (sql.empty()) return 0;
  return AnyRow("SELECT 1 FROM (" + sql + ") u WHERE nr = " + std::to_string(number) + " LIMIT 1", named);
}

// Whether a warehouse's own tables hold documents or stock.
int16_t WarehouseHasData(int32_t warehouse, bool& any) {
  any = false;
  for (const char* table : {"naglowki", "stany_mg", "kasa____"}) {
    bool exists = false;
    (void)TableExists(WarehouseTablePath(warehouse, table), exists);
    if (!exists) continue;
    bool empty = true;
    const int16_t code = PGTblIsEmpty(WarehouseTablePath(warehouse, table), empty);
    if (code != 0) return code;
    if (!empty) return any = true, 0;
  }
  return 0;
}

// The numbers of the warehouses in the catalogue.
int16_t WarehouseNumbers(std::vector<int32_t>& numbers) {
  PGResult res;
  const int16_t code =
      PGRunQueryWithTup("SELECT numer FROM " + PGSqlName(ContractorTablePath(ContractorKind::kWarehouse)).Str(), res);
  for (int r = 0; code == 0 && r < res.Rows(); ++r) numbers.push_back(std::stoi(std::string(res.Value(r, 0))));
  return code;
}

// The last number in the range that the catalogue holds, 0 when none.
int32_t LastNumberInRange(CatalogueTable& t, const NumberRange& range) {
  PGResult res;
  Checked(PGRunQueryWithTup("SELECT max(numer) FROM " + t.SqlName() + " WHERE numer BETWEEN " +
                                std::to_string(range.from) + " AND " + std::to_string(range.to),
                            res));
  const std::string_view v = res.Value(0, 0);
  return v.empty() ? 0 : std::stoi(std::string(v));
}

// Whether another row of the catalogue holds the same data.
bool IdenticalRowExists(CatalogueTable& t, const Contractor& c) {
  t.ForName(c);
  if (Checked(PGSrchKey(t.tbl(), t.rec(), 2, 0), kPGRecordNotFound) != 0) return false;
  for (;;) {
    Contractor other;
    Checked(t.Read(other));
    if (other[KontrahentCol::nazwa] != c[KontrahentCol::nazwa] ||
        other[KontrahentCol::nazwa_inne] != c[KontrahentCol::nazwa_inne])
      return false;
    if (SameContractorData(other, c)) return true;
    if (Checked(PGRecNext(t.tbl()), kPGEndOfTable) != 0) return false;
  }
}

}  // namespace

ShortText ContractorLinkPath(ContractorKind kind) {
  return ShortText(kind == ContractorKind::kSupplier ? "dane\\dost_mag" : "dane\\odb_mag_");
}

ShortText ContractorTablePath(ContractorKind kind) {
  switch (kind) {
    case ContractorKind::kWarehouse: return ShortText("dane\\magazyny");
    case ContractorKind::kSupplier: return ShortText("dane\\dostawcy");
    case ContractorKind::kCustomer: break;
  }
  return ShortText("dane\\odbiorcy");
}

ShortText ContractorKindGenitive(ContractorKind kind) {
  switch (kind) {
    case ContractorKind::kWarehouse: return ShortText("magazynu");
    case ContractorKind::kSupplier: return ShortText("dostawcy");
    case ContractorKind::kCustomer: break;
  }
  return ShortText("odbiorcy");
}

NumberRange ParseNumberRange(const ShortText& text) {
  NumberRange range;
  range.from = RangeBound(BeforeFirst(text, ','), 1);
  range.to = ContainsChar(',', text) ? RangeBound(AfterFirst(text, ','), kContractorMaxNumber) : kContractorMaxNumber;
  if (range.to < range.from) range.to = kContractorMaxNumber;
  return range;
}

int32_t NextContractorNumber(const NumberRange& range, int32_t lastInRange) {
  if (lastInRange < range.from) return range.from;
  if (lastInRange >= range.to || lastInRange >= kContractorMaxNumber) return 0;
  return lastInRange + 1;
}

bool SameContractorData(const Contractor& a, const Contractor& b) {
  for (int c = 1; c <= KontrahentCol::kCount; ++c)
    if (c != KontrahentCol::numer && c != KontrahentCol::rabat &&
        TrimRightAll(a.text[c], ' ') != TrimRightAll(b.text[c], ' '))
      return false;
  return a.discount == b.discount;
}

bool ContractorHasTaxId(const Contractor& c) {
  for (KontrahentCol::Column col : {KontrahentCol::nip, KontrahentCol::pesel, KontrahentCol::regon})
    if (!TrimRightAll(c[col], ' ').Empty()) return true;
  return false;
}

bool WarehouseIsSpecial(const Contractor& warehouse) {
  const ShortText& mark = warehouse[KontrahentCol::czy_podmiot_gosp];
  return mark.Length() != 1 || mark.At(1) != kOwnTablesMark;
}

int16_t ContractorTablesEnsure() {
  const char* paths[] = {"dane\\odbiorcy", "dane\\dostawcy", "dane\\magazyny", "dane\\odb_mag_", "dane\\dost_mag"};
  for (const char* p : paths) {
    const ShortText path(p);
    bool exists = false;
    (void)TableExists(path, exists);
    if (exists) continue;
    const TableDef& def = ShortText(p).Pos("_mag") > 0 ? kKontMagDef : kKontrahentDef;
    const int16_t code = CreateTableFrom(path, def);
    if (code != 0) return code;
  }
  return 0;
}

int16_t ContractorFind(ContractorKind kind, int32_t number, Contractor& out, bool& found) {
  CatalogueTable t(kind);
  found = false;
  if (t.code() != 0) return t.code();
  const int16_t code = t.SeekNumber(number);
  if (code == kPGRecordNotFound) return 0;
  if (code != 0) return code;
  found = true;
  return t.Read(out);
}

int16_t ContractorFindByRegistration(ContractorKind kind, const ShortText& key, Contractor& out, bool& found) {
  CatalogueTable t(kind);
  found = false;
  if (t.code() != 0) return t.code();
  int16_t code = PGPutAlpha(t.rec(), KontrahentCol::nr_rej, key);
  if (code == 0) code = PGSrchFld(t.tbl(), t.rec(), KontrahentCol::nr_rej, 0);
  if (code == kPGRecordNotFound) return 0;
  if (code != 0) return code;
  found = true;
  return t.Read(out);
}

int16_t ContractorInUse(ContractorKind kind, int32_t number, bool& inUse) {
  inUse = false;
  std::vector<int32_t> warehouses;
  int16_t code = WarehouseNumbers(warehouses);
  for (std::size_t i = 0; code == 0 && !inUse && i < warehouses.size(); ++i)
    code = NamedInWarehouse(kind, number, warehouses[i], inUse);
  if (code == 0 && !inUse && kind == ContractorKind::kWarehouse) code = WarehouseHasData(number, inUse);
  return code;
}

NumberRange ConfiguredNumberRange(ContractorKind kind) {
  const int line = kind == ContractorKind::kCustomer   ? kCustomerRangeLine
                   : kind == ContractorKind::kSupplier ? kSupplierRangeLine
                                                       : kWarehouseRangeLine;
  return ParseNumberRange(ConfigText(line));
}

ContractorOutcome ContractorAdd(ContractorKind kind, Contractor& c, const NumberRange& range, bool specialWarehouse) {
  if (c.number < 0) return ContractorOutcome::kBadNumber;
  if (kind == ContractorKind::kWarehouse)
    c[KontrahentCol::czy_podmiot_gosp] = specialWarehouse ? ShortText() : ShortText(std::string(1, kOwnTablesMark));
  {
    contractors_detail::CatalogueLock lock(kind);
    CatalogueTable t(kind);
    Checked(t.code());
    if (c.number == 0) c.number = NextContractorNumber(range, LastNumberInRange(t, range));
    if (c.number == 0) return ContractorOutcome::kLimit;
    if (Checked(t.SeekNumber(c.number), kPGRecordNotFound) == 0) return ContractorOutcome::kNumberTaken;
    if (IdenticalRowExists(t, c)) return ContractorOutcome::kIdentical;
    Checked(t.Fill(c));
    Checked(PGRecAppend(t.tbl(), t.rec()));
    lock.Commit();
  }
  if (kind == ContractorKind::kWarehouse && !specialWarehouse) CreateWarehouseTables(false, c.number);
  return ContractorOutcome::kDone;
}

ContractorOutcome ContractorStore(ContractorKind kind, const Contractor& c) {
  contractors_detail::CatalogueLock lock(kind);
  CatalogueTable t(kind);
  Checked(t.code());
  if (Checked(t.SeekNumber(c.number), kPGRecordNotFound) != 0) return ContractorOutcome::kGone;
  Checked(PGRecGet(t.tbl(), t.rec()));
  Checked(t.Fill(c));
  Checked(PGRecUpdate(t.tbl(), t.rec()));
  lock.Commit();
  return ContractorOutcome::kDone;
}

ContractorOutcome ContractorStoreChanges(ContractorKind kind, const Contractor& before, const Contractor& after) {
  contractors_detail::CatalogueLock lock(kind);
  CatalogueTable t(kind);
  Checked(t.code());
  if (Checked(t.SeekNumber(before.number), kPGRecordNotFound) != 0) return ContractorOutcome::kGone;
  Contractor fresh;
  Checked(t.Read(fresh));
  for (std::size_t f = 1; f < fresh.text.size(); ++f)
    if (after.text[f] != before.text[f]) fresh.text[f] = after.text[f];
  if (after.discount != before.discount) fresh.discount = after.discount;
  Checked(t.Fill(fresh));
  Checked(PGRecUpdate(t.tbl(), t.rec()));
  lock.Commit();
  return ContractorOutcome::kDone;
}

ContractorOutcome ContractorDelete(ContractorKind kind, int32_t number, bool evenInUse) {
  bool inUse = false;
  if (!evenInUse) {
    Checked(ContractorInUse(kind, number, inUse));
    if (inUse) return ContractorOutcome::kInUse;
  }
  {
    contractors_detail::CatalogueLock lock(kind);
    CatalogueTable t(kind);
    Checked(t.code());
    if (Checked(t.SeekNumber(number), kPGRecordNotFound) != 0) return ContractorOutcome::kGone;
    Checked(PGRecDelete(t.tbl()));
    lock.Commit();
  }
  if (kind == ContractorKind::kWarehouse) contractors_detail::DropWarehouseTables(number);
  return ContractorOutcome::kDone;
}

int16_t ContractorDeleteUnused(ContractorKind kind, std::vector<Contractor>& deleted) {
  deleted.clear();
  std::vector<int32_t> warehouses;
  if (const int16_t code = WarehouseNumbers(warehouses)) return code;
  std::string named;
  for (int32_t w : warehouses) {
    const std::string sql = NamedNumbersSql(kind, w);
    if (!sql.empty()) named += (named.empty() ? "" : " UNION ALL ") + sql;
  }
  contractors_detail::CatalogueLock lock(kind);
  PGResult res;
  const std::string table = PGSqlName(ContractorTablePath(kind)).Str();
  const std::string unused = named.empty() ? std::string()
                                           : " WHERE numer NOT IN (SELECT nr FROM (" + named + ") u WHERE nr IS NOT NULL)";
  if (const int16_t code = PGRunQueryWithTup("DELETE FROM " + table + unused + " RETURNING numer, nazwa", res))
    return code;
  for (int r = 0; r < res.Rows(); ++r) {
    Contractor c;
    c.number = std::stoi(std::string(res.Value(r, 0)));
    c[KontrahentCol::nazwa] = DbToMaz(ShortText(res.Value(r, 1)));
    deleted.push_back(c);
  }
  lock.Commit();
  std::sort(deleted.begin(), deleted.end(), [](const Contractor& a, const Contractor& b) { return a.number < b.number; });
  return 0;
}
