// The ELZAB line against the 16550 register model, its serial side a socket pair
// whose other end the test plays as the printer.
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <thread>

#include "elzab_model_fixture.h"
#include "fiscal/elzab_line.h"
#include "fiscal/portio.h"
#include "fiscal/uart_model.h"

namespace {

using Access = Uart16550Model::Access;
constexpr Access Out(uint8_t reg, uint8_t v) { return {true, reg, v}; }
constexpr Access In(uint8_t reg, uint8_t v) { return {false, reg, v}; }

class ElzabOnModel : public ElzabModelTest {
 protected:
  void SetUp() override { AttachModel(1); }
  void TearDown() override { DetachModel(); }
  void PrinterSends(std::string_view bytes) {
    ASSERT_EQ(write(printer_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  std::string PrinterGot() {
    char buf[256];
    ssize_t n = read(printer_, buf, sizeof buf);
    return n > 0 ? std::string(buf, n) : std::string();
  }
};

TEST_F(ElzabOnModel, OpenProgramsTheControllerInOrderOnce) {
  model_->StartLog();
  ElzabOpen(1);
  EXPECT_FALSE(ElzabLine().timedOut);
  EXPECT_TRUE(ElzabLine().ready);
  EXPECT_EQ(model_->Base(), 0x3F8);
  EXPECT_EQ(model_->GrantedCount(), 7);
  const std::vector<Access> expected = {Out(3, 0x80), Out(1, 0), Out(0, 12),
                                        Out(3, 0x1B), Out(1, 0), Out(4, 2)};
  EXPECT_EQ(model_->Log(), expected);
  // 9600 baud, 8 bits, even parity, no interrupts, RTS raised.
  EXPECT_EQ(std::vector<int>({model_->Divisor(), model_->LineControl(), model_->InterruptEnable(), model_->ModemControl()}),
            std::vector<int>({12, 0x1B, 0, 2}));
  ElzabOpen(1);
  EXPECT_EQ(model_->Log().size(), expected.size());  // programmed already: nothing more
}

TEST_F(ElzabOnModel, PortNumbersMapToBasesAndOthersTimeOutAtOnce) {
  EXPECT_EQ(std::vector<int>({ElzabPortBase(1), ElzabPortBase(2), ElzabPortBase(3), ElzabPortBase(4)}),
            std::vector<int>({0x3F8, 0x2F8, 0x3E8, 0x2E8}));
  model_->StartLog();
  for (int port : {0, 5, 255}) {
    ElzabOpen(port);
    EXPECT_TRUE(ElzabLine().timedOut) << port;
    ElzabLine().timedOut = false;
    ElzabSendByte(port, 'x');
    EXPECT_TRUE(ElzabLine().timedOut) << port;
  }
  EXPECT_TRUE(model_->Log().empty());
  ElzabOpen(3);
  EXPECT_EQ(model_->Base(), 0x3E8);
}

TEST_F(ElzabOnModel, SendByteReadsDataRaisesRtsAndWaitsForEmptyAndCts) {
  ElzabOpen(1);
  PrinterSends("\x06");
  model_->StartLog();
  ElzabSendByte(1, 0x1B);
  EXPECT_FALSE(ElzabLine().timedOut);
  const std::vector<Access> expected = {In(0, 0x06), In(4, 2),    Out(4, 2),
                                        In(5, 0x60), In(6, 0x10), Out(0, 0x1B)};
  EXPECT_EQ(model_->Log(), expected);
  EXPECT_EQ(PrinterGot(), "\x1B");
}

TEST_F(ElzabOnModel, SendWaitsForClearToSendAndGivesUpAfterTheTimeout) {
  ElzabOpen(1);
  model_->SetClearToSend(false);
  auto t0 = std::chrono::steady_clock::now();
  ElzabSendText(1, "abc");
  auto waited = std::chrono::steady_clock::now() - t0;
  EXPECT_TRUE(ElzabLine().timedOut);
  EXPECT_GE(waited, std::chrono::milliseconds(20));
  EXPECT_EQ(PrinterGot(), "");  // stopped at the first byte
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    model_->SetClearToSend(true);
  });
  ElzabLine().sendTimeout = 2000;
  ElzabSendText(1, "abc");
  release.join();
  EXPECT_FALSE(ElzabLine().timedOut);
  EXPECT_EQ(PrinterGot(), "abc");
}

TEST_F(ElzabOnModel, BusyTransmitterTimesOutTheSend) {
  ElzabOpen(2);
  model_->SetTransmitterBusy(true);
  ElzabSendByte(2, 'x');
  EXPECT_TRUE(ElzabLine().timedOut);
  EXPECT_EQ(PrinterGot(), "");
}

TEST_F(ElzabOnModel, ResponseReadsTheRegisterWhetherAByteCameOrNot) {
  ElzabOpen(1);
  PrinterSends("\x15");
  ElzabLine().timedOut = true;
  EXPECT_EQ(ElzabReadResponse(1), 0x15);
  EXPECT_FALSE(ElzabLine().timedOut);
  ElzabLine().lateAnswerMs = 20;
  EXPECT_EQ(ElzabReadResponse(1), 0x15);  // a silent printer reads as what lay there
  EXPECT_FALSE(ElzabLine().timedOut);
}

TEST_F(ElzabOnModel, ResponseLaterThanTheDelayIsWaitedFor) {
  // A printer slowed by a busy machine: its answer comes long after the delay of 1 ms,
  // and must not be left for the next command.
  ElzabOpen(1);
  PrinterSends("\x06");
  EXPECT_EQ(ElzabReadResponse(1), 0x06);
  std::thread late([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    PrinterSends("\x15");
  });
  EXPECT_EQ(ElzabReadResponse(1), 0x15);
  late.join();
}

TEST_F(ElzabOnModel, PurgeReadsOneByteOnly) {
  ElzabOpen(1);
  PrinterSends("\x06\x07");
  ElzabLine().timedOut = true;
  ElzabPurge(1);
  EXPECT_TRUE(ElzabLine().timedOut);  // not touched for a known port
  EXPECT_EQ(ElzabReadByte(1), 0x07);
  EXPECT_FALSE(ElzabLine().timedOut);
  EXPECT_EQ(ElzabReadByte(1), 0);  // nothing more: the read times out to 0
  EXPECT_TRUE(ElzabLine().timedOut);
}

}  // namespace
