// The open catalogue, its lock and the row <-> buffer copies.
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "master/contractors_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "tui/editfield.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace contractors_detail {

CatalogueTable::CatalogueTable(ContractorKind kind, int indexHandle) {
  code_ = OpenTable(ContractorTablePath(kind), tbl_, indexHandle);
  if (code_ == 0) code_ = PGRecBufOpen(tbl_, rec_);
}

CatalogueTable::~CatalogueTable() {
  if (rec_ != 0) (void)PGRecBufClose(rec_);
  if (tbl_ != 0) (void)PGTblClose(tbl_);
}

std::string CatalogueTable::SqlName() const {
  const PGTable* t = PGTableAt(tbl_);
  return t ? t->baseName.Str() : std::string();
}

int16_t CatalogueTable::SeekNumber(int32_t number) {
  const int16_t code = PGPutLong(rec_, KontrahentCol::numer, number);
  return code != 0 ? code : PGSrchFld(tbl_, rec_, KontrahentCol::numer, 0);
}

void CatalogueTable::ForName(const Contractor& c) {
  (void)PGPutAlpha(rec_, KontrahentCol::nazwa, c[KontrahentCol::nazwa]);
  (void)PGPutAlpha(rec_, KontrahentCol::nazwa_inne, c[KontrahentCol::nazwa_inne]);
}

int16_t CatalogueTable::Read(Contractor& c) {
  int16_t code = PGRecGet(tbl_, rec_);
  for (int f = 1; code == 0 && f <= KontrahentCol::kCount; ++f) {
    if (f == KontrahentCol::numer) code = PGGetLong(rec_, f, c.number);
    else if (f == KontrahentCol::rabat) code = PGGetExt(rec_, f, c.discount);
    else code = PGGetAlpha(rec_, f, c.text[static_cast<std::size_t>(f)]);
  }
  return code;
}

int16_t CatalogueTable::Fill(const Contractor& c) {
  int16_t code = 0;
  for (int f = 1; code == 0 && f <= KontrahentCol::kCount; ++f) {
    if (f == KontrahentCol::numer) code = PGPutLong(rec_, f, c.number);
    else if (f == KontrahentCol::rabat) code = PGPutExt(rec_, f, c.discount);
    else code = PGPutAlpha(rec_, f, c.text[static_cast<std::size_t>(f)]);
  }
  return code;
}

bool AskOnDashes(const ShortText& text, ShortText& value) {
  BoxKeeper keeper;
  const std::string_view view = text.View();
  const std::size_t start = view.find('-');
  const int width = static_cast<int>(view.find_last_of('-') - start + 1);
  MessageBox(text, 2);
  GotoXY(2 + static_cast<int>(start), 2);
  TextAttr(kAttrReverse);
  unsigned char key = 0;
  EditField(1, 1, '-', width, value, key);
  value = TrimBoth(TrimRightAll(TrimRightAll(value, '-'), ' '), ' ');
  return key != 27;
}

int16_t AskDbfWay() {
  unsigned char ch = 0, scan = 0;
  return PickList(1, 1, 1, 0, 0, ShortText(), "eksport do pliku DBASE@import z pliku DBASE"_mz, ch, scan);
}

bool AskDbfImportPage(DbfCodePage& page) {
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(1, 1, 1, 0, 0, "Jak importować polskie znaki z pliku DBASE:"_mz,
                                  "bez zmian@DOS Latin 2@Windows Europa Centralna@ISO 8859-2"_mz, ch, scan);
  if (choice == 0) return false;
  page = static_cast<DbfCodePage>(choice - 1);
  return true;
}

int16_t Checked(int16_t code, int16_t acceptedA, int16_t acceptedB) {
  if (code != 0 && code != acceptedA && code != acceptedB) CheckDBError(code);
  return code;
}

void DropWarehouseTables(int32_t warehouse) {
  for (const char* table : {"ksiegasa", "ksiega__", "stany_mg", "naglowki", "specyfik", "speckont", "kasa____"}) {
    const ShortText path = WarehouseTablePath(warehouse, table);
    bool exists = false;
    (void)PGTblExist(path, exists);
    if (exists) Checked(PGTblDelete(path));
  }
}

}  // namespace contractors_detail
