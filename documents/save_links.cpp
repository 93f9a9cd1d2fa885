// Where the save meets the fiscal sale flow and the payments. Each is one
// call site: the fiscal flow and the payments are other modules' work, and
// until they are linked here a document has no fiscal step and no payment.
#include "documents/save_detail.h"

namespace savedetail {

// The fiscal sale flow of a retail sale or invoice is not linked yet: no
// document is sent to a fiscal printer, so the save goes on unmarked.
FiscalAnswer RunFiscalSaleForDocument(const DocumentHeader&, std::span<const DocLine>, const DocumentTotals&) {
  return FiscalAnswer::kNotNeeded;
}

// The payments of documents are not linked yet: nothing is written.
int16_t WriteDocumentPayment(int32_t, const DocumentHeader&, const DocumentTotals&) { return 0; }

}  // namespace savedetail
