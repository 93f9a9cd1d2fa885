// What an open table keeps beside its public fields: its paths and its
// buffers. Private to exchange/dbf.
#pragma once

#include <cstdint>
#include <vector>

#include "exchange/dbf/dbf.h"

struct DbfFile::Io {
  ShortText path;      // the table's name on the disk
  ShortText tempPath;  // a created table is written here until its close
  bool created = false;
  int failure = 0;         // code of a failed write: the close must not complete the file
  int64_t diskCount = 0;   // records that reached the disk whole
  int blockRecords = 1;    // records per block
  std::vector<char> block;  // records read ahead, from blockFirst
  int64_t blockFirst = 0;
  int blockCount = 0;
  std::vector<char> pending;  // appended records not yet written
  int pendingCount = 0;
};

// DbfOpen and DbfCreate of a path already in the disk's form.
int DbfOpenUnix(DbfFile& table, const ShortText& unixPath);
int DbfCreateUnix(DbfFile& table, const ShortText& unixPath, std::span<const DbfFieldSpec> fields,
                  DbfCodePage codePage);
// Closes a created table without giving it its name: the temporary file goes.
void DbfDiscard(DbfFile& table);
// Forgets the records appended after the first count, so that the close
// writes the header as it was.
void DbfDropAppends(DbfFile& table, int64_t count);
// Writes the appended records that wait in memory.
int DbfFlushPending(DbfFile& table);
// Sets code 130 and remembers whether a read gave it, whose text differs.
int DbfRangeError(bool fromRead);
