// fisksrv killed in the middle of a receipt, at evenly spaced moments, then
// started again and given the next receipt; and the printer killed or unplugged
// in the middle of one. What the printer simulators printed is the judge: no
// receipt twice, the next one always whole, and a line for every lost one.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "printers.h"

namespace {

constexpr int kKillPoints = 20;
constexpr int kSaleLines = 2;

// A receipt whose document number names it; the ELZAB cashier text is long, so
// that kills land inside that one long command too.
Lines Receipt(const std::string& number) { return ReceiptRecords(kSaleLines, number, std::string(100, 'K')); }

// Grosz as the log writes them: "5.00".
std::string Zloty(int grosz) {
  const std::string cents = std::to_string(grosz % 100);
  return std::to_string(grosz / 100) + "." + (cents.size() < 2 ? "0" : "") + cents;
}

class CrashTest : public PrintersTest {
 protected:
  void StartFamily(char row) {
    row_ = row;
    StartSimulators({"--baud", "9600"}, {"--baud", "9600", "--pace-input"});
  }
  void StartServer() { PrintersTest::StartServer(row_ == 'e' ? "1,1,\"jobs\\e\",,0\n" : "2,1,\"jobs\\p\",,0\n"); }
  int Count(const std::string& text) const { return CountOf(ReadFileText(dir_ / "fisk.log"), text); }
  // Publishes the receipt and waits for its result line.
  bool RunReceipt(const std::string& number) {
    const int before = Count("PARAGON");
    Publish(row_, "PARAGON", Receipt(number));
    return WaitUntil([&] { return Count("PARAGON") > before && !JobExists(row_); }, 30000);
  }

  // Kills the server at 20 moments spread over one receipt's time, each followed by a
  // new server and a new receipt; then judges the journal.
  void KillAtEvenMoments() {
    StartServer();
    const auto t0 = std::chrono::steady_clock::now();
    ASSERT_TRUE(RunReceipt("R0"));
    const auto receiptTime = std::chrono::steady_clock::now() - t0;
    for (int k = 0; k < kKillPoints; ++k) {
      Publish(row_, "PARAGON", Receipt("K" + std::to_string(k)));
      std::this_thread::sleep_for(receiptTime * k / kKillPoints);
      ::kill(server_->pid(), SIGKILL);
      server_.reset();
      StartServer();
      ASSERT_TRUE(RunReceipt("N" + std::to_string(k))) << k;
    }
    Judge();
  }

  void Judge() {
    const std::vector<Printed> printed = ReceiptsOf(Journal(row_));
    const std::string log = ReadFileText(dir_ / "fisk.log");
    auto closed = [&](const std::string& number) {
      return std::count_if(printed.begin(), printed.end(), [&](const Printed& p) {
        return p.number == number && p.end.rfind("CANCELLED", 0) != 0 && !p.end.empty();
      });
    };
    for (int k = 0; k < kKillPoints; ++k) {
      const std::string killed = "K" + std::to_string(k), next = "N" + std::to_string(k);
      EXPECT_LE(closed(killed), 1) << killed << " printed twice";
      EXPECT_EQ(closed(next), 1) << next << " not printed once";
      // A receipt cut off by the kill left its job behind, which the next start names.
      if (closed(killed) == 0) {
        EXPECT_NE(log.find("PARAGON nr " + killed + " suma " + Zloty(kSaleLines * kReceiptLineGrosz)), std::string::npos)
            << killed;
      }
    }
    for (const Printed& p : printed)
      if (p.number.rfind("N", 0) == 0) {
        EXPECT_EQ(p.lines, kSaleLines) << p.number;
      }
    // Every receipt the printer cancelled by itself at a start or before a receipt is told.
    const auto cancelled = std::count_if(printed.begin(), printed.end(), [](const Printed& p) { return p.end == "CANCELLED"; });
    EXPECT_EQ(cancelled, CountOf(log, "ANULOWANO PARAGON POZOSTAWIONY OTWARTY") + CountOf(log, "@Anulowano paragon")) << log;
    EXPECT_GE(CountOf(log, "PARAGON O.K."), kKillPoints + 1);
  }

  char row_ = 'p';
};

TEST_F(CrashTest, PosnetServerKilledAtTwentyMomentsOfAReceipt) {
  StartFamily('p');
  KillAtEvenMoments();
}

TEST_F(CrashTest, ElzabServerKilledAtTwentyMomentsOfAReceiptAlsoInsideItsLongText) {
  StartFamily('e');
  KillAtEvenMoments();
  // The kills 1/20 of a receipt apart land inside its longest command too.
  const std::vector<Printed> printed = ReceiptsOf(ElzabJournal());
  EXPECT_TRUE(std::any_of(printed.begin(), printed.end(), [](const Printed& p) { return p.cutText && p.end == "CANCELLED"; }));
}


// The printer lost in the middle of a receipt: its process killed (a printer
// without power) or its line unplugged. The receipt fails with its line, the
// other family's row is served, a job for the lost printer fails rather than
// hangs, and a printer that comes back is reached without restarting the server.
struct LossCase {
  char row;
  bool unplug;  // else killed
};

class PrinterLossTest : public PrintersTest, public ::testing::WithParamInterface<LossCase> {
 protected:
  static constexpr int kLines = 20;
  void KillPrinter(char row) {
    if (row == 'e') return elzab_->Kill();
    posnet_->Kill();
    // The port's link would point at a terminal number the system gives away next.
    ::unlink((dir_ / "tty0").c_str());
  }
  void RestartPrinter(char row) {
    if (row == 'e') return elzab_->Restart();
    posnet_->Restart();
    ::unlink((dir_ / "tty0").c_str());
    ASSERT_EQ(::symlink(posnet_->Slave().c_str(), (dir_ / "tty0").c_str()), 0);
  }
};

bool FailedWithStamp(const std::string& line, const std::string& start) {
  const std::size_t stamp = std::string(" nie wyk.zad. DD-MM-YYYY HH:MM:SS").size();
  return line.rfind(start, 0) == 0 && line.size() >= start.size() + stamp &&
         IsFailureStamp(line.substr(line.size() - stamp));
}

TEST_P(PrinterLossTest, ReceiptFailsOtherRowsServeAndThePrinterComesBack) {
  const LossCase c = GetParam();
  const char other = c.row == 'e' ? 'p' : 'e';
  Lines elzabArgs = {"--baud", "9600"};
  if (c.unplug) elzabArgs.insert(elzabArgs.end(), {"--fail", "8:unplug"});  // the 7th sale line
  Start(elzabArgs, {"--baud", "9600", "--pace-input"});
  Publish(c.row, "PARAGON", ReceiptRecords(kLines, "L1"));
  if (!c.unplug) {
    // Killed once the printer has a few of the lines.
    ASSERT_TRUE(WaitUntil([&] { return CountStarting(Journal(c.row), "LINE ") >= 3; }, 30000));
    KillPrinter(c.row);
  }
  EXPECT_TRUE(FailedWithStamp(Result(c.row), "PARAGON@")) << LogLines().back();
  const std::vector<Printed> cut = ReceiptsOf(Journal(c.row));
  ASSERT_EQ(cut.size(), 1u);
  EXPECT_LT(cut[0].lines, kLines);
  EXPECT_TRUE(cut[0].end.empty() || cut[0].end == "CANCELLED") << cut[0].end;

  EXPECT_EQ(Run(other, "PARAGON", ReceiptRecords(kLines, "O1")), "PARAGON O.K.");
  EXPECT_TRUE(FailedWithStamp(Run(c.row, "RAPDOB"), "RAPORT DOBOWY@"));
  RestartPrinter(c.row);
  EXPECT_EQ(Run(c.row, "RAPDOB"), "RAPORT DOBOWY O.K.");
  EXPECT_EQ(Journal(c.row).back(), "DAILY REPORT");
}

INSTANTIATE_TEST_SUITE_P(Printers, PrinterLossTest,
                         ::testing::Values(LossCase{'p', false}, LossCase{'e', false}, LossCase{'e', true}),
                         [](const auto& info) {
                           return std::string(info.param.row == 'e' ? "Elzab" : "Posnet") +
                                  (info.param.unplug ? "Unplugged" : "Killed");
                         });

}  // namespace
