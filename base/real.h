// The one floating-point type of the system: money, prices and quantities
// travel in it. There is no decimal type; rounding goes through RoundHalfAway.
#pragma once

#include <limits>

using Real = long double;

// Line values such as Round(100 * quantity * price) / 100 stay exact only with
// the x86-64 extended format's 64-bit mantissa.
static_assert(std::numeric_limits<Real>::digits >= 64, "Real needs a mantissa of at least 64 bits");
