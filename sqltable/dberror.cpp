// The end of the program after a database failure: the report in error.log,
// the boxes, the rollback and the session's end.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/platform.h"
#include "base/text.h"
#include "sqltable/dbapp.h"
#include "sqltable/pglib.h"
#include "sqltable/pgui.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

ShortText lastOpenTable;

namespace {

DBSessionLeaveFn gSessionLeave = nullptr;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

// Descriptions by the table's own name; `withNumber` adds the directory number.
struct Description {
  const char* name;
  bool prefix;
  ShortText text;
  bool withNumber;
};

constexpr Description kDescriptions[] = {
    {"KAT_TOW_", false, "katalog główny towarów"_mz, false},
    {"SPECYFIK", false, "specyfikacje dokumentów towarowych - magazyn nr "_mz, true},
    {"STANY_MG", false, "stany magazynowe - magazyn nr "_mz, true},
    {"KASA____", false, "dokumenty płatności (kasowe) - magazyn nr "_mz, true},
    {"DOSTAWCY", false, "katalog dostawców"_mz, false},
    {"ODBIORCY", false, "katalog odbiorców"_mz, false},
    {"MAGAZYNY", false, "katalog magazynów"_mz, false},
    {"PRACA___", false, "aktualnie wypisywana specyfikacja użytkownika nr "_mz, true},
    {"PLIKROB_", false, "plik roboczy użytkownika nr "_mz, true},
    {"DOK_PLAT", false, "katalog - lista dokumentów księgowanych"_mz, false},
    {"VAT", true, "katalog stawek VAT"_mz, false},
    {"RABAT", true, "katalog rabatów"_mz, false},
    {"FKKONF", true, "konfiguracja eksportu do FK"_mz, false},
    {"PRZYKL", true, "katalog przykładowych nazw towarów"_mz, false},
    {"NAZWA_D", true, "katalog typów dokumentów dodatkowych"_mz, false},
    {"FORMA_P", true, "katalog form płatności"_mz, false},
};

// The number of the directory that holds the table ("12345678.9" is 123456789); empty when none.
ShortText DirectoryNumber(const ShortText& dir) {
  ShortText digits;
  for (int i = 1; i <= dir.Length(); ++i) {
    const unsigned char c = dir.At(i);
    if (c >= '0' && c <= '9') digits += static_cast<char>(c);
    else if (c != '.') return ShortText();
  }
  return digits;
}

bool Matches(const Description& d, const ShortText& table) {
  const std::string_view name(d.name);
  return d.prefix ? table.View().substr(0, name.size()) == name : table.View() == name;
}

// " (description)" as the boxes show it: "@(" text ")", or nothing.
ShortText DescriptionSuffix(const ShortText& upperPath) {
  const ShortText text = DBTableDescription(upperPath);
  if (text.Empty()) return ShortText();
  ShortText out("@(");
  out += text;
  out += ')';
  return out;
}

std::string TwoDigits(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

void PutLine(std::FILE* f, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), f);
  std::fputc('\n', f);
}

// The report appended to error.log; an installation turns it off by not having the file.
void AppendReport(int16_t code, const ShortText& tableText) {
  if (access("error.log", F_OK) != 0) return;
  std::unique_ptr<std::FILE, FileCloser> log(std::fopen("error.log", "a"));
  if (!log) return;
  std::FILE* f = log.get();
  const std::string dashes(80, '-');
  const ClockReading t = ReadClock();
  PutLine(f, dashes);
  PutLine(f, "Blad DBMS nr " + std::to_string(code) + ".");
  PutLine(f, TwoDigits(t.day) + "." + TwoDigits(t.month) + "." + std::to_string(t.year) + ", " +
                 TwoDigits(t.hour) + ":" + TwoDigits(t.minute));
  PutLine(f, "(" + MazToIsoFile(PGLastOp).Str() + ")");
  PutLine(f, "(" + MazToIsoFile(PGErrText(code)).Str() + ")");
  // A file has no "@" line breaks: the description goes on the next line.
  std::string table = MazToIsoFile(tableText).Str();
  for (char& c : table)
    if (c == '@') c = '\n';
  PutLine(f, "Ostatnia otwierana tablica: \"" + table + "\".");
  PutLine(f, "");
  for (int row = 1; row <= kScreenRows; ++row) PutLine(f, MazToIsoFile(RowText(row)).View());
  PutLine(f, dashes);
}

bool ShowFailureBox(int16_t code, const ShortText& tableText) {
  std::string number = std::to_string(code);
  if (number.size() < 3) number.insert(0, 3 - number.size(), '0');
  ShortText text("Błąd DBMS nr "_mz);
  text += number;
  text += ". Program przerywa pracę w trybie awaryjnym.@Ostatnia otwierana tablica: `"_mz;
  text += tableText;
  text += "\".@Czy pokazać opis błędu ?"_mz;
  return MessageBox(text, 1);
}

bool ServerStillAnswers() { return PGConn && PGLib().status(PGConn) == CONNECTION_OK; }

// A logged-in user's session is ended when the server still answers, so
// that a database failure does not lock the account.
void LeaveSession() {
  if (!gSessionLeave) return;
  PGResult res;
  const std::string sql = "SELECT 1 FROM " + PGSqlName("dane\\uzytkown\\uzytkown").Str() + " LIMIT 1";
  if (PGExec(res, sql, true) == 0) {
    gSessionLeave();
  } else if (!ServerStillAnswers()) {
    (void)MessageBox("Brak komunikacji z bazą danych."_mz, 0);
  }
  // A server that answers without the users table has no session to end.
}

}  // namespace

ShortText DBTableDescription(const ShortText& upperPath) {
  const int cut = upperPath.View().rfind('\\') == std::string_view::npos
                      ? 0
                      : static_cast<int>(upperPath.View().rfind('\\')) + 1;
  const ShortText table = upperPath.Copy(cut + 1, 255);
  const ShortText dirs = upperPath.Copy(1, cut > 0 ? cut - 1 : 0);
  const auto dirCut = dirs.View().rfind('\\');
  const ShortText number =
      DirectoryNumber(dirCut == std::string_view::npos ? dirs : dirs.Copy(static_cast<int>(dirCut) + 2, 255));
  if (table == ShortText("NAGLOWKI")) {
    if (number.Empty()) return "ogólna lista nagłówków dokumentów towarowych"_mz;
    return "nagłówki dokumentów towarowych - magazyn nr "_mz + number;
  }
  for (const Description& d : kDescriptions) {
    if (!Matches(d, table)) continue;
    ShortText text = d.text;
    if (d.withNumber) text += number;
    return text;
  }
  return ShortText();
}

void SetDBSessionLeave(DBSessionLeaveFn leave) { gSessionLeave = leave; }

void CheckDBError(int16_t code) {
  if (code == 0) return;
  const ShortText upperPath = MazUpCaseText(lastOpenTable);
  ShortText tableText = PGSqlName(upperPath);
  if (lastOpenTable.Empty()) tableText.Clear();
  tableText += DescriptionSuffix(upperPath);
  AppendReport(code, tableText);
  if (ShowFailureBox(code, tableText)) {
    (void)MessageBox(WrapAt76(PGLastOp), 0);
    (void)MessageBox(PGErrText(code), 0);
  }
  if (PGConnected) {
    while (PGTransDepth > 0) (void)PGTransRollback();
    LeaveSession();
  }
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kAttrNormal);
  ClearWindow();
  PGUiEndProgram();
}
