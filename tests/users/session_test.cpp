// Sessions with real processes: another process holds a user's session
// (lock file and mark) or dies by SIGKILL leaving the mark; the login of this
// process is then refused, asked or admitted by the override rule; and the
// failure path of CheckDBError ends a session for real.
#include <cstdlib>

#include "sqltable/dbapp.h"
#include "sqltable/pglib.h"
#include "tui/keyboard.h"
#include "users/session.h"
#include "users_fixture.h"

namespace {

using keys::kDown;
using keys::kEnter;
using keys::kEsc;

const ShortText kHeldText = "Ktoś już pracuje, jako ten użytkownik.@Wejdź do programu jako inny użytkownik, niż ten."_mz;
const ShortText kAskSame =
    "Wygląda na to, że masz na komputerze otwartą już sesję programu.@Skorzystaj z niej, a aktualną wyłącz.@Jeśli innej, niż aktualna sesji nie ma, wchodź śmiało dalej.@Wchodzisz ?"_mz;
const ShortText kRefuseSame =
    "Wygląda na to, że masz na komputerze otwartą już sesję programu.@Skorzystaj z niej, a aktualną wyłącz.@Jeśli innej, niż aktualna sesji nie ma, odblokować Twoje konto może@`Kierownik Systemu\"."_mz;
const ShortText kOtherHead =
    "Ten użytkownik zarejestrowany jest, jako pracujący w tej chwili@na innym komputerze.@Komputer: BETA@Użytkownik komputera: OPER.@"_mz;
const ShortText kAskOther =
    kOtherHead + "Lepiej nie wchodź jako on do programu.@Czy decydujesz się jednak wejść, jako on ?"_mz;
const ShortText kRefuseOther = kOtherHead + "Odblokować jego konto może `Kierownik Systemu\"."_mz;

class SessionTest : public UsersTest {
 protected:
  void SetUp() override {
    UsersTest::SetUp();
    setenv("USER", "oper", 1);
    setenv("HOSTNAME", "alfa", 1);
    SessionSetOverrideRule(kOverrideAnybody);
    AddRow(1, "Jan", "Nowak");
    AddRow(2, "Ewa", "Lis");
    ASSERT_TRUE(Psql("UPDATE dane_uzytkown_uzytkown SET upr_max = 1 WHERE numer = 2"));
  }
  void TearDown() override {
    KillHolder(child_);
    SessionEnd();
    UsersTest::TearDown();
  }
  // Another process takes user n's session from the computer named and waits to be killed.
  void StartOther(int32_t number, const char* host) {
    child_ = HoldInAnotherProcess([&] {
      setenv("HOSTNAME", host, 1);
      int lock = -1;
      return !FileLockTake(UserPath(number, ShortText("kluczw__")), lock, false) && !SessionEnterByNumber(number);
    });
    ASSERT_GT(child_, 0);
  }
  // "status:system user:computer" of user n's row.
  static std::string Mark(int32_t number) {
    return Scalar("SELECT rtrim(status) || ':' || rtrim(uzytk_sys) || ':' || rtrim(komputer) FROM "
                  "dane_uzytkown_uzytkown WHERE numer = " + std::to_string(number));
  }
  static std::vector<KeyPair> Choose(int32_t number) {
    std::vector<KeyPair> keys(static_cast<std::size_t>(number), kDown);
    keys.push_back(kEnter);
    return keys;
  }
  pid_t child_ = -1;
};

TEST_F(SessionTest, SecondLoginRefusedWhileTheFirstRuns) {
  StartOther(1, "alfa");
  EXPECT_EQ(Mark(1), ">:OPER:ALFA");
  Play({{Choose(1)}, {{kEnter}}, {{kEsc}}});
  EXPECT_FALSE(SessionLogin());
  EXPECT_TRUE(Shown(kHeldText));
  EXPECT_FALSE(UserLoggedIn());
  EXPECT_EQ(Mark(1), ">:OPER:ALFA");
  EXPECT_EQ(ReadFile("dane/uzytkown/1/kluczw__.lcu"), "LOCK__");
}

TEST_F(SessionTest, StaleMarkPassesOnlyByTheOverrideRule) {
  struct Case {
    int16_t rule;
    int32_t number;
    const char* deadHost;  // where the killed session ran
    ShortText text;        // the box shown at the mark
    const char* answer;    // "T", "N", or "" for a refusal (Enter)
    bool enters;
  };
  const Case cases[] = {
      {kOverrideAnybody, 1, "alfa", kAskSame, "T", true}, {kOverrideAnybody, 1, "alfa", kAskSame, "N", false},
      {kOverrideAnybody, 1, "beta", kAskOther, "T", true}, {kOverrideMaxRights, 1, "alfa", kRefuseSame, "", false},
      {kOverrideMaxRights, 1, "beta", kRefuseOther, "", false}, {kOverrideMaxRights, 2, "beta", kAskOther, "T", true},
      {kOverrideManager, 2, "alfa", kRefuseSame, "", false}, {kOverrideManager, 1, "beta", kRefuseOther, "", false},
      {kOverrideManager, 0, "beta", kAskOther, "T", true}, {7, 2, "beta", kRefuseOther, "", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "rule " << c.rule << " user " << c.number << " from " << c.deadHost
                                    << " answer " << c.answer);
    StartOther(c.number, c.deadHost);
    KillHolder(child_);
    const std::string stale = ">:OPER:" + std::string(c.deadHost == std::string("alfa") ? "ALFA" : "BETA");
    ASSERT_EQ(Mark(c.number), stale);
    SessionSetOverrideRule(c.rule);
    ForgetScreens();
    std::vector<Step> steps = {{Choose(c.number)}, {*c.answer ? Type(c.answer) : std::vector<KeyPair>{kEnter}}};
    if (!c.enters) steps.push_back({{kEsc}});
    Play(steps);
    EXPECT_EQ(SessionLogin(), c.enters);
    EXPECT_TRUE(Shown(c.text));
    EXPECT_EQ(Mark(c.number), c.enters ? ">:OPER:ALFA" : stale);
    SessionEnd();
    EXPECT_EQ(Mark(c.number), c.enters ? "N::" : stale);
    ASSERT_TRUE(Psql("UPDATE dane_uzytkown_uzytkown SET status = 'N', uzytk_sys = '', komputer = ''"));
  }
}

TEST_F(SessionTest, DatabaseFailureEndsTheSession) {
  Play({{Choose(2)}});  // after the steps every box is answered with Esc: no details
  const pid_t pid = fork();
  if (pid == 0) {
    ConnectChild();
    if (!SessionLogin()) _exit(3);
    (void)PGTransBegin();
    CheckDBError(97);  // ends the process with 0 after the session's end
    _exit(4);
  }
  EXPECT_EQ(ExitStatus(pid), 0);
  EXPECT_EQ(Mark(2), "N::");
  EXPECT_EQ(Scalar("SELECT data_wejscia IS NOT NULL AND data_wyjscia IS NOT NULL FROM dane_uzytkown_uzytkown "
                   "WHERE numer = 2"),
            "t");
  EXPECT_EQ(ReadFile("dane/uzytkown/2/kluczw__.lcu"), "UNLOCK");
  // The companion named the holder: a counted name and the number, low byte first.
  const std::string lci = ReadFile("dane/uzytkown/2/kluczw__.lci");
  ASSERT_EQ(lci.size(), 56u);
  EXPECT_EQ(lci.substr(0, 8), std::string("\x07" "Ewa Lis", 8));
  EXPECT_EQ(lci.substr(8, 44), std::string(44, '\0'));
  EXPECT_EQ(lci.substr(52), std::string("\x02\0\0\0", 4));
}

}  // namespace
