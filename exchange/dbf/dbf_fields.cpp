// Fields of the record in the buffer: text in and out through the table's
// code page, numbers and dates in their dBASE forms, and searches.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "base/codepage.h"
#include "base/dates.h"
#include "base/numbers.h"
#include "exchange/dbf/dbf_io.h"

namespace {

using ByteMap = unsigned char (*)(unsigned char);

unsigned char Same(unsigned char c) { return c; }

// Indexed by DbfCodePage.
constexpr ByteMap kFromFile[] = {Same, Latin2ToMaz, Cp1250ToMaz, IsoToMaz};
constexpr ByteMap kToFile[] = {Same, MazToLatin2Text, MazToCp1250, MazToIsoFile};

void MapBytes(char* bytes, int count, ByteMap map) {
  if (map == Same) return;
  for (int i = 0; i < count; ++i) bytes[i] = static_cast<char>(map(static_cast<unsigned char>(bytes[i])));
}

bool IsNumberType(char type) { return type == 'N' || type == 'F'; }

// The field's bytes in the buffer, or null (and code 132) for a bad number.
const DbfField* FieldAt(const DbfFile& t, int number) {
  if (number < 1 || number > t.FieldCount() || t.record.empty()) {
    DbfStatus = kDbfBufferError;
    return nullptr;
  }
  return &t.fields[number - 1];
}

void StoreField(DbfFile& t, const DbfField& f, std::string_view text, bool rightAligned) {
  char* at = t.record.data() + f.offset;
  const int length = std::min<int>(static_cast<int>(text.size()), f.width);
  const int lead = rightAligned ? f.width - length : 0;
  std::memset(at, ' ', f.width);
  std::memcpy(at + lead, text.data(), length);
  t.recordChanged = true;
}

}  // namespace

ShortText DbfGetField(const DbfFile& t, int number) {
  const DbfField* f = FieldAt(t, number);
  if (f == nullptr) return ShortText();
  const char* at = t.record.data() + f->offset;
  const void* nul = std::memchr(at, 0, f->width);
  int length = nul ? static_cast<int>(static_cast<const char*>(nul) - at) : f->width;
  while (length > 0 && at[length - 1] == ' ') --length;
  ShortText text(std::string_view(at, length));
  MapBytes(text.Data(), text.Length(), kFromFile[static_cast<int>(t.codePage)]);
  DbfStatus = 0;
  return text;
}

int DbfPutField(DbfFile& t, int number, const ShortText& text) {
  const DbfField* f = FieldAt(t, number);
  if (f == nullptr) return DbfStatus;
  ShortText coded = text;
  MapBytes(coded.Data(), coded.Length(), kToFile[static_cast<int>(t.codePage)]);
  if (IsNumberType(f->type)) {
    std::string_view digits = coded.View();
    while (!digits.empty() && digits.front() == ' ') digits.remove_prefix(1);
    while (!digits.empty() && digits.back() == ' ') digits.remove_suffix(1);
    if (static_cast<int>(digits.size()) > f->width) return DbfStatus = kDbfBufferError;
    StoreField(t, *f, digits, true);
  } else {
    StoreField(t, *f, coded.View(), false);
  }
  return DbfStatus = 0;
}

int DbfPutNumber(DbfFile& t, int number, Real value) {
  const DbfField* f = FieldAt(t, number);
  if (f == nullptr) return DbfStatus;
  const int integerPlaces = f->decimals > 0 ? f->width - f->decimals - 1 : f->width;
  if (!std::isfinite(value) || std::fabs(value) >= PowerReal(10, integerPlaces))
    return DbfStatus = kDbfBufferError;
  const Real scale = PowerReal(10, f->decimals);
  const Real rounded = RoundHalfAway(value * scale) / scale;
  char text[300];
  const int length = std::snprintf(text, sizeof text, "%.*Lf", static_cast<int>(f->decimals),
                                   rounded == 0 ? Real(0) : rounded);
  // A minus sign may still not fit, and rounding may add a digit.
  if (length < 0 || length > f->width) return DbfStatus = kDbfBufferError;
  StoreField(t, *f, std::string_view(text, length), true);
  return DbfStatus = 0;
}

int DbfPutDate(DbfFile& t, int number, const ShortText& date) {
  const DbfField* f = FieldAt(t, number);
  if (f == nullptr) return DbfStatus;
  const ShortText full = DateExpand(date);
  if (f->width < 8 || !DateValid(full, 10)) return DbfStatus = kDbfBufferError;
  StoreField(t, *f, DateToSort(full).View(), false);
  return DbfStatus = 0;
}

ShortText DbfGetDate(const DbfFile& t, int number) {
  const ShortText text = DbfGetField(t, number);
  if (DbfStatus != 0) return ShortText();
  if (text.Empty()) return Today(10);
  return DateFromSort(text);
}

int DbfFindField(const DbfFile& t, const ShortText& name) {
  const ShortText wanted = MazUpCaseText(name);
  for (int i = 1; i <= t.FieldCount(); ++i)
    if (MazUpCaseText(ShortText(t.Field(i).name)) == wanted) return i;
  return 0;
}

int64_t DbfFindValue(DbfFile& t, int field, const ShortText& text) {
  if (field < 1 || field > t.FieldCount()) {
    DbfStatus = kDbfBufferError;
    return 0;
  }
  for (int64_t n = 1; n <= t.recordCount; ++n) {
    if (DbfReadRecord(t, n) != 0) return 0;
    if (!DbfIsDeleted(t) && DbfGetField(t, field) == text) return n;
  }
  DbfStatus = 0;
  return 0;
}
