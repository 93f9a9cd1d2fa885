// The operations that menu entries run, and the state of the application
// they share. One operation per menu road; the table in operations.cpp ties
// each to its function. A module that is not in this program yet is served
// by NotYetAvailable, which says so in a box; a module that arrives replaces
// its row of that table, nothing else.
#pragma once

#include <cstdint>

#include "app/appstate.h"
#include "base/mazovia.h"
#include "base/shorttext.h"

enum class MenuOp : uint8_t {
  kNewDocuments,       // goods documents: new ones only
  kDocuments,          // goods documents: new ones and changes
  kChooseWarehouse,    // the current warehouse
  kGoodsCatalogue,
  kWorkFiles,
  kGoodsCheck,
  kCashDocuments,      // payment and cash documents
  kGoodsAnalyses,
  kDocumentAnalyses,
  kCashAnalyses,
  kAccountingAnalyses,
  kExtendedGoodsAnalyses,
  kStockLists,
  kSpecialLists,
  kFiscalReports,
  kUsers,
  kContractors,
  kOtherCatalogues,
  kAccountingExport,
  kProgramConfig,
  kMainPrinter,
  kFiscalPrinter,
  kReceiptPrinter,
  kDeleteDocuments,
  kDepositSettlement,
  kBook,
  kMileage,
  kBookedDocuments,
  kChooseBookFirm,
  kCount
};

inline constexpr ShortText kNotYetAvailableText = "Ta opcja nie jest jeszcze dostępna."_mz;
inline constexpr ShortText kNoWarehouseText = "Nie wybrano magazynu aktualnego !"_mz;
inline constexpr ShortText kSpecialWarehouseText = "Magazyn specjalny.@Nie możesz w nim pracować w tej opcji."_mz;

// Runs the operation of a menu entry.
void RunMenuOp(MenuOp op, AppState& state);
// True when a current warehouse is chosen and is not a special one; otherwise
// says which of the two is wrong in a box.
bool WarehouseReady(const AppState& state);
// The box of an entry whose module is not in this program yet.
void NotYetAvailable(AppState& state);
