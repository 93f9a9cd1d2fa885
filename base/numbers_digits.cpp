// Decimal digits of a Real, as the formatters show them: the value is first
// taken to 18 significant digits, then rounded half up at the place asked for
// and padded with zeros. So 0.1 + 0.2 shows as 0.3 at any number of decimals,
// and 1.005 at 2 decimals shows 1.01 although its binary value lies below.
#include <charconv>
#include <cmath>

#include "base/numbers_detail.h"

namespace numbers_detail {
namespace {

constexpr int kSignificant = 18;

// value = d0.d1d2... * 10^exponent; count 0 stands for zero.
struct DecimalForm {
  bool negative = false;
  char digits[kSignificant + 1] = {};
  int count = 0;
  int exponent = 0;
  char At(int i) const { return i >= 0 && i < count ? digits[i] : '0'; }
};

DecimalForm ToDecimal(Real value) {
  DecimalForm f;
  f.negative = std::signbit(value);
  if (value == 0) return f;
  char text[64];
  auto r = std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::scientific,
                         kSignificant - 1);
  const char* p = text;
  f.digits[f.count++] = *p++;
  if (*p == '.') ++p;
  while (*p != 'e' && p < r.ptr) f.digits[f.count++] = *p++;
  ++p;
  if (*p == '+') ++p;
  std::from_chars(p, r.ptr, f.exponent);
  while (f.count > 0 && f.digits[f.count - 1] == '0') --f.count;
  return f;
}

// Keeps `keep` leading digits, rounding half up; a carry out of the first digit
// makes it "1" one place higher.
void RoundTo(DecimalForm& f, int keep) {
  if (keep >= f.count) return;
  if (keep < 0) {
    f.count = 0;
    return;
  }
  bool up = f.digits[keep] >= '5';
  f.count = keep;
  if (!up) return;
  int i = keep - 1;
  while (i >= 0 && f.digits[i] == '9') --i;
  if (i >= 0) {
    ++f.digits[i];
    f.count = i + 1;
  } else {
    f.digits[0] = '1';
    f.count = 1;
    ++f.exponent;
  }
}

void Put(NumberText& t, char c) {
  if (t.length < static_cast<int>(sizeof t.bytes)) t.bytes[t.length++] = c;
}

}  // namespace

NumberText FixedText(Real value, int decimals) {
  DecimalForm f = ToDecimal(value);
  RoundTo(f, f.exponent + decimals + 1);
  if (f.count == 0) f.exponent = 0;
  NumberText t;
  if (f.negative) Put(t, '-');
  if (f.exponent < 0) Put(t, '0');
  for (int i = 0; i <= f.exponent; ++i) Put(t, f.At(i));
  if (decimals > 0) Put(t, '.');
  for (int j = 1; j <= decimals; ++j) Put(t, f.At(f.exponent + j));
  return t;
}

ScientificText ScientificOf(Real value, int decimals) {
  DecimalForm f = ToDecimal(value);
  RoundTo(f, decimals + 1);
  ScientificText s;
  s.exponent = f.count == 0 ? 0 : f.exponent;
  if (f.negative) Put(s.mantissa, '-');
  Put(s.mantissa, f.At(0));
  if (decimals > 0) Put(s.mantissa, '.');
  for (int i = 1; i <= decimals; ++i) Put(s.mantissa, f.At(i));
  return s;
}

}  // namespace numbers_detail
