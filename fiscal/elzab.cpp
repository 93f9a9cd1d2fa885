#include "fiscal/elzab.h"

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "fiscal/elzab_line.h"

namespace {

constexpr char kEsc = 0x1B;
constexpr int kNameBytes = 28;
constexpr int kUnitBytes = 4;
constexpr Real kAmountLimit = 2147483647;

std::string Esc(std::initializer_list<char> bytes) {
  std::string command(1, kEsc);
  command.append(bytes.begin(), bytes.end());
  return command;
}

// The text cut or blank-padded to exactly width bytes.
std::string Fixed(const ShortText& text, int width) {
  std::string out(text.View().substr(0, static_cast<std::size_t>(width)));
  out.resize(static_cast<std::size_t>(width), ' ');
  return out;
}

constexpr ShortText kFirstByteTexts[8] = {
    "brak wolnego miejsca w bazie towarów i stawek w drukarce"_mz,
    "w pamięci drukarki znajduje się dokument do wydrukowania"_mz,
    "w pamięci fiskalnej jest mniej, niż 30 możliwych do zapisania pozycji"_mz,
    "nie wydrukowano raportu za poprzedni dzień - nie można wystawić paragonu"_mz,
    "błąd CMOS drukarki - CMOS był kasowany  - nie ustawiony jest czas"_mz,
    "blokada nazwy towaru w paragonie"_mz,
    "wyświetlacz jest odłączony"_mz,
    "brak komunikacji z kontrolerem drukarki"_mz,
};

constexpr ShortText kSecondByteTexts[8] = {
    "w buforze drukowania są znaki do wydrukowania"_mz,
    "brak papieru w drukarce - świeci się LED paper out"_mz,
    "awaria drukarki"_mz,
    "małe napięcie akumulatora - praca możliwa, ale zawiadom serwis"_mz,
    "nastąpiło unieważnienie operacji - paragonu"_mz,
    "w pamięci paragonu jest mniej, niż 1 kB miejsca"_mz,
    "wydruk został zatrzymany z powodu braku papieru"_mz,
    "brak komunikacji z kontrolerem drukarki"_mz,
};

// The text of the lowest set bit, or false when no bit is set.
bool LowestBitText(uint8_t status, const ShortText (&texts)[8], ShortText& text) {
  for (int bit = 0; bit < 8; ++bit) {
    if (status & (1u << bit)) {
      text = texts[bit];
      return true;
    }
  }
  return false;
}

bool TimedOut() { return ElzabLine().timedOut; }

// Sends a status question and reads its byte; false on a line time-out.
bool AskStatusByte(int port, char question, uint8_t& status) {
  ElzabSendText(port, Esc({question}));
  if (TimedOut()) return false;
  status = ElzabReadResponse(port);
  return !TimedOut();
}

}  // namespace

ElzabSettings& ElzabConfig() {
  static ElzabSettings settings;
  return settings;
}

std::string ElzabAmount32(Real value) {
  const Real rounded = RoundHalfAway(value);
  if (!(rounded >= -kAmountLimit && rounded <= kAmountLimit)) return std::string(4, '\xFF');
  const auto bits = static_cast<uint32_t>(static_cast<int32_t>(rounded));
  std::string out(4, '\0');
  for (int i = 0; i < 4; ++i) out[i] = static_cast<char>((bits >> (8 * i)) & 0xFF);
  return out;
}

uint8_t ElzabTaxCode(const ShortText& letter) {
  switch (letter.At(1)) {
    case 'A': return 1;
    case 'B': return 2;
    case 'C': return 3;
    case 'D': return 4;
    case 'Z': return 5;
    case 'E': return 6;
    case 'F': return 7;
    default: return 1;
  }
}

std::string ElzabOpenReceiptCommand(Real totalGrosz) { return Esc({0x20}) + ElzabAmount32(totalGrosz); }

std::string ElzabSaleLineCommand(const ElzabSaleLine& line) {
  std::string command = Esc({0x06, 0x20}) + Fixed(line.name, kNameBytes) + "0";
  command += ElzabAmount32(line.quantity);
  command += static_cast<char>(line.decimals);
  command += Fixed(line.unit, kUnitBytes);
  command += ElzabAmount32(line.priceGrosz);
  command += kEsc;
  command += static_cast<char>(line.taxCode);
  command += ElzabAmount32(line.valueGrosz);
  return command;
}

std::string ElzabEndItemsCommand() { return Esc({0x07}); }

std::string ElzabFreeTextCommand(char digit, const ShortText& text) {
  return Esc({0x09, digit}) + text.Str() + "\n";
}

std::string ElzabCloseReceiptCommand() { return Esc({'$'}); }
std::string ElzabCancelCommand() { return Esc({'#'}); }
std::string ElzabDailyReportCommand() { return Esc({'%'}); }
std::string ElzabDrawerCommand() { return Esc({'W'}); }

bool ElzabPeriodReportCommand(bool fiscal, const int from[3], const int to[3], std::string& command) {
  command = Esc({fiscal ? '(' : ')'});
  for (const int* date : {from, to}) {
    for (int i = 0; i < 3; ++i) {
      if (date[i] < 0 || date[i] > 99) return false;
      command += static_cast<char>(date[i] / 10);
      command += static_cast<char>(date[i] % 10);
    }
  }
  return true;
}

ShortText ElzabStatusByteText(uint8_t first, uint8_t second) {
  ShortText text;
  if (LowestBitText(first, kFirstByteTexts, text)) return text;
  if (LowestBitText(second, kSecondByteTexts, text)) return text;
  return "błąd nie sklasyfikowany"_mz;
}

ShortText ElzabStatusText(int port) {
  const ShortText lineFailed = "błąd łącza szeregowego przy próbie kontroli błędu drukarki"_mz;
  uint8_t first = 0, second = 0;
  if (!AskStatusByte(port, static_cast<char>(0x94), first)) return lineFailed;
  if (first == 0 && !AskStatusByte(port, static_cast<char>(0x95), second)) return lineFailed;
  return ElzabStatusByteText(first, second);
}

ShortText ElzabDisplayText(const ShortText& text) {
  const ShortText stripped = TrimRightAll(TrimLeftAll(text, ' '), ' ');
  const bool hasPoint = stripped.Pos('.') > 0 || stripped.Pos(',') > 0;
  return stripped.Copy(1, hasPoint ? 10 : 9) + '\n';
}

void ElzabDisplayAmount(int port, const ShortText& text) {
  if (ElzabConfig().displayType == kElzabDisplayNone) return;
  const ShortText shown = ElzabDisplayText(text);
  ElzabOpen(port);
  if (!TimedOut()) ElzabPurge(port);
  if (!TimedOut()) ElzabSendText(port, Esc({'R'}));
  if (!TimedOut() && ElzabConfig().displayType == kElzabDisplayLed)
    ElzabSendText(port, std::string{0x0B, '0', ' ', '\n'} + Esc({'S'}) + Esc({'R'}));
  if (!TimedOut()) ElzabSendText(port, shown.View());
  if (!TimedOut()) ElzabSendText(port, Esc({'S'}));
  if (!TimedOut()) ElzabPurge(port);
  ElzabRelease(port);
}

bool ElzabResponse(int port, ShortText& text) {
  text.Clear();
  if (TimedOut()) {
    text = " Timeout nadawania.";
    return false;
  }
  if (ElzabReadResponse(port) != kElzabNak) return true;
  text = "@Blad drukarki ELZAB.@(" + MazToAscii(ElzabStatusText(port)) + ")";
  return false;
}

bool ElzabCommand(int port, const std::string& command, ShortText& resultText) {
  ElzabSendText(port, command);
  ShortText text;
  if (ElzabResponse(port, text)) return false;
  // The cancel leaves the printer outside the receipt; a dead line cannot carry it.
  if (!TimedOut()) ElzabSendText(port, ElzabCancelCommand());
  ElzabPurge(port);
  if (!text.Empty()) resultText += "@" + text;
  return true;
}

ReceiptSettle ElzabSettleReceipt(int port) {
  // The longest fixed command is a sale line of 51 bytes.
  constexpr std::size_t kFillBytes = 51;
  constexpr int kQuietMs = 150, kAnswerMs = 1000;
  constexpr uint8_t kDocumentHeld = 0x02;
  ElzabOpen(port);
  if (TimedOut()) return ReceiptSettle::kNoAnswer;
  ElzabSendText(port, std::string(kFillBytes, '\n'));
  if (TimedOut()) return ReceiptSettle::kNoAnswer;
  ElzabDrain(port, kQuietMs);
  ElzabSendText(port, ElzabCancelCommand());
  const int cancel = TimedOut() ? -1 : ElzabWaitByte(port, kAnswerMs);
  if (cancel < 0) return ReceiptSettle::kNoAnswer;
  if (cancel == kElzabNak) return ReceiptSettle::kNoneOpen;  // nothing was open to cancel
  ElzabSendText(port, Esc({static_cast<char>(0x94)}));
  const int status = TimedOut() ? -1 : ElzabWaitByte(port, kAnswerMs);
  ElzabDrain(port, kQuietMs);
  if (status < 0) return ReceiptSettle::kNoAnswer;
  if (status & kDocumentHeld) return ReceiptSettle::kStillOpen;
  return ReceiptSettle::kCancelled;
}
