// The work file: each operator's private list of goods, the table
// "dane\uzytkown\<n>\plikrob_". Its 24 columns are the first 24 of the item
// catalogue (same names, same widths, column 9 as wide as the catalogue's
// character index), column 20 holding a quantity. Rows keep the order in
// which they were written. Goods data travel between documents, the
// catalogue, other users and other firms through it.
//
// Contract:
// - The table is guarded by the file lock "dane\uzytkown\<n>\plikrob_.lcu":
//   every change takes it without waiting; a held lock refuses the change
//   with the system's message and touches nothing.
// - Every rewrite (fill, replace, pass, import) runs in one transaction: a
//   failure leaves the work file as it was.
// - Table codes go back to the caller, who passes them to CheckDBError;
//   screens (workfile_ui.cpp) show the system's messages.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "exchange/dbf/dbf.h"
#include "master/columns.h"
#include "master/items.h"

// Column numbers of the work file: those of the catalogue, ilosc the quantity.
using WorkFileCol = KatTowCol;
inline constexpr int kWorkFileColumns = 24;

// One row: the catalogue's columns and the quantity of column 20.
struct WorkFileRow {
  ItemData item;  // item.active is not stored
  Real quantity = 0;
};

// The forms that DetectWorkFileForms reports, as bits.
inline constexpr int kFormDbf = 2;     // plikrob_.dbf
inline constexpr int kFormReturn = 4;  // dokument.dbf
inline constexpr int kFormSales = 8;   // sprzedaz.dbf
inline constexpr int kFormMini = 16;   // dane.klt

// What became of an import.
enum class WorkFileImport : uint8_t {
  kDone,
  kBadDbf,  // no file, not dBASE, cut short or of another layout: nothing changed
  kBadFile,  // dane.klt missing, too large or with a line that is no "number,quantity": nothing changed
  kLocked,  // the work file's lock is held by another process: nothing changed
};

// --- The table ---
// The path of a user's work file: "dane\uzytkown\<n>\plikrob_".
ShortText WorkFileName(int32_t user);
// The current user's (kNoUser gives the path of nobody: "dane\uzytkown\-1\plikrob_").
ShortText WorkFileName();
// Creates (or re-creates empty) the table at path and its lock file path.lcu.
[[nodiscard]] int16_t CreateWorkFile(const ShortText& path);
// Creates the table when it is missing.
[[nodiscard]] int16_t EnsureWorkFile(const ShortText& path);
// Every row in the order written; a missing table gives no rows.
[[nodiscard]] int16_t WorkFileRead(const ShortText& path, std::vector<WorkFileRow>& rows);
// Writes the rows after the present ones (append) or in their place, in one transaction.
[[nodiscard]] int16_t WorkFileWrite(const ShortText& path, const std::vector<WorkFileRow>& rows, bool append);
// Number of rows; 0 for a missing table.
[[nodiscard]] int16_t WorkFileCount(const ShortText& path, int32_t& count);

// --- The lock ---
// Holds the work file's lock for its lifetime; held() false when another
// process has it (or it cannot be set up: then work goes on without it).
class WorkFileLock {
 public:
  explicit WorkFileLock(const ShortText& path);
  ~WorkFileLock();
  WorkFileLock(const WorkFileLock&) = delete;
  WorkFileLock& operator=(const WorkFileLock&) = delete;
  bool busy() const { return busy_; }

 private:
  int file_ = -1;
  bool busy_ = false;
};
// True when another process holds the session of the user (its lock file).
bool UserWorkingElsewhere(int32_t user);

// --- Sources of rows ---
// The lines of one saved document of the warehouse (specyfik), each filled
// from its catalogue row: quantity, prices and VAT of the line; lines whose
// item is gone are left out.
[[nodiscard]] int16_t WorkRowsFromDocument(int32_t warehouse, int16_t kind, int32_t number, const ShortText& mark,
                                           std::vector<WorkFileRow>& rows);
// The active items of the catalogue in name order, with the
// warehouse's stock quantity and sale prices (the catalogue's when it has no stock row).
[[nodiscard]] int16_t WorkRowsFromCatalogue(int32_t warehouse, std::vector<WorkFileRow>& rows);

// --- Between users ---
// Puts the work file of from into that of to: appended, or replacing it; one transaction.
[[nodiscard]] int16_t WorkFileTransfer(int32_t from, int32_t to, bool append);

// --- DBF ---
// Writes the table as a dBASE 3 file (fields in column order, names cut to 10).
[[nodiscard]] int16_t WorkFileToDbf(const ShortText& path, const ShortText& dbfPath);
// Whether an open DBF has the work file's layout: at least 24 fields, text
// where the table has text and numbers where it has numbers.
bool DbfIsWorkFile(const DbfFile& dbf);
// Replaces the rows of the work file by the records of the DBF, fields by
// position, text read in the code page; in one transaction, under the lock.
// code receives the table layer's code when a table operation failed.
WorkFileImport WorkFileFromDbf(const ShortText& path, const ShortText& dbfPath, DbfCodePage codePage, int16_t& code);
// Removes the rows whose item is not in the catalogue (equal names, VAT
// group, sww and VAT payer mark); names receives "nazwa nazwa_" of each.
[[nodiscard]] int16_t WorkFileDropUnknown(const ShortText& path, std::vector<ShortText>& names);
// The forms lying in a directory (bits kForm...); 0 for none.
int DetectWorkFileForms(const ShortText& directory);

// --- The short form "mini" (numer,ilość), dane.klt ---
struct MiniEntry {
  int32_t number = 0;
  Real quantity = 0;
};
// One line of dane.klt: "number,quantity" (up to 7 decimals, no trailing zeros) and CR LF.
std::string MiniLine(int32_t number, Real quantity);
// The entries of a dane.klt (CR LF or LF, blank lines and the end-of-file
// mark skipped); false, with no entry, when any line is no internal number
// (1..2,147,483,647), a comma and a quantity in range.
bool ParseMini(std::string_view bytes, std::vector<MiniEntry>& entries);
// Writes the rows' numbers and quantities to target; false when the file cannot be written.
bool WorkFileToMini(const ShortText& path, const ShortText& target, int16_t& code);
// Replaces the rows of the work file by the catalogue's items of the
// file's numbers with their quantities, in one transaction under the lock;
// numbers that the catalogue does not hold go to unknown, not into the file.
WorkFileImport WorkFileFromMini(const ShortText& path, const ShortText& file, int16_t& code,
                                std::vector<int32_t>& unknown);

// --- Into the line list of the document being written ---
// How the rows are taken, the rows of the question "Jako jakie dane pobrać plik roboczy ?".
enum class WorkFileSource : uint8_t {
  kOwn = 1,                     // as they are
  kOwnSaleIsPurchase,           // the sale prices become the purchase prices
  kForeignDelivery,             // another firm's sale (its delivery): its sale prices are the purchase prices
  kForeignSalesSamePurchase,    // another firm's sales report, purchase prices equal to ours
  kForeignSalesPurchaseIsSale,  // the same, its purchase prices are our sale prices
};
struct TakeRules {
  WorkFileSource source = WorkFileSource::kOwn;
  int32_t supplier = 0;  // a foreign source's supplier, given to every row
  Real percent = 0;      // margin or mark-up of the computed prices
  bool margin = true;
  Real step = 0;         // the computed sale gross is rounded to it (0: not rounded)
};
// True for the three sources of another firm.
bool ForeignSource(WorkFileSource source);
// The row with its prices as the source makes them: computed sale prices
// from the purchase net by the margin or mark-up, the gross rounded to the
// step and the net from it; the supplier of a foreign source.
WorkFileRow TakenRow(WorkFileRow row, const TakeRules& rules);
// Appends the rows of the work file to the user's praca___ (in one
// transaction), each tied to the catalogue's item of equal key (names, vat,
// sww, VAT payer): a missing item is added with an empty stock row, and an
// item without a stock row in the warehouse gets one, and a supplier the
// supplier catalogue lacks is added under his number, named by the row's
// supplier text. phase is told 1 (catalogue), 2 (stock), 3 (suppliers),
// 4 (writing). A refusal of ItemAdd (the system's message) stops before
// anything is written to praca___.
[[nodiscard]] int16_t WorkFileToSpecification(const ShortText& workFile, int32_t user, int32_t warehouse,
                                              const TakeRules& rules, const std::function<void(int)>& phase,
                                              ShortText& refusal);

// --- Screens ---
// Writes the rows into the current user's work file, asking whether to add
// them to rows present, under "Trwa zapis...[          ]" (report: the
// report's wording), ending with "Zapis poprawny.". False when refused.
bool AddSpecificationToWorkFile(const std::vector<WorkFileRow>& rows, bool report = false);
// The work file into the current user's praca___ after the questions of
// how to take it; false when missing, empty, cancelled or refused.
bool AddWorkFileToSpecification(int32_t warehouse);
// The menu "Operacje na plikach roboczych" over the current warehouse.
void WorkFileMenu(int32_t warehouse);
// "Przekazywanie pliku roboczego pomiędzy użytkownikami".
void PassWorkFile();
// Export of the work file as DBF to a directory (A:\, B:\ or any); true when copied.
bool ExportWorkFileTo(const ShortText& directory);
// Import of plikrob_.dbf or dane.klt from a directory; true when the work file was replaced.
bool ImportWorkFileFrom(const ShortText& directory, bool askCodePage);
// "Wprowadzanie zmian w pliku roboczym": the rows in a list; Enter changes
// the quantity, Del removes the row, Ins adds a document or the catalogue.
void EditWorkFile(int32_t warehouse);
