// The dialog steps and the run frame shared by the analyses.
#include "reports/dialogs.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/codepage.h"
#include "base/dates.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/text.h"
#include "print/print.h"
#include "reports/analyses.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tui/askvalue.h"
#include "tui/datedialogs.h"
#include "tui/picklist.h"
#include "tui/keyboard.h"
#include "tui/screen.h"
#include "users/users.h"

namespace {

const ProgressBar* gBar = nullptr;
constexpr ShortText kProgressText = "Trwa zbieranie danych...[          ][          ]"_mz;
constexpr ShortText kEndBeforeStartText = "Data końcowa okresu jest wcześniejsza od początkowej."_mz;

int32_t DaySerialOf(const ShortText& date) {
  const DatePartValues d = DateParts(date);
  return EncodeDaySerial(d.year, d.month, d.day);
}

ShortText StatusText(const char* step, int done, int total) {
  return PadRight(ShortText(step) + "  " + ShortText(std::to_string(done)) + "/" + ShortText(std::to_string(total)), " ",
                  kScreenCols);
}

}  // namespace

bool AskAnalysisPeriod(int32_t& from, int32_t& to) {
  ShortText first = TodayChecked(10), last = first;
  for (;;) {
    if (!AskValueRange("Podaj zakres dat, za który chcesz otrzymać informację o doku"_mz, first, last, 10, 7,
                       ShortText(), ShortText()))
      return false;
    if (!DateValidWithMessage(first, 10) || !DateValidWithMessage(last, 10)) continue;
    from = DaySerialOf(first);
    to = DaySerialOf(last);
    if (from <= to) return true;
    (void)MessageBox(kEndBeforeStartText, 0);
  }
}

// The rows (number, name) of a query as a multiple choice; they go through a
// list file, as the multiple choice of a file shows them. The chosen numbers
// are added to chosen; false when the operator left with Esc.
bool PickQueryRows(const ShortText& title, const std::string& query, std::vector<int32_t>& chosen) {
  PGResult rows;
  CheckDBError(PGRunQueryWithTup(query + " LIMIT " + std::to_string(kPickMultiMaxRows), rows));
  const ShortText listFile = UserPath(std::max(CurrentUserNumber(), 0), "tmp\\wybor.txt");
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(std::string(PathToUnix(listFile).View())).parent_path(),
                                      ignored);
  {
    std::ofstream list(std::string(PathToUnix(listFile).View()), std::ios::binary);
    for (int i = 0; i < rows.Rows(); ++i)
      list << rows.Value(i, 0) << " ¥ "_mz.View() << DbToMaz(rows.Text(i, 1)).View() << "\n";
  }
  KeyPair key;
  uint32_t marks = 0;
  const uint32_t marked = rows.Rows() == 0 ? 0 : PickMultiFile(0, 1, 1, 0, 0, title, listFile, key, marks);
  (void)DeleteFile(listFile);
  for (int i = 0; i < rows.Rows(); ++i)
    if (marked & (1u << i)) chosen.push_back(std::atoi(std::string(rows.Value(i, 0)).c_str()));
  return !(key == keys::kEsc);
}

bool AskAnalysisWarehouses(std::vector<int32_t>& warehouses) {
  (void)PickQueryRows("Wybierz magazyny, na których dokonywano operacji:"_mz,
                      "SELECT numer,nazwa FROM " + std::string(PGSqlName("dane\\magazyny").View()) + " ORDER BY numer",
                      warehouses);
  if (!warehouses.empty()) return true;
  (void)MessageBox("Nie wybrano żadnego magazynu do zestawienia - nie ma czego analizować."_mz, 0);
  return false;
}

bool AskAnalysisKinds(std::vector<int16_t>& kinds) {
  ShortText options;
  for (const KindSet& set : AnalysisKindSets()) options += set.name + "@";
  KeyPair key;
  uint32_t marks = 1;
  const uint32_t chosen = PickMulti(0, 1, 1, 0, 0, "Dokumenty:"_mz, options, key, marks);
  const auto& sets = AnalysisKindSets();
  for (std::size_t i = 0; i < sets.size(); ++i)
    if (chosen & (1u << i)) kinds.insert(kinds.end(), sets[i].kinds.begin(), sets[i].kinds.end());
  if (!kinds.empty()) return true;
  (void)MessageBox("Nie skonfigurowano żadnego dokumentu do tej analizy."_mz, 0);
  return false;
}

int16_t AskSortOrder(const ShortText& options, bool& descending) {
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(0, 1, 1, 0, 0, "Podaj sposób sortowania:"_mz, options, ch, scan);
  if (choice != 0) descending = MessageBox("Czy sortować malejąco ?"_mz, 1);
  return choice;
}

AnalysisProgressBox::AnalysisProgressBox() {
  ScreenSave(saved_);
  (void)MessageBox(kProgressText, 2);
  bar_ = FindProgressBar(kProgressText);
  gBar = &bar_;
}

AnalysisProgressBox::~AnalysisProgressBox() {
  gBar = nullptr;
  ScreenRestore(saved_);
}

// Step code and warehouse counter in the status line, the bar in the box.
void AnalysisProgressBox::Show(const char* step, int done, int total) {
  WriteAt(1, kScreenRows, StatusText(step, done, total));
  if (gBar != nullptr) ShowProgress(*gBar, done, total);
}

void TellMissingItems(const std::vector<int32_t>& items) {
  for (int32_t item : items)
    (void)MessageBox("W katalogu głównym towarów nie znaleziono pozycji nr "_mz + ShortText(std::to_string(item)), 0);
}

bool PrintAnalysis(const std::string& text) {
  const ShortText printFile = PrintFilePath();
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(std::string(PathToUnix(printFile).View())).parent_path(),
                                      ignored);
  if (WriteFileAtomically(printFile, text) != 0) {
    (void)MessageBox("Nie można zapisywać do pliku wydruku.@Może nie masz odpowiednich uprawnień ?"_mz, 0);
    return false;
  }
  PrintTarget taken = PrintTarget::kNone;
  return PrintDestination(printFile, PrintTarget::kNone, taken);
}
