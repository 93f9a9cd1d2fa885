// The POSNET wire format without a line.
#include <gtest/gtest.h>

#include <tuple>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "fiscal/posnet_wire.h"

namespace {

TEST(PosnetWire, CheckValueIsXorFromFFInCapitalHex) {
  EXPECT_EQ(PosnetCheckValue("1#e"), "88");
  EXPECT_EQ(PosnetCheckValue(""), "FF");
  EXPECT_EQ(PosnetCheckValue("\xF5"), "0A");  // digits above 9 are capitals
  EXPECT_EQ(PosnetCheckedFrame("1#e"), "\x1BP1#e88\x1B\\");
  EXPECT_EQ(PosnetPlainFrame("0#s"), "\x1BP0#s\x1B\\");
}

TEST(PosnetWire, MoneyFieldWritesGroszAsZloty) {
  const struct { int64_t grosz; const char* text; } rows[] = {
      {1234, "12.34/"}, {1205, "12.05/"}, {1200, "12/"}, {0, "0/"}, {1, "0.01/"},
      {10, "0.10/"},    {99, "0.99/"},    {100, "1/"},   {-1205, "-12.05/"},
      {123456789012, "1234567890.12/"}};
  for (const auto& r : rows) EXPECT_EQ(MoneyField(r.grosz), r.text) << r.grosz;
}

TEST(PosnetWire, CommandBodies) {
  EXPECT_EQ(PosnetReceiptLineBody(1, "Chleb", "2", "A", 105, 210), "1$lChleb\r2\rA/1.05/2.10/");
  EXPECT_EQ(PosnetReceiptLineBody(12, "Bulka", "1", "B", 200, 200), "12$lBulka\r1\rB/2/2/");
  EXPECT_EQ(PosnetReceiptLineDiscountBody(3, 0, "N", "1.5", "A", "rabat", 100, 150),
            "3;0$lN\r1.5\rA/rabat/1/");
  EXPECT_EQ(PosnetReceiptLineDiscountBody(3, 2, "N", "1.5", "A", "", 100, 150),
            "3;2$lN\r1.5\rA//1/1.50/");
  // A line block counts and sends only its non-empty texts.
  EXPECT_EQ(PosnetBeginReceiptBody(5, LineBlock("H", "I", "J")), "5;3$hH\rI\rJ\r");
  EXPECT_EQ(PosnetBeginReceiptBody(5, LineBlock("", "H", "")), "5;1$hH\r");
  EXPECT_EQ(PosnetEndReceiptBody("0", "K1", LineBlock("a", "", "c"), 0, 410),
            "1;0;2$eK1\ra\rc\r0/4.10/");
  EXPECT_EQ(PosnetEndReceiptDiscountBody(1, 0, 3, "K", LineBlock("a", "", ""), 500, 500, 50),
            "1;0;1;1;0;3$eK\ra\r5/5/");
  EXPECT_EQ(PosnetEndReceiptDiscountBody(1, 2, 3, "K", LineBlock("", "", ""), 500, 450, 50),
            "1;0;0;1;2;3$eK\r5/4.50/0.50/");
  EXPECT_EQ(PosnetPrintLineBody("abc"), "0$fabc\r\xFF");
  EXPECT_EQ(PosnetPrintLineBody("abc\r"), "0$fabc\r\xFF");
  EXPECT_EQ(PosnetPrintLineBody(""), "0$f\r\xFF");
}

TEST(PosnetWire, DisplayFrameAddsFormFeedAndLineEndsUnlessPresent) {
  EXPECT_EQ(PosnetDisplayFrame(1, "SZUFLADA"), "\x1BP1$d\x0CSZUFLADA\n\r\x1B\\");
  EXPECT_EQ(PosnetDisplayFrame(2, "\x0CX\n\r"), "\x1BP2$d\x0CX\n\r\x1B\\");
}

TEST(PosnetWire, NewFirmwareFootJoinsNumberAndPayment) {
  const struct { ShortText number, payment, c; } rows[] = {
      {"", "", "#x"},
      {"123", "  zapłata: przelew "_mz, "#123-ZAPŁATA: PRZELEW"_mz},
      {"1234567890", "zapłata: przelew bankowy"_mz, "#1234567890-ZAPŁATA: PRZELEW B"_mz},  // cut at 30
  };
  for (const auto& r : rows) {
    const auto foot = PosnetNewFirmwareFoot(r.number, "zachowaj", r.payment);
    EXPECT_EQ(foot.c, r.c);
    EXPECT_TRUE(foot.d.Empty());
    EXPECT_EQ(foot.e, "zachowaj");
  }
}

TEST(PosnetWire, PeriodDayNumberOrdersCenturies) {
  EXPECT_EQ(PosnetPeriodDayNumber(5, 1, 24), 105 * 1000 + 50 + 24);
  EXPECT_EQ(PosnetPeriodDayNumber(99, 12, 31), 99 * 1000 + 600 + 31);
  EXPECT_LT(PosnetPeriodDayNumber(99, 12, 31), PosnetPeriodDayNumber(0, 1, 1));
  EXPECT_LT(PosnetPeriodDayNumber(24, 1, 31), PosnetPeriodDayNumber(24, 2, 1));
  EXPECT_EQ(PosnetPeriodDayNumber(50, 1, 1), 50 * 1000 + 51);
}

TEST(PosnetWire, StatusRecordGivesTheErrorCode) {
  std::string record = "P1#X21;1;0;0;1;0;24/1/5/23.00/8.00/5.00/0.00/0.00/0.00/17/"
                       "1.00/2.00/3.00/4.00/5.00/6.00/7.00/99.50/SIM1A7";
  auto parsed = ParsePosnetStatusRecord(record);
  ASSERT_TRUE(parsed);
  EXPECT_EQ(std::tuple(parsed->ErrorCode(), parsed->AmountsInGrosz(), parsed->rateCount, parsed->receiptCount),
            std::tuple(21, true, 7, 17));
  EXPECT_EQ(std::tuple(parsed->rates[0], parsed->amounts[6], parsed->cash), std::tuple(23.00L, 7.00L, 99.50L));
  EXPECT_EQ(parsed->text, "SIM1A7");
  // Only the first nine integers are required; the rest is read as far as it goes.
  auto shortRecord = ParsePosnetStatusRecord("P1#X0;0;0;0;0;0;1;2;3");
  ASSERT_TRUE(shortRecord);
  EXPECT_EQ(shortRecord->ErrorCode(), 0);
  for (const char* bad : {"", "X1#X1;2;3;4;5;6;7;8;9", "P1#X1;2;3", "P1#Xa;2;3;4;5;6;7;8;9", "P1#"})
    EXPECT_FALSE(ParsePosnetStatusRecord(bad)) << bad;
}

TEST(PosnetWire, ClockReplyGivesFiveIntegers) {
  auto clock = ParsePosnetClock("P1#C24;1;5;10;30;0C3");
  ASSERT_TRUE(clock);
  EXPECT_EQ(clock->year, 24);
  EXPECT_EQ(clock->minute, 30);
  EXPECT_FALSE(ParsePosnetClock("P1#C24;1;5"));
  EXPECT_FALSE(ParsePosnetClock("P1#C24;x;5;1;1"));
}

TEST(PosnetWire, CleanNameKeepsLongNamesAndFillsShortOnes) {
  const struct { ShortText in, out; } rows[] = {
      {"Chleb razowy 500g", "Chleb razowy 500g"},     // 15 counted: unchanged
      {"Mleko, 2% (1l)", "Mleko  2  x1lx"},             // 8 counted: blanks from the end
      {"Ab  ", "Abxx"},                                 // too short to reach 10: stays short
      {"ŻÓŁW żółw"_mz, "ZOLWxzolw"},                    // letters made plain from the end
      {"Sól 1kg     "_mz, "S\xA2l 1kgxxxxx"},             // blanks enough: Polish letter stays
      {"", ""}};
  for (const auto& r : rows) EXPECT_EQ(PosnetCleanName(r.in), r.out) << r.in.Str();
  ShortText many = "ąąąąąąąąąąąą"_mz;  // never more letters made plain than needed
  ShortText cleaned = PosnetCleanName(many);
  EXPECT_EQ(cleaned.Copy(1, 2), "ąą"_mz);
  EXPECT_EQ(cleaned.Copy(3, 10), "aaaaaaaaaa");
}

TEST(PosnetWire, ErrorMessagesQuoteTheTableText) {
  EXPECT_EQ(PosnetErrorMessage(2), "Błąd drukarki fiskalnej nr 2:@`błąd bajtu kontrolnego\"."_mz);
  EXPECT_EQ(PosnetErrorMessage(10),
            "Błąd drukarki fiskalnej nr 10:@`zmiana czasu wykracza poza dopuszczalny zakres, (± 30 minut@w obrębie tej samej doby)\"."_mz);
  EXPECT_EQ(PosnetErrorMessage(33),
            "Błąd drukarki fiskalnej nr 33:@`błąd napisu »zmiana« (np. za długi lub zawierający błędne znaki)\"."_mz);
  EXPECT_EQ(PosnetErrorTableText(39), "błąd oznaczenia PTU"_mz);
  EXPECT_EQ(PosnetErrorTableText(-4), "czas zegara drukarki jest niepoprawny - drukowanie raportu dobowego@nie jest możliwe"_mz);
  for (int other : {-9, -7, -6, 0, 40, 255, 32767})
    EXPECT_EQ(PosnetErrorTableText(other), "błąd rozkazu wysłanego do drukarki"_mz) << other;
  for (int code = -8; code <= 39; ++code) EXPECT_LT(PosnetErrorMessage(code).Length(), 255) << code;
  // Polish letters travel as the system's own bytes: ł is Mazovia 0x92.
  EXPECT_EQ(PosnetErrorTableText(-5).At(1), 0x92);
}

TEST(PosnetWire, StatusByteNeedsBothMarkBits) {
  for (int b : {0x60, 0x66}) EXPECT_TRUE(IsPosnetStatusByte(b)) << b;
  for (int b : {0x40, 0x24, -1}) EXPECT_FALSE(IsPosnetStatusByte(b)) << b;
}

}  // namespace
