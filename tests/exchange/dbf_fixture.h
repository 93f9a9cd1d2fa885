// Shared pieces of the DBF tests: a scratch directory as the current one,
// raw files laid out byte by byte by the test itself, and a table that the
// layer writes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "base/file_fixture.h"
#include "base/text.h"
#include "exchange/dbf/dbf.h"

namespace dbf_test {

using file_test::ReadBytes;
using file_test::WriteBytes;

// Output of a shell command; ok is false when it cannot run or fails.
inline std::string RunCommand(const std::string& command, bool& ok) {
  std::string out;
  FILE* p = ::popen(command.c_str(), "r");
  ok = p != nullptr;
  if (!ok) return out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  ok = ::pclose(p) == 0;
  return out;
}

// The records of a DBF file as the layer reads them, a line each: the first
// `fields` fields (0: all) without their leading blanks, ":" between them.
inline std::string DbfRecords(const char* path, int fields = 0) {
  DbfFile dbf;
  if (DbfOpen(dbf, path) != 0) return "unreadable";
  if (fields == 0) fields = dbf.FieldCount();
  std::string rows;
  for (int64_t n = 1; n <= dbf.recordCount; ++n) {
    if (DbfReadRecord(dbf, n) != 0) return "bad record";
    for (int f = 1; f <= fields; ++f) rows += TrimLeftAll(DbfGetField(dbf, f), ' ').Str() + (f < fields ? ":" : "\n");
  }
  (void)DbfClose(dbf);
  return rows;
}

struct RawField {
  std::string name;
  char type;
  int width;
  int decimals = 0;
};

inline void PutLe(std::string& s, size_t at, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) s[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

// A dBASE 3 file: header, descriptors, 0x0D, the records as given (each
// without its delete flag, which is written as a blank), and 0x1A.
inline std::string RawDbase3(const std::vector<RawField>& fields, const std::vector<std::string>& records,
                             int version = 3) {
  int recordSize = 1;
  for (const auto& f : fields) recordSize += f.width;
  const size_t headerSize = 32 + 32 * fields.size() + 1;
  std::string s(headerSize, '\0');
  s[0] = static_cast<char>(version);
  s[1] = 123, s[2] = 4, s[3] = 5;
  PutLe(s, 4, records.size(), 4);
  PutLe(s, 8, headerSize, 2);
  PutLe(s, 10, recordSize, 2);
  for (size_t i = 0; i < fields.size(); ++i) {
    s.replace(32 + 32 * i, fields[i].name.size(), fields[i].name);
    s[32 + 32 * i + 11] = fields[i].type;
    s[32 + 32 * i + 16] = static_cast<char>(fields[i].width);
    s[32 + 32 * i + 17] = static_cast<char>(fields[i].decimals);
  }
  s[headerSize - 1] = 0x0D;
  for (const auto& r : records) s += " " + r;
  return s + "\x1A";
}

// The test's three-field layout: a name, a number with two decimals, a date.
inline const std::vector<RawField> kRawFields = {{"NAZWA", 'C', 12}, {"CENA", 'N', 8, 2}, {"DATA", 'D', 8}};
inline const std::vector<std::string> kRawRecords = {"Pierwszy       12.50" "20240131",
                                                     "Drugi          -3.25" "19991231"};

class DbfTest : public file_test::ScratchDirTest {
 protected:
  // Writes bytes as a file and opens it; the code of the open.
  int OpenBytes(const std::string& bytes, const char* name = "raw.dbf") {
    WriteBytes(name, bytes);
    return DbfOpen(table_, name);
  }
  DbfFile table_;
};

}  // namespace dbf_test
