#include "posnet_sim_core.h"

#include <charconv>
#include <cmath>
#include <ctime>
#include <utility>

#include "fiscal/posnet_wire.h"

namespace {

bool ParseInt(std::string_view s, long& out) {
  if (s.empty()) return false;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && end == s.data() + s.size();
}

std::vector<std::string_view> Split(std::string_view s, char sep) {
  std::vector<std::string_view> parts;
  for (;;) {
    std::size_t at = s.find(sep);
    parts.push_back(s.substr(0, at));
    if (at == std::string_view::npos) return parts;
    s.remove_prefix(at + 1);
  }
}

// Takes the text up to the next CR off the front of rest; empty when there is no CR.
std::optional<std::string_view> TakeLine(std::string_view& rest) {
  std::size_t at = rest.find('\r');
  if (at == std::string_view::npos) return std::nullopt;
  std::string_view line = rest.substr(0, at);
  rest.remove_prefix(at + 1);
  return line;
}

std::string Two(int v) {
  std::string s = std::to_string(v);
  return s.size() < 2 ? "0" + s : s;
}

}  // namespace

std::optional<SimFaultRule> ParseSimFaultRule(std::string_view ruleText) {
  SimFaultRule rule;
  std::size_t colon = ruleText.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  std::string_view number = ruleText.substr(0, colon);
  if (number.ends_with('+')) {
    rule.onwards = true;
    number.remove_suffix(1);
  }
  long command;
  if (!ParseInt(number, command) || command < 1) return std::nullopt;
  rule.command = static_cast<int>(command);
  std::string_view kind = ruleText.substr(colon + 1);
  std::size_t eq = kind.find('=');
  long arg = 0;
  if (eq != std::string_view::npos && !ParseInt(kind.substr(eq + 1), arg)) return std::nullopt;
  rule.arg = static_cast<int>(arg);
  kind = kind.substr(0, eq);
  if (kind == "error") rule.kind = SimFaultKind::kError;
  else if (kind == "silent") rule.kind = SimFaultKind::kSilent;
  else if (kind == "xoff") rule.kind = SimFaultKind::kXoff;
  else if (kind == "oneenq") rule.kind = SimFaultKind::kOneEnq;
  else if (kind == "corrupt") rule.kind = SimFaultKind::kCorrupt;
  else if (kind == "badend") rule.kind = SimFaultKind::kBadEnd;
  else return std::nullopt;
  return rule;
}

std::optional<int64_t> ParseSimAmount(std::string_view text) {
  std::size_t dot = text.find('.');
  long whole;
  if (!ParseInt(text.substr(0, dot), whole) || whole < 0) return std::nullopt;
  long grosz = 0;
  if (dot != std::string_view::npos) {
    std::string_view frac = text.substr(dot + 1);
    if (frac.empty() || frac.size() > 2 || !ParseInt(frac, grosz) || grosz < 0) return std::nullopt;
    if (frac.size() == 1) grosz *= 10;
  }
  return static_cast<int64_t>(whole) * 100 + grosz;
}

PosnetPrinterSim::PosnetPrinterSim(SimOptions options) : options_(std::move(options)) {}

std::vector<std::string> PosnetPrinterSim::TakeJournal() { return std::exchange(journal_, {}); }
std::vector<std::string> PosnetPrinterSim::TakeTrace() { return std::exchange(trace_, {}); }
std::optional<int> PosnetPrinterSim::TakeXoffHold() { return std::exchange(xoffHold_, std::nullopt); }

int PosnetPrinterSim::StatusByte() const {
  return kPosnetStatusMark | (accepted_ ? kPosnetAccepted : 0) | (inTransaction_ ? kPosnetInTransaction : 0);
}

const SimFaultRule* PosnetPrinterSim::FaultFor(int command) const {
  const SimFaultRule* found = nullptr;
  for (const auto& r : options_.faults)
    if (r.command == command || (r.onwards && command > r.command)) found = &r;
  return found;
}

bool PosnetPrinterSim::SilentNow() const {
  const SimFaultRule* f = FaultFor(commandCount_);
  return f && f->kind == SimFaultKind::kSilent;
}

void PosnetPrinterSim::Receive(uint8_t b, std::string& out) {
  switch (parse_) {
    case Parse::kIdle:
      if (b == kPosnetEsc) parse_ = Parse::kAfterEsc;
      else if (b == kPosnetEnq) OnEnquiry(out);
      else if (b == kPosnetCan) trace_.push_back("CAN");
      else if (b == kPosnetBel) trace_.push_back("BEL");
      break;
    case Parse::kAfterEsc:
      parse_ = b == 'P' ? Parse::kInFrame : Parse::kIdle;
      frame_.clear();
      break;
    case Parse::kInFrame:
      if (b == kPosnetEsc) parse_ = Parse::kAfterFrameEsc;
      else if (b == kPosnetCan) { parse_ = Parse::kIdle; trace_.push_back("CAN in frame"); }
      else if (frame_.size() < 4096) frame_ += static_cast<char>(b);
      break;
    case Parse::kAfterFrameEsc:
      parse_ = Parse::kIdle;
      if (b == '\\') {
        OnFrame(frame_, out);
      } else {
        trace_.push_back("BAD FRAME END");
        Refuse(2);
      }
      break;
  }
}

void PosnetPrinterSim::OnEnquiry(std::string& out) {
  ++enquiriesSinceFrame_;
  if (SilentNow()) return;
  const SimFaultRule* f = FaultFor(commandCount_);
  if (f && f->kind == SimFaultKind::kOneEnq && enquiriesSinceFrame_ >= 2) return;
  if (enquiriesSinceFrame_ == 2) {
    // Stop the line before the next command's frame can leave the computer.
    const SimFaultRule* next = FaultFor(commandCount_ + 1);
    if (next && next->kind == SimFaultKind::kXoff) {
      out += '\x13';
      xoffHold_ = next->arg;
      trace_.push_back("XOFF");
    }
  }
  out += static_cast<char>(StatusByte());
}

void PosnetPrinterSim::OnFrame(const std::string& body, std::string& out) {
  enquiriesSinceFrame_ = 0;
  std::size_t at = body.find_first_of("$#");
  std::string_view code = at == std::string::npos ? "" : std::string_view(body).substr(at, 2);
  if (code == "#s" || code == "#c" || code == "$d") {
    if (SilentNow()) return;
    if (code == "$d") {
      std::string_view text = std::string_view(body).substr(at + 2);
      while (!text.empty() && (text.front() == '\x0C')) text.remove_prefix(1);
      while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
      Journal((text == "SZUFLADA" ? "DRAWER " : "DISPLAY ") + std::string(text));
      return;
    }
    trace_.push_back(code == "#s" ? "STATUS QUERY" : "CLOCK QUERY");
    out += code == "#s" ? StatusRecordFrame() : ClockFrame();
    return;
  }
  OnCommand(body);
}

void PosnetPrinterSim::Refuse(int code) {
  accepted_ = false;
  errorCode_ = code;
}

void PosnetPrinterSim::OnCommand(const std::string& body) {
  ++commandCount_;
  accepted_ = true;
  errorCode_ = 0;
  std::string_view payload(body);
  std::string_view check = payload.size() >= 2 ? payload.substr(payload.size() - 2) : "";
  payload.remove_suffix(check.size());
  std::size_t at = payload.find_first_of("$#");
  std::string code = at == std::string_view::npos ? "?" : std::string(payload.substr(at, 2));
  trace_.push_back("CMD " + std::to_string(commandCount_) + " " + code);
  if (const SimFaultRule* f = FaultFor(commandCount_)) {
    switch (f->kind) {
      case SimFaultKind::kError: Refuse(f->arg); return;
      case SimFaultKind::kCorrupt:
      case SimFaultKind::kBadEnd: Refuse(4); return;
      case SimFaultKind::kSilent: return;
      case SimFaultKind::kXoff:
      case SimFaultKind::kOneEnq: break;
    }
  }
  if (check.size() != 2 || PosnetCheckValue(payload) != check) {
    trace_.push_back("BAD CHECK");
    Refuse(2);
    return;
  }
  if (at == std::string_view::npos || at + 2 > payload.size()) {
    Refuse(4);
    return;
  }
  Execute(payload.substr(0, at), payload.substr(at, 2), payload.substr(at + 2));
}

void PosnetPrinterSim::Execute(std::string_view params, std::string_view code, std::string_view rest) {
  std::vector<long> p;
  if (!params.empty()) {
    for (std::string_view part : Split(params, ';')) {
      long v;
      if (!ParseInt(part, v)) return Refuse(4);
      p.push_back(v);
    }
  }
  if (code == "$h") return BeginReceipt(p, rest);
  if (code == "$l") return SaleLine(p, rest);
  if (code == "$e") return p.size() == 1 && p[0] == 0 ? CancelTransaction("0$e") : EndReceipt(p, rest);
  if (code == "$c") {
    if (p.size() != 6) return Refuse(3);
    for (int i = 0; i < 5; ++i) clock_[i] = static_cast<int>(p[i]);
    clockSet_ = true;
    return;
  }
  if (code == "$f") {
    std::string_view text = rest;
    if (text.ends_with('\xFF')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return Journal("PRINT " + std::string(text));
  }
  if (code == "#i" || code == "#d") {
    if (inTransaction_) return Refuse(4);
    return Journal((code == "#i" ? "CASH IN " : "CASH OUT ") + std::string(rest));
  }
  if (code == "#r" || code == "#o") {
    if (inTransaction_) return Refuse(4);
    if (code == "#r") return Journal("DAILY REPORT");
    if (p.size() != 6) return Refuse(3);
    return Journal("PERIOD REPORT " + Two(p[0]) + "-" + Two(p[1]) + "-" + Two(p[2]) + " " +
                   Two(p[3]) + "-" + Two(p[4]) + "-" + Two(p[5]));
  }
  if (code == "#x" || code == "#e" || code == "#t" || code == "#k") return;
  Refuse(4);
}

void PosnetPrinterSim::BeginReceipt(const std::vector<long>& p, std::string_view rest) {
  if (inTransaction_) return Refuse(4);
  if (p.size() != 2) return Refuse(3);
  std::vector<std::string_view> lines;
  for (long i = 0; i < p[1]; ++i) {
    auto line = TakeLine(rest);
    if (!line) return Refuse(15);
    lines.push_back(*line);
  }
  inTransaction_ = true;
  declaredLines_ = static_cast<int>(p[0]);
  linesSold_ = 0;
  receiptSum_ = 0;
  Journal("RECEIPT " + std::to_string(p[0]));
  for (auto l : lines) Journal("HEAD " + std::string(l));
}

void PosnetPrinterSim::SaleLine(const std::vector<long>& p, std::string_view rest) {
  if (!inTransaction_) return Refuse(21);
  if (p.empty() || p.size() > 2) return Refuse(3);
  bool discountForm = p.size() == 2;
  auto name = TakeLine(rest);
  if (!name || name->empty()) return Refuse(16);
  auto qty = TakeLine(rest);
  if (!qty || qty->empty()) return Refuse(17);
  std::string_view amounts = rest;
  auto f = Split(rest, '/');
  if (f[0].empty()) return Refuse(18);
  amounts.remove_prefix(f[0].size() + 1 > amounts.size() ? amounts.size() : f[0].size() + 1);
  std::size_t at = discountForm ? 2 : 1;
  auto price = f.size() > at ? ParseSimAmount(f[at]) : std::nullopt;
  if (!price) return Refuse(19);
  long double quantity = std::strtold(std::string(*qty).c_str(), nullptr);
  int64_t expected = std::llround(static_cast<long double>(*price) * quantity);
  int64_t value = expected;
  if (!discountForm || p[1] != 0) {
    auto given = f.size() > at + 1 ? ParseSimAmount(f[at + 1]) : std::nullopt;
    if (!given || (!discountForm && *given != expected)) return Refuse(20);
    value = *given;
  }
  if (++linesSold_ > declaredLines_) return Refuse(23);
  receiptSum_ += value;
  Journal("LINE " + std::to_string(p[0]) + "|" + std::string(*name) + "|" + std::string(*qty) +
          "|" + std::string(f[0]) + "|" + std::string(amounts));
}

void PosnetPrinterSim::EndReceipt(const std::vector<long>& p, std::string_view rest) {
  if (!inTransaction_) return Refuse(29);
  if ((p.size() != 3 && p.size() != 6) || p[0] != 1) return Refuse(3);
  auto cashier = TakeLine(rest);
  if (!cashier) return Refuse(25);
  std::vector<std::string_view> foot;
  for (long i = 0; i < p[2]; ++i) {
    auto line = TakeLine(rest);
    if (!line) return Refuse(25);
    foot.push_back(*line);
  }
  auto f = Split(rest, '/');
  auto paid = ParseSimAmount(f[0]);
  if (!paid) return Refuse(30);
  auto total = f.size() > 1 ? ParseSimAmount(f[1]) : std::nullopt;
  if (!total) return Refuse(27);
  bool discounted = p.size() == 6 && p[4] != 0;
  if (!discounted && *total != receiptSum_) return Refuse(27);
  Journal("CASHIER " + std::string(*cashier));
  for (auto l : foot) Journal("FOOT " + std::string(l));
  Journal("TOTAL " + MoneyField(*total) + " PAID " + MoneyField(*paid));
  inTransaction_ = false;
}

void PosnetPrinterSim::CancelTransaction(const char* why) {
  trace_.push_back(std::string("CANCEL ") + why);
  if (options_.ignoreCancel || !inTransaction_) return;
  Journal("CANCELLED");
  inTransaction_ = false;
}

std::string PosnetPrinterSim::StatusRecordFrame() const {
  const SimFaultRule* f = FaultFor(commandCount_);
  if (f && f->kind == SimFaultKind::kCorrupt) return PosnetCheckedFrame("1#Xno;record");
  if (f && f->kind == SimFaultKind::kBadEnd) return std::string("\x1BP1#X0;0;0\x1B", 11) + "x";
  std::string body = "1#X" + std::to_string(errorCode_) + ";1;" + (inTransaction_ ? "1" : "0") +
                     ";0;0;0;24/1/5/";
  for (const char* rate : {"23.00", "8.00", "5.00", "0.00", "0.00", "0.00"}) body += std::string(rate) + "/";
  body += std::to_string(commandCount_) + "/";
  for (int i = 0; i < 7; ++i) body += "0.00/";
  body += "0.00/SIM00000001";
  return PosnetCheckedFrame(body);
}

std::string PosnetPrinterSim::ClockFrame() const {
  int c[5];
  if (clockSet_) {
    for (int i = 0; i < 5; ++i) c[i] = clock_[i];
  } else {
    std::time_t now = std::time(nullptr);
    std::tm tm{};
    localtime_r(&now, &tm);
    int values[5] = {tm.tm_year % 100, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min};
    for (int i = 0; i < 5; ++i) c[i] = values[i];
  }
  std::string body = "1#C";
  for (int v : c) body += std::to_string(v) + ";";
  return PosnetCheckedFrame(body + "0");
}
