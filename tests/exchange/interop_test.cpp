// Files passed between this layer and programs that no one here wrote:
// Debian's python3-dbfread and shapelib's dbfdump read what we write, and we
// read what shapelib's dbfcreate and dbfadd write. The test script installs
// both packages; a missing one fails the test.
#include <unistd.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "dbf_fixture.h"

namespace dbf_test {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string TrimRight(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

// One record as written, and how each reader must show it. The name is
// given in Mazovia, in Windows 1250 and in UTF-8, from the letter tables.
struct Row {
  const char* nameUtf8;
  const char* nameCp1250;
  Real price;
  const char* priceText;  // as dbfread and dbfdump -r show it
  int count;
  const char* date;   // DD-MM-YYYY
  const char* isoDate;
  bool flag;
  bool deleted;
};

const Row kRows[] = {
    {"Zażółć gęślą jaźń", "Za\xBF\xF3\xB3\xE6 g\xEA\x9C\x6C\xB9 ja\x9F\xF1", 12.5L, "12.5", 7, "31-01-2024",
     "2024-01-31", true, false},
    {"Ołówek", "O\xB3\xF3wek", -3.25L, "-3.25", -40, "29-02-2000", "2000-02-29", false, false},
    {"usunięty", "usuni\xEAty", 1, "1.0", 1, "01-01-1999", "1999-01-01", true, true},
    {"ŹDŹBŁO", "\x8F" "D\x8F" "B\xA3O", 99999.99L, "99999.99", 0, "05-06-1997", "1997-06-05", false, false},
};

const DbfFieldSpec kSpecs[] = {
    {"NAZWA", 'C', 20, 0}, {"CENA", 'N', 10, 2}, {"ILOSC", 'N', 6, 0}, {"DATA", 'D', 8, 0}, {"JEST", 'L', 1, 0}};

class DbfInteropTest : public DbfTest {
 protected:
  void SetUp() override {
    DbfTest::SetUp();
    for (const char* tool : {"/usr/bin/dbfdump", "/usr/bin/dbfcreate", "/usr/bin/dbfadd"})
      ASSERT_EQ(::access(tool, X_OK), 0) << tool << " is missing: install the Debian package shapelib "
                                         << "(scripts/need-packages.sh does)";
    bool ok = false;
    RunCommand("/usr/bin/python3 -c 'import dbfread' 2>&1", ok);
    ASSERT_TRUE(ok) << "python3 module dbfread is missing: install the Debian package python3-dbfread "
                    << "(scripts/need-packages.sh does)";
  }

  void WriteRows() {
    ASSERT_EQ(DbfCreate(table_, "ours.dbf", kSpecs, DbfCodePage::kCp1250), 0);
    for (const Row& r : kRows) {
      DbfBlankRecord(table_);
      ASSERT_EQ(DbfPutField(table_, 1, Utf8ToMaz(ShortText(r.nameUtf8))), 0);
      ASSERT_EQ(DbfPutNumber(table_, 2, r.price), 0);
      ASSERT_EQ(DbfPutNumber(table_, 3, r.count), 0);
      ASSERT_EQ(DbfPutDate(table_, 4, r.date), 0);
      ASSERT_EQ(DbfPutField(table_, 5, r.flag ? "T" : "F"), 0);
      DbfMarkDeleted(table_, r.deleted);
      ASSERT_EQ(DbfAppendRecord(table_), 0);
    }
    ASSERT_EQ(DbfClose(table_), 0);
  }
};

TEST_F(DbfInteropTest, DbfreadAndDbfdumpReadWhatWeWrite) {
  WriteRows();
  bool ok = false;
  const std::string out = RunCommand(
      "/usr/bin/python3 -c 'import dbfread\n"
      "t = dbfread.DBF(\"ours.dbf\")\n"
      "print(t.encoding)\n"
      "for r in t: print(\"|\".join(str(v) for v in r.values()))\n"
      "for r in t.deleted: print(\"deleted\", r[\"NAZWA\"])' 2>&1",
      ok);
  ASSERT_TRUE(ok) << out;
  std::vector<std::string> expected = {"cp1250"};
  for (const Row& r : kRows)
    if (!r.deleted)
      expected.push_back(std::string(r.nameUtf8) + "|" + r.priceText + "|" + std::to_string(r.count) + "|" +
                         r.isoDate + "|" + (r.flag ? "True" : "False"));
  for (const Row& r : kRows)
    if (r.deleted) expected.push_back(std::string("deleted ") + r.nameUtf8);
  EXPECT_EQ(Lines(out), expected);

  const std::string dump = RunCommand("/usr/bin/dbfdump -m -r ours.dbf", ok);
  ASSERT_TRUE(ok) << dump;
  std::vector<std::string> got;
  for (const std::string& line : Lines(dump))
    if (!line.empty()) got.push_back(TrimRight(line));
  expected.clear();
  for (size_t i = 0; i < std::size(kRows); ++i) {
    const Row& r = kRows[i];
    char price[32];
    std::snprintf(price, sizeof price, "%.2f", static_cast<double>(r.price));
    const std::string d(r.isoDate);
    expected.push_back("Record: " + std::to_string(i));
    expected.push_back(std::string("NAZWA: ") + r.nameCp1250);
    expected.push_back(std::string("CENA: ") + price);
    expected.push_back("ILOSC: " + std::to_string(r.count));
    expected.push_back("DATA: " + d.substr(0, 4) + d.substr(5, 2) + d.substr(8, 2));
    expected.push_back(std::string("JEST: ") + (r.flag ? "T" : "F"));
    if (r.deleted) expected.push_back("(DELETED)");
  }
  EXPECT_EQ(got, expected);
}

TEST_F(DbfInteropTest, WeReadWhatShapelibWrites) {
  bool ok = false;
  std::string out = RunCommand("/usr/bin/dbfcreate theirs -s NAZWA 20 -n CENA 10 2 -n ILOSC 6 0 2>&1", ok);
  ASSERT_TRUE(ok) << out;
  for (const Row& r : kRows) {
    out = RunCommand(std::string("/usr/bin/dbfadd theirs.dbf '") + r.nameCp1250 + "' " + std::to_string(double(r.price)) +
                  " " + std::to_string(r.count) + " 2>&1",
              ok);
    ASSERT_TRUE(ok) << out;
  }
  ASSERT_EQ(DbfOpen(table_, "theirs.dbf"), 0);
  DbfSetCodePage(table_, DbfCodePage::kCp1250);
  ASSERT_EQ(table_.recordCount, int64_t(std::size(kRows)));
  EXPECT_EQ(table_.Field(2).decimals, 2);
  for (size_t i = 0; i < std::size(kRows); ++i) {
    const Row& r = kRows[i];
    ASSERT_EQ(DbfReadRecord(table_, int64_t(i) + 1), 0);
    char price[32];
    std::snprintf(price, sizeof price, "%10.2f", static_cast<double>(r.price));
    EXPECT_EQ(DbfGetField(table_, 1), Utf8ToMaz(ShortText(r.nameUtf8))) << i;
    EXPECT_EQ(DbfGetField(table_, 2), price) << i;
    EXPECT_EQ(DbfGetField(table_, 3), ShortText(std::string(6 - std::to_string(r.count).size(), ' ') +
                                                std::to_string(r.count)))
        << i;
    EXPECT_FALSE(DbfIsDeleted(table_));
  }
}

}  // namespace
}  // namespace dbf_test
