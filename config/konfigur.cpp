// The settings as values, and the pure reading and writing of the file image.
#include "config/konfigur.h"

#include <algorithm>
#include <limits>

#include "base/csv.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"

namespace {

// Stands after the last setting, behind two empty lines; never read back.
constexpr std::string_view kWarning[] = {
    "UWAGA - wszelkie wykonywane bez pelnego zrozumienia i wiedzy zmiany",
    "        w tym pliku groza utata stabilnosci pracy programu.",
    "Zabronione jest uzywanie znaku \"#\" dwukrotnie w tej samej linii,",
    "n.p. jezeli jakas nazwa dokumentu, n.p. Mm + ma oznaczony swoj koniec",
    "znakiem \"#\" (a musi, bo program nie odczyta jej poprawnie), to ten znak",
    "wystepuje juz raz w linii.",
};

// The payment list holds three fields; a shorter one gets the missing ones.
constexpr std::string_view kPaymentTail[] = {",\" przelewem\"", ",\"przel.dla odb.\""};

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The number token at the start of a line (blanks skipped): sign, digits and,
// when allowed, one fraction; it must end at a blank or the line's end, as a
// number read from a text file does. Empty when the line holds no such token.
std::string_view LeadingNumber(std::string_view line, bool fraction) {
  size_t start = 0;
  while (start < line.size() && IsBlank(line[start])) ++start;
  size_t i = start;
  if (i < line.size() && (line[i] == '-' || line[i] == '+')) ++i;
  const size_t digitsFrom = i;
  while (i < line.size() && IsDigit(line[i])) ++i;
  bool anyDigit = i > digitsFrom;
  if (fraction && i < line.size() && line[i] == '.') {
    const size_t fractionFrom = ++i;
    while (i < line.size() && IsDigit(line[i])) ++i;
    anyDigit = anyDigit || i > fractionFrom;
  }
  if (!anyDigit || (i < line.size() && !IsBlank(line[i]))) return {};
  return line.substr(start, i - start);
}

// A 16-bit integer line; 0 for garbage or a value out of range.
int16_t ReadIntegerLine(std::string_view line) {
  const std::string_view token = LeadingNumber(line, false);
  if (token.empty()) return 0;
  int64_t value = 0;
  for (char c : token) {
    if (!IsDigit(c)) continue;
    value = value * 10 + (c - '0');
    if (value > 32768) return 0;
  }
  if (token[0] == '-') value = -value;
  if (value < std::numeric_limits<int16_t>::min() || value > std::numeric_limits<int16_t>::max()) return 0;
  return static_cast<int16_t>(value);
}

// The real line; 0 for garbage.
Real ReadRealLine(std::string_view line) {
  const std::string_view token = LeadingNumber(line, true);
  Real value = 0, scale = 1;
  bool inFraction = false;
  for (char c : token) {
    if (c == '.') inFraction = true;
    if (!IsDigit(c)) continue;
    if (inFraction) {
      scale /= 10;
      value += (c - '0') * scale;
    } else {
      value = value * 10 + (c - '0');
    }
  }
  return (!token.empty() && token[0] == '-') ? -value : value;
}

std::string RealText(Real value) {
  return std::string(TrimLeftAll(FormatFixed(40, 2, value), ' ').View());
}

// Splits the image into lines as a text file reader does: LF or CR LF ends a
// line, a last line without an end still counts, each line is cut at 255 bytes.
template <typename Visit>
void ForEachLine(std::string_view bytes, Visit visit) {
  size_t pos = 0;
  while (pos < bytes.size()) {
    size_t end = bytes.find('\n', pos);
    const size_t next = end == std::string_view::npos ? bytes.size() : end + 1;
    if (end == std::string_view::npos) end = bytes.size();
    size_t stop = end;
    if (stop > pos && bytes[stop - 1] == '\r' && end < bytes.size()) --stop;
    if (!visit(bytes.substr(pos, stop - pos), end < bytes.size() && stop < end)) return;
    pos = next;
  }
}

void ReadLineInto(ConfigValues& values, int line, std::string_view text) {
  switch (ConfigLineInfo(line)->kind) {
    case ConfigKind::kInteger: values.SetNumber(line, ReadIntegerLine(text)); break;
    case ConfigKind::kReal: values.SetReal(line, ReadRealLine(text)); break;
    case ConfigKind::kText: values.SetText(line, BeforeLast(ShortText(text), '#')); break;
  }
}

bool IsWordByte(char c) {
  const auto b = static_cast<unsigned char>(c);
  return IsDigit(c) || (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z') || b >= 0x80;
}

// A value may not break the line: line ends become blanks. An inserted text
// may also hold no '#', which would cut a text line at the wrong place.
void AppendOneLine(std::string& out, std::string_view text, bool dropHash) {
  for (char c : text) out += (c == '\r' || c == '\n' || (dropHash && c == '#')) ? ' ' : c;
}

// The description with each standalone "..." replaced by the filler's text.
void AppendDescription(std::string& out, int line, std::string_view description,
                       const ConfigDescriptionFiller& filler) {
  int placeholder = 0;
  size_t i = 0;
  while (i < description.size()) {
    const bool dots = description.substr(i, 3) == "..." && (i == 0 || !IsWordByte(description[i - 1])) &&
                      (i + 3 >= description.size() || !IsWordByte(description[i + 3]));
    if (dots && filler) {
      AppendOneLine(out, filler(line, ++placeholder).View(), true);
      i += 3;
    } else {
      out += description[i++];
    }
  }
}

void AppendValue(std::string& out, const ConfigValues& values, int line) {
  switch (ConfigLineInfo(line)->kind) {
    case ConfigKind::kInteger: out += std::to_string(values.Number(line)) + " - "; break;
    case ConfigKind::kReal: out += RealText(values.RealValue(line)) + " - "; break;
    case ConfigKind::kText:
      AppendOneLine(out, values.Text(line).View(), false);
      out += "# - ";
      break;
  }
}

}  // namespace

const ConfigValues::Slot* ConfigValues::Find(int line, ConfigKind kind) const {
  const ConfigLineDef* def = ConfigLineInfo(line);
  return (def != nullptr && def->kind == kind) ? &slots_[line] : nullptr;
}

int16_t ConfigValues::Number(int line) const {
  const Slot* slot = Find(line, ConfigKind::kInteger);
  return slot ? slot->number : 0;
}

Real ConfigValues::RealValue(int line) const {
  const Slot* slot = Find(line, ConfigKind::kReal);
  return slot ? slot->real : 0;
}

const ShortText& ConfigValues::Text(int line) const {
  static const ShortText kEmpty;
  const Slot* slot = Find(line, ConfigKind::kText);
  return slot ? slot->text : kEmpty;
}

void ConfigValues::SetNumber(int line, int16_t value) {
  if (Find(line, ConfigKind::kInteger)) slots_[line].number = value;
}

void ConfigValues::SetReal(int line, Real value) {
  if (Find(line, ConfigKind::kReal)) slots_[line].real = value;
}

void ConfigValues::SetText(int line, const ShortText& value) {
  if (Find(line, ConfigKind::kText)) slots_[line].text = value.Copy(1, ConfigLineInfo(line)->capacity);
}

ConfigValues ConfigValues::Defaults() {
  ConfigValues values;
  for (int line = 1; line <= kConfigLineCount; ++line) ReadLineInto(values, line, ConfigLineInfo(line)->defaultValue);
  return values;
}

ConfigParseResult ParseKonfigur(std::string_view bytes, ConfigValues& values) {
  ConfigParseResult result;
  ForEachLine(bytes, [&](std::string_view text, bool crlf) {
    if (result.linesFound == 0) result.crlf = crlf;
    ++result.linesFound;
    ReadLineInto(values, result.linesFound, text.substr(0, 255));
    return result.linesFound < kConfigLineCount;
  });
  return result;
}

void NormalizeConfig(ConfigValues& values) {
  for (int line = kConfigLineFirstDocumentName; line < kConfigLineFirstDocumentName + kConfigDocumentNames; ++line)
    if (values.Text(line).Empty()) values.SetText(line, ShortText(ConfigLineInfo(line)->defaultValue));
  ShortText payments = values.Text(kConfigLinePaymentDefaults);
  // An empty list counts as one empty field: the tail supplies fields 2 and 3.
  for (int field = std::max(CsvFieldCount(payments), 1) + 1; field <= 3; ++field) payments += kPaymentTail[field - 2];
  // A list whose quote stays open swallows the tail into its last field; it
  // keeps its value, or it would grow by the tail at every start.
  if (CsvFieldCount(payments) >= 3) values.SetText(kConfigLinePaymentDefaults, payments);
}

std::string FormatKonfigur(const ConfigValues& values, bool crlf, const ConfigDescriptionFiller& filler) {
  const std::string_view lineEnd = crlf ? "\r\n" : "\n";
  std::string out;
  out.reserve(64 * 1024);
  for (int line = 1; line <= kConfigLineCount; ++line) {
    AppendValue(out, values, line);
    AppendDescription(out, line, ConfigLineInfo(line)->description, filler);
    out += lineEnd;
  }
  out += lineEnd;
  out += lineEnd;
  for (std::string_view warning : kWarning) {
    out += warning;
    out += lineEnd;
  }
  return out;
}
