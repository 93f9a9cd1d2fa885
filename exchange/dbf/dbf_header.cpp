// dBASE header bytes: reading the versions 2, 3 and 3+, writing version 3.
#include <cstdio>
#include <cstring>

#include "exchange/dbf/dbf_detail.h"

namespace dbf_detail {
namespace {

constexpr int kDbase3DescriptorSize = 32;
constexpr int kDbase2DescriptorSize = 16;
constexpr int kDbase2FirstDescriptor = 8;
constexpr int kLanguageByte = 29;
constexpr int kMaxHeaderSize = 0xFFFF;

int Word(std::span<const unsigned char> b, int at) { return b[at] | (b[at + 1] << 8); }

int64_t DoubleWord(std::span<const unsigned char> b, int at) {
  return static_cast<int64_t>(b[at]) | (static_cast<int64_t>(b[at + 1]) << 8) |
         (static_cast<int64_t>(b[at + 2]) << 16) | (static_cast<int64_t>(b[at + 3]) << 24);
}

void PutWord(unsigned char* at, int value) {
  at[0] = static_cast<unsigned char>(value);
  at[1] = static_cast<unsigned char>(value >> 8);
}

bool IsDbase3Version(int v) { return v == 3 || v == 4 || v == 5 || v == 48; }
bool IsMemoVersion(int v) { return v == 131 || v == 139 || v == 140 || v == 245; }

BasicShortText<8> DateText(int month, int day, int year) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d/%02d/%02d", month % 100, day % 100, year % 100);
  return BasicShortText<8>(text);
}

// The name is ended by byte 0 within its 11 bytes; a name filling them all is cut at 10.
BasicShortText<10> FieldName(const unsigned char* at) {
  BasicShortText<10> name;
  for (int i = 0; i < 10 && at[i] != 0; ++i) name.Append(static_cast<char>(at[i]));
  return name;
}

// Reads descriptors from first, each size bytes long, up to the end mark,
// which must lie before limit. Widths and offsets are checked against the
// record size that the header states.
int ParseDescriptors(std::span<const unsigned char> b, int first, int size, int limit, int typeAt, int widthAt,
                     int decimalsAt, Layout& out) {
  int at = first;
  int offset = 1;
  for (;; at += size) {
    if (at >= limit) return kDbfNotDbase;  // no end mark inside the header
    if (at >= static_cast<int>(b.size())) return kDbfUnexpectedEnd;
    if (b[at] == kDescriptorEnd) break;
    if (at + size > limit) return kDbfNotDbase;  // a descriptor reaching past the header
    if (at + size > static_cast<int>(b.size())) return kDbfUnexpectedEnd;
    DbfField field;
    field.name = FieldName(&b[at]);
    field.type = static_cast<char>(b[at + typeAt]);
    field.width = b[at + widthAt];
    field.decimals = b[at + decimalsAt];
    field.offset = static_cast<uint16_t>(offset);
    if (!KnownFieldType(field.type)) return kDbfBadFieldType;
    if (field.width == 0 || field.name.Empty()) return kDbfNotDbase;
    offset += field.width;
    if (offset > out.recordSize) return kDbfNotDbase;
    out.fields.push_back(field);
  }
  if (out.fields.empty() || offset != out.recordSize) return kDbfNotDbase;
  return 0;
}

int ParseDbase3(std::span<const unsigned char> b, Layout& out) {
  if (b.size() < 32) return kDbfUnexpectedEnd;
  out.date = DateText(b[2], b[3], b[1]);
  out.recordCount = DoubleWord(b, 4);
  out.headerSize = Word(b, 8);
  out.recordSize = Word(b, 10);
  if (out.headerSize < 32 + 1 || out.recordSize < 2) return kDbfNotDbase;
  if (out.headerSize > static_cast<int>(b.size())) return kDbfUnexpectedEnd;
  if (b[kLanguageByte] == kLanguageLatin2) out.codePage = DbfCodePage::kLatin2;
  if (b[kLanguageByte] == kLanguageCp1250) out.codePage = DbfCodePage::kCp1250;
  // Descriptors end with 0x0D; the header may be longer (some writers pad it), never shorter.
  return ParseDescriptors(b, 32, kDbase3DescriptorSize, out.headerSize, 11, 16, 17, out);
}

int ParseDbase2(std::span<const unsigned char> b, Layout& out) {
  if (b.size() < kDbase2FirstDescriptor) return kDbfUnexpectedEnd;
  out.recordCount = Word(b, 1);
  out.date = DateText(b[3], b[4], b[5]);
  out.recordSize = Word(b, 6);
  out.headerSize = kDbase2HeaderSize;
  if (out.recordSize < 2) return kDbfNotDbase;
  if (b.size() < kDbase2HeaderSize) return kDbfUnexpectedEnd;
  return ParseDescriptors(b, kDbase2FirstDescriptor, kDbase2DescriptorSize, kDbase2HeaderSize, 11, 12, 15, out);
}

}  // namespace

bool KnownFieldType(char type) { return type != 0 && std::strchr("CDFLMN", type) != nullptr; }

int ParseHeader(std::span<const unsigned char> bytes, Layout& out) {
  out = Layout{};
  if (bytes.empty()) return kDbfUnexpectedEnd;
  out.version = bytes[0];
  if (out.version == 2) return ParseDbase2(bytes, out);
  if (IsDbase3Version(out.version) || IsMemoVersion(out.version)) return ParseDbase3(bytes, out);
  return kDbfNotDbase;
}

int LayoutFields(std::span<const DbfFieldSpec> specs, Layout& out) {
  out.fields.clear();
  int offset = 1;
  for (const DbfFieldSpec& def : specs) {
    if (!KnownFieldType(def.type)) return kDbfBadFieldType;
    if (def.name.Empty() || def.width < 1 || def.width > 255 || def.decimals < 0 ||
        (def.decimals > 0 && def.decimals >= def.width - 1))
      return kDbfNotDbase;
    out.fields.push_back(DbfField{def.name, def.type, static_cast<uint8_t>(def.width),
                                  static_cast<uint8_t>(def.decimals), static_cast<uint16_t>(offset)});
    offset += def.width;
    if (offset > 0xFFFF) return kDbfNotDbase;
  }
  const int64_t headerSize = 32 + kDbase3DescriptorSize * static_cast<int64_t>(specs.size()) + 1;
  if (specs.empty() || headerSize > kMaxHeaderSize) return kDbfNotDbase;
  out.version = 3;
  out.recordSize = offset;
  out.headerSize = static_cast<int>(headerSize);
  return 0;
}

std::vector<unsigned char> BuildHeader(const Layout& layout, int year, int month, int day) {
  std::vector<unsigned char> h(layout.headerSize, 0);
  h[0] = static_cast<unsigned char>(layout.version);
  unsigned char countAndDate[8] = {};
  int length = 0;
  const int at = CountAndDateBytes(layout.version, layout.recordCount, year, month, day, countAndDate, length);
  std::memcpy(&h[at], countAndDate, length);
  PutWord(&h[8], layout.headerSize);
  PutWord(&h[10], layout.recordSize);
  if (layout.codePage == DbfCodePage::kLatin2) h[kLanguageByte] = kLanguageLatin2;
  if (layout.codePage == DbfCodePage::kCp1250) h[kLanguageByte] = kLanguageCp1250;
  int at32 = 32;
  for (const DbfField& f : layout.fields) {
    std::memcpy(&h[at32], f.name.Data(), f.name.Length());
    h[at32 + 11] = static_cast<unsigned char>(f.type);
    h[at32 + 16] = f.width;
    h[at32 + 17] = f.decimals;
    at32 += kDbase3DescriptorSize;
  }
  h[at32] = kDescriptorEnd;
  return h;
}

int CountAndDateBytes(int version, int64_t recordCount, int year, int month, int day,
                      std::span<unsigned char, 8> out, int& length) {
  const auto count = static_cast<uint32_t>(recordCount);
  if (version == 2) {
    PutWord(&out[0], static_cast<int>(count > 0xFFFF ? 0xFFFF : count));
    out[2] = static_cast<unsigned char>(month);
    out[3] = static_cast<unsigned char>(day);
    out[4] = static_cast<unsigned char>(year % 100);
    length = 5;
    return 1;
  }
  out[0] = static_cast<unsigned char>(year - 1900);
  out[1] = static_cast<unsigned char>(month);
  out[2] = static_cast<unsigned char>(day);
  for (int i = 0; i < 4; ++i) out[3 + i] = static_cast<unsigned char>(count >> (8 * i));
  length = 7;
  return 1;
}

}  // namespace dbf_detail
