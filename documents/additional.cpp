// Additional numbers of documents in dane\dodnrdok.
#include <cstdlib>

#include "documents/docdetail.h"
#include "documents/numbering.h"
#include "base/codepage.h"
#include "master/columns.h"
#include "sqltable/pgconn.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "tui/msgbox.h"

using docdetail::SqlTable;

namespace {

// The row of one document in its series, as far as the assignment needs it.
struct DocumentRow {
  bool found = false;
  int32_t number = 0;
  int32_t value = 0;
  ShortText text;
  std::string oid;
};

std::string SeriesCondition(const AdditionalSeries& series) {
  return " WHERE nr_magazynu=" + std::to_string(series.warehouse) + " AND typ_dok=" + std::to_string(series.kind);
}

int16_t FindDocumentRow(const AdditionalSeries& series, int32_t coded, const ShortText& mark, DocumentRow& row) {
  PGResult res;
  const std::string sql = "SELECT oid,nr_dod,wartosc,tekst FROM " + SqlTable(kAdditionalTable) +
                          SeriesCondition(series) + " AND nr_dok=" + std::to_string(coded) +
                          " AND znak_dok=" + docdetail::TextLiteral(mark) + " LIMIT 1";
  if (int16_t code = PGRunQueryWithTup(sql, res)) return code;
  if (res.Rows() == 0) return 0;
  row.found = true;
  row.oid = std::string(res.Value(0, 0));
  row.number = std::atoi(std::string(res.Value(0, 1)).c_str());
  row.value = std::atoi(std::string(res.Value(0, 2)).c_str());
  row.text = DbToMaz(res.Text(0, 3));
  return 0;
}

// The highest number of the series, and the highest one in year.
int16_t SeriesTops(const AdditionalSeries& series, int year, bool& hasLast, int32_t& last, int32_t& lastOfYear) {
  PGResult res;
  const std::string sql = "SELECT MAX(nr_dod),MAX(nr_dod) FILTER (WHERE nr_dod BETWEEN " +
                          std::to_string(EncodeDocNumber(year, 0)) + " AND " +
                          std::to_string(EncodeDocNumber(year, kDocMaxNumber)) + ") FROM " +
                          SqlTable(kAdditionalTable) + SeriesCondition(series);
  if (int16_t code = PGRunQueryWithTup(sql, res)) return code;
  hasLast = res.Rows() > 0 && !res.Value(0, 0).empty();
  last = hasLast ? std::atoi(std::string(res.Value(0, 0)).c_str()) : 0;
  lastOfYear = res.Rows() > 0 ? std::atoi(std::string(res.Value(0, 1)).c_str()) : 0;
  return 0;
}

int16_t InsertRow(const AdditionalSeries& series, int32_t coded, const ShortText& mark, int32_t number,
                  int32_t dateSerial, int32_t value, const ShortText& text) {
  docdetail::TableRecord t(kAdditionalTable);
  if (t.code()) return t.code();
  const int16_t rec = t.rec();
  int16_t code = PGPutLong(rec, DodNrDokCol::nr_magazynu, series.warehouse);
  if (!code) code = PGPutShort(rec, DodNrDokCol::typ_dok, series.kind);
  if (!code) code = PGPutLong(rec, DodNrDokCol::nr_dok, coded);
  if (!code) code = PGPutAlpha(rec, DodNrDokCol::znak_dok, mark);
  if (!code) code = PGPutLong(rec, DodNrDokCol::nr_dod, number);
  if (!code) code = PGPutDate(rec, DodNrDokCol::data_dok, dateSerial);
  if (!code) code = PGPutLong(rec, DodNrDokCol::wartosc, value);
  if (!code) code = PGPutAlpha(rec, DodNrDokCol::tekst, text);
  if (!code) code = PGRecAppend(t.tbl(), rec);
  return code;
}

ShortText YearMessage(const ShortText& head, int year) { return head + std::to_string(year) + "."; }

}  // namespace

AdditionalResult AssignAdditionalNumber(int kind, int32_t coded, const ShortText& mark, int32_t dateSerial,
                                        int32_t currentWarehouse, const NumberingSettings& s, int32_t value,
                                        const ShortText& text) {
  const DecodedDocNumber doc = TryDecodeDocNumber(coded);
  if (!doc.ok) {
    (void)MessageBox(kAdditionalBadNumber, 0);
    return {};
  }
  const int year = doc.year;
  docdetail::ExclusiveLock lock(kAdditionalTable);
  const AdditionalSeries series = AdditionalSeriesOf(kind, currentWarehouse, s);
  DocumentRow row;
  if (int16_t code = FindDocumentRow(series, coded, mark, row)) return {0, code};
  if (row.found && row.number != EncodeDocNumber(year, 0)) return {row.number, lock.Commit()};
  if (row.found) {
    // A placeholder gives way to the real number and hands on what it kept.
    value = row.value;
    if (int16_t code = PGRunQueryNoTup("DELETE FROM " + SqlTable(kAdditionalTable) + " WHERE oid=" + row.oid))
      return {0, code};
  }
  bool hasLast = false;
  int32_t last = 0, lastOfYear = 0;
  if (int16_t code = SeriesTops(series, year, hasLast, last, lastOfYear)) return {0, code};
  const AdditionalNext next = NextAdditional(hasLast, last, lastOfYear, year);
  if (next.failure != AdditionalFailure::kNone) {
    (void)MessageBox(next.failure == AdditionalFailure::kBrokenLast
                         ? YearMessage("Uszkodzenie numeru dodatkowego w roku "_mz, year)
                         : YearMessage("Nie ma możliwości przydzielenia numeru dodatkowego w roku "_mz, year),
                     0);
    return {};
  }
  const ShortText keptText = row.found ? row.text : text;
  if (int16_t code = InsertRow(series, coded, mark, next.coded, dateSerial, value, keptText)) return {0, code};
  if (int16_t code = lock.Commit()) return {0, code};
  return {next.coded, 0};
}
