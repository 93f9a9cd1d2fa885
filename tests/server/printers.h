// The real fisksrv in polling mode with both printer simulators: elzab-sim
// behind the simulated ELZAB controller (a Unix socket) and posnet-sim on a
// pseudo-terminal. Rows: "jobs\e" ELZAB with a drawer, "jobs\p" POSNET 40
// columns with a drawer, "jobs\q" POSNET 24 columns of old firmware without a
// drawer, "jobs\f" ELZAB without a drawer, "jobs\g" ELZAB on port 5, which has
// no controller.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "elzab_sim_process.h"
#include "harness.h"
#include "sim_process.h"

using Lines = std::vector<std::string>;

// A UTF-8 text as the Mazovia bytes the programs hold and POSNET receives.
std::string Maz(const std::string& utf8);

// A cash receipt job of that many lines "Towar <i> żółty" at kReceiptLineGrosz each,
// named by its document number.
constexpr int kReceiptLineGrosz = 123;
Lines ReceiptRecords(int lines, const std::string& number, const std::string& cashier = "Jan");
// Bread 1 x 5.00 and milk 2 x 3.00, paid in cash, no document number.
extern const Lines kTwoLines;

bool Has(const Lines& lines, const std::string& line);
int CountStarting(const Lines& lines, const std::string& prefix);

class PrintersTest : public ::testing::Test {
 protected:
  // Starts both simulators (with their extra arguments) and the server with a log;
  // the ELZAB line is a Unix socket, or a pseudo-terminal with elzabOnTerminal.
  void Start(std::vector<std::string> elzabArgs = {}, std::vector<std::string> posnetArgs = {},
             bool elzabOnTerminal = false);
  // Starts only the simulators and points the server's ports at them (through the
  // environment), for a server started by the test itself.
  void StartSimulators(std::vector<std::string> elzabArgs = {}, std::vector<std::string> posnetArgs = {},
                       bool elzabOnTerminal = false);
  // Writes the configuration and starts a server (again) with a log; waits for its start's lines.
  void StartServer(const std::string& config, const std::string& pollMs = "5");
  void TearDown() override;

  // Publishes a job in the row's file at once (written aside, then renamed):
  // the keyword's word, then the records given in UTF-8.
  void Publish(char row, const std::string& word, const std::vector<std::string>& records);
  // Publishes the job and waits for its result line; gives the line without the time.
  std::string Run(char row, const std::string& word, const std::vector<std::string>& records = {});
  // Waits for the result line of the job published last in the row; the line without the time.
  std::string Result(char row);
  // The log's lines so far, and whether the row's job file exists.
  std::vector<std::string> LogLines() const;
  bool JobExists(char row) const;

  std::vector<std::string> ElzabJournal() const { return elzab_->Journal(); }
  std::vector<std::string> ElzabTrace() const { return elzab_->Trace(); }
  std::vector<std::string> PosnetJournal() const { return posnet_->Journal(); }
  std::vector<std::string> PosnetTrace() const { return posnet_->Trace(); }
  // The journal of the printer behind the row: "e", "f" and "g" are ELZAB's.
  Lines Journal(char row) const { return row == 'e' || row == 'f' || row == 'g' ? ElzabJournal() : PosnetJournal(); }

  TempDir dir_;
  std::unique_ptr<ElzabSimProcess> elzab_;
  std::unique_ptr<SimProcess> posnet_;
  std::unique_ptr<ServerProcess> server_;
  int results_ = 0;
  int starts_ = 0;
};

// The text is a failure stamp " nie wyk.zad. DD-MM-YYYY HH:MM:SS".
bool IsFailureStamp(const std::string& tail);
// The result line of a failure ends in the stamp " nie wyk.zad. DD-MM-YYYY HH:MM:SS".
::testing::AssertionResult EndsInFailureStamp(const std::string& line, const std::string& text);

// One receipt as a simulator's journal shows it: its number, its sale lines and how it ended.
struct Printed {
  std::string number;
  int lines = 0;
  std::string end;       // CLOSE..., TOTAL..., CANCELLED, or empty when cut off
  bool cutText = false;  // a free text ended by the next sender's line feeds
};
// The receipts of a journal of either family, in order.
std::vector<Printed> ReceiptsOf(const std::vector<std::string>& journal);
