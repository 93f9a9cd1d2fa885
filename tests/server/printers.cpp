#include "printers.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "base/codepage.h"
#include "base/filevar.h"
#include "base/jobfile.h"

namespace {

// A job of 50 ELZAB lines takes about 10 s at the line's pace.
constexpr int kResultWaitMs = 30000;

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace

std::string Maz(const std::string& utf8) { return Utf8ToMaz(ShortText(utf8)).Str(); }

Lines ReceiptRecords(int lines, const std::string& number, const std::string& cashier) {
  Lines job = {std::to_string(lines), std::to_string(lines * kReceiptLineGrosz), "01J", cashier, " gotówką", number};
  for (int i = 1; i <= lines; ++i) job.push_back("\"Towar " + std::to_string(i) + " żółty\",1,\"A\",1.23,szt");
  return job;
}

const Lines kTwoLines = {"2", "1100", "01J", "Jan", " gotówką", "", "\"Chleb\",1,\"A\",5,szt", "\"Mleko\",2,\"B\",3,l"};

bool Has(const Lines& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

int CountStarting(const Lines& lines, const std::string& prefix) {
  return static_cast<int>(
      std::count_if(lines.begin(), lines.end(), [&](const std::string& l) { return l.rfind(prefix, 0) == 0; }));
}

void PrintersTest::StartSimulators(std::vector<std::string> elzabArgs, std::vector<std::string> posnetArgs,
                                   bool elzabOnTerminal) {
  ::mkdir((dir_ / "jobs").c_str(), 0777);
  elzab_ = std::make_unique<ElzabSimProcess>(std::move(elzabArgs), elzabOnTerminal);
  posnet_ = std::make_unique<SimProcess>(std::move(posnetArgs));
  ASSERT_FALSE(elzab_->Line().empty());
  ASSERT_FALSE(posnet_->Slave().empty());
  // POSNET port 1 opens <prefix>0.
  ASSERT_EQ(::symlink(posnet_->Slave().c_str(), (dir_ / "tty0").c_str()), 0);
  ::setenv("KLOTE_SERIAL_PREFIX", (dir_ / "tty").c_str(), 1);
  ::setenv("KLOTE_ELZAB_LINE", elzab_->Line().c_str(), 1);
}

void PrintersTest::Start(std::vector<std::string> elzabArgs, std::vector<std::string> posnetArgs,
                         bool elzabOnTerminal) {
  StartSimulators(std::move(elzabArgs), std::move(posnetArgs), elzabOnTerminal);
  if (HasFatalFailure()) return;
  StartServer(
      "1,1,\"jobs\\e\",,1\n"
      "2,1,\"jobs\\p\",,1\n"
      "3,1,\"jobs\\q\",PARAGON_FISKALNY,0\n"
      "1,1,\"jobs\\f\",,0\n"
      "1,5,\"jobs\\g\",,1\n");
  ASSERT_EQ(CountOf(ReadFileText(dir_ / "fisk.log"), "SKONFIGUROWANO 5"), 1);
}

void PrintersTest::StartServer(const std::string& config, const std::string& pollMs) {
  WriteFileText(dir_ / "fisk.cfg", config);
  server_ = std::make_unique<ServerProcess>(dir_, ServerRun{{"fisk.cfg", pollMs, "fisk.log", "x"}});
  const int starts = ++starts_;
  ASSERT_TRUE(WaitUntil([&] { return CountOf(ReadFileText(dir_ / "fisk.log"), "SKONFIGUROWANO") == starts; }, 10000));
}

void PrintersTest::TearDown() {
  server_.reset();
  ::unsetenv("KLOTE_SERIAL_PREFIX");
  ::unsetenv("KLOTE_ELZAB_LINE");
}

void PrintersTest::Publish(char row, const std::string& word, const std::vector<std::string>& records) {
  const std::string aside = dir_ / "writing";
  FileVar f;
  f.BindUnixPath(ShortText(aside));
  ASSERT_EQ(f.Rewrite(), 0);
  ASSERT_EQ(WriteJobRecord(f, ShortText("\x1b" + word)), 0);
  for (const std::string& r : records) ASSERT_EQ(WriteJobRecord(f, Utf8ToMaz(ShortText(r))), 0);
  ASSERT_EQ(WriteJobRecord(f, kJobKeywordEnd), 0);
  ASSERT_EQ(f.Close(), 0);
  ASSERT_EQ(::rename(aside.c_str(), (dir_ / "jobs/" + std::string(1, row)).c_str()), 0);
}

std::vector<std::string> PrintersTest::LogLines() const { return SplitLines(ReadFileText(dir_ / "fisk.log")); }

bool PrintersTest::JobExists(char row) const { return PathExists(dir_ / "jobs/" + std::string(1, row)); }

std::string PrintersTest::Run(char row, const std::string& word, const std::vector<std::string>& records) {
  Publish(row, word, records);
  return Result(row);
}

std::string PrintersTest::Result(char row) {
  // The first three log lines are the start-up's; each job adds one.
  const std::size_t want = 3 + static_cast<std::size_t>(++results_);
  if (!WaitUntil([&] { return LogLines().size() >= want && !JobExists(row); }, kResultWaitMs)) return "(no result)";
  const std::string line = LogLines()[want - 1];
  return line.size() > 9 ? line.substr(9) : line;  // "HH:MM:SS " first
}

// Numbers are padded with blanks, not zeros.
bool IsFailureStamp(const std::string& tail) {
  const std::string shape = " nie wyk.zad. #9-#9-9999 #9:#9:#9";
  return tail.size() == shape.size() && HasShapeAt(tail, 0, shape);
}

::testing::AssertionResult EndsInFailureStamp(const std::string& line, const std::string& text) {
  if (line.rfind(text, 0) != 0) return ::testing::AssertionFailure() << "\"" << line << "\" does not start with \"" << text << "\"";
  if (!IsFailureStamp(line.substr(text.size())))
    return ::testing::AssertionFailure() << "\"" << line << "\" has no failure stamp behind \"" << text << "\"";
  return ::testing::AssertionSuccess();
}

std::vector<Printed> ReceiptsOf(const std::vector<std::string>& journal) {
  std::vector<Printed> out;
  for (const std::string& l : journal) {
    if (l.rfind("RECEIPT", 0) == 0) out.push_back({});
    if (out.empty() || !out.back().end.empty()) continue;
    Printed& p = out.back();
    if (l.rfind("LINE ", 0) == 0) ++p.lines;
    if (l.rfind("TEXT 6|", 0) == 0) p.number = l.substr(7);
    if (l.rfind("TEXT 5|", 0) == 0 && l.back() != '.') p.cutText = true;
    if (l.rfind("FOOT #", 0) == 0) p.number = l.substr(6);
    if (l.rfind("CLOSE", 0) == 0 || l.rfind("TOTAL", 0) == 0 || l == "CANCELLED") p.end = l;
  }
  return out;
}
