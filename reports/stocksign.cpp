#include "reports/stocksign.h"

namespace {

// Index = kind. Sales and issues take away; purchases, receipts, returns to
// us, the opening balance and incoming transfers add; orders (16, 17) do nothing.
constexpr int kSigns[kLastDocumentKind + 1] = {0, -1, -1, +1, -1, +1, +1, +1, -1, -1,
                                               +1, +1, +1, -1, -1, -1, 0, 0, +1};

}  // namespace

int StockSign(int16_t kind) {
  return kind >= kFirstDocumentKind && kind <= kLastDocumentKind ? kSigns[kind] : 0;
}
