// Inside the entry and the save: the header form of a new document, the
// checks that a line's quantity and prices pass before it goes on the line
// list, and the checks of the whole line list before it is saved. The
// decisions are pure functions over values (tested by tables); the screens
// around them read the tables and ask. Other folders do not include it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/mazovia.h"
#include "base/real.h"
#include "base/shorttext.h"
#include "documents/docsave.h"
#include "master/contractors.h"

namespace entrydetail {

// --- Configuration lines read here ---
inline constexpr int kConfigPurchaseLessBy = 7;        // real: sale price less this gives the purchase price
inline constexpr int kConfigDiscountReminder = 8;      // 1: remind of the contractor's discount
inline constexpr int kConfigLongReceipt = 24;          // 0 off, < 0 refuses, > 0 asks past |n| lines
inline constexpr int kConfigLinkedContractor = 88;    // 1: the contractor linked to the warehouse is proposed
inline constexpr int kConfigOrdersReserve = 115;       // 1 orders reserve goods, 2 and the reserve is kept
inline constexpr int kConfigInvoiceDays = 120;         // days to the settlement of an invoice
inline constexpr int kConfigSettleFromSale = 122;      // 1: the settlement counts from the sale date
inline constexpr int kConfigProposedMarks = 132;       // 1 or 2: dok_plat's mark is proposed
inline constexpr int kConfigRetailPayments = 142;      // 1: retail sales take a form of payment
inline constexpr int kConfigMarkFixed = 144;           // 1: a proposed mark cannot be changed
inline constexpr int kConfigDepositQuestion = 197;     // deposit option 0..3
inline constexpr int kConfigReceiptHeader = 203;       // 2 or 3: the retail sale asks its header
inline constexpr int kConfigInvoiceMinimum = 204;      // text: the least value of a kind 2 invoice

// --- The header ---
// Whom the header names and whether it must.
struct HeaderRules {
  bool hasContractor = false;
  ContractorKind catalogue = ContractorKind::kCustomer;
  bool required = false;   // the save waits for a contractor
  bool needsTaxId = false; // the contractor should have a NIP, PESEL or REGON
};
// The rules of a kind; dokPlatLetter is column 3 of its dok_plat row (' ' when none).
HeaderRules HeaderRulesOf(int kind, char dokPlatLetter);
// Whether the header form is shown before the save: always but for a
// retail sale, which asks it only when the receipt-data option is 2 or 3.
bool HeaderFormShown(int kind, int receiptDataOption);
// The proposed form of payment: the field of the configured defaults (receipts,
// invoices, invoice returns) when it is given, " gotówką" otherwise; a retail
// sale without forms of payment is always paid in cash.
ShortText ProposedPayment(int kind, const ShortText& defaultsCsv, bool retailForms);
// The proposed settlement date: invoices and their returns (2..5) some days
// after the document's or the sale's date, the others on the document's date.
int32_t ProposedSettleDate(int kind, int32_t date, int32_t saleDate, int days, bool fromSale);
// The proposed mark: dok_plat's when marks are proposed and it has one, else the kind's short code.
ShortText ProposedMark(int kind, const ShortText& dokPlatMark, int proposedMarksOption);
// A day serial as "DD-MM-RRRR"; a text back to a serial, 0 when it names no day.
ShortText DateText(int32_t serial);
int32_t DateOfText(const ShortText& text);

// A new header of the kind with every proposal filled (configuration,
// dok_plat, today, the contractor linked to the warehouse).
DocumentHeader NewHeader(int32_t warehouse, int kind, int32_t today);
// The form over the header; Enter goes on, F2 or F10 confirms, Esc gives up.
// The contractor field opens its catalogue's list on F1, or on Enter when empty.
// true when confirmed with its checks passed.
bool AskDocumentHeader(int32_t warehouse, DocumentHeader& header);
// The header before a save of the lines: the form when the kind shows it,
// then the retail sale's date question. false when the user gave up.
bool PrepareHeader(int32_t warehouse, DocumentHeader& header, int32_t today);

// --- The checks of one line ---
// What the entry remembers of the answers in the question on going below zero.
enum class BelowZeroChoice : int8_t { kNegative = 1, kReduce, kAlwaysNegative, kAlwaysReduce };
struct LineMemory {
  bool alwaysNegative = false;
  bool alwaysReduce = false;
};
// Returns: kinds 3, 5, 8, 9 and 13.
bool IsReturnKind(int kind);
// Step of a user without the right to go below zero: how much of q the
// available amount lets in; 0 or less means the line falls back.
enum class StockVerdict : int8_t { kFits, kNothing, kReduced };
StockVerdict JudgeStock(Real q, Real available);
// The reduction notice to available for a user without the right.
ShortText ReductionText(Real available);
// The order notice when q cuts into the ordered amount, or empty: ordered is
// the stock's ordered amount, and with keep the quantity is cut to what is
// left beyond the orders (cut receives it).
ShortText OrdersNotice(Real q, Real available, Real ordered, bool keep, Real& cut);
// The question on a return quantity above or below the available stock; empty when not strange.
ShortText ReturnQuestion(int kind, Real q, Real available);
// Item not from the header's supplier on a kind that takes one supplier; empty when fine.
ShortText SupplierRefusal(int kind, int32_t headerSupplier, int32_t itemSupplier, const ShortText& kindName);
// The purchase price from the sale price less the configured value (0 keeps the item's own).
void PurchasePriceFromSale(ItemData& item, Real lessBy);
// The reminder of a contractor's discount on a sale kind; empty when none.
ShortText DiscountReminder(int kind, Real discount, bool remind);

// The screens: the stock check of steps 5 and 6, the orders, the returns.
// previous is the quantity the line had (0 for a new one). false when the
// line must stay as it was; q receives the quantity that goes in.
bool CheckLineQuantity(int32_t warehouse, int kind, const ShortText& workTable, const DocLine& line, Real& q,
                       LineMemory& memory);
// The sum of the item's quantity on the work table, other rows than skipRow.
[[nodiscard]] int16_t QuantityOnList(const ShortText& workTable, int32_t item, int64_t skipRow, Real& sum);
// The prices of a new line by the kind, with the discount reminder; header may be null.
void PriceNewLine(int kind, const DocumentHeader* header, DocLine& line);
// false (after the refusal) when the item cannot go on a line list of this header.
bool ItemFitsHeader(int kind, const DocumentHeader* header, const ItemData& item);

// --- Leaving and dropping ---
inline constexpr int kLongListLines = 20;
ShortText DropQuestion(int lines);
ShortText LeaveQuestion(bool changeMode);
// The fiscal limit of a retail sale's lines by the long-receipt option.
enum class LineLimit : int8_t { kFine, kAsk, kRefuse };
LineLimit FiscalLineLimit(int kind, int lines, int option);
ShortText FiscalLimitText(LineLimit verdict, int option);
// The limit's question or refusal for the lines; false when the save must not go on.
bool PassesFiscalLimit(int kind, std::span<const DocLine> lines);

// --- The save's checks of the whole line list ---
enum class SupplierRule : int8_t { kAny, kWarn, kRequire };
SupplierRule KindSupplierRule(int kind);
// The 1-based position of the first line whose supplier differs from the
// first line's (lines of supplier 0 and quantity 0 left out); 0 when none.
int DifferentSupplierAt(std::span<const DocLine> lines);
// The refusal of a kind 2 document under the least value; empty when it passes.
ShortText MinimumValueRefusal(int kind, Real total, Real limit, const ShortText& name, const ShortText& otherName);
// With orders kept, each positive issue is cut to what the stock holds
// beyond the ordered amount (a later line of the item sees what the earlier
// left); true when a line was cut.
bool LimitToUnreserved(std::vector<DocLine>& lines, const StockLevels& levels);
// Steps before the writes: the least value, the suppliers. false when the save is given up.
bool PassesSaveChecks(const DocumentHeader& header, std::span<const DocLine> lines, int vatMode);

}  // namespace entrydetail
