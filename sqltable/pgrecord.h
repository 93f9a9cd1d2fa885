// Record buffers: typed fields of an open table held as the text that goes
// to or comes from the server. Handles run from 1 to 199. Values are
// allocated once at their full size, so reading a row allocates nothing.
// A field is never null in a buffer: its blank form is "0" for a number, the
// empty text for text and blob, and "0001-01-01" for a date.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "sqltable/pgtable.h"

inline constexpr int kPGMaxRecordBuffers = 199;
inline constexpr int16_t kPGBadBlob = 56;           // a blob value holds a bad hex pair
inline constexpr int kPGBlobMaxBytes = 8192;      // bytes of one blob value
inline constexpr int kPGBlobMaxHex = 16384;       // hex characters of one blob value
inline constexpr int kPGBlobStrMaxHex = 1024;     // characters read by PGGetBlobStr
inline constexpr int kPGRawSlot = 257;            // raw area bytes of a non-blob field
inline constexpr int kPGRawBlobStart = 49151;     // raw area offset of the first blob
inline constexpr int kPGRawBlobSlot = 16385;      // raw area bytes of one blob field
inline constexpr int kPGDateBufSize = 12;         // a date in a buffer has room for 12
inline constexpr const char* kPGBlankDate = "0001-01-01";

// One field of a record buffer.
struct PGRecField {
  std::string value;  // text as the server knows it (LATIN2, hex for blobs)
  int capacity = 0;   // bytes, terminator included; a value holds capacity-1 at most
  PGKind kind = PGKind::Number;
  int textLen = 0;    // n of "An", 0 for other types
};

// A record buffer of an open table.
struct PGRecordBuffer {
  int16_t table = 0;
  int16_t nFields = 0;
  std::vector<PGRecField> fields;  // 1..nFields; 0 unused
};

// The raw area of PGRawGet / PGRawPut: field f (not a blob) at (f-1)*257 as a
// terminated text, the n-th blob field at 49151 + (n-1)*16385.
using PGRawArea = std::vector<char>;

// --- Buffers ---
// Allocates a blank buffer for a table: 76 bad table, 103 none free.
[[nodiscard]] int16_t PGRecBufOpen(int16_t tbl, int16_t& rec);
// Frees a buffer: 104 for a bad handle.
int16_t PGRecBufClose(int16_t rec);
// Blanks every field.
[[nodiscard]] int16_t PGRecBufEmpty(int16_t rec);
// Copies the values of one buffer to another by text: 81 when the field
// counts or any field's capacity differ.
[[nodiscard]] int16_t PGRecBufCopy(int16_t source, int16_t target);
// Copies the table's current record into the buffer, unconverted; 81 when the
// table's layout is not the buffer's.
[[nodiscard]] int16_t PGRecGet(int16_t tbl, int16_t rec);
// PGRecGet, but 105 when the table has no row.
[[nodiscard]] int16_t PXRecGetD(int16_t tbl, int16_t rec);
// Copies all values into the raw area, sized here to the layout.
[[nodiscard]] int16_t PGRawGet(int16_t rec, PGRawArea& raw);
// Takes all values from a raw area (each cut to its field's capacity); 31 when
// the area is smaller than the layout.
[[nodiscard]] int16_t PGRawPut(int16_t rec, const PGRawArea& raw);
// Sum of the table's value buffer sizes of all fields.
[[nodiscard]] int16_t PGRecLen(int16_t tbl, int32_t& size);

// --- Field writes (104 bad buffer, 76 table closed, 75 bad field) ---
[[nodiscard]] int16_t PGPutShort(int16_t rec, int fld, int16_t value);
[[nodiscard]] int16_t PGPutLong(int16_t rec, int fld, int32_t value);
// "Y" fields get the integer exactly; other fields the full-precision exponent form.
[[nodiscard]] int16_t PGPutDoub(int16_t rec, int fld, double value);
// Fixed, seven decimals, trimmed.
[[nodiscard]] int16_t PGPutExt(int16_t rec, int fld, Real value);
// Cut to the field's length, trailing blanks removed under PGTrimAlpha,
// Mazovia converted to LATIN2.
[[nodiscard]] int16_t PGPutAlpha(int16_t rec, int fld, const ShortText& value);
// A day serial written "YYYY-MM-DD".
[[nodiscard]] int16_t PGPutDate(int16_t rec, int fld, int32_t days);
// The blank form of the field's kind.
[[nodiscard]] int16_t PGPutBlank(int16_t rec, int fld);
// Bytes written as hex, at most 8192 bytes taken.
[[nodiscard]] int16_t PGPutBlob(int16_t rec, int fld, const void* data, int32_t length);
// The bytes of a text written as hex.
[[nodiscard]] int16_t PGPutBlobStr(int16_t rec, int fld, const ShortText& value);

// --- Field reads: a number that does not parse reads as 0 with code 0 ---
[[nodiscard]] int16_t PGGetShort(int16_t rec, int fld, int16_t& value);
[[nodiscard]] int16_t PGGetLong(int16_t rec, int fld, int32_t& value);
[[nodiscard]] int16_t PGGetDoub(int16_t rec, int fld, double& value);
[[nodiscard]] int16_t PGGetExt(int16_t rec, int fld, Real& value);
// LATIN2 converted back to Mazovia, cut to 255 bytes.
[[nodiscard]] int16_t PGGetAlpha(int16_t rec, int fld, ShortText& value);
// Digits only: year, month, day encoded as a day serial; no digits gives 0.
[[nodiscard]] int16_t PGGetDate(int16_t rec, int fld, int32_t& days);
// Whether the field is blank: empty, or for a number also "NULL" in any case.
[[nodiscard]] int16_t PGFldBlank(int16_t rec, int fld, bool& blank);
// Hex pairs read back into data (room for 8192 bytes); 56 at a bad pair, with
// the bytes before it in data and length.
[[nodiscard]] int16_t PGGetBlob(int16_t rec, int fld, void* data, int32_t& length);
// The same into a text of at most 255 bytes, from at most 1024 characters.
[[nodiscard]] int16_t PGGetBlobStr(int16_t rec, int fld, ShortText& value);

// --- For the layer's own modules (navigation, writes) ---
// The buffer of a handle, or null for a bad or free handle.
PGRecordBuffer* PGRecordAt(int rec);
// The checks that every buffer call runs first: 104, then 76 when its table is closed.
[[nodiscard]] int16_t PGRecCheck(int16_t rec, PGRecordBuffer*& buf);
// The same and 75 for a field number outside 1..nFields.
[[nodiscard]] int16_t PGRecCheckField(int16_t rec, int fld, PGRecordBuffer*& buf);
// The blank value text of a kind.
std::string_view PGBlankValue(PGKind kind);
// A value as an SQL literal of its kind: text and blob escaped in single
// quotes even when empty; a number bare, and quoted when it is not plain
// number text, so that no value can change a statement; an empty number or
// date is "NULL" (a NULL that another program wrote reads back as empty).
std::string PGValueLiteral(PGKind kind, std::string_view value);
// column op value, for op "=", "<", "<=" or ">" (spaces around it kept). An
// empty number or date stands for NULL, which sorts after every value, so the
// comparison becomes the matching IS NULL / IS NOT NULL test.
std::string PGCondition(std::string_view column, PGKind kind, std::string_view value, std::string_view op);
// Number of open record buffers.
int PGRecordBufferCount();
