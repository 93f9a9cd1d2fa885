// Dictionaries: small value lists of one shape (indeks A15, opis A255,
// czy_byl_obrot A1), one table each under dane\pola_ind\ (the exchange
// rates and the frequent routes under dane\). VAT groups are the dictionary
// "vat": at most 29 groups, the exempt group "zwol." never renamed nor
// deleted. Writes run under the table's exclusive lock in one transaction;
// table errors go through CheckDBError, outcomes come back as values.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "exchange/dbf/dbf.h"

// One dictionary of the "Inne katalogi" list: its list title and its table.
struct DictionaryDef {
  ShortText title;
  const char* path;
};
// The dictionaries in the order of the list.
std::span<const DictionaryDef> Dictionaries();
// The definition of a table path, or null.
const DictionaryDef* DictionaryByPath(const ShortText& path);

inline constexpr const char* kVatDictionary = "dane\\pola_ind\\vat";
inline constexpr int kMaxVatGroups = 29;
// The exempt group and the row that a new VAT dictionary is offered.
inline constexpr const char* kExemptGroup = "zwol.";

struct DictionaryEntry {
  ShortText indeks;
  ShortText opis;
  ShortText czyBylObrot;  // "T" when the value has turnover
};

// --- Pure rules ---
// The rate of a VAT group text for arithmetic: the number it holds, 0 for a
// text that is no number ("zwol.").
Real VatRateNumber(const ShortText& group);
// Whether a line with this rate is taken as having no VAT (rate 0 or -100).
bool VatRateMeansNoVat(Real rate);
// Why a row cannot be deleted from the dictionary: the system's message, or
// empty when it may go.
ShortText DictionaryDeleteRefusal(const ShortText& path, const DictionaryEntry& entry);

// --- Tables ---
// Creates the dictionary's table when it is missing; 0 or the layer's code.
[[nodiscard]] int16_t DictionaryEnsure(const ShortText& path);
// Every row in key order.
[[nodiscard]] int16_t DictionaryRead(const ShortText& path, std::vector<DictionaryEntry>& rows);
// The number of rows.
[[nodiscard]] int16_t DictionaryCount(const ShortText& path, int64_t& count);
// Up to limit rows in key order from the first whose key is not below start.
[[nodiscard]] int16_t DictionaryReadFrom(const ShortText& path, const ShortText& start, int limit,
                                         std::vector<DictionaryEntry>& rows);

enum class DictionaryOutcome : uint8_t {
  kDone,
  kFull,       // the 30th VAT group
  kDuplicate,  // the key is taken
  kRefused,    // a protected row (see DictionaryDeleteRefusal), or the exempt group's name
  kGone,       // the row is not there any more
};
// Adds a row ("N" in czy_byl_obrot when empty).
[[nodiscard]] DictionaryOutcome DictionaryAdd(const ShortText& path, const DictionaryEntry& entry);
// Writes entry over the row of oldKey.
[[nodiscard]] DictionaryOutcome DictionaryChange(const ShortText& path, const ShortText& oldKey,
                                                 const DictionaryEntry& entry);
// Deletes the row of key unless it is protected.
[[nodiscard]] DictionaryOutcome DictionaryDelete(const ShortText& path, const ShortText& key);

// Adds a VAT group with its description.
[[nodiscard]] DictionaryOutcome VatGroupAdd(const ShortText& group, const ShortText& description);
// Whether the VAT dictionary holds the exempt group.
[[nodiscard]] int16_t VatHasExemptGroup(bool& has);
// Adds "zwol.", "TOWARY ZWOLNIONE Z VAT", "N".
[[nodiscard]] DictionaryOutcome VatAddExemptGroup();

// --- Kilometre rates by date: dane\stawkikm (data D, the key; stawka X) ---
inline constexpr const char* kKmRateTable = "dane\\stawkikm";
// Creates the rate table when it is missing; 0 or the layer's code.
[[nodiscard]] int16_t KmRateTableEnsure();
enum class KmRateOutcome : uint8_t { kFound, kOutOfRange, kEmptyTable };
struct KmRateResult {
  Real rate = 0;
  KmRateOutcome outcome = KmRateOutcome::kFound;
  int16_t code = 0;  // the layer's code of a failed read
};
// The rate in force on the day (a day serial): the row of that date, else
// the last one before it; a date past the last row takes the last rate; a
// date before the first row, or an empty table, gives 0.
KmRateResult KmRateLookup(int32_t day);
// KmRateFor: KmRateLookup with the system's message of a date out of the
// table ("Data poza zakresem tabeli stawek.") unless quiet.
Real KmRateFor(int32_t day, bool quiet);

// Adds to the dictionary dane\pola_ind\<field> every value that column field
// of the catalogue of goods holds and the dictionary does not, described as
// the value and "=", with turnover; under the dictionary's lock. kPGBadArgument
// (the layer's code) for a field that is no text column of the catalogue.
[[nodiscard]] int16_t RebuildDictionaryFromCatalogue(const ShortText& field);

// Writes every row to a new dBASE file (INDEKS, OPIS, CZY_BYL_OB), whole or
// not at all; 0 or a code of the DBF layer.
[[nodiscard]] int DictionaryDbfExport(const ShortText& path, const ShortText& fileName, DbfCodePage codePage,
                                      int64_t& written);
// Adds the live records of the file whose key is not on the list yet; 0 or a code of the DBF layer.
[[nodiscard]] int DictionaryDbfImport(const ShortText& path, const ShortText& fileName, DbfCodePage codePage,
                                      int64_t& added);

// The place of the first row whose key starts with the text, capitals
// compared; -1 when none.
int DictionaryFindStart(const std::vector<DictionaryEntry>& rows, const ShortText& start);
