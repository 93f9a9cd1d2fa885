// Inside the field editors: what a key does to a field.
#pragma once

#include "tui/keydecode.h"

namespace tui_detail {

// Key codes the editors act on.
inline constexpr unsigned char kCodeBackspace = 8;
inline constexpr unsigned char kCodeCopy = 3;       // Ctrl+C
inline constexpr unsigned char kCodePaste = 22;     // Ctrl+V
inline constexpr unsigned char kCodeClear = 127;    // Ctrl+Backspace
inline constexpr unsigned char kCodeHome = 241;
inline constexpr unsigned char kCodeLeft = 245;
inline constexpr unsigned char kCodeRight = 247;
inline constexpr unsigned char kCodeEnd = 249;
inline constexpr unsigned char kCodeDel = 253;
inline constexpr unsigned char kCodeEsc = 27;
inline constexpr unsigned char kCodeF1 = 229;

// True for a key that types its byte: a character from 32, not Ctrl+Backspace,
// not an extended key.
bool TypesByte(KeyPair key);

}  // namespace tui_detail
