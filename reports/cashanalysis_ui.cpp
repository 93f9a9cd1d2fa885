// The dialogs and the runs of the cash analyses as the Analizy menu reaches them.
#include "base/numtext.h"
#include "base/text.h"
#include "reports/cashanalysis.h"
#include "reports/dialogs.h"
#include "tui/askvalue.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace {

// The symbol under which the summary prints as a cash report; blank for none.
bool AskSymbol(ShortText& symbol) {
  ShortText value;
  if (!AskValue("Podaj symbol (numer) zestawienia, jako raportu kasowego: ---------------- @(Jeżeli nie podasz nic, "
                "zestawienie nie będzie drukowane w postaci RK)."_mz,
                value, 16, 1, ShortText(), ShortText()))
    return false;
  symbol = TrimBoth(value, ' ');
  return true;
}

bool AskOpening(Real& opening) {
  ShortText value("0");
  if (!AskValue("Podaj stan początkowy kasy, który zostanie wykazany na tym raporcie:@"_mz, value, 15, 13, ShortText(),
                ShortText()))
    return false;
  opening = TextToReal(TrimBoth(value, ' '));
  return true;
}

void RunCashSummary() {
  CashParams p;
  if (!AskCashParams(p)) return;
  std::vector<CashDay> days;
  {
    AnalysisProgressBox box;
    days = ReadCashDays(p);
  }
  (void)PrintAnalysis(FormatCashReport(p, days, kAnalysisLinesPerPage));
}

void RunDepositCheck() {
  std::vector<DepositFinding> findings;
  {
    AnalysisProgressBox box;
    findings = CheckDepositMarks();
  }
  if (findings.empty()) {
    (void)MessageBox("Oznaczenia depozytów w nagłówkach i specyfikacjach są zgodne."_mz, 0);
    return;
  }
  (void)PrintAnalysis(FormatDepositReport(findings, kAnalysisLinesPerPage));
}

}  // namespace

bool AskCashParams(CashParams& p) {
  if (!AskAnalysisPeriod(p.from, p.to) || !AskAnalysisWarehouses(p.warehouses)) return false;
  p.splitByWarehouse = p.warehouses.size() > 1 && MessageBox("Czy dzielić wydruk na poszczególne magazyny ?"_mz, 1);
  if (!AskSymbol(p.symbol)) return false;
  return p.symbol.Empty() || AskOpening(p.opening);
}

void CashAnalysesEntry() {
  unsigned char ch = 0, scan = 0;
  const ShortText choices = kCashDaySummaryText + "@" + "Sprawdzenie oznaczeń depozytów w całej bazie"_mz;
  switch (PickList(0, 1, 1, 0, 0, kCashAnalysesTitle, choices, ch, scan)) {
    case 1: RunCashSummary(); break;
    case 2: RunDepositCheck(); break;
    default: break;
  }
}
