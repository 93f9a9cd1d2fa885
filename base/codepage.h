// Conversions between the Mazovia code page used inside the system and the
// code pages spoken at its borders, and the Polish-aware letter case rules.
// Each conversion exists for one byte and for a whole text; bytes that a
// conversion does not name pass unchanged. None of them allocates.
#pragma once

#include <cstddef>

#include "base/shorttext.h"

// Mazovia to code page 852; used for the terminal type CP852.
unsigned char MazToLatin2(unsigned char c);
ShortText MazToLatin2(const ShortText& s);
// Code page 852 to Mazovia: only the 18 Polish letters.
unsigned char Latin2ToMaz(unsigned char c);
ShortText Latin2ToMaz(const ShortText& s);
// Mazovia to ISO 8859-2 for the screen: frame drawing reduced, other high bytes blank.
unsigned char MazToIsoScreen(unsigned char c);
ShortText MazToIsoScreen(const ShortText& s);
// Mazovia to ISO 8859-2 for exported files and PostScript.
unsigned char MazToIsoFile(unsigned char c);
ShortText MazToIsoFile(const ShortText& s);
// Mazovia to code page 852 for files: the letters and the system's own six only.
unsigned char MazToLatin2Text(unsigned char c);
ShortText MazToLatin2Text(const ShortText& s);
// Windows 1250 to and from Mazovia.
unsigned char Cp1250ToMaz(unsigned char c);
ShortText Cp1250ToMaz(const ShortText& s);
unsigned char MazToCp1250(unsigned char c);
ShortText MazToCp1250(const ShortText& s);
// Polish letters to their base letters, and the frame bytes reduced.
unsigned char MazToAscii(unsigned char c);
ShortText MazToAscii(const ShortText& s);
// Only the system's own letters made plain; the 18 Polish letters stay.
unsigned char MazToPlain(unsigned char c);
ShortText MazToPlain(const ShortText& s);
// Each Polish letter as its base letter and ',' ('.' for ż and Ż), any other
// byte followed by a blank; input cut at 127 characters.
ShortText MazToDigraph(const ShortText& s);
// ISO 8859-2 to Mazovia: only the 18 letters.
unsigned char IsoToMaz(unsigned char c);
ShortText IsoToMaz(const ShortText& s);
// Mazovia to the database's LATIN2: the letters, and 255 (the system's own
// separator) written as 1. DbToMaz is its inverse; byte 0 stays 0.
unsigned char MazToDb(unsigned char c);
ShortText MazToDb(const ShortText& s);
unsigned char DbToMaz(unsigned char c);
ShortText DbToMaz(const ShortText& s);
// In-place forms over a raw buffer, for the record layer's hot path.
void MazToDbInPlace(char* bytes, std::size_t count);
void DbToMazInPlace(char* bytes, std::size_t count);
// Replaces the two-byte UTF-8 forms of the 18 letters by their Mazovia bytes.
ShortText Utf8ToMaz(const ShortText& s);
// Capital of a letter: a..z and the nine small Polish letters; all else unchanged.
unsigned char MazUpCase(unsigned char c);
ShortText MazUpCaseText(const ShortText& s);
// Small of a letter: A..Z and the nine Polish capitals.
unsigned char MazLowCase(unsigned char c);
ShortText MazLowCaseText(const ShortText& s);
// True for the 18 Polish letters in Mazovia.
bool IsPolishLetter(unsigned char c);
