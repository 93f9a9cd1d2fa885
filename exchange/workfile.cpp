// The work file's table: its creation, rows in and out through record
// buffers, the sources of rows, passing between users and the lock.
#include "exchange/workfile.h"

#include <filesystem>
#include <fstream>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/paths.h"
#include "master/tables.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "sqltable/pgwrite.h"
#include "users/session.h"
#include "users/bulk.h"
#include "users/users.h"

static_assert(WorkFileCol::il_zamowiona == kWorkFileColumns, "the work file takes the catalogue's first 24 columns");

namespace {

using TextOf = ShortText& (*)(ItemData&);
using RealOf = Real& (*)(WorkFileRow&);

struct TextColumn {
  int16_t col;
  TextOf of;
};
struct RealColumn {
  int16_t col;
  RealOf of;
};

constexpr TextColumn kTextColumns[] = {
    {WorkFileCol::nazwa, [](ItemData& i) -> ShortText& { return i.name; }},
    {WorkFileCol::nazwa_, [](ItemData& i) -> ShortText& { return i.name2; }},
    {WorkFileCol::vat, [](ItemData& i) -> ShortText& { return i.vat; }},
    {WorkFileCol::sww, [](ItemData& i) -> ShortText& { return i.sww; }},
    {WorkFileCol::czy_od_pl_vat, [](ItemData& i) -> ShortText& { return i.vatPayer; }},
    {WorkFileCol::indeks_znakowy_isbn, [](ItemData& i) -> ShortText& { return i.code; }},
    {WorkFileCol::miejsce_w_magazynie, [](ItemData& i) -> ShortText& { return i.place; }},
    {WorkFileCol::k1_pochodzenie_autor, [](ItemData& i) -> ShortText& { return i.keys[0]; }},
    {WorkFileCol::k2_wydawca, [](ItemData& i) -> ShortText& { return i.keys[1]; }},
    {WorkFileCol::k3_grupa_tow, [](ItemData& i) -> ShortText& { return i.keys[2]; }},
    {WorkFileCol::k4, [](ItemData& i) -> ShortText& { return i.keys[3]; }},
    {WorkFileCol::k5, [](ItemData& i) -> ShortText& { return i.keys[4]; }},
    {WorkFileCol::jednostka, [](ItemData& i) -> ShortText& { return i.unit; }},
    {WorkFileCol::dostawca_opis, [](ItemData& i) -> ShortText& { return i.supplierText; }},
};

constexpr RealColumn kRealColumns[] = {
    {WorkFileCol::cena_z_n, [](WorkFileRow& r) -> Real& { return r.item.buyNet; }},
    {WorkFileCol::cena_z_b, [](WorkFileRow& r) -> Real& { return r.item.buyGross; }},
    {WorkFileCol::cena_s_n, [](WorkFileRow& r) -> Real& { return r.item.saleNet; }},
    {WorkFileCol::cena_s_b, [](WorkFileRow& r) -> Real& { return r.item.saleGross; }},
    {WorkFileCol::ilosc, [](WorkFileRow& r) -> Real& { return r.quantity; }},
    {WorkFileCol::ilosc_w_opak, [](WorkFileRow& r) -> Real& { return r.item.packQuantity; }},
    {WorkFileCol::il_zamowiona, [](WorkFileRow& r) -> Real& { return r.item.ordered; }},
};

// An open table with one record buffer, released on every road.
class OpenWithBuffer {
 public:
  explicit OpenWithBuffer(const ShortText& path) {
    code_ = PGTblOpen(path, tbl_, 0);
    if (code_ == 0) code_ = PGRecBufOpen(tbl_, rec_);
  }
  ~OpenWithBuffer() {
    if (rec_ > 0) (void)PGRecBufClose(rec_);
    if (tbl_ > 0) (void)PGTblClose(tbl_);
  }
  OpenWithBuffer(const OpenWithBuffer&) = delete;
  OpenWithBuffer& operator=(const OpenWithBuffer&) = delete;
  int16_t code() const { return code_; }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }

 private:
  int16_t code_ = 0;
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
};

// A transaction that rolls back unless committed.
class Transaction {
 public:
  Transaction() : code_(PGTransBegin()) {}
  ~Transaction() {
    if (code_ == 0 && !done_) (void)PGTransRollback();
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  int16_t code() const { return code_; }
  int16_t Commit() {
    done_ = true;
    return PGTransCommit();
  }

 private:
  int16_t code_ = 0;
  bool done_ = false;
};

int16_t PutRow(int16_t rec, WorkFileRow row) {
  int16_t code = PGRecBufEmpty(rec);
  for (const TextColumn& c : kTextColumns)
    if (code == 0) code = PGPutAlpha(rec, c.col, c.of(row.item));
  for (const RealColumn& c : kRealColumns)
    if (code == 0) code = PGPutExt(rec, c.col, c.of(row));
  if (code == 0) code = PGPutLong(rec, WorkFileCol::nr_wewn, row.item.number);
  if (code == 0) code = PGPutLong(rec, WorkFileCol::dostawca, row.item.supplier);
  if (code == 0) code = PGPutDoub(rec, WorkFileCol::indeks_numeryczny, static_cast<double>(row.item.digitIndex));
  return code;
}

int16_t GetRow(int16_t rec, WorkFileRow& row) {
  row = WorkFileRow{};
  int16_t code = 0;
  for (const TextColumn& c : kTextColumns)
    if (code == 0) code = PGGetAlpha(rec, c.col, c.of(row.item));
  for (const RealColumn& c : kRealColumns)
    if (code == 0) code = PGGetExt(rec, c.col, c.of(row));
  double digits = 0;
  if (code == 0) code = PGGetLong(rec, WorkFileCol::nr_wewn, row.item.number);
  if (code == 0) code = PGGetLong(rec, WorkFileCol::dostawca, row.item.supplier);
  if (code == 0) code = PGGetDoub(rec, WorkFileCol::indeks_numeryczny, digits);
  row.item.digitIndex = static_cast<int64_t>(digits);
  return code;
}

// Appends the rows to the open table.
int16_t AppendRows(const OpenWithBuffer& t, const std::vector<WorkFileRow>& rows) {
  for (const WorkFileRow& row : rows) {
    int16_t code = PutRow(t.rec(), row);
    if (code == 0) code = PGRecAppend(t.tbl(), t.rec());
    if (code != 0) return code;
  }
  return 0;
}

// The width type of the catalogue's character index ("A13" when there is no catalogue).
PGName IsbnType() {
  PGName type(("A" + std::to_string(kDefaultIsbnLength)).c_str());
  bool exists = false;
  (void)PGTblExist(kKatTowTable, exists);
  if (!exists) return type;
  int16_t tbl = 0;
  if (PGTblOpen(kKatTowTable, tbl, 0) != 0) return type;
  ShortText found;
  if (PGFldType(tbl, KatTowCol::indeks_znakowy_isbn, found) == 0 && !found.Empty()) type = PGName(found.View());
  (void)PGTblClose(tbl);
  return type;
}

void TouchFile(const ShortText& path) {
  const std::filesystem::path file(PathToUnix(path).Str());
  std::error_code ignored;
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), ignored);
  if (!std::filesystem::exists(file, ignored)) std::ofstream{file};
}

bool IsTextColumn(int column) { return kKatTowDef.columns[static_cast<std::size_t>(column - 1)].type[0] == 'A'; }

// The record of the DBF in the buffer as a row: fields by position.
WorkFileRow RowFromDbf(const DbfFile& dbf) {
  WorkFileRow row;
  for (const TextColumn& c : kTextColumns) c.of(row.item) = DbfGetField(dbf, c.col);
  for (const RealColumn& c : kRealColumns) c.of(row) = TextToRealLoose(DbfGetField(dbf, c.col));
  row.item.number = static_cast<int32_t>(TextToRealLoose(DbfGetField(dbf, WorkFileCol::nr_wewn)));
  row.item.supplier = static_cast<int32_t>(TextToRealLoose(DbfGetField(dbf, WorkFileCol::dostawca)));
  row.item.digitIndex = static_cast<int64_t>(TextToRealLoose(DbfGetField(dbf, WorkFileCol::indeks_numeryczny)));
  return row;
}

// The condition "no catalogue row K has the key columns of work-file row W".
std::string NotInCatalogue() {
  std::string match;
  for (const char* column : {"nazwa", "nazwa_", "vat", "sww", "czy_od_pl_vat"}) {
    const std::string c(column);
    match += " AND coalesce(rtrim(K." + c + "),'')=coalesce(rtrim(W." + c + "),'')";
  }
  return "NOT EXISTS (SELECT 1 FROM " + PGSqlName(kKatTowTable).Str() + " K WHERE true" + match + ")";
}

ShortText DbCell(const PGResult& res, int r, int c) { return DbToMaz(ShortText(res.Value(r, c))); }

}  // namespace

ShortText WorkFileName(int32_t user) { return UserPath(user, ShortText("plikrob_")); }
ShortText WorkFileName() { return WorkFileName(CurrentUserNumber()); }

int16_t CreateWorkFile(const ShortText& path) {
  std::vector<PGName> names, types;
  for (int i = 0; i < kWorkFileColumns; ++i) {
    names.emplace_back(kKatTowDef.columns[static_cast<std::size_t>(i)].name);
    types.emplace_back(kKatTowDef.columns[static_cast<std::size_t>(i)].type);
  }
  types[WorkFileCol::indeks_znakowy_isbn - 1] = IsbnType();
  const int16_t code = PGTblCreate(path, kWorkFileColumns, names.data(), types.data());
  if (code == 0) TouchFile(path + ".lcu");
  return code;
}

int16_t EnsureWorkFile(const ShortText& path) {
  bool exists = false;
  (void)PGTblExist(path, exists);
  return exists ? 0 : CreateWorkFile(path);
}

int16_t WorkFileCount(const ShortText& path, int32_t& count) {
  count = 0;
  bool exists = false;
  (void)PGTblExist(path, exists);
  if (!exists) return 0;
  int16_t tbl = 0;
  int16_t code = PGTblOpen(path, tbl, 0);
  if (code != 0) return code;
  code = PGTblNRecs(tbl, count);
  (void)PGTblClose(tbl);
  return code;
}

int16_t WorkFileRead(const ShortText& path, std::vector<WorkFileRow>& rows) {
  rows.clear();
  bool exists = false;
  (void)PGTblExist(path, exists);
  if (!exists) return 0;
  OpenWithBuffer t(path);
  if (t.code() != 0) return t.code();
  for (int16_t code = PGRecFirst(t.tbl()); code != kPGEmptyTable && code != kPGEndOfTable; code = PGRecNext(t.tbl())) {
    if (code != 0) return code;
    WorkFileRow row;
    code = PGRecGet(t.tbl(), t.rec());
    if (code == 0) code = GetRow(t.rec(), row);
    if (code != 0) return code;
    rows.push_back(row);
  }
  return 0;
}

int16_t WorkFileWrite(const ShortText& path, const std::vector<WorkFileRow>& rows, bool append) {
  int16_t code = EnsureWorkFile(path);
  if (code != 0) return code;
  Transaction trans;
  if (trans.code() != 0) return trans.code();
  if (!append && (code = PGTblEmpty(path)) != 0) return code;
  {
    OpenWithBuffer t(path);
    if (t.code() != 0) return t.code();
    if ((code = AppendRows(t, rows)) != 0) return code;
  }
  return trans.Commit();
}

WorkFileLock::WorkFileLock(const ShortText& path) { busy_ = FileLockTake(path, file_, false); }
WorkFileLock::~WorkFileLock() {
  if (file_ >= 0) FileLockRelease(file_);
}

bool UserWorkingElsewhere(int32_t user) {
  if (!DirExists(UserDirectory(user))) return false;
  int file = -1;
  const bool held = FileLockTake(UserPath(user, ShortText("kluczw__")), file, false);
  if (file >= 0) FileLockRelease(file);
  return held;
}

int16_t WorkRowsFromDocument(int32_t warehouse, int16_t kind, int32_t number, const ShortText& mark,
                             std::vector<WorkFileRow>& rows) {
  rows.clear();
  OpenWithBuffer lines(WarehouseTablePath(warehouse, "specyfik"));
  if (lines.code() != 0) return lines.code();
  const std::string where = "typ_dok=" + std::to_string(kind) + " AND nr_dok=" + std::to_string(number) +
                            " AND rtrim(znak_dok)=" + PGValueLiteral(PGKind::Text, MazToDb(mark).Str());
  int16_t code = PGTblWhereClauseSet(lines.tbl(), where);
  if (code != 0) return code;
  for (code = PGRecFirst(lines.tbl()); code != kPGEmptyTable && code != kPGEndOfTable; code = PGRecNext(lines.tbl())) {
    if (code != 0 || (code = PGRecGet(lines.tbl(), lines.rec())) != 0) return code;
    WorkFileRow row;
    bool found = false;
    int32_t item = 0;
    if ((code = PGGetLong(lines.rec(), SpecyfikCol::nr_towaru, item)) != 0) return code;
    if ((code = ItemFindByNumber(item, row.item, found)) != 0) return code;
    if (!found) continue;
    const int rec = lines.rec();
    code = PGGetExt(rec, SpecyfikCol::ilosc, row.quantity);
    if (code == 0) code = PGGetExt(rec, SpecyfikCol::c_zak_netto, row.item.buyNet);
    if (code == 0) code = PGGetExt(rec, SpecyfikCol::c_zak_brutto, row.item.buyGross);
    if (code == 0) code = PGGetExt(rec, SpecyfikCol::c_spr_netto, row.item.saleNet);
    if (code == 0) code = PGGetExt(rec, SpecyfikCol::c_spr_brutto, row.item.saleGross);
    if (code == 0) code = PGGetAlpha(rec, SpecyfikCol::vat, row.item.vat);
    if (code != 0) return code;
    rows.push_back(row);
  }
  return 0;
}

int16_t WorkRowsFromCatalogue(int32_t warehouse, std::vector<WorkFileRow>& rows) {
  rows.clear();
  ItemListKind kind;
  kind.activeOnly = true;
  constexpr int kPage = 200;
  ItemListKey from;
  for (;;) {
    std::vector<ItemListRow> page;
    const int16_t code = ItemListRead(kind, warehouse, from, true, kPage, page);
    if (code != 0) return code;
    for (const ItemListRow& listed : page) {
      WorkFileRow row;
      row.item = listed.item;
      row.quantity = listed.quantity;
      row.item.saleNet = listed.saleNet;
      row.item.saleGross = listed.saleGross;
      rows.push_back(row);
    }
    if (static_cast<int>(page.size()) < kPage) return 0;
    from = ItemListKeyOf(page.back());
  }
}

int16_t WorkFileTransfer(int32_t from, int32_t to, bool append) {
  const ShortText target = WorkFileName(to);
  int16_t code = EnsureWorkFile(target);
  if (code != 0) return code;
  Transaction trans;
  if (trans.code() != 0) return trans.code();
  if (!append && (code = PGTblEmpty(target)) != 0) return code;
  if ((code = PGTblAdd(WorkFileName(from), target)) != 0) return code;
  return trans.Commit();
}

int16_t WorkFileToDbf(const ShortText& path, const ShortText& dbfPath) { return TblToDbf(path, dbfPath); }

bool DbfIsWorkFile(const DbfFile& dbf) {
  if (dbf.FieldCount() < kWorkFileColumns) return false;
  for (int f = 1; f <= kWorkFileColumns; ++f) {
    const char type = dbf.Field(f).type;
    if (IsTextColumn(f) ? type != 'C' : (type != 'N' && type != 'F')) return false;
  }
  return true;
}

WorkFileImport WorkFileFromDbf(const ShortText& path, const ShortText& dbfPath, DbfCodePage codePage, int16_t& code) {
  code = 0;
  DbfFile dbf;
  if (DbfOpen(dbf, dbfPath) != 0 || !DbfIsWorkFile(dbf)) return WorkFileImport::kBadDbf;
  DbfSetCodePage(dbf, codePage);
  WorkFileLock lock(path);
  if (lock.busy()) return WorkFileImport::kLocked;
  if ((code = EnsureWorkFile(path)) != 0) return WorkFileImport::kDone;
  Transaction trans;
  if ((code = trans.code()) != 0 || (code = PGTblEmpty(path)) != 0) return WorkFileImport::kDone;
  {
    OpenWithBuffer t(path);
    if ((code = t.code()) != 0) return WorkFileImport::kDone;
    for (int64_t n = 1; n <= dbf.recordCount; ++n) {
      if (DbfReadRecord(dbf, n) != 0) return WorkFileImport::kBadDbf;  // the transaction rolls back
      if (DbfIsDeleted(dbf)) continue;
      if ((code = PutRow(t.rec(), RowFromDbf(dbf))) != 0 || (code = PGRecAppend(t.tbl(), t.rec())) != 0)
        return WorkFileImport::kDone;
    }
  }
  code = trans.Commit();
  return WorkFileImport::kDone;
}

int16_t WorkFileDropUnknown(const ShortText& path, std::vector<ShortText>& names) {
  names.clear();
  const std::string table = PGSqlName(path).Str();
  PGResult res;
  int16_t code = PGRunQueryWithTup(
      "SELECT W.nazwa, W.nazwa_ FROM " + table + " W WHERE " + NotInCatalogue() + " ORDER BY W.oid", res);
  if (code != 0) return code;
  for (int r = 0; r < res.Rows(); ++r)
    names.push_back(TrimRight(DbCell(res, r, 0), ' ') + " " + DbCell(res, r, 1));
  if (names.empty()) return 0;
  return PGRunQueryNoTup("DELETE FROM " + table + " W WHERE " + NotInCatalogue());
}

int DetectWorkFileForms(const ShortText& directory) {
  struct Form {
    const char* file;
    int bit;
  };
  constexpr Form kForms[] = {
      {"plikrob_.dbf", kFormDbf}, {"dokument.dbf", kFormReturn}, {"sprzedaz.dbf", kFormSales}, {"dane.klt", kFormMini}};
  int bits = 0;
  for (const Form& form : kForms)
    if (FileExists(directory + form.file)) bits |= form.bit;
  return bits;
}
