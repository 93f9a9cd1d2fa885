// The destination dialog and the carrying out of a print.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "base/mazovia.h"
#include "base/paths.h"
#include "config/konfigur.h"
#include "print/print.h"
#include "print/print_detail.h"
#include "print/printtext.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

namespace {

// The whole print file; false when it cannot be read.
bool ReadWhole(const ShortText& path, std::string& bytes) {
  std::ifstream in(std::string(PathToUnix(path).View()), std::ios::binary);
  if (!in) return false;
  std::ostringstream all;
  all << in.rdbuf();
  bytes = all.str();
  return !in.bad();
}

void TellWriteFailure() { (void)MessageBox("Nie można zapisywać do pliku wydruku.@Może nie masz odpowiednich uprawnień ?"_mz, 0); }

// The device file: beside the print file, with the pages in range, lines
// ending in CR LF as a printer wants them.
ShortText DeviceFilePathFor(const ShortText& printFile) { return printFile + ".prn"; }

std::string DeviceBytes(std::string_view file, int32_t first, int32_t last) {
  std::string out;
  const std::string pages = CutPages(file, first, last);
  for (std::string_view page : SplitPages(pages)) {
    if (!out.empty()) out.push_back(kFormFeed);
    for (std::string_view line : SplitLines(page)) {
      out.append(line);
      out.append("\r\n");
    }
  }
  return out;
}

PrintTarget AskTarget() {
  unsigned char ch = 0, scan = 0;
  const int16_t choice =
      PickList(0, 1, 1, 0, 0, "Skierować wydruk:"_mz,
               "na drukarkę@na ekran monitora@do pliku do wydruku@do pliku do edycji@na drukarkę z wyborem stron@"_mz, ch,
               scan);
  return static_cast<PrintTarget>(choice);
}

PrintCodePage AskCodePage(bool forEditor) {
  unsigned char ch = 0, scan = 0;
  const ShortText title = forEditor ? "Podaj kodowanie polskich znaków dla eksportowanego do edytora pliku:"_mz
                                    : "Podaj kodowanie polskich znaków dla eksportowanego pliku:"_mz;
  const int16_t choice =
      PickList(0, 1, 1, 0, 0, title, "Mazovia@DOS Latin 2 (cp852)@ISO 8859-2@Windows cp1250"_mz, ch, scan);
  return choice == 0 ? PrintCodePage{} : static_cast<PrintCodePage>(choice);
}

bool PrinterWithRange(const ShortText& printFile, int32_t first, int32_t last) {
  (void)MessageBox("Włącz drukarkę, załóż papier.@"_mz, 0);
  return PrintToPrinter(printFile, first, last);
}

}  // namespace

bool ReadPrintFile(const ShortText& path, std::string& bytes) {
  if (ReadWhole(path, bytes)) return true;
  (void)MessageBox("Brak dostępu do pliku `"_mz + path + "\" z wydrukiem."_mz, 0);
  return false;
}

void ShowDoneBox(const ShortText& text) {
  (void)MessageBox(text, 2);
  ShowProgress(FindProgressBar(text), 1, 1);
}

ShortText PrintFilePath() { return UserPath(std::max(CurrentUserNumber(), 0), "tmp\\wydruk.txt"); }

ShortText PrintDeviceName() {
  const ShortText places[] = {UserPath(std::max(CurrentUserNumber(), 0), "drukpar.txt"), ShortText("dane\\drukpar.txt")};
  for (const ShortText& place : places) {
    std::ifstream in(std::string(PathToUnix(place).View()));
    std::string line;
    if (!in || !std::getline(in, line) || !std::getline(in, line)) continue;
    // A value ends at the last '#' of its line, the description following.
    const std::size_t hash = line.rfind('#');
    if (hash != std::string::npos) line.erase(hash);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.pop_back();
    if (!line.empty()) return ShortText(line);
  }
  return ShortText("LPT1");
}

namespace {

// Writes all bytes to path, flushed and closed; 0 or the errno of the failing step.
int WriteWhole(const std::string& path, std::string_view bytes) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return errno != 0 ? errno : EIO;
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size() && std::fflush(f) == 0;
  int error = written ? 0 : (errno != 0 ? errno : EIO);
  if (std::fclose(f) != 0 && error == 0) error = errno != 0 ? errno : EIO;
  return error;
}

// A device or pipe named as the target is written in place: a file renamed
// over it would replace the device itself.
bool IsSpecialFile(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode);
}

}  // namespace

int WriteFileAtomically(const ShortText& target, std::string_view bytes) {
  const std::string path(PathToUnix(target).View());
  if (IsSpecialFile(path)) return WriteWhole(path, bytes);
  const std::string temporary = path + ".tmp~";
  int error = WriteWhole(temporary, bytes);
  if (error == 0 && std::rename(temporary.c_str(), path.c_str()) != 0) error = errno != 0 ? errno : EIO;
  if (error != 0) std::remove(temporary.c_str());
  return error;
}

bool PrintCutRange(const ShortText& printFile, int32_t first, int32_t last, const ShortText& target) {
  std::string bytes;
  if (!ReadPrintFile(printFile, bytes)) return false;
  ShowDoneBox("Trwa redukcja wydruku do podanego zakresu stron...[          ]"_mz);
  if (WriteFileAtomically(target, CutPages(bytes, first, last)) != 0) {
    TellWriteFailure();
    return false;
  }
  return true;
}

bool PrintSend(const ShortText& deviceFile, const ShortText& device) {
  if (DeviceKindOf(device) == DeviceKind::kFile) {
    std::string bytes;
    return ReadWhole(deviceFile, bytes) && WriteFileAtomically(DeviceFilePath(device), bytes) == 0;
  }
  if (DeviceKindOf(device) == DeviceKind::kGdi) (void)MessageBox("Trwa przekazywanie zadania wydruku..."_mz, 2);
  const std::string command =
      SendCommandLine(ParsePrintCommands(ConfigText(kConfigLinePrintCommands)), device, PathToUnix(deviceFile));
  (void)std::system(command.c_str());
  DiscardPendingKeys();
  return true;
}

bool PrintToPrinter(const ShortText& printFile, int32_t first, int32_t last) {
  std::string bytes;
  if (!ReadPrintFile(printFile, bytes)) return false;
  ShowDoneBox("Kontrola wydruku..[          ]"_mz);
  const ShortText deviceFile = DeviceFilePathFor(printFile);
  if (WriteFileAtomically(deviceFile, DeviceBytes(bytes, first, last)) != 0) {
    TellWriteFailure();
    return false;
  }
  const bool sent = PrintSend(deviceFile, PrintDeviceName());
  (void)DeleteFile(deviceFile);
  if (!sent) (void)MessageBox("Drukarka jest odłączona, zepsuta, albo brak papieru."_mz, 0);
  return sent;
}

bool PrintPageRange(int32_t& first, int32_t& last) {
  ShortText from("1"), to("999999999");
  for (;;) {
    if (!AskValueRange("Przygotuj drukarkę do drukowania - włącz, załóż papier, itd. i podaj@zakres stron do wydruku:"_mz,
                       from, to, 9, 3, ShortText(), ShortText()))
      return false;
    const long a = std::strtol(std::string(from.View()).c_str(), nullptr, 10);
    const long b = std::strtol(std::string(to.View()).c_str(), nullptr, 10);
    if (a >= 1 && b <= 999999999 && a <= b) {
      first = static_cast<int32_t>(a);
      last = static_cast<int32_t>(b);
      return true;
    }
    (void)MessageBox(
        "Wprowadzane początkowa i końcowa strona wydruku muszą zawierać@się w przedziale od 1 do 999999999, na przykład: od 34 do 36."_mz,
        0);
  }
}

bool PrintToFile(const ShortText& printFile, const ShortText& suggested, const ShortText& extension, bool keepCodes) {
  std::string bytes;
  if (!ReadPrintFile(printFile, bytes)) return false;
  const char* home = std::getenv("HOME");
  const ShortText examples = "Przykładowe lokalizacje i nazwy plików:,a:\\wydruk"_mz + extension + ",b:\\wydruk" + extension +
                             "," + ShortText(home != nullptr ? home : "") + "/wydruk" + extension;
  ShortText name = suggested + extension;
  for (;;) {
    if (!AskValue("Podaj nazwę pliku:"_mz, name, 60, 5, ShortText(), examples)) return false;
    const PrintCodePage page = AskCodePage(!keepCodes);
    if (page == PrintCodePage{}) return false;
    const std::string text = keepCodes ? bytes : StripControlCodes(bytes);
    ShowDoneBox("Trwa kopiowanie...[          ]"_mz);
    if (WriteFileAtomically(name, ToCodePage(text, page)) == 0) return true;
    if (!MessageBox("Nie można stworzyć takiego pliku. Wpisujesz jeszcze raz ?"_mz, 1)) return false;
  }
}

bool PrintDestination(const ShortText& printFile, PrintTarget forced, PrintTarget& out) {
  out = forced;
  if (out == PrintTarget::kNone) out = static_cast<PrintTarget>(ConfigInt(kConfigLineOnePrintTarget));
  if (out < PrintTarget::kNone || out > PrintTarget::kPrinterPages) out = PrintTarget::kNone;
  if (out == PrintTarget::kNone || (gPrintViewerOpen && out == PrintTarget::kMonitor)) out = AskTarget();
  int32_t first = 1, last = 999999999;
  switch (out) {
    case PrintTarget::kNone: return false;
    case PrintTarget::kPrinter: return PrinterWithRange(printFile, first, last);
    case PrintTarget::kMonitor: return !gPrintViewerOpen && PrintViewer(printFile, ShortText());
    case PrintTarget::kFileToPrint: return PrintToFile(printFile, "wydruk", ".txt", true);
    case PrintTarget::kFileToEdit: return PrintToFile(printFile, "wydruk", ".txt", false);
    case PrintTarget::kPrinterPages:
      if (!PrintPageRange(first, last)) return false;
      return PrintToPrinter(printFile, first, last);
  }
  return false;
}
