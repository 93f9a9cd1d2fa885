#include "base/codepage.h"

#include <array>

namespace {

using Table = std::array<unsigned char, 256>;

// The 18 Polish letters, small then capital, in each code page.
constexpr unsigned char kMaz[18] = {0x86, 0x8D, 0x91, 0x92, 0xA4, 0xA2, 0x9E, 0xA6, 0xA7,
                                    0x8F, 0x95, 0x90, 0x9C, 0xA5, 0xA3, 0x98, 0xA0, 0xA1};
constexpr unsigned char kLatin2[18] = {0xA5, 0x86, 0xA9, 0x88, 0xE4, 0xA2, 0x98, 0xAB, 0xBE,
                                       0xA4, 0x8F, 0xA8, 0x9D, 0xE3, 0xE0, 0x97, 0x8D, 0xBD};
constexpr unsigned char kWin1250[18] = {0xB9, 0xE6, 0xEA, 0xB3, 0xF1, 0xF3, 0x9C, 0x9F, 0xBF,
                                        0xA5, 0xC6, 0xCA, 0xA3, 0xD1, 0xD3, 0x8C, 0x8F, 0xAF};
constexpr unsigned char kIso[18] = {0xB1, 0xE6, 0xEA, 0xB3, 0xF1, 0xF3, 0xB6, 0xBC, 0xBF,
                                    0xA1, 0xC6, 0xCA, 0xA3, 0xD1, 0xD3, 0xA6, 0xAC, 0xAF};
constexpr char kBase[18] = {'a', 'c', 'e', 'l', 'n', 'o', 's', 'z', 'z',
                            'A', 'C', 'E', 'L', 'N', 'O', 'S', 'Z', 'Z'};

constexpr Table Identity() {
  Table t{};
  for (int i = 0; i < 256; ++i) t[i] = static_cast<unsigned char>(i);
  return t;
}

constexpr void MapLetters(Table& t, const unsigned char (&from)[18], const unsigned char (&to)[18]) {
  for (int i = 0; i < 18; ++i) t[from[i]] = to[i];
}

// The system's own six letters go out as plain letters. The marked w (0x9B) is
// changed only by the conversions that name it: screen, ASCII and plain.
constexpr void PlainOwnLetters(Table& t) {
  t[0xAD] = 'A';
  t[0xAE] = 'E';
  t[0xAF] = 'E';
  t[0xB0] = 'O';
  t[0xB1] = 'O';
  t[0xB2] = 'U';
}

// Frame bytes that have no place in code page 852 or plain text.
constexpr void ReduceFrames852(Table& t) {
  t[0xB7] = 0xBF;
  t[0xD4] = 0xC0;
  t[0xDD] = 0xDB;
  t[0xDE] = 0xDB;
  t[0xFB] = '<';
}

constexpr Table BuildMazToLatin2() {
  Table t = Identity();
  MapLetters(t, kMaz, kLatin2);
  PlainOwnLetters(t);
  ReduceFrames852(t);
  return t;
}

constexpr Table BuildLettersOnly(const unsigned char (&from)[18], const unsigned char (&to)[18]) {
  Table t = Identity();
  MapLetters(t, from, to);
  return t;
}

constexpr Table BuildMazOut(const unsigned char (&to)[18]) {
  Table t = BuildLettersOnly(kMaz, to);
  PlainOwnLetters(t);
  return t;
}

constexpr Table BuildMazToIsoScreen() {
  Table t = Identity();
  // Everything from 0x7E up that the terminal cannot show is a blank, the
  // system's own six letters included; only the listed frame bytes survive.
  for (int i = 0x7E; i < 256; ++i) t[i] = ' ';
  MapLetters(t, kMaz, kIso);
  t[0xB3] = t[0xDD] = t[0xDE] = '|';
  t[0xC4] = t[0xD9] = '-';
  t[0xDB] = '#';
  t[0xDC] = '_';
  t[0xDF] = '^';
  t[0xFB] = '<';
  t[0x18] = '!';
  t[0x19] = 0xAD;
  t[0x9B] = 'w';
  return t;
}

constexpr Table BuildMazToIsoFile() {
  Table t = BuildMazOut(kIso);
  t[0xB3] = t[0xBA] = '|';
  t[0xB7] = '*';
  t[0xBC] = 0xD9;
  t[0xBF] = '>';
  t[0xCD] = 0xC4;
  t[0xD4] = 0xC0;
  return t;
}

constexpr Table BuildMazToAscii() {
  Table t = Identity();
  for (int i = 0; i < 18; ++i) t[kMaz[i]] = static_cast<unsigned char>(kBase[i]);
  t[0x80] = '$';
  t[0x9B] = 'w';
  PlainOwnLetters(t);
  ReduceFrames852(t);
  return t;
}

constexpr Table BuildMazToPlain() {
  Table t = Identity();
  PlainOwnLetters(t);
  t[0x9B] = 'w';
  return t;
}

constexpr Table BuildMazToDb() {
  Table t = BuildLettersOnly(kMaz, kIso);
  t[255] = 1;
  return t;
}

constexpr Table BuildDbToMaz() {
  Table t = BuildLettersOnly(kIso, kMaz);
  t[1] = 255;
  return t;
}

constexpr Table BuildUpCase() {
  Table t = Identity();
  for (int c = 'a'; c <= 'z'; ++c) t[c] = static_cast<unsigned char>(c - 32);
  for (int i = 0; i < 9; ++i) t[kMaz[i]] = kMaz[i + 9];
  return t;
}

constexpr Table BuildLowCase() {
  Table t = Identity();
  for (int c = 'A'; c <= 'Z'; ++c) t[c] = static_cast<unsigned char>(c + 32);
  for (int i = 0; i < 9; ++i) t[kMaz[i + 9]] = kMaz[i];
  return t;
}

constexpr Table kMazToLatin2 = BuildMazToLatin2();
constexpr Table kLatin2ToMaz = BuildLettersOnly(kLatin2, kMaz);
constexpr Table kMazToIsoScreen = BuildMazToIsoScreen();
constexpr Table kMazToIsoFile = BuildMazToIsoFile();
constexpr Table kMazToLatin2Text = BuildMazOut(kLatin2);
constexpr Table kCp1250ToMaz = BuildLettersOnly(kWin1250, kMaz);
constexpr Table kMazToCp1250 = BuildMazOut(kWin1250);
constexpr Table kMazToAscii = BuildMazToAscii();
constexpr Table kMazToPlain = BuildMazToPlain();
constexpr Table kIsoToMaz = BuildLettersOnly(kIso, kMaz);
constexpr Table kMazToDb = BuildMazToDb();
constexpr Table kDbToMaz = BuildDbToMaz();
constexpr Table kUpCase = BuildUpCase();
constexpr Table kLowCase = BuildLowCase();

ShortText Apply(const Table& t, const ShortText& s) {
  ShortText r = s;
  for (int i = 1; i <= r.Length(); ++i) r[i] = static_cast<char>(t[static_cast<unsigned char>(r[i])]);
  return r;
}

void ApplyInPlace(const Table& t, char* bytes, std::size_t count) {
  auto* p = reinterpret_cast<unsigned char*>(bytes);
  for (std::size_t i = 0; i < count; ++i) p[i] = t[p[i]];
}

int LetterIndex(unsigned char c) {
  for (int i = 0; i < 18; ++i)
    if (kMaz[i] == c) return i;
  return -1;
}

}  // namespace

unsigned char MazToLatin2(unsigned char c) { return kMazToLatin2[c]; }
ShortText MazToLatin2(const ShortText& s) { return Apply(kMazToLatin2, s); }
unsigned char Latin2ToMaz(unsigned char c) { return kLatin2ToMaz[c]; }
ShortText Latin2ToMaz(const ShortText& s) { return Apply(kLatin2ToMaz, s); }
unsigned char MazToIsoScreen(unsigned char c) { return kMazToIsoScreen[c]; }
ShortText MazToIsoScreen(const ShortText& s) { return Apply(kMazToIsoScreen, s); }
unsigned char MazToIsoFile(unsigned char c) { return kMazToIsoFile[c]; }
ShortText MazToIsoFile(const ShortText& s) { return Apply(kMazToIsoFile, s); }
unsigned char MazToLatin2Text(unsigned char c) { return kMazToLatin2Text[c]; }
ShortText MazToLatin2Text(const ShortText& s) { return Apply(kMazToLatin2Text, s); }
unsigned char Cp1250ToMaz(unsigned char c) { return kCp1250ToMaz[c]; }
ShortText Cp1250ToMaz(const ShortText& s) { return Apply(kCp1250ToMaz, s); }
unsigned char MazToCp1250(unsigned char c) { return kMazToCp1250[c]; }
ShortText MazToCp1250(const ShortText& s) { return Apply(kMazToCp1250, s); }
unsigned char MazToAscii(unsigned char c) { return kMazToAscii[c]; }
ShortText MazToAscii(const ShortText& s) { return Apply(kMazToAscii, s); }
unsigned char MazToPlain(unsigned char c) { return kMazToPlain[c]; }
ShortText MazToPlain(const ShortText& s) { return Apply(kMazToPlain, s); }
unsigned char IsoToMaz(unsigned char c) { return kIsoToMaz[c]; }
ShortText IsoToMaz(const ShortText& s) { return Apply(kIsoToMaz, s); }
unsigned char MazToDb(unsigned char c) { return kMazToDb[c]; }
ShortText MazToDb(const ShortText& s) { return Apply(kMazToDb, s); }
unsigned char DbToMaz(unsigned char c) { return kDbToMaz[c]; }
ShortText DbToMaz(const ShortText& s) { return Apply(kDbToMaz, s); }
void MazToDbInPlace(char* bytes, std::size_t count) { ApplyInPlace(kMazToDb, bytes, count); }
void DbToMazInPlace(char* bytes, std::size_t count) { ApplyInPlace(kDbToMaz, bytes, count); }
unsigned char MazUpCase(unsigned char c) { return kUpCase[c]; }
ShortText MazUpCaseText(const ShortText& s) { return Apply(kUpCase, s); }
unsigned char MazLowCase(unsigned char c) { return kLowCase[c]; }
ShortText MazLowCaseText(const ShortText& s) { return Apply(kLowCase, s); }
bool IsPolishLetter(unsigned char c) { return LetterIndex(c) >= 0; }

ShortText MazToDigraph(const ShortText& s) {
  ShortText r;
  int n = s.Length() < 127 ? s.Length() : 127;
  for (int i = 1; i <= n; ++i) {
    auto c = static_cast<unsigned char>(s[i]);
    int k = LetterIndex(c);
    if (k < 0) {
      r.Append(static_cast<char>(c));
      r.Append(' ');
    } else {
      r.Append(kBase[k]);
      r.Append(k == 8 || k == 17 ? '.' : ',');
    }
  }
  return r;
}

ShortText Utf8ToMaz(const ShortText& s) {
  // One letter after another, in this order, every occurrence in the whole text:
  // ę ó ą ś ł ż ź ć ń Ę Ó Ą Ś Ł Ż Ź Ć Ń. A replaced byte may complete a later
  // letter's form with the byte before it, so the search steps back one place.
  static constexpr struct { char form[2]; unsigned char maz; } kForms[18] = {
      {{'\xC4', '\x99'}, 0x91}, {{'\xC3', '\xB3'}, 0xA2}, {{'\xC4', '\x85'}, 0x86},
      {{'\xC5', '\x9B'}, 0x9E}, {{'\xC5', '\x82'}, 0x92}, {{'\xC5', '\xBC'}, 0xA7},
      {{'\xC5', '\xBA'}, 0xA6}, {{'\xC4', '\x87'}, 0x8D}, {{'\xC5', '\x84'}, 0xA4},
      {{'\xC4', '\x98'}, 0x90}, {{'\xC3', '\x93'}, 0xA3}, {{'\xC4', '\x84'}, 0x8F},
      {{'\xC5', '\x9A'}, 0x98}, {{'\xC5', '\x81'}, 0x9C}, {{'\xC5', '\xBB'}, 0xA1},
      {{'\xC5', '\xB9'}, 0xA0}, {{'\xC4', '\x86'}, 0x95}, {{'\xC5', '\x83'}, 0xA5}};
  ShortText r = s;
  for (const auto& f : kForms) {
    std::string_view form(f.form, 2);
    for (int p = r.Pos(form); p > 0; p = r.PosFrom(form, p > 1 ? p - 1 : 1)) {
      r.Delete(p, 1);
      r[p] = static_cast<char>(f.maz);
    }
  }
  return r;
}
