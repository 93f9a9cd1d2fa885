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

// A shortened name keeps this much of its readable head, then "_" and the
// hash of the whole name in hexadecimal.
constexpr std::size_t kSqlNameHead = kPGMaxSqlName - 11;

// FNV-1a over the whole mapped name: names that share their head still part.
uint64_t NameHash(std::string_view text) {
  uint64_t hash = 14695981039346656037ull;
  for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
  return hash;
}

std::string ShortenedSqlName(const std::string& full) {
  std::string out = full.substr(0, kSqlNameHead) + "_";
  const uint64_t hash = NameHash(full);
  for (int shift = 36; shift >= 0; shift -= 4) out += kHexDigits[(hash >> shift) & 15];
  return out;
}

}  // namespace

ShortText PGSqlName(const ShortText& name) {
  std::string out;
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
  if (out.empty() || !IsUpperLetter(static_cast<unsigned char>(out[0]))) out.insert(0, "N");
  // The server cuts identifiers at 63 bytes, and index names add to the
  // table's name: a long name is made short and still unique.
  if (out.size() > kPGMaxSqlName) out = ShortenedSqlName(out);
  return ShortText(out);
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
