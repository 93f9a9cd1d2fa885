// Port input and output for the ELZAB line. The real back end reaches the PC's
// serial controller through I/O ports (ioperm, inb, outb); where a machine has no
// such controller, KLOTE_ELZAB_LINE names the serial side of a simulated 16550
// (fiscal/uart_model.h): a Unix socket or a terminal leading to a printer simulator.
#pragma once

#include <cstdint>
#include <memory>

class PortIo {
 public:
  virtual ~PortIo() = default;
  // Asks for access to count ports from base; false when refused.
  virtual bool RequestAccess(uint16_t base, int count) = 0;
  // Reads a port; a port without access reads 0xFF.
  virtual uint8_t In(uint16_t port) = 0;
  // Writes a port; a port without access is left alone.
  virtual void Out(uint16_t port, uint8_t value) = 0;
};

// The real ports of this machine; ports never granted are not touched.
std::unique_ptr<PortIo> MakeRealPortIo();
// The port I/O of the process: the simulated controller when KLOTE_ELZAB_LINE is set,
// else the real ports. Chosen at first use.
PortIo& ElzabPortIo();
// Puts io in place of the installation's choice; nullptr makes the next use choose anew.
void SetElzabPortIo(PortIo* io);
