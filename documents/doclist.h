// The list of the saved goods documents of a warehouse: the headers of
// naglowki newest first, a screenful at a time, with the view of a
// document's lines, the entry of a new one, the later fiscalisation of a
// sale and the removal of the fiscal mark.
//
// Rules kept here:
// - a row of the list shows whatever the header holds: a number that does
//   not decode is shown as "0/0", never stopping the list;
// - a document goes to the fiscal printer with its header row locked, and
//   its mark is read again under that lock, so that two operators never
//   print the same document;
// - the fiscal mark is removed only by a user with maximum rights.
#pragma once

#include <cstdint>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "documents/payments.h"
#include "fiscal/fiscalconfig.h"

// One header as the list shows it.
struct DocListRow {
  int64_t rowId = 0;   // the row id of naglowki: documents of one day in order of writing
  int32_t date = 0;    // data_dok as a day serial, 0 when empty
  DocRef key;          // typ_dok, nr_dok, znak_dok
  ShortText contractor;
  Real total = 0;      // suma_dok
  char cash = ' ';     // czy_gotowkowy: 'T' cash, 'F' and 'f' in the printer's memory
  char locked = ' ';   // zablokowany
};

// Where a screenful starts: the date and row id of a row of the list.
struct DocListKey {
  bool set = false;        // false: from the newest (or, going back, the oldest)
  bool inclusive = false;  // the row of the key itself belongs to the screenful
  int32_t date = 0;
  int64_t rowId = 0;
};
DocListKey DocListKeyOf(const DocListRow& row);

// Up to limit headers after the key, newest first (older true) or the ones
// before it, still newest first (older false); 0 or the layer's code.
[[nodiscard]] int16_t DocListRead(int32_t warehouse, const DocListKey& from, bool older, int limit,
                                  std::vector<DocListRow>& rows);
// The newest header whose number in its year is number; false when none.
bool DocListFind(int32_t warehouse, int32_t number, DocListKey& at);
// The text of a row: date, kind, mark, number, contractor, total, fiscal mark.
ShortText DocListRowText(const DocListRow& row);

// One line of a document as its view shows it.
struct DocViewLine {
  int32_t position = 0;
  ShortText name;  // the catalogue's name of the item, empty when it is gone
  ShortText vat;
  Real quantity = 0;
  Real net = 0, gross = 0;  // sale prices
};
// The net and gross values of the lines, each line rounded to the grosz.
struct DocViewTotals {
  Real net = 0, gross = 0;
};
// The lines of a document in position order; 0 or the layer's code.
[[nodiscard]] int16_t DocViewLinesRead(int32_t warehouse, const DocRef& key, std::vector<DocViewLine>& lines);
DocViewTotals DocViewTotalsOf(const std::vector<DocViewLine>& lines);

// Whether a document of the kind can go to a fiscal printer (retail sale, invoices).
bool DocumentKindFiscal(int kind);
// FiscaliseDocument under the lock of the header's row: a second operator
// waits, then finds the mark and is refused. True when printed and marked.
bool FiscaliseListedDocument(const FiscalConfig& config, int32_t warehouse, const DocRef& key);

enum class FiscalMarkRemoval : int8_t { kRemoved, kNoMark, kGone };
// "F" back to "T" (and "f" back to "N"): the document may be printed again.
FiscalMarkRemoval RemoveFiscalMark(int32_t warehouse, const DocRef& key);

// The screen: the list of the warehouse's documents with its keys
// (Enter lines, Ins new, F2 number, F4 fiscalise, F8 remove the fiscal mark).
void DocumentList(int32_t warehouse);
