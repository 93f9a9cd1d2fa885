// Dates and times as text, and the day serials in which the table layer passes
// dates. Display layout "DD-MM-RRRR", short "DD-MM-RR" (two-digit years below
// 96 are 20xx), sort layout "RRRRMMDD" ("01000101" for no valid date), time
// "GG.MM". Bad input gives a neutral result, never an error.
#pragma once

#include <cstdint>

#include "base/shorttext.h"

// An 8-character date with its century: "01-01-96" is 1996, "01-01-95" 2095.
// Other lengths pass unchanged.
ShortText DateExpand(const ShortText& date);
// A 10-character date without its century; other lengths pass unchanged.
ShortText DateShorten(const ShortText& date);
// The date has the expected length (8 or 10) and names a real day; the year
// text must lie between "100" and "9999" compared as text.
bool DateValid(const ShortText& date, int expectedLength);
// Display layout of the parts, zero-padded; a year below 100 is windowed
// (above 95 in the 1900s, else in the 2000s).
ShortText DateFromParts(int day, int month, int year);
// Display (or short) layout to "RRRRMMDD"; "01000101" if not valid.
ShortText DateToSort(const ShortText& date);
// "RRRRMMDD" to display layout; empty for a text that is not 8 long.
ShortText DateFromSort(const ShortText& sortDate);
// Length 10: "RRRR-MM-DD" to display layout, or display to "RRRR-MM-DD" when
// direction is 0. Length 8: day and year trade places. Others unchanged.
ShortText DateSwap(int direction, const ShortText& date);

struct DatePartValues {
  int day = 1;
  int month = 1;
  int year = 1;
};
// Day, month and year of a display or short date; a part that does not
// convert is 1. The year of a short date is windowed.
DatePartValues DateParts(const ShortText& date);
// Year * 10000 + month * 100 + day of the date's parts.
int32_t DateNumber(const ShortText& date);
// The four year digits of a valid date, else "0000".
ShortText DateYear(const ShortText& date);
// Polish name of the month of a display date ("styczeń" ...), "?" otherwise.
ShortText MonthName(const ShortText& date);
// The system date in display layout, or short layout for a width below 10.
ShortText Today(int width);

// Length 5, hours 0..24, minutes 0..59, at most 24.00.
bool TimeValid(const ShortText& time);
// Minutes since midnight; an unconvertible part counts as 0, a total outside
// 0..1440 gives 0.
int TimeToMinutes(const ShortText& time);
// "GG.MM" of minutes since midnight; "00.00" outside 0..1440.
ShortText MinutesToTime(int minutes);
// The system time in minutes since midnight.
int NowMinutes();

// Day serials: whole days counted from 30 December 1899 (serial 0) in the
// Gregorian calendar carried back, so 1 January 1900 is 2 and the database's
// blank date 0001-01-01 is kBlankDateSerial.
// Serial of a real day, or 0 when the parts name no day (year 1..9999).
int32_t EncodeDaySerial(int year, int month, int day);
// False for parts that name no day; serial receives 0 then.
[[nodiscard]] bool TryEncodeDaySerial(int year, int month, int day, int32_t& serial);
// Parts of a serial; false (and 0001-01-01) outside years 1..9999.
[[nodiscard]] bool DecodeDaySerial(int32_t serial, int& year, int& month, int& day);
// "YYYY-MM-DD" of a serial, as the database holds it; "0001-01-01" outside the range.
ShortText DaySerialToIsoText(int32_t serial);
// Serial of the blank date 0001-01-01.
inline constexpr int32_t kBlankDateSerial = -693593;
