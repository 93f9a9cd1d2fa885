// Formatters that fit a value into a width by trimming, cutting, rounding or
// grouping its digits.
#include <charconv>
#include <cmath>

#include "base/numbers.h"
#include "base/numbers_detail.h"
#include "base/numbers_format.h"

using namespace numbers_detail;

namespace {

// "-0", "-." or "-" followed only by zeros and points.
bool IsMinusZero(std::string_view s) {
  if (s.size() < 2 || s[0] != '-') return false;
  for (char c : s.substr(1))
    if (c != '0' && c != '.') return false;
  return true;
}

std::string_view TrimLeftBlanks(std::string_view s) {
  while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
  return s;
}

// Exponent form without padding: mantissa zeros and exponent leading zeros
// dropped, "1.5E+12", "-2E-7".
ShortText ShortExponentForm(Real value, int mantissaDecimals) {
  ScientificText s = ScientificOf(value, mantissaDecimals);
  ShortText r(TrimFraction(s.mantissa.View()));
  char digits[8];
  auto end = std::to_chars(digits, digits + sizeof digits, s.exponent < 0 ? -s.exponent : s.exponent).ptr;
  r.Append(s.exponent < 0 ? "E-" : "E+");
  r.Append(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  return r;
}

// Number of characters of the integer part of value, with its sign.
int IntegerPartLength(Real value) {
  return FixedText(std::trunc(value), 0).length;
}

}  // namespace

ShortText FormatCompact(int width, Real value) {
  width = ClampWidth(width);
  if (Unwritable(value)) return Marks(width);
  if (value == 0) return AlignRight("-", width);
  NumberText t = FixedText(value, width > 0 ? width - 1 : 0);
  ShortText s(TrimFraction(t.View()));
  int point = s.Pos('.');
  if ((point > 0 ? point - 1 : s.Length()) > width) return Marks(width);
  if (s.Length() > width && std::fabs(value) < 1) s.Delete(s.Pos('0'), 1);
  s = s.Copy(1, width);
  if (IsMinusZero(s.View())) return AlignRight("0", width);
  return AlignRight(s.View(), width);
}

ShortText FormatShortest(int width, Real value) {
  width = ClampWidth(width);
  ShortText full = FormatFull(value);
  if (full == "?" || full == "!") return full;
  ShortText r;
  if (full.Length() <= width) {
    r = full;
  } else if (int point = full.Pos('.'); point > 0 && point <= width + 1) {
    r = full.Copy(1, width);
    if (r.Length() > 0 && r[r.Length()] == '.') r.SetLength(r.Length() - 1);
  } else {
    int decimals = 19;
    do {
      r = ShortExponentForm(value, decimals--);
    } while (r.Length() > width && decimals >= 0);
  }
  return r == "-0" ? ShortText("0") : r;
}

ShortText FormatRound(int width, Real value) {
  width = ClampWidth(width);
  if (Unwritable(value)) return Marks(width);
  bool belowOne = std::fabs(value) < 1;
  // A value below 1 counts its "0" only; a sign may then push it past the width.
  int integerLength = belowOne ? 1 : IntegerPartLength(value);
  int decimals = width - integerLength - 1;
  ShortText s = FormatFixed(width, decimals < 0 ? 0 : decimals, value);
  if (s.Length() <= width) return s;
  ShortText text(TrimLeftBlanks(s.View()));
  if (belowOne && text.Length() > width) {
    int zero = text.Pos('0');
    if (zero > 0 && zero <= 2 && text.At(zero + 1) == '.') text.Delete(zero, 1);
  }
  return AlignRight(text.View(), width);
}

ShortText FormatMoney(int width, int decimals, Real value) {
  width = ClampWidth(width);
  decimals = ClampDecimals(decimals);
  if (Unwritable(value) || BeyondFixedLimits(width, decimals, value)) return Marks(width);
  NumberText t = FixedText(std::fabs(value), decimals);
  std::string_view digits = t.View();
  std::size_t point = digits.find('.');
  std::string_view whole = digits.substr(0, point);
  ShortText r;
  if (value < 0 && !ReadsAsZero(digits)) r.Append('-');
  for (std::size_t i = 0; i < whole.size(); ++i) {
    if (i > 0 && (whole.size() - i) % 3 == 0) r.Append(' ');
    r.Append(whole[i]);
  }
  if (point != std::string_view::npos) {
    r.Append(',');
    r.Append(digits.substr(point + 1));
  }
  return AlignRight(r.View(), width);
}

ShortText FormatMoneyRounded(int width, int decimals, Real value) {
  Real scale = PowerReal(10, ClampDecimals(decimals));
  return FormatMoney(width, decimals, RoundHalfAway(value * scale) / scale);
}

ShortText GroupThousands(int width, int decimals, const ShortText& text) {
  width = ClampWidth(width);
  ShortText s = text;
  bool negative = false;
  if (int p = s.Pos('-'); p > 0 && TrimLeftBlanks(s.Copy(1, p - 1).View()).empty()) {
    negative = true;
    s.Delete(p, 1);
  }
  int lastWholeDigit = s.Length() - (decimals > 0 ? decimals + 1 : 0);
  for (int gap = lastWholeDigit - 3; gap >= 1 && s.Length() < width; gap -= 3) {
    unsigned char before = s.At(gap);
    if (before < '0' || before > '9') break;
    s.Insert(" ", gap + 1);
  }
  if (negative) s.Insert("-", s.Length() - static_cast<int>(TrimLeftBlanks(s.View()).size()) + 1);
  return s;
}
