// Records of the report jobs, shared by the handlers of both printer families.
#pragma once

#include "base/filevar.h"
#include "base/shorttext.h"

// A period report job: records 2 to 4.
struct PeriodJob {
  ShortText dateFrom;  // DD-MM-YYYY
  ShortText dateTo;
  ShortText flag;      // "FISK" for a fiscal report, "NFISK" for a plain one
};

// Reads the date from, date to and flag records; false when one is short.
[[nodiscard]] bool ReadPeriodJob(FileVar& file, PeriodJob& job);
// The two characters at position pos (from 1) as a number 0..99; false when
// either is not a digit.
[[nodiscard]] bool TwoDigitNumber(const ShortText& text, int pos, int& value);
// Year, month and day of a date from the two-digit numbers at the positions given;
// false on a parse error.
[[nodiscard]] bool ParseDateFields(const ShortText& date, int yearPos, int (&ymd)[3]);
