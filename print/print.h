// The print flow. A report is a text file of fixed columns with the printer's
// control bytes in it and form feeds between pages; when it is finished, one
// call of PrintDestination asks the operator where it goes (unless the
// configuration forces one destination) and carries it there: the printer
// through the print commands of the configuration, the screen viewer, or a
// file in a chosen code page. Files are written beside their target and
// renamed over it only when complete: a failed copy never leaves a partial
// file under the name asked for.
#pragma once

#include <cstdint>

#include "base/shorttext.h"

// Destinations, numbered as the dialog's choices and the setting of one destination.
enum class PrintTarget : int16_t {
  kNone = 0,
  kPrinter = 1,
  kMonitor = 2,
  kFileToPrint = 3,
  kFileToEdit = 4,
  kPrinterPages = 5,
};

// Configuration lines the flow reads.
inline constexpr int kConfigLineOnePrintTarget = 21;
inline constexpr int kConfigLinePrintCommands = 57;

// The print file of the current user: "tmp\wydruk.txt" in his directory.
ShortText PrintFilePath();
// The device name: line 2 of drukpar.txt in the user's directory, else in
// dane\, else "LPT1".
ShortText PrintDeviceName();

// The destination dialog ("Skierować wydruk:") and the whole carrying out.
// forced, when not kNone, skips the dialog, as the setting of one destination
// does. out receives the destination taken (kNone for Esc). True if the output was done.
bool PrintDestination(const ShortText& printFile, PrintTarget forced, PrintTarget& out);
// The screen viewer of a print file with its title in the key line's place;
// F5 and Ctrl+F5 hand the original file (with its codes) to PrintDestination.
// False when the file cannot be read ("Brak dostępu do pliku `...").
bool PrintViewer(const ShortText& printFile, const ShortText& title);
// Writes pages first..last of the print file to a device file and hands it
// to the back end (PrintSend). False on a write failure, told to the operator.
bool PrintToPrinter(const ShortText& printFile, int32_t first, int32_t last);
// Hands a finished device file to the back end of the device: copies it to
// the path of a "FILE://" device, else runs the configured command under the
// shell. The command's outcome is not examined. False only when a copy failed.
bool PrintSend(const ShortText& deviceFile, const ShortText& device);
// Asks the page range, 1..999999999, first not above last; false for Esc.
bool PrintPageRange(int32_t& first, int32_t& last);
// Writes a new file holding only pages first..last of the print file.
bool PrintCutRange(const ShortText& printFile, int32_t first, int32_t last, const ShortText& target);
// Asks a file name (suggested plus extension) and the code page, then copies
// the print file there, with the control codes or without. False for Esc or a
// failure (the system's message told).
bool PrintToFile(const ShortText& printFile, const ShortText& suggested, const ShortText& extension, bool keepCodes);
// The copy itself, without dialogs: the bytes written to a temporary file
// beside target and renamed over it. 0, or the errno of the failing step
// (the temporary file removed).
[[nodiscard]] int WriteFileAtomically(const ShortText& target, std::string_view bytes);
