// The POSNET line: the kernel's serial device in raw 9600 8N1 with XON/XOFF,
// kept open from job to job and closed only after a failure or at exit.
// One line per process; its state lives in this module.
//
// The device of port n is <prefix><n-1>, the prefix being "/dev/ttyS" unless the
// installation sets KLOTE_SERIAL_PREFIX (tests and the demo point it at a
// pseudo-terminal). Port 255 uses the fiscal configuration's device path.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/shorttext.h"

// Bytes that came in beyond the one asked for: 1024 places, indexes counted from 1
// that wrap to 1. A full ring overwrites its oldest byte without notice.
class ReceiveRing {
 public:
  static constexpr int kSize = 1024;
  // Forgets everything: both indexes back to 1.
  void Reset() { head_ = tail_ = 1; }
  // True when no byte waits.
  bool Empty() const { return head_ == tail_; }
  // Stores a byte behind the others; on a full ring the oldest one goes.
  void Put(uint8_t b);
  // The oldest byte, or -1 when the ring is empty.
  int Take();
  // Place (1..1024) of the next byte to take, and of the next byte to store.
  int ReadIndex() const { return head_; }
  int WriteIndex() const { return tail_; }

 private:
  static int Next(int index) { return index == kSize ? 1 : index + 1; }
  uint8_t bytes_[kSize] = {};
  int head_ = 1;  // next byte to take
  int tail_ = 1;  // next place to fill
};

// What the line is doing, as the driver and its tests see it.
struct PosnetLineState {
  bool portClosed = true;   // every POSNET command answers -5 while set
  int fd = -2;              // descriptor of the open device
  bool lineFailed = false;  // a read or write found nothing; makes PosnetClose close
  int16_t timeoutTicks = 0; // remaining 5 ms ticks of the current wait
  int opens = 0;            // how many times the device was really opened (and flushed)
  uint64_t bytesSent = 0;     // bytes written to the line since the process started
  uint64_t bytesReceived = 0; // bytes read from the line since the process started
};

// The line's present state.
const PosnetLineState& PosnetLine();

// Sets the device path of port 255 (the fiscal configuration's "inny port"); empty by default.
void SetPosnetDevicePath(const ShortText& path);
// The device that PosnetOpen(port) opens: <prefix><port-1>, or the configured path for 255.
ShortText PosnetDeviceName(int port);

// Opens and sets up the port unless it is open already; on failure the port stays closed.
void PosnetOpen(int port);
// Closes the port only when the line failed; a healthy port stays open for the next job.
void PosnetClose();
// Closes the port whatever its state, restoring the settings found at opening.
void PosnetCloseAtExit();

// Ticks for a wait of the given seconds (200 a second).
void SetTimeout(double seconds);
// Sends text byte by byte within seconds; -1 on a long XOFF or a closed port, else 0.
// Forgets every byte received before.
[[nodiscard]] int PosnetSend(double seconds, std::string_view text);
// One received byte, or -1 after a 5 ms tick when nothing came.
int PosnetGetByte();
// One received byte, waiting up to the ticks left; -1 when they run out.
int PosnetGetByteWaiting();
// Forgets the bytes that wait, in the ring and on the line, without waiting for
// more and without marking the line failed.
void PosnetDiscardReceived();
// True when bytes already received wait in the ring.
bool PosnetHasBufferedByte();
