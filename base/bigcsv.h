// Long CSV lists: the comma-separated form of ShortText lists, kept in a
// zero-terminated byte buffer of up to 65,519 bytes (a database text column of
// that size). Fields count from 1; a separator inside quotes does not separate.
#pragma once

#include <span>

#include "base/shorttext.h"

// Bytes of the largest list buffer, its terminating zero included.
inline constexpr int kBigCsvBytes = 65519;

// A buffer is the caller's bytes; at most the first kBigCsvBytes are used, and
// the text ends at the first zero byte (or at the end of the buffer).
using BigCsvBuffer = std::span<char>;
using BigCsvConstBuffer = std::span<const char>;

// Number of fields: 0 if the first byte is 0, else 1 plus the separators outside quotes.
int BigCsvFieldCount(BigCsvConstBuffer buffer, char separator = ',', char quote = '"');
// Field at index without its enclosing quotes, cut at 255 bytes; false and an
// empty out when there is no such field.
bool BigCsvField(BigCsvConstBuffer buffer, int index, char separator, char quote, ShortText& out);
// Replaces field index in place, moving the tail. The value is quoted if the old
// field was or if it holds ','. A value longer than 253 bytes, or an index with
// no field, is refused (false) and the buffer left as it was. Bytes that would
// pass the buffer's end are not inserted.
[[nodiscard]] bool BigCsvSetField(BigCsvBuffer buffer, const ShortText& value, int index);
// Appends ',' and the value (quoted if it holds ',') as a new last field, cut at
// the buffer's end; false if nothing of the value fitted.
bool BigCsvAppend(BigCsvBuffer buffer, const ShortText& value);
