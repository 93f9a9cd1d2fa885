#include "elzab_sim_core.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr char kEsc = 0x1B;
constexpr char kAck = 0x06;
constexpr char kNak = 21;
constexpr std::size_t kSaleLineSize = 51;  // ESC 0x06 0x20 and 48 bytes
constexpr std::size_t kLongestText = 300;

struct Letter {
  unsigned char cp852;
  const char* utf8;
};
constexpr Letter kLetters[] = {
    {0xA5, "ą"}, {0x86, "ć"}, {0xA9, "ę"}, {0x88, "ł"}, {0xE4, "ń"}, {0xA2, "ó"},
    {0x98, "ś"}, {0xAB, "ź"}, {0xBE, "ż"}, {0xA4, "Ą"}, {0x8F, "Ć"}, {0xA8, "Ę"},
    {0x9D, "Ł"}, {0xE3, "Ń"}, {0xE0, "Ó"}, {0x97, "Ś"}, {0x8D, "Ź"}, {0xBD, "Ż"},
};

std::string Hex(unsigned char c) {
  char text[8];
  std::snprintf(text, sizeof text, "\\x%02X", c);
  return text;
}

int32_t Amount32(const std::string& bytes, std::size_t at) {
  uint32_t v = 0;
  for (int i = 3; i >= 0; --i) v = v << 8 | static_cast<unsigned char>(bytes[at + i]);
  return static_cast<int32_t>(v);
}

// quantity / 10^decimals × price, rounded half away from zero, in whole numbers.
int64_t ExactValue(int64_t quantity, int decimals, int64_t price) {
  int64_t scale = 1;
  for (int i = 0; i < decimals; ++i) scale *= 10;
  const int64_t product = quantity * price;
  const int64_t half = product >= 0 ? scale : -scale;
  return (2 * product + half) / (2 * scale);
}

std::string Two(int tens, int units) { return std::to_string(tens) + std::to_string(units); }

// The command's name in the trace.
std::string CommandName(unsigned char code) {
  switch (code) {
    case 0x20: return "OPEN";
    case 0x06: return "LINE";
    case 0x07: return "END ITEMS";
    case 0x09: return "TEXT";
    case '$': return "CLOSE";
    case '#': return "CANCEL";
    case '%': return "DAILY REPORT";
    case '(':
    case ')': return "PERIOD REPORT";
    case 'W': return "DRAWER";
    case 'R': return "DISPLAY";
    default: return "UNKNOWN " + Hex(code);
  }
}

bool ParseByte(std::string_view text, uint8_t& out) {
  std::string s(text);
  char* end = nullptr;
  long v = std::strtol(s.c_str(), &end, 0);
  if (s.empty() || *end != '\0' || v < 0 || v > 255) return false;
  out = static_cast<uint8_t>(v);
  return true;
}

}  // namespace

std::optional<ElzabFaultRule> ParseElzabFaultRule(std::string_view text) {
  ElzabFaultRule rule;
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0) return std::nullopt;
  std::string number(text.substr(0, colon));
  if (number.back() == '+') {
    rule.onwards = true;
    number.pop_back();
  }
  rule.command = std::atoi(number.c_str());
  if (rule.command < 1) return std::nullopt;
  const std::string_view kind = text.substr(colon + 1);
  if (kind == "silent") rule.kind = ElzabFaultKind::kSilent;
  else if (kind == "unplug") rule.kind = ElzabFaultKind::kUnplug;
  else if (kind.starts_with("nak=")) {
    const std::string_view bytes = kind.substr(4);
    const std::size_t comma = bytes.find(',');
    if (comma == std::string_view::npos || !ParseByte(bytes.substr(0, comma), rule.first) ||
        !ParseByte(bytes.substr(comma + 1), rule.second))
      return std::nullopt;
  } else {
    return std::nullopt;
  }
  return rule;
}

std::string Cp852ToJournal(std::string_view bytes) {
  std::string out;
  for (char ch : bytes) {
    const auto c = static_cast<unsigned char>(ch);
    if (c >= 0x20 && c < 0x7F) {
      out += ch;
      continue;
    }
    const char* letter = nullptr;
    for (const Letter& l : kLetters)
      if (l.cp852 == c) letter = l.utf8;
    out += letter ? std::string(letter) : Hex(c);
  }
  return out;
}

ElzabPrinterSim::ElzabPrinterSim(std::vector<ElzabFaultRule> faults) : faults_(std::move(faults)) {}

std::vector<std::string> ElzabPrinterSim::TakeJournal() { return std::exchange(journal_, {}); }
std::vector<std::string> ElzabPrinterSim::TakeTrace() { return std::exchange(trace_, {}); }
bool ElzabPrinterSim::TakeUnplug() { return std::exchange(unplug_, false); }

const ElzabFaultRule* ElzabPrinterSim::FaultFor(int command) const {
  const ElzabFaultRule* found = nullptr;
  for (const ElzabFaultRule& f : faults_)
    if (f.command == command || (f.onwards && f.command <= command)) found = &f;
  return found;
}

void ElzabPrinterSim::Receive(uint8_t b, std::string& out) {
  if (cmd_.empty() && b != kEsc) {
    // Line feeds between commands are passed over: a sender ends a command that
    // it may have left half sent with them.
    if (b != '\n') trace_.push_back("STRAY " + Hex(b));
    return;
  }
  cmd_ += static_cast<char>(b);
  if (Complete()) {
    OnCommand(out);
    cmd_.clear();
  }
}

bool ElzabPrinterSim::Complete() const {
  const std::size_t n = cmd_.size();
  if (n < 2) return false;
  switch (cmd_[1]) {
    case 0x20: return n == 6;
    case 0x06: return n == kSaleLineSize;
    case 0x09: return (n >= 4 && cmd_.back() == '\n') || n >= kLongestText;
    case '(':
    case ')': return n == 14;
    case 'R': return (n >= 4 && cmd_[n - 2] == kEsc && cmd_[n - 1] == 'S') || n >= kLongestText;
    default: return true;
  }
}

void ElzabPrinterSim::OnCommand(std::string& out) {
  const auto code = static_cast<unsigned char>(cmd_[1]);
  if (code == 0x94 || code == 0x95) {
    const uint8_t status = status_[code - 0x94];
    trace_.push_back(std::string(code == 0x94 ? "STATUS 1" : "STATUS 2") + " -> " + std::to_string(status));
    out += static_cast<char>(status);
    return;
  }
  if (code == '#' && !inReceipt_) {
    // Nothing to cancel: refused, and not numbered, so that a cancel sent just in
    // case does not move the faults of the commands that follow it.
    Refuse(0, 0);
    out += kNak;
    return trace_.push_back("CANCEL -> NAK (no receipt)");
  }
  ++commandCount_;
  const std::string what = "CMD " + std::to_string(commandCount_) + " " + CommandName(code);
  if (const ElzabFaultRule* f = FaultFor(commandCount_)) {
    if (f->kind == ElzabFaultKind::kSilent) return trace_.push_back(what + " -> silent");
    if (f->kind == ElzabFaultKind::kUnplug) {
      unplug_ = true;
      return trace_.push_back(what + " -> unplugged");
    }
    Refuse(f->first, f->second);
    out += kNak;
    return trace_.push_back(what + " -> NAK");
  }
  const bool accepted = Execute();
  if (accepted) status_[0] = status_[1] = 0;
  out += accepted ? kAck : kNak;
  trace_.push_back(what + (accepted ? " -> ACK" : " -> NAK"));
}

void ElzabPrinterSim::Refuse(uint8_t first, uint8_t second) {
  status_[0] = first;
  status_[1] = second;
}

bool ElzabPrinterSim::Execute() {
  switch (cmd_[1]) {
    case 0x20: return OpenReceipt();
    case 0x06: return SaleLine();
    case 0x07:
      if (!inReceipt_) return Refuse(0, 0), false;
      Journal("END ITEMS");
      return true;
    case 0x09:
      if (cmd_.back() != '\n') return Refuse(0, 0), false;
      Journal("TEXT " + Cp852ToJournal(cmd_.substr(2, 1)) + "|" + Cp852ToJournal(cmd_.substr(3, cmd_.size() - 4)));
      return true;
    case '$': return Close();
    case '#':
      Journal("CANCELLED");
      inReceipt_ = false;
      return true;
    case '%':
      if (inReceipt_) return Refuse(0x02, 0), false;
      Journal("DAILY REPORT");
      return true;
    case '(':
    case ')': return PeriodReport();
    case 'W': Journal("DRAWER"); return true;
    case 'R': Journal("DISPLAY " + Cp852ToJournal(cmd_.substr(2, cmd_.size() - 4))); return true;
    default: return Refuse(0, 0), false;
  }
}

bool ElzabPrinterSim::OpenReceipt() {
  if (inReceipt_) return Refuse(0x02, 0), false;
  inReceipt_ = true;
  linesSold_ = 0;
  receiptSum_ = 0;
  receiptTotal_ = Amount32(cmd_, 2);
  Journal("RECEIPT " + std::to_string(receiptTotal_));
  return true;
}

// ESC 0x06 0x20, name 28, "0", quantity 4, decimals 1, unit 4, price 4, ESC, tax 1, value 4.
bool ElzabPrinterSim::SaleLine() {
  if (!inReceipt_ || cmd_[2] != 0x20 || cmd_[31] != '0' || cmd_[45] != kEsc) return Refuse(0, 0), false;
  const int32_t quantity = Amount32(cmd_, 32);
  const int decimals = static_cast<unsigned char>(cmd_[36]);
  const int32_t price = Amount32(cmd_, 41);
  const int tax = static_cast<unsigned char>(cmd_[46]);
  const int32_t value = Amount32(cmd_, 47);
  // The printer works the value out itself and refuses a line that says otherwise.
  if (decimals > 3 || tax < 1 || tax > 7 || ExactValue(quantity, decimals, price) != value) return Refuse(0, 0), false;
  receiptSum_ += value;
  Journal("LINE " + std::to_string(++linesSold_) + "|" + Cp852ToJournal(cmd_.substr(3, 28)) + "|" +
          std::to_string(quantity) + "/" + std::to_string(decimals) + "|" + Cp852ToJournal(cmd_.substr(37, 4)) +
          "|" + std::to_string(price) + "|" + std::to_string(tax) + "|" + std::to_string(value));
  return true;
}

bool ElzabPrinterSim::Close() {
  if (!inReceipt_) return Refuse(0, 0), false;
  Journal("CLOSE " + std::to_string(receiptSum_));
  inReceipt_ = false;
  return true;
}

bool ElzabPrinterSim::PeriodReport() {
  if (inReceipt_) return Refuse(0x02, 0), false;
  int d[12];
  for (int i = 0; i < 12; ++i) {
    d[i] = static_cast<unsigned char>(cmd_[2 + i]);
    if (d[i] > 9) return Refuse(0, 0), false;
  }
  Journal(std::string("PERIOD REPORT ") + (cmd_[1] == '(' ? "FISK " : "NFISK ") + Two(d[0], d[1]) + "-" +
          Two(d[2], d[3]) + "-" + Two(d[4], d[5]) + " " + Two(d[6], d[7]) + "-" + Two(d[8], d[9]) + "-" +
          Two(d[10], d[11]));
  return true;
}
