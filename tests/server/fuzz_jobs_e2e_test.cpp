// Hundreds of mutated job files (cut short, no multiple of 256 bytes, bytes
// changed, plain garbage), each published by an atomic rename, alternately into
// a row of a family without a printer and a POSNET row. The server must go on:
// no lock notice, no job file held, and a good job on each row served after.
#include <stdio.h>

#include <random>

#include <gtest/gtest.h>

#include "base/jobfile.h"
#include "printers.h"

namespace {

constexpr int kMutatedJobs = 500;

std::string Record(const std::string& text) {
  std::string record(kJobRecordSize, '\0');
  record[0] = static_cast<char>(text.size());
  record.replace(1, text.size(), text);
  return record;
}

// A well-formed job of each kind, as the application writes it.
std::string GoodJob(int kind, const std::string& number) {
  static const std::vector<std::vector<std::string>> kJobs = {
      {"\x1bPARAGON", "2", "700", "01J", "Jan", Maz(" gotówką"), "", "\"Chleb\",1,\"A\",5,szt", "\"Mleko\",1,\"B\",2,l"},
      {"\x1bRAPDOB"},
      {"\x1bRAPOKR", "01-01-2024", "31-01-2024", "FISK"},
      {"\x1bSZUFLA"},
      {"\x1b" "BRAK_DANYCH"}};
  std::string job;
  for (std::string record : kJobs[kind]) job += Record(record.empty() ? number : record);
  return job + Record("\x1bKONIEC");
}

// Whether record 1 of the bytes is one of the five keywords, whole: the jobs
// the server must take.
bool NamesAJob(const std::string& bytes) {
  if (bytes.size() < static_cast<std::size_t>(kJobRecordSize)) return false;
  for (const char* word : {"PARAGON", "RAPDOB", "RAPOKR", "SZUFLA", "BRAK_DANYCH"}) {
    const std::string keyword = std::string("\x1b") + word;
    if (static_cast<std::size_t>(static_cast<unsigned char>(bytes[0])) == keyword.size() &&
        bytes.compare(1, keyword.size(), keyword) == 0)
      return true;
  }
  return false;
}

class JobMutator {
 public:
  explicit JobMutator(unsigned seed) : random_(seed) {}
  int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  std::string Garbage(int size) {
    std::string bytes(size, '\0');
    for (char& b : bytes) b = static_cast<char>(Below(256));
    return bytes;
  }
  // One of five mutations, the last leaving the job whole.
  std::string Mutate(std::string job) {
    switch (Below(5)) {
      case 0: return job.substr(0, Below(static_cast<int>(job.size()) + 1));
      case 1: return job + Garbage(1 + Below(300));
      case 2:
        for (int n = 1 + Below(8); n > 0; --n) job[Below(static_cast<int>(job.size()))] = static_cast<char>(Below(256));
        return job;
      case 3: return Garbage(Below(1200));
      default: return job;
    }
  }

 private:
  std::mt19937 random_;
};

class FuzzJobsTest : public PrintersTest {
 protected:
  std::string Log() const { return ReadFileText(dir_ / "fisk.log"); }
  void PublishBytes(char row, const std::string& bytes) {
    WriteFileText(dir_ / "jobs/w", bytes);
    ASSERT_EQ(::rename((dir_ / "jobs/w").c_str(), (dir_ / "jobs/" + std::string(1, row)).c_str()), 0);
  }
};

TEST_F(FuzzJobsTest, MutatedJobsLeaveTheServerServing) {
  StartSimulators();
  StartServer("9,1,\"jobs\\n\",,0\n2,1,\"jobs\\p\",,1\n", "1");
  ASSERT_NE(Log().find("SKONFIGUROWANO 2"), std::string::npos);
  JobMutator mutator(20240101);
  int recognised = 0;
  for (int k = 0; k < kMutatedJobs; ++k) {
    const char row = k % 2 == 0 ? 'n' : 'p';
    const std::string job = mutator.Mutate(GoodJob(mutator.Below(5), "F" + std::to_string(k)));
    PublishBytes(row, job);
    if (!NamesAJob(job)) continue;  // still being written, as far as the server knows: it stays
    ++recognised;
    ASSERT_TRUE(WaitUntil([&] { return !JobExists(row); }, 30000)) << "job " << k << " held\n" << Log();
  }
  // One result line for every job the server recognised, after the three of the start.
  EXPECT_EQ(LogLines().size(), 3u + recognised);
  const int receipts = CountOf(Log(), "PARAGON O.K.");
  PublishBytes('p', GoodJob(0, "OK1"));
  PublishBytes('n', GoodJob(1, ""));
  EXPECT_TRUE(WaitUntil([&] { return !JobExists('p') && !JobExists('n'); }, 30000)) << Log();
  EXPECT_TRUE(WaitUntil([&] { return CountOf(Log(), "PARAGON O.K.") == receipts + 1; }, 30000)) << Log();
  const std::vector<Printed> printed = ReceiptsOf(PosnetJournal());
  ASSERT_FALSE(printed.empty());
  EXPECT_EQ(printed.back().lines, 2);
  EXPECT_EQ(printed.back().number, "OK1");
  EXPECT_EQ(Log().find("BLOKADA"), std::string::npos) << Log();
  int status = 0;
  EXPECT_FALSE(server_->Wait(0, status)) << "the server ended: " << status;
}

}  // namespace
