#include "tui/filedialogs.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <string>

#include "base/file_fixture.h"
#include "base/filecopy.h"
#include "base/mazovia.h"
#include "form_fixture.h"

namespace {

using file_test::Exists;
using file_test::Pattern;
using file_test::ReadBytes;
using file_test::WriteBytes;

using form_test::Seen;

// True if the pieces come one after another in the stream.
bool InOrder(const std::string& stream, const std::vector<std::string>& pieces) {
  size_t at = 0;
  for (const std::string& p : pieces) {
    at = stream.find(p, at);
    if (at == std::string::npos) return false;
    at += p.size();
  }
  return true;
}

class FileDialogsTest : public form_test::FormTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(scratch_.Entered());
    FormTest::SetUp();  // special font: bar bytes reach the terminal as drawn
    for (int r = 1; r <= 25; ++r) WriteAt(1, r, ShortText(std::string(80, static_cast<char>('a' + r))));
    before_ = form_test::Capture();
    AnswerBoxes();
    Sent();
  }
  // A box that waits gets Enter; Seen() counts the boxes and keeps the first one's screen.
  static void AnswerBoxes() { form_test::Play({{keys::kEnter}}); }
  // The row (1..25) of the first box's screen that holds the text; 0 when none does.
  static int SeenRow(const ShortText& text) { return Seen().empty() ? 0 : Seen().at(0).RowOf(text.View()); }
  void ExpectScreenAsBefore() { EXPECT_EQ(form_test::Capture().rows, before_.rows); }

  file_test::ScratchDir scratch_;
  form_test::Snapshot before_;
};

TEST_F(FileDialogsTest, DeleteManyFillsItsBarFileByFile) {
  for (int i = 1; i <= 5; ++i) WriteBytes("plik" + std::to_string(i) + ".tmp", "x");
  WriteBytes("zostaw.txt", "x");
  EXPECT_EQ(DeleteMany("*.tmp"), 5);
  EXPECT_EQ(file_test::Listing(), "zostaw.txt ");
  const std::string sent = Sent();
  std::vector<std::string> stages = {"Trwa kasowanie..."};
  for (int cells = 2; cells <= 10; cells += 2) stages.push_back(std::string(cells, '\xDB') + std::string(10 - cells, ' '));
  EXPECT_TRUE(InOrder(sent, stages));
  ExpectScreenAsBefore();
  EXPECT_TRUE(Seen().empty());
  EXPECT_EQ(DeleteMany("*.tmp"), 0);
  ExpectScreenAsBefore();
}

TEST_F(FileDialogsTest, CopyFileBarCountsBlocksDoneOfAll) {
  const std::string source = Pattern(3 * kCopyBlockSize + 5);
  WriteBytes("zrodlo.dat", source);
  EXPECT_EQ(CopyFileBar("zrodlo.dat", "cel.dat"), kCopyOk);
  EXPECT_EQ(ReadBytes("cel.dat"), source);
  std::vector<std::string> stages = {"Kopiowanie pliku:", "zrodlo.dat", "na plik:", "cel.dat .",
                                     "[          /          ]"};
  for (int done = 1; done <= 4; ++done) stages.push_back("         " + std::to_string(done) + "/4         ");
  EXPECT_TRUE(InOrder(Sent(), stages));
  ExpectScreenAsBefore();
  EXPECT_TRUE(Seen().empty());
  // A part appended.
  EXPECT_EQ(CopyFileBar("zrodlo.dat", "cel.dat", CopyOptions{1, 2}), kCopyOk);
  EXPECT_EQ(ReadBytes("cel.dat"), source + source.substr(1, 2));
}

TEST_F(FileDialogsTest, EachFailureSaysWhatFailedInOneBoxAndChangesNothing) {
  WriteBytes("zrodlo.dat", Pattern(100));
  WriteBytes("plik.txt", "a\r\n");
  ::mkdir("katalog", 0777);
  FileVar file;
  const ShortText copying = "Kopiowanie pliku:"_mz;
  struct Case {
    ShortText message;
    std::function<bool()> failed;
    const char* path;    // named on the line under the message, when given
    ShortText under;     // the box that stays under the message, when given
  } cases[] = {
      {"Błąd "_mz + CopyResultText(kCopyTargetWrite),
       [] { return CopyFileBar("zrodlo.dat", "/dev/full") == kCopyTargetWrite; }, nullptr, copying},
      {"Błąd "_mz + CopyResultText(kCopySourceOpen),
       [] { return CopyFileBar("brak.dat", "cel.dat") == kCopySourceOpen; }, nullptr, copying},
      {"Błąd "_mz + CopyResultText(kCopyCompare),
       [] { return CopyFileBar("zrodlo.dat", "/dev/zero") == kCopyCompare; }, nullptr, copying},
      {"Błąd otwarcia pliku !"_mz, [] { return !RenameSafe("brak.txt", "nowy.txt"); }, nullptr, {}},
      {"Błąd otwarcia pliku tymczasowego !"_mz, [] { return !RenameSafe("plik.txt", "brak/nowy.txt"); }, nullptr, {}},
      {"Błąd 21 zmiany nazwy pliku."_mz, [] { return !RenameSafe("plik.txt", "katalog"); }, nullptr, {}},  // EISDIR
      {"Błąd otwarcia pliku !"_mz, [] { return !DosToUnixFile("brak.txt"); }, nullptr, {}},
      {"Nie mogę otworzyć do odczytu pliku:"_mz, [&] { return !OpenReadOrWarn(file, "dane\\brak.txt"); },
       "dane\\brak.txt", {}},
      {"Nie mogę otworzyć w trybie dopisywania pliku:"_mz,
       [&] { return !OpenAppendOrWarn(file, "brak\\x.txt", true); }, "brak\\x.txt", {}},
      {"Nie mogę otworzyć w trybie zapisywania pliku:"_mz,
       [&] { return !OpenAppendOrWarn(file, "brak\\x.txt", false); }, "brak\\x.txt", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message.Str());
    AnswerBoxes();
    EXPECT_TRUE(c.failed());
    ASSERT_EQ(Seen().size(), 1u);
    const int row = SeenRow(c.message);
    ASSERT_GT(row, 0);
    EXPECT_TRUE(c.path == nullptr || Seen().at(0).rows[row + 1].Pos(c.path) > 0);
    EXPECT_TRUE(c.under.Empty() || (SeenRow(c.under) > 0 && SeenRow(c.under) < row));
    EXPECT_EQ(ReadBytes("plik.txt"), "a\r\n");
    ExpectScreenAsBefore();
  }
}

TEST_F(FileDialogsTest, LineEndsBothWaysAndRenameWithoutABox) {
  const std::string unix = std::string(4095, 'x') + "\n" + std::string(4095, 'y') + "\nz";
  const std::string dos = std::string(4095, 'x') + "\r\n" + std::string(4095, 'y') + "\r\nz";
  WriteBytes("plik.txt", unix);
  EXPECT_TRUE(UnixToDosFile("plik.txt"));
  EXPECT_EQ(ReadBytes("plik.txt"), dos);
  EXPECT_TRUE(DosToUnixFile("PLIK.TXT"));  // found on disk whatever the case
  EXPECT_EQ(ReadBytes("plik.txt"), unix);
  EXPECT_TRUE(RenameSafe("plik.txt", "nowy.txt"));
  EXPECT_EQ(ReadBytes("nowy.txt"), unix);
  EXPECT_FALSE(Exists("plik.txt"));
  EXPECT_TRUE(Seen().empty());
}

TEST_F(FileDialogsTest, OpenOrWarnReadsAppendsOrWritesAnew) {
  WriteBytes("log.txt", "stare\n");
  FileVar file;
  ASSERT_TRUE(OpenReadOrWarn(file, "LOG.TXT"));
  ShortText line;
  EXPECT_TRUE(file.ReadLine(line));
  EXPECT_EQ(line, "stare");
  file.Close();
  struct Case {
    const char* path;
    bool append;
    std::string after;  // what the file holds after writing "nowe\n"
  } cases[] = {
      {"log.txt", true, "stare\nnowe\n"},
      {"nowy.txt", true, "nowe\n"},  // a missing file is made
      {"log.txt", false, "nowe\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    ASSERT_TRUE(OpenAppendOrWarn(file, c.path, c.append));
    ASSERT_EQ(file.Write("nowe\n", 5), 0);
    file.Close();
    EXPECT_EQ(ReadBytes(c.path), c.after);
  }
  EXPECT_TRUE(Seen().empty());
}

TEST_F(FileDialogsTest, FileManagerCommandComesFromFmgrCfgOrIsMc) {
  EXPECT_EQ(FileManagerCommand(), "/usr/bin/mc -as");
  struct Case {
    std::string config;
    const char* command;
  } cases[] = {
      {"  sh menedzer.sh  \r\n/usr/bin/mc\n", "sh menedzer.sh"},
      {"\nsh drugi.sh\n", "/usr/bin/mc -as"},  // a blank first line says nothing
      {"", "/usr/bin/mc -as"},
  };
  for (const Case& c : cases) {
    WriteBytes("fmgr.cfg", c.config);
    EXPECT_EQ(FileManagerCommand(), c.command);
  }
}

TEST_F(FileDialogsTest, FileManagerRunsTheCommandThroughTheShellAndRepaints) {
  WriteBytes("menedzer.sh", "printf '%s|%s' \"$#\" \"$1\" > wynik.txt; exit 3\n");
  WriteBytes("fmgr.cfg", "sh menedzer.sh 'dwa slowa' >/dev/null\n");
  EXPECT_EQ(FileManager(), 3);
  EXPECT_EQ(ReadBytes("wynik.txt"), "1|dwa slowa");
  ExpectScreenAsBefore();
  // Autowrap on for the other program, off again after it, then the whole screen anew.
  EXPECT_TRUE(InOrder(Sent(), {"\x1b[0m\x1b[?7h", "\x1b[?7l", std::string(80, 'a' + 1), std::string(80, 'a' + 25)}));
  WriteBytes("fmgr.cfg", "exit 0\n");
  EXPECT_EQ(FileManager(), 0);
}

}  // namespace
