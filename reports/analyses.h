// The goods analyses as the Analizy menu reaches them: the parameters dialog,
// the run with its progress on the screen, the report through the print flow.
#pragma once

#include <vector>

#include "base/shorttext.h"
#include "reports/turnover.h"

// Document kind sets offered for an analysis, each named as reports name them.
struct KindSet {
  ShortText name;
  std::vector<int16_t> kinds;
};
const std::vector<KindSet>& AnalysisKindSets();

// The dialog: title, dates (both valid, the end not before the start),
// warehouses, suppliers and items (none marked: all), document kinds, sort
// and direction. False when the operator gave up or a choice left nothing to
// analyse (the system's message told).
bool AskTurnoverParams(TurnoverParams& params);
// Runs the analysis with progress, tells items missing from the catalogue,
// writes the report to the print file and hands it to PrintDestination;
// offers the DBF copy. False when nothing was printed.
bool RunTurnoverReport(const TurnoverParams& params);
// The menu entry: the dialog, then the report.
void TurnoverAnalysisEntry();
