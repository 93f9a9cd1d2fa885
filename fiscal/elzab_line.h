// The ELZAB line: the PC's serial controller programmed directly, port by port,
// through the process's port I/O (fiscal/portio.h). Every operation reports by
// the flag timedOut of ElzabLine(). Ports 1 to 4 are 0x3F8, 0x2F8, 0x3E8, 0x2E8.
#pragma once

#include <cstdint>
#include <string_view>

struct ElzabLineState {
  uint16_t responseDelay = 100;    // ms before a response byte is read (konffiss.txt, line 2)
  bool timedOut = false;           // result of the last operation
  bool ready = false;              // the controller is programmed (or the process is ending)
  uint16_t sendTimeout = 2000;     // ms the line may take to accept a byte
  uint16_t receiveTimeout = 4000;  // polls of the line status in ElzabReadByte
  uint16_t lateAnswerMs = 2000;    // ms a response is still waited for after responseDelay
};

// The line's state and settings, one for the process.
ElzabLineState& ElzabLine();
// I/O base of port 1 to 4; 0 for any other number.
uint16_t ElzabPortBase(int port);

// Programs the controller for 9600 baud 8E1 with request to send, once per process.
void ElzabOpen(int port);
// Sends a byte once the transmitter is empty and the printer clears to send, within sendTimeout.
void ElzabSendByte(int port, uint8_t b);
// Sends the bytes one by one, stopping at the first time-out.
void ElzabSendText(int port, std::string_view text);
// Waits responseDelay ms, then up to lateAnswerMs more (sleeping, so a busy
// machine only slows it) until a byte has come, and reads the data register,
// whether a byte came or not.
uint8_t ElzabReadResponse(int port);
// Waits 200 ms and reads the data register once (a single byte, not a flush).
void ElzabPurge(int port);
// Polls for a received byte up to receiveTimeout times without sleeping; 0 on time-out.
uint8_t ElzabReadByte(int port);
// Waits up to ms milliseconds (sleeping between looks, so a busy machine only
// slows it) for a received byte; the byte, or -1 (timedOut set) when none came.
int ElzabWaitByte(int port, int ms);
// Takes away every byte the printer sent, until none has come for quietMs.
void ElzabDrain(int port, int quietMs);
// Leaves the port as it is: the ports stay granted to the process.
void ElzabRelease(int port);
