// The byte layout of dBASE headers, as pure functions over bytes. Private to
// exchange/dbf.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "exchange/dbf/dbf.h"

namespace dbf_detail {

inline constexpr int kDbase2HeaderSize = 521;
inline constexpr unsigned char kDescriptorEnd = 0x0D;
inline constexpr unsigned char kEndOfFile = 0x1A;
// Language bytes of the header (offset 29) that name our code pages.
inline constexpr unsigned char kLanguageLatin2 = 0x64;
inline constexpr unsigned char kLanguageCp1250 = 0xC8;

// What a header says.
struct Layout {
  int version = 3;
  int64_t recordCount = 0;
  int headerSize = 0;
  int recordSize = 0;
  BasicShortText<8> date;
  std::vector<DbfField> fields;
  DbfCodePage codePage = DbfCodePage::kAsIs;
};

// Reads the header from the first bytes of a file (all of the header, or the
// whole file when shorter). 0, or 128/129, or kDbfUnexpectedEnd when the
// bytes end before the header does.
int ParseHeader(std::span<const unsigned char> bytes, Layout& out);
// Lays out the fields from offset 1; 0, or 128/129 for a field list that no dBASE 3
// file can hold.
int LayoutFields(std::span<const DbfFieldSpec> specs, Layout& out);
// The bytes of a dBASE 3 header for the layout, descriptors and end mark included.
std::vector<unsigned char> BuildHeader(const Layout& layout, int year, int month, int day);
// The header bytes that change with the records: the count and the date, for
// dBASE 3 (bytes 1..7) or dBASE 2 (bytes 1..5); returns the offset and fills out.
int CountAndDateBytes(int version, int64_t recordCount, int year, int month, int day,
                      std::span<unsigned char, 8> out, int& length);
// True for the six field types the layer knows.
bool KnownFieldType(char type);

}  // namespace dbf_detail
