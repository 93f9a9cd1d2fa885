// The dialogs and menu entries of the item analyses.
#include <cstdlib>
#include <utility>

#include "base/mazovia.h"
#include "reports/dialogs.h"
#include "reports/itemanalyses.h"
#include "tui/askvalue.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace {

constexpr int kMostRanges = 12;

bool AskRanges(ItemAnalysisParams& p) {
  DateRange r;
  if (p.analysis == ItemAnalysis::kItemTurnover &&
      !MessageBox("Czy zestawienie wykonane będzie dla jednego przedziału dat@wystawienia dokumentów (standardowo) ?"_mz,
                  1)) {
    // Each period given makes a row of the table of ranges; Esc ends the table.
    while (p.ranges.size() < kMostRanges && AskAnalysisPeriod(r.from, r.to)) p.ranges.push_back(r);
    if (!p.ranges.empty()) return true;
    (void)MessageBox("Nie stworzono tabeli przedziałów dat.@Analiza będzie przeprowadzona dla jednego przedziału."_mz, 0);
  }
  if (!AskAnalysisPeriod(r.from, r.to)) return false;
  p.ranges.push_back(r);
  return true;
}

bool AskItemSort(ItemAnalysisParams& p) {
  const int16_t choice = AskSortOrder("nazw towarów@ilości@marży@wart.zakupu@wart.sprzedaży"_mz, p.descending);
  p.sort = static_cast<ItemSort>(choice);
  return choice != 0;
}

Real ReadPercent(const ShortText& text) { return std::strtold(std::string(text.View()).c_str(), nullptr); }

bool AskNoTurnoverLimits(ItemAnalysisParams& p) {
  ShortText from("0"), to("0");
  if (!AskValueRange("Podaj zakres procentu obrotu, który ma być uznany za brak obrotu."_mz, from, to, 10, 14,
                     ShortText(), ShortText()))
    return false;
  p.noTurnoverFrom = ReadPercent(from);
  p.noTurnoverTo = ReadPercent(to);
  if (p.noTurnoverFrom > p.noTurnoverTo) std::swap(p.noTurnoverFrom, p.noTurnoverTo);
  p.dropZeroStock = MessageBox("Czy odrzucić z zestawienia stany zerowe ?@(Sugeruję `TAK\")."_mz, 1);
  return true;
}

bool AskWhatTheAnalysisAdds(ItemAnalysisParams& p) {
  switch (p.analysis) {
    case ItemAnalysis::kItemTurnover: return AskAnalysisKinds(p.kinds) && AskItemSort(p);
    case ItemAnalysis::kStockTurnover: return AskAnalysisKinds(p.kinds) && AskNoTurnoverLimits(p);
    case ItemAnalysis::kDeposits:
    case ItemAnalysis::kRemanent: return true;
  }
  return false;
}

// Reports that sum purchase values tell of items with several purchase prices.
bool SumsPurchaseValues(ItemAnalysis a) { return a != ItemAnalysis::kRemanent; }

void RunEntry(ItemAnalysis analysis) {
  ItemAnalysisParams p;
  p.analysis = analysis;
  if (AskItemAnalysisParams(p)) (void)RunItemAnalysisReport(p);
}

}  // namespace

bool AskItemAnalysisParams(ItemAnalysisParams& p) {
  if (p.analysis == ItemAnalysis::kStockTurnover)
    (void)MessageBox("Dane będą blokowane kolejno w każdym analizowanym magazynie."_mz, 0);
  if (!AskValue("Podaj tytuł wydruku:"_mz, p.title, 40, 1, ShortText(), ShortText())) return false;
  return AskRanges(p) && AskAnalysisWarehouses(p.warehouses) && AskWhatTheAnalysisAdds(p);
}

bool RunItemAnalysisReport(const ItemAnalysisParams& p) {
  ItemAnalysisOutcome outcome;
  {
    AnalysisProgressBox box;
    RunItemAnalysis(p, AnalysisProgressBox::Show, outcome);
  }
  if (outcome.priceAnomaly && SumsPurchaseValues(p.analysis))
    (void)MessageBox("W Twojej bazie danych występuje problem różnych cen zakupu@dla jednej kartoteki. Nie ma to "
                     "wpływu na wynik niniejszej analizy.@Zgł"_mz,
                     0);
  TellMissingItems(outcome.missingItems);
  return PrintAnalysis(FormatItemAnalysis(p, ReadItemAnalysisRows(p), kAnalysisLinesPerPage));
}

void ItemTurnoverEntry() { RunEntry(ItemAnalysis::kItemTurnover); }

void StockTurnoverEntry() { RunEntry(ItemAnalysis::kStockTurnover); }

void SpecialListsEntry() {
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(0, 1, 1, 0, 0, "Zestawienia specjalne"_mz,
                                  "Podsumowania depozytów u odbiorców@Różnice remanentowe"_mz, ch, scan);
  if (choice == 1) RunEntry(ItemAnalysis::kDeposits);
  if (choice == 2) RunEntry(ItemAnalysis::kRemanent);
}
