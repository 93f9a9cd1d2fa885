// CSV lists: fields separated by ',', a field may stand in '"' and then holds
// ',' without separating. There is no escape for a '"' inside a field. Fields
// count from 1. Bad input gives an empty field or 0, never an error.
#pragma once

#include <cstdint>

#include "base/real.h"
#include "base/shorttext.h"

// 0 for an empty list; otherwise 1 plus the number of ',' outside quotes.
int CsvFieldCount(const ShortText& list);
// Field at index without its enclosing quotes; a list ending in ',' reads as if
// "0" stood behind it. Index 0, or above the count, gives an empty text.
ShortText CsvField(const ShortText& list, int index);
// CsvField read by TextToReal.
Real CsvFieldReal(const ShortText& list, int index);
// CsvField read by TextToInt.
int32_t CsvFieldInt(const ShortText& list, int index);
