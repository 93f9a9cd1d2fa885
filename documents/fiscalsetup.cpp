#include "documents/fiscalsetup.h"

#include <array>
#include <vector>

#include "base/csv.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "master/dictionaries.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "users/users.h"

namespace {

constexpr uint8_t kListColour = 1;
constexpr int kComPorts = 4;
constexpr int kPathWidth = 77;

// The type list puts the 24-column printer first and ELZAB third on purpose.
constexpr std::array<int, 5> kTypeOfPosition = {kFiscalPosnet24, kFiscalPosnet, kFiscalElzab, kFiscalServer,
                                                kFiscalNone};

const ShortText& TypeTitle() {
  static const ShortText title = "Wybierz rodzaj drukarki:";
  return title;
}

bool IsDirectType(int type) { return type >= kFiscalElzab && type <= kFiscalPosnet24; }
bool IsPosnetType(int type) { return type == kFiscalPosnet || type == kFiscalPosnet24; }

ShortText ModelName(int type) {
  switch (type) {
    case kFiscalElzab: return "ELZAB FP-600/Omega ";
    case kFiscalPosnet: return "NOVITUS,POSNET DF-300/301/302/THERMAL,DUO-PRO@";
    default: return "NOVITUS VENTO lub EMAR-DUO ";
  }
}

bool Ask(const ShortText& question) { return MessageBox(question, 1); }

// A whole number typed by the operator; fallback when the text holds none.
int NumberOf(const ShortText& text, int fallback) {
  const ShortText t = TrimBoth(text, ' ');
  return t.Empty() || NumericCheck(t, true) != 0 ? fallback : static_cast<int>(TextToRealLoose(t));
}

// --- The type, the port and the server row ---

int16_t PickType(const ShortText& options, int16_t initial) {
  unsigned char ch = 0, scan = 0;
  return PickList(kListColour, initial, 1, 0, 0, TypeTitle(), options, ch, scan);
}

int16_t PositionOfType(int type) {
  for (std::size_t i = 0; i < kTypeOfPosition.size(); ++i)
    if (kTypeOfPosition[i] == type) return static_cast<int16_t>(i + 1);
  return 1;
}

// The kind of the server's printer as the row tells it: 1 ELZAB, 2 NOVITUS/POSNET,
// 3 POSNET of the old firmware, 4 a server on another computer (no row).
int16_t ServerKindOfRow(const ShortText& row) {
  if (!IsOneShotRow(row)) return 4;
  if (CsvField(row, 1) == "1") return 1;
  return CsvField(row, 4) == "PARAGON_FISKALNY" ? 3 : 2;
}

bool AskServerRow(FiscalConfig& c) {
  ShortText number = IntText(c.port, 0);
  if (!AskValue("Podaj numer drukarki servera:"_mz, number, 3, 3, "Jeśli nie wiesz - co wybrać - wciśnij [Enter]."_mz,
                ShortText()))
    return false;
  const int printer = NumberOf(number, c.port);
  const int16_t kind = PickType(
      "- zgodna z ELZAB FP-600@- zgodna z NOVITUS/POSNET/DUO-PRO@- zgodna z POSNET stary firmware@- server drukarek na innym komputerze",
      ServerKindOfRow(c.serverRow));
  if (kind == 0) return false;
  c.port = printer;
  if (kind == 4) {
    c.serverRow.Clear();
    ShortText script = c.helperScript;
    if (!AskValue("Podaj nazwę skryptu, który ma wykonać dodatkową czynność:"_mz, script, kPathWidth, 1, ShortText(),
                  ShortText()))
      return false;
    c.helperScript = TrimBoth(script, ' ');
    return true;
  }
  ShortText com = IsOneShotRow(c.serverRow) ? CsvField(c.serverRow, 2) : ShortText("1");
  if (!AskValue("Podaj numer COM drukarki:"_mz, com, 2, 3, ShortText(), ShortText())) return false;
  ShortText row = ShortText(kind == 1 ? "1" : "2") + "," + IntText(NumberOf(com, 1), 0) + ",srvfisk\\" +
                  IntText(printer, 0) + (kind == 3 ? ",PARAGON_FISKALNY" : ",");
  row += Ask("Czy drukarka ma podłączoną szufladę na pieniądze ?"_mz) ? ",1" : ",0";
  c.serverRow = row;
  return true;
}

bool AskPort(FiscalConfig& c) {
  ShortText options;
  for (int n = 1; n <= kComPorts; ++n) options += "- COM" + IntText(n, 0) + "@";
  options += "- inny";
  const int16_t initial = c.port == kFiscalOtherPort ? kComPorts + 1 : (c.port >= 1 && c.port <= kComPorts ? c.port : 1);
  unsigned char ch = 0, scan = 0;
  const int16_t chosen =
      PickList(kListColour, static_cast<int16_t>(initial), 1, 0, 0, "Wybierz port dla drukarki fiskalnej:", options, ch, scan);
  if (chosen == 0) return false;
  if (chosen <= kComPorts) {
    c.port = chosen;
    return true;
  }
  ShortText path = c.devicePath;
  if (!AskValue("Podaj urządzenie `dev\" (port) drukarki fiskalnej:"_mz, path, kPathWidth, 1, ShortText(), ShortText()))
    return false;
  c.port = kFiscalOtherPort;
  c.devicePath = TrimBoth(path, ' ');
  return true;
}

// --- The documents ---

ShortText DocumentChoiceName(int flag) {
  switch (flag) {
    case 0: return ConfigDocumentName(1);
    case 1: return ConfigDocumentName(4) + " (dla osób nie prowadzących działalności) "_mz;
    case 2: return ConfigDocumentName(4) + " (wszystkie) ";
    default: return ConfigDocumentName(2);
  }
}

ShortText DocumentChoiceText(const uint8_t (&flags)[4]) {
  static const ShortText kCaps[4] = {"╫à"_mz, "╫ç"_mz, "╫ê"_mz, "╫ë"_mz};
  ShortText text = "Wybieraj dokumenty notowane na drukarce fiskalnej:@"_mz;
  for (int i = 0; i < 4; ++i)
    text += "@" + kCaps[i] + (flags[i] != 0 ? " [X] " : " [ ] ") + DocumentChoiceName(i);
  return text + "@@           ╫╨ö - zatwierdzenie wyboru"_mz;
}

// F1 to F4 toggle the flags, F10 takes them, Esc gives the dialog up.
bool ChooseDocuments(FiscalConfig& c) {
  uint8_t flags[4];
  for (int i = 0; i < 4; ++i) flags[i] = c.documentFlags[i] != 0 ? 1 : 0;
  for (;;) {
    ScreenCopyPtr screen;
    ScreenSave(screen);
    MessageBox(DocumentChoiceText(flags), 2);
    const KeyPair key = ReadKeyRaw();
    ScreenRestore(screen);
    if (key == keys::kEsc) return false;
    if (key == keys::F(10)) break;
    for (int i = 0; i < 4; ++i)
      if (key == keys::F(i + 1)) flags[i] ^= 1;
  }
  for (int i = 0; i < 4; ++i) c.documentFlags[i] = flags[i];
  return true;
}

// --- The questions of the type ---

void AskTypeQuestions(FiscalConfig& c) {
  const int t = c.printerType;
  if (t == kFiscalElzab) {
    c.describeDiscount = Ask("Czy na paragonach fiskalnych ma być opisywany rabat ?"_mz) ? 1 : 0;
    c.displayType = 0;
    if (Ask("Czy używasz dodatkowego wyświetlacza klienta ?@(Jeśli nie wiesz, odpowiedz `nie\")."_mz))
      c.displayType = Ask("Czy używasz wyświetlacza LED "_mz + "PLUS" + " 9 cyfr ?@"_mz +
                          "(Jeśli nie wiesz, odpowiedz `nie\")."_mz)
                          ? 1
                          : 2;
  }
  if (IsPosnetType(t)) {
    c.otherThanPosnet = Ask("Czy drukarka jest produkcji firmy `Novitus\" ?"_mz) ? 0 : 1;
    c.firmware = Ask("Czy drukarka ma drukować na paragonie dopisek: `PARAGON FISKALNY\"@i nie drukować rabatów ?@(Ma `stary firmware\" POSNET DF 300).@(Jeśli nie wiesz, odpowiedz `nie\")."_mz)
                     ? kFirmwareOld
                     : kFirmwareNew;
  }
  if (IsDirectType(t)) c.drawer = Ask("Czy drukarka ma podłączoną szufladę na pieniądze ?"_mz) ? 1 : 0;
  c.computerNumbers = Ask("Czy drukować na paragonach fiskalnych ich numery komputerowe ?"_mz) ? 1 : 0;
  if (c.computerNumbers != 0 && IsPosnetType(t) && c.firmware == kFirmwareOld)
    MessageBox("Jeśli drukarka ma jednak `nowy firmware\", drukowanie numerów komputerowych@może nie być możliwe. W takim wypadku spróbuj ustawić ją jednak na@`nowy firmware\"."_mz,
               0);
}

// --- The VAT rates ---

struct PrinterRate {
  int code;
  const char* label;
};

const std::array<PrinterRate, kFiscalVatRows>& PrinterRates(int type) {
  static const std::array<PrinterRate, kFiscalVatRows> elzab = {{{1, "stawka A"},
                                                                 {2, "stawka B"},
                                                                 {3, "stawka C"},
                                                                 {4, "stawka D"},
                                                                 {5, "zwolniony z podatku"},
                                                                 {6, "stawka E"},
                                                                 {7, "stawka F"}}};
  static const std::array<PrinterRate, kFiscalVatRows> letters = {{{'A', "stawka A"},
                                                                   {'B', "stawka B"},
                                                                   {'C', "stawka C"},
                                                                   {'D', "stawka D"},
                                                                   {'E', "stawka E"},
                                                                   {'F', "stawka F"},
                                                                   {'Z', "Z (zwolniony od podatku)"}}};
  return type == kFiscalElzab ? elzab : letters;
}

// The firm's VAT groups as the examples of the field; the exempt group always among them.
ShortText VatGroupExamples() {
  std::vector<DictionaryEntry> rows;
  if (DictionaryRead(kVatDictionary, rows) != 0) rows.clear();
  ShortText list;
  bool exempt = false;
  for (const DictionaryEntry& row : rows) {
    const ShortText name = TrimBoth(row.indeks, ' ').Copy(1, 5);
    if (name.Empty()) continue;
    exempt = exempt || name == kExemptGroup;
    list += (list.Empty() ? "" : ",") + name;
  }
  if (!exempt) list += (list.Empty() ? "" : ",") + ShortText(kExemptGroup);
  return list;
}

ShortText NameMappedTo(const FiscalConfig& c, int code) {
  for (int i = 0; i < kFiscalVatRows; ++i)
    if (c.vatCode[i] == code && !c.vatName[i].Empty()) return c.vatName[i];
  return ShortText();
}

}  // namespace

ShortText UserFiscalConfigDirectory() { return UserDirectory(CurrentUserNumber()) + "\\"; }

FiscalConfig ReadUserFiscalConfig() { return ReadFiscalConfig(UserFiscalConfigDirectory(), ShortText()); }

int WriteUserFiscalConfig(const FiscalConfig& config) {
  return WriteFiscalConfig(UserFiscalConfigDirectory(), ShortText(), config);
}

void LoadUserFiscalConfig() {
  CurrentFiscalConfig() = ReadUserFiscalConfig();
  ApplyFiscalConfigToDrivers(CurrentFiscalConfig());
}

ShortText FiscalConfigDescription(const FiscalConfig& c) {
  if (c.printerType == kFiscalNone) return "drukarka fiskalna nie jest używana."_mz;
  if (c.printerType == kFiscalServer)
    return "drukarka nr " + IntText(c.port, 0) + " na serverze drukarek fiskalnych.";
  const ShortText where = c.port == kFiscalOtherPort ? "port:@`" + c.devicePath + "\"." : "COM" + IntText(c.port, 0) + ".";
  return "drukarka " + ModelName(c.printerType) + "na łączu szeregowym "_mz + where;
}

bool EditVatMapping(FiscalConfig& config) {
  const ShortText examples = VatGroupExamples();
  FiscalConfig edited = config;
  const auto& rates = PrinterRates(config.printerType);
  for (int i = 0; i < kFiscalVatRows; ++i) {
    ShortText name = NameMappedTo(config, rates[i].code);
    const ShortText title = "Przyporządkowanie stawek VAT z programu stawkom z drukarki fiskalnej:@@"_mz +
                            "UWAGA@- wpisanie wartości pustej oznacza brak określenia stawki.@@"_mz + rates[i].label +
                            ":";
    if (!AskValue(title, name, 5, 1, ShortText(), examples)) return false;
    edited.vatName[i] = TrimBoth(name, ' ');
    edited.vatCode[i] = rates[i].code;
  }
  config = edited;
  return true;
}

bool EditFiscalSettings(FiscalConfig& config) {
  const ShortText rule(std::string(74, static_cast<char>(0xC4)));
  if (!Ask("Czy zmienić ustawienia drukarki fiskalnej ?@"_mz + rule + "@Aktualne ustawienie:@" +
           FiscalConfigDescription(config)))
    return false;
  const int16_t position = PickType(
      "- NOVITUS VENTO lub EMAR-DUO@- NOVITUS,POSNET DF-300/301/302/THERMAL,DUO-PRO@- ELZAB FP-600/Omega@- drukarka na serverze drukarek fiskalnych@- brak drukarki fiskalnej",
      PositionOfType(config.printerType));
  if (position == 0) return false;
  FiscalConfig c = config;
  c.printerType = kTypeOfPosition[static_cast<std::size_t>(position - 1)];
  if (c.printerType != kFiscalNone) {
    if (c.printerType == kFiscalServer ? !AskServerRow(c) : !AskPort(c)) return false;
    if (!ChooseDocuments(c) || !EditVatMapping(c)) return false;
    AskTypeQuestions(c);
  }
  config = c;
  return true;
}

bool EditFiscalConfig() {
  FiscalConfig config = ReadUserFiscalConfig();
  if (!EditFiscalSettings(config)) return false;
  if (WriteUserFiscalConfig(config) != 0) {
    MessageBox("Błąd zapisu"_mz, 0);
    return false;
  }
  MessageBox("Proszę pamiętać o tym, że w drukarce należy też ustawić stawki VAT.@(Najlepiej oprogramowaniem dostarczanym z drukarką)."_mz,
             0);
  MessageBox("Proszę wyjść i wejść powtórnie do programu."_mz, 0);
  return true;
}
