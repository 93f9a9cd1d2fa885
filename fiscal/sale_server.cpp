// The server route: a receipt job file for the fiscal print server, written so
// that the server never sees half a job. Record 1 holds ESC "CZEKAJ" while
// the records are written; one 256-byte write of ESC "PARAGON" publishes it.
#include <algorithm>

#include "base/codepage.h"
#include "base/filevar.h"
#include "base/jobfile.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/text.h"
#include "fiscal/fiscaljob.h"
#include "fiscal/posnet_wire.h"
#include "fiscal/sale.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

constexpr int kJobNameWidth = 24;
constexpr int kTriesBeforeQuestion = 5;
constexpr unsigned char kWaitNoticeAttr = 31;

ShortText Quoted(const ShortText& text) { return "\"" + text + "\""; }

// The CSV record of one line: name, quantity, VAT letter, price, unit.
ShortText LineRecord(const FiscalConfig& config, const FiscalSaleLine& line) {
  const ShortText letter = VatLetterOfCode(VatToPrinterCode(config, line.vat));
  return Quoted(PosnetCleanName(ReceiptLineName(line, kJobNameWidth))) + "," + FormatShortest(23, line.quantity) + "," +
         Quoted(letter) + "," + FormatShortest(23, line.price) + "," + Quoted(ReplaceChar(line.unit, '"', ' '));
}

int64_t TotalGrosz(const FiscalSale& sale) {
  int64_t total = 0;
  for (const FiscalSaleLine& line : sale.lines)
    if (line.quantity > 0) total += LineValueGrosz(line);
  return total;
}

// Publishes ESC "BRAK_DANYCH" so that a one-shot server removes the file, and starts it.
void Withdraw(const FiscalConfig& config, FileVar& file) {
  (void)WriteJobRecordAt(file, 1, JobKeyword(kJobWithdrawn));
  (void)file.Close();
  StartServer(config, file.Name());
}

// Records 4 to 7, the lines and the end; false when the operator refused a VAT rate.
bool WriteReceiptBody(const FiscalConfig& config, const ShortText& payment, const FiscalSale& sale, FileVar& file,
                      bool& written) {
  const ShortText records[] = {CashierCode(sale.cashierNumber, sale.cashierName), MazToAscii(sale.cashierName), payment,
                               config.computerNumbers != 0 ? ReceiptNumberTextOf(sale) : ShortText()};
  written = WriteJobRecordAt(file, 4, records[0]) == 0;
  for (int i = 1; i < 4; ++i) written = written && WriteJobRecord(file, records[i]) == 0;
  for (const FiscalSaleLine& line : sale.lines) {
    if (!(line.quantity > 0)) continue;
    if (!VatIsMapped(config, line.vat) && !AllowUnmappedVat(ReceiptLineName(line, kJobNameWidth))) return false;
    written = written && WriteJobRecord(file, LineRecord(config, line)) == 0;
  }
  written = written && WriteJobRecord(file, kJobKeywordEnd) == 0;
  return true;
}

}  // namespace

bool ServerSale(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale) {
  FileVar file;
  if (OpenJobFile(config, file)) return false;
  bool written = WriteJobRecordAt(file, 1, kJobKeywordWait) == 0 && WriteJobRecord(file, "0") == 0 &&
                 WriteJobRecord(file, "0") == 0;
  const int count = SaleLineCount(sale);
  if (count < 0 || count > kReceiptMaxLines) {
    MessageBox(count < 0 ? "Operacja nie będzie zapisana w drukarce fiskalnej, ponieważ jej@specyfikacja zawiera towary o ilości ujemnej."_mz
                         : "Do serwera drukarek mogą być wysyłane sprzedaże do 50 pozycji.@Rada:@zapisz specyfikację do pliku roboczego, usuń nadmiarowe pozycje;@potem możesz pobrać dane z pliku roboczego i usunąć przed zapisem@poprzednio zapisane pozycje."_mz,
               0);
    Withdraw(config, file);
    return true;
  }
  if (!WriteReceiptBody(config, paymentText, sale, file, written)) {
    Withdraw(config, file);
    return false;
  }
  written = written && WriteJobRecordAt(file, 1, kJobKeywordWait) == 0 && WriteJobRecord(file, IntText(count, 0)) == 0 &&
            WriteJobRecord(file, IntText(TotalGrosz(sale), 0)) == 0;
  written = written && WriteJobRecordAt(file, 1, JobKeyword(kJobReceipt)) == 0;
  written = file.Close() == 0 && written;
  if (!written) {
    MessageBox("Błąd zapisu"_mz, 0);
    return false;
  }
  StartServer(config, file.Name());
  if (!IsOneShotRow(config.serverRow)) WaitForPrinter(std::min(2400 + 200 * count, 65535));
  return true;
}

ShortText JobFilePath(const FiscalConfig& config) {
  ShortText path = "srvfisk\\" + IntText(config.port, 0);
  FileVar cfg;
  AssignFile(cfg, path + ".cfg");
  ShortText first;
  if (cfg.Reset(kFileModeReadOnly) == 0 && cfg.ReadLine(first) && !first.Empty()) path = first;
  return path;
}

bool OpenJobFile(const FiscalConfig& config, FileVar& file) {
  const ShortText path = JobFilePath(config);
  int tries = 0;
  for (;;) {
    if (!FileExists(path)) {
      AssignFile(file, path);
      if (file.Rewrite() == 0) return false;
    }
    if (tries < kTriesBeforeQuestion) {
      ++tries;
      MessageBox("Oczekiwanie na zwolnienie drukarki fiskalnej...["_mz + IntText(tries * 2, 2) + "]", 2000);
      continue;
    }
    if (!MessageBox("Drukarka fiskalna jest w trakcie wydruku.@Zaczekasz ?@(Jeśli nie, Twoja operacja nie zostanie zrealizowana@przez drukarkę)."_mz, 1))
      return true;
    tries = 0;
  }
}

namespace {

// Runs the program on this terminal, then repaints the screen it wrote over;
// shows the text with the status when it could not start.
void RunOnTerminal(const ShortText& program, const ShortText& commandLine, const ShortText& failure) {
  TermHandOver();
  const int status = RunProgram(program, commandLine);
  TermTakeBack();
  ScreenCopyPtr screen;
  ScreenSave(screen);
  ScreenRestore(screen);
  if (status < 0) MessageBox("Błąd ("_mz + IntText(status, 0) + ") " + failure, 0);
}

}  // namespace

void StartServer(const FiscalConfig& config, const ShortText& jobPath) {
  if (IsOneShotRow(config.serverRow))
    RunOnTerminal("./fisksrv", "XVENTKLOTE " + Quoted(config.serverRow), "uruchomienia servera wydruku fiskalnego.");
  else if (!config.helperScript.Empty())
    RunOnTerminal("/bin/sh", config.helperScript + " " + jobPath, "wykonania skryptu pomocniczego.");
}

void WaitForPrinter(int milliseconds) {
  MessageBoxColour("Trwa wydruk z drukarki fiskalnej..."_mz, static_cast<int16_t>(milliseconds), kWaitNoticeAttr);
}
