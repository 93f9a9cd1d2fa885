// Reading tables laid out byte by byte here: the versions, the fields, and
// every kind of damaged file.
#include <string>

#include "base/mazovia.h"
#include "dbf_fixture.h"

namespace dbf_test {
namespace {

using DbfReadTest = DbfTest;

TEST_F(DbfReadTest, ReadsHeaderFieldsAndRecordsOfADbase3File) {
  ASSERT_EQ(OpenBytes(RawDbase3(kRawFields, kRawRecords)), 0);
  EXPECT_EQ(table_.recordCount, 2);
  EXPECT_EQ(table_.headerSize, 32 + 3 * 32 + 1);
  EXPECT_EQ(table_.recordSize, 1 + 12 + 8 + 8);
  EXPECT_EQ(table_.date, "04/05/23");
  ASSERT_EQ(table_.FieldCount(), 3);
  EXPECT_EQ(table_.Field(2).name, "CENA");
  EXPECT_EQ(table_.Field(2).decimals, 2);
  EXPECT_EQ(table_.Field(3).offset, 21);
  ASSERT_EQ(DbfReadRecord(table_, 2), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "Drugi");
  EXPECT_EQ(DbfGetField(table_, 2), "   -3.25");  // only the right end is trimmed
  EXPECT_EQ(DbfGetDate(table_, 3), "31-12-1999");
  ASSERT_EQ(DbfReadRecord(table_, 1), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "Pierwszy");
  EXPECT_FALSE(DbfIsDeleted(table_));
}

TEST_F(DbfReadTest, VersionByteDecidesWhetherTheFileIsTaken) {
  for (int version : {3, 4, 5, 48, 131, 139, 140, 245}) {
    EXPECT_EQ(OpenBytes(RawDbase3(kRawFields, kRawRecords, version)), 0) << version;
    EXPECT_EQ(table_.version, version);
  }
  for (int version : {0, 1, 6, 47, 130, 255, int{'N'}})
    EXPECT_EQ(OpenBytes(RawDbase3(kRawFields, kRawRecords, version)), kDbfNotDbase) << version;
}

TEST_F(DbfReadTest, TextIsCutAtByteZeroAndDeletedMarkIsSeen) {
  std::string bytes = RawDbase3(kRawFields, {std::string("ab\0cd       ", 12) + "    1.00" + "20000101"});
  bytes[bytes.size() - 1 - 29] = '*';
  ASSERT_EQ(OpenBytes(bytes), 0);
  ASSERT_EQ(DbfReadRecord(table_, 1), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "ab");
  EXPECT_TRUE(DbfIsDeleted(table_));
}

TEST_F(DbfReadTest, ReadsADbase2File) {
  std::string s(521, '\0');
  s[0] = 2;
  PutLe(s, 1, 1, 2);
  s[3] = 12, s[4] = 24, s[5] = 98;
  PutLe(s, 6, 1 + 6 + 4, 2);
  s.replace(8, 3, "KOD");
  s[8 + 11] = 'C', s[8 + 12] = 6;
  s.replace(24, 3, "ILE");
  s[24 + 11] = 'N', s[24 + 12] = 4, s[24 + 15] = 1;
  s[40] = 0x0D;
  ASSERT_EQ(OpenBytes(s + " ABC   12.5\x1A"), 0);
  EXPECT_EQ(table_.date, "12/24/98");
  ASSERT_EQ(table_.FieldCount(), 2);
  EXPECT_EQ(table_.Field(2).decimals, 1);
  ASSERT_EQ(DbfReadRecord(table_, 1), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "ABC");
  EXPECT_EQ(DbfGetField(table_, 2), "12.5");
}

// Each damage to a good file, and the code it must give.
struct Damage {
  const char* what;
  void (*apply)(std::string& bytes);
  int code;
};

const Damage kDamages[] = {
    {"truncated header", [](std::string& b) { b.resize(40); }, kDbfUnexpectedEnd},
    {"only the version byte", [](std::string& b) { b.resize(1); }, kDbfUnexpectedEnd},
    {"empty file", [](std::string& b) { b.clear(); }, kDbfUnexpectedEnd},
    {"field width 0", [](std::string& b) { b[32 + 16] = 0; }, kDbfNotDbase},
    {"record size disagrees with widths", [](std::string& b) { PutLe(b, 10, 300, 2); }, kDbfNotDbase},
    {"header shorter than descriptors", [](std::string& b) { PutLe(b, 8, 32 + 2 * 32 + 1, 2); }, kDbfNotDbase},
    {"header too short to hold any", [](std::string& b) { PutLe(b, 8, 20, 2); }, kDbfNotDbase},
    {"header longer than the file", [](std::string& b) { PutLe(b, 8, 60000, 2); }, kDbfUnexpectedEnd},
    {"no end mark of descriptors", [](std::string& b) { b[32 + 3 * 32] = 'X'; }, kDbfNotDbase},
    {"unknown field type", [](std::string& b) { b[32 + 32 + 11] = 'X'; }, kDbfBadFieldType},
    {"no fields", [](std::string& b) { b[32] = 0x0D; }, kDbfNotDbase},
    {"text file", [](std::string& b) { b = "NUMER;NAZWA\n1;Ala\n"; }, kDbfNotDbase},
};

TEST_F(DbfReadTest, DamagedFilesGiveTheirCodeAndStayClosed) {
  for (const Damage& d : kDamages) {
    std::string bytes = RawDbase3(kRawFields, kRawRecords);
    d.apply(bytes);
    EXPECT_EQ(OpenBytes(bytes), d.code) << d.what;
    EXPECT_EQ(DbfStatus, d.code) << d.what;
    EXPECT_FALSE(table_.IsOpen()) << d.what;
  }
  EXPECT_EQ(DbfOpen(table_, "brak.dbf"), kDbfNotFound);
}

TEST_F(DbfReadTest, CountBeyondTheFileReadsAsUnexpectedEnd) {
  std::string bytes = RawDbase3(kRawFields, kRawRecords);
  PutLe(bytes, 4, 5, 4);
  bytes.pop_back();  // and no end byte: the count governs, not the mark
  ASSERT_EQ(OpenBytes(bytes), 0);
  EXPECT_EQ(DbfReadRecord(table_, 2), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "Drugi");
  EXPECT_EQ(DbfReadRecord(table_, 3), kDbfUnexpectedEnd);
  EXPECT_EQ(DbfErrorText(DbfStatus), "Błąd pliku DBASE.@Niespodziwany koniec pliku"_mz);
  bytes.resize(bytes.size() - 5);  // the last record cut short
  ASSERT_EQ(OpenBytes(bytes), 0);
  EXPECT_EQ(DbfReadRecord(table_, 1), 0);
  EXPECT_EQ(DbfReadRecord(table_, 2), kDbfUnexpectedEnd);
}

TEST_F(DbfReadTest, RecordAndFieldNumbersOutsideTheTable) {
  ASSERT_EQ(OpenBytes(RawDbase3(kRawFields, kRawRecords)), 0);
  ASSERT_EQ(DbfReadRecord(table_, 1), 0);
  for (int64_t n : {int64_t{0}, int64_t{-1}, int64_t{3}}) {
    EXPECT_EQ(DbfReadRecord(table_, n), kDbfRecordRange);
    EXPECT_EQ(std::string(table_.record.begin(), table_.record.end()), std::string(29, ' '));
  }
  EXPECT_EQ(DbfErrorText(kDbfRecordRange), "Błąd pliku DBASE.@Proba odczytu rekordu poza znakiem końca pliku"_mz);
  for (int field : {0, 4}) {
    EXPECT_EQ(DbfGetField(table_, field), "");
    EXPECT_EQ(DbfStatus, kDbfBufferError);
  }
  DbfClose(table_);
  EXPECT_EQ(DbfReadRecord(table_, 1), kDbfNotOpenForInput);
  EXPECT_EQ(DbfClose(table_), kDbfNotOpen);
}

TEST_F(DbfReadTest, LanguageByteChoosesTheCodePage) {
  // "ąŚ" in code page 852 and in Windows 1250; Mazovia 0x86 0x98 in the buffer.
  const struct {
    unsigned char language;
    std::string bytes;
  } cases[] = {{0x64, "\xA5\x97"}, {0xC8, "\xB9\x8C"}, {0x00, "\x86\x98"}};
  for (const auto& c : cases) {
    std::string raw = RawDbase3({{"T", 'C', 2}}, {c.bytes});
    raw[29] = static_cast<char>(c.language);
    ASSERT_EQ(OpenBytes(raw), 0);
    ASSERT_EQ(DbfReadRecord(table_, 1), 0);
    EXPECT_EQ(DbfGetField(table_, 1), "\x86\x98") << int(c.language);
  }
  DbfSetCodePage(table_, DbfCodePage::kIso);
  std::string raw = RawDbase3({{"T", 'C', 2}}, {"\xB1\xA6"});  // ąŚ in ISO 8859-2
  ASSERT_EQ(OpenBytes(raw), 0);
  DbfSetCodePage(table_, DbfCodePage::kIso);
  ASSERT_EQ(DbfReadRecord(table_, 1), 0);
  EXPECT_EQ(DbfGetField(table_, 1), "\x86\x98");
}

TEST(DbfErrorTextTest, EveryCodeHasItsText) {
  const struct {
    int code;
    const char* text;
  } cases[] = {
      {kDbfNotFound, "Nie znaleziono pliku"}, {kDbfNotOpenForInput, "Nie otwarto pliku do wprowadzania"},
      {kDbfNotOpenForOutput, "Nie otwarto pliku do wyprowadzania"}, {kDbfNotOpen, "Nie otwarto pliku"},
      {kDbfSeekPastEnd, "Pr\xA2" "ba szukania rekordu poza znakiem ko\xA4" "ca pliku"},
      {kDbfWriteError, "B\x92\x86" "d zapisu na dysk"}, {kDbfDiskFull, "Brak miejsca na dysku"},
      {kDbfTooManyFiles, "Zbyt wiele plik\xA2w"}, {kDbfAccessLost, "Utracony dost\x91p do pliku"},
      {kDbfNotDbase, "Plik nie jest w formacie dBASE 2, ani 3, ani 3+"},
      {kDbfBadFieldType, "Niew\x92" "asciwy typ pola"},
      {kDbfBufferError, "B\x92\x86" "d odczytu/zapisu z/do bufora danych rekordu"},
      {999, "(B\x92\x86" "d nieskatalogowany) 999"},
  };
  for (const auto& c : cases) EXPECT_EQ(DbfErrorText(c.code), "B\x92\x86" "d pliku DBASE.@" + std::string(c.text));
  EXPECT_EQ(DbfStopText(kDbfNotDbase, true, false),
            DbfErrorText(kDbfNotDbase) +
                "@Jeśli plik pobrany został z zewnątrz, nie ponawiaj próby pobrania,@ale zawiadom dostarczyciela pliku."
                "@Program kończy działanie."_mz);
  EXPECT_EQ(DbfStopText(kDbfDiskFull, false, true), DbfErrorText(kDbfDiskFull) + "@Program musi zakończyć działanie."_mz);
}

}  // namespace
}  // namespace dbf_test
