// The fiscal sale: a saved sale document goes to the fiscal printer by the
// route of the configured printer type: POSNET or ELZAB driven from this
// process, or a receipt job file for the fiscal print server. The document
// comes as plain values (FiscalSale), so that the document save, which holds
// the lines being entered, and the later fiscalisation, which reads a saved
// document from the tables, both hand it over the same way.
#pragma once

#include <cstdint>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "fiscal/fiscalconfig.h"

// One line of the document: the two name parts, the VAT rate text, the gross
// unit price in zloty, the quantity and the unit of measure.
struct FiscalSaleLine {
  ShortText name1, name2;
  ShortText vat;
  Real price = 0;
  Real quantity = 0;
  ShortText unit;
};

struct FiscalSale {
  int kind = 1;                 // document kind: 2 gives "F ", 4 "f ", others "P " on the receipt
  int mode = kFiscalModeRetail; // fiscal mode of the kind (FiscalModeOfKind)
  ShortText number;             // the decoded document number
  ShortText suffix;             // printed behind the number
  bool contractorIsFirm = false;  // the contractor's firm field is "T" (or it is not the document's)
  int32_t cashierNumber = 0;
  ShortText cashierName;        // the user's name as the users' list holds it
  std::vector<FiscalSaleLine> lines;
};

// The payment text that means cash.
bool IsCashPaymentText(const ShortText& paymentText);
// The fiscal mode of a document kind: 1 retail for kind 1, 2 for kind 2, 4 for kind 4, else 0.
int FiscalModeOfKind(int kind);
// Cashier code of three characters: the user's number in two digits and the first
// character of the plain name, "Q" when that is no letter.
ShortText CashierCode(int32_t number, const ShortText& name);
// "F ", "f " or "P " with the number and the suffix.
ShortText ReceiptNumberTextOf(const FiscalSale& sale);
// Both name parts joined, cut and blank-padded to width, the rate text over its end.
ShortText ReceiptLineName(const FiscalSaleLine& line, int width);
// Unit price and line value in grosz as the POSNET printer and the job take them.
int64_t LinePriceGrosz(const FiscalSaleLine& line);
int64_t LineValueGrosz(const FiscalSaleLine& line);
// Number of lines of quantity above zero; -1 when a line has a negative quantity.
int SaleLineCount(const FiscalSale& sale);

// Asks the two questions about a line whose VAT rate the printer does not know;
// true when the operator allowed the line (it then takes row 1).
bool AllowUnmappedVat(const ShortText& name);

// The routes: true when the sale reached the printer (ServerSale also when it
// showed its own message). Width is 40 or 24.
bool PosnetSale(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale, int width);
bool ElzabSale(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale);
bool ServerSale(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale);

// Whether the configuration sends the sale to a printer at all (the kind's
// flags, and for mode 4 with only flag 2 set, a contractor who is no firm).
bool SaleGoesToPrinter(const FiscalConfig& config, const FiscalSale& sale);
// The route of the configured printer type; true when the sale reached the printer.
bool RunFiscalRoute(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale);

// What the document save does after the fiscal step.
enum class FiscalSaveOutcome {
  kNotFiscal,        // no route for this document: save it, no fiscal mark
  kPrinted,          // the sale reached the printer: save it with the fiscal mark
  kSaveWithout,      // the printer failed, the operator chose to save without a fiscal record
  kGiveUp,           // the printer failed, the operator chose not to save: stay in the document
};
// The fiscal step of the document save for a just-saved sale: finds the route, runs
// it and, when it fails, asks "Czy pomimo braku możliwości zapisu w drukarce
// fiskalnej@zapisać dane na dysku (w komputerze) ?".
[[nodiscard]] FiscalSaveOutcome FiscalSaveDocument(const FiscalConfig& config, const ShortText& paymentText,
                                                   const FiscalSale& sale);
