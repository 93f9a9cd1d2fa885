// CSV lists: short lists field by field, and long lists read, changed and
// appended to in a buffer of the input's size.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/bigcsv.h"
#include "base/csv.h"

namespace {

void ShortList(std::string_view bytes) {
  ShortText list(bytes);
  int count = CsvFieldCount(list);
  for (int i = 0; i <= count + 1; ++i) {
    (void)CsvField(list, i);
    (void)CsvFieldReal(list, i);
    (void)CsvFieldInt(list, i);
  }
}

void LongList(std::string_view bytes, char separator, char quote) {
  std::vector<char> buffer(bytes.begin(), bytes.end());
  int count = BigCsvFieldCount(buffer, separator, quote);
  ShortText field;
  for (int i = 0; i <= count + 1 && i < 64; ++i) (void)BigCsvField(buffer, i, separator, quote, field);
  ShortText value(bytes.substr(0, 40));
  (void)BigCsvSetField(buffer, value, count > 0 ? 1 + bytes.size() % count : 1);
  (void)BigCsvAppend(buffer, value);
  (void)BigCsvFieldCount(buffer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  std::string_view bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  ShortList(bytes);
  LongList(bytes, static_cast<char>(data[0]), static_cast<char>(data[1]));
  LongList(bytes, ',', '"');
  return 0;
}
