// The POSNET printer as a pure state machine: bytes in, bytes out, and a
// journal of what it printed. The program around it (posnet_sim.cpp) puts it
// on a pseudo-terminal; tests drive it directly.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Ways the printer can be told to fail, at one command or from it on.
enum class SimFaultKind {
  kError,    // refuse the command with printer error code arg (0: refuse without a code)
  kSilent,   // take the command in but answer nothing
  kXoff,     // stop the line (XOFF) before the command's frame; arg ms until XON, 0 never
  kOneEnq,   // answer only the first of the two ENQs of the command's status step
  kCorrupt,  // refuse, and answer the status query with a frame that is no status record
  kBadEnd,   // refuse, and answer the status query with a frame of a broken end
};

struct SimFaultRule {
  int command = 0;       // 1 = the first command frame with a check value
  bool onwards = false;  // also every later command
  SimFaultKind kind = SimFaultKind::kError;
  int arg = 0;
};

// "3:error=21", "5+:silent", "2:xoff=1500", "4:oneenq", "6:corrupt", "6:badend".
std::optional<SimFaultRule> ParseSimFaultRule(std::string_view ruleText);

struct SimOptions {
  std::vector<SimFaultRule> faults;
  bool ignoreCancel = false;  // keep the transaction open whatever cancel comes
};

// Grosz of an amount text ("12.34", "12.05", "12"); empty when it is no amount.
std::optional<int64_t> ParseSimAmount(std::string_view text);

class PosnetPrinterSim {
 public:
  explicit PosnetPrinterSim(SimOptions options = {});

  // Takes one byte from the line; whatever the printer answers is appended to out.
  void Receive(uint8_t b, std::string& out);

  // Lines printed since the last call (journal), and the trace of what came in.
  std::vector<std::string> TakeJournal();
  std::vector<std::string> TakeTrace();
  // Milliseconds until an XOFF given in the last Receive is lifted (0: held for good);
  // empty when no XOFF was given.
  std::optional<int> TakeXoffHold();

  // True while a receipt is open.
  bool InTransaction() const { return inTransaction_; }
  // Command frames (with a check value) received so far.
  int CommandCount() const { return commandCount_; }
  // The answer to ENQ: mark bits, accepted, transaction open.
  int StatusByte() const;

 private:
  enum class Parse { kIdle, kAfterEsc, kInFrame, kAfterFrameEsc };
  const SimFaultRule* FaultFor(int command) const;
  bool SilentNow() const;
  void OnEnquiry(std::string& out);
  void OnFrame(const std::string& body, std::string& out);
  void OnCommand(const std::string& body);
  void Refuse(int code);
  void Execute(std::string_view params, std::string_view code, std::string_view rest);
  void BeginReceipt(const std::vector<long>& params, std::string_view rest);
  void SaleLine(const std::vector<long>& params, std::string_view rest);
  void EndReceipt(const std::vector<long>& params, std::string_view rest);
  void CancelTransaction(const char* why);
  void Journal(std::string line) { journal_.push_back(std::move(line)); }
  std::string StatusRecordFrame() const;
  std::string ClockFrame() const;

  SimOptions options_;
  Parse parse_ = Parse::kIdle;
  std::string frame_;
  int commandCount_ = 0;
  int enquiriesSinceFrame_ = 0;
  bool accepted_ = true;
  int errorCode_ = 0;
  bool inTransaction_ = false;
  int declaredLines_ = 0;
  int linesSold_ = 0;
  int64_t receiptSum_ = 0;
  int clock_[5] = {0, 0, 0, 0, 0};
  bool clockSet_ = false;
  std::vector<std::string> journal_;
  std::vector<std::string> trace_;
  std::optional<int> xoffHold_;
};
