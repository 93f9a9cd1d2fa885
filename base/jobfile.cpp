#include "base/jobfile.h"

#include <cerrno>
#include <cstring>

#include "base/numtext.h"
#include "base/platform.h"

namespace {

struct KeywordOfKind {
  uint8_t kind;
  ShortText keyword;
};

constexpr KeywordOfKind kKeywords[] = {
    {kJobReceipt, "\x1b" "PARAGON"},  {kJobDailyReport, "\x1b" "RAPDOB"},
    {kJobPeriodReport, "\x1b" "RAPOKR"}, {kJobDrawer, "\x1b" "SZUFLA"},
    {kJobWithdrawn, "\x1b" "BRAK_DANYCH"},
};

void FillRecord(const ShortText& text, unsigned char (&record)[kJobRecordSize]) {
  std::memset(record, 0, sizeof record);
  record[0] = static_cast<unsigned char>(text.Length());
  std::memcpy(record + 1, text.Data(), text.Length());
}

}  // namespace

ShortText JobKeyword(uint8_t kind) {
  for (const auto& k : kKeywords)
    if (k.kind == kind) return k.keyword;
  return ShortText();
}

uint8_t JobKindOfRecord(const ShortText& record) {
  for (const auto& k : kKeywords)
    if (record == k.keyword) return k.kind;
  return kJobNone;
}

bool ReadJobRecord(FileVar& file, ShortText& text) {
  unsigned char record[kJobRecordSize];
  int got = 0;
  text.Clear();
  if (file.Read(record, kJobRecordSize, got) != 0 || got <= 0) return false;
  const int length = record[0] < got ? record[0] : got - 1;
  text.Assign(std::string_view(reinterpret_cast<const char*>(record + 1), length));
  return got == kJobRecordSize;
}

int WriteJobRecord(FileVar& file, const ShortText& text) {
  unsigned char record[kJobRecordSize];
  FillRecord(text, record);
  return file.Write(record, kJobRecordSize);
}

int WriteJobRecordAt(FileVar& file, int recordNumber, const ShortText& text) {
  if (recordNumber < 1) return EINVAL;
  if (int r = file.Seek(int64_t{recordNumber - 1} * kJobRecordSize); r != 0) return r;
  return WriteJobRecord(file, text);
}

bool ReadReceiptJob(FileVar& file, ReceiptJob& job) {
  ShortText head[6];  // records 2 to 7
  for (ShortText& record : head)
    if (!ReadJobRecord(file, record)) return false;
  job.lineCount = TextToInt(head[0]);
  job.total = TextToReal(head[1]);
  job.cashierCode = head[2];
  job.cashierName = head[3];
  job.paymentForm = head[4];
  job.documentNumber = head[5];

  job.lines = 0;
  ShortText record;
  while (ReadJobRecord(file, record) && record != kJobKeywordEnd) {
    if (job.lines == kReceiptMaxLines) RunTimeError(kRangeCheckError, "more than 50 lines in a receipt job");
    job.line[job.lines++] = record;
  }
  return job.lines == job.lineCount;
}
