#include "tui/filedialogs.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

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

TEST_F(FileDialogsTest, CopyFileBarShowsTheFailureOverItsBox) {
  WriteBytes("zrodlo.dat", Pattern(100));
  struct Case {
    const char* source;
    const char* target;
    uint8_t code;
  } cases[] = {
      {"zrodlo.dat", "/dev/full", kCopyTargetWrite}, {"brak.dat", "cel.dat", kCopySourceOpen},
      {"zrodlo.dat", "/dev/zero", kCopyCompare},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.target);
    AnswerBoxes();
    EXPECT_EQ(CopyFileBar(c.source, c.target), c.code);
    EXPECT_EQ(Seen().size(), 1u);
    const int errorRow = SeenRow("Błąd "_mz + CopyResultText(c.code));
    EXPECT_GT(errorRow, 0);
    const int copyRow = SeenRow("Kopiowanie pliku:"_mz);
    EXPECT_GT(copyRow, 0);  // the copy's box stays under the error
    EXPECT_LT(copyRow, errorRow);
    ExpectScreenAsBefore();
  }
}

TEST_F(FileDialogsTest, RenameSafeSaysWhatFailed) {
  ::mkdir("katalog", 0777);
  WriteBytes("plik.txt", "a\r\n");
  struct Case {
    const char* from;
    const char* to;
    ShortText message;
  } cases[] = {
      {"brak.txt", "nowy.txt", "Błąd otwarcia pliku !"_mz},
      {"plik.txt", "brak/nowy.txt", "Błąd otwarcia pliku tymczasowego !"_mz},
      {"plik.txt", "katalog", "Błąd 21 zmiany nazwy pliku."_mz},  // EISDIR
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.to);
    AnswerBoxes();
    EXPECT_FALSE(RenameSafe(c.from, c.to));
    EXPECT_EQ(Seen().size(), 1u);
    EXPECT_GT(SeenRow(c.message), 0);
    EXPECT_EQ(ReadBytes("plik.txt"), "a\r\n");
    ExpectScreenAsBefore();
  }
  AnswerBoxes();
  EXPECT_TRUE(RenameSafe("plik.txt", "nowy.txt"));
  EXPECT_EQ(ReadBytes("nowy.txt"), "a\r\n");
  EXPECT_FALSE(Exists("plik.txt"));
  EXPECT_TRUE(Seen().empty());
}

TEST_F(FileDialogsTest, DosAndUnixLineEndsBothWays) {
  const std::string unix = std::string(4095, 'x') + "\n" + std::string(4095, 'y') + "\nz";
  const std::string dos = std::string(4095, 'x') + "\r\n" + std::string(4095, 'y') + "\r\nz";
  WriteBytes("plik.txt", unix);
  EXPECT_TRUE(UnixToDosFile("plik.txt"));
  EXPECT_EQ(ReadBytes("plik.txt"), dos);
  EXPECT_TRUE(DosToUnixFile("PLIK.TXT"));  // found on disk whatever the case
  EXPECT_EQ(ReadBytes("plik.txt"), unix);
  EXPECT_TRUE(Seen().empty());
  EXPECT_FALSE(DosToUnixFile("brak.txt"));
  EXPECT_GT(SeenRow("Błąd otwarcia pliku !"_mz), 0);
}

TEST_F(FileDialogsTest, OpenReadOrWarnNamesThePathItCouldNotOpen) {
  FileVar file;
  EXPECT_FALSE(OpenReadOrWarn(file, "dane\\brak.txt"));
  const int row = SeenRow("Nie mogę otworzyć do odczytu pliku:"_mz);
  ASSERT_GT(row, 0);
  EXPECT_NE(Seen().at(0).rows[row + 1].Pos("dane\\brak.txt"), 0);
  ExpectScreenAsBefore();
  WriteBytes("jest.txt", "linia\n");
  AnswerBoxes();
  ASSERT_TRUE(OpenReadOrWarn(file, "JEST.TXT"));
  ShortText line;
  EXPECT_TRUE(file.ReadLine(line));
  EXPECT_EQ(line, "linia");
  EXPECT_TRUE(Seen().empty());
}

TEST_F(FileDialogsTest, OpenAppendOrWarnAppendsOrWritesAnew) {
  WriteBytes("log.txt", "stare\n");
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
    FileVar file;
    ASSERT_TRUE(OpenAppendOrWarn(file, c.path, c.append));
    ASSERT_EQ(file.Write("nowe\n", 5), 0);
    file.Close();
    EXPECT_EQ(ReadBytes(c.path), c.after);
  }
  EXPECT_TRUE(Seen().empty());
  for (bool append : {true, false}) {
    AnswerBoxes();
    FileVar file;
    EXPECT_FALSE(OpenAppendOrWarn(file, "brak\\x.txt", append));
    const int row = SeenRow(append ? "Nie mogę otworzyć w trybie dopisywania pliku:"_mz
                                   : "Nie mogę otworzyć w trybie zapisywania pliku:"_mz);
    ASSERT_GT(row, 0);
    EXPECT_NE(Seen().at(0).rows[row + 1].Pos("brak\\x.txt"), 0);
    ExpectScreenAsBefore();
  }
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
