#include "fiscal/portio.h"

#include <cstdlib>
#include <string>

#include "fiscal/uart_model.h"

#if defined(__x86_64__) || defined(__i386__)
#include <sys/io.h>
#define KLOTE_HAS_IOPERM 1
#endif

namespace {

class RealPortIo : public PortIo {
 public:
  bool RequestAccess(uint16_t base, int count) override {
#ifdef KLOTE_HAS_IOPERM
    if (ioperm(base, static_cast<unsigned long>(count), 1) != 0) return false;
    granted_[grantedCount_ % kRanges] = {base, count};
    ++grantedCount_;
    return true;
#else
    (void)base;
    (void)count;
    return false;
#endif
  }
  uint8_t In(uint16_t port) override {
#ifdef KLOTE_HAS_IOPERM
    if (Granted(port)) return inb(port);
#endif
    (void)port;
    return 0xFF;
  }
  void Out(uint16_t port, uint8_t value) override {
#ifdef KLOTE_HAS_IOPERM
    if (Granted(port)) outb(value, port);
#endif
    (void)port;
    (void)value;
  }

 private:
  static constexpr int kRanges = 4;
  struct Range {
    uint16_t base = 0;
    int count = 0;
  };
  // A port the process was never given would end it with a fault; such a port is skipped.
  bool Granted(uint16_t port) const {
    for (const Range& r : granted_)
      if (r.count > 0 && port >= r.base && port < r.base + r.count) return true;
    return false;
  }
  Range granted_[kRanges];
  int grantedCount_ = 0;
};

struct PortIoChoice {
  std::unique_ptr<PortIo> chosen;
  PortIo* override = nullptr;
};

PortIoChoice& Choice() {
  static PortIoChoice choice;
  return choice;
}

// The simulated controller behind KLOTE_ELZAB_LINE, sending at the programmed rate;
// while the line is missing, a controller with nothing connected, so that sends time
// out as on a printer that is switched off; it comes back when the printer does.
std::unique_ptr<PortIo> MakeSimulatedPortIo(const char* path) {
  auto link = std::make_unique<ReopeningByteLink>(path);
  auto model = std::make_unique<Uart16550Model>(std::move(link));
  model->SetPaced(true);
  return model;
}

}  // namespace

std::unique_ptr<PortIo> MakeRealPortIo() { return std::make_unique<RealPortIo>(); }

PortIo& ElzabPortIo() {
  PortIoChoice& c = Choice();
  if (c.override) return *c.override;
  if (!c.chosen) {
    const char* line = std::getenv("KLOTE_ELZAB_LINE");
    c.chosen = line && *line ? MakeSimulatedPortIo(line) : MakeRealPortIo();
  }
  return *c.chosen;
}

void SetElzabPortIo(PortIo* io) {
  PortIoChoice& c = Choice();
  c.override = io;
  if (!io) c.chosen.reset();
}
