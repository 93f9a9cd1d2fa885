// What each goods document kind does to stock, as the analyses count it:
// +1 adds, -1 takes away, 0 leaves the stock list alone (orders). Kept here
// as a small table until the documents' own kind table can serve it.
#pragma once

#include <cstdint>

inline constexpr int16_t kFirstDocumentKind = 1;
inline constexpr int16_t kLastDocumentKind = 18;

// The stock sign of kind 1..18; 0 for another number.
int StockSign(int16_t kind);
