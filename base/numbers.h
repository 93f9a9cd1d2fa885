// Numbers read from text, rounding, powers, and integers written in other
// bases. Bad input gives a neutral value (0), never an error.
#pragma once

#include <cstdint>

#include "base/real.h"
#include "base/shorttext.h"

// Digits and the first '.' read as a number, everything else ignored; a '-'
// anywhere makes the result negative.
Real TextToRealLoose(const ShortText& text);
// Sum of a text such as "12.5+3-1" (terms between '+' and '-'), written by
// FormatShortest at the width.
ShortText SumExpression(const ShortText& text, int width = 255);
// Digits 0..9 and A..Z in base 36, a leading '-' allowed; 0 for anything else.
int64_t ParseBase36(const ShortText& text);
// 0 if the text is a number (leading sign, digits, one '.' unless integersOnly),
// else the position of the first bad character.
int NumericCheck(const ShortText& text, bool integersOnly);

// Half away from zero: a fraction of 0.5 or more goes up in absolute value.
// Exact within +-2147483647 (passed through a 64-bit integer); never -0.
Real RoundHalfAway(Real value);
// RoundHalfAway to a 32-bit integer; outside +-2147483647 (or NaN) a run-time error ends the process.
int32_t RoundToInt(Real value);
// A fraction of exactly 0.5 goes to the even neighbour; otherwise RoundHalfAway.
Real RoundHalfEven(Real value);
// base to a whole exponent by repeated multiplication; a negative exponent
// gives the reciprocal, exponent 0 gives 1.
Real PowerReal(Real base, int exponent);
// The same in integers; a negative exponent gives the truncated reciprocal.
int64_t PowerInt(int64_t base, int exponent);
// Digits after the point, up to the last that is not 0, of the value written
// with 2 decimals: 0, 1 or 2.
int DecimalCount(Real value);

// Integers in other bases by repeated division; a negative value gets a '-'.
ShortText ToHex(int64_t value);      // 0..9 A..F
ShortText ToOctal(int64_t value);    // 0..7
ShortText ToBase63(int64_t value);   // 0..9 A..Z a..z _
ShortText ToBase36(int64_t value);   // 0..9 A..Z
ShortText ToBase26(int64_t value);   // A..Z
ShortText ToBase220(int64_t value);  // digit d is byte d + 33, or d + 34 past 93 (0x7F skipped)
