#include "base/textcsv.h"

#include "base/csv.h"
#include "base/listspan.h"

namespace {

using list_detail::FieldSpan;
using list_detail::LocateField;

// Field of the list without its enclosing quotes, as it stands (a trailing
// empty field stays empty).
ShortText RawField(const ShortText& list, int index) {
  FieldSpan f = LocateField(list.View(), index, ',', '"');
  if (!f.found) return ShortText();
  if (f.end - f.begin >= 2 && list.At(static_cast<int>(f.begin) + 1) == '"' &&
      list.At(static_cast<int>(f.end)) == '"') {
    ++f.begin;
    --f.end;
  }
  return ShortText(list.View().substr(f.begin, f.end - f.begin));
}

ShortText Normalized(const ShortText& list, int count) {
  ShortText r;
  for (int i = 1; i <= count; ++i) {
    if (i > 1) r.Append(',');
    ShortText field = RawField(list, i);
    if (!field.Empty()) r += "\"" + field + "\"";
  }
  return r;
}

}  // namespace

ShortText CsvFieldTwoPart(const ShortText& first, const ShortText& second, int index) {
  char joined[2 * 255 + 1];
  std::size_t n = 0;
  for (char c : first.View()) joined[n++] = c;
  for (char c : second.View()) joined[n++] = c;
  if (n == 0) return ShortText();
  if (joined[n - 1] == ',') joined[n++] = '0';  // a trailing empty field reads as "0", as in CsvField
  std::string_view list(joined, n);
  FieldSpan f = LocateField(list, index, ',', '"');
  if (!f.found) return ShortText();
  std::string_view field = list.substr(f.begin, f.end - f.begin);
  if (!field.empty() && field.front() == '"') {
    field.remove_prefix(1);
    field = field.substr(0, field.find('"'));
  }
  return ShortText(field);
}

ShortText CsvPadToField(const ShortText& list, int index) {
  ShortText r = list;
  int count = r.Empty() ? 1 : CsvFieldCount(r);
  for (; count < index && r.Length() < 255; ++count) r.Append(',');
  return r;
}

ShortText CsvReplaceField(const ShortText& list, const ShortText& value, int index) {
  if (index < 1) return list;
  ShortText padded = CsvPadToField(list, index);
  FieldSpan f = LocateField(padded.View(), index, ',', '"');
  if (!f.found) return padded;  // no room left for the field
  std::string_view before = padded.View().substr(0, f.begin);
  std::string_view after = padded.View().substr(f.end);
  bool quote = value.Pos(',') > 0;
  int room = 255 - static_cast<int>(before.size() + after.size()) - (quote ? 2 : 0);
  ShortText r(before);
  if (quote) r.Append('"');
  r.Append(value.Copy(1, room < 0 ? 0 : room).View());
  if (quote) r.Append('"');
  r.Append(after);
  return r;
}

bool CsvNormalize(ShortText& a, ShortText& b, int& countA, int& countB) {
  countA = CsvFieldCount(a);
  countB = CsvFieldCount(b);
  a = Normalized(a, countA);
  b = Normalized(b, countB);
  return countB <= countA;
}
