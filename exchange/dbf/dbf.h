// dBASE files (dBASE 2, 3 and 3+) for exchange with other programs: one table
// kept open, records addressed by number from 1, fields by number from 1 or by
// name, one record at a time in the table's buffer.
//
// Contract:
// - Every operation sets DbfStatus: 0 for success, else the code that
//   DbfErrorText explains (the layer's own 1..4 and 128..132, the platform's
//   error numbers for the rest). Bad files give a code, never a crash.
// - Text inside is Mazovia. The table's code page (from the language byte of
//   the header, or set by DbfSetCodePage) converts every field on its way in
//   and out; kDbfAsIs keeps the bytes.
// - A created file appears under its name only at DbfClose, complete: until
//   then it is written under a temporary name in the same directory, and any
//   failure removes it, leaving an older file of that name as it was. An
//   opened file keeps in its header the count of the records that reached the
//   disk whole, so a failed append never shows as a record.
// - Reading does not allocate: records come from a block read ahead, and
//   fields are returned as ShortText values.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/filevar.h"
#include "base/real.h"
#include "base/shorttext.h"

// The layer's own codes.
inline constexpr int kDbfNotFound = 1;          // no such file
inline constexpr int kDbfNotOpenForInput = 2;   // read of a table that is not open
inline constexpr int kDbfNotOpenForOutput = 3;  // write to a table opened read-only
inline constexpr int kDbfNotOpen = 4;           // operation on a closed table
inline constexpr int kDbfNotDbase = 128;        // version, layout or descriptors refused
inline constexpr int kDbfBadFieldType = 129;    // a type other than C D F L M N
inline constexpr int kDbfRecordRange = 130;     // record number outside 1..count
inline constexpr int kDbfBufferError = 132;     // bad field number or value
// Platform codes with a text of their own (Linux error numbers).
inline constexpr int kDbfSeekPastEnd = 29;      // ESPIPE
inline constexpr int kDbfUnexpectedEnd = 61;    // ENODATA: the file ends inside a record or header
inline constexpr int kDbfWriteError = 5;        // EIO
inline constexpr int kDbfDiskFull = 28;         // ENOSPC (also EFBIG and EDQUOT)
inline constexpr int kDbfTooManyFiles = 24;     // EMFILE (also ENFILE)
inline constexpr int kDbfAccessLost = 13;       // EACCES (also EPERM, EBADF, ESTALE)

// The last code of any Dbf operation in this process.
extern int DbfStatus;

// How the text of the file is coded; conversions are those of base/codepage.h.
enum class DbfCodePage : uint8_t { kAsIs, kLatin2, kCp1250, kIso };

// One field as the table describes it. offset counts from the record's start,
// so the first field has offset 1 (byte 0 is the delete flag).
struct DbfField {
  BasicShortText<10> name;
  char type = 'C';
  uint8_t width = 0;
  uint8_t decimals = 0;
  uint16_t offset = 0;
};

// A field asked of DbfCreate.
struct DbfFieldSpec {
  BasicShortText<10> name;
  char type = 'C';
  int width = 0;
  int decimals = 0;
};

// One open table. Fields are read through the functions below; the object
// closes (and completes) its file when destroyed.
class DbfFile {
 public:
  DbfFile();
  ~DbfFile();
  DbfFile(const DbfFile&) = delete;
  DbfFile& operator=(const DbfFile&) = delete;

  bool IsOpen() const { return file.IsOpen(); }
  int FieldCount() const { return static_cast<int>(fields.size()); }
  // Field by number 1..FieldCount (the caller keeps it in range).
  const DbfField& Field(int number) const { return fields[number - 1]; }

  FileVar file;
  unsigned char header[32] = {};  // the first 32 bytes as found
  int version = 0;
  int64_t recordCount = 0;
  int headerSize = 0;
  int recordSize = 0;
  BasicShortText<8> date;  // last update, MM/DD/YY
  std::vector<DbfField> fields;
  std::vector<char> record;  // the current record; byte 0 the delete flag
  bool recordChanged = false;
  bool tableChanged = false;
  bool readOnly = false;
  DbfCodePage codePage = DbfCodePage::kAsIs;

  // Private to the layer: where the file lives and what is buffered.
  struct Io;
  std::unique_ptr<Io> io;
};

// Opens an existing table (read and write, or read only when the disk allows
// no more); the code page follows the header's language byte.
[[nodiscard]] int DbfOpen(DbfFile& table, const ShortText& name);
// Makes a new dBASE 3 table of the fields, with the code page's language byte.
// Names of 1..10 characters, widths 1..255, decimals 0 or at most width - 2.
[[nodiscard]] int DbfCreate(DbfFile& table, const ShortText& name, std::span<const DbfFieldSpec> fields,
                            DbfCodePage codePage = DbfCodePage::kAsIs);
// Writes what is pending, the header (count, today's date) and the end byte
// 0x1A when the table changed, and closes; a created table takes its name.
int DbfClose(DbfFile& table);
// Sets the code page in which the file's text is read and written.
void DbfSetCodePage(DbfFile& table, DbfCodePage codePage);

// Reads record n into the buffer; outside 1..count gives 130 and a blank buffer.
[[nodiscard]] int DbfReadRecord(DbfFile& table, int64_t n);
// Writes the buffer over record n (1..count).
[[nodiscard]] int DbfWriteRecord(DbfFile& table, int64_t n);
// Writes the buffer as a new last record.
[[nodiscard]] int DbfAppendRecord(DbfFile& table);
// Fills the buffer with blanks: a live record with every field empty.
void DbfBlankRecord(DbfFile& table);
// True if the record in the buffer carries the delete mark '*'.
bool DbfIsDeleted(const DbfFile& table);
// Sets or clears the delete mark of the record in the buffer.
void DbfMarkDeleted(DbfFile& table, bool deleted);

// Field text: cut at the first byte 0, blanks at the right removed, converted
// from the code page. A number outside 1..FieldCount gives 132 and "".
ShortText DbfGetField(const DbfFile& table, int number);
// Puts text into the field: numbers right-aligned, other types left-aligned,
// filled with blanks. Text is cut at the width; a number too wide gives 132.
int DbfPutField(DbfFile& table, int number, const ShortText& text);
// Puts a number right-aligned with the field's decimals; a magnitude of
// 10^(integer places) or more gives 132 and leaves the field as it was.
int DbfPutNumber(DbfFile& table, int number, Real value);
// Puts a date "DD-MM-YYYY" (or "DD-MM-YY") as YYYYMMDD; a bad date gives 132.
int DbfPutDate(DbfFile& table, int number, const ShortText& date);
// The date of a field of 8 characters as "DD-MM-YYYY"; an empty field reads as today.
ShortText DbfGetDate(const DbfFile& table, int number);
// Number of the field of that name (letter case ignored), or 0.
int DbfFindField(const DbfFile& table, const ShortText& name);
// First live record from 1 upward whose field equals the text, or 0; the
// buffer holds the last record read.
int64_t DbfFindValue(DbfFile& table, int field, const ShortText& text);

// Rewrites the table without its deleted records and keeps it open.
[[nodiscard]] int DbfPack(DbfFile& table);
// Called after each copied record with its count and the total to copy.
using DbfProgressFn = void (*)(void* context, int64_t done, int64_t total);
// Appends the live records of the file source to the file target, each field
// of the target taking the source's field of the same name.
[[nodiscard]] int DbfAppendFromFiles(const ShortText& source, const ShortText& target,
                                     DbfProgressFn progress = nullptr, void* context = nullptr);

// "Błąd pliku DBASE.@" and the text of the code.
ShortText DbfErrorText(int code);
// DbfErrorText, with the notice for a file from outside and the closing line:
// "Program musi zakończyć działanie." when data are unsafe, else "Program kończy działanie.".
ShortText DbfStopText(int code, bool fromOutside, bool dataUnsafe);

// With the screen (dbf_ui.cpp):
// DbfAppendFromFiles under the notice "Dopisywanie DBF@z: ...@do: ...@[ / ]" when showProgress.
[[nodiscard]] int DbfAppendFrom(const ShortText& source, const ShortText& target, bool showProgress);
// Shows DbfStopText in a box and ends the program (exit status 0).
[[noreturn]] void DbfStop(int code, bool fromOutside, bool dataUnsafe);
