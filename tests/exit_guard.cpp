// Linked into every test program. The program's fatal checks end the
// process with exit(); with status 0 a test that died that way would count
// as passed. An exit while a test of this process runs (not in a forked
// child, nor in a death test's child) is turned into a failure.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

pid_t gTestProcess = 0;
bool gInsideTest = false;

void FailOnExitInsideTest() {
  if (!gInsideTest || getpid() != gTestProcess) return;
  std::fputs("the program ended inside a test\n", stderr);
  std::_Exit(1);
}

class ExitGuard : public ::testing::EmptyTestEventListener {
  void OnTestStart(const ::testing::TestInfo&) override {
    // Registered after the test framework exists, so it runs before the framework is torn down.
    if (gTestProcess == 0) {
      gTestProcess = getpid();
      std::atexit(FailOnExitInsideTest);
    }
    gInsideTest = true;
  }
  void OnTestEnd(const ::testing::TestInfo&) override { gInsideTest = false; }
};

const bool gRegistered = [] {
  ::testing::UnitTest::GetInstance()->listeners().Append(new ExitGuard);
  return true;
}();

}  // namespace
