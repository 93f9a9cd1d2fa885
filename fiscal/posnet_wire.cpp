#include "fiscal/posnet_wire.h"

#include <charconv>
#include <cstdlib>

#include "base/codepage.h"
#include "base/text.h"

bool IsPosnetStatusByte(int b) { return b >= 0 && (b & kPosnetStatusMark) == kPosnetStatusMark; }

std::string PosnetCheckValue(std::string_view body) {
  unsigned check = 0xFF;
  for (char c : body) check ^= static_cast<unsigned char>(c);
  static constexpr char kHex[] = "0123456789ABCDEF";
  return std::string{kHex[check >> 4], kHex[check & 0x0F]};
}

std::string PosnetCheckedFrame(std::string_view body) {
  std::string frame{kPosnetEsc, 'P'};
  frame.append(body);
  frame += PosnetCheckValue(body);
  frame += kPosnetEsc;
  frame += '\\';
  return frame;
}

std::string PosnetPlainFrame(std::string_view body) {
  std::string frame{kPosnetEsc, 'P'};
  frame.append(body);
  frame += kPosnetEsc;
  frame += '\\';
  return frame;
}

std::string PosnetNumber(long value) {
  char buf[24];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value);
  (void)ec;
  return std::string(buf, end);
}

std::string MoneyField(int64_t grosz) {
  std::string out;
  if (grosz < 0) out += '-';
  uint64_t magnitude = grosz < 0 ? 0 - static_cast<uint64_t>(grosz) : static_cast<uint64_t>(grosz);
  char buf[24];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, magnitude / 100);
  (void)ec;
  out.append(buf, end);
  unsigned rest = static_cast<unsigned>(magnitude % 100);
  if (rest >= 10) {
    out += '.';
    out += PosnetNumber(rest);
  } else if (rest > 0) {
    out += ".0";
    out += static_cast<char>('0' + rest);
  }
  out += '/';
  return out;
}

PosnetLineBlock LineBlock(const ShortText& a, const ShortText& b, const ShortText& c) {
  PosnetLineBlock block;
  for (const ShortText* t : {&a, &b, &c}) {
    if (t->Empty()) continue;
    block.text.append(t->View());
    block.text += kPosnetCr;
    ++block.count;
  }
  return block;
}

namespace {

// The part that both forms of a sale line share: name CR quantity CR VAT letter "/".
void AppendSaleLine(std::string& body, const ShortText& name, const ShortText& qty,
                    const ShortText& vat) {
  body.append(name.View());
  body += kPosnetCr;
  body.append(qty.View());
  body += kPosnetCr;
  body.append(vat.View());
  body += '/';
}

}  // namespace

std::string PosnetReceiptLineBody(int i, const ShortText& name, const ShortText& qty,
                                  const ShortText& vat, int64_t price, int64_t value) {
  std::string body = PosnetNumber(i) + "$l";
  AppendSaleLine(body, name, qty, vat);
  return body + MoneyField(price) + MoneyField(value);
}

std::string PosnetReceiptLineDiscountBody(int i, int kind, const ShortText& name,
                                          const ShortText& qty, const ShortText& vat,
                                          const ShortText& text, int64_t price, int64_t value) {
  std::string body = PosnetNumber(i) + ";" + PosnetNumber(kind) + "$l";
  AppendSaleLine(body, name, qty, vat);
  body.append(text.View());
  body += '/';
  body += MoneyField(price);
  if (kind != 0) body += MoneyField(value);
  return body;
}

std::string PosnetBeginReceiptBody(int lines, const PosnetLineBlock& block) {
  return PosnetNumber(lines) + ";" + PosnetNumber(block.count) + "$h" + block.text;
}

std::string PosnetEndReceiptBody(const ShortText& a, const ShortText& b,
                                 const PosnetLineBlock& block, int64_t paid, int64_t total) {
  std::string body = "1;";
  body.append(a.View());
  body += ";" + PosnetNumber(block.count) + "$e";
  body.append(b.View());
  body += kPosnetCr;
  return body + block.text + MoneyField(paid) + MoneyField(total);
}

std::string PosnetEndReceiptDiscountBody(int n, int p, int q, const ShortText& b,
                                         const PosnetLineBlock& block, int64_t paid,
                                         int64_t total, int64_t discount) {
  std::string body = "1;0;" + PosnetNumber(block.count) + ";" + PosnetNumber(n) + ";" +
                     PosnetNumber(p) + ";" + PosnetNumber(q) + "$e";
  body.append(b.View());
  body += kPosnetCr;
  body += block.text + MoneyField(paid) + MoneyField(total);
  if (p != 0) body += MoneyField(discount);
  return body;
}

std::string PosnetPrintLineBody(const ShortText& text) {
  std::string body = "0$f";
  body.append(text.View());
  if (text.Empty() || text.At(text.Length()) != kPosnetCr) body += kPosnetCr;
  body += static_cast<char>(0xFF);
  return body;
}

std::string PosnetDisplayFrame(int n, const ShortText& text) {
  std::string body = PosnetNumber(n) + "$d";
  if (text.At(1) != 0x0C) body += '\x0C';
  body.append(text.View());
  if (!text.View().ends_with("\n\r")) body += "\n\r";
  return PosnetPlainFrame(body);
}

PosnetFoot PosnetNewFirmwareFoot(const ShortText& receiptNumber, const ShortText& c,
                                 const ShortText& d) {
  PosnetFoot foot;
  foot.e = c;
  foot.c = receiptNumber.Empty() ? ShortText("#x") : ShortText("#") + receiptNumber;
  foot.d = d;
  if (!d.Empty()) {
    ShortText payment = MazUpCaseText(TrimRightAll(TrimLeftAll(d, ' '), ' '));
    foot.c = (foot.c + "-" + payment).Copy(1, 30);
    foot.d.Clear();
  }
  return foot;
}

long PosnetPeriodDayNumber(int y, int m, int d) {
  long year = y < 50 ? y + 100 : y;
  return year * 1000 + m * 50 + d;
}

namespace {

// Splits the fields of a reply from its fifth character: each ends at "/", ";" or the end.
int SplitReplyFields(std::string_view collected, std::string_view* fields, int capacity) {
  int count = 0;
  if (collected.size() < 4) return 0;
  std::string_view rest = collected.substr(4);
  while (!rest.empty() && count < capacity) {
    std::size_t end = rest.find_first_of("/;");
    fields[count++] = rest.substr(0, end);
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  return count;
}

bool ParseWhole(std::string_view field, long& out) {
  if (field.empty()) return false;
  const char* begin = field.data();
  if (*begin == '+') ++begin;
  auto [end, ec] = std::from_chars(begin, field.data() + field.size(), out);
  return ec == std::errc() && end == field.data() + field.size();
}

long double ParseAmount(std::string_view field) {
  std::string text(field);
  return std::strtold(text.c_str(), nullptr);
}

}  // namespace

std::optional<PosnetStatusRecord> ParsePosnetStatusRecord(std::string_view collected) {
  if (collected.empty() || collected[0] != 'P') return std::nullopt;
  std::string_view fields[64];
  int n = SplitReplyFields(collected, fields, 64);
  if (n < 9) return std::nullopt;
  PosnetStatusRecord rec;
  for (int i = 0; i < 9; ++i)
    if (!ParseWhole(fields[i], rec.integers[i])) return std::nullopt;
  long slashes = 0;
  for (char c : collected) slashes += c == '/';
  int r = static_cast<int>(slashes / 2 - 2);
  rec.rateCount = r < 1 ? 1 : (r > 16 ? 16 : r);
  // The fields beyond the error code are read as far as they go; the system does not use them.
  int at = 9;
  for (int i = 0; i < rec.rateCount - 1 && at < n; ++i) rec.rates[i] = ParseAmount(fields[at++]);
  if (at < n) ParseWhole(fields[at++], rec.receiptCount);
  for (int i = 0; i < rec.rateCount && at < n; ++i) rec.amounts[i] = ParseAmount(fields[at++]);
  if (at < n) rec.cash = ParseAmount(fields[at++]);
  if (at < n) rec.text = std::string(fields[at]);
  return rec;
}

std::optional<PosnetClock> ParsePosnetClock(std::string_view collected) {
  std::string_view fields[8];
  int n = SplitReplyFields(collected, fields, 8);
  if (collected.empty() || collected[0] != 'P' || n < 5) return std::nullopt;
  long v[5];
  for (int i = 0; i < 5; ++i)
    if (!ParseWhole(fields[i], v[i])) return std::nullopt;
  return PosnetClock{static_cast<int>(v[0]), static_cast<int>(v[1]), static_cast<int>(v[2]),
                     static_cast<int>(v[3]), static_cast<int>(v[4])};
}

namespace {

bool IsPlainLetterOrDigit(unsigned char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

ShortText PosnetCleanName(const ShortText& name) {
  constexpr int kNeeded = 10;
  ShortText out = name;
  int counted = 0;
  for (int i = 1; i <= out.Length(); ++i) {
    unsigned char c = out.At(i);
    if (IsPlainLetterOrDigit(c)) ++counted;
    else if (!IsPolishLetter(c)) out[i] = ' ';
  }
  for (int i = out.Length(); i >= 1 && counted < kNeeded; --i) {
    if (out.At(i) != ' ') continue;
    out[i] = 'x';
    ++counted;
  }
  for (int i = out.Length(); i >= 1 && counted < kNeeded; --i) {
    unsigned char c = out.At(i);
    if (IsPlainLetterOrDigit(c)) continue;
    out[i] = IsPolishLetter(c) ? static_cast<char>(MazToAscii(c)) : 'x';
    ++counted;
  }
  return out;
}
