// A changed item carried into the users' tables: each user's work table
// praca___ (the document being written) and work file plikrob_ hold copies
// of catalogue rows, which must not keep an item's old names, VAT group or
// index after the catalogue has changed.
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "sqltable/pgtable.h"
#include "users/users.h"

using items_detail::NumberText;
using items_detail::SqlText;

namespace {

// "cena_s_n=CASE ... END,cena_s_b=CASE ... END": a row that held the
// catalogue's old pair takes the new one; a price of the row's own stays.
std::string FollowingPrices(const char* net, const char* gross, Real oldNet, Real oldGross, Real newNet,
                            Real newGross) {
  const std::string held = std::string("WHEN ") + net + "=" + NumberText(oldNet) + " AND " + gross + "=" +
                           NumberText(oldGross) + " THEN ";
  return std::string(net) + "=CASE " + held + NumberText(newNet) + " ELSE " + net + " END," + gross + "=CASE " + held +
         NumberText(newGross) + " ELSE " + gross + " END";
}

std::string UserRowSet(const ItemData& before, const ItemData& after) {
  return items_detail::DescriptiveSet(after) + "," +
         FollowingPrices("cena_z_n", "cena_z_b", before.buyNet, before.buyGross, after.buyNet, after.buyGross) + "," +
         FollowingPrices("cena_s_n", "cena_s_b", before.saleNet, before.saleGross, after.saleNet, after.saleGross);
}

struct UserTable {
  const char* name;
  ShortText walking;  // what the walk reports, the user's number after it
};

}  // namespace

namespace items_detail {

std::string DescriptiveSet(const ItemData& item) {
  std::string set = "nazwa=" + SqlText(item.name) + ",nazwa_=" + SqlText(item.name2) + ",vat=" + SqlText(item.vat) +
                    ",sww=" + SqlText(item.sww) + ",czy_od_pl_vat=" + SqlText(item.vatPayer) +
                    ",indeks_znakowy_isbn=" + SqlText(item.code) +
                    ",indeks_numeryczny=" + std::to_string(item.digitIndex) + ",dostawca=" +
                    std::to_string(item.supplier) + ",miejsce_w_magazynie=" + SqlText(item.place);
  static const char* const keys[5] = {"k1_pochodzenie_autor", "k2_wydawca", "k3_grupa_tow", "k4", "k5"};
  for (int k = 0; k < 5; ++k) set += std::string(",") + keys[k] + "=" + SqlText(item.keys[k]);
  return set + ",jednostka=" + SqlText(item.unit) + ",ilosc_w_opak=" + NumberText(item.packQuantity) +
         ",dostawca_opis=" + SqlText(item.supplierText);
}

}  // namespace items_detail

int16_t ItemWalkUserTables(const ItemData& before, const ItemData& after, const ItemWalkReport& report) {
  const UserTable kTables[] = {
      {"praca___", "Zmiana specyfikacji użytownika nr "_mz},
      {"plikrob_", "Zmiana pliku roboczego użytownika nr "_mz},
  };
  // A firm without its users' table has no user tables either.
  bool usersExist = false;
  if (const int16_t code = PGTblExist(kUsersTable, usersExist); code != 0 || !usersExist) return code;
  std::vector<UserRecord> users;
  if (const int16_t code = UsersRead(users)) return code;
  const std::string set = UserRowSet(before, after);
  for (const UserRecord& user : users)
    for (const UserTable& table : kTables) {
      const ShortText path = UserPath(user.number, ShortText(table.name));
      bool exists = false;
      if (const int16_t code = PGTblExist(path, exists)) return code;
      if (!exists) continue;
      if (report) report(table.walking + ShortText(std::to_string(user.number)));
      if (const int16_t code = PGRunQueryNoTup("UPDATE " + PGSqlName(path).Str() + " SET " + set +
                                               " WHERE nr_wewn=" + std::to_string(before.number)))
        return code;
    }
  return 0;
}
