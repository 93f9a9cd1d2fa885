// Private helper of the list operations (CSV lists in a ShortText, two-part
// and long lists): where a field lies. Not for other folders.
#pragma once

#include <cstddef>
#include <string_view>

namespace list_detail {

struct FieldSpan {
  std::size_t begin = 0;
  std::size_t end = 0;  // one past the last byte
  bool found = false;
};

// Bytes of field index (from 1): the walk toggles a quote flag at each quote
// and counts a field at each separator outside quotes. An empty list has one
// empty field here; callers that count fields decide what an empty list means.
FieldSpan LocateField(std::string_view list, int index, char separator, char quote);

}  // namespace list_detail
