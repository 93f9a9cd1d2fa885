// Typed field access in record buffers: every PGPut* turns a value into the
// server's text, every PGGet* reads it back. Numbers read leniently: text
// that does not parse is 0, never an error.
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "base/codepage.h"
#include "base/dates.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "sqltable/pgrecord.h"

namespace {

constexpr char kHex[] = "0123456789ABCDEF";

// Sets a value within the field's allocated capacity; longer text is cut.
int16_t Put(int16_t rec, int fld, std::string_view text) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheckField(rec, fld, buf)) return code;
  PGRecField& f = buf->fields[fld];
  f.value.assign(text.substr(0, std::min<std::size_t>(text.size(), static_cast<std::size_t>(f.capacity - 1))));
  return kPGOk;
}

// The value of a field, after the checks.
int16_t Value(int16_t rec, int fld, const PGRecField*& field) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheckField(rec, fld, buf)) return code;
  field = &buf->fields[fld];
  return kPGOk;
}

std::string_view SkipBlanks(std::string_view v) {
  while (!v.empty() && v.front() == ' ') v.remove_prefix(1);
  return v;
}

// A whole integer text in [low, high], else 0.
long long ParseInteger(std::string_view v, long long low, long long high) {
  v = SkipBlanks(v);
  if (!v.empty() && v.front() == '+') v.remove_prefix(1);
  long long n = 0;
  const auto [end, ec] = std::from_chars(v.data(), v.data() + v.size(), n);
  if (ec != std::errc() || end != v.data() + v.size() || n < low || n > high) return 0;
  return n;
}

// A whole number text, fixed or exponent form, else 0.
Real ParseReal(std::string_view v) {
  v = SkipBlanks(v);
  if (!v.empty() && v.front() == '+') v.remove_prefix(1);
  long double n = 0;
  const auto [end, ec] = std::from_chars(v.data(), v.data() + v.size(), n);
  if (ec != std::errc() || end != v.data() + v.size()) return 0;
  return n;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Reads hex pairs of text into out, at most maxBytes; false at a bad pair,
// count then holding the bytes before it.
bool ReadHexPairs(std::string_view text, unsigned char* out, int maxBytes, int& count) {
  const int pairs = std::min(static_cast<int>(text.size()) / 2, maxBytes);
  for (count = 0; count < pairs; ++count) {
    const int hi = HexDigit(text[2 * count]), lo = HexDigit(text[2 * count + 1]);
    if (hi < 0 || lo < 0) return false;
    out[count] = static_cast<unsigned char>(hi * 16 + lo);
  }
  return true;
}

int16_t PutHex(int16_t rec, int fld, const unsigned char* bytes, int length) {
  char hex[kPGBlobMaxHex];
  for (int i = 0; i < length; ++i) {
    hex[2 * i] = kHex[bytes[i] >> 4];
    hex[2 * i + 1] = kHex[bytes[i] & 15];
  }
  return Put(rec, fld, std::string_view(hex, static_cast<std::size_t>(2 * length)));
}

// Reads a number field through a parser; 0 for text that does not parse.
template <typename T, typename Parser>
int16_t GetNumber(int16_t rec, int fld, T& value, Parser parse) {
  value = 0;
  const PGRecField* f = nullptr;
  if (int16_t code = Value(rec, fld, f)) return code;
  value = static_cast<T>(parse(f->value));
  return kPGOk;
}

}  // namespace

int16_t PGPutShort(int16_t rec, int fld, int16_t value) { return Put(rec, fld, std::to_string(value)); }

int16_t PGPutLong(int16_t rec, int fld, int32_t value) { return Put(rec, fld, std::to_string(value)); }

int16_t PGPutDoub(int16_t rec, int fld, double value) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheckField(rec, fld, buf)) return code;
  const PGTable* t = PGTableAt(buf->table);
  // A 64-bit identifier must keep every digit: no exponent form for "Y".
  if (t->fields[fld].type.At(1) == 'Y') {
    const ShortText text = TrimLeftAll(TrimRightAll(FormatFixed(25, 0, value), ' '), ' ');
    return Put(rec, fld, text.View());
  }
  char text[40];
  const int n = std::snprintf(text, sizeof text, "%.16E", value);
  return Put(rec, fld, std::string_view(text, static_cast<std::size_t>(n)));
}

int16_t PGPutExt(int16_t rec, int fld, Real value) {
  const ShortText text = TrimLeftAll(TrimRightAll(FormatFixed(29, 7, value), ' '), ' ');
  return Put(rec, fld, text.View());
}

int16_t PGPutAlpha(int16_t rec, int fld, const ShortText& value) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheckField(rec, fld, buf)) return code;
  const PGRecField& f = buf->fields[fld];
  const int room = f.textLen > 0 ? f.textLen : f.capacity - 1;
  ShortText text = value;
  text.SetLength(std::min(text.Length(), room));
  if (PGTrimAlpha) text = TrimRightAll(text, ' ');
  MazToDbInPlace(text.Data(), static_cast<std::size_t>(text.Length()));
  return Put(rec, fld, text.View());
}

int16_t PGPutDate(int16_t rec, int fld, int32_t days) { return Put(rec, fld, DaySerialToIsoText(days).View()); }

int16_t PGPutBlank(int16_t rec, int fld) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheckField(rec, fld, buf)) return code;
  return Put(rec, fld, PGBlankValue(buf->fields[fld].kind));
}

int16_t PGPutBlob(int16_t rec, int fld, const void* data, int32_t length) {
  length = std::clamp<int32_t>(length, 0, kPGBlobMaxBytes);
  if (!data) length = 0;
  return PutHex(rec, fld, static_cast<const unsigned char*>(data), length);
}

int16_t PGPutBlobStr(int16_t rec, int fld, const ShortText& value) {
  return PutHex(rec, fld, reinterpret_cast<const unsigned char*>(value.Data()), value.Length());
}

int16_t PGGetShort(int16_t rec, int fld, int16_t& value) {
  return GetNumber(rec, fld, value, [](std::string_view v) { return ParseInteger(v, INT16_MIN, INT16_MAX); });
}

int16_t PGGetLong(int16_t rec, int fld, int32_t& value) {
  return GetNumber(rec, fld, value, [](std::string_view v) { return ParseInteger(v, INT32_MIN, INT32_MAX); });
}

int16_t PGGetDoub(int16_t rec, int fld, double& value) { return GetNumber(rec, fld, value, ParseReal); }

int16_t PGGetExt(int16_t rec, int fld, Real& value) { return GetNumber(rec, fld, value, ParseReal); }

int16_t PGGetAlpha(int16_t rec, int fld, ShortText& value) {
  value.Clear();
  const PGRecField* f = nullptr;
  if (int16_t code = Value(rec, fld, f)) return code;
  value.Assign(f->value);
  DbToMazInPlace(value.Data(), static_cast<std::size_t>(value.Length()));
  return kPGOk;
}

int16_t PGGetDate(int16_t rec, int fld, int32_t& days) {
  days = 0;
  const PGRecField* f = nullptr;
  if (int16_t code = Value(rec, fld, f)) return code;
  int digits[8] = {0};
  int count = 0;
  for (char c : f->value)
    if (c >= '0' && c <= '9' && count < 8) digits[count++] = c - '0';
  if (count == 0) {  // NULL written by another program: the blank date
    days = kBlankDateSerial;
    return kPGOk;
  }
  const int year = digits[0] * 1000 + digits[1] * 100 + digits[2] * 10 + digits[3];
  const int month = digits[4] * 10 + digits[5], day = digits[6] * 10 + digits[7];
  days = EncodeDaySerial(year, month, day);
  return kPGOk;
}

int16_t PGFldBlank(int16_t rec, int fld, bool& blank) {
  blank = false;
  const PGRecField* f = nullptr;
  if (int16_t code = Value(rec, fld, f)) return code;
  const std::string& v = f->value;
  blank = v.empty() || (f->kind == PGKind::Number && v.size() == 4 && strncasecmp(v.c_str(), "NULL", 4) == 0);
  return kPGOk;
}

int16_t PGGetBlob(int16_t rec, int fld, void* data, int32_t& length) {
  length = 0;
  const PGRecField* f = nullptr;
  if (int16_t code = Value(rec, fld, f)) return code;
  const std::string_view hex = std::string_view(f->value).substr(0, kPGBlobMaxHex);
  if (!data) return kPGOk;
  int count = 0;
  const bool ok = ReadHexPairs(hex, static_cast<unsigned char*>(data), kPGBlobMaxBytes, count);
  length = count;
  return ok ? kPGOk : kPGBadBlob;
}

int16_t PGGetBlobStr(int16_t rec, int fld, ShortText& value) {
  value.Clear();
  const PGRecField* f = nullptr;
  if (int16_t code = Value(rec, fld, f)) return code;
  const std::string_view hex = std::string_view(f->value).substr(0, kPGBlobStrMaxHex);
  int count = 0;
  const bool ok = ReadHexPairs(hex, reinterpret_cast<unsigned char*>(value.Data()), ShortText::kCapacity, count);
  value.SetLength(count);
  return ok ? kPGOk : kPGBadBlob;
}
