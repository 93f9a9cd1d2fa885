#include <gtest/gtest.h>

#include "base/dates.h"
#include "base/expect_rows.h"
#include "base/mazovia.h"

namespace {

using test_rows::ExpectRows;

TEST(DateValidity, LengthYearTextMonthAndDay) {
  struct Row { const char* date; int length; bool want; };
  const Row rows[] = {
      {"29-02-2000", 10, true},  {"29-02-1900", 10, false}, {"29-02-2024", 10, true},
      {"29-02-2023", 10, false}, {"28-02-1900", 10, true},  {"31-04-2024", 10, false},
      {"30-04-2024", 10, true},  {"31-12-9999", 10, true},  {"01-01-0999", 10, false},
      {"01-01-1000", 10, true},  {"00-01-2024", 10, false}, {"01-13-2024", 10, false},
      {"01-00-2024", 10, false}, {"01-01-24", 8, true},     {"29-02-00", 8, true},
      {"29-02-99", 8, false},    {"01-01-24", 10, false},   {"01-01-2024", 8, false},
      {"1a-01-2024", 10, false}, {"", 10, false},           {"01-01-24", 6, false},
      {"01-01-1:00", 10, false}, {"31-07-96", 8, true},
  };
  for (const auto& r : rows) EXPECT_EQ(DateValid(r.date, r.length), r.want) << r.date << " " << r.length;
}

TEST(DateLayout, ExpandShortenPartsSortSwap) {
  // Two-digit years from 96 are 19xx, below it 20xx.
  ExpectRows<ShortText>({
      {DateExpand("01-01-96"), "01-01-1996"}, {DateExpand("01-01-95"), "01-01-2095"},
      {DateExpand("01-01-00"), "01-01-2000"}, {DateExpand("01-01-99"), "01-01-1999"},
      {DateExpand("01-01-2024"), "01-01-2024"}, {DateExpand(""), ""},
      {DateShorten("31-12-2024"), "31-12-24"}, {DateShorten("31-12-24"), "31-12-24"},
      {DateFromParts(1, 2, 1999), "01-02-1999"}, {DateFromParts(4, 3, 0), "04-03-2000"},
      {DateFromParts(4, 3, 95), "04-03-2095"}, {DateFromParts(4, 3, 96), "04-03-1996"},
      {DateToSort("04-03-2000"), "20000304"}, {DateToSort("04-03-96"), "19960304"},
      {DateToSort("31-02-2000"), "01000101"}, {DateToSort(""), "01000101"}, {DateFromSort("20000304"), "04-03-2000"},
      {DateFromSort("2000"), ""}, {DateSwap(1, "2000-03-04"), "04-03-2000"}, {DateSwap(0, "04-03-2000"), "2000-03-04"},
      {DateSwap(0, "04-03-99"), "99-03-04"}, {DateSwap(1, "99-03-04"), "04-03-99"}, {DateSwap(1, "abc"), "abc"},
  });
}

TEST(DateLayout, NumbersYearAndMonth) {
  // The parts as one number yyyymmdd; a part that does not convert is 1.
  const auto parts = [](const char* date) {
    const DatePartValues p = DateParts(date);
    return p.year * 10000 + p.month * 100 + p.day;
  };
  ExpectRows<int>({{parts("04-03-2000"), 20000304}, {parts("xx-03-96"), 19960301}, {parts(""), 10101},
                   {DateNumber("04-03-2000"), 20000304}});
  ExpectRows<ShortText>({{DateYear("04-03-2000"), "2000"}, {DateYear("04-03-95"), "2095"},
                         {DateYear("31-02-2000"), "0000"}, {MonthName("01-01-2000"), "styczeń"_mz},
                         {MonthName("01-10-2000"), "październik"_mz}, {MonthName("01-12-99"), "grudzień"_mz},
                         {MonthName("01-13-2000"), "?"}, {MonthName("01-1"), "?"}});
}

TEST(DateToday, MatchesTheClockInBothLayouts) {
  ShortText full = Today(10);
  ShortText shortForm = Today(8);
  EXPECT_TRUE(DateValid(full, 10)) << full.Str();
  EXPECT_TRUE(DateValid(shortForm, 8));
  EXPECT_EQ(DateShorten(full), shortForm);
}

TEST(TimeText, ValidityAtMidnight) {
  struct Row { const char* time; bool want; };
  const Row rows[] = {
      {"24.00", true}, {"00.00", true}, {"24.01", false}, {"23.59", true}, {"12.60", false},
      {"25.00", false}, {"1.00", false}, {"12.3a", false}, {"", false},
  };
  for (const auto& r : rows) EXPECT_EQ(TimeValid(r.time), r.want) << r.time;
}

TEST(TimeText, MinutesBothWays) {
  ExpectRows<int>({{TimeToMinutes("06.08"), 368}, {TimeToMinutes("24.00"), 1440}, {TimeToMinutes("24.01"), 0},
                   {TimeToMinutes("xx.30"), 30}, {TimeToMinutes(""), 0}});
  ExpectRows<ShortText>({{MinutesToTime(368), "06.08"}, {MinutesToTime(1440), "24.00"}, {MinutesToTime(0), "00.00"},
                         {MinutesToTime(1441), "00.00"}, {MinutesToTime(-1), "00.00"}});
  for (int m = 0; m <= 1440; ++m) ASSERT_EQ(TimeToMinutes(MinutesToTime(m)), m);
  int now = NowMinutes();
  EXPECT_GE(now, 0);
  EXPECT_LT(now, 1440);
}

TEST(DaySerial, KnownDaysAndBlankDate) {
  // 29-02-1900 is no day and gives 0.
  ExpectRows<int32_t>({{EncodeDaySerial(1899, 12, 30), 0}, {EncodeDaySerial(1900, 1, 1), 2},
                       {EncodeDaySerial(2000, 1, 1), 36526}, {EncodeDaySerial(1, 1, 1), kBlankDateSerial},
                       {EncodeDaySerial(2000, 2, 29) + 1, EncodeDaySerial(2000, 3, 1)},
                       {EncodeDaySerial(1900, 2, 28) + 1, EncodeDaySerial(1900, 3, 1)}, {EncodeDaySerial(1900, 2, 29), 0}});
  int32_t serial = 5;
  EXPECT_FALSE(TryEncodeDaySerial(2024, 13, 1, serial));
  EXPECT_EQ(serial, 0);
  EXPECT_FALSE(TryEncodeDaySerial(0, 1, 1, serial));
  // Outside the range gives the blank date.
  ExpectRows<ShortText>({{DaySerialToIsoText(kBlankDateSerial), "0001-01-01"}, {DaySerialToIsoText(36526), "2000-01-01"},
                         {DaySerialToIsoText(0), "1899-12-30"}, {DaySerialToIsoText(kBlankDateSerial - 1), "0001-01-01"}});
}

TEST(DaySerial, RoundTripOverEveryDayOfTheRange) {
  int y = 0, m = 0, d = 0;
  int32_t expected = kBlankDateSerial;
  for (int year = 1; year <= 9999; year += (year < 1890 || year > 2110) ? 97 : 1) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= 31; ++day) {
        int32_t s = 0;
        if (!TryEncodeDaySerial(year, month, day, s)) continue;
        ASSERT_TRUE(DecodeDaySerial(s, y, m, d));
        ASSERT_EQ(y * 10000 + m * 100 + d, year * 10000 + month * 100 + day);
        if (year == 1) {
          ASSERT_EQ(s, expected++) << "consecutive days";
        }
      }
    }
  }
  EXPECT_TRUE(DecodeDaySerial(EncodeDaySerial(9999, 12, 31), y, m, d));
  EXPECT_FALSE(DecodeDaySerial(EncodeDaySerial(9999, 12, 31) + 1, y, m, d));
}

}  // namespace
