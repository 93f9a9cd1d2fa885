// The functions the application registers with the catalogues.
#include "app/catalogue_links.h"

#include "app/operations.h"
#include "documents/contractor_docs.h"
#include "documents/docentry.h"
#include "documents/numbering.h"
#include "exchange/workfile.h"
#include "master/contractor_hooks.h"
#include "master/dictionary_screens.h"
#include "sqltable/dbapp.h"

namespace {

const AppState* gState = nullptr;

// The contractor of a customer or supplier row with a ready current warehouse;
// false (after the box of WarehouseReady) otherwise. Warehouses have no receivables.
bool ReadyFor(ContractorKind kind, int32_t number, Contractor& c) {
  if (kind == ContractorKind::kWarehouse || gState == nullptr || !WarehouseReady(*gState)) return false;
  bool found = false;
  CheckDBError(ContractorFind(kind, number, c, found));
  return found;
}

// The letter dok_plat gives the kinds of the catalogue.
char LetterOf(ContractorKind kind) { return kind == ContractorKind::kSupplier ? 'd' : 'O'; }

void Receivables(ContractorKind kind, int32_t number) {
  Contractor c;
  if (ReadyFor(kind, number, c))
    ShowContractorBalance(gState->warehouse, LetterOf(kind), number, c[KontrahentCol::nazwa]);
}

void Documents(ContractorKind kind, int32_t number) {
  Contractor c;
  if (ReadyFor(kind, number, c))
    ShowContractorDocuments(gState->warehouse, LetterOf(kind), number, c[KontrahentCol::nazwa]);
}

// The entry's Ctrl+F7: the work file into the line list of the warehouse.
void TakeWorkFileIntoEntry(int32_t warehouse) { (void)AddWorkFileToSpecification(warehouse); }

}  // namespace

void RegisterCatalogueLinks(const AppState& state) {
  gState = &state;
  SetContractorDocumentHooks({Receivables, Documents});
  SetOtherCatalogueRow("katalog numerów dokumentów"_mz, RebuildHeaderList);
  SetEntryWorkFileHook(TakeWorkFileIntoEntry);
}
