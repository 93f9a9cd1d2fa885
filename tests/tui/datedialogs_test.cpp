#include "tui/datedialogs.h"

#include <gtest/gtest.h>

#include "base/expect_rows.h"
#include "base/mazovia.h"
#include "form_fixture.h"

namespace {

using test_rows::ExpectRows;

using form_test::Capture;
using form_test::Keys;
using form_test::Play;

// A machine clock whose date the test sets and reads.
struct FakeClock {
  static inline int year = 1980, month = 1, day = 1;
  static inline bool keeps = true, readable = true;
  static inline int sets = 0;
  static bool Read(int& y, int& m, int& d) {
    y = year, m = month, d = day;
    return readable;
  }
  static bool Set(int y, int m, int d) {
    ++sets;
    if (keeps) year = y, month = m, day = d;
    return true;
  }
  static void Reset(int y) {
    year = y, month = 1, day = 1, keeps = true, readable = true, sets = 0;
  }
};
constexpr ClockAccess kFake{FakeClock::Read, FakeClock::Set};

class DateDialogTest : public form_test::FormTest {
 protected:
  // Whether the screen of the first box showed the text.
  static bool Seen(const ShortText& text) {
    return !form_test::Seen().empty() && form_test::Seen().at(0).RowOf(text.View()) > 0;
  }
};

TEST_F(DateDialogTest, GoodDatesAndTimesPassWithoutABox) {
  const auto before = Capture().rows;
  EXPECT_TRUE(DateValidWithMessage(ShortText("29-02-2000"), 10));
  EXPECT_TRUE(DateValidWithMessage(ShortText("01-01-96"), 8));
  EXPECT_TRUE(TimeValidWithMessage(ShortText("24.00")));
  EXPECT_EQ(Capture().rows, before);
}

TEST_F(DateDialogTest, RefusedDateExplainsTheLayoutOfItsLengthAndKeepsTheColour) {
  struct Case {
    const char* date;
    int length;
    const char* layout;
    const char* example;
  } cases[] = {{"29-02-1900", 10, "w formie: DD-MM-RRRR np.:", " 01-02-1999 (pierwszy"},
               {"32-01-99", 8, "w formie: DD-MM-RR np.:", " 04-03-20 (czwarty"},
               {"01-01-2000", 8, "w formie: DD-MM-RR np.:", " 01-02-19 (pierwszy"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.date);
    TextAttr(0x1E);
    Play({{keys::kEnter}});
    EXPECT_FALSE(DateValidWithMessage(ShortText(c.date), c.length));
    EXPECT_EQ(CurrentAttr(), 0x1E);
    EXPECT_TRUE(Seen("Nieprawidłowo podana data."_mz));
    EXPECT_TRUE(Seen(ShortText(c.layout)));
    EXPECT_TRUE(Seen(ShortText(c.example)));
    EXPECT_TRUE(Seen("   dziewięćdziesiątego dziewiątego)"_mz));
  }
}

TEST_F(DateDialogTest, RefusedTimeExplainsTheLayout) {
  Play({{keys::kEnter}});
  EXPECT_FALSE(TimeValidWithMessage(ShortText("24.01")));
  EXPECT_TRUE(Seen("Nieprawidłowo podany czas."_mz));
  EXPECT_TRUE(Seen("może być przedstawiane tylko jako czas po godzinie zero."_mz));
}

TEST_F(DateDialogTest, ClockFrom1995OnIsLeftAlone) {
  FakeClock::Reset(1995);
  SystemClockCheck(kFake);
  EXPECT_EQ(FakeClock::sets, 0);
  EXPECT_EQ(KeysBuffered(), 0);
}

TEST_F(DateDialogTest, EarlyClockAsksForTheDateUntilItIsValidAndSetsIt) {
  FakeClock::Reset(1980);
  WriteAt(1, 12, ShortText("tlo"));
  const auto before = Capture().rows;
  // Refused: the layout box takes the next Enter, and the field is emptied for the good date.
  std::vector<KeyPair> again(10, keys::kBackspace);
  const std::vector<KeyPair> good = Keys("15-06-2024", {keys::kEnter});
  again.insert(again.end(), good.begin(), good.end());
  Play({Keys("31-02-2024", {keys::kEnter}), {keys::kEnter}, again});
  SystemClockCheck(kFake);
  ExpectRows<int>({{FakeClock::sets, 1}, {FakeClock::year, 2024}, {FakeClock::month, 6}, {FakeClock::day, 15},
                   {KeysBuffered(), 0}});
  EXPECT_EQ(Capture().rows, before);
}

TEST_F(DateDialogTest, ClockThatForgetsTheDateIsReported) {
  FakeClock::Reset(1980);
  FakeClock::keeps = false;
  Play({Keys("15-06-2024", {keys::kEnter}), {keys::kEnter}});
  SystemClockCheck(kFake);
  EXPECT_NE(form_test::Seen().at(1).RowOf("Twój komputer źle zapamiętuje daty."_mz.View()), 0);
}

TEST(DateDialogDeathTest, EscOrAnUnreadableDateEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto check = [](int year, bool readable, KeyPair key) {
    std::string sink;
    TermOutputToBuffer(&sink);
    tui_test::InitTerminal("xterm");
    FakeClock::Reset(year);
    FakeClock::readable = readable;
    (void)PushKey(key.ch, key.scan);
    SystemClockCheck(kFake);
  };
  EXPECT_EXIT(check(1980, true, keys::kEsc), ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(check(2000, false, keys::kEnter), ::testing::ExitedWithCode(0), "");
}

}  // namespace
