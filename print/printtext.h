// The print file as bytes: pages split at form feeds, the control bytes of the
// printer language stripped for the screen and for editing, code pages for a
// file given away, and the print commands of the configuration. Pure
// functions over bytes: no screen, no files, no processes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/shorttext.h"

// The form feed that ends a printed page.
inline constexpr char kFormFeed = '\f';

// Pages of a print file: the text between form feeds, a last empty page
// (a file ending in a form feed) not counted. An empty file has no page.
std::vector<std::string_view> SplitPages(std::string_view file);
// Lines of a text, without their CR LF or LF ends; a last empty line not counted.
std::vector<std::string_view> SplitLines(std::string_view text);
// The text with every control byte (below 32) removed except LF, and CR LF
// made LF; form feeds too are dropped, a page break becoming a line break.
std::string StripControlCodes(std::string_view text);
// Pages first..last (1-based, clipped to the file) joined by form feeds, each
// keeping the bytes it had; empty when the range holds no page.
std::string CutPages(std::string_view file, int32_t first, int32_t last);

// Code pages of a file given away, in the order of the dialog's choices.
enum class PrintCodePage : uint8_t { kMazovia = 1, kCp852, kIso8859_2, kCp1250 };
// The bytes converted from Mazovia to the code page.
std::string ToCodePage(std::string_view text, PrintCodePage page);

// What kind of back end a device name selects.
enum class DeviceKind : uint8_t { kGdi, kAnsi, kFile, kRaw };
DeviceKind DeviceKindOf(const ShortText& device);
// The path of a "FILE://" device; empty for any other.
ShortText DeviceFilePath(const ShortText& device);

// The five fields of the print-commands setting.
struct PrintCommands {
  ShortText shell;      // runs the other fields
  ShortText gdiScript;  // default: a file in /usr/local/gdiprn/
  ShortText ansiCommand;
  ShortText rawCommand;
  ShortText rawParams;
};
PrintCommands ParsePrintCommands(const ShortText& setting);
// A text quoted for the shell in single quotes.
std::string ShellQuote(std::string_view text);
// The command line that hands a device file to the back end of the device:
// raw "field4 device field5 file", ANSI "field3 \"file\"", GDI "script file",
// each run as "shell -c '...'"; empty for a "FILE://" device.
std::string SendCommandLine(const PrintCommands& commands, const ShortText& device, const ShortText& file);
