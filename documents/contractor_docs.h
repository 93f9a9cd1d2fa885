// A contractor's goods documents in a warehouse and his balance there: what
// the contractor list shows on its keys F2 (receivables) and F4 (documents).
// Reads only; nothing in the database changes.
#pragma once

#include <cstdint>
#include <vector>

#include "base/real.h"
#include "documents/payments.h"

// One goods document naming the contractor.
struct ContractorDocument {
  DocRef key;
  int32_t date = 0;
  Real total = 0;
  bool root = false;  // a root of settlement (invoice, purchase, order): balance holds its walk
  Real balance = 0;
};

// The goods documents of the warehouse that name the contractor of the
// catalogue letter ('O' customers, 'd' suppliers, as dok_plat marks kinds),
// in date, kind and number order; each root with its balance.
std::vector<ContractorDocument> ContractorDocuments(int32_t warehouse, char contractorLetter, int32_t contractor,
                                                    const PaymentSettings& s);
// F2: the contractor's balance in the warehouse, in a box under his name.
void ShowContractorBalance(int32_t warehouse, char contractorLetter, int32_t contractor, const ShortText& name);
// F4: the list of his documents with their balances; Enter on one shows the
// documents related to it (ListRelatedDocuments), Esc ends.
void ShowContractorDocuments(int32_t warehouse, char contractorLetter, int32_t contractor, const ShortText& name);
