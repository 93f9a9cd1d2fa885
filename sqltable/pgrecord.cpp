// The record buffer table: opening, closing, blanking and copying buffers,
// and carrying whole records between buffers and the current record.
#include "sqltable/pgrecord.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace {

std::array<std::unique_ptr<PGRecordBuffer>, kPGMaxRecordBuffers + 1> gBuffers;
int gBufferCount = 0;

void CloseBuffersOf(int16_t tbl) {
  for (int r = 1; r <= kPGMaxRecordBuffers; ++r)
    if (gBuffers[r] && gBuffers[r]->table == tbl) (void)PGRecBufClose(static_cast<int16_t>(r));
}

void FreeAllBuffers() {
  for (auto& b : gBuffers) b.reset();
  gBufferCount = 0;
}

// The buffers belong to tables: closing a table or the layer releases them.
void RegisterHooks() {
  static bool done = false;
  if (done) return;
  done = true;
  PGHooks().closeRecordBuffersOf = CloseBuffersOf;
  PGHooks().freeAllRecordBuffers = FreeAllBuffers;
}

void Blank(PGRecField& f) { f.value.assign(PGBlankValue(f.kind)); }

// Assigns within the allocated capacity: longer values are cut, never grown.
void Store(PGRecField& f, std::string_view text) {
  f.value.assign(text.substr(0, std::min<std::size_t>(text.size(), static_cast<std::size_t>(f.capacity - 1))));
}

bool SameLayout(const PGRecordBuffer& buf, const PGTable& t) {
  if (buf.nFields != t.nFields) return false;
  for (int f = 1; f <= t.nFields; ++f) {
    const int cap = t.fields[f].kind == PGKind::Date ? kPGDateBufSize : t.fields[f].bufSize;
    if (buf.fields[f].capacity != cap) return false;
  }
  return true;
}

// Offset of each field in the raw area, and the area's extent.
std::size_t RawOffset(const PGRecordBuffer& buf, int fld, int& blobNo) {
  if (buf.fields[fld].kind != PGKind::Blob) return static_cast<std::size_t>(fld - 1) * kPGRawSlot;
  ++blobNo;
  return kPGRawBlobStart + static_cast<std::size_t>(blobNo - 1) * kPGRawBlobSlot;
}

std::size_t RawExtent(const PGRecordBuffer& buf) {
  std::size_t extent = 0;
  int blobNo = 0;
  for (int f = 1; f <= buf.nFields; ++f) {
    const bool blob = buf.fields[f].kind == PGKind::Blob;
    const std::size_t end = RawOffset(buf, f, blobNo) + (blob ? kPGRawBlobSlot : kPGRawSlot);
    extent = std::max(extent, end);
  }
  return extent;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Sign, digits with at most one point, an optional exponent: the only text
// that goes into a statement bare.
bool IsPlainNumber(std::string_view v) {
  std::size_t i = 0;
  if (i < v.size() && (v[i] == '-' || v[i] == '+')) ++i;
  int digits = 0;
  bool point = false;
  for (; i < v.size() && (IsDigit(v[i]) || (v[i] == '.' && !point)); ++i) {
    if (v[i] == '.') point = true;
    else ++digits;
  }
  if (digits == 0) return false;
  if (i < v.size() && (v[i] == 'e' || v[i] == 'E')) {
    ++i;
    if (i < v.size() && (v[i] == '-' || v[i] == '+')) ++i;
    if (i == v.size()) return false;
    while (i < v.size() && IsDigit(v[i])) ++i;
  }
  return i == v.size();
}

}  // namespace

PGRecordBuffer* PGRecordAt(int rec) {
  if (rec < 1 || rec > kPGMaxRecordBuffers) return nullptr;
  return gBuffers[rec].get();
}

int PGRecordBufferCount() { return gBufferCount; }

std::string_view PGBlankValue(PGKind kind) {
  switch (kind) {
    case PGKind::Number: return "0";
    case PGKind::Date: return kPGBlankDate;
    default: return "";
  }
}

int16_t PGRecCheck(int16_t rec, PGRecordBuffer*& buf) {
  buf = PGRecordAt(rec);
  if (!buf) return kPGBadRecordBuffer;
  if (!PGTableAt(buf->table)) return kPGBadTableHandle;
  return kPGOk;
}

int16_t PGRecCheckField(int16_t rec, int fld, PGRecordBuffer*& buf) {
  if (int16_t code = PGRecCheck(rec, buf)) return code;
  if (fld < 1 || fld > buf->nFields) return kPGBadFieldHandle;
  return kPGOk;
}

int16_t PGRecBufOpen(int16_t tbl, int16_t& rec) {
  rec = 0;
  const PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  RegisterHooks();
  int slot = 0;
  for (int r = 1; r <= kPGMaxRecordBuffers && slot == 0; ++r)
    if (!gBuffers[r]) slot = r;
  if (slot == 0) return kPGNoRecordBuffer;
  auto buf = std::make_unique<PGRecordBuffer>();
  buf->table = tbl;
  buf->nFields = t->nFields;
  buf->fields.resize(static_cast<std::size_t>(t->nFields) + 1);
  for (int f = 1; f <= t->nFields; ++f) {
    PGRecField& field = buf->fields[f];
    field.kind = t->fields[f].kind;
    field.capacity = field.kind == PGKind::Date ? kPGDateBufSize : t->fields[f].bufSize;
    field.textLen = t->fields[f].textLen;
    field.value.reserve(static_cast<std::size_t>(field.capacity));
    Blank(field);
  }
  gBuffers[slot] = std::move(buf);
  ++gBufferCount;
  rec = static_cast<int16_t>(slot);
  return kPGOk;
}

int16_t PGRecBufClose(int16_t rec) {
  if (!PGRecordAt(rec)) return kPGBadRecordBuffer;
  gBuffers[rec].reset();
  --gBufferCount;
  return kPGOk;
}

int16_t PGRecBufEmpty(int16_t rec) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheck(rec, buf)) return code;
  for (int f = 1; f <= buf->nFields; ++f) Blank(buf->fields[f]);
  return kPGOk;
}

int16_t PGRecBufCopy(int16_t source, int16_t target) {
  PGRecordBuffer *from = nullptr, *to = nullptr;
  if (int16_t code = PGRecCheck(source, from)) return code;
  if (int16_t code = PGRecCheck(target, to)) return code;
  if (from->nFields != to->nFields) return kPGLayoutDiffers;
  for (int f = 1; f <= from->nFields; ++f)
    if (from->fields[f].capacity != to->fields[f].capacity) return kPGLayoutDiffers;
  for (int f = 1; f <= from->nFields; ++f) Store(to->fields[f], from->fields[f].value);
  return kPGOk;
}

int16_t PGRecGet(int16_t tbl, int16_t rec) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheck(rec, buf)) return code;
  const PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  // A buffer reads its own table, or another handle of the same layout.
  if (tbl != buf->table && !SameLayout(*buf, *t)) return kPGLayoutDiffers;
  for (int f = 1; f <= buf->nFields && f < static_cast<int>(t->curValues.size()); ++f)
    Store(buf->fields[f], t->curValues[f]);
  return kPGOk;
}

int16_t PXRecGetD(int16_t tbl, int16_t rec) {
  const PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  bool empty = false;
  if (int16_t code = PGTblIsEmpty(t->name, empty)) return code;
  if (empty) return kPGEmptyTable;
  return PGRecGet(tbl, rec);
}

int16_t PGRawGet(int16_t rec, PGRawArea& raw) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheck(rec, buf)) return code;
  raw.assign(RawExtent(*buf), '\0');
  int blobNo = 0;
  for (int f = 1; f <= buf->nFields; ++f) {
    const std::string& v = buf->fields[f].value;
    std::memcpy(raw.data() + RawOffset(*buf, f, blobNo), v.data(), v.size());
  }
  return kPGOk;
}

int16_t PGRawPut(int16_t rec, const PGRawArea& raw) {
  PGRecordBuffer* buf = nullptr;
  if (int16_t code = PGRecCheck(rec, buf)) return code;
  if (raw.size() < RawExtent(*buf)) return kPGArgRange;
  int blobNo = 0;
  for (int f = 1; f <= buf->nFields; ++f) {
    PGRecField& field = buf->fields[f];
    const char* at = raw.data() + RawOffset(*buf, f, blobNo);
    const std::size_t limit = static_cast<std::size_t>(field.capacity - 1);
    field.value.assign(at, strnlen(at, limit));
  }
  return kPGOk;
}

int16_t PGRecLen(int16_t tbl, int32_t& size) {
  size = 0;
  const PGTable* t = PGTableAt(tbl);
  if (!t) return kPGBadTableHandle;
  for (int f = 1; f <= t->nFields; ++f) size += t->fields[f].bufSize;
  return kPGOk;
}

std::string PGValueLiteral(PGKind kind, std::string_view value) {
  if (kind == PGKind::Number || kind == PGKind::Date) {
    if (value.empty()) return "NULL";
    if (kind == PGKind::Number && IsPlainNumber(value)) return std::string(value);
  }
  return "'" + PGEscapeStr(value) + "'";
}

std::string PGCondition(std::string_view column, PGKind kind, std::string_view value, std::string_view op) {
  std::string out(column);
  const std::string literal = PGValueLiteral(kind, value);
  if (literal != "NULL") return out.append(op).append(literal);
  std::string_view bare = op;
  while (!bare.empty() && bare.front() == ' ') bare.remove_prefix(1);
  while (!bare.empty() && bare.back() == ' ') bare.remove_suffix(1);
  // The ascending order puts NULL rows last: all others are before them.
  if (bare == "=") return out + " IS NULL";
  if (bare == "<") return out + " IS NOT NULL";
  if (bare == "<=") return "TRUE";
  return "FALSE";
}
