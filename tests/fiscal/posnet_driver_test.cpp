// The POSNET driver against the printer simulator over a real pseudo-terminal.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "base/mazovia.h"
#include "fiscal/posnet.h"
#include "fiscal/serial.h"
#include "sim_process.h"

namespace {

bool Has(const std::vector<std::string>& lines, const std::string& want) {
  return std::find(lines.begin(), lines.end(), want) != lines.end();
}

int Count(const std::vector<std::string>& lines, const std::string& want) {
  return static_cast<int>(std::count(lines.begin(), lines.end(), want));
}

struct Sale {
  const char* name;
  const char* qty;
  const char* vat;
  int64_t price, value;
};

const std::vector<Sale> kTwoLines = {{"Chleb razowy", "2", "A", 105, 210},
                                     {"Maslo extra 200g", "1", "B", 200, 200}};

class PosnetOverPty : public ::testing::Test {
 protected:
  void Start(std::vector<std::string> args = {}) {
    sim_ = std::make_unique<SimProcess>(std::move(args));
    ASSERT_FALSE(sim_->Slave().empty());
    SetPosnetDevicePath(ShortText(sim_->Slave()));
    PosnetOpen(255);
    ASSERT_FALSE(PosnetLine().portClosed);
  }
  void TearDown() override {
    PosnetCloseAtExit();
    SetPosnetDevicePath("");
    PosnetConfig() = {};
  }

  // A receipt as the job handler sends it; the first failure is explained and ends it.
  int Receipt(const std::vector<Sale>& lines, const ShortText& number, const ShortText& payment,
              ShortText* message = nullptr) {
    int64_t total = 0;
    for (const auto& l : lines) total += l.value;
    int code = PosnetModeX(1);
    if (code == 0) code = PosnetErrorMode(1);
    if (code == 0) code = PosnetBeginReceipt(static_cast<int>(lines.size()), "SKLEP", number, "");
    for (std::size_t i = 0; i < lines.size() && code == 0; ++i)
      code = PosnetReceiptLine(static_cast<int>(i + 1), lines[i].name, lines[i].qty, lines[i].vat,
                               lines[i].price, lines[i].value);
    if (code == 0)
      code = PosnetEndReceipt("0", "KASJER", "** zachowaj paragon do ew. reklamacji **", payment,
                              "", payment.Empty() ? total : 0, total);
    ShortText text;
    if (PosnetErrorText(code, text) && message) *message = text;
    return code;
  }

  std::unique_ptr<SimProcess> sim_;
};

// The number and the payment go into the foot (new firmware) or as given (old).
TEST_F(PosnetOverPty, ReceiptsLandInTheJournalWithNumberAndPayment) {
  const std::string keep = "FOOT ** zachowaj paragon do ew. reklamacji **";
  const struct {
    bool oldFirmware;
    const char* number;
    ShortText payment;
    std::vector<std::string> journal;  // lines among others
  } rows[] = {
      {false, "123", "zapłata: przelew "_mz,
       {"RECEIPT 2", "HEAD SKLEP", "LINE 1|Chleb razowy|2|A|1.05/2.10/", "LINE 2|Maslo extra 200g|1|B|2/2/",
        "CASHIER KASJER", "FOOT " + "#123-ZAPŁATA: PRZELEW"_mz.Str(), keep, "TOTAL 4.10/ PAID 0/"}},
      {false, "", "", {"FOOT #x", "TOTAL 4.10/ PAID 4.10/"}},  // cash without a number
      {true, "123", "przelew", {"HEAD 123", keep, "FOOT przelew"}},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.number + std::string(r.oldFirmware ? " old" : " new"));
    Start();
    PosnetConfig().oldFirmware = r.oldFirmware;
    ASSERT_EQ(Receipt(kTwoLines, r.number, r.payment), 0);
    const auto j = sim_->Journal();
    for (const auto& line : r.journal) EXPECT_TRUE(Has(j, line)) << line;
    EXPECT_FALSE(Has(j, "CANCELLED"));
    EXPECT_EQ(PosnetEnquire(1) & kPosnetInTransaction, 0);
    EXPECT_TRUE(!r.oldFirmware || ReceiptNumberText().Empty());
    TearDown();
  }
}

TEST_F(PosnetOverPty, ReportsCashAndDrawerReachThePrinter) {
  Start();
  EXPECT_EQ(PosnetDailyReportCommand(), 0);
  EXPECT_EQ(PosnetPeriodReportCommand(24, 1, 1, 24, 1, 31), 0);
  EXPECT_EQ(PosnetPeriodReportCommand(99, 12, 1, 0, 1, 31), 0);  // 1999 is before 2000
  EXPECT_EQ(PosnetCashIn(12345), 0);
  EXPECT_EQ(PosnetDisplayText(1, "SZUFLADA"), 0);
  EXPECT_EQ(PosnetPrintLine("wolny tekst"), 0);
  EXPECT_EQ(PosnetModeX(1), 0);  // a message after the display: the display is in the journal
  for (const char* line : {"DAILY REPORT", "PERIOD REPORT 24-01-01 24-01-31", "PERIOD REPORT 99-12-01 00-01-31",
                           "CASH IN 123.45/", "DRAWER SZUFLADA", "PRINT wolny tekst"})
    EXPECT_TRUE(Has(sim_->Journal(), line)) << line;
}

// Each code from the condition that causes it, with its text, and the cancel sent after it.
TEST_F(PosnetOverPty, EachFailureGivesItsCodeTextAndTheCancel) {
  const struct {
    const char* fault;
    int code;
    ShortText message;
    const char* traced;  // what the printer saw besides the cancel
  } rows[] = {
      {"3:xoff=1300", -1, "Błąd drukarki fiskalnej nr -1:@`przekroczenie czasu wysyłania (dlugi XOFF)\"."_mz, "XOFF"},
      {"1:badend", -2, "Błąd drukarki fiskalnej nr -2:@`brak odpowiedzi drukarki\".@Należy wyjść z programu, wyłączyć i włączyć drukarkę i wejść@ponownie do programu."_mz, "STATUS QUERY"},
      {"2:corrupt", -3, "Błąd drukarki fiskalnej nr -3:@`odpowiedź drukarki nieprawidłowa\"."_mz, "STATUS QUERY"},
      {"1:error=0", -7, "Błąd drukarki fiskalnej nr -7:@`błąd rozkazu wysłanego do drukarki\"."_mz, "STATUS QUERY"},
      {"4:error=18", 18, "Błąd drukarki fiskalnej nr 18:@`błędne oznaczenie stawki PTU (lub brak)\"."_mz, "CMD 4 $l"},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.fault);
    Start({"--fail", r.fault});
    ShortText message;
    EXPECT_EQ(Receipt(kTwoLines, "", "", &message), r.code);
    EXPECT_EQ(message, r.message);
    auto trace = sim_->Trace();
    EXPECT_TRUE(Has(trace, r.traced));
    // A long XOFF is lifted while the cancel waits, so the cancel gets through as well.
    EXPECT_TRUE(Has(trace, "CANCEL 0$e"));
    EXPECT_EQ(Has(sim_->Journal(), "CANCELLED"), r.code == 18);
    TearDown();
  }
}

TEST_F(PosnetOverPty, SilentPrinterGivesMinus2) {
  Start({"--fail", "1+:silent"});
  EXPECT_EQ(PosnetFrame("1#e", 0.2), -2);
  EXPECT_EQ(PosnetCancelReceipt(), -2);
  EXPECT_TRUE(Has(sim_->Trace(), "CANCEL 0$e") == false);  // a silent printer takes nothing in
}

TEST_F(PosnetOverPty, PeriodOfOneDayIsRefusedWithMinus6AndNothingSent) {
  Start();
  EXPECT_EQ(PosnetPeriodReportCommand(5, 1, 24, 5, 1, 24), -6);
  EXPECT_EQ(PosnetPeriodReportCommand(24, 2, 1, 24, 1, 31), -6);
  ShortText message;
  EXPECT_TRUE(PosnetErrorText(-6, message));
  EXPECT_EQ(message, "Błąd drukarki fiskalnej nr -6:@`błąd rozkazu wysłanego do drukarki\"."_mz);
  auto trace = sim_->Trace();
  EXPECT_TRUE(std::none_of(trace.begin(), trace.end(), [](const std::string& l) { return l.starts_with("CMD") && l != "CMD 1 $e"; }));
}

TEST_F(PosnetOverPty, OpenTransactionAfterCancelIsMinus8UnlessAnotherMaker) {
  Start({"--ignore-cancel"});
  ASSERT_EQ(PosnetBeginReceipt(1, "SKLEP", "", ""), 0);
  EXPECT_EQ(PosnetCancelReceipt(), -8);
  PosnetConfig().otherThanPosnet = 1;
  ShortText message;
  EXPECT_TRUE(PosnetErrorText(-8, message));
  EXPECT_EQ(message, "Błąd drukarki fiskalnej nr -8:@`inny błąd drukarki (np. niewykonanie zmiany trybu pracy)\"."_mz);
  int cancels = Count(sim_->Trace(), "CANCEL 0$e");
  PosnetConfig().otherThanPosnet = 0;
  EXPECT_FALSE(PosnetErrorText(-8, message));
  EXPECT_TRUE(message.Empty());
  EXPECT_EQ(Count(sim_->Trace(), "CANCEL 0$e"), cancels);  // no error, so no cancel either
}

TEST_F(PosnetOverPty, OneAnsweredEnquiryWaitsOutHalfASecondAndFailsTheLine) {
  Start({"--fail", "1:oneenq"});
  EXPECT_EQ(PosnetModeX(1), 0);
  EXPECT_TRUE(PosnetLine().lineFailed);
  PosnetClose();
  EXPECT_TRUE(PosnetLine().portClosed);
}

TEST_F(PosnetOverPty, LinkedSimulatorIsReachedThroughThePrefixSetting) {
  char dir[] = "/tmp/posnet-link-XXXXXX";
  ASSERT_TRUE(mkdtemp(dir));
  std::string link = std::string(dir) + "/ttyS2";
  sim_ = std::make_unique<SimProcess>(std::vector<std::string>{"--link", link});
  setenv("KLOTE_SERIAL_PREFIX", (std::string(dir) + "/ttyS").c_str(), 1);
  PosnetOpen(3);
  unsetenv("KLOTE_SERIAL_PREFIX");
  ASSERT_FALSE(PosnetLine().portClosed);
  EXPECT_EQ(PosnetDailyReportCommand(), 0);
  EXPECT_TRUE(Has(sim_->Journal(), "DAILY REPORT"));
  unlink(link.c_str());
  rmdir(dir);
}

TEST(PosnetClosedPort, EveryCommandAnswersMinus5AndTheTextSaysSo) {
  SetPosnetDevicePath("");
  PosnetOpen(255);  // the server has read no fiscal configuration: no device name
  ASSERT_TRUE(PosnetLine().portClosed);
  PosnetClock clock;
  ShortText none;
  const int codes[] = {PosnetModeX(1), PosnetErrorMode(1), PosnetSetClock(1, 1, 1, 1, 1),
                       PosnetBeginReceipt(1, "", "", ""), PosnetReceiptLine(1, "x", "1", "A", 1, 1),
                       PosnetReceiptLineDiscount(1, 0, "x", "1", "A", "", 1, 1),
                       PosnetEndReceipt("0", "", "", "", "", 0, 0),
                       PosnetEndReceiptDiscount(0, 0, 0, "", "", "", "", 0, 0, 0),
                       PosnetPrintLine("x"), PosnetCancelReceipt(), PosnetCashIn(1), PosnetCashOut(1),
                       PosnetCommandT(), PosnetCommandK("", ""), PosnetDailyReportCommand(),
                       PosnetPeriodReportCommand(1, 1, 1, 1, 1, 1), PosnetDisplayText(1, "x"),
                       PosnetReadClock(clock)};
  for (int c : codes) EXPECT_EQ(c, -5);
  ShortText message;
  EXPECT_TRUE(PosnetErrorText(-5, message));
  EXPECT_EQ(message, "Błąd drukarki fiskalnej nr -5:@`łącze COM nie jest zainicjowane\"."_mz);
}

// Fault injection: the printer refuses each command of a receipt in turn; afterwards
// it holds no open transaction, and only what came before the failure was printed.
TEST_F(PosnetOverPty, FailureAtEachCommandOfAReceiptLeavesNoOpenReceipt) {
  const std::vector<Sale> lines = {{"Chleb razowy", "2", "A", 105, 210},
                                   {"Maslo extra 200g", "1", "B", 200, 200},
                                   {"Mleko 2 procent", "3", "A", 250, 750}};
  const int commands = 3 + static_cast<int>(lines.size()) + 1;  // #x #e $h $l... $e
  for (int n = 1; n <= commands; ++n) {
    SCOPED_TRACE("failing command " + std::to_string(n));
    Start({"--fail", std::to_string(n) + ":error=" + std::to_string(20 + n)});
    EXPECT_EQ(Receipt(lines, "7", ""), 20 + n);
    auto j = sim_->Journal();
    EXPECT_EQ(Has(j, "RECEIPT 3"), n > 3);
    EXPECT_EQ(Has(j, "CANCELLED"), n > 3);
    for (int line = 1; line <= 3; ++line) {
      bool printed = std::any_of(j.begin(), j.end(), [&](const std::string& l) {
        return l.starts_with("LINE " + std::to_string(line) + "|");
      });
      EXPECT_EQ(printed, 3 + line < n) << "line " << line;
    }
    EXPECT_FALSE(std::any_of(j.begin(), j.end(), [](const std::string& l) { return l.starts_with("TOTAL"); }));
    EXPECT_EQ(PosnetEnquire(1) & kPosnetInTransaction, 0);
    TearDown();
  }
}

}  // namespace
