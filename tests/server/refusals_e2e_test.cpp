// Printer refusals on both families, and the limits of a receipt job: the result
// line with its stamp, what reached the printer (the cancel above all), and the
// job file gone.
#include <gtest/gtest.h>

#include "printers.h"

namespace {

// Each receipt below takes four commands: open, line 1, line 2 (refused), cancel.
struct StatusCase {
  const char* bytes;  // the status bytes the printer serves
  std::string text;   // in plain letters
  bool asksSecond;
};
const StatusCase kStatusCases[] = {
    {"0x08,0", "nie wydrukowano raportu za poprzedni dzien - nie mozna wystawic paragonu", false},
    {"0x30,0x04", "blad CMOS drukarki - CMOS byl kasowany  - nie ustawiony jest czas", false},
    {"0,0x02", "brak papieru w drukarce - swieci sie LED paper out", true},
    {"0,0x80", "brak komunikacji z kontrolerem drukarki", true},
    {"0,0", "blad nie sklasyfikowany", true},
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
