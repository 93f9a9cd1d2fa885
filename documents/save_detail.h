// Inside the save and the entry: SQL pieces of document lines and the
// links to the fiscal flow and the payments. Other folders do not include it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "documents/docsave.h"
#include "sqltable/pgconn.h"

namespace savedetail {

// A Mazovia text as a quoted SQL literal in the database's code page.
std::string TextSql(const ShortText& text);
// A quantity or price as an SQL number with seven decimals.
std::string NumberSql(Real value);
// A number of a result cell; 0 when it does not parse.
Real RealOf(std::string_view text);
int64_t IntOf(std::string_view text);
// A text cell in Mazovia.
ShortText TextOf(const PGResult& res, int r, int c);

// The column list of the work table ("nazwa,nazwa_,...,il_zamowiona").
std::string WorkColumns();
// The values of a line in the order of WorkColumns, as SQL literals.
std::string WorkValues(const DocLine& line);
// The line of result row r whose columns begin at c with the row id, then WorkColumns.
DocLine WorkLineOf(const PGResult& res, int r, int c);

// --- Links to the modules that meet the save ---
// What the fiscal sale flow answered. The flow asks its own question when
// the printer fails: kGivenUp is the operator's "no" to saving without it.
enum class FiscalAnswer : int8_t { kNotNeeded, kPrinted, kGivenUp };
// The one call site of the fiscal sale flow for a document of kind 1, 2 or 4
// of the warehouse, before the save's transaction: the receipt carries the
// number the save is about to give (drawn outside the locks).
FiscalAnswer RunFiscalSaleForDocument(int32_t warehouse, const DocumentHeader& header, std::span<const DocLine> lines,
                                      const NumberingSettings& numbering);
// The one call site of the payment of a saved document; runs inside the
// save's transaction under its locks; the layer's code.
// paidVat above 0 splits a kind 2 document's payment into the VAT payment and the rest.
[[nodiscard]] int16_t WriteDocumentPayment(int32_t warehouse, const DocumentHeader& header,
                                           const DocumentTotals& totals, Real paidVat);

// --- Steps of the save before its transaction (savesteps.cpp) ---
inline constexpr int kConfigLineStockChange = 179;  // 0 never, 1 ask, 2 always change stock
inline constexpr int kConfigLineVatPayment = 184;   // 1 or 2: ask for the VAT payment
inline constexpr int kConfigLinePlaceDate = 54;     // 2: receipts set the date in old items' place field
inline constexpr int kConfigLinePlaceKind = 116;    // what the place field holds

// What a save does to stock for its kind: the kind's own effect, none, or
// the question first. Kinds 16 and 17 keep their own effect.
enum class StockDecision : int8_t { kKindEffect, kNoChange, kAsk };
StockDecision DecideStockChange(int kind, const std::array<bool, 19>& decidedKinds, int option);
// Whether the save of a document asks for its VAT payment.
bool AsksVatPayment(int kind, int option, Real total);
// The payment step's part: never more than the document's total as written.
Real PaidVatFor(Real paid, Real total);

// UpdateCatalogueFromReceipt: what a receipt of kind 6, 7 or 12 writes
// into the empty place field of its items: the document's date in the
// short layout where the field holds dates, its year where it is text;
// empty when nothing is written.
ShortText ReceiptPlaceValue(int kind, const SaveSettings& settings, int32_t date);
// Writes value into the items' empty place field, inside the save's transaction; the layer's code.
[[nodiscard]] int16_t UpdateCatalogueFromReceipt(std::span<const DocLine> lines, const ShortText& value);

// CorrectCatalogueVat: the lines whose VAT differs from their item's in the
// catalogue (catalogue[i] is the item of lines[i]), and what they cost in
// purchase prices; the correction runs only when that is above 0.
struct VatChange {
  DocLine line;
  ItemData catalogue;
};
std::vector<VatChange> VatChangesOf(std::span<const DocLine> lines, std::span<const ItemData> catalogue);
Real VatChangeCost(std::span<const VatChange> changes);
// After the saved document doc: the pair of transfers of the warehouse to
// itself, out under the catalogue's VAT and prices and in under the lines',
// and the catalogue's items take the lines' VAT and prices. Database
// failures end the program through CheckDBError.
void CorrectCatalogueVat(int32_t warehouse, const DocumentHeader& doc, std::span<const DocLine> lines,
                         const SaveSettings& settings);

// The screens of the two steps; false when the save is given up.
// Step 6: the VAT payment of a kind 2 document into settings.paidVat.
bool AskVatPayment(int kind, std::span<const DocLine> lines, SaveSettings& settings);
// The stock effect's question; a refusal clears settings.changeStock.
void DecideStockOfSave(int kind, SaveSettings& settings);

}  // namespace savedetail
