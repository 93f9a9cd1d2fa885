// Check digits of EAN-13 bar codes and ISBN numbers.
#pragma once

#include "base/shorttext.h"

// The EAN-13 check digit of the first 12 digits as one character; a code of
// more than 12 characters is shortened by one first. Empty for fewer than 12
// characters or a non-digit among the first 12.
ShortText Ean13CheckDigit(const ShortText& code);
// 13 digits (after keeping only digits) whose last is the check digit.
bool Ean13Valid(const ShortText& code);
// After KeepAlnum: 13 characters tested as EAN-13, 10 as ISBN ('X' for 10).
bool IsbnOrEanValid(const ShortText& code);
// The ISBN "dd-ddddd-dd-c" inside an EAN beginning "97", "98" or "99"; empty otherwise.
ShortText EanToIsbn(const ShortText& ean);
