// What the documents lend the contractor list. The documents lie above the
// catalogues, so the application registers these functions at its start:
// F2 shows a contractor's balance and receivables, F4 his documents. A key
// whose function is not registered does nothing.
#pragma once

#include <cstdint>

#include "master/contractors.h"

// A function of a key of the list, told the catalogue and the number of the row under the bar.
using ContractorDocumentFn = void (*)(ContractorKind kind, int32_t number);

struct ContractorDocumentHooks {
  ContractorDocumentFn receivables = nullptr;  // F2
  ContractorDocumentFn documents = nullptr;    // F4
};

// Registers the functions; the default (all null) takes them away.
void SetContractorDocumentHooks(const ContractorDocumentHooks& hooks);
// The functions registered now.
const ContractorDocumentHooks& ContractorDocumentHooksNow();
