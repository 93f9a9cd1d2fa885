// The dispatch table of the menu entries' operations.
#include "app/operations.h"

#include <iterator>

#include "reports/analyses.h"
#include "tui/msgbox.h"

namespace {

using OperationFn = void (*)(AppState&);

// Goods and cash documents belong to a warehouse: they need the current one
// before anything else is asked.
// The turnover analysis works over every warehouse: no current one is needed.
void GoodsAnalyses(AppState&) { TurnoverAnalysisEntry(); }

void DocumentEntry(AppState& state) {
  if (!WarehouseReady(state)) return;
  NotYetAvailable(state);
}

struct Operation {
  MenuOp op;
  OperationFn run;
};

// One row per operation, in the order of MenuOp. Modules plug in here.
constexpr Operation kOperations[] = {
    {MenuOp::kNewDocuments, DocumentEntry},
    {MenuOp::kDocuments, DocumentEntry},
    {MenuOp::kChooseWarehouse, NotYetAvailable},
    {MenuOp::kGoodsCatalogue, NotYetAvailable},
    {MenuOp::kWorkFiles, NotYetAvailable},
    {MenuOp::kGoodsCheck, NotYetAvailable},
    {MenuOp::kCashDocuments, DocumentEntry},
    {MenuOp::kGoodsAnalyses, GoodsAnalyses},
    {MenuOp::kDocumentAnalyses, NotYetAvailable},
    {MenuOp::kCashAnalyses, NotYetAvailable},
    {MenuOp::kAccountingAnalyses, NotYetAvailable},
    {MenuOp::kExtendedGoodsAnalyses, NotYetAvailable},
    {MenuOp::kStockLists, NotYetAvailable},
    {MenuOp::kSpecialLists, NotYetAvailable},
    {MenuOp::kFiscalReports, NotYetAvailable},
    {MenuOp::kUsers, NotYetAvailable},
    {MenuOp::kContractors, NotYetAvailable},
    {MenuOp::kOtherCatalogues, NotYetAvailable},
    {MenuOp::kAccountingExport, NotYetAvailable},
    {MenuOp::kProgramConfig, NotYetAvailable},
    {MenuOp::kMainPrinter, NotYetAvailable},
    {MenuOp::kFiscalPrinter, NotYetAvailable},
    {MenuOp::kReceiptPrinter, NotYetAvailable},
    {MenuOp::kDeleteDocuments, NotYetAvailable},
    {MenuOp::kDepositSettlement, NotYetAvailable},
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
