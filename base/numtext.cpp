#include "base/numtext.h"

#include <charconv>
#include <string>
#include <string_view>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The part of text from the first byte that opens a number to the last byte
// that may close one; empty when no byte opens a number.
std::string_view NumberSpan(std::string_view text, std::string_view openers, std::string_view closers) {
  std::size_t first = std::string_view::npos;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (IsDigit(text[i]) || openers.find(text[i]) != std::string_view::npos) {
      first = i;
      break;
    }
  if (first == std::string_view::npos) return {};
  std::size_t last = first;
  bool closed = false;
  for (std::size_t i = text.size(); i-- > first;)
    if (IsDigit(text[i]) || closers.find(text[i]) != std::string_view::npos) {
      last = i;
      closed = true;
      break;
    }
  if (!closed) return {};
  return text.substr(first, last - first + 1);
}

// An optional sign, then digits with at most one '.', then an optional
// exponent; at least one digit before the exponent.
bool IsDecimalSyntax(std::string_view s) {
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  int digits = 0;
  bool point = false;
  for (; i < s.size(); ++i) {
    if (IsDigit(s[i])) ++digits;
    else if (s[i] == '.' && !point) point = true;
    else break;
  }
  if (digits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    int expDigits = 0;
    for (; i < s.size() && IsDigit(s[i]); ++i) ++expDigits;
    if (expDigits == 0) return false;
  }
  return i == s.size();
}

}  // namespace

int32_t TextToInt(const ShortText& text) {
  std::string_view s = NumberSpan(text.View(), "+-", "");
  if (s.empty()) return 0;
  bool negative = s[0] == '-';
  if (s[0] == '+' || s[0] == '-') s.remove_prefix(1);
  if (s.empty()) return 0;
  int64_t value = 0;
  for (char c : s) {
    if (!IsDigit(c)) return 0;
    value = value * 10 + (c - '0');
    if (value > int64_t{2147483648}) return 0;
  }
  if (negative) value = -value;
  if (value > INT32_MAX || value < INT32_MIN) return 0;
  return static_cast<int32_t>(value);
}

Real TextToReal(const ShortText& text) {
  std::string s(NumberSpan(text.View(), "+-.", "."));
  if (auto comma = s.find(','); comma != std::string::npos) s[comma] = '.';
  if (!IsDecimalSyntax(s)) return 0;
  bool negative = s[0] == '-';
  std::size_t skip = (s[0] == '+' || s[0] == '-') ? 1 : 0;
  Real value = 0;
  auto [end, error] = std::from_chars(s.data() + skip, s.data() + s.size(), value);
  if (error != std::errc() || end != s.data() + s.size()) return 0;
  return negative ? -value : value;
}
