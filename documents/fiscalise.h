// The fiscal side of saved sale documents: a document of a warehouse read from
// its header (naglowki) and lines (specyfik), with the names and units of its
// items from the catalogue (kat_tow_) and the contractor's firm field from
// the customers (odbiorcy), handed to the fiscal sale (fiscal/sale.h).
#pragma once

#include <cstdint>

#include "base/shorttext.h"
#include "documents/kindrules.h"
#include "fiscal/fiscalconfig.h"
#include "fiscal/sale.h"


enum class SavedSaleRead { kRead, kGone, kFailed };

// The sale of a document before its lines: kind, mode, the decoded number
// with its mark, the current user as cashier and, for kind 4, the
// contractor's firm field. The save and the later fiscalisation both start here.
FiscalSale DocumentSaleHead(int kind, int32_t coded, const ShortText& sign, int32_t contractor);

// Reads the saved document into sale (kind, mode, number, lines in position
// order, contractor's firm field, the current user as cashier) and its payment
// text (sposob_rozlicz). kGone when its header is not in the table.
SavedSaleRead ReadSavedSale(const DocumentKey& key, FiscalSale& sale, ShortText& paymentText);

// The later fiscalisation of a saved document: shows "Trwa wydruk fiskalny...",
// reads it and runs the route of the configured printer. A document removed in
// the meantime is told with "Ktoś w międzyczasie skasował fiskalizowany
// dokument !". A document that holds the fiscal mark already is not printed
// again; a printed one gets it ("F" cash, "f" other). True when the sale
// reached the printer.
bool FiscaliseDocument(const FiscalConfig& config, const DocumentKey& key);
