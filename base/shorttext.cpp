#include "base/shorttext.h"

#include <cstdio>
#include <ostream>

void PrintShortText(std::string_view bytes, std::ostream* os) {
  *os << '"';
  for (char ch : bytes) {
    auto c = static_cast<unsigned char>(ch);
    if (c >= 32 && c < 127 && c != '"' && c != '\\') {
      *os << ch;
    } else {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", c);
      *os << hex;
    }
  }
  *os << '"';
}
