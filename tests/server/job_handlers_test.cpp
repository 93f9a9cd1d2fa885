// The parts of the job handlers that need no printer: the ELZAB receipt's
// command list, the POSNET receipt's texts, and the dates of the report jobs.
#include <gtest/gtest.h>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "fiscal/elzab.h"
#include "server/elzab_jobs.h"
#include "server/job_records.h"
#include "server/posnet_jobs.h"

namespace {

TEST(ElzabReceiptCommands, OrderTextsAndTheDoubleConversionOfTheCashier) {
  ReceiptJob r;
  r.lineCount = r.lines = 1;
  r.total = 1234.5L;
  r.cashierCode = "01J";
  r.cashierName = Utf8ToMaz(ShortText("Zając"));
  r.paymentForm = " gotówką"_mz;
  r.documentNumber = "F 7/2024";
  r.line[0] = Utf8ToMaz(ShortText("\"Żurek śląski w butelce 0,5 litra\",3,\"AB\",2.5,Słoik"));
  const std::vector<std::string> commands = ElzabReceiptCommands(r);
  ASSERT_EQ(commands.size(), 7u);
  EXPECT_EQ(commands[0], ElzabOpenReceiptCommand(1235));
  // The name in CP852, cut to 28 less the two characters of the VAT field, which follows.
  EXPECT_EQ(commands[1].substr(3, 28), MazToLatin2(Utf8ToMaz(ShortText("Żurek śląski w butelce 0,5 "))).Str().substr(0, 26) + "AB");
  EXPECT_EQ(commands[1].substr(37, 4), MazToLatin2(Utf8ToMaz(ShortText("słoi"))).Str());
  EXPECT_EQ(commands[1][46], 1);  // the tax code of "AB" is that of A
  EXPECT_EQ(commands[2], ElzabEndItemsCommand());
  EXPECT_EQ(commands[3], "\x1B\x09" "6F 7/2024\n");
  EXPECT_EQ(commands[4], "\x1B\x09" "2" + MazToLatin2(" gotówką"_mz).Str() + " \n");
  // "ą" is 0xA5 in CP852, and 0xA5 read once more as Mazovia ("Ń") becomes 0xE3.
  EXPECT_EQ(commands[5], "\x1B\x09" "5 Zaj\xE3" "c.\n");
  EXPECT_EQ(commands[6], ElzabCloseReceiptCommand());
}

// The widths and footers of both rows are checked in the printed receipts.
TEST(PosnetReceiptTexts, CentringAndCash) {
  EXPECT_EQ(CentredLine("ABCD", 10), "   ABCD   ");
  EXPECT_EQ(CentredLine("ABC", 10), "   ABC    ");
  EXPECT_EQ(CentredLine("", 4), "    ");
  EXPECT_EQ(CentredLine("0123456789AB", 10), "0123456789");
  EXPECT_TRUE(IsCashPayment(" gotówką"_mz));
  for (const char* other : {" Gotówką", "gotówką", " gotówką ", " GOTÓWKĄ", " przelew"})
    EXPECT_FALSE(IsCashPayment(Utf8ToMaz(ShortText(other)))) << other;
}

TEST(ReportDates, TwoDigitFieldsAndTheFamiliesYears) {
  int ymd[3];
  ASSERT_TRUE(ParseDateFields("05-11-2026", 9, ymd));  // ELZAB: the last two digits
  EXPECT_EQ((std::vector<int>{ymd[0], ymd[1], ymd[2]}), (std::vector<int>{26, 11, 5}));
  ASSERT_TRUE(ParseDateFields("05-11-2026", 7, ymd));  // POSNET: the century digits
  EXPECT_EQ(ymd[0], 20);
  for (const char* bad : {"5-11-2026", "05-1x-2026", "05-11-20 6", "", "05-11-26"})
    EXPECT_FALSE(ParseDateFields(bad, 9, ymd)) << bad;
  int v = -1;
  EXPECT_FALSE(TwoDigitNumber("+1", 1, v));
  EXPECT_FALSE(TwoDigitNumber(" 1", 1, v));
  EXPECT_TRUE(TwoDigitNumber("x09", 2, v));
  EXPECT_EQ(v, 9);
}

}  // namespace
