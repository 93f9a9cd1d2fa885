#include "fiscal/fiscalconfig.h"

#include "base/csv.h"
#include "base/filevar.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "fiscal/elzab.h"
#include "fiscal/elzab_line.h"
#include "fiscal/posnet.h"
#include "fiscal/serial.h"

namespace {

constexpr int kServerRowFields = 5;

// The notes behind the four document flags, in the order of the dialog's choices.
const ShortText kFlagNotes[4] = {
    " (sprzedaz detaliczna)",
    " dla osob nie prowadzacych dzialalnosci",
    " dla osob nie prowadzacych dzialalnosci (wszystkie)",
    " dla dowolnego odbiorcy",
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The whole number at the start of the line (blanks before it skipped); false
// when no digit stands there.
bool LeadingNumber(const ShortText& line, int& value) {
  int pos = 1;
  while (pos <= line.Length() && line[pos] == ' ') ++pos;
  if (pos > line.Length() || !IsDigit(line[pos])) return false;
  long v = 0;
  for (; pos <= line.Length() && IsDigit(line[pos]); ++pos) v = v < 100000 ? v * 10 + (line[pos] - '0') : v;
  value = static_cast<int>(v);
  return true;
}

// Reads the lines in the writer's order; past the end every line is empty.
class LineCursor {
 public:
  explicit LineCursor(const std::vector<ShortText>& lines) : lines_(lines) {}
  ShortText Next() { return next_ < lines_.size() ? lines_[next_++] : (++next_, ShortText()); }
  void Skip(int count) { next_ += static_cast<std::size_t>(count); }
  int Number(int fallback) {
    int v = fallback;
    return LeadingNumber(Next(), v) ? v : fallback;
  }
  int Flag() { return Number(0) != 0 ? 1 : 0; }

 private:
  const std::vector<ShortText>& lines_;
  std::size_t next_ = 0;
};

ShortText Num(int value) { return IntText(value, 0); }

bool HasVatTable(int type) { return type >= kFiscalElzab && type <= kFiscalServer; }
bool IsPosnetType(int type) { return type == kFiscalPosnet || type == kFiscalPosnet24; }

void FormatVatTable(const FiscalConfig& c, std::vector<ShortText>& out) {
  if (c.printerType == kFiscalElzab) {
    out.push_back("Ponizej zapisane sa stawki VAT z programu i ich numery w drukarce ELZAB FP600.");
    out.push_back("1 - to stawka A, 2 to stawka B, 3 to stawka C, 4 to stawka D, 5 to zwolniony z podatku, 6 to stawka E, 7 to stawka F");
  } else {
    out.push_back("Ponizej zapisane cyfry okreslaja stawki VAT z programu i numery, ktore sa kodami ASCII");
    out.push_back("liter okreslajacych stawki VAT w drukarce: A B C D E F (stawki VAT) i Z (zwolniony od podatku)");
  }
  for (int i = 0; i < kFiscalVatRows; ++i) {
    out.push_back(c.vatName[i].Copy(1, 5));
    out.push_back(Num(c.vatCode[i]));
  }
}

void FormatTypeSettings(const FiscalConfig& c, std::vector<ShortText>& out) {
  const int t = c.printerType;
  if (t == kFiscalElzab) {
    out.push_back("Ponizej zapisana cyfra oznacza, czy na paragonach fiskalnych ma byc");
    out.push_back("opisywany rabat. (1-ma byc, 0-nie ma byc).");
    out.push_back(Num(c.describeDiscount));
    out.push_back("Ponizej zapisana cyfra okresla typ wyswietlacza klienta:");
    out.push_back("1 - wyswietlacz LED 9 cyfr, 2 - zwykly wyswietlacz,");
    out.push_back("0 - brak wyswietlacza.");
    out.push_back(Num(c.displayType));
  }
  if (IsPosnetType(t)) {
    out.push_back("Ponizej zapisana cyfra okresla, czy drukarka jest");
    out.push_back("produkt inny, niz POSNET 1-nie 0-tak (SIC!)");
    out.push_back(Num(c.otherThanPosnet));
    out.push_back("Ponizej zapisana cyfra okresla firmware drukarki:");
    out.push_back("1 - stary firmware (dopisek PARAGON FISKALNY, bez rabatow),");
    out.push_back("2 - nowy firmware bez rabatow, 0 - nowy firmware z rabatami.");
    out.push_back(Num(c.firmware));
  }
  if (t >= kFiscalElzab && t <= kFiscalPosnet24) {
    out.push_back("Ponizej zapisana cyfra okresla, czy ma byc wlaczona");
    out.push_back("w programie obsluga szuflady przez drukarke");
    out.push_back(Num(c.drawer));
  }
  out.push_back("Ponizej zapisana cyfra okresla, czy na paragonach");
  out.push_back("fiskalnych maja byc drukowane numery dokumentow komputerowe");
  out.push_back(Num(c.computerNumbers));
  if (t == kFiscalServer) {
    out.push_back("Ponizej zapisana dana CSV okresla konfiguracje servera drukarki fiskalnej");
    out.push_back("Nie skladajaca sie z pieciu pol oznacza wybor servera na innym komputerze");
    out.push_back(c.serverRow);
  }
}

// Line 2: the port, the device path in quotes, the note.
void ParsePortLine(const ShortText& line, FiscalConfig& c) {
  c.port = 0;
  (void)LeadingNumber(line, c.port);
  c.devicePath = BeforeFirst(AfterFirst(line, '"'), '"');
}

void ParseVatTable(LineCursor& in, FiscalConfig& c) {
  in.Skip(2);
  for (int i = 0; i < kFiscalVatRows; ++i) {
    c.vatName[i] = TrimBoth(in.Next(), ' ').Copy(1, 5);
    c.vatCode[i] = in.Number(0);
  }
}

void ParseTypeSettings(LineCursor& in, FiscalConfig& c) {
  const int t = c.printerType;
  if (t == kFiscalElzab) {
    in.Skip(2);
    c.describeDiscount = in.Flag();
    in.Skip(3);
    c.displayType = in.Number(0);
  }
  if (IsPosnetType(t)) {
    in.Skip(2);
    c.otherThanPosnet = in.Flag();
    in.Skip(3);
    c.firmware = in.Number(kFirmwareNew) == kFirmwareOld ? kFirmwareOld : kFirmwareNew;
  }
  if (t >= kFiscalElzab && t <= kFiscalPosnet24) {
    in.Skip(2);
    c.drawer = in.Flag();
  }
  in.Skip(2);
  c.computerNumbers = in.Flag();
  if (t == kFiscalServer) {
    in.Skip(2);
    const ShortText row = in.Next();
    c.serverRow = IsOneShotRow(row) ? row : ShortText();
  }
}

std::vector<ShortText> ReadLines(const ShortText& path, bool& found) {
  std::vector<ShortText> lines;
  FileVar f;
  AssignFile(f, path);
  found = f.Reset(kFileModeReadOnly) == 0;
  if (!found) return lines;
  for (ShortText line; f.ReadLine(line);) lines.push_back(line);
  return lines;
}

int WriteLines(const ShortText& path, const std::vector<ShortText>& lines) {
  FileVar f;
  AssignFile(f, path);
  int rc = f.Rewrite();
  for (const ShortText& line : lines) {
    if (rc != 0) break;
    const ShortText withEnd = line + "\n";
    rc = f.Write(withEnd.View().data(), withEnd.Length());
  }
  const int closed = f.Close();
  return rc != 0 ? rc : closed;
}

}  // namespace

bool IsOneShotRow(const ShortText& row) { return !row.Empty() && CsvFieldCount(row) == kServerRowFields; }

std::vector<ShortText> FormatFiscalConfig(const FiscalConfig& c) {
  std::vector<ShortText> out;
  out.push_back(Num(c.printerType) + " - typ drukarki fiskalnej (0-brak, 1-ELZAB FP600," +
                " 2-POSNET DF-300/301/302.thermal), 3-Emar-duo, 4-server drukarek");
  if (c.printerType == kFiscalNone) return out;
  out.push_back(Num(c.port) + ",\"" + c.devicePath +
                "\", - numer portu COM/servera, do ktorego podlaczona jest drukarka fiskalna, inny port drukarki");
  for (int i = 0; i < 4; ++i)
    out.push_back(Num(c.documentFlags[i] != 0 ? 1 : 0) + " - dokument " + kFlagNotes[i] +
                  " ma (1), nie ma (0) być zapisywany w pamięci drukarki fiskalnej"_mz);
  if (HasVatTable(c.printerType)) FormatVatTable(c, out);
  FormatTypeSettings(c, out);
  out.push_back("");
  out.push_back("");
  out.push_back("Uwaga - przy edycji recznej tego pliku wolno co najwyzej wylaczyc");
  out.push_back("uzywanie drukarki fiskalnej, albo edytowac wszystko, ale bez zmiany typu drukarki");
  return out;
}

void ParseFiscalConfig(const std::vector<ShortText>& lines, FiscalConfig& c) {
  const ShortText script = c.helperScript;
  const int delay = c.elzabDelay;
  c = FiscalConfig{};
  c.helperScript = script;
  c.elzabDelay = delay;
  LineCursor in(lines);
  c.printerType = in.Number(kFiscalNone);
  if (c.printerType < kFiscalNone || c.printerType > kFiscalServer) c.printerType = kFiscalNone;
  if (c.printerType == kFiscalNone) return;
  ParsePortLine(in.Next(), c);
  for (uint8_t& flag : c.documentFlags) flag = static_cast<uint8_t>(in.Flag());
  if (HasVatTable(c.printerType)) ParseVatTable(in, c);
  ParseTypeSettings(in, c);
}

std::vector<ShortText> FormatFiscalServerConfig(const FiscalConfig& c) {
  return {c.helperScript, Num(c.elzabDelay) + " - opoznienie w ms odczytu komunikatu zwrotnego drukarki FP600"};
}

void ParseFiscalServerConfig(const std::vector<ShortText>& lines, FiscalConfig& c) {
  LineCursor in(lines);
  c.helperScript = in.Next();
  c.elzabDelay = in.Number(kDefaultElzabDelay);
  if (c.elzabDelay > 65535) c.elzabDelay = kDefaultElzabDelay;
}

FiscalConfig ReadFiscalConfig(const ShortText& directory) { return ReadFiscalConfig(directory, directory); }

FiscalConfig ReadFiscalConfig(const ShortText& directory, const ShortText& serverDirectory) {
  FiscalConfig c;
  bool found = false;
  ParseFiscalServerConfig(ReadLines(serverDirectory + "konffiss.txt", found), c);
  if (!found) c.helperScript.Clear();
  const std::vector<ShortText> lines = ReadLines(directory + "konffisk.txt", found);
  ParseFiscalConfig(lines, c);
  return c;
}

int WriteFiscalConfig(const ShortText& directory, const FiscalConfig& config) {
  return WriteFiscalConfig(directory, directory, config);
}

int WriteFiscalConfig(const ShortText& directory, const ShortText& serverDirectory, const FiscalConfig& config) {
  const int rc = WriteLines(directory + "konffisk.txt", FormatFiscalConfig(config));
  return rc != 0 ? rc : WriteLines(serverDirectory + "konffiss.txt", FormatFiscalServerConfig(config));
}

FiscalConfig& CurrentFiscalConfig() {
  static FiscalConfig config;
  return config;
}

void ApplyFiscalConfigToDrivers(const FiscalConfig& c) {
  PosnetConfig().oldFirmware = c.firmware == kFirmwareOld;
  PosnetConfig().otherThanPosnet = c.otherThanPosnet;
  SetPosnetDevicePath(c.port == kFiscalOtherPort ? c.devicePath : ShortText());
  ElzabConfig().displayType = c.displayType;
  ElzabLine().responseDelay = static_cast<uint16_t>(c.elzabDelay);
}

ShortText NormalisedVatName(const ShortText& rate) {
  const ShortText t = TrimBoth(rate, ' ');
  if (t.Empty() || NumericCheck(t, false) != 0) return t;
  const Real value = TextToRealLoose(t);
  return value > 0 ? TrimBoth(FormatShortest(5, value), ' ') : ShortText("0");
}

namespace {
int VatRow(const FiscalConfig& c, const ShortText& rate) {
  const ShortText wanted = NormalisedVatName(rate);
  if (wanted.Empty()) return -1;
  for (int i = 0; i < kFiscalVatRows; ++i)
    if (!c.vatName[i].Empty() && NormalisedVatName(c.vatName[i]) == wanted) return i;
  return -1;
}
}  // namespace

int VatToPrinterCode(const FiscalConfig& c, const ShortText& rate) {
  const int row = VatRow(c, rate);
  return c.vatCode[row < 0 ? 0 : row];
}

bool VatIsMapped(const FiscalConfig& c, const ShortText& rate) { return VatRow(c, rate) >= 0; }

ShortText VatLetterOfCode(int code) {
  ShortText letter;
  if (code > 32 && code < 256) letter += static_cast<char>(code);
  return letter;
}

bool DocumentIsFiscal(const FiscalConfig& c, int type, int mode) {
  if (c.printerType != type || type == kFiscalNone) return false;
  switch (mode) {
    case kFiscalModeRetail: return c.documentFlags[0] != 0;
    case kFiscalModeAnyCustomer: return c.documentFlags[3] != 0;
    case kFiscalModePrivate: return c.documentFlags[1] != 0 || c.documentFlags[2] != 0;
    default: return false;
  }
}
