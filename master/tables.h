// The application's database tables: their definitions as data (columns in
// field order, primary key, secondary and composite indexes) and the
// operations that create them through the table layer. Field numbers are
// named by the structs of master/columns.h.
//
// A warehouse's tables lie under dane\<folder>\, the folder being the
// warehouse number as text with a point before the 9th character of a
// longer text. Creating a table that exists replaces it by an empty one.
#pragma once

#include <cstdint>
#include <span>

#include "base/shorttext.h"
#include "master/columns.h"

// One column: its SQL name and type text ("A17", "I", "X", ...).
struct ColumnDef {
  const char* name;
  const char* type;
};

// A single-field secondary index: field number and index kind (1 plain, 3 unique).
struct IndexDef {
  int16_t field;
  int kind;
};

// A composite secondary index: its name and its fields in order.
struct CompositeDef {
  const char* name;
  int16_t fields[4];
  int count;
};

// What a table is made of. The primary key is always the first keyFields columns.
struct TableDef {
  std::span<const ColumnDef> columns;
  int keyFields = 0;  // 0: the table has no key
  std::span<const IndexDef> indexes;
  std::span<const CompositeDef> composites;
};

// Definitions of the tables of one warehouse (speckont is a clone of specyfik).
extern const TableDef kNaglowkiDef, kSpecyfikDef, kStanyMgDef, kKasaDef, kKsiegaDef, kKsiegasaDef;
// Definitions of the firm's tables; kKontrahentDef serves odbiorcy, dostawcy
// and magazyny, kKontMagDef odb_mag_ and dost_mag, kSlownikDef every dictionary and przelicr.
extern const TableDef kNaglowkiFirmyDef, kKatTowDef, kKontrahentDef, kKontMagDef, kDokPlatDef, kDokPlazDef,
    kDodNrDokDef, kSlownikDef;

// Width of the character index of kat_tow_ (column 9) when nothing else is configured.
inline constexpr int kDefaultIsbnLength = 13;

// The folder of a warehouse: the number as text, a point before the 9th
// character when the text is longer than 8 (123456789 gives "12345678.9").
ShortText WarehouseFolderName(int32_t warehouse);
// The path of a warehouse's table: "dane\" folder "\" table.
ShortText WarehouseTablePath(int32_t warehouse, const char* table);

// Creates (or re-creates empty) one table with its primary key; 0 or the layer's code.
[[nodiscard]] int16_t CreateTableWithKey(const ShortText& path, const TableDef& def);
// Adds the table's secondary indexes, single-field then composite; 0 or the layer's code.
[[nodiscard]] int16_t AddSecondaryIndexes(const ShortText& path, const TableDef& def);
// Both of the above; 0 or the layer's code.
[[nodiscard]] int16_t CreateTableFrom(const ShortText& path, const TableDef& def);

// Creates the folder and the tables of one warehouse, showing the progress
// box ("Sprawdzenie istnienia baz magazynu ..." when checkOnly, else "Trwa
// tworzenie pustej bazy magazynu...") with each step's text in its brackets.
// The box stays on the screen for the caller to clear; window, cursor and
// attribute are given back. Any failure ends the program through CheckDBError.
void CreateWarehouseTables(bool checkOnly, int32_t warehouse);

// Creates the firm-wide tables: dane\naglowki, kat_tow_ (character index of
// isbnLength, 1..255), odbiorcy, dostawcy, magazyny, odb_mag_, dost_mag,
// dok_plat, dok_plaz, dodnrdok, przelicr with its row "+" and the
// dictionaries vat, rabat, przykl, nazwa_d and forma_p under dane\pola_ind\.
// Any failure ends the program through CheckDBError.
void CreateFirmTables(int isbnLength = kDefaultIsbnLength);
