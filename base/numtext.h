// Lenient numbers from text: the number is looked for inside the text, and
// anything that does not convert gives 0, never an error.
#pragma once

#include <cstdint>

#include "base/real.h"
#include "base/shorttext.h"

// From the first '+', '-' or digit up to the last digit, as a 32-bit decimal
// integer; 0 for an empty text, no digits, stray characters between or overflow.
int32_t TextToInt(const ShortText& text);
// From the first of '+', '-', '.' or a digit up to the last digit or '.', with
// the first ',' read as '.'; 0 for an empty or unconvertible text.
Real TextToReal(const ShortText& text);
