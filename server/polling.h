// Polling mode of the fiscal print server: read up to 20 printer rows, then
// serve them in turn, one look at each row's job file and one sleep of the
// poll time after every row, until F10 (only without a log file).
#pragma once

#include <cstdint>

#include "base/filevar.h"
#include "base/shorttext.h"
#include "server/rows.h"

inline constexpr uint16_t kDefaultPollDelay = 500;

// The server's state while it runs.
struct ServerState {
  PrinterRows rows;
  uint16_t pollDelay = kDefaultPollDelay;  // PollDelay, milliseconds
  ShortText logFileName;                   // LogFileName; empty: the screen
  ShortText fourthParameter;               // read and kept, of no effect
  uint8_t jobKind = 0;                     // JobKind
  uint8_t jobResult = 0;                   // JobResult; with kind 0, 'D' stops the server
  ShortText resultText;                    // ResultText
  FileVar jobFile;
  // What the last sleep overran by (the system's wake-up delay), taken off
  // the next one so that the delays of many rows do not add up.
  int64_t sleepOverrunUs = 0;
};

// The stop pair: what F10 reads as, (0, 'D').
inline constexpr uint8_t kStopResult = 'D';

// The poll time of parameter 2: missing, 0 or without digits give 500; a
// value outside 0..65535 is a run-time range error.
uint16_t PollDelayFromParam(const ShortText& text);

// Polling mode from its start-up lines to "KONIEC PRACY SERVERA DRUKAREK
// FISKALNYCH"; parameters 1 to 4 of the process. Gives the exit status (0,
// also on the fatal conditions of the configuration).
int RunPollingMode(ServerState& state);
// One pass over all rows; false when the stop pair was read.
bool RowPass(ServerState& state);
