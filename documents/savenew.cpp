// SaveNewDocument: the save with its messages and questions, around SaveDocument.
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "config/konfigur.h"
#include "documents/docdetail.h"
#include "documents/entry_detail.h"
#include "documents/numbering.h"
#include "documents/save_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace {

// How often a save tries the next number when the one it drew was taken.
constexpr int kKeyAttempts = 3;
// Configuration line: kind 16 reserves goods for customers' orders.
constexpr int kConfigLineOrdersReserve = 115;

ShortText ReductionNotice(Real total) {
  return "Program, na skutek braku towaru w stanach zmniejszył sam@"_mz + "wartość dokumentu na "_mz +
         FormatMoney(0, 2, total) + "."_mz + "Pokaż dokument klientowi, niech sprawdzi, czego nie może@"_mz +
         "otrzymać."_mz;
}

bool FiscalKind(int kind) { return kind == 1 || kind == 2 || kind == 4; }

// The fiscal step before anything is written: false when the user gives up.
bool FiscalStep(int32_t warehouse, DocumentHeader& header, const std::vector<DocLine>& lines,
                const SaveSettings& settings) {
  if (!FiscalKind(header.kind)) return true;
  switch (savedetail::RunFiscalSaleForDocument(warehouse, header, lines, settings.numbering)) {
    case savedetail::FiscalAnswer::kNotNeeded: return true;
    case savedetail::FiscalAnswer::kPrinted: header.cash = FiscalMark(header.cash == kCashDocument); return true;
    case savedetail::FiscalAnswer::kGivenUp: return false;
  }
  return true;
}

// Step 20: the notice when the reductions changed the document's value.
void TellReduction(const SaveResult& r) {
  if (!r.reduced || CurrentUserRight(UserRight::kBelowZero)) return;
  auto rounded = [](Real v, int places) { return RoundHalfAway(v * PowerReal(10, places)); };
  if (rounded(r.totals.total, 2) != rounded(r.totalBeforeReduction, 2) ||
      rounded(r.totals.total, 1) != rounded(r.totalBeforeReduction, 1))
    (void)MessageBox(ReductionNotice(r.totals.total), 0);
}

}  // namespace

SaveSettings SaveSettingsFromConfig() {
  SaveSettings s;
  s.numbering = NumberingSettingsFromConfig();
  s.vatMode = ConfigInt(kConfigLineInvoiceVatMode);
  s.orderHandling = ConfigInt(kConfigLineOrdersReserve) != 0;
  s.respectOrders = ConfigInt(kConfigLineOrdersReserve) == 2;
  s.mayGoBelowZero = CurrentUserRight(UserRight::kBelowZero);
  s.stockChangeOption = ConfigInt(savedetail::kConfigLineStockChange);
  s.vatPaymentOption = ConfigInt(savedetail::kConfigLineVatPayment);
  s.placeOnReceipt = ConfigInt(savedetail::kConfigLinePlaceDate) == 2;
  s.placeFieldKind = ConfigInt(savedetail::kConfigLinePlaceKind);
  s.correctVat = ConfigInt(entrydetail::kConfigLineVatChange) == 1;
  return s;
}

SaveResult SaveNewDocument(int32_t warehouse, DocumentHeader& header, const ShortText& workTable,
                           const SaveSettings& given) {
  SaveResult result;
  std::vector<DocLine> lines;
  CheckDBError(WorkLinesRead(workTable, lines));
  if (!entrydetail::PassesSaveChecks(header, lines, given.vatMode)) return result;
  SaveSettings settings = given;
  if (!savedetail::AskVatPayment(header.kind, lines, settings)) return result;
  savedetail::DecideStockOfSave(header.kind, settings);
  if (!FiscalStep(warehouse, header, lines, settings)) return result;
  (void)MessageBox(kSaveLinesText, 2);
  for (int attempt = 0; attempt < kKeyAttempts; ++attempt) {
    CheckDBError(SaveDocument(warehouse, header, lines, settings, result));
    if (result.outcome != SaveOutcome::kKeyTaken) break;
  }
  if (result.outcome != SaveOutcome::kSaved) return result;
  savedetail::CorrectCatalogueVat(warehouse, header, lines, settings);
  TellReduction(result);
  if (header.kind == 1 && result.totals.total < 0)
    CheckDBError(AssignAdditionalNumber(header.kind, header.coded, header.mark, header.date, warehouse,
                                        settings.numbering)
                     .code);
  CheckDBError(WorkTableClear(workTable));
  return result;
}

int16_t ComputeSavedTotals(int32_t warehouse, int kind, int32_t coded, const ShortText& mark, int vatMode,
                           DocumentTotals& totals) {
  PGResult res;
  const int16_t code = PGRunQueryWithTup(
      "SELECT nr_towaru,vat,ilosc,c_zak_netto,c_zak_brutto,c_spr_netto,c_spr_brutto,c_spr_n_katal,c_spr_b_katal "
      "FROM " + docdetail::SqlTable(WarehouseTablePath(warehouse, "specyfik")) + " WHERE typ_dok=" +
          std::to_string(kind) + " AND nr_dok=" + std::to_string(coded) + " AND znak_dok=" +
          savedetail::TextSql(mark) + " ORDER BY pozycja",
      res);
  if (code != 0) return code;
  std::vector<DocLine> lines(static_cast<std::size_t>(res.Rows()));
  for (int r = 0; r < res.Rows(); ++r) {
    DocLine& l = lines[static_cast<std::size_t>(r)];
    l.item.number = static_cast<int32_t>(savedetail::IntOf(res.Value(r, 0)));
    l.item.vat = savedetail::TextOf(res, r, 1);
    l.quantity = savedetail::RealOf(res.Value(r, 2));
    l.item.buyNet = savedetail::RealOf(res.Value(r, 3));
    l.item.buyGross = savedetail::RealOf(res.Value(r, 4));
    l.item.saleNet = savedetail::RealOf(res.Value(r, 5));
    l.item.saleGross = savedetail::RealOf(res.Value(r, 6));
    l.catalogueNet = savedetail::RealOf(res.Value(r, 7));
    l.catalogueGross = savedetail::RealOf(res.Value(r, 8));
  }
  totals = ComputeTotals(lines, KindTotalMethod(kind, vatMode));
  return 0;
}
