// The dispatch table of the menu entries' operations.
#include "app/operations.h"

#include <iterator>

#include "documents/docentry.h"
#include "documents/doclist.h"
#include "documents/fiscalsetup.h"
#include "documents/payments.h"
#include "exchange/workfile.h"
#include "fiscal/printerops.h"
#include "master/contractor_screens.h"
#include "master/dictionary_screens.h"
#include "master/items.h"
#include "reports/analyses.h"
#include "reports/cashanalysis.h"
#include "reports/itemanalyses.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace {

using OperationFn = void (*)(AppState&);

void CashDocuments(AppState& state) {
  if (WarehouseReady(state)) PaymentDocuments(state.warehouse);
}

// The analyses work over the warehouses they ask for: no current one is needed.
void GoodsAnalyses(AppState&) { TurnoverAnalysisEntry(); }
void ExtendedGoodsAnalyses(AppState&) { ItemTurnoverEntry(); }
void StockLists(AppState&) { StockTurnoverEntry(); }
void SpecialLists(AppState&) { SpecialListsEntry(); }
void CashAnalyses(AppState&) { CashAnalysesEntry(); }

void DepositSettlement(AppState& state) {
  if (WarehouseReady(state)) AutoSettleDeposits(state.warehouse);
}

// The work file's operations offer the current warehouse's documents and stock.
void WorkFiles(AppState& state) {
  if (!WarehouseReady(state)) return;
  WorkFileMenu(state.warehouse);
}

// New goods documents of the current warehouse.
void NewGoodsDocuments(AppState& state) {
  if (!WarehouseReady(state)) return;
  ::DocumentEntry(state.warehouse);
}

void ManageUsers(AppState&) { (void)UserList(UserListMode::kManage); }

// The catalogue shows the current warehouse's stock beside the items.
void GoodsCatalogue(AppState& state) {
  if (!WarehouseReady(state)) return;
  ItemCatalogue(state.warehouse);
}

// The current warehouse, chosen from the catalogue of warehouses.
void ChooseWarehouseEntry(AppState& state) {
  (void)ChooseCurrentWarehouse(false, state.warehouse, state.warehouseSpecial);
}

void ContractorCatalogues(AppState&) { ContractorCataloguesMenu(); }
// The operator's own fiscal printer settings; they take effect at the next start.
void FiscalPrinterSetup(AppState&) { (void)EditFiscalConfig(); }
// Reports, clock and drawer of the operator's fiscal printer.
void FiscalPrinterReports(AppState&) { FiscalPrinterMenu(CurrentFiscalConfig()); }
void OtherCatalogues(AppState&) { DictionaryCataloguesMenu(); }

struct Operation {
  MenuOp op;
  OperationFn run;
};

// One row per operation, in the order of MenuOp. Modules plug in here.
constexpr Operation kOperations[] = {
    {MenuOp::kNewDocuments, NewGoodsDocuments},
    {MenuOp::kDocuments, [](AppState& s) { if (WarehouseReady(s)) DocumentList(s.warehouse); }},
    {MenuOp::kChooseWarehouse, ChooseWarehouseEntry},
    {MenuOp::kGoodsCatalogue, GoodsCatalogue},
    {MenuOp::kWorkFiles, WorkFiles},
    {MenuOp::kGoodsCheck, NotYetAvailable},
    {MenuOp::kCashDocuments, CashDocuments},
    {MenuOp::kGoodsAnalyses, GoodsAnalyses},
    {MenuOp::kDocumentAnalyses, NotYetAvailable},
    {MenuOp::kCashAnalyses, CashAnalyses},
    {MenuOp::kAccountingAnalyses, NotYetAvailable},
    {MenuOp::kExtendedGoodsAnalyses, ExtendedGoodsAnalyses},
    {MenuOp::kStockLists, StockLists},
    {MenuOp::kSpecialLists, SpecialLists},
    {MenuOp::kFiscalReports, FiscalPrinterReports},
    {MenuOp::kUsers, ManageUsers},
    {MenuOp::kContractors, ContractorCatalogues},
    {MenuOp::kOtherCatalogues, OtherCatalogues},
    {MenuOp::kAccountingExport, NotYetAvailable},
    {MenuOp::kProgramConfig, NotYetAvailable},
    {MenuOp::kMainPrinter, NotYetAvailable},
    {MenuOp::kFiscalPrinter, FiscalPrinterSetup},
    {MenuOp::kReceiptPrinter, NotYetAvailable},
    {MenuOp::kDeleteDocuments, NotYetAvailable},
    {MenuOp::kDepositSettlement, DepositSettlement},
    {MenuOp::kBook, NotYetAvailable},
    {MenuOp::kMileage, NotYetAvailable},
    {MenuOp::kBookedDocuments, NotYetAvailable},
    {MenuOp::kChooseBookFirm, NotYetAvailable},
};

constexpr bool InMenuOpOrder() {
  for (std::size_t i = 0; i < std::size(kOperations); ++i)
    if (static_cast<std::size_t>(kOperations[i].op) != i) return false;
  return std::size(kOperations) == static_cast<std::size_t>(MenuOp::kCount);
}
static_assert(InMenuOpOrder(), "one row per operation, in the order of MenuOp");

}  // namespace

void RunMenuOp(MenuOp op, AppState& state) {
  const auto i = static_cast<std::size_t>(op);
  if (i < std::size(kOperations)) kOperations[i].run(state);
}

bool WarehouseReady(const AppState& state) {
  if (state.warehouse == 0) {
    (void)MessageBox(kNoWarehouseText, 0);
    return false;
  }
  if (state.warehouseSpecial) {
    (void)MessageBox(kSpecialWarehouseText, 0);
    return false;
  }
  return true;
}

void NotYetAvailable(AppState&) { (void)MessageBox(kNotYetAvailableText, 0); }
