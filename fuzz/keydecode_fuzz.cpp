// Terminal input: any bytes decoded key after key as the terminal feeds them,
// on each kind of terminal; every step consumes bytes it was given.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tui/keydecode.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  auto terminal = static_cast<KeyTerminal>(data[0] % 3);
  std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  for (int idle : {0, kKeyEscapeWaitMs}) {
    std::string_view rest = bytes;
    while (!rest.empty()) {
      KeyDecodeResult r = DecodeKey(rest, idle, terminal);
      if (r.status == KeyDecodeStatus::kIncomplete) break;
      if (r.consumed < 1 || static_cast<size_t>(r.consumed) > rest.size()) __builtin_trap();
      rest.remove_prefix(r.consumed);
    }
  }
  return 0;
}
