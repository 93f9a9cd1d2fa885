// What a printer held when the server came to it before a receipt (or at its
// start): a receipt left open by a job that never ended is cancelled, so that
// an interrupted job costs only itself and not the receipt after it.
#pragma once

#include <cstdint>

enum class ReceiptSettle : uint8_t {
  kNoneOpen,    // no receipt was open
  kCancelled,   // a receipt was open and is cancelled now
  kStillOpen,   // a receipt was open and the cancel did not close it
  kNoAnswer,    // the printer could not be asked (port closed, no answer)
};
