#include "fiscal/jobs_amounts.h"

#include "base/numbers.h"
#include "base/numbers_format.h"

Real PriceGrosz(Real price) { return RoundHalfAway(price * 100); }

Real ElzabLineValueGrosz(Real quantity, Real price) {
  return RoundHalfAway(RoundHalfAway(quantity * 1000) / 1000 * 100 * PriceGrosz(price) / 100);
}

Real PosnetLineValueGrosz(Real quantity, Real price) { return RoundHalfAway(PriceGrosz(price) * quantity); }

ElzabQuantity ElzabQuantityOf(Real quantity) {
  // The quantity written with 3 places; its trailing zeros are places it does not use.
  const ShortText text = FormatFixed(23, 3, quantity);
  int decimals = 0;
  if (const int point = text.Pos('.'); point > 0) {
    decimals = text.Length() - point;
    if (decimals > 3) decimals = 3;  // an exponent form: far outside the wire's range anyway
    while (decimals > 0 && text.At(point + decimals) == '0') --decimals;
  }
  ElzabQuantity q;
  q.decimals = static_cast<uint8_t>(decimals);
  q.value = RoundHalfAway(quantity * PowerReal(10, decimals));
  return q;
}
