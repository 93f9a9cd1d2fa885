#include "reports/dbfsave.h"

#include <string>

#include "base/codepage.h"
#include "base/paths.h"
#include "exchange/dbf/dbf.h"
#include "reports/turnover.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace {

// Fields of the copy: the result's own columns that a reader of the copy needs.
constexpr DbfFieldSpec kFields[] = {{"NR_WEWN", 'N', 10, 0},   {"ILOSC", 'N', 16, 3},    {"NAZWA", 'C', 31, 0},
                                    {"VAT", 'C', 5, 0},        {"STAN_POCZ", 'N', 16, 3}, {"BIL_NA_ST", 'N', 12, 2},
                                    {"DOST_NR", 'N', 10, 0},   {"SP_NETT", 'N', 16, 2},  {"SP_BRUTT", 'N', 16, 2}};
constexpr const char* kColumns = "nr_wewn,ilosc,nazwa,vat,stan_pocz,bil_na_st,dost_nr,sp_nett,sp_brutt";

int Fill(DbfFile& dbf, const PGResult& rows) {
  for (int i = 0; i < rows.Rows(); ++i) {
    DbfBlankRecord(dbf);
    for (int f = 0; f < static_cast<int>(std::size(kFields)); ++f) {
      const ShortText value = DbToMaz(rows.Text(i, f));
      const int code = kFields[f].type == 'C' ? DbfPutField(dbf, f + 1, value)
                                              : DbfPutNumber(dbf, f + 1, std::strtold(std::string(value.View()).c_str(), nullptr));
      if (code != 0) return code;
    }
    if (const int code = DbfAppendRecord(dbf); code != 0) return code;
  }
  return 0;
}

}  // namespace

ShortText TurnoverDbfPath() { return UserPath(std::max(CurrentUserNumber(), 0), "obrotydb.dbf"); }

int SaveTurnoverDbf() {
  PGResult rows;
  CheckDBError(PGRunQueryWithTup(std::string("SELECT ") + kColumns + " FROM " +
                                     std::string(PGSqlName(TurnoverTablePath()).View()) + " ORDER BY nr_wewn", rows));
  const ShortText target = TurnoverDbfPath();
  const ShortText partial = target + ".tmp~";
  int code = 0;
  {
    DbfFile dbf;
    code = DbfCreate(dbf, partial, kFields);
    if (code == 0) code = Fill(dbf, rows);
    const int closed = dbf.IsOpen() ? DbfClose(dbf) : 0;
    if (code == 0) code = closed;
  }
  if (code == 0) code = RenameFile(partial, target);
  if (code != 0) {
    (void)DeleteFile(partial);
    (void)MessageBox(DbfErrorText(code), 0);
  }
  return code;
}
