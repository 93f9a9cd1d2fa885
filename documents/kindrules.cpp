// Kinds from the catalogue and the guards of a header.
#include "documents/kindrules.h"

#include <cstdlib>
#include <string>

#include "base/codepage.h"
#include "documents/docdetail.h"
#include "master/tables.h"
#include "sqltable/pgconn.h"
#include "tui/msgbox.h"
#include "users/users.h"

using docdetail::SqlTable;

namespace {

constexpr ShortText kDocumentLockedText = "Dokument jest zablokowany do edycji/usuwania."_mz;
constexpr ShortText kDocumentLockedAsk =
    "Dokument jest zablokowany do edycji/usuwania.@Czy wykonać Twoją operację pomimo tego faktu ?"_mz;
constexpr ShortText kDocumentGoneText =
    "Dokument zniknął !@Zapewne został skasowany przez innego użytkownika lub zmieniono jego cechy."_mz;

// One text cell of a query; empty when there is no row or the query fails.
ShortText FirstCell(const std::string& sql) {
  PGResult res;
  if (PGRunQueryWithTup(sql, res) || res.Rows() == 0) return {};
  return DbToMaz(res.Text(0, 0));
}

bool RowExists(const std::string& sql) {
  PGResult res;
  return PGRunQueryWithTup(sql, res) == 0 && res.Rows() > 0;
}

bool Refuse(const ShortText& text) {
  if (text.Empty()) return false;
  (void)MessageBox(text, 0);
  return true;
}

}  // namespace

ShortText DocumentKindName(int kind) {
  return FirstCell("SELECT nazwa FROM " + SqlTable("dane\\dok_plat") + " WHERE typ_dok=" + std::to_string(kind));
}

ShortText KindRefusal(int kind, int32_t user) {
  const std::string k = std::to_string(kind);
  if (FirstCell("SELECT zablokowany FROM " + SqlTable("dane\\dok_plat") + " WHERE typ_dok=" + k) == ShortText("T"))
    return kKindLockedText;
  if (RowExists("SELECT 1 FROM " + SqlTable("dane\\dok_plaz") + " WHERE nr_uzytkownika=" + std::to_string(user) +
                " AND typ_dok=" + k))
    return kKindLockedForUserText;
  return {};
}

bool DocumentKindEnsure(const DocumentKindRow& row) {
  const std::string table = SqlTable("dane\\dok_plat"), kind = std::to_string(row.kind);
  if (RowExists("SELECT 1 FROM " + table + " WHERE typ_dok=" + kind)) return false;
  using docdetail::TextLiteral;
  // Texts are cut to their columns' widths.
  CheckDBError(PGRunQueryNoTup(
      "INSERT INTO " + table +
      " (typ_dok,nazwa,typ_kontrahenta,konto,konto_przeciwstawne,czy_przychod,znak_dok,zablokowany,druk_dodatkowy,"
      "instrukcja_ksieg,rezerwa) VALUES (" +
      kind + "," + TextLiteral(row.name.Copy(1, 30)) + "," + TextLiteral(ShortText(std::string(1, row.contractor).c_str())) + ",''," +
      TextLiteral(row.account.Copy(1, 3)) + "," + (row.income ? "'T'" : "'N'") + "," + TextLiteral(row.mark.Copy(1, 4)) + ",'N','N','',0)"));
  return true;
}

bool AnyKindOpen(int32_t user) {
  for (int kind = kFirstGoodsKind; kind <= kLastGoodsKind; ++kind)
    if (KindRefusal(kind, user).Empty()) return true;
  return false;
}

bool CheckDocumentLock(const ShortText& zablokowany) {
  if (zablokowany != ShortText("T")) return false;
  if (!CurrentUserMaxRights()) return Refuse(kDocumentLockedText);
  return !MessageBox(kDocumentLockedAsk, 1);
}

bool CheckDocumentExists(const DocumentKey& key) {
  const std::string sql = "SELECT 1 FROM " + SqlTable(WarehouseTablePath(key.warehouse, "naglowki")) +
                          " WHERE typ_dok=" + std::to_string(key.kind) + " AND nr_dok=" + std::to_string(key.coded) +
                          " AND znak_dok=" + docdetail::TextLiteral(key.mark);
  if (RowExists(sql)) return false;
  return Refuse(kDocumentGoneText);
}

bool DocumentMayBeTouched(DocumentAction action, const DocumentKey& key, int32_t documentOperator,
                          int32_t documentDate, int32_t today) {
  if (Refuse(DocumentOwnerRefusal(action, documentOperator))) return false;
  if (CheckDocumentExists(key)) return false;
  const ShortText locked =
      FirstCell("SELECT zablokowany FROM " + SqlTable(WarehouseTablePath(key.warehouse, "naglowki")) +
                " WHERE typ_dok=" + std::to_string(key.kind) + " AND nr_dok=" + std::to_string(key.coded) +
                " AND znak_dok=" + docdetail::TextLiteral(key.mark));
  if (CheckDocumentLock(locked)) return false;
  return !Refuse(DocumentDateRefusal(action, documentDate, today));
}
