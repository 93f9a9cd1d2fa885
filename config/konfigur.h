// The main configuration: every setting of the application that is not per
// user, one a line of "konfigur.txt" in the data directory. A setting is known
// by its line number (1..kConfigLineCount); each line holds the value and a
// description, so that the file explains itself. The contract:
// - ConfigRead fills the settings once at start; a line missing at the end of
//   an older file leaves its setting at the zero value, a number line that does
//   not read as a number gives 0; nothing in the file is ever an error.
// - A text value ends at the last '#' of its line; a line with no '#' is all value.
// - ConfigWrite backs the old file up and writes all lines anew, in the fixed
//   order with the fixed descriptions, then the warning. A file read and written
//   again comes out byte for byte the same.
// - The line table (kind, default, description) is data: ConfigLineInfo.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/real.h"
#include "base/shorttext.h"

// Number of setting lines; a new setting is only ever appended.
inline constexpr int kConfigLineCount = 235;

enum class ConfigKind : uint8_t { kInteger, kReal, kText };

// One line of the file: its number, kind, the longest value of a text line,
// the default as the file would hold it, and the description in Mazovia bytes
// ("..." standing alone marks where the program inserts a value).
struct ConfigLineDef {
  int16_t line;
  ConfigKind kind;
  uint8_t capacity;
  std::string_view defaultValue;
  std::string_view description;
};

// The definition of a line; nullptr outside 1..kConfigLineCount.
const ConfigLineDef* ConfigLineInfo(int line);

// Lines that other modules name. The 18 document names stand on consecutive
// lines, one per goods document kind 1..18.
inline constexpr int kConfigLineLoginOverride = 71;  // who may pass a session's stale mark
inline constexpr int kConfigLinePaymentDefaults = 138;
inline constexpr int kConfigLineNipMask = 140;
inline constexpr int kConfigLineFirstDocumentName = 217;
inline constexpr int kConfigDocumentNames = 18;

// A value for every line. Integer lines hold 16-bit numbers; a value outside
// that range read from a file counts as 0.
class ConfigValues {
 public:
  // Every setting at its zero value (0, 0.0, empty), as past a file's end.
  ConfigValues() = default;
  // Every setting at its default from the line table.
  static ConfigValues Defaults();

  // The number of an integer line; 0 for another line or a line out of range.
  int16_t Number(int line) const;
  // The value of the real line; 0 for another line.
  Real RealValue(int line) const;
  // The value of a text line; empty for another line.
  const ShortText& Text(int line) const;
  // Setters do nothing for a line of another kind; texts are cut at the line's capacity.
  void SetNumber(int line, int16_t value);
  void SetReal(int line, Real value);
  void SetText(int line, const ShortText& value);

  bool operator==(const ConfigValues&) const = default;

 private:
  struct Slot {
    int16_t number = 0;
    Real real = 0;
    ShortText text;
    bool operator==(const Slot&) const = default;
  };
  const Slot* Find(int line, ConfigKind kind) const;
  std::array<Slot, kConfigLineCount + 1> slots_{};
};

// Pure core: bytes of a file in, settings out; never fails, never crashes.
struct ConfigParseResult {
  int linesFound = 0;  // setting lines present in the bytes (0..kConfigLineCount)
  bool crlf = false;   // the first line ended in CR LF
};
// Reads the setting lines of a konfigur.txt image into values (no normalising);
// lines beyond the bytes keep their zero values.
ConfigParseResult ParseKonfigur(std::string_view bytes, ConfigValues& values);
// What the reader does after the lines: empty document names take their
// defaults, and the payment list gets the tail it lacks.
void NormalizeConfig(ConfigValues& values);

// Gives the text that stands for the n-th "..." (from 1) of a line's
// description when the file is written.
using ConfigDescriptionFiller = std::function<ShortText(int line, int placeholder)>;
// The whole file image: every line, two empty lines and the warning. With no
// filler a "..." of a description is written as it stands.
std::string FormatKonfigur(const ConfigValues& values, bool crlf, const ConfigDescriptionFiller& filler = {});

// The settings of the program, filled by ConfigRead, written by ConfigWrite.
ConfigValues& ConfigSettings();
// Typed access to the program's settings by line number.
int16_t ConfigInt(int line);
Real ConfigReal(int line);
const ShortText& ConfigText(int line);
// The name of a goods document kind 1..18; empty for another kind.
ShortText ConfigDocumentName(int kind);

// Where ConfigRead found the file.
enum class ConfigSource { kFirstPath, kFallbackPath, kMissing };
struct ConfigReadResult {
  ConfigSource source = ConfigSource::kMissing;
  ShortText path;      // the DOS path read (or, when missing, the one to write)
  int linesFound = 0;  // setting lines the file held
};
// The DOS path tried first: the first argument after the program's name as a
// directory ('/' turned to '\', '\' appended), else "dane\"; then "konfigur.txt".
ShortText ConfigFilePath(int argc, const char* const argv[]);
// Reads the settings (argc and argv as main has them). The first path, else
// "dane\konfigur.txt"; when both are missing the settings take their defaults.
ConfigReadResult ConfigRead(int argc, const char* const argv[]);
// The DOS path that ConfigRead used and that ConfigWrite writes.
const ShortText& ConfigPath();

// Called for "magazyny", "dostawcy" and "odbiorcy" when ConfigWrite's flag
// says the tables must be indexed anew; the table layer registers it.
using ConfigReindexAction = std::function<void(const ShortText& table)>;
void ConfigSetReindexAction(ConfigReindexAction action);
// Filler used by ConfigWrite for the "..." of the descriptions.
void ConfigSetDescriptionFiller(ConfigDescriptionFiller filler);
// Writes the settings to ConfigPath(). flag is the NIP-mask setting as it was
// before the change: when it differs from the stored one the three tables are
// indexed anew ("Indeksowanie tablicy: " and the name). The old file goes to
// "dane\konf_old.txt" through "dane\konf_ol_.txt" first; the new one is written
// to a temporary file and renamed over, so a failure leaves the old file. 0 on
// success, else the IO result of the failing step.
[[nodiscard]] int ConfigWrite(int flag);
