#include "print/printtext.h"

#include "base/codepage.h"
#include <algorithm>

std::vector<std::string_view> SplitPages(std::string_view file) {
  std::vector<std::string_view> pages;
  std::size_t start = 0;
  while (start < file.size()) {
    std::size_t end = file.find(kFormFeed, start);
    if (end == std::string_view::npos) end = file.size();
    pages.push_back(file.substr(start, end - start));
    start = end + 1;
  }
  return pages;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    const bool last = end == std::string_view::npos;
    if (last) end = text.size();
    std::string_view line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

std::string StripControlCodes(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == '\n' || c >= 32) {
      out.push_back(static_cast<char>(c));
    } else if (c == static_cast<unsigned char>(kFormFeed)) {
      // A page ending inside a line still starts the next page on a new line.
      if (!out.empty() && out.back() != '\n') out.push_back('\n');
    }
  }
  return out;
}

std::string CutPages(std::string_view file, int32_t first, int32_t last) {
  const auto pages = SplitPages(file);
  std::string out;
  for (int32_t p = std::max<int32_t>(first, 1); p <= last && p <= static_cast<int32_t>(pages.size()); ++p) {
    if (!out.empty() || p > std::max<int32_t>(first, 1)) out.push_back(kFormFeed);
    out.append(pages[static_cast<std::size_t>(p - 1)]);
  }
  return out;
}

std::string ToCodePage(std::string_view text, PrintCodePage page) {
  std::string out(text);
  unsigned char (*convert)(unsigned char) = nullptr;
  switch (page) {
    case PrintCodePage::kMazovia: return out;
    case PrintCodePage::kCp852: convert = MazToLatin2; break;
    case PrintCodePage::kIso8859_2: convert = MazToIsoFile; break;
    case PrintCodePage::kCp1250: convert = MazToCp1250; break;
  }
  for (char& c : out) c = static_cast<char>(convert(static_cast<unsigned char>(c)));
  return out;
}

DeviceKind DeviceKindOf(const ShortText& device) {
  const std::string_view name = device.View();
  if (name.starts_with("GDI://UNIX")) return DeviceKind::kGdi;
  if (name == "ANSI://") return DeviceKind::kAnsi;
  if (name.starts_with("FILE://")) return DeviceKind::kFile;
  return DeviceKind::kRaw;
}

ShortText DeviceFilePath(const ShortText& device) {
  if (DeviceKindOf(device) != DeviceKind::kFile) return ShortText();
  return ShortText(device.View().substr(7));
}

PrintCommands ParsePrintCommands(const ShortText& setting) {
  PrintCommands c;
  ShortText* fields[] = {&c.shell, &c.gdiScript, &c.ansiCommand, &c.rawCommand, &c.rawParams};
  std::string_view rest = setting.View();
  for (ShortText* field : fields) {
    const std::size_t comma = rest.find(',');
    *field = ShortText(rest.substr(0, comma));
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  if (c.shell.Length() == 0) c.shell = ShortText("/bin/sh");
  if (c.gdiScript.Length() == 0) c.gdiScript = ShortText("/usr/local/gdiprn/gdiprn");
  return c;
}

std::string ShellQuote(std::string_view text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'') out += "'\\''";
    else out.push_back(c);
  }
  return out + "'";
}

std::string SendCommandLine(const PrintCommands& commands, const ShortText& device, const ShortText& file) {
  std::string inner;
  switch (DeviceKindOf(device)) {
    case DeviceKind::kFile: return std::string();
    case DeviceKind::kGdi: inner = std::string(commands.gdiScript.View()) + " " + ShellQuote(file.View()); break;
    case DeviceKind::kAnsi: inner = std::string(commands.ansiCommand.View()) + " \"" + std::string(file.View()) + "\""; break;
    case DeviceKind::kRaw:
      inner = std::string(commands.rawCommand.View()) + " " + std::string(device.View()) + " " +
              std::string(commands.rawParams.View()) + " " + ShellQuote(file.View());
      break;
  }
  return std::string(commands.shell.View()) + " -c " + ShellQuote(inner);
}
