// The menu's printer operations on the simulators, by every road: POSNET and
// ELZAB driven from this process, and job files for the real polling fisksrv
// serving both families. Each operation is answered as an operator would and
// checked in the journal of the printer that it must reach.
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

#include "elzab_sim_process.h"
#include "fiscal/elzab_line.h"
#include "fiscal/portio.h"
#include "fiscal/printerops.h"
#include "fiscal/serial.h"
#include "printers.h"
#include "tui/tui_fixture.h"

namespace {

enum class Road { kPosnet, kElzab, kServerPosnet, kServerElzab };

struct Case {
  const char* name;
  Road road;
  PrinterOp op;
  std::string keys;  // "\r" yes or Enter, "N" no, "H" Home
  std::string line;  // what the printer's journal must end with
};

// The period the operator types: 1 February to 15 March 2024. The POSNET
// server reads the year from the century digits of the job's dates, so there
// the report runs for the year 20.
const std::string kTypedPeriod = "H01022024\rH15032024\r";
constexpr PosnetClock kSetClock{24, 1, 5, 10, 30};

const Case kCases[] = {
    {"posnet daily", Road::kPosnet, PrinterOp::kDailyReport, "\r", "DAILY REPORT"},
    {"posnet period", Road::kPosnet, PrinterOp::kPeriodReport, kTypedPeriod, "PERIOD REPORT 24-02-01 24-03-15"},
    {"posnet drawer", Road::kPosnet, PrinterOp::kDrawer, "", "DRAWER SZUFLADA"},
    {"elzab daily", Road::kElzab, PrinterOp::kDailyReport, "\r", "DAILY REPORT"},
    {"elzab period", Road::kElzab, PrinterOp::kPeriodReport, kTypedPeriod + "N", "PERIOD REPORT NFISK 24-02-01 24-03-15"},
    {"elzab drawer", Road::kElzab, PrinterOp::kDrawer, "", "DRAWER"},
    {"server posnet daily", Road::kServerPosnet, PrinterOp::kDailyReport, "\r", "DAILY REPORT"},
    {"server posnet period", Road::kServerPosnet, PrinterOp::kPeriodReport, kTypedPeriod + "\r\r",
     "PERIOD REPORT 20-02-01 20-03-15"},
    {"server posnet drawer", Road::kServerPosnet, PrinterOp::kDrawer, "", "DRAWER SZUFLADA"},
    {"server elzab daily", Road::kServerElzab, PrinterOp::kDailyReport, "\r", "DAILY REPORT"},
    {"server elzab period", Road::kServerElzab, PrinterOp::kPeriodReport, kTypedPeriod + "\r\r",
     "PERIOD REPORT FISK 24-02-01 24-03-15"},
    {"server elzab drawer", Road::kServerElzab, PrinterOp::kDrawer, "", "DRAWER"},
};

class PrinterOpsTest : public PrintersTest {
 protected:
  void SetUp() override {
    TermOutputToBuffer(&screen_);
    tui_test::InitTerminal("xterm");
    ASSERT_NE(::getcwd(home_, sizeof home_), nullptr);
    ASSERT_EQ(::chdir(dir_.path().c_str()), 0);
    // The application's printers 1 and 2 are the server's rows "jobs\e" and "jobs\p".
    ASSERT_EQ(::mkdir("srvfisk", 0777), 0);
    WriteFileText(dir_ / "srvfisk/1.cfg", "jobs\\e\n");
    WriteFileText(dir_ / "srvfisk/2.cfg", "jobs\\p\n");
    Start();
    StartDirectElzab({});
  }
  // The server holds its ELZAB line for good: this process prints on a simulator of its own.
  void StartDirectElzab(std::vector<std::string> args) {
    Release();
    directElzab_ = std::make_unique<ElzabSimProcess>(std::move(args));
    ASSERT_FALSE(directElzab_->Line().empty());
    ::setenv("KLOTE_ELZAB_LINE", directElzab_->Line().c_str(), 1);
  }
  void TearDown() override {
    Release();
    DiscardPendingKeys();
    (void)::chdir(home_);
    PrintersTest::TearDown();
    TermOutputToBuffer(nullptr);
  }
  // The lines go back, so that the server gets the printers to itself.
  static void Release() {
    PosnetCloseAtExit();
    SetElzabPortIo(nullptr);
    ElzabLine().ready = false;
  }
  static FiscalConfig Config(Road road) {
    FiscalConfig c;
    c.printerType = road == Road::kPosnet ? kFiscalPosnet : road == Road::kElzab ? kFiscalElzab : kFiscalServer;
    c.port = road == Road::kServerPosnet ? 2 : 1;
    c.drawer = 1;
    return c;
  }
  static void Type(const std::string& keys) {
    for (char k : keys) {
      if (k == 'H') ASSERT_TRUE(PushKey(keys::kHome.ch, keys::kHome.scan));
      else ASSERT_TRUE(PushKey(static_cast<unsigned char>(k), 0));
    }
  }
  // Everything the terminal was sent: the boxes are gone from the screen once answered.
  std::string Screen() {
    TermFlush();
    return screen_;
  }
  std::vector<std::string> JournalOf(Road road) const {
    if (road == Road::kElzab) return directElzab_->Journal();
    return road == Road::kPosnet || road == Road::kServerPosnet ? PosnetJournal() : ElzabJournal();
  }
  bool Run(const FiscalConfig& config, PrinterOp op) {
    switch (op) {
      case PrinterOp::kDailyReport: return FiscalDailyReport(config);
      case PrinterOp::kPeriodReport: return FiscalPeriodReport(config);
      case PrinterOp::kClock: return FiscalClockSync(config, kSetClock);
      case PrinterOp::kDrawer: return FiscalDrawer(config);
    }
    return false;
  }

  std::unique_ptr<ElzabSimProcess> directElzab_;
  std::string screen_;
  char home_[PATH_MAX] = {};
};

TEST_F(PrinterOpsTest, EveryOperationReachesItsPrinterByEveryRoad) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    const std::size_t before = JournalOf(c.road).size();
    Type(c.keys);
    EXPECT_TRUE(Run(Config(c.road), c.op));
    Release();
    // The server prints by itself, after the job is published.
    EXPECT_TRUE(WaitUntil([&] { return JournalOf(c.road).size() > before; }, 20000));
    const std::vector<std::string> journal = JournalOf(c.road);
    ASSERT_EQ(journal.size(), before + 1) << Screen();
    EXPECT_EQ(journal.back(), c.line);
    EXPECT_FALSE(JobExists('e') || JobExists('p'));
    DiscardPendingKeys();
  }
}

TEST_F(PrinterOpsTest, ClockSetIsWhatTheDailyQuestionShowsAndNoAnswerSendsNothing) {
  const FiscalConfig posnet = Config(Road::kPosnet);
  Type("\r");
  ASSERT_TRUE(FiscalClockSync(posnet, kSetClock));
  Type("N");  // the question shows both clocks; "no" leaves the printer alone
  EXPECT_FALSE(FiscalDailyReport(posnet));
  EXPECT_NE(Screen().find("Czas drukarki : 05-01-2024 10.30"), std::string::npos) << Screen();
  EXPECT_TRUE(PosnetJournal().empty());
  // The menu offers the clock only where the printer has one, the drawer only where one hangs.
  FiscalConfig elzab = Config(Road::kElzab);
  elzab.drawer = 0;
  EXPECT_EQ(PrinterOpsOf(elzab), (std::vector<PrinterOp>{PrinterOp::kDailyReport, PrinterOp::kPeriodReport}));
  EXPECT_EQ(PrinterOpsOf(posnet).size(), 4u);
  EXPECT_TRUE(PrinterOpsOf(FiscalConfig{}).empty());
}

// A period of one day is refused by POSNET, and ELZAB's refusal shows the printer's reason.
TEST_F(PrinterOpsTest, RefusedReportsShowTheReason) {
  Type("H01022024\rH01022024\r\r");
  EXPECT_FALSE(FiscalPeriodReport(Config(Road::kPosnet)));
  EXPECT_TRUE(PosnetJournal().empty());
  StartDirectElzab({"--fail", "1:nak=8,0"});
  Type("\r\r");
  EXPECT_FALSE(FiscalDailyReport(Config(Road::kElzab)));
  EXPECT_NE(Screen().find("nie wydrukowano raportu za poprzedni"), std::string::npos) << Screen();
  EXPECT_TRUE(directElzab_->Journal().empty());
}

}  // namespace
