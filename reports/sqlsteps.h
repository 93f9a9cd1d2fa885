// Pieces of SQL that the analyses share: statement runner, names, value
// lists, dates and the signed quantity of a line by its kind's effect on
// stock, taken from the documents' own kind table. Private to reports/.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/shorttext.h"

// Creates (or re-creates) a result table of columns {name, type} through the table layer.
void CreateResultTable(const ShortText& path, const char* const (*columns)[2], std::size_t count);
template <std::size_t N>
void CreateResultTable(const ShortText& path, const char* const (&columns)[N][2]) {
  CreateResultTable(path, columns, N);
}
// Runs a statement; a failing one ends the program through the layer's check.
void ExecSql(const std::string& sql);
// The SQL name of a table path.
std::string SqlName(const ShortText& path);
// "1,2,3".
std::string NumberList(const std::vector<int16_t>& values);
std::string NumberList(const std::vector<int32_t>& values);
// The text key by which a report's number column sorts: the fixed-width
// TO_CHAR of -100 times the value (held within +-99999999999.99), its leading
// minus made "a" and its leading space "b", compared byte by byte.
std::string NumberSortKey(const std::string& column);
// A day serial as a quoted ISO date literal.
std::string IsoDate(int32_t serial);
// Drops a session table left by an earlier run.
void DropTemporary(const char* name);
// Whether a kind takes stock away (issues, returns to suppliers, transfers out).
bool TakesStockAway(int16_t kind);
// The kinds that add to stock (false) or take it away (true), as "3,5,6".
std::string StockKindsSql(bool issues);
// The quantity of a line of specyfik under alias, signed by its kind's stock
// effect: receipts plus, issues minus, orders and other kinds 0.
std::string StockQuantitySql(const char* alias);
