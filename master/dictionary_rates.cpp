// The dictionaries' further services: the kilometre rate of a date, a
// dictionary filled from the values the catalogue of goods uses, and the
// search by the start of a value.
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/dates.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "master/columns.h"
#include "master/dictionaries.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "tui/msgbox.h"

namespace {

constexpr ColumnDef kKmRateColumns[] = {{"data", "D"}, {"stawka", "X"}};
const TableDef kKmRateDef{kKmRateColumns, 1, {}, {}};

// The text columns of the catalogue of goods, the only ones a dictionary is filled from.
bool IsCatalogueTextColumn(std::string_view field) {
#define KLOTE_TEXT_COLUMN(name, type) \
  if (field == ColumnSqlName(#name)) return type[0] == 'A';
  KLOTE_COLUMNS_KAT_TOW(KLOTE_TEXT_COLUMN)
#undef KLOTE_TEXT_COLUMN
  return false;
}

// One row of the rate table by the condition and order; found false when none.
int16_t RateRow(const std::string& where, const char* order, std::string& date, Real& rate, bool& found) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup("SELECT data, stawka FROM " + PGSqlName(ShortText(kKmRateTable)).Str() +
                                             where + " ORDER BY data " + order + " LIMIT 1",
                                         res);
  found = code == 0 && res.Rows() > 0;
  if (found) {
    date = std::string(res.Value(0, 0));
    rate = TextToRealLoose(ShortText(res.Value(0, 1)));
  }
  return code;
}

}  // namespace

int16_t KmRateTableEnsure() {
  bool exists = false;
  (void)PGTblExist(ShortText(kKmRateTable), exists);
  return exists ? 0 : CreateTableFrom(ShortText(kKmRateTable), kKmRateDef);
}

KmRateResult KmRateLookup(int32_t day) {
  KmRateResult out;
  const std::string iso = "'" + DaySerialToIsoText(day).Str() + "'";
  std::string date;
  bool found = false;
  if ((out.code = RateRow(" WHERE data >= " + iso, "", date, out.rate, found)) != 0) return out;
  if (found && "'" + date + "'" == iso) return out;
  if (found) {  // a later date: the row before it, when there is one
    if ((out.code = RateRow(" WHERE data < " + iso, "DESC", date, out.rate, found)) != 0 || found) return out;
    out.rate = 0;
    out.outcome = KmRateOutcome::kOutOfRange;
    return out;
  }
  if ((out.code = RateRow("", "DESC", date, out.rate, found)) != 0 || found) return out;
  out.rate = 0;
  out.outcome = KmRateOutcome::kEmptyTable;
  return out;
}

Real KmRateFor(int32_t day, bool quiet) {
  const KmRateResult r = KmRateLookup(day);
  if (r.code != 0) CheckDBError(r.code);
  if (!quiet && r.outcome == KmRateOutcome::kOutOfRange) MessageBox("Data poza zakresem tabeli stawek."_mz, 0);
  if (!quiet && r.outcome == KmRateOutcome::kEmptyTable)
    MessageBox("Data poza zakresem tabeli stawek,@pusta tablica stawek."_mz, 0);
  return r.rate;
}

int16_t RebuildDictionaryFromCatalogue(const ShortText& field) {
  if (!IsCatalogueTextColumn(field.View())) return kPGBadArgument;
  const ShortText path = "dane\\pola_ind\\" + field;
  if (const int16_t code = DictionaryEnsure(path)) return code;
  const std::string dict = PGSqlName(path).Str(), col = "left(K." + field.Str() + ", 15)";
  LockTableExcl(path);
  // The values go through a temporary table so that one already in the
  // dictionary, or met twice, is added once.
  const std::string steps[] = {
      "CREATE TEMPORARY TABLE TMP_K(K VARCHAR(15),O VARCHAR(255),P CHAR)",
      "INSERT INTO TMP_K SELECT DISTINCT " + col + "," + col + "||'=','T' FROM DANE_KAT_TOW_ K WHERE COALESCE(K." +
          field.Str() + ",'') <> ''",
      "DELETE FROM TMP_K USING " + dict + " WHERE TMP_K.K=" + dict + ".indeks",
      "INSERT INTO " + dict + " (indeks, opis, czy_byl_obrot) SELECT K, O, P FROM TMP_K",
      "DROP TABLE TMP_K"};
  int16_t code = 0;
  for (const std::string& sql : steps)
    if ((code = PGRunQueryNoTup(sql)) != 0) break;
  if (code == 0) (void)PGTransCommit();
  else (void)PGTransRollback();
  if (code != 0) (void)PGRunQueryNoTup("DROP TABLE IF EXISTS TMP_K");
  PGLockUnregister(path);
  return code;
}

int DictionaryFindStart(const std::vector<DictionaryEntry>& rows, const ShortText& start) {
  const ShortText wanted = MazUpCaseText(start);
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (MazUpCaseText(rows[i].indeks).Copy(1, wanted.Length()) == wanted) return static_cast<int>(i);
  return -1;
}
