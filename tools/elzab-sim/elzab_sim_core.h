// The ELZAB printer as a pure state machine: command bytes in, response bytes
// out, and a journal of what it printed. The program around it (elzab_sim.cpp)
// puts it behind a Unix socket or a pseudo-terminal; tests drive it directly.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Ways the printer can be told to fail, at one command or from it on.
enum class ElzabFaultKind {
  kNak,     // answer NAK (21) and serve the status bytes first and second
  kSilent,  // take the command in and answer nothing
  kUnplug,  // the line goes dead before the command is answered (clear to send drops)
};

struct ElzabFaultRule {
  int command = 0;       // 1 = the first command; status questions and cancels outside a receipt are not counted
  bool onwards = false;  // also every later command
  ElzabFaultKind kind = ElzabFaultKind::kNak;
  uint8_t first = 0, second = 0;
};

// "3:nak=0x08,0", "2+:silent", "4:unplug"; status bytes in decimal or 0x hex.
std::optional<ElzabFaultRule> ParseElzabFaultRule(std::string_view text);

// CP852 text as UTF-8 for the journal: the Polish letters as themselves, other
// bytes outside printable ASCII as \xNN.
std::string Cp852ToJournal(std::string_view bytes);

class ElzabPrinterSim {
 public:
  explicit ElzabPrinterSim(std::vector<ElzabFaultRule> faults = {});

  // Takes one byte from the line; the printer's answer, if any, is appended to out.
  void Receive(uint8_t b, std::string& out);
  // Lines printed since the last call (journal), and the trace of commands and answers.
  std::vector<std::string> TakeJournal();
  std::vector<std::string> TakeTrace();
  // True once, after a command at which the line was to go dead.
  bool TakeUnplug();

  bool InReceipt() const { return inReceipt_; }
  // Commands received so far (status questions not counted).
  int CommandCount() const { return commandCount_; }

 private:
  bool Complete() const;
  void OnCommand(std::string& out);
  const ElzabFaultRule* FaultFor(int command) const;
  // Executes a whole command; false when the printer refuses it.
  bool Execute();
  bool OpenReceipt();
  bool SaleLine();
  bool Close();
  bool PeriodReport();
  void Refuse(uint8_t first, uint8_t second);
  void Journal(std::string line) { journal_.push_back(std::move(line)); }

  std::vector<ElzabFaultRule> faults_;
  std::string cmd_;  // the command being received, from its ESC on
  int commandCount_ = 0;
  uint8_t status_[2] = {0, 0};
  bool inReceipt_ = false;
  int linesSold_ = 0;
  int64_t receiptTotal_ = 0;
  int64_t receiptSum_ = 0;
  bool unplug_ = false;
  std::vector<std::string> journal_;
  std::vector<std::string> trace_;
};
