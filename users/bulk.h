// Operations on whole tables that the record interface would do too slowly:
// a few SQL statements each, or one walk of the table written in batches.
//
// Contract:
// - Tables are named by path ("dane\\1\\naglowki"), fields by their SQL name.
// - Every operation returns the table layer's code, 0 for success; the
//   application passes it to CheckDBError, which ends the program.
// - What rewrites rows (sort, dedupe, copy, filling, deleting) runs in one
//   transaction and bumps the table's change counter in it: a failure leaves
//   the table as it was, and other processes see a success at once.
// - A copy is complete or it is not there: the target appears, replaced or
//   filled, only when every row reached it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/shorttext.h"

// Adds a field of the given type ("A25", "D", "N", ...) to the table and its
// catalogue, after the last field. 33 for a bad type, 118 on failure.
[[nodiscard]] int16_t PGTblAddField(const ShortText& table, const ShortText& field, const ShortText& type);
// The same with the type "A255".
[[nodiscard]] int16_t PGTblAddField_dow(const ShortText& table, const ShortText& field);

// Rewrites the rows in the order of one field, so that new row ids follow it
// and a table without a key reads in that order.
[[nodiscard]] int16_t TblSortPhysical(const ShortText& table, const std::string& field, bool descending);
// Keeps one of each set of equal rows (row id aside), rewritten in the order of fields.
[[nodiscard]] int16_t TblDedupe(const ShortText& table, const std::vector<std::string>& fields);
// Drops every table that the catalogue names (but the "TMP_" ones) under a
// progress box, and empties the catalogue.
[[nodiscard]] int16_t DbWipe();
// Sets the empty fields that another program left NULL: texts to '', dates
// to today; numbers stay NULL, which the record layer reads as blank.
[[nodiscard]] int16_t TblFillNulls(const ShortText& table);

// Highest value of a field as the server writes it, empty for an empty table.
[[nodiscard]] int16_t TblMax(const ShortText& table, const std::string& field, std::string& value);
// Longest text of a field, optionally only over rows meeting where; 0 for none.
[[nodiscard]] int16_t TblMaxLen(const ShortText& table, const std::string& field, const std::string& where,
                                int32_t& length);
// Deletes the rows that meet every condition.
[[nodiscard]] int16_t TblDeleteWhere(const ShortText& table, const std::vector<std::string>& conditions);
// The row id of a row whose field contains text (Mazovia), found false when none.
[[nodiscard]] int16_t TblFindLike(const ShortText& table, const std::string& field, const ShortText& text,
                                  bool& found, std::string& rowId);

// Replaces target by a copy of source (fields, indexes and every row, in the
// source's key order) under "Trwa kopiowanie danych...[          ]".
[[nodiscard]] int16_t TblCopyData(const ShortText& source, const ShortText& target);
// Writes the table to a dBASE 3 file (Mazovia text, dates YYYYMMDD, a blank
// date "01000101"; blobs but memos left out) under
// "Trwa kopiowanie danych do pliku DBF-3...[          ]". The file appears
// only complete; an older one stays when the copy fails.
[[nodiscard]] int16_t TblToDbf(const ShortText& table, const ShortText& dbfPath);
// The same as CSV: fields by ",", text in double quotes (a quote doubled),
// lines ended CR LF, no heading line.
[[nodiscard]] int16_t TblToCsv(const ShortText& table, const ShortText& csvPath);
