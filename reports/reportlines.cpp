#include "reports/reportlines.h"

#include <algorithm>

#include "base/dates.h"
#include "base/text.h"

std::string Str(const ShortText& text) { return std::string(text.View()); }

std::string Cell(const ShortText& text, int width) { return Str(PadRight(text.Copy(1, width), " ", width)); }

std::string DisplayDate(int32_t serial) {
  int y = 1, m = 1, d = 1;
  (void)DecodeDaySerial(serial, y, m, d);
  return Str(DateFromParts(d, m, y));
}

std::string Paginate(const std::vector<std::string>& head, const std::vector<std::string>& body, int linesPerPage) {
  const std::size_t room = static_cast<std::size_t>(std::max(1, linesPerPage - static_cast<int>(head.size())));
  std::string out;
  for (std::size_t i = 0; i < body.size(); ++i) {
    if (i % room == 0) {
      if (i > 0) out.push_back('\f');
      for (const std::string& line : head) out += line + "\r\n";
    }
    out += body[i] + "\r\n";
  }
  return out;
}
