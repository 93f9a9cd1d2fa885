// Inside the contractor catalogues: the open catalogue with a record
// buffer, the locked transaction of a write, and the screen keeper. Other
// folders use master/contractors.h only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/shorttext.h"
#include "master/contractors.h"
#include "sqltable/dbapp.h"
#include "tui/screen.h"

namespace contractors_detail {

// A catalogue open in name order (or by the index given) with one record
// buffer; both released on every path. code() is the first failure, 0 when open.
class CatalogueTable {
 public:
  explicit CatalogueTable(ContractorKind kind, int indexHandle = 0);
  ~CatalogueTable();
  CatalogueTable(const CatalogueTable&) = delete;
  CatalogueTable& operator=(const CatalogueTable&) = delete;

  int16_t code() const { return code_; }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }
  // The SQL name of the catalogue.
  std::string SqlName() const;
  // Places the table on the row of the number: 0, 89 when there is none, or a failure.
  [[nodiscard]] int16_t SeekNumber(int32_t number);
  // The name and the other name of c into the buffer, for a key search.
  void ForName(const Contractor& c);
  // The current row into c.
  [[nodiscard]] int16_t Read(Contractor& c);
  // c into the buffer, every field.
  [[nodiscard]] int16_t Fill(const Contractor& c);

 private:
  int16_t tbl_ = 0;
  int16_t rec_ = 0;
  int16_t code_ = 0;
};

// The exclusive lock of a catalogue and its transaction: rolled back and
// released unless Commit() ran.
class CatalogueLock : public ExclusiveTableLock {
 public:
  explicit CatalogueLock(ContractorKind kind) : ExclusiveTableLock(ContractorTablePath(kind)) {}
};

// The screen, window, cursor and attribute put back when a box or list is done.
using BoxKeeper = ScreenKeeper;

// The orders of the list: by name, by number, and by one of the three towns
// (seat, place of documents, correspondence), each ending with the number.
enum class ListOrder : uint8_t { kName, kNumber, kTown, kDocumentTown, kMailTown };
inline constexpr int kListOrderCount = 5;

// Where a read of the list starts: the row's values of the order's columns;
// not set means the start (forward) or the end (backward) of the order.
struct ListKey {
  bool set = false;
  bool inclusive = false;  // the row of the key itself is read too
  Contractor row;
};
ListKey KeyOf(const Contractor& row, bool inclusive);

// Up to limit rows after (forward) or before the key in the order, each
// meeting the SQL condition when one is given; rows in list order in both
// directions. The server walks the order's index from the key and stops at
// the limit, so no read grows with the catalogue.
[[nodiscard]] int16_t ListRead(ContractorKind kind, ListOrder order, const ListKey& from, bool forward, int limit,
                               const std::string& condition, std::vector<Contractor>& rows);
// Every row meeting the SQL condition (none: all), the tail (ORDER BY,
// LIMIT) added as it is; NULL columns read as empty texts and 0.
[[nodiscard]] int16_t SelectRows(ContractorKind kind, const std::string& condition, const std::string& tail,
                                 std::vector<Contractor>& rows);
// The SQL condition of a search by a fragment: the name (letters compared
// as capitals, Polish ones folded here since the server's upper() may not),
// the telephones, the registration number, or the NIP with its dashes and
// blanks left out on both sides.
enum class FragmentField : uint8_t { kName, kTelephones, kRegistration, kNip };
std::string FragmentCondition(FragmentField field, const ShortText& fragment);
// The condition of a start of the name, or in a town order of that town,
// letters compared as capitals.
std::string StartCondition(ListOrder order, const ShortText& start);
// A text as an SQL literal in the database's code page.
std::string SqlText(const ShortText& text);

// A box of one line whose field is the run of '-' in the text, edited from
// value as it comes; false on Esc. The value comes back without the fill
// and the blanks around it.
bool AskOnDashes(const ShortText& text, ShortText& value);

// Writes the bytes over the file whole or not at all (beside it, then
// renamed), making its directory first; false on a failure.
bool WriteWhole(const ShortText& path, const std::string& bytes);
// A failed export: the file closed and removed, so that no half file stays
// under the name; gives the code back.
int AbandonDbf(DbfFile& file, const ShortText& fileName, int code);
// The way of an exchange with a dBASE file: 1 export, 2 import, 0 Esc.
int16_t AskDbfWay();
// "Jak importować polskie znaki z pliku DBASE:"; false on Esc.
bool AskDbfImportPage(DbfCodePage& page);

// Ends with CheckDBError unless the code is 0 or one of the two accepted ones.
int16_t Checked(int16_t code, int16_t acceptedA = 0, int16_t acceptedB = 0);
// Drops the tables of a warehouse that exist.
void DropWarehouseTables(int32_t warehouse);

}  // namespace contractors_detail
