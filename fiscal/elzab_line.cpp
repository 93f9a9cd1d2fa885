#include "fiscal/elzab_line.h"

#include <chrono>
#include <thread>

#include "fiscal/portio.h"

namespace {

constexpr uint16_t kRbr = 0, kIer = 1, kLcr = 3, kMcr = 4, kLsr = 5, kMsr = 6;
constexpr uint8_t kDataReady = 0x01, kThrEmpty = 0x20, kCts = 0x10, kRts = 0x02;
constexpr int kPortsAsked = 7;

void SleepMs(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

bool LineTakesByte(PortIo& io, uint16_t base) {
  return (io.In(base + kLsr) & kThrEmpty) && (io.In(base + kMsr) & kCts);
}

}  // namespace

ElzabLineState& ElzabLine() {
  static ElzabLineState state;
  return state;
}

uint16_t ElzabPortBase(int port) {
  switch (port) {
    case 1: return 0x3F8;
    case 2: return 0x2F8;
    case 3: return 0x3E8;
    case 4: return 0x2E8;
    default: return 0;
  }
}

void ElzabOpen(int port) {
  ElzabLineState& line = ElzabLine();
  line.timedOut = false;
  if (line.ready) return;
  uint16_t base = ElzabPortBase(port);
  PortIo& io = ElzabPortIo();
  if (base == 0 || !io.RequestAccess(base, kPortsAsked)) {
    line.timedOut = true;
    return;
  }
  io.Out(base + kLcr, 0x80);  // divisor latch
  io.Out(base + kIer, 0);     // divisor, high byte
  io.Out(base + kRbr, 12);    // divisor, low byte: 115200 / 12 = 9600 baud
  io.Out(base + kLcr, 0x1B);  // 8 data bits, even parity, 1 stop bit
  io.Out(base + kIer, 0);     // no interrupts
  io.Out(base + kMcr, kRts);
  line.ready = true;
}

void ElzabSendByte(int port, uint8_t b) {
  ElzabLineState& line = ElzabLine();
  uint16_t base = ElzabPortBase(port);
  if (base == 0) {
    line.timedOut = true;
    return;
  }
  PortIo& io = ElzabPortIo();
  (void)io.In(base + kRbr);
  io.Out(base + kMcr, static_cast<uint8_t>(io.In(base + kMcr) | kRts));
  bool takes = LineTakesByte(io, base);
  for (int count = 0; !takes && count <= line.sendTimeout;) {
    ++count;
    SleepMs(1);
    takes = LineTakesByte(io, base);
  }
  if (!takes) {
    line.timedOut = true;
    return;
  }
  io.Out(base + kRbr, b);
  line.timedOut = false;
}

void ElzabSendText(int port, std::string_view text) {
  for (char c : text) {
    ElzabSendByte(port, static_cast<uint8_t>(c));
    if (ElzabLine().timedOut) return;
  }
}

uint8_t ElzabReadResponse(int port) {
  ElzabLineState& line = ElzabLine();
  uint16_t base = ElzabPortBase(port);
  if (base == 0) {
    line.timedOut = true;
    return 0;
  }
  SleepMs(line.responseDelay);
  // The delay counts from the last byte sent; a printer that answers later (the
  // simulated one shares a busy machine with the server) is waited for, so
  // that its answer is not read as the next command's.
  PortIo& io = ElzabPortIo();
  for (int waited = 0; !(io.In(base + kLsr) & kDataReady) && waited < line.lateAnswerMs; ++waited) SleepMs(1);
  uint8_t b = io.In(base + kRbr);
  line.timedOut = false;
  return b;
}

void ElzabPurge(int port) {
  uint16_t base = ElzabPortBase(port);
  if (base == 0) {
    ElzabLine().timedOut = true;
    return;
  }
  SleepMs(200);
  (void)ElzabPortIo().In(base + kRbr);
}

uint8_t ElzabReadByte(int port) {
  ElzabLineState& line = ElzabLine();
  uint16_t base = ElzabPortBase(port);
  PortIo& io = ElzabPortIo();
  for (int pass = 0; base != 0 && pass < line.receiveTimeout; ++pass) {
    if (io.In(base + kLsr) & kDataReady) {
      line.timedOut = false;
      return io.In(base + kRbr);
    }
  }
  line.timedOut = true;
  return 0;
}

int ElzabWaitByte(int port, int ms) {
  ElzabLineState& line = ElzabLine();
  const uint16_t base = ElzabPortBase(port);
  PortIo& io = ElzabPortIo();
  for (int waited = 0; base != 0; ++waited) {
    if (io.In(base + kLsr) & kDataReady) {
      line.timedOut = false;
      return io.In(base + kRbr);
    }
    if (waited >= ms) break;
    SleepMs(1);
  }
  line.timedOut = true;
  return -1;
}

void ElzabDrain(int port, int quietMs) {
  // Bounded: a line that never falls quiet is left after this many bytes.
  constexpr int kMostBytes = 4096;
  for (int n = 0; n < kMostBytes && ElzabWaitByte(port, quietMs) >= 0; ++n) {
  }
  ElzabLine().timedOut = false;
}

void ElzabRelease(int) {}
