// The coded document number and the pure rules of numbering series.
#include "documents/docnumber.h"

#include <cstdlib>

#include <string>
#include "config/konfigur.h"
#include "sqltable/pgconn.h"
#include "tui/msgbox.h"

namespace {

constexpr int kKindTransferOut = 15;
constexpr int kKindTransferIn = 18;

void DefaultFatal(const ShortText& message) {
  (void)MessageBox(message, 0);
  (void)PGTransRollbackAll();
  std::exit(0);
}

DocNumberFatalFn fatalFn = DefaultFatal;

// A handler that returns leaves the program going; end it here all the same.
[[noreturn]] void Fatal(const ShortText& message) {
  fatalFn(message);
  std::exit(0);
}

bool CommonOn(const NumberingSettings& s) { return s.common != CommonNumbering::kOff; }

}  // namespace

void SetDocNumberFatal(DocNumberFatalFn fn) { fatalFn = fn ? fn : DefaultFatal; }

bool TryEncodeDocNumber(int year, int32_t number, int32_t& coded) {
  if (year < kDocFirstYear || year > kDocLastYear || number < 0 || number > kDocMaxNumber) return false;
  coded = static_cast<int32_t>((static_cast<uint32_t>(year - kDocFirstYear) << 24) | static_cast<uint32_t>(number));
  return true;
}

int32_t EncodeDocNumber(int year, int32_t number) {
  int32_t coded = 0;
  if (!TryEncodeDocNumber(year, number, coded)) Fatal(kDocEncodeBroken);
  return coded;
}

DecodedDocNumber TryDecodeDocNumber(int32_t coded) {
  if (coded < 0) return {};  // high byte 128 or more
  return {true, kDocFirstYear + (coded >> 24), coded & kDocMaxNumber};
}

int32_t DecodeDocNumberStrict(int32_t coded) {
  const DecodedDocNumber d = TryDecodeDocNumber(coded);
  if (!d.ok) Fatal(kDocDecodeBroken);
  return d.number;
}

int32_t DecodeDocNumberSoft(int32_t coded) { return TryDecodeDocNumber(coded).number; }

ShortText DocNumberText(int32_t coded) {
  const DecodedDocNumber d = TryDecodeDocNumber(coded);
  return ShortText(std::to_string(d.number) + "/" + std::to_string(d.year));
}

NumberingSettings NumberingSettingsFrom(int commonValue, int oneSeriesValue) {
  NumberingSettings s;
  if (commonValue == 1 || commonValue == 2) s.common = static_cast<CommonNumbering>(commonValue);
  s.oneInvoiceSeries = oneSeriesValue == 1;
  return s;
}

NumberingSettings NumberingSettingsFromConfig() {
  return NumberingSettingsFrom(ConfigInt(kConfigLineCommonNumbering), ConfigInt(kConfigLineOneInvoiceSeries));
}

bool UnderCommonNumbering(int kind, const NumberingSettings& s) {
  switch (s.common) {
    case CommonNumbering::kOff: return false;
    case CommonNumbering::kTransfers: return kind == kKindTransferOut || kind == kKindTransferIn;
    case CommonNumbering::kAll: return (kind >= 1 && kind <= kKindTransferIn) || kind >= kFirstPaymentKind;
  }
  return false;
}

int RegisterKind(int kind, const NumberingSettings& s) {
  return CommonOn(s) && kind == kKindTransferOut ? kKindTransferIn : kind;
}

SeriesKinds SeriesOf(int kind, const NumberingSettings& s) {
  // Twin pairs and the setting that joins each pair.
  struct Twin {
    int a, b;
    bool (*joined)(const NumberingSettings&);
  };
  constexpr auto oneSeries = [](const NumberingSettings& n) { return n.oneInvoiceSeries; };
  static constexpr Twin kTwins[] = {
      {2, 4, oneSeries},
      {3, 5, oneSeries},
      {kKindTransferOut, kKindTransferIn, CommonOn},
  };
  SeriesKinds out;
  const int first = RegisterKind(kind, s);
  out.kinds[out.count++] = static_cast<int16_t>(first);
  for (const Twin& t : kTwins) {
    if (!t.joined(s) || (kind != t.a && kind != t.b)) continue;
    const int twin = kind == t.a ? t.b : t.a;
    if (twin != first) out.kinds[out.count++] = static_cast<int16_t>(twin);
  }
  return out;
}

NextNumber NextAfter(int32_t highest, int year) {
  int32_t first = 0;
  if (!TryEncodeDocNumber(year, 1, first)) return {0, true};
  if (highest == 0) return {first, false};
  // One past the highest must still be a number of the same year: past
  // 0xFFFFFF the year byte would move on (or, in 2123, the sign).
  const int64_t next = static_cast<int64_t>(highest) + 1;
  if (next > INT32_MAX) return {0, true};
  const DecodedDocNumber d = TryDecodeDocNumber(static_cast<int32_t>(next));
  if (!d.ok || d.year != year) return {0, true};
  return {static_cast<int32_t>(next), false};
}

AdditionalSeries AdditionalSeriesOf(int kind, int32_t currentWarehouse, const NumberingSettings& s) {
  int k = kind;
  if (CommonOn(s) && k == kKindTransferIn) k = kKindTransferOut;
  if (s.oneInvoiceSeries && (k == 4 || k == 5)) k -= 2;
  int32_t warehouse = currentWarehouse;
  if (s.common == CommonNumbering::kAll || (s.common == CommonNumbering::kTransfers && k == kKindTransferOut))
    warehouse = 0;
  return {static_cast<int16_t>(k), warehouse};
}

AdditionalNext NextAdditional(bool hasLast, int32_t last, int32_t lastOfYear, int year) {
  int32_t first = 0;
  if (!TryEncodeDocNumber(year, 1, first)) return {0, AdditionalFailure::kNoRoom};
  if (!hasLast) return {first, AdditionalFailure::kNone};
  const DecodedDocNumber d = TryDecodeDocNumber(last);
  if (!d.ok) return {0, AdditionalFailure::kBrokenLast};
  // A later year starts its series at 1; an earlier one goes on from its own last number.
  const int32_t base = d.year == year ? last : d.year > year ? lastOfYear : 0;
  const NextNumber next = NextAfter(base, year);
  if (next.failed) return {0, AdditionalFailure::kNoRoom};
  return {next.coded, AdditionalFailure::kNone};
}
