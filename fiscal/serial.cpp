#include "fiscal/serial.h"

#include <fcntl.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

void ReceiveRing::Put(uint8_t b) {
  bytes_[tail_ - 1] = b;
  tail_ = Next(tail_);
  if (tail_ == head_) head_ = Next(head_);
}

int ReceiveRing::Take() {
  if (Empty()) return -1;
  int b = bytes_[head_ - 1];
  head_ = Next(head_);
  return b;
}

namespace {

constexpr int kOpenFlags = 0x102;  // O_RDWR | O_NOCTTY
constexpr mode_t kOpenMode = 0666;
constexpr auto kTick = std::chrono::milliseconds(5);

struct PosnetPort {
  PosnetLineState state;
  termios saved{};
  ReceiveRing ring;
  ShortText devicePath;
};

PosnetPort& Port() {
  static PosnetPort port;
  return port;
}

void Tick() {
  --Port().state.timeoutTicks;
  std::this_thread::sleep_for(kTick);
}

// The raw line: 9600 baud, 8 bits, no parity, one stop bit, XON/XOFF both ways,
// reads that return at once.
termios RawLineSettings() {
  termios t{};
  t.c_iflag = IXON | IXOFF;
  t.c_cflag = B9600 | CS8 | CREAD | CLOCAL;
  cfsetispeed(&t, B9600);
  cfsetospeed(&t, B9600);
  t.c_cc[VMIN] = 0;
  t.c_cc[VTIME] = 0;
  t.c_cc[VSTART] = 17;
  t.c_cc[VSTOP] = 19;
  return t;
}

void CloseDescriptor() {
  PosnetPort& p = Port();
  ::close(p.state.fd);
  p.state.fd = -2;
}

// Writes one byte if the line takes it now; 1 when it went, 0 when it did not.
int WriteByteNow(int fd, char b) {
  ssize_t n = ::write(fd, &b, 1);
  return n == 1 ? 1 : 0;
}

}  // namespace

const PosnetLineState& PosnetLine() { return Port().state; }

void SetPosnetDevicePath(const ShortText& path) { Port().devicePath = path; }

ShortText PosnetDeviceName(int port) {
  if (port == 255) return Port().devicePath;
  const char* prefix = std::getenv("KLOTE_SERIAL_PREFIX");
  ShortText name(prefix && *prefix ? prefix : "/dev/ttyS");
  name += std::to_string(port - 1);
  return name;
}

void PosnetOpen(int port) {
  PosnetPort& p = Port();
  p.ring.Reset();
  p.state.lineFailed = false;
  if (!p.state.portClosed) return;
  std::string device = PosnetDeviceName(port).Str();
  int fd = ::open(device.c_str(), kOpenFlags, kOpenMode);
  if (fd < 0) return;
  p.state.fd = fd;
  // A stopped line (XOFF) must make a write come back empty rather than block,
  // so that the send can count its ticks; reads return at once anyway.
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
  if (::tcgetattr(fd, &p.saved) != 0) {
    p.state.lineFailed = true;
    CloseDescriptor();
    return;
  }
  (void)::flock(fd, LOCK_EX | LOCK_NB);
  termios settings = RawLineSettings();
  if (::tcflush(fd, TCIFLUSH) != 0 || ::tcsetattr(fd, TCSANOW, &settings) != 0) {
    p.state.lineFailed = true;
    CloseDescriptor();
    return;
  }
  ++p.state.opens;
  p.state.portClosed = false;
}

void PosnetClose() {
  PosnetPort& p = Port();
  if (p.state.portClosed || !p.state.lineFailed) return;
  (void)::flock(p.state.fd, LOCK_UN);
  (void)::tcsetattr(p.state.fd, TCSANOW, &p.saved);
  CloseDescriptor();
  p.state.lineFailed = false;
  p.state.portClosed = true;
}

void PosnetCloseAtExit() {
  Port().state.lineFailed = true;
  PosnetClose();
}

void SetTimeout(double seconds) {
  double ticks = 200.0 * seconds;
  Port().state.timeoutTicks = static_cast<int16_t>(ticks > 32767 ? 32767 : ticks);
}

int PosnetSend(double seconds, std::string_view text) {
  PosnetPort& p = Port();
  p.ring.Reset();
  SetTimeout(seconds);
  if (p.state.portClosed) {
    p.state.lineFailed = true;
    return -1;
  }
  for (char b : text) {
    while (WriteByteNow(p.state.fd, b) == 0) {
      if (p.state.timeoutTicks <= 0) {
        p.state.lineFailed = true;
        return -1;
      }
      Tick();
    }
    ++p.state.bytesSent;
  }
  return 0;
}

int PosnetGetByte() {
  PosnetPort& p = Port();
  if (!p.ring.Empty()) return p.ring.Take();
  unsigned char buf[ReceiveRing::kSize];
  ssize_t n = p.state.fd >= 0 ? ::read(p.state.fd, buf, sizeof buf) : -1;
  if (n > 0) {
    p.state.bytesReceived += static_cast<uint64_t>(n);
    for (ssize_t i = 1; i < n; ++i) p.ring.Put(buf[i]);
    p.state.lineFailed = false;
    return buf[0];
  }
  p.state.lineFailed = true;
  Tick();
  return -1;
}

int PosnetGetByteWaiting() {
  int b;
  do {
    b = PosnetGetByte();
  } while (b < 0 && Port().state.timeoutTicks > 0);
  return b;
}

void PosnetDiscardReceived() {
  PosnetPort& p = Port();
  p.ring.Reset();
  unsigned char buf[ReceiveRing::kSize];
  ssize_t n;
  while (p.state.fd >= 0 && (n = ::read(p.state.fd, buf, sizeof buf)) > 0) p.state.bytesReceived += static_cast<uint64_t>(n);
}

bool PosnetHasBufferedByte() { return !Port().ring.Empty(); }
