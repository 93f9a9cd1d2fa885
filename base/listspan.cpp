#include "base/listspan.h"

namespace list_detail {

FieldSpan LocateField(std::string_view list, int index, char separator, char quote) {
  if (index < 1) return {};
  bool quoted = false;
  int field = 1;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= list.size(); ++i) {
    if (i < list.size() && list[i] == quote) quoted = !quoted;
    if (i < list.size() && (list[i] != separator || quoted)) continue;
    if (field == index) return {begin, i, true};
    ++field;
    begin = i + 1;
  }
  return {};
}

}  // namespace list_detail
