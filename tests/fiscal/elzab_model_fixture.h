// The 16550 register model installed as the ELZAB port, its serial side one
// end of a socket pair whose other end the test plays as the printer.
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "fiscal/elzab_line.h"
#include "fiscal/portio.h"
#include "fiscal/uart_model.h"

class ElzabModelTest : public ::testing::Test {
 protected:
  // Installs a fresh model with the given response delay (ms) and a short send time-out.
  void AttachModel(int responseDelayMs) {
    int sv[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sv), 0);
    printer_ = sv[1];
    model_ = std::make_unique<Uart16550Model>(std::make_unique<FdByteLink>(sv[0]));
    SetElzabPortIo(model_.get());
    ElzabLine() = {};
    ElzabLine().responseDelay = responseDelayMs;
    ElzabLine().sendTimeout = 20;
  }
  void DetachModel() {
    SetElzabPortIo(nullptr);
    ElzabLine() = {};
    if (printer_ >= 0) close(printer_);
    printer_ = -1;
  }

  int printer_ = -1;
  std::unique_ptr<Uart16550Model> model_;
};
