#include "base/numbers.h"

#include <charconv>
#include <cmath>

#include "base/numbers_format.h"
#include "base/platform.h"

namespace {

constexpr Real kInt32Max = 2147483647.0L;

// Number from plain text of digits with an optional '.', independent of the locale.
Real ParsePlain(std::string_view digits) {
  if (digits.empty() || digits == ".") return 0;
  Real v = 0;
  auto r = std::from_chars(digits.data(), digits.data() + digits.size(), v);
  return r.ec == std::errc() ? v : 0;
}

ShortText InBase(int64_t value, unsigned base, const char* digitTable) {
  uint64_t n = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  char reversed[72];
  int count = 0;
  do {
    reversed[count++] = digitTable[n % base];
    n /= base;
  } while (n != 0);
  ShortText r;
  if (value < 0) r.Append('-');
  while (count > 0) r.Append(reversed[--count]);
  return r;
}

// Base 220 digit d is the byte d + 33, skipping 0x7F: '~' + 1 is never a digit.
struct Base220Table {
  char digit[220];
};
constexpr Base220Table kBase220 = [] {
  Base220Table t{};
  for (int d = 0; d < 220; ++d) t.digit[d] = static_cast<char>(d <= 93 ? d + 33 : d + 34);
  return t;
}();

}  // namespace

Real TextToRealLoose(const ShortText& text) {
  char digits[256];
  int n = 0;
  bool point = false, negative = false;
  for (int i = 1; i <= text.Length(); ++i) {
    char c = text[i];
    if (c >= '0' && c <= '9') {
      digits[n++] = c;
    } else if (c == '.' && !point) {
      point = true;
      digits[n++] = c;
    } else if (c == '-') {
      negative = true;
    }
  }
  Real v = ParsePlain(std::string_view(digits, static_cast<std::size_t>(n)));
  return negative && v != 0 ? -v : v;
}

ShortText SumExpression(const ShortText& text, int width) {
  Real sum = 0;
  int sign = 1, termStart = 1;
  for (int i = 1; i <= text.Length() + 1; ++i) {
    char c = i <= text.Length() ? text[i] : '+';
    if (c != '+' && c != '-') continue;
    sum += sign * TextToRealLoose(text.Copy(termStart, i - termStart));
    sign = c == '-' ? -1 : 1;
    termStart = i + 1;
  }
  return FormatShortest(width, sum);
}

int64_t ParseBase36(const ShortText& text) {
  int i = 1;
  bool negative = text.Length() > 0 && text[1] == '-';
  if (negative) ++i;
  if (i > text.Length()) return 0;
  uint64_t n = 0;
  for (; i <= text.Length(); ++i) {
    char c = text[i];
    unsigned d;
    if (c >= '0' && c <= '9') d = static_cast<unsigned>(c - '0');
    else if (c >= 'A' && c <= 'Z') d = static_cast<unsigned>(c - 'A' + 10);
    else return 0;
    n = n * 36 + d;  // wraps past 64 bits; nothing depends on such codes
  }
  return static_cast<int64_t>(negative ? 0 - n : n);
}

int NumericCheck(const ShortText& text, bool integersOnly) {
  bool point = false;
  for (int i = 1; i <= text.Length(); ++i) {
    char c = text[i];
    if (c >= '0' && c <= '9') continue;
    if (i == 1 && (c == '+' || c == '-')) continue;
    if (c == '.' && !integersOnly && !point) {
      point = true;
      continue;
    }
    return i;
  }
  return 0;
}

Real RoundHalfAway(Real value) {
  if (std::isnan(value)) return value;
  Real a = std::fabs(value), r;
  if (a <= kInt32Max) {
    // Through a 64-bit integer: the integer part is exact and so is the fraction.
    auto whole = static_cast<int64_t>(a);
    r = static_cast<Real>(a - static_cast<Real>(whole) >= 0.5L ? whole + 1 : whole);
  } else {
    Real whole = std::trunc(a);
    r = (a - whole >= 0.5L) ? whole + 1 : whole;
  }
  if (r == 0) return 0;
  return value < 0 ? -r : r;
}

int32_t RoundToInt(Real value) {
  Real r = RoundHalfAway(value);
  if (!(r >= -kInt32Max && r <= kInt32Max)) RunTimeError(kRangeCheckError, "RoundToInt out of range");
  return static_cast<int32_t>(r);
}

Real RoundHalfEven(Real value) {
  if (std::isnan(value) || std::isinf(value)) return value;
  Real a = std::fabs(value);
  Real whole = std::trunc(a);
  if (a - whole != 0.5L) return RoundHalfAway(value);
  Real r = std::fmod(whole, 2.0L) == 0 ? whole : whole + 1;
  if (r == 0) return 0;
  return value < 0 ? -r : r;
}

Real PowerReal(Real base, int exponent) {
  long long steps = exponent < 0 ? -static_cast<long long>(exponent) : exponent;
  Real r = 1;
  if (steps <= 64) {
    for (long long i = 0; i < steps; ++i) r *= base;
  } else {
    // Squaring keeps a huge exponent from turning into a long loop.
    for (Real b = base; steps > 0; steps >>= 1, b *= b)
      if (steps & 1) r *= b;
  }
  return exponent < 0 ? 1 / r : r;
}

int64_t PowerInt(int64_t base, int exponent) {
  if (exponent == 0) return 1;
  if (base == 1) return 1;
  if (base == -1) return (exponent % 2 == 0) ? 1 : -1;
  if (exponent < 0) return 0;
  int64_t r = 1;
  for (int i = 0; i < exponent; ++i) {
    if (__builtin_mul_overflow(r, base, &r)) return 0;
    if (r == 0) break;
  }
  return r;
}

int DecimalCount(Real value) {
  ShortText t = FormatFixed(40, 2, value);
  int point = t.Pos('.');
  if (point == 0 || t.Pos('E') > 0) return 0;  // no decimals shown, or the exponent form
  int count = t.Length() - point;
  while (count > 0 && t[point + count] == '0') --count;
  return count;
}

ShortText ToHex(int64_t value) { return InBase(value, 16, "0123456789ABCDEF"); }
ShortText ToOctal(int64_t value) { return InBase(value, 8, "01234567"); }
ShortText ToBase63(int64_t value) {
  return InBase(value, 63, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_");
}
ShortText ToBase36(int64_t value) { return InBase(value, 36, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"); }
ShortText ToBase26(int64_t value) { return InBase(value, 26, "ABCDEFGHIJKLMNOPQRSTUVWXYZ"); }
ShortText ToBase220(int64_t value) { return InBase(value, 220, kBase220.digit); }
