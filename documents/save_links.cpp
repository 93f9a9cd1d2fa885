// Where the save meets the fiscal sale flow and the payments.
#include "documents/fiscalise.h"
#include "documents/numbering.h"
#include "documents/payments.h"
#include "documents/save_detail.h"
#include "fiscal/sale.h"

namespace savedetail {

namespace {

// The number the save is about to give, drawn as the save draws it but
// outside its locks: another operator's save in between makes the save give
// the next one. 0 when none can be drawn (the save then says why).
int32_t ExpectedNumber(int32_t warehouse, const DocumentHeader& header, const NumberingSettings& numbering) {
  NextNumber next;
  if (NextDocNumber(header.date, header.kind, NumberTablePath(header.kind, warehouse, numbering), numbering, next) !=
          0 ||
      next.failed)
    return 0;
  return next.coded;
}

FiscalSaleLine FiscalLineOf(const DocLine& line) {
  FiscalSaleLine out;
  out.name1 = line.item.name;
  out.name2 = line.item.name2;
  out.vat = line.item.vat;
  out.price = line.item.saleGross;
  out.quantity = line.quantity;
  out.unit = line.item.unit;
  return out;
}

}  // namespace

FiscalAnswer RunFiscalSaleForDocument(int32_t warehouse, const DocumentHeader& header, std::span<const DocLine> lines,
                                      const NumberingSettings& numbering) {
  FiscalSale sale =
      DocumentSaleHead(header.kind, ExpectedNumber(warehouse, header, numbering), header.mark, header.contractor);
  for (const DocLine& line : lines)
    if (line.quantity != 0) sale.lines.push_back(FiscalLineOf(line));
  switch (FiscalSaveDocument(CurrentFiscalConfig(), header.payment, sale)) {
    case FiscalSaveOutcome::kPrinted: return FiscalAnswer::kPrinted;
    case FiscalSaveOutcome::kGiveUp: return FiscalAnswer::kGivenUp;
    case FiscalSaveOutcome::kNotFiscal:
    case FiscalSaveOutcome::kSaveWithout: return FiscalAnswer::kNotNeeded;
  }
  return FiscalAnswer::kNotNeeded;
}

// The payment of a document saved as paid at once. It runs after the
// header and lines are written, so the locks stand naglowki, stany_mg,
// specyfik, then kasa____, the order every payment write keeps.
int16_t WriteDocumentPayment(int32_t warehouse, const DocumentHeader& header, const DocumentTotals& totals,
                             Real paidVat) {
  const DocRef doc{header.kind, header.coded, header.mark.Copy(1, 4)};
  return WriteAutoPayment(warehouse, doc, header.date, PaymentSettingsFromConfig(), PaidVatFor(paidVat, totals.total)) <
                 0
             ? kPGSqlFailed
             : 0;
}

}  // namespace savedetail
