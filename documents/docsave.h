// The save of a new goods document: the line list that the user wrote
// into the work table praca___ becomes one header in naglowki, its lines in
// specyfik and the changed rows of stany_mg of the warehouse.
//
// Contract:
// - The whole save runs in one transaction of the table layer under the
//   waiting locks, taken in this order: dane\naglowki (common numbering
//   only), naglowki, stany_mg, specyfik, and last kasa____ for the automatic
//   payment, nested in the same transaction. A failure anywhere rolls it back:
//   a document is either whole (header, lines, stock, payment) or absent.
// - The stock is read under the locks, so the quantities that a user
//   without the right to go below zero may issue are the real ones; the
//   header's total is that of the lines as written.
// - Functions here return the layer's code; the screens pass it to
//   CheckDBError. A refusal or a given-up question is a SaveOutcome.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/shorttext.h"
#include "documents/doccalc.h"
#include "documents/docnumber.h"

// --- The work table of a user: dane\uzytkown\<n>\praca___ ---
// Its path for a user.
ShortText WorkTablePath(int32_t user);
// Creates the table when it is not there (the user's directory too); 0 or the layer's code.
[[nodiscard]] int16_t WorkTableEnsure(int32_t user);
// All lines in the order they were written.
[[nodiscard]] int16_t WorkLinesRead(const ShortText& path, std::vector<DocLine>& lines);
// Appends a line; line.rowId receives its row.
[[nodiscard]] int16_t WorkLineAppend(const ShortText& path, DocLine& line);
// Sets the quantity of a line.
[[nodiscard]] int16_t WorkLineSetQuantity(const ShortText& path, int64_t rowId, Real quantity);
// Removes a line.
[[nodiscard]] int16_t WorkLineDelete(const ShortText& path, int64_t rowId);
// Removes every line.
[[nodiscard]] int16_t WorkTableClear(const ShortText& path);

// --- The header ---
struct DocumentHeader {
  int16_t kind = 0;
  int32_t coded = 0;  // given by the save
  ShortText mark;     // znak_dok
  int32_t date = 0, saleDate = 0, settleDate = 0;  // day serials
  int32_t contractor = 0;
  ShortText contractorName;
  int32_t operatorNumber = 0;
  int32_t otherWarehouse = 0;           // nr_magazynu_mm
  ShortText payment = " gotówką"_mz;    // sposob_rozlicz
  ShortText extraName, extraNumber;     // additional document
  char deposit = 'N';                   // czy_depozyt
  char cash = kCashDocument;            // czy_gotowkowy
  ShortText comment;
};

// What the configuration and the user bring to a save.
struct SaveSettings {
  NumberingSettings numbering;
  int vatMode = 0;             // configuration line 176
  bool orderHandling = false;  // kind 16 moves the ordered quantity
  bool respectOrders = false;  // an issue leaves the customers' ordered quantity in stock
  bool mayGoBelowZero = false;
  bool changeStock = true;     // false: the user refused the stock change of this save
  // Kinds (by number) whose save lets the operator decide on the stock
  // change, and that decision: 0 never, 1 ask, 2 always (line 179).
  std::array<bool, 19> stockDecidedKinds{};
  int stockChangeOption = 0;
  int vatPaymentOption = 0;    // line 184: 1 or 2 ask a kind 2 document for its VAT payment
  Real paidVat = 0;            // the VAT payment given at the save; 0 when none
  bool placeOnReceipt = false; // line 54 is 2: receipts date the items' empty place field
  int placeFieldKind = 0;      // line 116: 0 text (the year goes in), 1 dates, 2 and 3 neither
  bool correctVat = false;     // line 66: the VAT of lines may change, and the catalogue follows it
  bool vatChanged = false;     // the entry changed the VAT of a line of this document
};
// The settings from the configuration and the current user.
SaveSettings SaveSettingsFromConfig();

enum class SaveOutcome : int8_t {
  kSaved,
  kGivenUp,     // Esc or "tak" at a question: nothing written, the lines stay
  kKeyTaken,    // the number was taken meanwhile; nothing written
  kNoNumber,    // no number can be given in the year of the date
  kNoLines,     // the line list is empty
};

struct SaveResult {
  SaveOutcome outcome = SaveOutcome::kGivenUp;
  int32_t coded = 0;
  ShortText mark;
  DocumentTotals totals;          // of the lines as written
  Real totalBeforeReduction = 0;  // of the lines as entered
  bool reduced = false;           // a line was cut to the stock
  int lines = 0;                  // lines written to specyfik
};

// The save's core without screens: numbers, writes header, stock and lines
// of the lines given (quantity 0 left out) in warehouse, in one transaction.
// header.coded and header.mark receive the key. The layer's code; on a
// code nothing is written.
[[nodiscard]] int16_t SaveDocument(int32_t warehouse, DocumentHeader& header, std::vector<DocLine> lines,
                                   const SaveSettings& settings, SaveResult& result);

// SaveNewDocument: reads the work table, runs the save with its messages
// and questions (stock change, fiscal step, reduction notice, additional
// number of a retail return, payment) and on success empties the work
// table. Database failures end the program through CheckDBError.
SaveResult SaveNewDocument(int32_t warehouse, DocumentHeader& header, const ShortText& workTable,
                           const SaveSettings& settings);

// The total of a saved document from its lines in specyfik (ComputeDocumentTotals' mode 3).
[[nodiscard]] int16_t ComputeSavedTotals(int32_t warehouse, int kind, int32_t coded, const ShortText& mark,
                                         int vatMode, DocumentTotals& totals);

// --- Texts ---
inline constexpr ShortText kSaveHeaderText = "Trwa zapis nagłówka...[ ]"_mz;
inline constexpr ShortText kSaveLinesText = "Trwają zmiany stanów i dopisanie specyfikacji...[          ]"_mz;
inline constexpr ShortText kAskVatPaymentText = "Podaj wielkość wpłaty za VAT:"_mz;
inline constexpr ShortText kVatPaymentTooBigText = "Za duża wartość wpłaty VAT.@Czy zrezygnować z zapisu ?"_mz;
inline constexpr ShortText kAskStockChangeText = "Czy skorygować stany o ilości towarów z dokumentu ?"_mz;
