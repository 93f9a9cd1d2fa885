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

using Lines = std::vector<std::string>;

constexpr int kKillPoints = 20;
constexpr int kSaleLines = 2;

// A receipt whose document number names it; the ELZAB cashier text is long, so
// that kills land inside that one long command too.
Lines Receipt(const std::string& number) {
  Lines job = {std::to_string(kSaleLines), std::to_string(kSaleLines * 250), "01J", std::string(100, 'K'),
               " gotówką", number};
  for (int i = 1; i <= kSaleLines; ++i) job.push_back("\"Towar numer " + std::to_string(i) + "\",1,\"A\",2.5,szt");
  return job;
}

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
    WriteFileText(dir_ / "fisk.cfg", row == 'e' ? "1,1,\"jobs\\e\",,0\n" : "2,1,\"jobs\\p\",,0\n");
  }
  void StartServer() {
    server_ = std::make_unique<ServerProcess>(dir_, ServerRun{{"fisk.cfg", "5", "fisk.log", "x"}});
    const int starts = ++starts_;
    ASSERT_TRUE(WaitUntil([&] { return Count("SKONFIGUROWANO") == starts; }, 10000));
  }
  int Count(const std::string& text) const { return CountOf(ReadFileText(dir_ / "fisk.log"), text); }
  // Publishes the receipt and waits for its result line.
  bool RunReceipt(const std::string& number) {
    const int before = Count("PARAGON");
    Publish(row_, "PARAGON", Receipt(number));
    return WaitUntil([&] { return Count("PARAGON") > before && !JobExists(row_); }, 30000);
  }
  Lines Journal() const { return row_ == 'e' ? ElzabJournal() : PosnetJournal(); }

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
    const std::vector<Printed> printed = ReceiptsOf(Journal());
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
        EXPECT_NE(log.find("PARAGON nr " + killed + " suma " + Zloty(kSaleLines * 250)), std::string::npos) << killed;
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
  int starts_ = 0;
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

}  // namespace
