// The application's fiscal printer settings: konffisk.txt and konffiss.txt in
// the configuration directory. Both files are line-positional: a value stands
// at the start of its line, the rest of the line is a note for a person, and
// the note lines the writer puts between the values are skipped by position.
// Which lines exist depends on the printer type, so the reader walks the same
// layout as the writer. Parsing and formatting are pure; the file functions
// only move the lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/shorttext.h"

// Printer types of line 1.
inline constexpr int kFiscalNone = 0;
inline constexpr int kFiscalElzab = 1;
inline constexpr int kFiscalPosnet = 2;   // POSNET/NOVITUS, receipts 40 columns wide
inline constexpr int kFiscalPosnet24 = 3; // NOVITUS VENTO / EMAR-DUO, 24 columns
inline constexpr int kFiscalServer = 4;   // a printer of the fiscal print server

// Port 255 means the device path of line 2.
inline constexpr int kFiscalOtherPort = 255;
inline constexpr int kFiscalVatRows = 7;
inline constexpr int kDefaultElzabDelay = 100;

// Firmware values: 1 old (prints "PARAGON FISKALNY", no discounts), 2 new
// without discounts, 0 new with discounts.
inline constexpr int kFirmwareOld = 1;
inline constexpr int kFirmwareNew = 2;

struct FiscalConfig {
  int printerType = kFiscalNone;
  int port = 1;                 // COM number, or the server's printer number
  ShortText devicePath;         // used with port 255
  uint8_t documentFlags[4] = {};  // 1: documents of that choice go to the printer
  ShortText vatName[kFiscalVatRows];  // rate names of the application, up to 5 characters
  int vatCode[kFiscalVatRows] = {};   // ELZAB 1..7; others the ASCII code of the letter
  int describeDiscount = 0;     // ELZAB
  int displayType = 0;          // ELZAB: 1 LED of nine digits, 2 ordinary, 0 none
  int otherThanPosnet = 0;      // POSNET: "produkt inny, niz POSNET 1-nie 0-tak"
  int firmware = kFirmwareNew;  // POSNET
  int drawer = 0;               // types 1 to 3
  int computerNumbers = 0;      // types 1 to 4
  ShortText serverRow;          // type 4: one-shot row of five CSV fields, or empty
  ShortText helperScript;       // konffiss.txt line 1
  int elzabDelay = kDefaultElzabDelay;  // konffiss.txt line 2, ms
};

// The lines of konffisk.txt for the settings (one line for type 0).
std::vector<ShortText> FormatFiscalConfig(const FiscalConfig& config);
// Settings from the lines of konffisk.txt; lines missing read as 0 or empty.
// The helper script and ELZAB delay are left as they are.
void ParseFiscalConfig(const std::vector<ShortText>& lines, FiscalConfig& config);
// The two lines of konffiss.txt.
std::vector<ShortText> FormatFiscalServerConfig(const FiscalConfig& config);
// Helper script and ELZAB delay from konffiss.txt's lines (delay 100 when unreadable).
void ParseFiscalServerConfig(const std::vector<ShortText>& lines, FiscalConfig& config);

// Reads both files from the directory ("" for the current one, else ending in a
// separator); a missing konffisk.txt gives type 0. Never fails.
FiscalConfig ReadFiscalConfig(const ShortText& directory);
// The same with konffiss.txt taken from its own directory: konffisk.txt is a
// personal copy of each user, konffiss.txt belongs to the workstation.
FiscalConfig ReadFiscalConfig(const ShortText& directory, const ShortText& serverDirectory);
// Writes both files into the directory; 0 or the IO result of the failing step.
[[nodiscard]] int WriteFiscalConfig(const ShortText& directory, const FiscalConfig& config);
// Writes konffisk.txt into the directory and konffiss.txt into serverDirectory.
[[nodiscard]] int WriteFiscalConfig(const ShortText& directory, const ShortText& serverDirectory,
                                    const FiscalConfig& config);

// The settings in force in this process (read once at start-up, or by tests).
FiscalConfig& CurrentFiscalConfig();
// Hands the driver settings to the POSNET and ELZAB drivers: other maker, old
// firmware, the device of port 255, the customer display and the ELZAB delay.
void ApplyFiscalConfigToDrivers(const FiscalConfig& config);

// The rate text as the table looks it up: a number above 0 in the number
// format of width 5, any other number "0", a text that is no number as it stands.
ShortText NormalisedVatName(const ShortText& rate);
// The printer's code of the rate: the first of the seven names that matches;
// an unmapped rate takes row 1.
int VatToPrinterCode(const FiscalConfig& config, const ShortText& rate);
// True when one of the seven names matches the rate.
bool VatIsMapped(const FiscalConfig& config, const ShortText& rate);
// The one-character VAT letter that the POSNET printers and the job file take.
ShortText VatLetterOfCode(int code);

// Fiscal modes of a document: 0 none, 1 retail sale (flag 1), 2 any customer
// (flag 4), 4 persons not in business (flag 2 or 3).
inline constexpr int kFiscalModeNone = 0;
inline constexpr int kFiscalModeRetail = 1;
inline constexpr int kFiscalModeAnyCustomer = 2;
inline constexpr int kFiscalModePrivate = 4;
// True when the configuration has printer type `type` and its flags admit the mode.
bool DocumentIsFiscal(const FiscalConfig& config, int type, int mode);
// True when the row is a one-shot server row (exactly five fields).
bool IsOneShotRow(const ShortText& row);
