// Customers, suppliers and warehouses: three tables of one layout
// (dane\odbiorcy, dane\dostawcy, dane\magazyny, columns in KontrahentCol),
// kept by one set of operations that take the catalogue as an argument.
//
// A contractor's number never changes once written. Every write runs under
// the catalogue's exclusive table lock in one transaction: a refusal, a
// row gone meanwhile or a failure leaves the table as it was. Table errors
// of the writes go through CheckDBError; the functions without screens give
// their outcome as a value so that the demo-firm tool and the documents can
// use them. A warehouse whose column 7 holds "Z" has its own tables
// (dane\<folder>\...); any other warehouse is a special one: it stands on
// transfers and prints, but no document is kept in it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "exchange/dbf/dbf.h"
#include "master/columns.h"

// The catalogue argument: 0 warehouses, 1 customers, 2 suppliers.
enum class ContractorKind : int8_t { kWarehouse = 0, kCustomer = 1, kSupplier = 2 };

inline constexpr int32_t kContractorMaxNumber = 2147483647;
// Column 7 of a warehouse with its own tables.
inline constexpr char kOwnTablesMark = 'Z';

// One row of a catalogue. Texts by column number (KontrahentCol); the
// number (column 3) and the discount (column 19) are held apart.
struct Contractor {
  std::array<ShortText, KontrahentCol::kCount + 1> text{};  // slot 0 unused
  int32_t number = 0;
  Real discount = 0;

  ShortText& operator[](KontrahentCol::Column c) { return text[static_cast<std::size_t>(c)]; }
  const ShortText& operator[](KontrahentCol::Column c) const { return text[static_cast<std::size_t>(c)]; }
};

// The table of a catalogue: "dane\magazyny", "dane\odbiorcy" or "dane\dostawcy".
ShortText ContractorTablePath(ContractorKind kind);
// The table linking the catalogue's rows to warehouses: "dane\odb_mag_" or
// "dane\dost_mag" (customers and suppliers only).
ShortText ContractorLinkPath(ContractorKind kind);
// The kind in the genitive as messages use it: "magazynu", "odbiorcy", "dostawcy".
ShortText ContractorKindGenitive(ContractorKind kind);

// --- Pure rules ---
// The configured range of proposed numbers ("od,do"); a missing or bad
// part gives 1 and 2,147,483,647.
struct NumberRange {
  int32_t from = 1;
  int32_t to = kContractorMaxNumber;
};
NumberRange ParseNumberRange(const ShortText& text);
// The number for a new row: the last used in the range plus 1, or the range's
// start when none is used (last 0). 0 when the range is exhausted.
int32_t NextContractorNumber(const NumberRange& range, int32_t lastInRange);
// Whether two rows hold the same data in every column but the number.
bool SameContractorData(const Contractor& a, const Contractor& b);
// Whether the contractor has a NIP, PESEL or REGON (documents that need one check it).
bool ContractorHasTaxId(const Contractor& c);
// Whether a warehouse row is a special one (column 7 not "Z").
bool WarehouseIsSpecial(const Contractor& warehouse);

// --- The tables ---
// Creates the three catalogues and the two link tables when they are missing; 0 or the layer's code.
[[nodiscard]] int16_t ContractorTablesEnsure();
// The row of a number; found false (code 0) when there is none.
[[nodiscard]] int16_t ContractorFind(ContractorKind kind, int32_t number, Contractor& out, bool& found);
// ReadContractor: the row whose column 11 (registration number) equals key.
[[nodiscard]] int16_t ContractorFindByRegistration(ContractorKind kind, const ShortText& key, Contractor& out,
                                                   bool& found);
// Whether documents name the contractor: the headers and payment documents of
// every warehouse whose tables exist, of the kinds that name this catalogue
// (a kind missing from dok_plat counts as naming it); for a warehouse also
// transfers naming it and rows in its own tables.
[[nodiscard]] int16_t ContractorInUse(ContractorKind kind, int32_t number, bool& inUse);

enum class ContractorOutcome : uint8_t {
  kDone,
  kLimit,       // no number left in the configured range
  kIdentical,   // a row with the same data exists
  kNumberTaken, // the given number is in use
  kBadNumber,   // a number outside 1..2,147,483,647
  kGone,        // the row is not there any more
  kInUse,       // documents name the contractor
};

// Adds the row. number 0 takes the next one in the range (the caller's
// choice of range, see ParseNumberRange), and c.number receives it. A
// warehouse gets "Z" in column 7 and its tables unless special.
[[nodiscard]] ContractorOutcome ContractorAdd(ContractorKind kind, Contractor& c, const NumberRange& range,
                                              bool specialWarehouse = false);
// The range configured for the catalogue (configuration lines 34, 35, 74).
NumberRange ConfiguredNumberRange(ContractorKind kind);
// Writes the row of c.number over the stored one.
[[nodiscard]] ContractorOutcome ContractorStore(ContractorKind kind, const Contractor& c);
// Writes the fields that the operator changed (after differs from before)
// into the row as it stands under the lock, so that another operator's
// change of other fields meanwhile survives.
[[nodiscard]] ContractorOutcome ContractorStoreChanges(ContractorKind kind, const Contractor& before,
                                                       const Contractor& after);
// Deletes the row; unless evenInUse, refuses (kInUse) when documents name
// it. A warehouse's own tables go with it.
[[nodiscard]] ContractorOutcome ContractorDelete(ContractorKind kind, int32_t number, bool evenInUse = false);

// Deletes, under the catalogue's lock in one statement, every row that no
// document of any warehouse names (see ContractorInUse); the rows gone, by
// number, in deleted.
[[nodiscard]] int16_t ContractorDeleteUnused(ContractorKind kind, std::vector<Contractor>& deleted);

// --- Checks of repeated data ---
// How alike two texts are, 0 to 100: capitals compared, blanks, dashes,
// dots and commas left out; 100 for equal texts, else the share of the
// pairs of neighbouring letters that both hold. 0 when either is empty.
int SimilarityPercent(const ShortText& a, const ShortText& b);
// A field of a new row that a stored row holds alike, with the stored value.
struct RepeatMatch {
  KontrahentCol::Column column;
  ShortText value;
};
// For each of name, NIP, REGON, town and street that c fills, the first
// stored row whose value is at least percent alike (configuration line 83).
[[nodiscard]] int16_t ContractorSimilarRows(ContractorKind kind, const Contractor& c, int percent,
                                            std::vector<RepeatMatch>& matches);

// --- Links of customers and suppliers to warehouses ---
// The other contractor of the catalogue linked to the warehouse, 0 when none.
[[nodiscard]] int16_t WarehouseHolder(ContractorKind kind, int32_t contractor, int32_t warehouse, int32_t& other);
// Links the contractor to the warehouse (a link already there stays one).
[[nodiscard]] int16_t ContractorLinkWarehouse(ContractorKind kind, int32_t contractor, int32_t warehouse);

// --- Exchange with dBASE files ---
// How imported rows are numbered: "tylko wtedy, gdy inny jest numer
// kontrahenta" (a taken number skips the row), "jw., z tworzeniem nowych,
// jeśli numer istnieje" (a taken number gives the next free one), "wszystkich
// dopisać, jako nowych" (every row a new number).
enum class DbfImportMode : uint8_t { kOnlyNewNumbers = 1, kNewNumberWhenTaken, kAllAsNew };
// Writes every row in number order to a new dBASE file of the 25 columns
// (field names: the column names cut to 10 letters); the file appears only
// whole. 0 or a code of the DBF layer (table errors end in CheckDBError).
[[nodiscard]] int ContractorDbfExport(ContractorKind kind, const ShortText& fileName, DbfCodePage codePage,
                                      int64_t& written);
// Adds the live records of the file (fields found by those names) by the
// mode; a row identical to a stored one is skipped. 0 or a code of the DBF layer.
[[nodiscard]] int ContractorDbfImport(ContractorKind kind, const ShortText& fileName, DbfCodePage codePage,
                                      DbfImportMode mode, int64_t& added);
