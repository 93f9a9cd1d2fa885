// The parameters dialog and the run of the turnover analysis.
#include "reports/analyses.h"

#include "base/mazovia.h"
#include "reports/dialogs.h"
#include "reports/dbfsave.h"
#include "reports/sqlsteps.h"
#include "tui/askvalue.h"
#include "tui/msgbox.h"

namespace {

bool AskSort(TurnoverParams& p) {
  const int16_t choice =
      AskSortOrder("nazwa@dostawca@obrót (A)@stan do daty obrotu (B)@%(A/B)@cena sprzedaży"_mz, p.descending);
  p.sort = static_cast<TurnoverSort>(choice);
  return choice != 0;
}

// Suppliers of the catalogue's items, then the items (of the marked suppliers
// when any): nothing marked leaves that filter out, Esc gives up.
bool AskSuppliersAndItems(TurnoverParams& p) {
  const std::string catalogue = SqlName("dane\\kat_tow_");
  if (!PickQueryRows("Wybierz dostawców, na których towarach dokonywano operacji:"_mz,
                     "SELECT dostawca,MAX(dostawca_opis) FROM " + catalogue +
                         " WHERE dostawca<>0 GROUP BY dostawca ORDER BY dostawca",
                     p.suppliers))
    return false;
  const std::string ofSuppliers = p.suppliers.empty() ? "" : " WHERE dostawca IN (" + NumberList(p.suppliers) + ")";
  return PickQueryRows("Wybierz konkretne towary, na których dokonywano operacji:"_mz,
                       "SELECT nr_wewn,nazwa FROM " + catalogue + ofSuppliers + " ORDER BY nazwa,nr_wewn", p.items);
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
  return AskAnalysisPeriod(p.from, p.to) && AskAnalysisWarehouses(p.warehouses) &&
         AskSuppliersAndItems(p) && AskAnalysisKinds(p.kinds) &&
         AskSort(p);
}

bool RunTurnoverReport(const TurnoverParams& p) {
  std::vector<int32_t> missing;
  {
    AnalysisProgressBox box;
    RunTurnoverAnalysis(p, AnalysisProgressBox::Show, missing);
  }
  TellMissingItems(missing);
  const bool printed = PrintAnalysis(FormatTurnoverReport(p, ReadTurnoverRows(p), kAnalysisLinesPerPage));
  if (MessageBox("Czy zapisać zestawienie w standardzie DBF-3 ?"_mz, 1)) (void)SaveTurnoverDbf();
  return printed;
}

void TurnoverAnalysisEntry() {
  TurnoverParams p;
  if (AskTurnoverParams(p)) (void)RunTurnoverReport(p);
}
