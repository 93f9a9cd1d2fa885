// The short form "mini" (numer,ilość) of the work file, dane.klt: one line
// per row, the item's internal number, a comma and the quantity. It carries
// no names or prices, so a file read back takes them from the catalogue.
#include <cstdio>
#include <fstream>
#include <iterator>

#include "base/numbers.h"
#include "base/paths.h"
#include "exchange/workfile.h"

namespace {

// A dane.klt of a few hundred thousand rows is far below this; past it the file is no work file.
constexpr std::size_t kMiniMaxBytes = 32u << 20;

bool AllDigits(std::string_view text) {
  if (text.empty()) return false;
  for (char c : text)
    if (c < '0' || c > '9') return false;
  return true;
}

// "123,4.5" into an entry; false for anything else.
bool ParseMiniLine(std::string_view line, MiniEntry& entry) {
  const std::size_t comma = line.find(',');
  if (comma == std::string_view::npos) return false;
  const std::string_view number = line.substr(0, comma), quantity = line.substr(comma + 1);
  if (!AllDigits(number) || number.size() > 10 || quantity.empty() || quantity.size() > 40) return false;
  const ShortText amount{std::string(quantity)};
  if (NumericCheck(amount, false) != 0) return false;
  const int64_t value = std::stoll(std::string(number));
  if (value < 1 || value > kItemNumberMax) return false;
  entry.number = static_cast<int32_t>(value);
  entry.quantity = TextToRealLoose(amount);
  return AmountInRange(entry.quantity);
}

}  // namespace

std::string MiniLine(int32_t number, Real quantity) {
  char text[80];
  std::snprintf(text, sizeof text, "%.7Lf", static_cast<long double>(quantity));
  std::string amount(text);
  amount.erase(amount.find_last_not_of('0') + 1);
  if (amount.back() == '.') amount.pop_back();
  if (amount == "-0") amount = "0";
  return std::to_string(number) + "," + amount + "\r\n";
}

bool ParseMini(std::string_view bytes, std::vector<MiniEntry>& entries) {
  entries.clear();
  for (std::size_t at = 0; at < bytes.size();) {
    std::size_t end = bytes.find('\n', at);
    if (end == std::string_view::npos) end = bytes.size();
    std::string_view line = bytes.substr(at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty() || line == "\x1a") continue;  // a blank line, the DOS end-of-file mark
    MiniEntry entry;
    if (!ParseMiniLine(line, entry)) {
      entries.clear();
      return false;
    }
    entries.push_back(entry);
  }
  return true;
}

bool WorkFileToMini(const ShortText& path, const ShortText& target, int16_t& code) {
  std::vector<WorkFileRow> rows;
  if ((code = WorkFileRead(path, rows)) != 0) return false;
  std::string bytes;
  for (const WorkFileRow& row : rows) bytes += MiniLine(row.item.number, row.quantity);
  std::FILE* out = std::fopen(PathToUnix(target).Str().c_str(), "wb");
  if (!out) return false;
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
  return std::fclose(out) == 0 && written;
}

WorkFileImport WorkFileFromMini(const ShortText& path, const ShortText& file, int16_t& code,
                                std::vector<int32_t>& unknown) {
  code = 0;
  unknown.clear();
  std::ifstream in(PathToUnix(file).Str(), std::ios::binary);
  if (!in) return WorkFileImport::kBadFile;
  std::string bytes;
  bytes.resize(kMiniMaxBytes + 1);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  std::vector<MiniEntry> entries;
  if (bytes.size() > kMiniMaxBytes || !ParseMini(bytes, entries)) return WorkFileImport::kBadFile;
  WorkFileLock lock(path);
  if (lock.busy()) return WorkFileImport::kLocked;
  std::vector<WorkFileRow> rows;
  for (const MiniEntry& entry : entries) {
    WorkFileRow row;
    bool found = false;
    if ((code = ItemFindByNumber(entry.number, row.item, found)) != 0) return WorkFileImport::kDone;
    if (!found) {
      unknown.push_back(entry.number);
      continue;
    }
    row.quantity = entry.quantity;
    rows.push_back(row);
  }
  code = WorkFileWrite(path, rows, false);
  return WorkFileImport::kDone;
}
