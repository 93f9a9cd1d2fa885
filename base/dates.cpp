#include "base/dates.h"

#include <ctime>

#include "base/mazovia.h"

namespace {

// Whole text of digits as a number; false for empty or any other character.
bool DigitsValue(const ShortText& text, int& value) {
  if (text.Empty()) return false;
  value = 0;
  for (int i = 1; i <= text.Length(); ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    value = value * 10 + (text[i] - '0');
  }
  return true;
}

int DigitsOr(const ShortText& text, int fallback) {
  int v = 0;
  return DigitsValue(text, v) ? v : fallback;
}

constexpr bool IsLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

constexpr int DaysInMonth(int year, int month) {
  constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

ShortText ZeroPadded(int number, int digits) {
  ShortText r;
  long long value = number;
  if (value < 0) {
    r.Append('-');
    value = -value;
  }
  char reversed[12];
  int n = 0;
  do {
    reversed[n++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value > 0);
  for (int i = n; i < digits; ++i) r.Append('0');
  while (n > 0) r.Append(reversed[--n]);
  return r;
}

std::tm LocalNow() {
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  return parts;
}

// Days from 1970-01-01 of a Gregorian date (proleptic), after H. Hinnant.
constexpr int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

constexpr int64_t kSerialOf1970 = 25569;  // 1970-01-01 counted from 1899-12-30
constexpr int32_t kLastSerial = 2958465;  // 9999-12-31

static_assert(DaysFromCivil(1, 1, 1) + kSerialOf1970 == kBlankDateSerial);
static_assert(DaysFromCivil(9999, 12, 31) + kSerialOf1970 == kLastSerial);

}  // namespace

ShortText DateExpand(const ShortText& date) {
  if (date.Length() != 8) return date;
  ShortText year = date.Copy(7, 2);
  return date.Copy(1, 6) + (year < ShortText("96") ? "20" : "19") + year;
}

ShortText DateShorten(const ShortText& date) {
  if (date.Length() != 10) return date;
  return date.Copy(1, 6) + date.Copy(9, 2);
}

bool DateValid(const ShortText& date, int expectedLength) {
  if ((expectedLength != 8 && expectedLength != 10) || date.Length() != expectedLength) return false;
  ShortText full = DateExpand(date);
  ShortText yearText = full.Copy(7, 4);
  // Compared as text on purpose: "0999" is below "100" and so refused.
  if (yearText < ShortText("100") || yearText > ShortText("9999")) return false;
  int day = 0, month = 0, year = 0;
  if (!DigitsValue(full.Copy(1, 2), day) || !DigitsValue(full.Copy(4, 2), month) ||
      !DigitsValue(yearText, year))
    return false;
  return month >= 1 && month <= 12 && day >= 1 && day <= DaysInMonth(year, month);
}

ShortText DateFromParts(int day, int month, int year) {
  if (year >= 0 && year < 100) year += year > 95 ? 1900 : 2000;
  return ZeroPadded(day, 2) + "-" + ZeroPadded(month, 2) + "-" + ZeroPadded(year, 4);
}

ShortText DateToSort(const ShortText& date) {
  if (!DateValid(date, date.Length())) return ShortText("01000101");
  ShortText full = DateExpand(date);
  return full.Copy(7, 4) + full.Copy(4, 2) + full.Copy(1, 2);
}

ShortText DateFromSort(const ShortText& sortDate) {
  if (sortDate.Length() != 8) return ShortText();
  return sortDate.Copy(7, 2) + "-" + sortDate.Copy(5, 2) + "-" + sortDate.Copy(1, 4);
}

ShortText DateSwap(int direction, const ShortText& date) {
  if (date.Length() == 10) {
    if (direction != 0) return date.Copy(9, 2) + "-" + date.Copy(6, 2) + "-" + date.Copy(1, 4);
    return date.Copy(7, 4) + "-" + date.Copy(4, 2) + "-" + date.Copy(1, 2);
  }
  if (date.Length() == 8) return date.Copy(7, 2) + date.Copy(3, 4) + date.Copy(1, 2);
  return date;
}

DatePartValues DateParts(const ShortText& date) {
  ShortText full = DateExpand(date);
  return {DigitsOr(full.Copy(1, 2), 1), DigitsOr(full.Copy(4, 2), 1), DigitsOr(full.Copy(7, 4), 1)};
}

int32_t DateNumber(const ShortText& date) {
  DatePartValues p = DateParts(date);
  return p.year * 10000 + p.month * 100 + p.day;
}

ShortText DateYear(const ShortText& date) {
  return DateValid(date, date.Length()) ? DateExpand(date).Copy(7, 4) : ShortText("0000");
}

ShortText MonthName(const ShortText& date) {
  static constexpr ShortText kNames[12] = {
      "styczeń"_mz,  "luty"_mz,     "marzec"_mz,      "kwiecień"_mz, "maj"_mz,      "czerwiec"_mz,
      "lipiec"_mz,   "sierpień"_mz, "wrzesień"_mz,    "październik"_mz, "listopad"_mz, "grudzień"_mz};
  int month = 0;
  if (!DigitsValue(date.Copy(4, 2), month) || date.Copy(4, 2).Length() != 2 || month < 1 || month > 12)
    return ShortText("?");
  return kNames[month - 1];
}

ShortText Today(int width) {
  std::tm now = LocalNow();
  ShortText date = DateFromParts(now.tm_mday, now.tm_mon + 1, now.tm_year + 1900);
  return width < 10 ? DateShorten(date) : date;
}

bool TimeValid(const ShortText& time) {
  int hours = 0, minutes = 0;
  if (time.Length() != 5 || !DigitsValue(time.Copy(1, 2), hours) || !DigitsValue(time.Copy(4, 2), minutes))
    return false;
  return hours <= 24 && minutes <= 59 && hours * 60 + minutes <= 1440;
}

int TimeToMinutes(const ShortText& time) {
  int total = DigitsOr(time.Copy(1, 2), 0) * 60 + DigitsOr(time.Copy(4, 2), 0);
  return total >= 0 && total <= 1440 ? total : 0;
}

ShortText MinutesToTime(int minutes) {
  if (minutes < 0 || minutes > 1440) return ShortText("00.00");
  return ZeroPadded(minutes / 60, 2) + "." + ZeroPadded(minutes % 60, 2);
}

int NowMinutes() {
  std::tm now = LocalNow();
  return now.tm_hour * 60 + now.tm_min;
}

bool TryEncodeDaySerial(int year, int month, int day, int32_t& serial) {
  serial = 0;
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month))
    return false;
  serial = static_cast<int32_t>(DaysFromCivil(year, month, day) + kSerialOf1970);
  return true;
}

int32_t EncodeDaySerial(int year, int month, int day) {
  int32_t serial = 0;
  return TryEncodeDaySerial(year, month, day, serial) ? serial : 0;
}

bool DecodeDaySerial(int32_t serial, int& year, int& month, int& day) {
  year = month = day = 1;
  if (serial < kBlankDateSerial || serial > kLastSerial) return false;
  // Inverse of DaysFromCivil, after H. Hinnant.
  const int64_t z = static_cast<int64_t>(serial) - kSerialOf1970 + 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<int>(yoe + era * 400 + (month <= 2));
  return true;
}

ShortText DaySerialToIsoText(int32_t serial) {
  int year = 1, month = 1, day = 1;
  (void)DecodeDaySerial(serial, year, month, day);
  return ZeroPadded(year, 4) + "-" + ZeroPadded(month, 2) + "-" + ZeroPadded(day, 2);
}
