// Opening the firm's database, shared by klote and the tools that fill it.
#include "master/firmdb.h"

#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "users/users.h"

namespace {

// True when none of the firm's main tables exists.
bool FirmTablesMissing() {
  for (const char* path : {"dane\\kat_tow_", "dane\\naglowki", "dane\\magazyny", "dane\\odbiorcy"}) {
    bool exists = false;
    CheckDBError(PGTblExist(ShortText(path), exists));
    if (exists) return false;
  }
  return true;
}

}  // namespace

void OpenFirmDatabase() {
  CheckDBError(PGSetDefaults());
  int16_t code = PGInit();
  if (code == kPGNoCatalogue) code = PGinitializett();
  CheckDBError(code);
  CheckDBError(UsersTableEnsure());
  if (FirmTablesMissing()) CreateFirmTables();
}
