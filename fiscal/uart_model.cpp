#include "fiscal/uart_model.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

namespace {

enum Register : uint8_t { kData = 0, kIer = 1, kIir = 2, kLcr = 3, kMcr = 4, kLsr = 5, kMsr = 6, kScratch = 7 };
constexpr uint8_t kDlab = 0x80;
constexpr uint8_t kDataReady = 0x01, kThrEmpty = 0x20, kTxEmpty = 0x40;
constexpr uint8_t kCts = 0x10;
constexpr int64_t kClockHz = 115200;  // the controller's rate at divisor 1

int64_t NowNs() {
  using namespace std::chrono;
  return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

// A write that cannot raise SIGPIPE when the simulator has gone: the link then
// just reads as hung up.
ssize_t WriteNoSignal(int fd, const void* bytes, size_t count) {
  ssize_t n = ::send(fd, bytes, count, MSG_NOSIGNAL);
  if (n < 0 && errno == ENOTSOCK) n = ::write(fd, bytes, count);
  return n;
}

int ConnectUnixSocket(const std::string& path) {
  sockaddr_un addr{};
  if (path.size() >= sizeof addr.sun_path) return -1;
  addr.sun_family = AF_UNIX;
  std::memcpy(addr.sun_path, path.c_str(), path.size() + 1);
  int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
  if (fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0) return fd;
  if (fd >= 0) ::close(fd);
  return -1;
}

int OpenRawTerminal(const std::string& path) {
  int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
  termios t;
  if (fd >= 0 && ::tcgetattr(fd, &t) == 0) {
    ::cfmakeraw(&t);
    ::tcsetattr(fd, TCSANOW, &t);
  }
  return fd;
}

}  // namespace

FdByteLink::FdByteLink(int fd) : fd_(fd) {}

FdByteLink::~FdByteLink() {
  if (fd_ >= 0) ::close(fd_);
}

std::unique_ptr<FdByteLink> FdByteLink::Open(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) return nullptr;
  int fd = S_ISSOCK(st.st_mode) ? ConnectUnixSocket(path) : OpenRawTerminal(path);
  if (fd < 0) return nullptr;
  return std::make_unique<FdByteLink>(fd);
}

int FdByteLink::ReadByte() {
  if (!Connected()) return -1;
  unsigned char b;
  ssize_t n = ::read(fd_, &b, 1);
  if (n == 1) return b;
  if (n == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) hungUp_ = true;
  return -1;
}

bool FdByteLink::WriteByte(uint8_t b) {
  if (!Connected()) return false;
  for (int tries = 0; tries < 1000; ++tries) {
    ssize_t n = WriteNoSignal(fd_, &b, 1);
    if (n == 1) return true;
    if (errno != EAGAIN && errno != EINTR) break;
    ::usleep(100);
  }
  hungUp_ = true;
  return false;
}

ReopeningByteLink::ReopeningByteLink(std::string path, int retryMs)
    : path_(std::move(path)), retryNs_(int64_t{retryMs} * 1'000'000) {}

void ReopeningByteLink::ReopenWhenGone() const {
  if (link_ && link_->Connected()) return;
  const int64_t now = NowNs();
  if (lastTryNs_ != 0 && now - lastTryNs_ < retryNs_) return;
  lastTryNs_ = now;
  link_ = FdByteLink::Open(path_);
}

int ReopeningByteLink::ReadByte() {
  ReopenWhenGone();
  return link_ ? link_->ReadByte() : -1;
}

bool ReopeningByteLink::WriteByte(uint8_t b) {
  ReopenWhenGone();
  return link_ && link_->WriteByte(b);
}

bool ReopeningByteLink::Connected() const {
  ReopenWhenGone();
  return link_ && link_->Connected();
}

Uart16550Model::Uart16550Model(ByteLink* link) : link_(link) {}

Uart16550Model::Uart16550Model(std::unique_ptr<ByteLink> link)
    : owned_(std::move(link)), link_(owned_.get()) {}

bool Uart16550Model::RequestAccess(uint16_t base, int count) {
  if (count < 1 || count > 8) return false;
  base_ = base;
  count_ = count;
  return true;
}

void Uart16550Model::Record(bool out, uint8_t offset, uint8_t value) {
  if (logging_) log_.push_back({out, offset, value});
}

// Moves the next byte of the printer into the receive register when it is free.
void Uart16550Model::PullByte() {
  if (dataReady_ || !link_) return;
  int b = link_->ReadByte();
  if (b < 0) return;
  rbr_ = static_cast<uint8_t>(b);
  dataReady_ = true;
}

uint8_t Uart16550Model::ReadRegister(uint8_t offset) {
  bool dlab = lcr_ & kDlab;
  switch (offset) {
    case kData:
      if (dlab) return dll_;
      PullByte();
      dataReady_ = false;
      return rbr_;  // with nothing new, whatever lay in the register
    case kIer: return dlab ? dlm_ : ier_;
    case kIir: return 0x01;  // no interrupt pending
    case kLcr: return lcr_;
    case kMcr: return mcr_;
    case kLsr: {
      PullByte();
      const bool holdingEmpty = !txBusy_ && HoldingEmpty();
      const bool allSent = !txBusy_ && (!paced_ || NowNs() >= shiftFreeNs_);
      return static_cast<uint8_t>((dataReady_ ? kDataReady : 0) | (holdingEmpty ? kThrEmpty : 0) |
                                  (allSent ? kTxEmpty : 0));
    }
    case kMsr: return (cts_ && link_ && link_->Connected()) ? kCts : 0;
    default: return scratch_;
  }
}

int64_t Uart16550Model::ByteTimeNs() const {
  const int64_t divisor = Divisor() == 0 ? 1 : Divisor();
  const int64_t bits = 1 + (5 + (lcr_ & 0x03)) + ((lcr_ & 0x08) ? 1 : 0) + ((lcr_ & 0x04) ? 2 : 1);
  return bits * 1'000'000'000 * divisor / kClockHz;
}

// The holding register frees when the shift register takes its byte, that is one
// byte time before the shift register is done.
bool Uart16550Model::HoldingEmpty() const {
  return !paced_ || NowNs() >= shiftFreeNs_ - ByteTimeNs();
}

void Uart16550Model::StartShift() {
  if (!paced_) return;
  const int64_t now = NowNs();
  shiftFreeNs_ = (shiftFreeNs_ > now ? shiftFreeNs_ : now) + ByteTimeNs();
}

uint8_t Uart16550Model::In(uint16_t port) {
  if (!Granted(port)) return 0xFF;
  uint8_t offset = static_cast<uint8_t>(port - base_);
  uint8_t value = ReadRegister(offset);
  Record(false, offset, value);
  return value;
}

void Uart16550Model::Out(uint16_t port, uint8_t value) {
  if (!Granted(port)) return;
  uint8_t offset = static_cast<uint8_t>(port - base_);
  Record(true, offset, value);
  bool dlab = lcr_ & kDlab;
  switch (offset) {
    case kData:
      if (dlab) dll_ = value;
      else {
        StartShift();
        if (link_) (void)link_->WriteByte(value);
      }
      break;
    case kIer: (dlab ? dlm_ : ier_) = value; break;
    case kIir: fcr_ = value; break;
    case kLcr: lcr_ = value; break;
    case kMcr: mcr_ = value; break;
    case kScratch: scratch_ = value; break;
    default: break;  // the status registers are read-only
  }
}
