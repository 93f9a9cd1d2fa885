// Private helpers shared by the number formatters; not for other folders.
#pragma once

#include <string_view>

#include "base/real.h"
#include "base/shorttext.h"

namespace numbers_detail {

int ClampWidth(int width);
int ClampDecimals(int decimals);
// NaN or an infinity: no digits to show.
bool Unwritable(Real value);
// '?' repeated to the width, at least one.
ShortText Marks(int width);
// Blanks in front up to the width; a longer text stays whole.
ShortText AlignRight(std::string_view s, int width);

// Room for every digit of the largest long double written in full.
struct NumberText {
  char bytes[5400];
  int length = 0;
  std::string_view View() const { return std::string_view(bytes, static_cast<std::size_t>(length)); }
};
// Fixed text with the decimals ("-12.50", "-0.00"), from 18 significant
// digits rounded half up; locale-independent.
NumberText FixedText(Real value, int decimals);
// Mantissa with a sign when negative and the decimals ("-1.50"), and the
// decimal exponent, from the same 18 digits.
struct ScientificText {
  NumberText mantissa;
  int exponent = 0;
};
ScientificText ScientificOf(Real value, int decimals);
// The mantissa part (before any 'E') has digits, all of them 0.
bool ReadsAsZero(std::string_view s);
// Outside the range that FormatFixed writes in fixed form.
bool BeyondFixedLimits(int width, int decimals, Real value);
// Trailing zeros after a point removed, then the point if nothing follows it.
std::string_view TrimFraction(std::string_view s);

}  // namespace numbers_detail
