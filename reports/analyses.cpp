// The parameters dialog and the run of the turnover analysis.
#include "reports/analyses.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/codepage.h"
#include "base/dates.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/text.h"
#include "print/print.h"
#include "reports/dbfsave.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tui/askvalue.h"
#include "tui/datedialogs.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "users/users.h"

namespace {

constexpr int kLinesPerPage = 60;
const ProgressBar* gBar = nullptr;

ShortText StatusText(const char* step, int done, int total) {
  return PadRight(ShortText(step) + "  " + ShortText(std::to_string(done)) + "/" + ShortText(std::to_string(total)), " ",
                  kScreenCols);
}

// Step code and warehouse counter in the status line, the bar in the box.
void ShowStep(const char* step, int done, int total) {
  WriteAt(1, kScreenRows, StatusText(step, done, total));
  if (gBar != nullptr) ShowProgress(*gBar, done, total);
}

bool AskPeriod(TurnoverParams& p) {
  ShortText from = TodayChecked(10), to = from;
  for (;;) {
    if (!AskValueRange("Podaj zakres dat, za który chcesz otrzymać informację o doku"_mz, from, to, 10, 7, ShortText(),
                       ShortText()))
      return false;
    if (!DateValidWithMessage(from, 10) || !DateValidWithMessage(to, 10)) continue;
    const DatePartValues a = DateParts(from), b = DateParts(to);
    p.from = EncodeDaySerial(a.year, a.month, a.day);
    p.to = EncodeDaySerial(b.year, b.month, b.day);
    if (p.from <= p.to) return true;
  }
}

// The warehouses of dane\magazyny as a list file; numbers in list order.
bool AskWarehouses(TurnoverParams& p) {
  PGResult rows;
  CheckDBError(PGRunQueryWithTup("SELECT numer,nazwa FROM " + std::string(PGSqlName("dane\\magazyny").View()) +
                                     " ORDER BY numer LIMIT 21", rows));
  const ShortText listFile = UserPath(std::max(CurrentUserNumber(), 0), "tmp\\magazyny.txt");
  std::filesystem::create_directories(std::filesystem::path(std::string(PathToUnix(listFile).View())).parent_path());
  {
    std::ofstream list(std::string(PathToUnix(listFile).View()), std::ios::binary);
    for (int i = 0; i < rows.Rows(); ++i)
      list << rows.Value(i, 0) << " ¥ "_mz.View() << DbToMaz(rows.Text(i, 1)).View() << "\n";
  }
  KeyPair key;
  uint32_t marks = 0;
  const uint32_t chosen =
      rows.Rows() == 0 ? 0 : PickMultiFile(0, 1, 1, 0, 0, "Wybierz magazyny, na których dokonywano operacji:"_mz, listFile, key, marks);
  (void)DeleteFile(listFile);
  for (int i = 0; i < rows.Rows(); ++i)
    if (chosen & (1u << i)) p.warehouses.push_back(std::atoi(std::string(rows.Value(i, 0)).c_str()));
  if (!p.warehouses.empty()) return true;
  (void)MessageBox("Nie wybrano żadnego magazynu do zestawienia - nie ma czego analizować."_mz, 0);
  return false;
}

bool AskKinds(TurnoverParams& p) {
  ShortText options;
  for (const KindSet& set : AnalysisKindSets()) options += set.name + "@";
  KeyPair key;
  uint32_t marks = 1;
  const uint32_t chosen = PickMulti(0, 1, 1, 0, 0, "Dokumenty:"_mz, options, key, marks);
  const auto& sets = AnalysisKindSets();
  for (std::size_t i = 0; i < sets.size(); ++i)
    if (chosen & (1u << i)) p.kinds.insert(p.kinds.end(), sets[i].kinds.begin(), sets[i].kinds.end());
  if (!p.kinds.empty()) return true;
  (void)MessageBox("Nie skonfigurowano żadnego dokumentu do tej analizy."_mz, 0);
  return false;
}

bool AskSort(TurnoverParams& p) {
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(0, 1, 1, 0, 0, "Podaj sposób sortowania:"_mz,
                                  "nazwa@dostawca@obrót (A)@stan do daty obrotu (B)@%(A/B)@cena sprzedaży"_mz, ch, scan);
  if (choice == 0) return false;
  p.sort = static_cast<TurnoverSort>(choice);
  p.descending = MessageBox("Czy sortować malejąco ?"_mz, 1);
  return true;
}

}  // namespace

const std::vector<KindSet>& AnalysisKindSets() {
  static const std::vector<KindSet> sets = {
      {"Sprzedaż"_mz, {1, 2, 4}},          {"Zwroty ze sprzed.fakturow."_mz, {3, 5}},
      {"Przyjęcia dostaw"_mz, {6, 7, 10, 11}}, {"Zwroty dostaw"_mz, {8, 9, 13}},
      {"BO", {12}}, {"MM-", {15}}, {"MM+", {18}}};
  return sets;
}

bool AskTurnoverParams(TurnoverParams& p) {
  if (!AskValue("Podaj tytuł wydruku:"_mz, p.title, 40, 1, ShortText(), ShortText())) return false;
  return AskPeriod(p) && AskWarehouses(p) && AskKinds(p) && AskSort(p);
}

bool RunTurnoverReport(const TurnoverParams& p) {
  ScreenCopyPtr saved;
  ScreenSave(saved);
  const ShortText box = "Trwa zbieranie danych...[          ][          ]"_mz;
  (void)MessageBox(box, 2);
  const ProgressBar bar = FindProgressBar(box);
  gBar = &bar;
  std::vector<int32_t> missing;
  RunTurnoverAnalysis(p, ShowStep, missing);
  gBar = nullptr;
  ScreenRestore(saved);
  for (int32_t item : missing)
    (void)MessageBox("W katalogu głównym towarów nie znaleziono pozycji nr "_mz + ShortText(std::to_string(item)), 0);
  const ShortText printFile = PrintFilePath();
  std::filesystem::create_directories(std::filesystem::path(std::string(PathToUnix(printFile).View())).parent_path());
  if (WriteFileAtomically(printFile, FormatTurnoverReport(p, ReadTurnoverRows(p), kLinesPerPage)) != 0) {
    (void)MessageBox("Nie można zapisywać do pliku wydruku.@Może nie masz odpowiednich uprawnień ?"_mz, 0);
    return false;
  }
  PrintTarget taken = PrintTarget::kNone;
  const bool printed = PrintDestination(printFile, PrintTarget::kNone, taken);
  if (MessageBox("Czy zapisać zestawienie w standardzie DBF-3 ?"_mz, 1)) (void)SaveTurnoverDbf();
  return printed;
}

void TurnoverAnalysisEntry() {
  TurnoverParams p;
  if (AskTurnoverParams(p)) (void)RunTurnoverReport(p);
}
