// Text shaping on ShortText: padding, trimming, replacing, cutting, wrapping.
// Every operation takes texts by value and returns a new one, cut at 255 bytes.
// Width arguments above 255 count as 255. Positions count from 1. Bad input
// gives a neutral result, never an error.
#pragma once

#include "base/shorttext.h"

// Text cut to width, else filled on the right: a one-character fill exactly to
// the width, a longer fill appended whole until the width is reached (the last
// copy may pass it). Width 0 or less, or an empty fill, leaves the text as it is.
ShortText PadRight(const ShortText& text, const ShortText& fill, int width);
// Text cut to width, then filled on the left with the character.
ShortText PadLeft(const ShortText& text, char fill, int width);

// Trailing copies of c removed; a text made only of c stays as it is.
ShortText TrimRight(const ShortText& text, char c);
// Leading copies of c removed; a text made only of c stays as it is.
ShortText TrimLeft(const ShortText& text, char c);
// Trailing copies of c removed; a text made only of c becomes empty.
ShortText TrimRightAll(const ShortText& text, char c);
// Leading copies of c removed; a text made only of c becomes empty.
ShortText TrimLeftAll(const ShortText& text, char c);
// TrimLeft then TrimRight (a text made only of c stays as it is).
ShortText TrimBoth(const ShortText& text, char c);
// Bytes below 32 and byte 255 become blanks, then trailing blanks go.
ShortText TrimControl(const ShortText& text);
// A text beginning with byte 0 loses all its leading bytes 0.
ShortText DropLeadingNul(const ShortText& text);

// Every `from` replaced by `to`.
ShortText ReplaceChar(const ShortText& text, char from, char to);
// The same between positions first..last; first 0 means the whole text.
ShortText ReplaceCharRange(const ShortText& text, char from, char to, int first, int last);
// From the end, each `from` replaced by `to` while the character equals `from`.
ShortText ReplaceTrailing(const ShortText& text, char from, char to);

// Part before the first c; the whole text when c does not occur.
ShortText BeforeFirst(const ShortText& text, char c);
// Part after the first c; the whole text when c does not occur.
ShortText AfterFirst(const ShortText& text, char c);
// Part before the last c; the whole text when c does not occur.
ShortText BeforeLast(const ShortText& text, char c);
// Part after the last c; the whole text when c does not occur.
ShortText AfterLast(const ShortText& text, char c);
// The last count characters (all of a shorter text, none for count <= 0).
ShortText RightPart(const ShortText& text, int count);

// Only the bytes whose code lies within low..high.
ShortText KeepRange(const ShortText& text, unsigned char low, unsigned char high);
// Only the digits.
ShortText KeepDigits(const ShortText& text);
// Everything but the digits.
ShortText DropDigits(const ShortText& text);
// Every non-digit replaced by c.
ShortText ReplaceNonDigits(const ShortText& text, char c);
// Everything but digits, ASCII letters and the 18 Polish letters replaced by c.
ShortText ReplaceNonAlnum(const ShortText& text, char c);
// Only digits, ASCII letters and the 18 Polish letters.
ShortText KeepAlnum(const ShortText& text);

// True if needle (not empty) occurs in text.
bool ContainsText(const ShortText& needle, const ShortText& text);
// True if c occurs in text.
bool ContainsChar(char c, const ShortText& text);
// Text with every occurrence of needle deleted, until none is left.
ShortText DeleteAllText(const ShortText& needle, const ShortText& text);

// One line of at most width characters from position start, broken after the
// last break byte (7, 9, 32, 255) within reach, else hard at width; trailing
// blanks dropped. next receives the position where the following line begins
// (past the end when the text is used up).
ShortText WrapNext(const ShortText& text, int start, int width, int& next);
// The next code in alphanumeric order for free indexes, at most maxLength long;
// the text unchanged when no successor fits.
ShortText SuccessorText(const ShortText& text, int maxLength);

struct TextPair {
  ShortText first;
  ShortText second;
};
// Two fields: split at byte 255 when it occurs, else cut at the fixed lengths.
TextPair SplitOn255(const ShortText& text, int firstLength, int secondLength);
// The text with `@` after every 76 characters that more characters follow.
ShortText WrapAt76(const ShortText& text);
// XOR of count bytes; 0 for count 0 or less.
unsigned char XorBytes(const void* bytes, int count);
// Characters between <tag> (or <tag with attributes>) and </tag>, without a
// surrounding CDATA section; false and an empty out when a tag is missing.
[[nodiscard]] bool XmlValue(const ShortText& text, const ShortText& tag, ShortText& out);
// "TRUE" or "FALSE".
ShortText BoolText(bool value);
