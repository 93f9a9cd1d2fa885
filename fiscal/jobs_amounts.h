// Amounts of a receipt job as the two printer families take them: prices and
// line values in whole grosz, and the ELZAB quantity as an integer with its
// number of decimals. The formulas are the printers' own; each rounding step
// goes through RoundHalfAway in the extended floating-point type.
#pragma once

#include <cstdint>

#include "base/real.h"

// Unit price in grosz: RoundHalfAway(price × 100).
Real PriceGrosz(Real price);
// ELZAB line value in grosz:
// RoundHalfAway(RoundHalfAway(quantity × 1000) / 1000 × 100 × PriceGrosz(price) / 100).
Real ElzabLineValueGrosz(Real quantity, Real price);
// POSNET line value in grosz: RoundHalfAway(PriceGrosz(price) × quantity).
Real PosnetLineValueGrosz(Real quantity, Real price);

// A quantity on the ELZAB wire: value = RoundHalfAway(quantity × 10^decimals), with
// decimals the places the quantity really uses when written with 3 (0 to 3).
struct ElzabQuantity {
  Real value = 0;  // whole; Amount32 sends it, 0xFF x4 when out of range
  uint8_t decimals = 0;
};
ElzabQuantity ElzabQuantityOf(Real quantity);
