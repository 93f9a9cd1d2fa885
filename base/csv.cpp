#include "base/csv.h"

#include <string_view>

#include "base/numtext.h"

int CsvFieldCount(const ShortText& list) {
  if (list.Empty()) return 0;
  int count = 1;
  bool quoted = false;
  for (char c : list.View()) {
    if (c == '"') quoted = !quoted;
    else if (c == ',' && !quoted) ++count;
  }
  return count;
}

ShortText CsvField(const ShortText& list, int index) {
  if (index < 1) return ShortText();
  // A trailing ',' gets a "0" behind it, so the last field exists. The list is
  // walked as a view so that the added byte is never cut at 255.
  std::string buffer(list.View());
  if (!buffer.empty() && buffer.back() == ',') buffer += '0';
  const std::string_view text(buffer);

  // Marks are 1-based positions of the separators around the field; 0 and
  // length + 1 stand for the ends of the list.
  int start = 0, end = 0, count = 0;
  bool quoted = false;
  for (int i = 1; i <= static_cast<int>(text.size()) && count < index; ++i) {
    const char c = text[i - 1];
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      start = end;
      end = i;
      ++count;
    }
  }
  if (count < index) {
    start = end;
    end = static_cast<int>(text.size()) + 1;
    ++count;
  }
  if (count != index) return ShortText();
  int first = start + 1, last = end - 1;  // 1-based, inclusive
  if (last >= first && text[first - 1] == '"' && text[last - 1] == '"') {
    ++first;
    --last;
  }
  if (last < first) return ShortText();
  return ShortText(text.substr(first - 1, last - first + 1));
}

Real CsvFieldReal(const ShortText& list, int index) { return TextToReal(CsvField(list, index)); }

int32_t CsvFieldInt(const ShortText& list, int index) { return TextToInt(CsvField(list, index)); }
