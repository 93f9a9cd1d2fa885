// Speed of the DBF layer on a table of 100,000 records of 20 fields:
// - write: the whole file through DbfCreate, the Put functions and
//   DbfAppendRecord (target: 100 MB/s or more);
// - read: every field of every record through DbfReadRecord and DbfGetField,
//   beside shapelib's dbfdump over the same file with its output thrown away
//   (target: at most half of dbfdump's time), with the heap allocations of
//   the read counted (target: none per record).
// Each figure is the best of five runs. Needs /usr/bin/dbfdump (Debian shapelib).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "base/shorttext.h"
#include "exchange/dbf/dbf.h"

namespace {

std::atomic<long long> g_allocations{0};

void* CountedAlloc(std::size_t size) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return CountedAlloc(size); }
void* operator new[](std::size_t size) { return CountedAlloc(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

constexpr int kRecords = 100000;
constexpr int kRuns = 5;
constexpr const char* kFile = "bench.dbf";

// Ten texts, five prices, three dates, two flags: 287 bytes a record.
const DbfFieldSpec kSpecs[20] = {
    {"NAZWA1", 'C', 20, 0}, {"NAZWA2", 'C', 20, 0}, {"NAZWA3", 'C', 20, 0}, {"NAZWA4", 'C', 20, 0},
    {"NAZWA5", 'C', 20, 0}, {"NAZWA6", 'C', 20, 0}, {"NAZWA7", 'C', 20, 0}, {"NAZWA8", 'C', 20, 0},
    {"NAZWA9", 'C', 20, 0}, {"NAZWA10", 'C', 20, 0}, {"CENA1", 'N', 12, 2}, {"CENA2", 'N', 12, 2},
    {"CENA3", 'N', 12, 2}, {"CENA4", 'N', 12, 2}, {"CENA5", 'N', 12, 2}, {"DATA1", 'D', 8, 0},
    {"DATA2", 'D', 8, 0}, {"DATA3", 'D', 8, 0}, {"JEST1", 'L', 1, 0}, {"JEST2", 'L', 1, 0}};

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Writes the table; the seconds it took, or -1 on failure.
double WriteTable() {
  static const char* const kDates[] = {"01-02-2020", "31-12-1999", "29-02-2024"};
  const ShortText name = "Towar o długiej nazwie";
  const auto start = std::chrono::steady_clock::now();
  DbfFile table;
  if (DbfCreate(table, kFile, kSpecs) != 0) return -1;
  for (int n = 1; n <= kRecords; ++n) {
    DbfBlankRecord(table);
    for (int f = 1; f <= 10; ++f) (void)DbfPutField(table, f, name);
    for (int f = 11; f <= 15; ++f) (void)DbfPutNumber(table, f, n * 1.25L + f);
    for (int f = 16; f <= 18; ++f) (void)DbfPutDate(table, f, kDates[(n + f) % 3]);
    (void)DbfPutField(table, 19, "T");
    (void)DbfPutField(table, 20, "F");
    if (DbfAppendRecord(table) != 0) return -1;
  }
  if (DbfClose(table) != 0) return -1;
  return Seconds(start);
}

// Reads every field of every record; the seconds, and the allocations made
// after the open.
double ReadTable(long long& allocations) {
  const auto start = std::chrono::steady_clock::now();
  DbfFile table;
  if (DbfOpen(table, kFile) != 0) return -1;
  const long long before = g_allocations.load();
  std::size_t bytes = 0;
  for (int64_t n = 1; n <= table.recordCount; ++n) {
    if (DbfReadRecord(table, n) != 0) return -1;
    for (int f = 1; f <= table.FieldCount(); ++f) {
      ShortText value = DbfGetField(table, f);
      benchmark::DoNotOptimize(value);
      bytes += value.Length();
    }
  }
  allocations = g_allocations.load() - before;
  benchmark::DoNotOptimize(bytes);
  DbfClose(table);
  return Seconds(start);
}

double RunDbfdump() {
  const auto start = std::chrono::steady_clock::now();
  if (std::system("/usr/bin/dbfdump bench.dbf > /dev/null") != 0) return -1;
  return Seconds(start);
}

}  // namespace

int main() {
  char dir[] = "/tmp/klote-bench-dbf-XXXXXX";
  if (::mkdtemp(dir) == nullptr || ::chdir(dir) != 0) return 1;
  double write = 1e9, read = 1e9, dump = 1e9;
  long long allocations = 0;
  for (int run = 0; run < kRuns; ++run) {
    const double w = WriteTable(), r = ReadTable(allocations), d = RunDbfdump();
    if (w < 0 || r < 0 || d < 0) {
      std::fprintf(stderr, "run %d failed (DbfStatus %d; is /usr/bin/dbfdump installed?)\n", run, DbfStatus);
      return 1;
    }
    write = std::min(write, w), read = std::min(read, r), dump = std::min(dump, d);
  }
  FILE* f = std::fopen(kFile, "rb");
  std::fseek(f, 0, SEEK_END);
  const double megabytes = std::ftell(f) / 1e6;
  std::fclose(f);
  std::printf("DBF file: %d records, 20 fields, %.1f MB (best of %d runs)\n", kRecords, megabytes, kRuns);
  std::printf("write (DbfCreate, Put*, DbfAppendRecord, DbfClose): %.3f s, %.0f MB/s (target >= 100)\n", write,
              megabytes / write);
  std::printf("read every field (DbfReadRecord, DbfGetField):     %.3f s\n", read);
  std::printf("dbfdump of the same file to /dev/null:              %.3f s\n", dump);
  std::printf("ratio ours / dbfdump: %.3f (target <= 0.5)\n", read / dump);
  std::printf("allocations while reading: %lld in %d records (%.4f per record, target 0)\n", allocations, kRecords,
              double(allocations) / kRecords);
  std::remove(kFile);
  if (::chdir("/") == 0) ::rmdir(dir);
  return 0;
}
