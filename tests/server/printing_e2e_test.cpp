// fisksrv prints on both printer families: receipts, reports and the drawer,
// each checked in what the printer simulators received; and the printers'
// refusals and the limits of a receipt job: the result line with its stamp,
// what reached the printer (the cancel above all), and the job file gone.
#include <gtest/gtest.h>

#include "printers.h"

namespace {

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
    const std::size_t before = Journal(c.row).size();
    EXPECT_EQ(Run(c.row, c.word, c.records), c.result);
    // POSNET answers no display command: the server may be done before the printer has read it.
    EXPECT_TRUE(WaitUntil([&] { return Journal(c.row).size() > before; }, 5000)) << c.result;
    const Lines journal = Journal(c.row);
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

// Each receipt below takes four commands: open, line 1, line 2 (refused), cancel.
struct StatusCase {
  const char* bytes;  // the status bytes the printer serves
  std::string text;   // in plain letters
};
const StatusCase kStatusCases[] = {
    {"0x08,0", "nie wydrukowano raportu za poprzedni dzien - nie mozna wystawic paragonu"},
    {"0x30,0x04", "blad CMOS drukarki - CMOS byl kasowany  - nie ustawiony jest czas"},
    {"0,0x02", "brak papieru w drukarce - swieci sie LED paper out"},
    {"0,0x80", "brak komunikacji z kontrolerem drukarki"},
    {"0,0", "blad nie sklasyfikowany"},
};

TEST_F(PrintersTest, ElzabRefusalInAReceiptIsCancelledAndExplained) {
  std::vector<std::string> args;
  for (int i = 0; i < 5; ++i) args.insert(args.end(), {"--fail", std::to_string(3 + 4 * i) + ":nak=" + kStatusCases[i].bytes});
  Start(args);
  int job = 0;
  for (const StatusCase& c : kStatusCases) {
    const std::string line = Run('e', "PARAGON", kTwoLines);
    EXPECT_TRUE(EndsInFailureStamp(line, "PARAGON@@Blad drukarki ELZAB.@(" + c.text + ")"));
    EXPECT_FALSE(JobExists('e'));
    const Lines trace = ElzabTrace();
    const int cancel = 4 + 4 * job++;
    EXPECT_TRUE(Has(trace, "CMD " + std::to_string(cancel - 1) + " LINE -> NAK")) << c.text;
    EXPECT_TRUE(Has(trace, "CMD " + std::to_string(cancel) + " CANCEL -> ACK")) << c.text;
  }
  const Lines trace = ElzabTrace();
  EXPECT_EQ(CountStarting(trace, "STATUS 1"), 5);
  EXPECT_EQ(CountStarting(trace, "STATUS 2"), 3);  // only after a first byte of 0
  const Lines journal = ElzabJournal();
  EXPECT_EQ(CountStarting(journal, "CANCELLED"), 5);
  EXPECT_EQ(CountStarting(journal, "CLOSE"), 0);
}

TEST_F(PrintersTest, ElzabReportRefusalsAndASilentPrinter) {
  Start({"--fail", "1:nak=0,0x04", "--fail", "2:nak=0x01,0", "--fail", "3:silent"});
  // The daily report's refusal stands in place of the job's name.
  EXPECT_TRUE(EndsInFailureStamp(Run('e', "RAPDOB"), "@Blad drukarki ELZAB.@(awaria drukarki)"));
  EXPECT_TRUE(EndsInFailureStamp(Run('e', "RAPOKR", {"01-01-2024", "31-01-2024", "FISK"}),
                                 "FISK 01-01-2024 - 31-01-2024 RAPORT OKRESOWY@Blad drukarki ELZAB.@(brak wolnego "
                                 "miejsca w bazie towarow i stawek w drukarce)"));
  // Only a NAK is a refusal: a printer that says nothing leaves the last byte in the
  // register, and the job passes.
  EXPECT_EQ(Run('e', "RAPDOB"), "RAPORT DOBOWY O.K.");
  EXPECT_EQ(ElzabJournal(), Lines{});
  EXPECT_TRUE(Has(ElzabTrace(), "CMD 3 DAILY REPORT -> silent"));
}

TEST_F(PrintersTest, ElzabLineThatGoesDeadTimesOut) {
  Start({"--fail", "3:unplug"});
  EXPECT_TRUE(EndsInFailureStamp(Run('e', "PARAGON", kTwoLines), "PARAGON@ Timeout nadawania."));
  EXPECT_TRUE(EndsInFailureStamp(Run('e', "RAPDOB"), "RAPORT DOBOWY@Timeout nadawania."));
  EXPECT_TRUE(EndsInFailureStamp(Run('e', "SZUFLA"), "SZUFLADA"));
  EXPECT_FALSE(JobExists('e'));
  // Line 2 never got its answer, and no cancel could follow it.
  EXPECT_EQ(ElzabJournal(), (Lines{"RECEIPT 1100", "LINE 1|ChlebA                      |1/0|szt |500|1|500"}));
  EXPECT_EQ(ElzabTrace().back(), "CMD 3 LINE -> unplugged");
}

TEST_F(PrintersTest, PosnetErrorCodesCancelAndExplain) {
  // Receipt: #x 1, #e 2, $h 3, $l 4, $l 5 refused, cancel 6. Daily: #e 7, #r 8
  // refused, cancel 9. Drawer: #e 10 refused, cancel 11.
  Start({}, {"--fail", "5:error=21", "--fail", "8:error=9", "--fail", "10:error=0"});
  EXPECT_TRUE(EndsInFailureStamp(Run('p', "PARAGON", kTwoLines),
                                 "PARAGON@Blad drukarki fiskalnej nr 21:@`sekwencja odebrana przez drukarke przy "
                                 "wylaczonym trybie transakcji\"."));
  EXPECT_TRUE(EndsInFailureStamp(Run('p', "RAPDOB"),
                                 "RAPORT DOBOWY@Blad drukarki fiskalnej nr 9:@`blad operacji I/O (np. z mechanizmem "
                                 "drukujacym)\"."));
  EXPECT_TRUE(EndsInFailureStamp(Run('p', "SZUFLA"),
                                 "SZUFLADA@Blad drukarki fiskalnej nr -7:@`blad rozkazu wyslanego do drukarki\"."));
  EXPECT_FALSE(JobExists('p'));
  const Lines journal = PosnetJournal();
  EXPECT_EQ(CountStarting(journal, "LINE "), 1);
  EXPECT_TRUE(Has(journal, "CANCELLED"));
  EXPECT_FALSE(Has(journal, "DAILY REPORT"));
  EXPECT_EQ(CountStarting(PosnetTrace(), "CANCEL"), 3);
}

TEST_F(PrintersTest, PosnetPrinterThatDoesNotAnswer) {
  Start({}, {"--fail", "4:silent"});
  EXPECT_TRUE(EndsInFailureStamp(Run('p', "PARAGON", kTwoLines),
                                 "PARAGON@Blad drukarki fiskalnej nr -2:@`brak odpowiedzi drukarki\".@Nalezy wyjsc z "
                                 "programu, wylaczyc i wlaczyc drukarke i wejsc@ponownie do programu."));
  EXPECT_FALSE(JobExists('p'));
  EXPECT_TRUE(Has(PosnetJournal(), "CANCELLED"));
  // The port was closed after the failure and opens again for the next job.
  EXPECT_EQ(Run('p', "RAPDOB"), "RAPORT DOBOWY O.K.");
  EXPECT_EQ(PosnetJournal().back(), "DAILY REPORT");
}

TEST_F(PrintersTest, FiftyLinesPassOnBothFamiliesAndAFiftyFirstEndsTheServer) {
  Start();
  EXPECT_EQ(Run('p', "PARAGON", ReceiptRecords(50, "F 7/2024")), "PARAGON O.K.");
  EXPECT_EQ(CountStarting(PosnetJournal(), "LINE "), 50);
  EXPECT_EQ(PosnetJournal().back(), "TOTAL 61.50/ PAID 61.50/");
  EXPECT_EQ(Run('e', "PARAGON", ReceiptRecords(50, "F 7/2024")), "PARAGON O.K.");
  const Lines journal = ElzabJournal();
  EXPECT_EQ(CountStarting(journal, "LINE "), 50);
  EXPECT_EQ(journal.back(), "CLOSE 6150");
  EXPECT_EQ(journal[50], "LINE 50|Towar 50 żółtyA             |1/0|szt |123|1|123");

  const std::size_t traced = ElzabTrace().size();
  Publish('e', "PARAGON", ReceiptRecords(51, "F 7/2024"));
  int status = -1;
  ASSERT_TRUE(server_->Wait(5000, status));
  EXPECT_NE(status, 0);
  EXPECT_NE(server_->Errors().find("Runtime error 201"), std::string::npos) << server_->Errors();
  EXPECT_EQ(ElzabTrace().size(), traced);  // nothing of it reached the printer
}

}  // namespace
