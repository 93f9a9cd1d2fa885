// The dispatch table of the menu entries' operations.
#include "app/operations.h"

#include <iterator>

#include "documents/docentry.h"
#include "master/items.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace {

using OperationFn = void (*)(AppState&);

// Goods and cash documents belong to a warehouse: they need the current one
// before anything else is asked.
void DocumentEntry(AppState& state) {
  if (!WarehouseReady(state)) return;
  NotYetAvailable(state);
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

struct Operation {
  MenuOp op;
  OperationFn run;
};

// One row per operation, in the order of MenuOp. Modules plug in here.
constexpr Operation kOperations[] = {
    {MenuOp::kNewDocuments, NewGoodsDocuments},
    {MenuOp::kDocuments, NewGoodsDocuments},
    {MenuOp::kChooseWarehouse, NotYetAvailable},
    {MenuOp::kGoodsCatalogue, GoodsCatalogue},
    {MenuOp::kWorkFiles, NotYetAvailable},
    {MenuOp::kGoodsCheck, NotYetAvailable},
    {MenuOp::kCashDocuments, DocumentEntry},
    {MenuOp::kGoodsAnalyses, NotYetAvailable},
    {MenuOp::kDocumentAnalyses, NotYetAvailable},
    {MenuOp::kCashAnalyses, NotYetAvailable},
    {MenuOp::kAccountingAnalyses, NotYetAvailable},
    {MenuOp::kExtendedGoodsAnalyses, NotYetAvailable},
    {MenuOp::kStockLists, NotYetAvailable},
    {MenuOp::kSpecialLists, NotYetAvailable},
    {MenuOp::kFiscalReports, NotYetAvailable},
    {MenuOp::kUsers, ManageUsers},
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
