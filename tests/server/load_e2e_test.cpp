// Receipts through fisksrv while other processes keep every core busy: the
// server and the simulators get the processor late and in slices, which makes
// a job slower and must never make it fail.
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include <gtest/gtest.h>

#include "printers.h"

namespace {

// Processes that spin for as long as the object lives: two for each core, so the
// cores stay saturated. They end with the object, and with the test process on
// any path out of it (a failed assertion, a crash) through the parent-death signal.
class BusyCores {
 public:
  BusyCores() {
    const unsigned count = 2 * std::max(1u, std::thread::hardware_concurrency());
    const pid_t parent = ::getpid();
    for (unsigned i = 0; i < count; ++i) {
      const pid_t pid = ::fork();
      if (pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) ::_exit(0);
        for (;;) asm volatile("");
      }
      if (pid > 0) pids_.push_back(pid);
    }
  }
  ~BusyCores() {
    for (pid_t pid : pids_) ::kill(pid, SIGKILL);
    for (pid_t pid : pids_) ::waitpid(pid, nullptr, 0);
  }
  BusyCores(const BusyCores&) = delete;
  BusyCores& operator=(const BusyCores&) = delete;
  std::size_t size() const { return pids_.size(); }

 private:
  std::vector<pid_t> pids_;
};

constexpr int kLines = 20;

TEST_F(PrintersTest, ReceiptsOnBothFamiliesPrintWholeWithEveryCoreBusy) {
  Start({"--baud", "9600"}, {"--baud", "9600", "--pace-input"});
  BusyCores busy;
  ASSERT_GE(busy.size(), 2u);
  for (int round = 1; round <= 2; ++round)
    for (char row : {'p', 'e'}) {
      const std::string number = std::string(1, row) + std::to_string(round);
      EXPECT_EQ(Run(row, "PARAGON", ReceiptRecords(kLines, number)), "PARAGON O.K.") << number;
    }
  for (const auto& journal : {PosnetJournal(), ElzabJournal()}) {
    const std::vector<Printed> printed = ReceiptsOf(journal);
    ASSERT_EQ(printed.size(), 2u);
    for (const Printed& p : printed) {
      EXPECT_EQ(p.lines, kLines) << p.number;
      EXPECT_NE(p.end, "CANCELLED") << p.number;
      EXPECT_FALSE(p.end.empty()) << p.number;
    }
  }
}

}  // namespace
