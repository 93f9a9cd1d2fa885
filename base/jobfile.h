// Job files: the one link between the application and the fiscal print server.
// A job file is a sequence of 256-byte records, each holding one text: byte 0
// is its length, the text follows, zeros fill the rest. Record 1 is a keyword
// (ESC and a word); ESC "KONIEC" ends every job. The application writes these
// files, the server reads them, and the job handlers of each printer family
// read their records through the functions here.
#pragma once

#include <cstdint>

#include "base/filevar.h"
#include "base/real.h"
#include "base/shorttext.h"

inline constexpr int kJobRecordSize = 256;

// JobKind values: what the first record asks for.
inline constexpr uint8_t kJobNone = 0;
inline constexpr uint8_t kJobReceipt = 1;
inline constexpr uint8_t kJobDailyReport = 2;
inline constexpr uint8_t kJobPeriodReport = 3;
inline constexpr uint8_t kJobDrawer = 4;
inline constexpr uint8_t kJobWithdrawn = 255;

// Record 1 while the application is still writing.
inline constexpr ShortText kJobKeywordWait = "\x1b" "CZEKAJ";
// The record that ends every job.
inline constexpr ShortText kJobKeywordEnd = "\x1b" "KONIEC";
// The keyword that publishes a job of the kind (1..4, 255); empty for others.
ShortText JobKeyword(uint8_t kind);
// The kind of a first record by exact comparison with the five keywords; 0
// for anything else (ESC "CZEKAJ", lower case, an empty record).
uint8_t JobKindOfRecord(const ShortText& record);

// Reads the next record; false when fewer than 256 bytes came (text is then
// what the partial record held, or empty).
[[nodiscard]] bool ReadJobRecord(FileVar& file, ShortText& text);
// Writes the text as the next record, zero-filled to 256 bytes; IO result.
[[nodiscard]] int WriteJobRecord(FileVar& file, const ShortText& text);
// Writes the text as record number (from 1); IO result.
[[nodiscard]] int WriteJobRecordAt(FileVar& file, int recordNumber, const ShortText& text);

// At most this many line records in a receipt job; one more is a run-time error.
inline constexpr int kReceiptMaxLines = 50;

// A receipt job as read from records 2 on.
struct ReceiptJob {
  int32_t lineCount = 0;      // record 2 as the application counted
  Real total = 0;             // record 3, in grosz
  ShortText cashierCode;      // record 4
  ShortText cashierName;      // record 5
  ShortText paymentForm;      // record 6; exactly " gotówką" is cash
  ShortText documentNumber;   // record 7, may be empty
  int lines = 0;              // line records kept
  ShortText line[kReceiptMaxLines];  // CSV: name, quantity, VAT letter, price, unit
};

// Reads records 2 to 7 and the line records up to ESC "KONIEC", a short
// record or the end of the file, from a job file that stands at record 2.
// False (the job fails, nothing printed) when a record of 2 to 7 is short or
// the lines kept differ from record 2. A 51st line is a run-time error.
[[nodiscard]] bool ReadReceiptJob(FileVar& file, ReceiptJob& job);

// The job in hand, as the server gives it to the handler of a printer family.
struct JobRequest {
  int family = 0;             // row field 1: 1 ELZAB, 2 and 3 POSNET
  int port = 0;               // row field 2
  ShortText heading;          // row field 4
  bool oldFirmware = false;   // row field 4 non-empty
  int drawerFlag = 0;         // row field 5: 1 means a drawer hangs on the printer
  FileVar* file = nullptr;    // the job file, open and standing at record 2
  ShortText* resultText = nullptr;  // filled by the handler with the job's name and failures
};
// A job handler: runs the job on the printer and gives JobResult (0 success,
// else the kind number of the job that failed).
using JobHandler = uint8_t (*)(JobRequest& job);
