// The record-oriented table layer over PostgreSQL: tables named by DOS-style
// paths ("dane\magazyny"), described by the catalogue table tables_list, and
// reached through table handles 1..100. This header is the layer's chief
// header; it includes the connection and query interface.
//
// Every table that the layer creates has a first column "oid" (64-bit,
// filled by an identity default) with the unique index <name>_oidindeks:
// the row identity. tables_list has no row for it, so field numbers count
// the program's fields from 1, and "SELECT * FROM t" yields the row id
// followed by the fields.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/shorttext.h"
#include "sqltable/pgconn.h"

// Field and index names as the catalogue holds them (at most 25 bytes).
using PGName = BasicShortText<25>;

inline constexpr int kPGMaxTables = 100;
inline constexpr int kPGMaxFields = 255;
inline constexpr int kPGFirstComposite = 256;
inline constexpr int kPGLastComposite = 1255;
inline constexpr int kPGRowCacheSize = 60;
// Longest SQL table name: with "_", a 25-byte field name and "_U" an index
// name still fits the server's 63-byte identifiers.
inline constexpr std::size_t kPGMaxSqlName = 35;

// How a value is written in SQL; the numbers are those of record buffers.
enum class PGKind : uint8_t { Number = 0, Text = 1, Blob = 2, Date = 3 };

// One field of an open table, from its catalogue row.
struct PGField {
  PGName name;        // nazp: SQL name of the field
  PGName type;        // typp: "A25", "D", "N", ...
  int16_t typi = 0;   // kind of the single-field index
  bool indexed = false;  // i = "*": has a single-field secondary index
  PGName ci;          // composite index the field belongs to, or empty
  int16_t cilp = 0;   // position inside that composite index
  int16_t typci = 0;  // kind of the composite index
  int bufSize = 0;    // value buffer bytes, terminator included
  int textLen = 0;    // alpha length n of "An", 0 for other types
  PGKind kind = PGKind::Number;
};

// One cached row of the navigation cache: values and its record number.
struct PGCachedRow {
  int32_t recNo = 0;
  std::vector<std::string> values;  // slot 0 the row id, 1..nFields the fields
};

// An open table. Names: `name` as the caller gave it; `sqlName` in FROM
// clauses (a view or snapshot may stand in); `baseName` the real table, for
// catalogue statements, LOCK and writes; `savedName` the sqlName put aside
// while a snapshot table stands in.
struct PGTable {
  int16_t handle = 0;
  ShortText name;
  ShortText sqlName;
  ShortText baseName;
  ShortText savedName;
  ShortText viewName;
  bool viewActive = false;

  int16_t nFields = 0;
  int16_t nKeyFields = 0;  // key fields are always the first nKeyFields
  std::vector<PGField> fields;           // index 1..nFields; 0 unused
  std::vector<std::string> curValues;    // current record: 0 row id, 1..nFields values as text
  int indexHandle = 0;  // 0 primary, 1..255 field number, 256.. composite handle
  std::string whereClause;   // condition of the application's filter helpers
  std::string globalFilter;  // copy of the process-wide filter taken at open
  bool isTemp = false;
  int32_t ilZm = 0;  // il_zm seen last

  // Navigation state.
  ShortText cursorName;  // "c" and the handle
  bool cursorOpen = false;
  bool viewStale = false;
  bool posStale = false;
  bool positioned = false;
  bool rebuildCursor = false;
  bool pendingSearch = false;
  bool useWhereInSearch = false;
  int32_t curRec = 0;
  int32_t nocPos = 0;
  int32_t rowCount = 0;
  std::vector<PGCachedRow> rowCache;  // kPGRowCacheSize rows once allocated
  bool cacheAlloc = false;
  bool cacheOn = false;
  int cacheCount = 0;
  int cachePos = 0;
  // The rows that the next FETCH FORWARD returns follow row cursorAt; -1 when
  // the server cursor's place is not known.
  int32_t cursorAt = 0;
  // Rows this process updated in place since the snapshot was taken, by row
  // id: a fetch from the older snapshot shows them as written, never as they
  // were. Emptied with every new snapshot.
  std::unordered_map<std::string, std::vector<std::string>> ownWrites;

  // Write state.
  bool changedByUs = false;  // a change counter bump is owed
  bool controlStale = false;  // a write of ours: the control mirror is out of date

  // Control mirror (sqltable/pgcontrol.h).
  bool controlUse = true;     // false: questions go to the server
  int controlSlot = 0;        // 1 or 2 once a slot is owned, 0 none
  int32_t controlCount = -1;  // entries loaded, -1 not loaded
  int32_t controlIlZm = 0;    // il_zm read just before the mirror's load
};

// A composite index descriptor made by PGKeyMap.
struct PGCompositeIndex {
  PGName indexName;
  ShortText tablePath;
  std::vector<int16_t> fieldNumbers;
  std::vector<PGName> fieldNames;
};

// Parsed field type: the letter's SQL type, buffer size and kind.
struct PGTypeInfo {
  char letter = 0;
  int size = 0;        // n after the letter, 0 when none
  bool hasSize = false;
  std::string sqlType;
  int bufSize = 0;
  PGKind kind = PGKind::Number;
};

// Set before PGTblCreate to make the next created table temporary (one call).
extern bool PGNextTblTemp;
// The process-wide filter: a table name and a condition that every later
// PGTblOpen of exactly that name copies (set and cleared by the navigation layer).
extern ShortText PGGlobalFilterTable;
extern std::string PGGlobalFilterText;

// Calls that other parts of the layer register when they first hold state
// tied to tables, so that closing and shutting down release it.
struct PGTableHooks {
  void (*releaseControlCache)(int16_t tbl) = nullptr;  // before a table closes
  void (*closeRecordBuffersOf)(int16_t tbl) = nullptr; // after a table closes
  void (*freeAllRecordBuffers)() = nullptr;            // shutdown, mode above 0
  void (*clearLockRegister)() = nullptr;               // shutdown, mode below 2
  // Lock kind registered for a table's SQL base name (0 none); searches and
  // re-alignment take their own share lock only for unregistered tables.
  int (*lockKindOf)(const ShortText& baseName) = nullptr;
};
PGTableHooks& PGHooks();

// --- Names and types ---
// SQL identifier of a path or field name: upper case, '\' to '_', letters,
// digits and '_' kept, other bytes as two hex digits, "N" before a non-letter
// start. A result longer than kPGMaxSqlName keeps its head and ends in "_" and
// ten hex digits of a hash of the whole, so distinct names stay distinct.
ShortText PGSqlName(const ShortText& name);
// Text escaped for use between single quotes: byte 0 to a blank, 1..31 as a
// backslash and three octal digits, and \ before % ' \ _.
std::string PGEscapeStr(std::string_view text);
// Parses a type text. Strict (PGTblCreate's rule) refuses a size after
// $ D I N S X, a missing size after A B F G M O, a non-digit or a size above 255;
// loose only needs a known letter. False for a bad type.
bool PGParseType(const ShortText& type, bool strict, PGTypeInfo& out);

// --- Handles ---
// The open table of a handle, or null for a bad or free handle.
PGTable* PGTableAt(int handle);
// Number of open tables.
int PGOpenTableCount();

// --- Catalogue operations (codes as in pgconn.h) ---
// Opens a table by path; the flag is accepted and ignored. 72 when 100 are
// open, 118 when the catalogue cannot be read, 33 for an unknown field type.
[[nodiscard]] int16_t PGTblOpen(const ShortText& name, int16_t& handle, int indexHandle, int flag = 0);
// Closes a table, its cursor, snapshot and view; bumps the change counter
// when this process changed it. 76 for a bad handle or a failed statement.
int16_t PGTblClose(int16_t handle);
// Creates (or re-creates) a table with the given fields, its catalogue rows
// and its row id index. 31, 33 or 118 on failure.
[[nodiscard]] int16_t PGTblCreate(const ShortText& name, int nFields, const PGName names[],
                                  const PGName types[]);
// Drops a table and its catalogue rows; 118 unless the name begins with "TMP_".
[[nodiscard]] int16_t PGTblDelete(const ShortText& name);
// Removes every row; 118 on failure.
[[nodiscard]] int16_t PGTblEmpty(const ShortText& name);
// Whether the table can be selected from; always 0.
int16_t PGTblExist(const ShortText& name, bool& exists);
// The same for a raw SQL name, not mapped.
int16_t PGTblExist_pg(const ShortText& sqlName, bool& exists);
// Whether the table has no row; 118 when it cannot be read.
[[nodiscard]] int16_t PGTblIsEmpty(const ShortText& name, bool& empty);
// Replaces target by a copy of source with its indexes and rows; 120 without source.
[[nodiscard]] int16_t PGTblCopy(const ShortText& source, const ShortText& target);
// Appends the rows of source to target; 120 when either is missing.
[[nodiscard]] int16_t PGTblAdd(const ShortText& source, const ShortText& target);
// Renames a table, its indexes and catalogue rows; 118 on failure.
[[nodiscard]] int16_t PGTblRename(const ShortText& oldName, const ShortText& newName);
// Re-creates target empty with the fields and indexes of source.
[[nodiscard]] int16_t PGTblCloneIdx(const ShortText& source, const ShortText& target);
// Adds an index: kind 0 the primary key over fields[0..n-1] (duplicates
// dropped, oldest kept); kinds 1..4 on fields[0], a field number or a
// composite handle. 31, 33, 57, 94, 95, 118, 120 on failure.
[[nodiscard]] int16_t PGKeyAdd(const ShortText& name, int nFields, const int16_t fields[], int kind);
// Drops an index: 0 all (and the primary key), a field number, or a composite handle.
[[nodiscard]] int16_t PGKeyDrop(const ShortText& name, int indexHandle);
// Makes or finds a composite index descriptor; 33 for a bad field, a name
// reused with other fields, or no free handle.
[[nodiscard]] int16_t PGKeyMap(const ShortText& name, int nFields, const int16_t fields[],
                               const PGName& indexName, int& indexHandle);
// The descriptor of a composite handle, or null.
const PGCompositeIndex* PGKeyDescriptor(int indexHandle);
// Frees a composite descriptor.
void PGKeyRelease(int indexHandle);
// A unique name for a temporary table: "TMP_" and the digits of the server's timestamp.
[[nodiscard]] int16_t PGDefNameTmpTable(ShortText& name);
// Turns an open table into a view of a query ("V" and the base name).
[[nodiscard]] int16_t PGTblViewSet(int16_t handle, const std::string& query);
// Changes a field's type in the table and the catalogue; 75 for a bad field, 118 on failure.
[[nodiscard]] int16_t PGFldSetType(const ShortText& name, int field, const ShortText& newType);
// Mode below 2 clears the lock register; above 0 closes every table and frees
// record buffers and composite descriptors; always clears the handle table.
void PGShutdownTables(int mode);
// Bumps the table's change counter in tables_list when this process changed
// it and it is not temporary; clears the debt. 0 or 118.
int16_t PGBumpChangeCounter(PGTable& table);

// --- Table facts ---
// The path the table was opened with; 76 for a bad handle.
int16_t PGTblName(int16_t handle, ShortText& name);
// Field count; 76 for a bad handle.
int16_t PGRecNFlds(int16_t handle, int16_t& count);
// Key field count; 76 for a bad handle.
int16_t PGKeyNFlds(int16_t handle, int16_t& count);
// Field number of a name, compared upper-cased; 74 when unknown.
int16_t PGFldHandle(int16_t handle, const ShortText& fieldName, int16_t& field);
// Type text of a field; 75 when out of range.
int16_t PGFldType(int16_t handle, int field, ShortText& type);
// SQL name of a field; 75 when out of range.
int16_t PGFldName(int16_t handle, int field, ShortText& fieldName);
