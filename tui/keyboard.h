// The keyboard as DOS-style key pairs (character, scan code): a key buffer
// for pushed-back and pre-loaded keys, the translations of terminal input to
// Mazovia letters and PC keys, the one-byte key codes of editors and lists,
// and the clipboard.
#pragma once

#include <cstdint>

#include "base/shorttext.h"
#include "tui/keydecode.h"

// Capacity of the key buffer.
inline constexpr int kKeyBufferSize = 32;

// Empties the key buffer and turns the caps indicator off.
void KeyboardReset();
// True if the key buffer holds a key or the terminal has input waiting.
bool KeyPressed();
// One key pair after all translation (Ctrl+V becomes End): the key buffer
// first, then the terminal. With no terminal input possible (end of input) the key is Esc.
KeyPair ReadKeyRaw();
void ReadKeyRaw(unsigned char& ch, unsigned char& scan);
// The key of an editor: ReadKeyRaw, except that Ctrl+V stays (22, 47), the
// paste, and a Polish Alt key gives its small letter, capital with Shift held.
KeyPair ReadKeyEdit();
// ReadKeyRaw, and a Polish Alt key gives its capital letter.
KeyPair ReadKeyUpper();
// Appends a key to the buffer; false (and nothing kept) when 32 keys wait.
bool PushKey(unsigned char ch, unsigned char scan);
// Puts a key in front of the next one to be read; false when the buffer is full.
bool PushKeyFront(unsigned char ch, unsigned char scan);
// Number of keys waiting in the buffer.
int KeysBuffered();
// Drops every key waiting in the buffer and in the terminal's input.
void DiscardPendingKeys();
// Accepted and silent on this platform: a refused key makes no sound.
void Beep(int frequency);
// Sets a function that runs whenever a key is wanted and the buffer is
// empty, before the terminal is asked; it may push keys (a clock, a test's
// look at the screen). nullptr removes it.
void SetKeyIdleHook(void (*hook)());
// True while the caps indicator (toggled by Ctrl+L) is on.
bool CapsIndicator();
// The one-byte key code of editors and lists (Enter 13, F1 229, Down 250...).
unsigned char KeyCodeOf(KeyPair key);
// The small Polish letter of a Polish Alt scan (18 ę, 24 ó, 30 ą, ...); 0 for any other scan.
unsigned char PolishAltLetter(unsigned char scan);
// Held modifiers where the terminal can tell them (Linux console): 1 Shift, 4 Ctrl, 8 Alt.
int ShiftState();

// The clipboard of the editors: one text.
const ShortText& ClipboardText();
void ClipboardSet(const ShortText& text);

// Well-known key pairs.
namespace keys {
inline constexpr KeyPair kEnter{13, 28};
inline constexpr KeyPair kEsc{27, 1};
inline constexpr KeyPair kTab{9, 15};
inline constexpr KeyPair kShiftTab{0, 15};
inline constexpr KeyPair kBackspace{8, 14};
inline constexpr KeyPair kUp{224, 72};
inline constexpr KeyPair kDown{224, 80};
inline constexpr KeyPair kLeft{224, 75};
inline constexpr KeyPair kRight{224, 77};
inline constexpr KeyPair kHome{224, 71};
inline constexpr KeyPair kEnd{224, 79};
inline constexpr KeyPair kPgUp{224, 73};
inline constexpr KeyPair kPgDn{224, 81};
inline constexpr KeyPair kIns{224, 82};
inline constexpr KeyPair kDel{224, 83};
// F1..F10 are (0, 59..68); F11 and F12 (0, 133) and (0, 134).
constexpr KeyPair F(int n) {
  return KeyPair{0, static_cast<unsigned char>(n <= 10 ? 58 + n : 122 + n)};
}
}  // namespace keys
