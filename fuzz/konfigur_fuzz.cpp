// konfigur.txt: any bytes read into the settings; the file the program writes
// from them reads back to the same file.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "config/konfigur.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  ConfigValues values;
  ConfigParseResult parsed = ParseKonfigur(bytes, values);
  NormalizeConfig(values);
  std::string written = FormatKonfigur(values, parsed.crlf);
  ConfigValues again;
  (void)ParseKonfigur(written, again);
  NormalizeConfig(again);
  if (FormatKonfigur(again, parsed.crlf) != written) __builtin_trap();
  return 0;
}
