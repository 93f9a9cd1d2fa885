// A 16550 serial controller as a register model, for machines without one: the
// divisor latch, line control, interrupt enable, modem control, line status
// (data ready, transmitter empty) and modem status (clear to send). Its serial
// side is a ByteLink, so a printer simulator can sit behind it in another process.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fiscal/portio.h"

// The serial side of the model: a byte stream to and from the printer.
class ByteLink {
 public:
  virtual ~ByteLink() = default;
  // A byte that came from the printer, or -1 when none waits.
  virtual int ReadByte() = 0;
  // Sends a byte to the printer; false when the link is gone.
  virtual bool WriteByte(uint8_t b) = 0;
  // True while the other side is there.
  virtual bool Connected() const = 0;
};

// A link over a descriptor that it owns: a Unix socket, or a terminal in raw mode.
class FdByteLink : public ByteLink {
 public:
  explicit FdByteLink(int fd);
  ~FdByteLink() override;
  FdByteLink(const FdByteLink&) = delete;
  FdByteLink& operator=(const FdByteLink&) = delete;
  // Connects to a Unix socket or opens a terminal at path; null when neither works.
  static std::unique_ptr<FdByteLink> Open(const std::string& path);
  int ReadByte() override;
  bool WriteByte(uint8_t b) override;
  bool Connected() const override { return fd_ >= 0 && !hungUp_; }

 private:
  int fd_;
  bool hungUp_ = false;
};

// A link by path that opens itself again whenever it is gone (the printer
// simulator was not there yet, restarted, or hung up), as a real line comes back
// when the printer clears to send again. Tries at most every retryMs.
class ReopeningByteLink : public ByteLink {
 public:
  explicit ReopeningByteLink(std::string path, int retryMs = 50);
  int ReadByte() override;
  bool WriteByte(uint8_t b) override;
  bool Connected() const override;

 private:
  void ReopenWhenGone() const;

  std::string path_;
  int64_t retryNs_;
  mutable std::unique_ptr<FdByteLink> link_;
  mutable int64_t lastTryNs_ = 0;
};

class Uart16550Model : public PortIo {
 public:
  // One register access, as the model saw it.
  struct Access {
    bool out;
    uint8_t offset;  // register number 0..7 from the base
    uint8_t value;
    bool operator==(const Access&) const = default;
  };

  // The model speaks through link (it may be null: nothing is connected).
  explicit Uart16550Model(ByteLink* link);
  // Takes the link along.
  explicit Uart16550Model(std::unique_ptr<ByteLink> link);

  bool RequestAccess(uint16_t base, int count) override;
  uint8_t In(uint16_t port) override;
  void Out(uint16_t port, uint8_t value) override;

  // The registers as programmed: base and number of ports granted, divisor latch,
  // line control, interrupt enable and modem control.
  uint16_t Base() const { return base_; }
  int GrantedCount() const { return count_; }
  uint16_t Divisor() const { return static_cast<uint16_t>(dlm_ << 8 | dll_); }
  uint8_t LineControl() const { return lcr_; }
  uint8_t InterruptEnable() const { return ier_; }
  uint8_t ModemControl() const { return mcr_; }
  // The printer's clear-to-send line (on by default, and only while the link is there).
  void SetClearToSend(bool on) { cts_ = on; }
  // Keeps the transmitter busy, so that the line status shows it not empty.
  void SetTransmitterBusy(bool busy) { txBusy_ = busy; }
  // Paces the transmitter as the hardware does: a byte stays in the shift register
  // for the line time of its bits at the programmed rate, and the holding register
  // is empty again once the byte before it has moved on into the shift register.
  void SetPaced(bool on) { paced_ = on; }
  // Line time of one byte at the programmed divisor and line control, nanoseconds.
  int64_t ByteTimeNs() const;
  // Records every register access from now on.
  void StartLog() { logging_ = true; log_.clear(); }
  // The accesses recorded since StartLog, in order.
  const std::vector<Access>& Log() const { return log_; }

 private:
  bool Granted(uint16_t port) const { return count_ > 0 && port >= base_ && port < base_ + count_; }
  void Record(bool out, uint8_t offset, uint8_t value);
  void PullByte();
  bool HoldingEmpty() const;
  void StartShift();
  uint8_t ReadRegister(uint8_t offset);

  std::unique_ptr<ByteLink> owned_;
  ByteLink* link_;
  uint16_t base_ = 0;
  int count_ = 0;
  uint8_t dll_ = 0, dlm_ = 0, ier_ = 0, lcr_ = 0, mcr_ = 0, fcr_ = 0, scratch_ = 0;
  uint8_t rbr_ = 0;
  bool dataReady_ = false;
  bool cts_ = true;
  bool txBusy_ = false;
  bool paced_ = false;
  int64_t shiftFreeNs_ = 0;  // when the shift register has sent its byte (paced)
  bool logging_ = false;
  std::vector<Access> log_;
};
