// POSNET replies: the collected text of a reply frame read as a status record
// and as a clock reply.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fiscal/posnet_wire.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view collected(reinterpret_cast<const char*>(data), size);
  if (auto record = ParsePosnetStatusRecord(collected)) {
    if (record->rateCount < 0 || record->rateCount > 16) __builtin_trap();
    (void)PosnetErrorMessage(static_cast<int>(record->ErrorCode()));
  }
  (void)ParsePosnetClock(collected);
  return 0;
}
