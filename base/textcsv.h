// CSV lists (base/csv.h) beyond reading one field: a list split over two
// texts, and lists rebuilt field by field. Results are cut at 255 bytes.
#pragma once

#include "base/shorttext.h"

// CsvField of first and second taken as one list of up to 510 characters; a
// field that begins with '"' ends at the next '"'.
ShortText CsvFieldTwoPart(const ShortText& first, const ShortText& second, int index);
// The list with field index replaced by value (quoted if it holds ','), fields
// added as needed; what would pass 255 bytes is cut from the end of the value.
// Index below 1 leaves the list as it is.
ShortText CsvReplaceField(const ShortText& list, const ShortText& value, int index);
// ',' appended until the list has index fields (an empty list counts as one
// empty field here, so index 1 leaves it empty).
ShortText CsvPadToField(const ShortText& list, int index);
// Rewrites both lists with every non-empty field in quotes, sets their field
// counts, and is false when list b has more fields than list a.
bool CsvNormalize(ShortText& a, ShortText& b, int& countA, int& countB);
