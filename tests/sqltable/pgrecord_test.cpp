// Record buffers: handles and their checks, blank values, typed puts and
// gets, blobs, the raw area and copies between buffers.
#include <cstring>
#include <string>

#include "base/dates.h"
#include "base/mazovia.h"
#include "base/expect_rows.h"
#include "sqltable/pgrecord.h"
#include "sqltest.h"

namespace {

using test_rows::ExpectRows;

// Field numbers of the table that most cases use.
enum : int { kA10 = 1, kDate, kShort, kLong, kY, kN, kMoney, kX, kBlob, kA1 };

class RecordTest : public OneTableTest {
 protected:
  void SetUp() override {
    OneTableTest::SetUp();
    ASSERT_EQ(CreateTable("dane\\rec", {{"a", "A10"}, {"d", "D"}, {"s", "S"}, {"l", "I"}, {"y", "Y"}, {"n", "N"},
                                        {"m", "$"}, {"x", "X"}, {"b", "B100"}, {"c", "A1"}}),
              0);
    OpenTable("dane\\rec");
  }
  const std::string& Raw(int fld) { return PGRecordAt(rec_)->fields[fld].value; }
};

TEST_F(RecordTest, FreshBufferHoldsTheBlankOfEachKindAndTheBlankTestFollowsTheKind) {
  const char* expected[] = {"", "", "0001-01-01", "0", "0", "0", "0", "0", "0", "", ""};
  for (int f = kA10; f <= kA1; ++f) EXPECT_EQ(Raw(f), expected[f]) << f;
  ASSERT_EQ(PGPutAlpha(rec_, kA10, "x"), 0);
  ASSERT_EQ(PGPutLong(rec_, kLong, 7), 0);
  ASSERT_EQ(PGRecBufEmpty(rec_), 0);
  EXPECT_EQ(Raw(kA10), "");
  EXPECT_EQ(Raw(kLong), "0");
  ASSERT_EQ(PGPutDate(rec_, kDate, EncodeDaySerial(2024, 2, 29)), 0);
  ASSERT_EQ(PGPutBlank(rec_, kDate), 0);
  EXPECT_EQ(Raw(kDate), "0001-01-01");
  // The blank test follows the kind.
  struct Case {
    int fld;
    const char* value;
    bool blank;
  } cases[] = {{kLong, "0", false},   {kLong, "", true},           {kLong, "null", true}, {kLong, "NULL", true},
               {kA10, "NULL", false}, {kA10, "", true},            {kA10, " ", false},    {kDate, "", true},
               {kDate, "0001-01-01", false}, {kBlob, "", true}};
  for (const Case& c : cases) {
    PGRecordAt(rec_)->fields[c.fld].value = c.value;
    bool blank = !c.blank;
    ASSERT_EQ(PGFldBlank(rec_, c.fld, blank), 0);
    EXPECT_EQ(blank, c.blank) << c.fld << " '" << c.value << "'";
  }
}

TEST_F(RecordTest, HandlesAndFieldNumbersAreChecked) {
  int16_t v = 0;
  EXPECT_EQ(PGGetShort(0, kShort, v), kPGBadRecordBuffer);
  EXPECT_EQ(PGGetShort(200, kShort, v), kPGBadRecordBuffer);
  EXPECT_EQ(PGGetShort(rec_ + 1, kShort, v), kPGBadRecordBuffer);
  EXPECT_EQ(PGGetShort(rec_, 0, v), kPGBadFieldHandle);
  EXPECT_EQ(PGPutShort(rec_, kA1 + 1, 1), kPGBadFieldHandle);
  EXPECT_EQ(PGRecBufOpen(99, v), kPGBadTableHandle);
  EXPECT_EQ(PGRecBufClose(rec_), 0);
  EXPECT_EQ(PGRecBufClose(rec_), kPGBadRecordBuffer);
  // 199 buffers at most; closing one frees its handle for the next.
  std::vector<int16_t> opened;
  int16_t h = 0;
  while (PGRecBufOpen(tbl_, h) == 0) opened.push_back(h);
  EXPECT_EQ(opened.size(), 199u);
  EXPECT_EQ(PGRecBufOpen(tbl_, h), kPGNoRecordBuffer);
  EXPECT_EQ(h, 0);
  ASSERT_EQ(PGRecBufClose(opened[41]), 0);
  EXPECT_EQ(PGRecBufOpen(tbl_, h), 0);
  EXPECT_EQ(h, opened[41]);
  // Closing the table closes its buffers.
  EXPECT_EQ(PGTblClose(tbl_), 0);
  EXPECT_EQ(PGRecordBufferCount(), 0);
  EXPECT_EQ(PGGetShort(h, kShort, v), kPGBadRecordBuffer);
}

TEST_F(RecordTest, AlphaIsCutTrimmedAndConverted) {
  ShortText out;
  ASSERT_EQ(PGPutAlpha(rec_, kA10, "123456789012345678901234567890"), 0);
  EXPECT_EQ(Raw(kA10), "1234567890");
  ASSERT_EQ(PGPutAlpha(rec_, kA10, "ABC   "), 0);
  EXPECT_EQ(Raw(kA10), "ABC   ");
  PGTrimAlpha = true;
  ASSERT_EQ(PGPutAlpha(rec_, kA10, "ABC   "), 0);
  EXPECT_EQ(Raw(kA10), "ABC");
  // Cut first, then trimmed: the blank at place 10 goes too.
  ASSERT_EQ(PGPutAlpha(rec_, kA10, "ABCDEFGHI XYZ"), 0);
  EXPECT_EQ(Raw(kA10), "ABCDEFGHI");
  PGTrimAlpha = false;
  ShortText polish = "Łódź"_mz;
  polish += '\xFF';
  ASSERT_EQ(PGPutAlpha(rec_, kA10, polish), 0);
  EXPECT_EQ(Raw(kA10), "\xA3\xF3" "d\xBC\x01");
  ASSERT_EQ(PGGetAlpha(rec_, kA10, out), 0);
  EXPECT_EQ(out, polish);
  ASSERT_EQ(PGPutAlpha(rec_, kA1, "xyz"), 0);
  EXPECT_EQ(Raw(kA1), "x");
}

TEST_F(RecordTest, NumbersAreWrittenByTypeAndReadLeniently) {
  ASSERT_EQ(PGPutShort(rec_, kShort, -32768), 0);
  ASSERT_EQ(PGPutLong(rec_, kLong, 2147483647), 0);
  ASSERT_EQ(PGPutDoub(rec_, kY, 9007199254740992.0), 0);
  ExpectRows<std::string>({{Raw(kShort), "-32768"}, {Raw(kLong), "2147483647"}, {Raw(kY), "9007199254740992"}});
  ASSERT_EQ(PGPutDoub(rec_, kN, 12.345), 0);
  EXPECT_NE(Raw(kN).find('E'), std::string::npos) << Raw(kN);
  double d = 0;
  ASSERT_EQ(PGGetDoub(rec_, kN, d), 0);
  EXPECT_EQ(d, 12.345);  // full precision survives the text
  ASSERT_EQ(PGPutExt(rec_, kX, 12.5L), 0);
  EXPECT_EQ(Raw(kX), "12.5000000");
  Real r = 0;
  ASSERT_EQ(PGGetExt(rec_, kX, r), 0);
  EXPECT_EQ(r, 12.5L);

  struct Case {
    const char* text;
    int16_t asShort;
    int32_t asLong;
    double asDoub;
  } cases[] = {{"12.5", 0, 0, 12.5},          {"", 0, 0, 0},         {"abc", 0, 0, 0},
               {"70000", 0, 70000, 70000},    {"-17", -17, -17, -17}, {"1e+20", 0, 0, 1e20},
               {"1.5E+0001", 0, 0, 15},       {"12x", 0, 0, 0},      {"NULL", 0, 0, 0},
               {"4294967296", 0, 0, 4294967296.0}};
  for (const Case& c : cases) {
    PGRecordAt(rec_)->fields[kN].value = c.text;
    int16_t s = 1;
    int32_t l = 1;
    double v = 1;
    EXPECT_EQ(PGGetShort(rec_, kN, s), 0);
    EXPECT_EQ(PGGetLong(rec_, kN, l), 0);
    EXPECT_EQ(PGGetDoub(rec_, kN, v), 0);
    EXPECT_EQ(s, c.asShort) << c.text;
    EXPECT_EQ(l, c.asLong) << c.text;
    EXPECT_EQ(v, c.asDoub) << c.text;
  }
}

TEST_F(RecordTest, DatesTravelAsDaySerials) {
  ASSERT_EQ(PGPutDate(rec_, kDate, EncodeDaySerial(2024, 2, 29)), 0);
  EXPECT_EQ(Raw(kDate), "2024-02-29");
  struct Case {
    const char* raw;
    int32_t days;
  } cases[] = {{"2024-02-29", EncodeDaySerial(2024, 2, 29)}, {"0001-01-01", kBlankDateSerial},
               {"", kBlankDateSerial},  // a NULL that another program wrote
               {"31.12/1999", 0},       // digits only count: 3112 1999 is no day
               {"1999/12/31", EncodeDaySerial(1999, 12, 31)}};
  for (const Case& c : cases) {
    PGRecordAt(rec_)->fields[kDate].value = c.raw;
    int32_t days = 1;
    ASSERT_EQ(PGGetDate(rec_, kDate, days), 0);
    EXPECT_EQ(days, c.days) << c.raw;
  }
}

TEST_F(RecordTest, BlobsAreHexWithinTheirLimits) {
  unsigned char all[256], back[kPGBlobMaxBytes];
  for (int i = 0; i < 256; ++i) all[i] = static_cast<unsigned char>(i);
  ASSERT_EQ(PGPutBlob(rec_, kBlob, all, 256), 0);
  EXPECT_EQ(Raw(kBlob).substr(0, 8), "00010203");
  EXPECT_EQ(Raw(kBlob).size(), 512u);
  int32_t length = 0;
  ASSERT_EQ(PGGetBlob(rec_, kBlob, back, length), 0);
  ASSERT_EQ(length, 256);
  EXPECT_EQ(std::memcmp(all, back, 256), 0);
  // More than 8192 bytes are cut to 8192.
  std::vector<unsigned char> big(9000, 0xAB);
  ASSERT_EQ(PGPutBlob(rec_, kBlob, big.data(), 9000), 0);
  EXPECT_EQ(Raw(kBlob).size(), 16384u);
  ASSERT_EQ(PGGetBlob(rec_, kBlob, back, length), 0);
  EXPECT_EQ(length, 8192);
  // A bad pair stops the read with 56; the bytes before it stay.
  PGRecordAt(rec_)->fields[kBlob].value = "41ab4Z43";
  EXPECT_EQ(PGGetBlob(rec_, kBlob, back, length), kPGBadBlob);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(back[0], 0x41);
  EXPECT_EQ(back[1], 0xAB);
  PGRecordAt(rec_)->fields[kBlob].value = "414";  // an odd last digit is not read
  ASSERT_EQ(PGGetBlob(rec_, kBlob, back, length), 0);
  EXPECT_EQ(length, 1);

  ShortText s;
  ASSERT_EQ(PGPutBlobStr(rec_, kBlob, "A'\\\xFF"), 0);
  EXPECT_EQ(Raw(kBlob), "41275CFF");
  ASSERT_EQ(PGGetBlobStr(rec_, kBlob, s), 0);
  EXPECT_EQ(s, "A'\\\xFF");
  PGRecordAt(rec_)->fields[kBlob].value = std::string(2000, '7');
  ASSERT_EQ(PGGetBlobStr(rec_, kBlob, s), 0);
  EXPECT_EQ(s.Length(), 255);
  EXPECT_EQ(s.At(255), 0x77);
}

TEST_F(RecordTest, CopiesNeedTheSameLayout) {
  int16_t t10 = 0, t11 = 0, r10 = 0, r11 = 0, r10b = 0;
  ASSERT_NO_FATAL_FAILURE(CreateAndOpen("dane\\a10", {{"a", "A10"}}, t10, r10));
  ASSERT_NO_FATAL_FAILURE(CreateAndOpen("dane\\a11", {{"a", "A11"}}, t11, r11));
  ASSERT_EQ(PGRecBufOpen(t10, r10b), 0);
  ASSERT_EQ(PGPutAlpha(r10, 1, "abc"), 0);
  EXPECT_EQ(PGRecBufCopy(r10, r11), kPGLayoutDiffers);
  EXPECT_EQ(PGRecBufCopy(r10, rec_), kPGLayoutDiffers);
  ASSERT_EQ(PGRecBufCopy(r10, r10b), 0);
  ShortText out;
  ASSERT_EQ(PGGetAlpha(r10b, 1, out), 0);
  EXPECT_EQ(out, "abc");
  EXPECT_EQ(PGRecGet(t11, r10), kPGLayoutDiffers);

  int32_t size = 0;
  int16_t tl = 0, rl = 0;
  ASSERT_NO_FATAL_FAILURE(CreateAndOpen("dane\\len", {{"a", "A10"}, {"d", "D"}}, tl, rl));
  ASSERT_EQ(PGRecLen(tl, size), 0);
  EXPECT_EQ(size, 22);
}

TEST_F(RecordTest, CurrentRecordIsCopiedUnconverted) {
  PGTable* t = PGTableAt(tbl_);
  t->curValues[kA10] = "\xA3\xF3" "d\xBC";
  t->curValues[kLong] = "42";
  ASSERT_EQ(PGRecGet(tbl_, rec_), 0);
  EXPECT_EQ(Raw(kA10), "\xA3\xF3" "d\xBC");
  int32_t l = 0;
  ASSERT_EQ(PGGetLong(rec_, kLong, l), 0);
  EXPECT_EQ(l, 42);
  EXPECT_EQ(PXRecGetD(tbl_, rec_), kPGEmptyTable);
}

TEST_F(RecordTest, RawAreaKeepsTheLayout) {
  ASSERT_EQ(PGPutAlpha(rec_, kA10, "abc"), 0);
  ASSERT_EQ(PGPutLong(rec_, kLong, 123), 0);
  ASSERT_EQ(PGPutBlobStr(rec_, kBlob, "Z"), 0);
  PGRawArea raw;
  ASSERT_EQ(PGRawGet(rec_, raw), 0);
  ASSERT_EQ(raw.size(), static_cast<std::size_t>(kPGRawBlobStart + kPGRawBlobSlot));
  EXPECT_STREQ(raw.data(), "abc");
  EXPECT_STREQ(raw.data() + (kLong - 1) * kPGRawSlot, "123");
  EXPECT_STREQ(raw.data() + (kA1 - 1) * kPGRawSlot, "");
  EXPECT_STREQ(raw.data() + kPGRawBlobStart, "5A");
  int16_t other = 0;
  ASSERT_EQ(PGRecBufOpen(tbl_, other), 0);
  // Each value is taken up to its field's capacity.
  std::memset(raw.data() + (kShort - 1) * kPGRawSlot, '9', kPGRawSlot);
  ASSERT_EQ(PGRawPut(other, raw), 0);
  EXPECT_EQ(PGRecordAt(other)->fields[kA10].value, "abc");
  EXPECT_EQ(PGRecordAt(other)->fields[kShort].value, "999999");
  EXPECT_EQ(PGRecordAt(other)->fields[kBlob].value, "5A");
  raw.resize(100);
  EXPECT_EQ(PGRawPut(other, raw), kPGArgRange);
}

TEST(RecordLiteral, NoValueChangesTheStatement) {
  struct Case {
    PGKind kind;
    const char* value;
    const char* literal;
  } cases[] = {{PGKind::Number, "12", "12"},
               {PGKind::Number, "-1.5e+20", "-1.5e+20"}, {PGKind::Number, "", "NULL"},
               {PGKind::Number, "1--", "'1--'"}, {PGKind::Number, "1;DROP TABLE x", "'1;DROP TABLE x'"},
               {PGKind::Text, "", "''"}, {PGKind::Text, "a'b\\c%_", "'a\\'b\\\\c\\%\\_'"},
               {PGKind::Date, "2024-01-02", "'2024-01-02'"},
               {PGKind::Blob, "41FF", "'41FF'"}};
  for (const Case& c : cases) EXPECT_EQ(PGValueLiteral(c.kind, c.value), c.literal) << c.value;
}

}  // namespace
