// The operator dialogs of the date and time helpers: the checks that explain
// a refused date or time, and the check of the system clock.
#pragma once

#include "base/shorttext.h"

// DateValid(date, expectedLength); on failure explains the date layout in a
// message box (Enter or Esc) and keeps the current attribute.
bool DateValidWithMessage(const ShortText& date, int expectedLength);
// TimeValid(time); on failure explains the time layout in a message box.
bool TimeValidWithMessage(const ShortText& time);

// What the clock check needs of the machine, so that it can be driven in tests.
struct ClockAccess {
  bool (*readDate)(int& year, int& month, int& day);   // false: the date cannot be read
  bool (*setDate)(int year, int month, int day);       // false: the date was refused
};
// The machine's own clock.
const ClockAccess& SystemClock();
// With a year of 1995 or later nothing happens. Otherwise asks the operator
// for the date (Esc ends the program), sets it and reads it back, telling
// when the machine does not keep it. A date that cannot be read ends the program.
void SystemClockCheck(const ClockAccess& clock = SystemClock());
// The system date as Today gives it, after the clock check.
ShortText TodayChecked(int width);
