// The coded number and the series rules, as pure functions.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

#include "documents/docnumber.h"

namespace {

int32_t Code(int year, int32_t number) { return ((year - 1996) << 24) | number; }

TEST(DocNumberCoding, EncodeAndDecodeAtTheLimits) {
  struct Case {
    int year;
    int32_t number;
    bool ok;
  };
  const std::vector<Case> cases = {{1996, 1, true},    {2123, 0xFFFFFF, true}, {2024, 0, true},
                                   {2024, 77, true},   {1995, 1, false},       {2124, 1, false},
                                   {2024, -1, false},  {2024, 0x1000000, false}};
  for (const Case& c : cases) {
    int32_t coded = -1;
    ASSERT_EQ(TryEncodeDocNumber(c.year, c.number, coded), c.ok) << c.year << "/" << c.number;
    if (!c.ok) continue;
    EXPECT_EQ(coded, Code(c.year, c.number));
    const DecodedDocNumber d = TryDecodeDocNumber(coded);
    EXPECT_EQ(std::tuple(d.ok, d.year, d.number), std::tuple(true, c.year, c.number));
    EXPECT_EQ(DecodeDocNumberStrict(coded), c.number);
  }
  EXPECT_EQ(std::pair(Code(1996, 1), Code(2123, 0xFFFFFF)), std::pair(1, 0x7FFFFFFF));  // the first and last coded
}

TEST(DocNumberCoding, BrokenValuesDecodeSoftlyToZero) {
  for (int32_t bad : {-1, INT32_MIN, static_cast<int32_t>(0x80000005u)}) {
    const DecodedDocNumber d = TryDecodeDocNumber(bad);
    EXPECT_EQ(std::tuple(d.ok, d.year, d.number), std::tuple(false, 0, 0));
    EXPECT_EQ(DecodeDocNumberSoft(bad), 0);
    EXPECT_EQ(DocNumberText(bad), ShortText("0/0"));
  }
  EXPECT_EQ(DocNumberText(Code(2024, 12)), ShortText("12/2024"));
}

// The fatal handler of the test prints the message and ends the process.
void PrintAndExit(const ShortText& message) {
  std::fwrite(message.Data(), 1, static_cast<std::size_t>(message.Length()), stderr);
  std::exit(3);
}

TEST(DocNumberCoding, StrictPathsEndTheProgramWithTheirMessage) {
  SetDocNumberFatal(PrintAndExit);
  EXPECT_EXIT(EncodeDocNumber(2124, 1), ::testing::ExitedWithCode(3), "kodowanie");
  EXPECT_EXIT(EncodeDocNumber(2000, 0x1000000), ::testing::ExitedWithCode(3), "kodowanie");
  EXPECT_EXIT(DecodeDocNumberStrict(-7), ::testing::ExitedWithCode(3), "dekodowanie");
  SetDocNumberFatal(nullptr);
}

const NumberingSettings kPlain = NumberingSettingsFrom(0, 0);
const NumberingSettings kOneSeries = NumberingSettingsFrom(0, 1);
const NumberingSettings kTransfers = NumberingSettingsFrom(1, 0);
const NumberingSettings kAll = NumberingSettingsFrom(2, 1);

TEST(NumberingRules, SeriesAndTwins) {
  struct Case {
    int kind;
    NumberingSettings s;
    std::vector<int> kinds;
  };
  const std::vector<Case> cases = {
      {2, kPlain, {2}},         {4, kPlain, {4}},          {2, kOneSeries, {2, 4}},   {5, kOneSeries, {5, 3}},
      {15, kPlain, {15}},       {18, kPlain, {18}},        {15, kTransfers, {18}},    {18, kTransfers, {18, 15}},
      {4, kAll, {4, 2}},        {1, kAll, {1}},            {17, kAll, {17}},
  };
  for (const Case& c : cases) {
    const SeriesKinds got = SeriesOf(c.kind, c.s);
    ASSERT_EQ(got.count, static_cast<int>(c.kinds.size())) << c.kind;
    for (int i = 0; i < got.count; ++i) EXPECT_EQ(got.kinds[static_cast<std::size_t>(i)], c.kinds[static_cast<std::size_t>(i)]) << c.kind;
  }
  // Out-of-range settings count as off.
  EXPECT_EQ(NumberingSettingsFrom(7, 3).common, CommonNumbering::kOff);
  EXPECT_FALSE(NumberingSettingsFrom(7, 3).oneInvoiceSeries);
}

TEST(NumberingRules, WhatCommonNumberingCovers) {
  for (int kind = 1; kind <= 18; ++kind) {
    EXPECT_FALSE(UnderCommonNumbering(kind, kPlain)) << kind;
    EXPECT_EQ(UnderCommonNumbering(kind, kTransfers), kind == 15 || kind == 18) << kind;
    EXPECT_TRUE(UnderCommonNumbering(kind, kAll)) << kind;
    EXPECT_EQ(RegisterKind(kind, kTransfers), kind == 15 ? 18 : kind);
    EXPECT_EQ(RegisterKind(kind, kPlain), kind);
  }
  EXPECT_FALSE(UnderCommonNumbering(0, kAll));
  EXPECT_FALSE(UnderCommonNumbering(19, kAll));
}

TEST(NumberingRules, NextAfterTheHighest) {
  struct Case {
    int32_t highest;
    int year;
    int32_t coded;
    bool failed;
  };
  const std::vector<Case> cases = {
      {0, 2024, Code(2024, 1), false},
      {Code(2024, 41), 2024, Code(2024, 42), false},
      {Code(2020, 0xFFFFFE), 2020, Code(2020, 0xFFFFFF), false},
      {Code(2020, 0xFFFFFF), 2020, 0, true},  // the year is full: no number of the next year
      {0x7FFFFFFF, 2123, 0, true},
      {-3, 2024, 0, true},
      {0, 1995, 0, true},
      {0, 2124, 0, true},
  };
  for (const Case& c : cases) {
    const NextNumber n = NextAfter(c.highest, c.year);
    EXPECT_EQ(n.failed, c.failed) << c.highest;
    EXPECT_EQ(n.coded, c.coded) << c.highest;
  }
}

TEST(NumberingRules, AdditionalSeriesAndNext) {
  struct SeriesCase {
    int kind;
    NumberingSettings s;
    int16_t kindOut;
    int32_t warehouse;
  };
  const std::vector<SeriesCase> series = {
      {18, kPlain, 18, 7}, {18, kTransfers, 15, 0}, {15, kTransfers, 15, 0}, {2, kTransfers, 2, 7},
      {4, kOneSeries, 2, 7}, {5, kOneSeries, 3, 7}, {4, kPlain, 4, 7},       {1, kAll, 1, 0},
  };
  for (const SeriesCase& c : series) {
    const AdditionalSeries got = AdditionalSeriesOf(c.kind, 7, c.s);
    EXPECT_EQ(got.kind, c.kindOut) << c.kind;
    EXPECT_EQ(got.warehouse, c.warehouse) << c.kind;
  }
  struct NextCase {
    bool hasLast;
    int32_t last, lastOfYear;
    int year;
    AdditionalNext want;
  };
  const std::vector<NextCase> next = {
      {false, 0, 0, 2024, {Code(2024, 1), AdditionalFailure::kNone}},
      {true, Code(2024, 9), Code(2024, 9), 2024, {Code(2024, 10), AdditionalFailure::kNone}},
      {true, Code(2023, 9), 0, 2024, {Code(2024, 1), AdditionalFailure::kNone}},
      {true, Code(2024, 9), Code(2023, 4), 2023, {Code(2023, 5), AdditionalFailure::kNone}},
      {true, Code(2024, 9), 0, 2023, {Code(2023, 1), AdditionalFailure::kNone}},
      {true, Code(2024, 0), Code(2024, 0), 2024, {Code(2024, 1), AdditionalFailure::kNone}},
      {true, -9, 0, 2024, {0, AdditionalFailure::kBrokenLast}},
      {true, Code(2024, 0xFFFFFF), Code(2024, 0xFFFFFF), 2024, {0, AdditionalFailure::kNoRoom}},
  };
  for (const NextCase& c : next) {
    const AdditionalNext got = NextAdditional(c.hasLast, c.last, c.lastOfYear, c.year);
    EXPECT_EQ(got.coded, c.want.coded) << c.last;
    EXPECT_EQ(got.failure, c.want.failure) << c.last;
  }
}

TEST(NumberingRules, FreeMarkAppendsPoints) {
  const std::vector<ShortText> taken = {"A", "A.", "XYZ", "AB", "AB.", "AB.."};
  auto isTaken = [&](const ShortText& m) {
    for (const ShortText& t : taken)
      if (t == m) return true;
    return false;
  };
  EXPECT_EQ(FreeMark("Q", isTaken), ShortText("Q"));
  EXPECT_EQ(FreeMark("A", isTaken), ShortText("A.."));
  EXPECT_EQ(FreeMark("XYZ", isTaken), ShortText("XYZ."));
  EXPECT_EQ(FreeMark("AB", isTaken), ShortText("AB.."));  // 4 long: the last tried, taken or not
  EXPECT_EQ(FreeMark("", isTaken), ShortText(""));
}

}  // namespace
