#include "tui/datedialogs.h"

#include <gtest/gtest.h>

#include "base/mazovia.h"
#include "tui_fixture.h"

namespace {

// Every row of the screen as the first box showed it.
std::string g_screenSeen;
void LookThenEnter() {
  g_screenSeen.clear();
  for (int r = 1; r <= 25; ++r) g_screenSeen += RowText(r).Str();
  SetKeyIdleHook(nullptr);
  (void)PushKey(13, 28);
}

void TypeKeys(const char* text) {
  for (const char* p = text; *p; ++p) (void)PushKey(static_cast<unsigned char>(*p), 0);
}

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

class DateDialogTest : public tui_test::TuiTest {
 protected:
  void TearDown() override {
    SetKeyIdleHook(nullptr);
    DiscardPendingKeys();
    TuiTest::TearDown();
  }
  static bool Seen(const ShortText& text) { return g_screenSeen.find(text.Str()) != std::string::npos; }
};

TEST_F(DateDialogTest, GoodDatesAndTimesPassWithoutABox) {
  std::string before;
  for (int r = 1; r <= 25; ++r) before += RowText(r).Str();
  EXPECT_TRUE(DateValidWithMessage(ShortText("29-02-2000"), 10));
  EXPECT_TRUE(DateValidWithMessage(ShortText("01-01-96"), 8));
  EXPECT_TRUE(TimeValidWithMessage(ShortText("24.00")));
  std::string after;
  for (int r = 1; r <= 25; ++r) after += RowText(r).Str();
  EXPECT_EQ(before, after);
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
    SetKeyIdleHook(LookThenEnter);
    EXPECT_FALSE(DateValidWithMessage(ShortText(c.date), c.length));
    EXPECT_EQ(CurrentAttr(), 0x1E);
    EXPECT_TRUE(Seen("Nieprawidłowo podana data."_mz));
    EXPECT_TRUE(Seen(ShortText(c.layout)));
    EXPECT_TRUE(Seen(ShortText(c.example)));
    EXPECT_TRUE(Seen("   dziewięćdziesiątego dziewiątego)"_mz));
  }
}

TEST_F(DateDialogTest, RefusedTimeExplainsTheLayout) {
  SetKeyIdleHook(LookThenEnter);
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
  std::string before;
  for (int r = 1; r <= 25; ++r) before += RowText(r).Str();
  TypeKeys("31-02-2024\r");  // refused: the layout box takes the next Enter
  (void)PushKey(13, 28);
  for (int i = 0; i < 10; ++i) (void)PushKey(8, 14);
  // The key buffer holds 32 keys: the good date comes when the rest is read.
  SetKeyIdleHook([] {
    SetKeyIdleHook(nullptr);
    TypeKeys("15-06-2024\r");
  });
  SystemClockCheck(kFake);
  EXPECT_EQ(FakeClock::sets, 1);
  EXPECT_EQ(FakeClock::year, 2024);
  EXPECT_EQ(FakeClock::month, 6);
  EXPECT_EQ(FakeClock::day, 15);
  EXPECT_EQ(KeysBuffered(), 0);
  std::string after;
  for (int r = 1; r <= 25; ++r) after += RowText(r).Str();
  EXPECT_EQ(before, after);
}

TEST_F(DateDialogTest, ClockThatForgetsTheDateIsReported) {
  FakeClock::Reset(1980);
  FakeClock::keeps = false;
  TypeKeys("15-06-2024\r");
  SetKeyIdleHook(LookThenEnter);
  SystemClockCheck(kFake);
  EXPECT_TRUE(Seen("Twój komputer źle zapamiętuje daty."_mz));
}

TEST(DateDialogDeathTest, EscOrAnUnreadableDateEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        std::string sink;
        TermOutputToBuffer(&sink);
        tui_test::InitTerminal("xterm");
        FakeClock::Reset(1980);
        (void)PushKey(27, 1);
        SystemClockCheck(kFake);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        std::string sink;
        TermOutputToBuffer(&sink);
        tui_test::InitTerminal("xterm");
        FakeClock::Reset(2000);
        FakeClock::readable = false;
        (void)PushKey(13, 28);
        SystemClockCheck(kFake);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
