// The table side of document numbers: the next number of a series, the
// firm's register of numbers dane\naglowki, free marks, additional numbers
// in dane\dodnrdok, and the rebuild of the register.
//
// Contract for the document save: NextDocNumber and RegisterDocNumber run
// inside the caller's transaction under the caller's locks (the register
// dane\naglowki, then the warehouse's naglowki); they take no lock and
// commit nothing. AssignAdditionalNumber takes and releases its own lock.
// Codes are those of the table layer, for CheckDBError.
#pragma once

#include <cstdint>
#include <string>

#include "base/mazovia.h"
#include "base/shorttext.h"
#include "documents/docnumber.h"

inline constexpr const char* kRegisterTable = "dane\\naglowki";
inline constexpr const char* kAdditionalTable = "dane\\dodnrdok";

// Where a kind's numbers are drawn from: dane\naglowki when the kind is under
// common numbering, else the warehouse's naglowki.
ShortText NumberTablePath(int kind, int32_t warehouse, const NumberingSettings& s);

// The one statement that finds the highest coded number of a series in a year
// (with a twin, the higher of the two); its single value is NULL when the year holds none.
std::string NextNumberSql(const ShortText& table, const SeriesKinds& series, int year);

// The next free number of kind in the year of dateSerial (a day serial) in
// the table. out.failed when the year is outside 1996..2123, the series is
// full or its last value is broken; the code is the layer's.
[[nodiscard]] int16_t NextDocNumber(int32_t dateSerial, int kind, const ShortText& table,
                                    const NumberingSettings& s, NextNumber& out);

// Enters a number given to a document in dane\naglowki (15 as 18) with its
// mark and date and blank deletion columns; nothing when the kind is not
// under common numbering. A number already there gives the layer's code.
[[nodiscard]] int16_t RegisterDocNumber(int kind, int32_t coded, const ShortText& mark, int32_t dateSerial,
                                        const NumberingSettings& s);

// A mark that makes the key (kind, coded, mark) free in the table (FreeMark's rule).
[[nodiscard]] int16_t FreeMarkInTable(const ShortText& table, int kind, int32_t coded, const ShortText& mark,
                                      ShortText& out);

// --- The register's rebuild ---
enum class RebuildMode : int8_t {
  kFromScratch,  // empty the register, then enter every number of the warehouses
  kAddMissing,   // enter only the numbers it lacks
};
// Enters the numbers under common numbering of every warehouse with its own
// tables (Z in magazyny) into dane\naglowki; added counts the rows entered.
[[nodiscard]] int16_t RebuildRegister(RebuildMode mode, const NumberingSettings& s, int32_t& added);
// The menu function: refuses when common numbering is off, asks "Wybierz:"
// between the two modes, rebuilds and says how many numbers were entered.
void RebuildHeaderList();

// --- Additional numbers ---
inline constexpr ShortText kAdditionalBadNumber = "Nie utworzono numeru dodatkowego !@(Niepoprawny numer dokumentu)."_mz;

// What AssignAdditionalNumber gives: the coded additional number (0 when
// none was given) and the code of the layer.
struct AdditionalResult {
  int32_t coded = 0;
  int16_t code = 0;
};
// Gives the document (kind, coded, mark, dateSerial) of currentWarehouse
// its additional number in dane\dodnrdok under the table's exclusive lock,
// or finds the one it has. value and text are kept with a new row; a
// placeholder row (number 0 of the year) keeps its own. Failures show the
// system's message and give coded 0.
AdditionalResult AssignAdditionalNumber(int kind, int32_t coded, const ShortText& mark, int32_t dateSerial,
                                        int32_t currentWarehouse, const NumberingSettings& s,
                                        int32_t value = 0, const ShortText& text = ShortText());
