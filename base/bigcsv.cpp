#include "base/bigcsv.h"

#include <cstring>

#include "base/listspan.h"

namespace {

// Usable bytes of a buffer, its terminating zero included.
std::size_t Capacity(std::size_t size) {
  return size < static_cast<std::size_t>(kBigCsvBytes) ? size : static_cast<std::size_t>(kBigCsvBytes);
}

// Length of the text: up to the first zero, or the usable bytes when none.
std::size_t TextLength(BigCsvConstBuffer buffer) {
  std::size_t cap = Capacity(buffer.size());
  if (cap == 0) return 0;
  const void* zero = std::memchr(buffer.data(), 0, cap);
  return zero ? static_cast<std::size_t>(static_cast<const char*>(zero) - buffer.data()) : cap;
}

using list_detail::FieldSpan;

FieldSpan Locate(BigCsvConstBuffer buffer, std::size_t length, int index, char separator, char quote) {
  return list_detail::LocateField(std::string_view(buffer.data(), length), index, separator, quote);
}

// Writes bytes at position, moving the tail right; stops when the text would
// pass the usable bytes. Returns how many bytes went in.
std::size_t InsertAt(BigCsvBuffer buffer, std::size_t length, std::size_t position, std::string_view bytes) {
  std::size_t cap = Capacity(buffer.size());
  if (cap == 0) return 0;
  std::size_t room = cap - 1 - length;
  std::size_t n = bytes.size() < room ? bytes.size() : room;
  std::memmove(buffer.data() + position + n, buffer.data() + position, length - position);
  std::memcpy(buffer.data() + position, bytes.data(), n);
  buffer[length + n] = '\0';
  return n;
}

// The field as it is written: a leading separator when asked, and quotes
// around the value when asked.
struct FieldBytes {
  char bytes[258];
  std::size_t size = 0;
  std::string_view View() const { return std::string_view(bytes, size); }
};

FieldBytes Written(const ShortText& value, bool leadingSeparator, bool quoted) {
  FieldBytes f;
  if (leadingSeparator) f.bytes[f.size++] = ',';
  if (quoted) f.bytes[f.size++] = '"';
  std::memcpy(f.bytes + f.size, value.Data(), static_cast<std::size_t>(value.Length()));
  f.size += static_cast<std::size_t>(value.Length());
  if (quoted) f.bytes[f.size++] = '"';
  return f;
}

}  // namespace

int BigCsvFieldCount(BigCsvConstBuffer buffer, char separator, char quote) {
  std::size_t length = TextLength(buffer);
  if (length == 0) return 0;
  int count = 1;
  bool quoted = false;
  for (std::size_t i = 0; i < length; ++i) {
    if (buffer[i] == quote) quoted = !quoted;
    else if (buffer[i] == separator && !quoted) ++count;
  }
  return count;
}

bool BigCsvField(BigCsvConstBuffer buffer, int index, char separator, char quote, ShortText& out) {
  out.Clear();
  std::size_t length = TextLength(buffer);
  if (length == 0) return false;
  FieldSpan f = Locate(buffer, length, index, separator, quote);
  if (!f.found) return false;
  if (f.end - f.begin >= 2 && buffer[f.begin] == quote && buffer[f.end - 1] == quote) {
    ++f.begin;
    --f.end;
  }
  out.Assign(std::string_view(buffer.data() + f.begin, f.end - f.begin));
  return true;
}

bool BigCsvSetField(BigCsvBuffer buffer, const ShortText& value, int index) {
  if (value.Length() > 253 || Capacity(buffer.size()) == 0) return false;
  std::size_t length = TextLength(buffer);
  if (length == Capacity(buffer.size())) return false;  // no terminating zero: not a list
  FieldSpan f = Locate(buffer, length, index, ',', '"');
  if (!f.found) return false;
  bool wasQuoted = f.end > f.begin && buffer[f.begin] == '"';
  std::memmove(buffer.data() + f.begin, buffer.data() + f.end, length - f.end + 1);
  length -= f.end - f.begin;
  InsertAt(buffer, length, f.begin, Written(value, false, wasQuoted || value.Pos(',') > 0).View());
  return true;
}

bool BigCsvAppend(BigCsvBuffer buffer, const ShortText& value) {
  std::size_t length = TextLength(buffer);
  if (length == Capacity(buffer.size())) return false;
  FieldBytes f = Written(value, true, value.Pos(',') > 0);
  return InsertAt(buffer, length, length, f.View()) > 1 || value.Empty();
}
