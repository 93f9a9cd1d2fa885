// Document numbers: the coded number and the rules of numbering series.
//
// A document's year and running number travel in one 32-bit integer, the
// column nr_dok: the high byte is the year minus 1996, the low 24 bits the
// number in that year. Years 1996..2123 and numbers 0..0xFFFFFF can be held;
// an ascending sort of coded numbers is a sort by year, then number.
// Everything in this header is a pure function of its arguments; the table
// side of numbering is in documents/numbering.h.
#pragma once

#include <array>
#include <cstdint>

#include "base/mazovia.h"
#include "base/shorttext.h"

inline constexpr int kDocFirstYear = 1996;
inline constexpr int kDocLastYear = 2123;
inline constexpr int32_t kDocMaxNumber = 0xFFFFFF;
// Payment and cash-book kinds of dane\dok_plat start here; goods kinds are 1..18.
inline constexpr int kFirstPaymentKind = 100;

// The messages of a broken coded number (they end the program).
inline constexpr ShortText kDocEncodeBroken =
    "Logiczne uszkodzenie numeru dokumentu (kodowanie).@Program musi przerwać pracę."_mz;
inline constexpr ShortText kDocDecodeBroken =
    "Logiczne uszkodzenie numeru dokumentu (dekodowanie).@Program musi przerwać pracę."_mz;

// A decoded number; ok false (and year, number 0) for a value that is not one.
struct DecodedDocNumber {
  bool ok = false;
  int year = 0;
  int32_t number = 0;
};

// The coded number, or false when year or number is out of range.
[[nodiscard]] bool TryEncodeDocNumber(int year, int32_t number, int32_t& coded);
// The coded number; a year or number out of range shows kDocEncodeBroken and ends the program.
int32_t EncodeDocNumber(int year, int32_t number);
// Year and number; fails when the high byte is 128 or more (a negative value).
DecodedDocNumber TryDecodeDocNumber(int32_t coded);
// The number in its year; a value that does not decode shows kDocDecodeBroken and ends the program.
int32_t DecodeDocNumberStrict(int32_t coded);
// The number in its year, 0 for a value that does not decode: for lists,
// which must show whatever a row holds.
int32_t DecodeDocNumberSoft(int32_t coded);
// "number/year" as lists show it; "0/0" for a value that does not decode.
ShortText DocNumberText(int32_t coded);

// Called by EncodeDocNumber and DecodeDocNumberStrict with their message; the
// default shows it, rolls back the open transactions and ends the program.
// Tests set their own (it must not return normally for the program to stay sound).
using DocNumberFatalFn = void (*)(const ShortText& message);
void SetDocNumberFatal(DocNumberFatalFn fn);

// --- Numbering settings ---

// Common numbering over the warehouses of the firm.
enum class CommonNumbering : int8_t {
  kOff = 0,        // each warehouse numbers its own documents
  kTransfers = 1,  // kinds 15 and 18 are numbered for the whole firm
  kAll = 2,        // every goods and payment document is numbered for the whole firm
};

struct NumberingSettings {
  CommonNumbering common = CommonNumbering::kOff;
  bool oneInvoiceSeries = false;  // kinds 2/4 (and 3/5) share one series
};

// Configuration lines of the two settings.
inline constexpr int kConfigLineCommonNumbering = 173;
inline constexpr int kConfigLineOneInvoiceSeries = 174;
// The settings as the main configuration holds them; a value out of range is "off".
NumberingSettings NumberingSettingsFromConfig();
// The same from raw setting values.
NumberingSettings NumberingSettingsFrom(int commonValue, int oneSeriesValue);

// Whether a document of the kind is numbered for the whole firm (and so
// registered in dane\naglowki).
bool UnderCommonNumbering(int kind, const NumberingSettings& s);
// The kind under which the firm's register and its series hold a kind:
// an outgoing transfer (15) is entered as its incoming mirror (18) when
// common numbering is on.
int RegisterKind(int kind, const NumberingSettings& s);

// The kinds whose numbers form one series with kind: the kind itself (or
// 18 for 15 under common numbering) and its twin, if any. count is 1 or 2.
struct SeriesKinds {
  std::array<int16_t, 2> kinds{};
  int count = 0;
};
SeriesKinds SeriesOf(int kind, const NumberingSettings& s);

// The next number after the highest coded number of a series in the year
// (0 when the year holds none). failed when the series of that year is full
// or the highest value is broken.
struct NextNumber {
  int32_t coded = 0;
  bool failed = false;
};
NextNumber NextAfter(int32_t highest, int year);

// The additional-number series: kind after the merging rules and the
// warehouse of the series (0 for one common to the firm).
struct AdditionalSeries {
  int16_t kind = 0;
  int32_t warehouse = 0;
};
AdditionalSeries AdditionalSeriesOf(int kind, int32_t currentWarehouse, const NumberingSettings& s);

// The mark that makes a key free: the mark itself when free, else the mark
// with points appended one by one until free or 4 characters long (the last
// tried is returned then, free or not).
template <typename TakenFn>
ShortText FreeMark(const ShortText& mark, TakenFn taken) {
  ShortText m = mark;
  while (taken(m) && m.Length() < 4) m.Append('.');
  return m;
}

// The next additional number of a document of year in a series whose
// highest value is last (hasLast false for an empty series) and whose
// highest value in year itself is lastOfYear (0 when the year has none).
enum class AdditionalFailure : int8_t { kNone, kBrokenLast, kNoRoom };
struct AdditionalNext {
  int32_t coded = 0;
  AdditionalFailure failure = AdditionalFailure::kNone;
};
AdditionalNext NextAdditional(bool hasLast, int32_t last, int32_t lastOfYear, int year);
