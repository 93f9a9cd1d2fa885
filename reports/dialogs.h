// The dialog steps and the run frame that the analyses share. Private to reports/.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/shorttext.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

inline constexpr int kAnalysisLinesPerPage = 60;

// The period: two real dates, the end not before the start; asked again after
// the message until given or Esc (false).
bool AskAnalysisPeriod(int32_t& from, int32_t& to);
// The warehouses of dane\magazyny, in number order; none chosen ends the
// dialogue with the system's message (false).
bool AskAnalysisWarehouses(std::vector<int32_t>& warehouses);
// The rows (number, name) that the query gives, at most a box of them, as a
// multiple choice under the title; the marked numbers are added to chosen.
// False when the operator left with Esc.
bool PickQueryRows(const ShortText& title, const std::string& query, std::vector<int32_t>& chosen);
// The document kind sets; none chosen ends the dialogue with the message (false).
bool AskAnalysisKinds(std::vector<int16_t>& kinds);

// "Podaj sposób sortowania:" over the options, then the direction; the
// choice (1-based), 0 for Esc.
int16_t AskSortOrder(const ShortText& options, bool& descending);

// The progress box of a run, "Trwa zbieranie danych..." with its bar, and the
// step codes in the status line; the screen comes back when it ends.
class AnalysisProgressBox {
 public:
  AnalysisProgressBox();
  ~AnalysisProgressBox();
  AnalysisProgressBox(const AnalysisProgressBox&) = delete;
  AnalysisProgressBox& operator=(const AnalysisProgressBox&) = delete;
  // The AnalysisProgress callback that draws into the open box.
  static void Show(const char* step, int done, int total);

 private:
  ScreenCopyPtr saved_;
  ProgressBar bar_;
};

// Tells each item missing from the catalogue.
void TellMissingItems(const std::vector<int32_t>& items);
// Writes the report to the user's print file (complete or not at all) and
// hands it to PrintDestination. False when nothing was printed.
bool PrintAnalysis(const std::string& text);
