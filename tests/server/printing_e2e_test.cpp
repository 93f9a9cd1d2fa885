// fisksrv prints on both printer families: receipts, reports and the drawer,
// each checked in what the printer simulators received.
#include <gtest/gtest.h>

#include "printers.h"

namespace {

using Lines = std::vector<std::string>;

// Count, total in grosz, cashier code and name, payment form, document number,
// and the lines. The writer left out a line of quantity 0, so 4 lines remain.
// ELZAB values: 525, 1598, 53 and 0.333 × 2000 = 666; POSNET takes 0.3333 × 2000 =
// 667, and the total is POSNET's sum, 2843.
const Lines kReceipt = {
    "4", "2843", "01J", "Jan Kowalski", " gotówką", "P 12/2024",
    "\"Chleb żytni\",1.5,\"A\",3.5,Szt",
    "\"Masło ekstra\",2,\"B\",7.99,SZTUKA",
    "\"Cukier\",0.125,\"C\",4.2,ŁUT",
    "\"Śliwki węgierki\",0.3333,\"Z\",20,kg",
};

TEST_F(PrintersTest, ReceiptReachesBothFamiliesWithExactGrosz) {
  Start();
  EXPECT_EQ(Run('e', "PARAGON", kReceipt), "PARAGON O.K.");
  EXPECT_EQ(ElzabJournal(), (Lines{
                                "RECEIPT 2843",
                                "LINE 1|Chleb żytniA                |15/1|szt |350|1|525",
                                "LINE 2|Masło ekstraB               |2/0|sztu|799|2|1598",
                                "LINE 3|CukierC                     |125/3|łut |420|3|53",
                                "LINE 4|Śliwki węgierkiZ            |333/3|kg  |2000|5|666",
                                "END ITEMS",
                                "TEXT 6|P 12/2024",
                                "TEXT 2| gotówką ",
                                "TEXT 5| Jan Kowalski.",
                                "CLOSE 2842",
                            }));

  EXPECT_EQ(Run('p', "PARAGON", kReceipt), "PARAGON O.K.");
  const std::string pad40(40, ' ');
  EXPECT_EQ(PosnetJournal(), (Lines{
                                 "DRAWER SZUFLADA",  // a drawer on the printer opens with each receipt
                                 "RECEIPT 4",
                                 "HEAD " + pad40,
                                 Maz("LINE 1|Chleb żytni") + std::string(29, ' ') + "|1.5|A|3.50/5.25/",
                                 Maz("LINE 2|Masło ekstra") + std::string(28, ' ') + "|2|B|7.99/15.98/",
                                 "LINE 3|Cukier" + std::string(34, ' ') + "|0.125|C|4.20/0.53/",
                                 Maz("LINE 4|Śliwki węgierki") + std::string(25, ' ') + "|0.3333|Z|20/6.67/",
                                 "CASHIER 01J",
                                 "FOOT #P 12/2024",
                                 "FOOT ** zachowaj paragon do ew. reklamacji **",
                                 "TOTAL 28.43/ PAID 28.43/",
                             }));
}

TEST_F(PrintersTest, NarrowOldFirmwareReceiptCutsNamesAndPrintsOtherPayments) {
  Start();
  // " Gotówką" is not cash: the case counts. No drawer on this row.
  const Lines job = {"2", "1100", "07A", "Anna", " Gotówką", "",
                     "\"Kasza gryczana prażona 1kg\",1,\"A\",5,szt", "\"Mąka\",2,\"B\",3,kg"};
  EXPECT_EQ(Run('q', "PARAGON", job), "PARAGON O.K.");
  EXPECT_EQ(PosnetJournal(), (Lines{
                                 "RECEIPT 2",
                                 "HEAD     PARAGON_FISKALNY    ",
                                 Maz("LINE 1|Kasza gryczana prażona 1|1|A|5/5/"),
                                 Maz("LINE 2|Mąka") + std::string(20, ' ') + "|2|B|3/6/",
                                 "CASHIER 07A",
                                 "FOOT zachowaj do ew.reklamacji",
                                 Maz("FOOT zapłata:  Gotówką"),
                                 "TOTAL 11/ PAID 0/",
                             }));
  // ELZAB without a document number: only free texts 2 and 5.
  EXPECT_EQ(Run('e', "PARAGON", job), "PARAGON O.K.");
  const Lines elzab = ElzabJournal();
  ASSERT_EQ(elzab.size(), 7u);
  EXPECT_EQ(elzab[4], "TEXT 2| Gotówką ");
  EXPECT_EQ(elzab[5], "TEXT 5| Anna.");
}

TEST_F(PrintersTest, ReportsAndDrawerOnBothFamilies) {
  Start();
  struct Case {
    char row;
    std::string word;
    Lines records;
    std::string result;
    std::string printed;  // the journal line, empty when nothing may reach the printer
  };
  const Case cases[] = {
      {'e', "RAPDOB", {}, "RAPORT DOBOWY O.K.", "DAILY REPORT"},
      {'p', "RAPDOB", {}, "RAPORT DOBOWY O.K.", "DAILY REPORT"},
      // ELZAB writes its own line before the result; the year is the last two digits.
      {'e', "RAPOKR", {"01-01-2024", "31-01-2024", "FISK"}, "FISK 01-01-2024 - 31-01-2024 RAPORT OKRESOWY O.K.",
       "PERIOD REPORT FISK 24-01-01 24-01-31"},
      {'e', "RAPOKR", {"05-12-2023", "04-01-2024", "NFISK"}, "NFISK 05-12-2023 - 04-01-2024 RAPORT OKRESOWY O.K.",
       "PERIOD REPORT NFISK 23-12-05 24-01-04"},
      // POSNET reads the century digits as the year, and the flag does not matter.
      {'p', "RAPOKR", {"01-01-2024", "31-01-2024", "FISK"}, "RAPORT OKRESOWY FISK 01-01-2024 - 31-01-2024  O.K.",
       "PERIOD REPORT 20-01-01 20-01-31"},
      {'p', "RAPOKR", {"01-02-2024", "29-02-2024", "NFISK"}, "RAPORT OKRESOWY NFISK 01-02-2024 - 29-02-2024  O.K.",
       "PERIOD REPORT 20-02-01 20-02-29"},
      {'e', "SZUFLA", {}, "SZUFLADA O.K.", "DRAWER"},
      {'p', "SZUFLA", {}, "SZUFLADA O.K.", "DRAWER SZUFLADA"},
  };
  for (const Case& c : cases) {
    const bool elzab = c.row == 'e';
    const std::size_t before = elzab ? ElzabJournal().size() : PosnetJournal().size();
    EXPECT_EQ(Run(c.row, c.word, c.records), c.result);
    const Lines journal = elzab ? ElzabJournal() : PosnetJournal();
    ASSERT_EQ(journal.size(), before + 1) << c.result;
    EXPECT_EQ(journal.back(), c.printed);
  }
}

TEST_F(PrintersTest, ElzabSimulatorIsReachedThroughAPseudoTerminalToo) {
  Start({}, {}, true);
  EXPECT_EQ(Run('e', "RAPDOB"), "RAPORT DOBOWY O.K.");
  EXPECT_EQ(Run('e', "SZUFLA"), "SZUFLADA O.K.");
  EXPECT_EQ(ElzabJournal(), (Lines{"DAILY REPORT", "DRAWER"}));
}

TEST_F(PrintersTest, JobsThatMustNotReachThePrinterFailAndAreDeleted) {
  Start();
  struct Case {
    char row;
    std::string word;
    Lines records;
    std::string text;  // the result text before the failure stamp
  };
  const Case cases[] = {
      // The count says 3, two lines follow: nothing printed.
      {'e', "PARAGON", {"3", "1000", "01J", "Jan", " gotówką", "", "\"A\",1,\"A\",5,szt", "\"B\",1,\"A\",5,szt"}, "PARAGON"},
      {'p', "PARAGON", {"3", "1000", "01J", "Jan", " gotówką", "", "\"A\",1,\"A\",5,szt", "\"B\",1,\"A\",5,szt"}, "PARAGON"},
      {'q', "PARAGON", {"1", "500"}, "PARAGON"},  // records 4 to 7 missing
      // Drawer rows without the drawer flag.
      {'f', "SZUFLA", {}, "SZUFLADA"},
      {'q', "SZUFLA", {}, "SZUFLADA"},
      // ELZAB port 5 does not exist. The controller is programmed once per process, at
      // the start's check of port 1 here, so the purge is what times out.
      {'g', "PARAGON", {"1", "500", "01J", "Jan", " gotówką", "", "\"A\",1,\"A\",5,szt"},
       "PARAGON Przeterminowanie przy czyszczeniu portu."},
      {'g', "RAPDOB", {}, "RAPORT DOBOWY@Timeout nadawania."},
      // A non-digit in a date.
      {'e', "RAPOKR", {"01-0x-2024", "31-01-2024", "FISK"}, "FISK 01-0x-2024 - 31-01-2024 RAPORT OKRESOWY"},
      {'p', "RAPOKR", {"01-01-2024", "31-01-2o24", "FISK"}, "RAPORT OKRESOWY FISK 01-01-2024 - 31-01-2o24 "},
      // POSNET refuses a period of a single day by itself, and so, with the century
      // read as the year, a period that crosses the new year.
      {'p', "RAPOKR", {"05-01-2024", "05-01-2024", "FISK"},
       "RAPORT OKRESOWY FISK 05-01-2024 - 05-01-2024 @Blad drukarki fiskalnej nr -6:@`blad rozkazu wyslanego do "
       "drukarki\"."},
      {'p', "RAPOKR", {"05-12-2023", "04-01-2024", "NFISK"},
       "RAPORT OKRESOWY NFISK 05-12-2023 - 04-01-2024 @Blad drukarki fiskalnej nr -6:@`blad rozkazu wyslanego do "
       "drukarki\"."},
  };
  for (const Case& c : cases) {
    const std::string line = Run(c.row, c.word, c.records);
    EXPECT_TRUE(EndsInFailureStamp(line, c.text));
    EXPECT_FALSE(JobExists(c.row));
  }
  // The start's cancel, refused with no receipt open, is all the ELZAB printer got.
  EXPECT_EQ(ElzabTrace(), Lines{"CANCEL -> NAK (no receipt)"});
  for (const std::string& line : PosnetJournal()) EXPECT_EQ(line.find("RECEIPT"), std::string::npos) << line;
  for (const std::string& line : PosnetJournal()) EXPECT_EQ(line.find("DRAWER"), std::string::npos) << line;
}

}  // namespace
