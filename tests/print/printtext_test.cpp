// The print file's pure core: pages, stripping, cutting, code pages, commands.
#include <gtest/gtest.h>

#include "base/mazovia.h"
#include "print/printtext.h"

namespace {

TEST(PrintText, PagesSplitAtFormFeeds) {
  const struct {
    std::string_view file;
    std::vector<std::string_view> pages;
  } cases[] = {
      {"", {}}, {"a\r\nb\r\n", {"a\r\nb\r\n"}}, {"a\fb", {"a", "b"}},
      {"a\f", {"a"}},  // a final form feed opens no page
      {"\f\fc", {"", "", "c"}},
  };
  for (const auto& c : cases) EXPECT_EQ(SplitPages(c.file), c.pages) << c.file;
}

TEST(PrintText, StripKeepsTextAndLineBreaksOnly) {
  const struct {
    std::string_view in, out;
  } cases[] = {
      {"ab\r\ncd\r\n", "ab\ncd\n"},
      {"\x1b" "E\x0f" "Tytu\x92\r\n", "ETytu\x92\n"},  // ESC and SI go, the Mazovia letter stays
      {"strona1\fstrona2", "strona1\nstrona2"}, {"x\r\n\fy", "x\ny"}, {"\x01\x02\x1f", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(StripControlCodes(c.in), c.out) << c.in;
}

TEST(PrintText, CutKeepsTheAskedPagesWithTheirBytes) {
  std::string file;
  for (int p = 1; p <= 40; ++p) file += (p > 1 ? "\f" : "") + std::string("\x1bstrona ") + std::to_string(p) + "\r\n";
  const std::string cut = CutPages(file, 34, 36);
  EXPECT_EQ(SplitPages(cut).size(), 3u);
  EXPECT_EQ(cut, "\x1bstrona 34\r\n\f\x1bstrona 35\r\n\f\x1bstrona 36\r\n");
  EXPECT_EQ(CutPages(file, 39, 999999999), "\x1bstrona 39\r\n\f\x1bstrona 40\r\n");
  EXPECT_EQ(CutPages(file, 36, 34), "");
  EXPECT_EQ(CutPages(file, 41, 50), "");
}

TEST(PrintText, CodePagesOfTheFileDialog) {
  const std::string maz(("ąŁ"_mz).View());
  EXPECT_EQ(ToCodePage(maz, PrintCodePage::kMazovia), maz);
  EXPECT_EQ(ToCodePage(maz, PrintCodePage::kCp852), "\xa5\x9d");
  EXPECT_EQ(ToCodePage(maz, PrintCodePage::kIso8859_2), "\xb1\xa3");
  EXPECT_EQ(ToCodePage(maz, PrintCodePage::kCp1250), "\xb9\xa3");
  EXPECT_EQ(ToCodePage("abc\f", PrintCodePage::kCp1250), "abc\f");
}

TEST(PrintText, DevicesAndTheirCommands) {
  const PrintCommands cmd = ParsePrintCommands("/bin/bash,/opt/gdi,ansiprn,lpr -P,-o raw");
  EXPECT_EQ(cmd.shell, "/bin/bash");
  EXPECT_EQ(cmd.rawParams, "-o raw");
  const struct {
    const char* device;
    DeviceKind kind;
    std::string line;
  } cases[] = {
      {"GDI://UNIX", DeviceKind::kGdi, "/bin/bash -c '/opt/gdi '\\''/t/w x'\\'''"},
      {"ANSI://", DeviceKind::kAnsi, "/bin/bash -c 'ansiprn \"/t/w x\"'"},
      {"FILE:///tmp/out", DeviceKind::kFile, ""},
      {"kolejka", DeviceKind::kRaw, "/bin/bash -c 'lpr -P kolejka -o raw '\\''/t/w x'\\'''"},
      {"LPT1", DeviceKind::kRaw, "/bin/bash -c 'lpr -P LPT1 -o raw '\\''/t/w x'\\'''"},
      {"ANSI://x", DeviceKind::kRaw, "/bin/bash -c 'lpr -P ANSI://x -o raw '\\''/t/w x'\\'''"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DeviceKindOf(c.device), c.kind) << c.device;
    EXPECT_EQ(SendCommandLine(cmd, c.device, "/t/w x"), c.line) << c.device;
  }
  EXPECT_EQ(DeviceFilePath("FILE:///tmp/out"), "/tmp/out");
  const PrintCommands empty = ParsePrintCommands("");
  EXPECT_EQ(empty.shell, "/bin/sh");
  EXPECT_EQ(empty.gdiScript, "/usr/local/gdiprn/gdiprn");
}

}  // namespace
