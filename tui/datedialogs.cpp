// Date and time dialogs of the base helpers.
#include "tui/datedialogs.h"

#include <cstdlib>
#include <ctime>

#include "base/dates.h"
#include "base/mazovia.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

ShortText Cut(const ShortText& text, int length) { return text.Copy(1, length == 8 ? 8 : 10); }

ShortText DateLayoutHelp(int length) {
  ShortText t = "Nieprawidłowo podana data.@──────────────────────────@Należy podać datę w formie: "_mz;
  t += Cut(ShortText("DD-MM-RRRR"), length);
  t += " np.:@ ∙ "_mz;
  t += Cut(ShortText("01-02-1999"), length);
  t += " (pierwszy lutego roku tysiąc dziewięćset@   dziewięćdziesiątego dziewiątego)@ ∙ "_mz;
  t += Cut(ShortText("04-03-2000"), length);
  t += " (czwarty marca roku dwutysięcznego)@"_mz;
  return t;
}

// Exit of the program where the date cannot be trusted; fatal ends have status 0.
[[noreturn]] void EndProgram() {
  TermFlush();
  std::exit(0);
}

bool ReadSystemDate(int& year, int& month, int& day) {
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  if (now == static_cast<std::time_t>(-1) || !localtime_r(&now, &parts)) return false;
  year = parts.tm_year + 1900;
  month = parts.tm_mon + 1;
  day = parts.tm_mday;
  return true;
}

// Keeps the time of day and changes the date.
bool SetSystemDate(int year, int month, int day) {
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  if (!localtime_r(&now, &parts)) return false;
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_isdst = -1;
  std::time_t wanted = std::mktime(&parts);
  if (wanted == static_cast<std::time_t>(-1)) return false;
  timespec ts{wanted, 0};
  return clock_settime(CLOCK_REALTIME, &ts) == 0;
}

const ClockAccess kSystemClock{ReadSystemDate, SetSystemDate};

// A 10-cell date field at a window position; false for Esc.
bool ReadDateField(int x, int y, ShortText& text) {
  for (;;) {
    TextAttr(0x70);
    WriteAt(x, y, text + ShortText(std::string(10 - text.Length(), ' ')));
    GotoXY(x + text.Length(), y);
    KeyPair k = ReadKeyRaw();
    if (k.ch == 27) return false;
    if (k.ch == 13) return true;
    if (k.ch == 8 && text.Length() > 0) text.SetLength(text.Length() - 1);
    else if (text.Length() < 10 && ((k.ch >= '0' && k.ch <= '9') || k.ch == '-')) text += static_cast<char>(k.ch);
    else Beep(1000);
  }
}

// Asks until Enter with a good date; false for Esc.
bool AskForDate(ShortText& date) {
  ShortText text = "Twój komputer ma niepoprawnie ustawioną datę.@Wpisz ją, pisząc rok czterocyfrowo:@@"_mz;
  text += "╤╥û- przerwanie pracy programu"_mz;
  MessageBox(text, 2);
  for (;;) {
    if (!ReadDateField(2, 4, date)) return false;
    unsigned char attr = CurrentAttr();
    bool valid = DateValidWithMessage(date, 10);
    TextAttr(attr);
    if (valid) return true;
  }
}

}  // namespace

bool DateValidWithMessage(const ShortText& date, int expectedLength) {
  if (DateValid(date, expectedLength)) return true;
  unsigned char attr = CurrentAttr();
  MessageBox(DateLayoutHelp(expectedLength), 0);
  TextAttr(attr);
  return false;
}

bool TimeValidWithMessage(const ShortText& time) {
  if (TimeValid(time)) return true;
  unsigned char attr = CurrentAttr();
  MessageBox("Nieprawidłowo podany czas.@──────────────────────────@Należy podać czas w formie: GG.MM, np. 06.08, co oznacza@godzinę szóstą osiem rano. Pierwsze 59 minut po północy@może być przedstawiane tylko jako czas po godzinie zero.@"_mz, 0);
  TextAttr(attr);
  return false;
}

const ClockAccess& SystemClock() { return kSystemClock; }

void SystemClockCheck(const ClockAccess& clock) {
  static const ShortText kBroken =
      "Nastąpił błąd przekształcania daty.@Powód - zła praca procesora lub pamięci RAM komputera.@Program musi przerwać działanie."_mz;
  int year = 0, month = 0, day = 0;
  if (!clock.readDate(year, month, day)) {
    MessageBox(kBroken, 0);
    EndProgram();
  }
  if (year >= 1995) return;
  ScreenCopyPtr saved;
  ScreenSave(saved);
  uint16_t wmin = WindowMinPacked(), wmax = WindowMaxPacked();
  ShortText date;
  bool entered = AskForDate(date);
  ScreenRestore(saved);
  WindowPacked(wmin, wmax);
  if (!entered) EndProgram();
  DatePartValues wanted = DateParts(date);
  int y = 0, m = 0, d = 0;
  bool kept = clock.setDate(wanted.year, wanted.month, wanted.day) && clock.readDate(y, m, d) &&
              y == wanted.year && m == wanted.month && d == wanted.day;
  if (!kept) MessageBox("Twój komputer źle zapamiętuje daty.@Skontaktuj się z serwisem sprzętu komputerowego."_mz, 0);
}

ShortText TodayChecked(int width) {
  SystemClockCheck();
  return Today(width);
}
