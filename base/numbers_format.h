// Numbers written as text for screens, reports and files. Width is the whole
// field (above 255 counts as 255); texts are right-aligned with blanks. A NaN or
// an infinity gives '?' repeated to the width (at least one), and no formatter
// ever writes a minus sign in front of a value that reads as zero.
#pragma once

#include <cstdint>

#include "base/real.h"
#include "base/shorttext.h"

// Decimal integer right-aligned in width.
ShortText IntText(int64_t value, int width);
// Fixed with the decimals; a value of 10^(width-decimals-1) or more, or of
// -10^(width-decimals-2) or less (decimals 0 counting as -1 there), in exponent
// form " d.dddE+dddd" at the width instead.
ShortText FormatFixed(int width, int decimals, Real value);
// FormatFixed, but blanks for a value that reads back as zero.
ShortText FormatFixedOrBlank(int width, int decimals, Real value);
// FormatFixed, but value 0 gives blanks with '-' at the right end.
ShortText FormatFixedZero(int width, int decimals, Real value);
// As many decimals as the width allows, trailing zeros trimmed, "-.5" for
// "-0.5" when short of room; 0 gives blanks and '-'. An integer part wider than
// the width gives '?'.
ShortText FormatCompact(int width, Real value);
// Every digit up to 30 decimals, trailing zeros and point trimmed, no padding;
// "" for zero, "?" for NaN, "!" for an infinity.
ShortText FormatFull(Real value);
// FormatFull if it fits the width, else cut after the decimals that fit, else
// the shortest exponent form (such as "1.5E+12") that fits; "-0" becomes "0".
ShortText FormatShortest(int width, Real value);
// FormatFixed with as many rounded decimals as the width leaves; a value below 1
// in absolute size drops the leading 0 when the text would pass the width.
ShortText FormatRound(int width, Real value);
// Digits in groups of three with blanks, decimal comma, sign in front; outside
// FormatFixed's limits, '?' to the width.
ShortText FormatMoney(int width, int decimals, Real value);
// FormatMoney of the value rounded half away from zero at the decimals.
ShortText FormatMoneyRounded(int width, int decimals, Real value);
// Blanks inserted every three digits left of the decimals of an existing number
// text while it stays narrower than the width; a leading '-' is kept in front.
ShortText GroupThousands(int width, int decimals, const ShortText& text);
