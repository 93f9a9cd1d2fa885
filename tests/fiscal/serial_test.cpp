// The POSNET line on a pseudo-terminal whose other side the test holds.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "fiscal/posnet.h"
#include "fiscal/serial.h"

namespace {

TEST(ReceiveRing, WrapsFrom1024To1AndKeepsOrder) {
  ReceiveRing ring;
  EXPECT_EQ(ring.Take(), -1);
  for (int i = 0; i < 1000; ++i) ring.Put(static_cast<uint8_t>(i));
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(ring.Take(), i % 256);
  for (int i = 0; i < 100; ++i) ring.Put(static_cast<uint8_t>(i + 7));
  EXPECT_LT(ring.WriteIndex(), ring.ReadIndex());  // the write index went round
  EXPECT_EQ(ring.WriteIndex(), 1001 + 100 - 1024);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(ring.Take(), i + 7);
  EXPECT_TRUE(ring.Empty());
}

TEST(ReceiveRing, FullRingOverwritesItsOldestBytes) {
  ReceiveRing ring;
  for (int i = 0; i < 1100; ++i) ring.Put(static_cast<uint8_t>(i % 251));
  int first = ring.Take();
  EXPECT_EQ(first, (1100 - 1023) % 251);  // 1023 places hold bytes; the 77 oldest are gone
  int count = 1;
  while (ring.Take() >= 0) ++count;
  EXPECT_EQ(count, 1023);
  ring.Put(9);
  ring.Reset();
  EXPECT_TRUE(ring.Empty());
  EXPECT_EQ(ring.ReadIndex(), 1);
}

TEST(PosnetDevice, PortNumbersNameTheDevices) {
  unsetenv("KLOTE_SERIAL_PREFIX");
  for (int port : {1, 4, 5}) EXPECT_EQ(PosnetDeviceName(port), ShortText("/dev/ttyS" + std::to_string(port - 1)));
  setenv("KLOTE_SERIAL_PREFIX", "/tmp/lines/tty", 1);
  EXPECT_EQ(PosnetDeviceName(2), "/tmp/lines/tty1");
  unsetenv("KLOTE_SERIAL_PREFIX");
}

// A pseudo-terminal whose slave the driver opens through the prefix setting.
class PosnetLineOnPty : public ::testing::Test {
 protected:
  void SetUp() override {
    master_ = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master_, 0);
    ASSERT_EQ(grantpt(master_), 0);
    ASSERT_EQ(unlockpt(master_), 0);
    slave_ = ptsname(master_);
    ASSERT_TRUE(slave_.ends_with(std::to_string(Number())));
    // The settings the driver finds, and must restore when it closes.
    keep_ = open(slave_.c_str(), O_RDWR | O_NOCTTY);
    termios t;
    tcgetattr(keep_, &t);
    cfmakeraw(&t);
    t.c_cc[VMIN] = 7;
    t.c_cc[VTIME] = 3;
    tcsetattr(keep_, TCSANOW, &t);
    setenv("KLOTE_SERIAL_PREFIX", slave_.substr(0, slave_.size() - std::to_string(Number()).size()).c_str(), 1);
  }
  void TearDown() override {
    PosnetCloseAtExit();
    unsetenv("KLOTE_SERIAL_PREFIX");
    close(keep_);
    close(master_);
  }
  int Number() const { return std::stoi(slave_.substr(slave_.rfind('/') + 1)); }
  int Port() const { return Number() + 1; }
  void FromPrinter(const std::string& bytes) {
    ASSERT_EQ(write(master_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    usleep(20000);
  }
  std::string ToPrinter() {
    usleep(20000);
    char buf[4096];
    ssize_t n = read(master_, buf, sizeof buf);
    return n > 0 ? std::string(buf, n) : std::string();
  }

  int master_ = -1, keep_ = -1;
  std::string slave_;
};

TEST_F(PosnetLineOnPty, OpenSetsRawLineAndLocks) {
  PosnetOpen(Port());
  ASSERT_FALSE(PosnetLine().portClosed);
  termios t;
  ASSERT_EQ(tcgetattr(keep_, &t), 0);
  EXPECT_EQ(t.c_iflag, static_cast<tcflag_t>(IXON | IXOFF));
  EXPECT_EQ(t.c_cflag & (CSIZE | PARENB | CSTOPB | CREAD | CLOCAL), static_cast<tcflag_t>(CS8 | CREAD | CLOCAL));
  EXPECT_EQ(cfgetospeed(&t), static_cast<speed_t>(B9600));
  EXPECT_EQ(std::vector<unsigned>({t.c_lflag, t.c_oflag, t.c_cc[VMIN], t.c_cc[VTIME], t.c_cc[VSTART], t.c_cc[VSTOP]}),
            std::vector<unsigned>({0, 0, 0, 0, 17, 19}));
  int other = open(slave_.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
  close(other);
}

TEST_F(PosnetLineOnPty, OpenFlushesOnceAndHealthyCloseKeepsThePortOpen) {
  FromPrinter("stale");
  PosnetOpen(Port());
  const int opens = PosnetLine().opens;
  SetTimeout(0.05);
  EXPECT_EQ(PosnetGetByteWaiting(), -1);  // the first open flushed the input
  FromPrinter("fresh");
  PosnetOpen(Port());                     // a second job: no new open, no flush
  EXPECT_EQ(PosnetLine().opens, opens);
  SetTimeout(0.05);
  EXPECT_EQ(PosnetGetByteWaiting(), 'f');
  EXPECT_FALSE(PosnetLine().lineFailed);
  PosnetClose();
  EXPECT_FALSE(PosnetLine().portClosed);
}

TEST_F(PosnetLineOnPty, DiscardTakesWhatWaitsInTheRingAndOnTheLineOnly) {
  PosnetOpen(Port());
  FromPrinter("ab");
  SetTimeout(1);
  ASSERT_EQ(PosnetGetByteWaiting(), 'a');  // 'b' waits in the ring
  FromPrinter("cd");                       // and these on the line
  pollfd line{PosnetLine().fd, POLLIN, 0};
  ASSERT_EQ(poll(&line, 1, 5000), 1);
  PosnetDiscardReceived();
  EXPECT_FALSE(PosnetHasBufferedByte());
  EXPECT_FALSE(PosnetLine().lineFailed);  // nothing waited for, nothing failed
  FromPrinter("e");
  SetTimeout(1);
  EXPECT_EQ(PosnetGetByteWaiting(), 'e');
  PosnetCloseAtExit();
}

TEST_F(PosnetLineOnPty, CloseAfterFailureRestoresTheSettingsFound) {
  PosnetOpen(Port());
  EXPECT_EQ(PosnetGetByte(), -1);  // nothing came: the line counts as failed
  EXPECT_TRUE(PosnetLine().lineFailed);
  PosnetClose();
  EXPECT_TRUE(PosnetLine().portClosed);
  EXPECT_EQ(PosnetLine().fd, -2);
  termios t;
  tcgetattr(keep_, &t);
  EXPECT_EQ(std::pair(int(t.c_cc[VMIN]), int(t.c_cc[VTIME])), std::pair(7, 3));
  int again = open(slave_.c_str(), O_RDWR | O_NOCTTY);
  EXPECT_EQ(flock(again, LOCK_EX | LOCK_NB), 0);  // the lock went with the descriptor
  close(again);
}

TEST_F(PosnetLineOnPty, SendWritesEveryByteAndForgetsWhatCameBefore) {
  PosnetOpen(Port());
  FromPrinter("old");
  EXPECT_EQ(PosnetGetByte(), 'o');  // "ld" wait in the ring
  EXPECT_EQ(PosnetSend(1, std::string("\x1BP1#e88\x1B\\")), 0);
  EXPECT_EQ(ToPrinter(), "\x1BP1#e88\x1B\\");
  SetTimeout(0.05);
  EXPECT_EQ(PosnetGetByteWaiting(), -1);
}

TEST_F(PosnetLineOnPty, HeldXoffMakesTheSendFailWithMinus1) {
  PosnetOpen(Port());
  FromPrinter("\x13");
  EXPECT_EQ(PosnetSend(0.1, "abc"), -1);
  EXPECT_TRUE(PosnetLine().lineFailed);
  FromPrinter("\x11");
  EXPECT_EQ(PosnetSend(0.1, "def"), 0);
  EXPECT_EQ(ToPrinter(), "def");
}

TEST_F(PosnetLineOnPty, LongInputFillsTheRingAcrossItsWrap) {
  PosnetOpen(Port());
  std::string first(1500, '\0');
  for (int i = 0; i < 1500; ++i) first[i] = static_cast<char>('A' + i % 26);
  FromPrinter(first);
  SetTimeout(1);
  for (int i = 0; i < 1500; ++i) ASSERT_EQ(PosnetGetByteWaiting(), 'A' + i % 26) << i;
  FromPrinter("0123456789");  // the ring's indexes run past 1024 and start again at 1
  SetTimeout(1);
  std::string got;
  for (int i = 0; i < 10; ++i) got += static_cast<char>(PosnetGetByteWaiting());
  EXPECT_EQ(got, "0123456789");
}

TEST_F(PosnetLineOnPty, WaitingReadGivesUpWhenTicksRunOut) {
  PosnetOpen(Port());
  SetTimeout(0.1);
  EXPECT_EQ(PosnetLine().timeoutTicks, 20);
  EXPECT_EQ(PosnetGetByteWaiting(), -1);
  EXPECT_LE(PosnetLine().timeoutTicks, 0);
}

TEST_F(PosnetLineOnPty, ReadFrameSkipsToEscAndChecksItsEnd) {
  PosnetOpen(Port());
  const struct { std::string bytes; int code; const char* collected; } rows[] = {
      {"\x60junk\x1BP1#C24;1;5;10;30;0AB\x1B\\", 0, "P1#C24;1;5;10;30;0AB"},
      {"\x1BP1#X\x1Bx", -2, "P1#X"},        // the end is not ESC "\"
      {"\x1BQ1#X\x1B\\", -3, "Q1#X"},     // no "P" at the start
      {"\x1BP1#X", -2, "P1#X"},              // the end never comes
      {"\x1BP" + std::string(1500, '1') + "\x1B\\", -3, nullptr},  // far too long
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.bytes.substr(0, 12));
    FromPrinter(r.bytes);
    std::string collected;
    EXPECT_EQ(PosnetReadFrame(0.1, collected), r.code);
    if (r.collected) {
      EXPECT_EQ(collected, r.collected);
    }
    SetTimeout(0.02);
    while (PosnetGetByteWaiting() >= 0) {}
  }
}

TEST_F(PosnetLineOnPty, PortThatCannotOpenStaysClosed) {
  setenv("KLOTE_SERIAL_PREFIX", "/nonexistent/tty", 1);
  PosnetOpen(1);
  EXPECT_TRUE(PosnetLine().portClosed);
  EXPECT_EQ(PosnetSend(0.01, "x"), -1);
}

}  // namespace
