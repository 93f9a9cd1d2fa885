// Names, type letters and literal escaping: the pure rules of the layer.
#include <cstdio>

#include "sqltable/pgtable.h"

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool IsUpperLetter(unsigned char c) { return c >= 'A' && c <= 'Z'; }
bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }

// Fixed facts of each type letter.
struct LetterFacts {
  char letter;
  const char* sqlType;  // null for A (sized)
  int bufSize;
  PGKind kind;
  bool sizeRequired;  // A and the blob letters
  bool sizeRefused;   // $ D I N S X
};

constexpr LetterFacts kLetters[] = {
    {'A', nullptr, 0, PGKind::Text, true, false},
    {'D', "DATE", 11, PGKind::Date, false, true},
    {'S', "SMALLINT", 7, PGKind::Number, false, true},
    {'I', "INT", 12, PGKind::Number, false, true},
    {'Y', "INT8", 23, PGKind::Number, false, false},
    {'N', "DOUBLE PRECISION", 30, PGKind::Number, false, true},
    {'$', "DOUBLE PRECISION", 30, PGKind::Number, false, true},
    {'X', "NUMERIC(28,7)", 30, PGKind::Number, false, true},
    {'B', "TEXT", 16385, PGKind::Blob, true, false},
    {'F', "TEXT", 16385, PGKind::Blob, true, false},
    {'G', "TEXT", 16385, PGKind::Blob, true, false},
    {'M', "TEXT", 16385, PGKind::Blob, true, false},
    {'O', "TEXT", 16385, PGKind::Blob, true, false},
};

const LetterFacts* FactsOf(char letter) {
  for (const LetterFacts& f : kLetters)
    if (f.letter == letter) return &f;
  return nullptr;
}

// Reads the size after the letter: all digits and at most 255 for a valid
// size; loose reading takes the leading digits only.
bool ReadSize(std::string_view text, bool strict, int& size) {
  size = 0;
  for (char ch : text) {
    auto c = static_cast<unsigned char>(ch);
    if (!IsDigit(c)) return !strict;
    size = size * 10 + (c - '0');
    if (size > 255) {
      if (strict) return false;
      size = 255;
    }
  }
  return true;
}

}  // namespace

ShortText PGSqlName(const ShortText& name) {
  ShortText out;
  for (int i = 1; i <= name.Length(); ++i) {
    unsigned char c = name.At(i);
    if (c >= 'a' && c <= 'z') c = static_cast<unsigned char>(c - 'a' + 'A');
    if (c == '\\') c = '_';
    if (IsDigit(c) || IsUpperLetter(c) || c == '_') {
      out += static_cast<char>(c);
    } else {
      out += kHexDigits[c >> 4];
      out += kHexDigits[c & 15];
    }
  }
  if (!IsUpperLetter(out.At(1))) out.Insert("N", 1);
  return out;
}

std::string PGEscapeStr(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 8);
  for (char ch : text) {
    auto c = static_cast<unsigned char>(ch);
    if (c == 0) {
      out += ' ';
    } else if (c < 32) {
      char oct[5];
      std::snprintf(oct, sizeof oct, "\\%03o", c);
      out += oct;
    } else {
      if (c == '%' || c == '\'' || c == '\\' || c == '_') out += '\\';
      out += ch;
    }
  }
  return out;
}

bool PGParseType(const ShortText& type, bool strict, PGTypeInfo& out) {
  out = PGTypeInfo{};
  if (type.Empty()) return false;
  const LetterFacts* facts = FactsOf(static_cast<char>(type.At(1)));
  if (!facts) return false;
  std::string_view sizeText = type.View().substr(1);
  out.letter = facts->letter;
  out.hasSize = !sizeText.empty();
  if (strict && ((out.hasSize && facts->sizeRefused) || (!out.hasSize && facts->sizeRequired)))
    return false;
  if (!ReadSize(sizeText, strict, out.size)) return false;
  out.kind = facts->kind;
  if (facts->letter == 'A') {
    out.sqlType = out.size <= 1 ? "CHAR" : "VARCHAR(" + std::to_string(out.size) + ")";
    out.bufSize = out.size + 1;
  } else {
    out.sqlType = facts->sqlType;
    out.bufSize = facts->bufSize;
  }
  return true;
}
