// The printer rows of the fiscal print server: one CSV line per printer, read
// from the configuration file, kept as text and split anew on every visit.
#pragma once

#include <cstdint>

#include "base/shorttext.h"

inline constexpr int kMaxPrinterRows = 20;

struct PrinterRows {
  int16_t count = 0;  // PrinterRowCount
  ShortText row[kMaxPrinterRows];
};

// Fields of one row: family, port, job path, heading, drawer flag, and the
// optional program with its command line.
struct PrinterRowFields {
  int family = 0;
  int port = 0;
  ShortText jobPath;
  ShortText heading;
  bool oldFirmware = false;  // a heading switches POSNET to its old firmware form
  int drawerFlag = 0;
  ShortText program;
  ShortText commandLine;
};

// A row is valid when it has at least this many fields.
inline constexpr int kPrinterRowMinFields = 5;

// Splits a row into its fields; missing fields read as empty or 0.
PrinterRowFields SplitPrinterRow(const ShortText& row);

enum class RowsOutcome : uint8_t {
  kLoaded,        // at least one row accepted
  kCannotOpen,    // the file cannot be opened
  kBadStructure,  // the first row is short
  kNoRows,        // the file holds no line
};

// Reads the configuration file (path through AssignFile): every line up to a
// short one becomes a row, and each accepted row's job file is deleted, so no
// job of an earlier run is left. A 21st line is a run-time range error.
[[nodiscard]] RowsOutcome LoadPrinterRows(const ShortText& path, PrinterRows& rows);
