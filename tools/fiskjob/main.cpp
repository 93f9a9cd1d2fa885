// fiskjob: writes a job file for the fiscal print server the way the
// application does: record 1 ESC "CZEKAJ" while writing, the records, ESC
// "KONIEC", and then the single write of record 1 that publishes the job.
//
//   fiskjob <job file> <PARAGON|RAPDOB|RAPOKR|SZUFLA|BRAK_DANYCH|CZEKAJ> [record ...]
//
// Records are given in UTF-8 and written in Mazovia. CZEKAJ leaves the file
// unpublished. Example, a receipt of one line paid in cash:
//   fiskjob srvfisk/1 PARAGON 1 500 01J Jan " gotówką" "" '"Chleb",1,"A",5,szt'
#include <cstdio>
#include <cstring>

#include "base/codepage.h"
#include "base/filevar.h"
#include "base/jobfile.h"

namespace {

struct NamedKind {
  const char* word;
  uint8_t kind;
};
constexpr NamedKind kKinds[] = {{"PARAGON", kJobReceipt},    {"RAPDOB", kJobDailyReport},
                                {"RAPOKR", kJobPeriodReport}, {"SZUFLA", kJobDrawer},
                                {"BRAK_DANYCH", kJobWithdrawn}, {"CZEKAJ", kJobNone}};

constexpr const char kUsage[] =
    "usage: fiskjob <job file> <PARAGON|RAPDOB|RAPOKR|SZUFLA|BRAK_DANYCH|CZEKAJ> [record ...]\n"
    "Writes a job file for fisksrv as the application does; records in UTF-8.\n"
    "PARAGON (receipt) records, in this order:\n"
    "  number of lines, total in grosz, cashier code, cashier name,\n"
    "  payment form (\" gotówką\" with its leading blank is cash), document number (may be \"\"),\n"
    "  then one record per line: \"name\",quantity,\"VAT letter\",price in zloty,unit\n"
    "RAPOKR (period report): date from, date to (DD-MM-YYYY), FISK or NFISK\n"
    "RAPDOB (daily report), SZUFLA (drawer), BRAK_DANYCH (withdrawn): no records\n"
    "CZEKAJ: the job stays unpublished, and the server leaves it alone\n"
    "Example: fiskjob srvfisk/1 PARAGON 1 500 01J Jan \" gotówką\" \"\" '\"Chleb\",1,\"A\",5,szt'\n";

int Fail(const char* what, const char* path) {
  std::fprintf(stderr, "fiskjob: %s: %s\n", what, path);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (argc < 3) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  const NamedKind* named = nullptr;
  for (const NamedKind& k : kKinds)
    if (std::strcmp(k.word, argv[2]) == 0) named = &k;
  if (named == nullptr) return Fail("unknown job kind", argv[2]);

  FileVar file;
  AssignFile(file, argv[1]);
  if (file.Rewrite() != 0) return Fail("cannot create", argv[1]);
  bool written = WriteJobRecord(file, kJobKeywordWait) == 0;
  for (int i = 3; i < argc; ++i) written = written && WriteJobRecord(file, Utf8ToMaz(ShortText(argv[i]))) == 0;
  written = written && WriteJobRecord(file, kJobKeywordEnd) == 0;
  if (named->kind != kJobNone) written = written && WriteJobRecordAt(file, 1, JobKeyword(named->kind)) == 0;
  if (!written || file.Close() != 0) return Fail("cannot write", argv[1]);
  return 0;
}
