#include "base/numbers_format.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "base/numbers.h"
#include "base/numbers_detail.h"

namespace numbers_detail {

int ClampWidth(int width) { return width > 255 ? 255 : (width < 0 ? 0 : width); }
int ClampDecimals(int decimals) { return decimals > 255 ? 255 : (decimals < 0 ? 0 : decimals); }

bool Unwritable(Real value) { return std::isnan(value) || std::isinf(value); }

ShortText Marks(int width) {
  ShortText r;
  for (int i = 0; i < (width < 1 ? 1 : width); ++i) r.Append('?');
  return r;
}

ShortText AlignRight(std::string_view s, int width) {
  ShortText r;
  for (int i = static_cast<int>(s.size()); i < width; ++i) r.Append(' ');
  r.Append(s);
  return r;
}

bool ReadsAsZero(std::string_view s) {
  bool digit = false;
  for (char c : s) {
    if (c == 'E' || c == 'e') break;
    if (c >= '1' && c <= '9') return false;
    digit |= c == '0';
  }
  return digit;
}

bool BeyondFixedLimits(int width, int decimals, Real value) {
  int d = decimals == 0 ? -1 : decimals;
  return value >= PowerReal(10, width - d - 1) || value <= -PowerReal(10, width - d - 2);
}

std::string_view TrimFraction(std::string_view s) {
  if (s.find('.') == std::string_view::npos) return s;
  while (!s.empty() && s.back() == '0') s.remove_suffix(1);
  if (!s.empty() && s.back() == '.') s.remove_suffix(1);
  return s;
}

}  // namespace numbers_detail

namespace {

using namespace numbers_detail;

// The '-' of a text that reads as zero becomes a blank; a text that had passed
// the width gives back the blanks in front that it no longer needs.
ShortText WithoutNegativeZero(ShortText t, int width) {
  if (!ReadsAsZero(t.View())) return t;
  int p = t.Pos('-');
  if (p == 0) return t;
  t[p] = ' ';
  while (t.Length() > width && t.At(1) == ' ') t.Delete(1, 1);
  return t;
}

// Exponent form with a sign place, as many mantissa decimals as the width
// leaves (at least one) and a four-digit exponent: " 1.5E+0006", "-2.0E-0003".
ShortText ExponentForm(Real value, int width) {
  ScientificText s = ScientificOf(value, width - 9 < 1 ? 1 : width - 9);
  ShortText r(value < 0 ? "" : " ");
  r.Append(s.mantissa.View());
  int e = s.exponent < 0 ? -s.exponent : s.exponent;
  char digits[8];
  auto end = std::to_chars(digits, digits + sizeof digits, e).ptr;
  r.Append(s.exponent < 0 ? "E-" : "E+");
  for (long n = end - digits; n < 4; ++n) r.Append('0');
  r.Append(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  return AlignRight(r.View(), width);
}

}  // namespace

ShortText IntText(int64_t value, int width) {
  char digits[24];
  auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  return AlignRight(std::string_view(digits, static_cast<std::size_t>(end - digits)), ClampWidth(width));
}

ShortText FormatFixed(int width, int decimals, Real value) {
  width = ClampWidth(width);
  decimals = ClampDecimals(decimals);
  if (Unwritable(value)) return Marks(width);
  if (BeyondFixedLimits(width, decimals, value)) return ExponentForm(value, width);
  return WithoutNegativeZero(AlignRight(FixedText(value, decimals).View(), width), width);
}

ShortText FormatFixedOrBlank(int width, int decimals, Real value) {
  ShortText t = FormatFixed(width, decimals, value);
  return ReadsAsZero(t.View()) ? AlignRight("", ClampWidth(width)) : t;
}

ShortText FormatFixedZero(int width, int decimals, Real value) {
  if (value == 0) return AlignRight("-", ClampWidth(width));
  return FormatFixed(width, decimals, value);
}

ShortText FormatFull(Real value) {
  if (std::isnan(value)) return ShortText("?");
  if (std::isinf(value)) return ShortText("!");
  if (value == 0) return ShortText();
  NumberText t = FixedText(value, 30);
  return ShortText(TrimFraction(t.View()));
}
