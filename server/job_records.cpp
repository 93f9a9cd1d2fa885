#include "server/job_records.h"

#include "base/jobfile.h"

bool ReadPeriodJob(FileVar& file, PeriodJob& job) {
  return ReadJobRecord(file, job.dateFrom) && ReadJobRecord(file, job.dateTo) && ReadJobRecord(file, job.flag);
}

bool TwoDigitNumber(const ShortText& text, int pos, int& value) {
  const unsigned char tens = text.At(pos), units = text.At(pos + 1);
  if (tens < '0' || tens > '9' || units < '0' || units > '9') return false;
  value = (tens - '0') * 10 + (units - '0');
  return true;
}

bool ParseDateFields(const ShortText& date, int yearPos, int (&ymd)[3]) {
  // DD-MM-YYYY: the month at 4, the day at 1; the year where the family reads it.
  return TwoDigitNumber(date, yearPos, ymd[0]) && TwoDigitNumber(date, 4, ymd[1]) && TwoDigitNumber(date, 1, ymd[2]);
}
