// The ELZAB printer simulator's own logic, and the paced transmitter of the
// register model it sits behind.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <tuple>

#include "elzab_sim_core.h"
#include "fiscal/elzab.h"
#include "fiscal/uart_model.h"

namespace {

using Lines = std::vector<std::string>;

TEST(ElzabFaultRule, ParsesEachKindAndRefusesNonsense) {
  const struct { const char* text; ElzabFaultRule rule; } rows[] = {
      {"3:nak=0x08,16", {3, false, ElzabFaultKind::kNak, 0x08, 16}},
      {"2+:silent", {2, true, ElzabFaultKind::kSilent, 0, 0}},
      {"4:unplug", {4, false, ElzabFaultKind::kUnplug, 0, 0}}};
  for (const auto& [text, want] : rows) {
    auto got = ParseElzabFaultRule(text);
    ASSERT_TRUE(got) << text;
    EXPECT_EQ(std::tuple(got->command, got->onwards, got->kind, got->first, got->second),
              std::tuple(want.command, want.onwards, want.kind, want.first, want.second)) << text;
  }
  for (const char* bad : {"", "3", ":nak=1,2", "0:silent", "3:nak=1", "3:nak=256,0", "3:nak=x,0", "3:loud"})
    EXPECT_FALSE(ParseElzabFaultRule(bad)) << bad;
}

TEST(ElzabJournalText, PolishLettersOfCp852AndEscapesForTheRest) {
  EXPECT_EQ(Cp852ToJournal("\xA5\x86\xA9\x88\xE4\xA2\x98\xAB\xBE"), "ąćęłńóśźż");
  EXPECT_EQ(Cp852ToJournal("\xA4\x8F\xA8\x9D\xE3\xE0\x97\x8D\xBD"), "ĄĆĘŁŃÓŚŹŻ");
  EXPECT_EQ(Cp852ToJournal(std::string("a\x00\n\xFF", 4)), "a\\x00\\x0A\\xFF");
}

std::string Feed(ElzabPrinterSim& sim, const std::string& bytes) {
  std::string out;
  for (char c : bytes) sim.Receive(static_cast<uint8_t>(c), out);
  return out;
}

TEST(ElzabPrinterSim, ReceiptLinesAreCheckedAndRefusalsServeTheirStatus) {
  ElzabPrinterSim sim({{3, false, ElzabFaultKind::kNak, 0x02, 0x40}});
  EXPECT_EQ(Feed(sim, ElzabOpenReceiptCommand(525)), "\x06");
  // 1.5 x 3.50 is 5.25, not 5.24: the printer works it out itself.
  ElzabSaleLine line{.name = "Chleb", .quantity = 15, .decimals = 1, .unit = "szt", .priceGrosz = 350, .valueGrosz = 524};
  EXPECT_EQ(Feed(sim, ElzabSaleLineCommand(line)), "\x15");
  EXPECT_EQ(Feed(sim, "\x1B\x94\x1B\x95"), std::string("\0\0", 2));
  line.valueGrosz = 525;
  EXPECT_EQ(Feed(sim, ElzabSaleLineCommand(line)), "\x15");  // the third command: refused by rule
  EXPECT_EQ(Feed(sim, "\x1B\x94\x1B\x95"), "\x02\x40");
  EXPECT_EQ(Feed(sim, ElzabSaleLineCommand(line)), "\x06");
  EXPECT_EQ(Feed(sim, "\x1B\x94"), std::string("\0", 1));  // an accepted command clears the status
  EXPECT_EQ(Feed(sim, ElzabCancelCommand()), "\x06");
  EXPECT_FALSE(sim.InReceipt());
  EXPECT_EQ(Feed(sim, ElzabCloseReceiptCommand()), "\x15");  // no receipt to close
  EXPECT_EQ(sim.TakeJournal(), (Lines{"RECEIPT 525", "LINE 1|Chleb" + std::string(23, ' ') + "|15/1|szt |350|1|525",
                                      "CANCELLED"}));
  EXPECT_EQ(sim.CommandCount(), 6);
}

TEST(ElzabPrinterSim, SilenceUnplugAndStrayBytes) {
  ElzabPrinterSim sim({{1, false, ElzabFaultKind::kSilent, 0, 0}, {2, true, ElzabFaultKind::kUnplug, 0, 0}});
  EXPECT_EQ(Feed(sim, "xy" + ElzabDailyReportCommand()), "");
  EXPECT_FALSE(sim.TakeUnplug());
  EXPECT_EQ(Feed(sim, ElzabDrawerCommand()), "");
  EXPECT_TRUE(sim.TakeUnplug());
  EXPECT_EQ(sim.TakeJournal(), Lines{});
  EXPECT_EQ(sim.TakeTrace(), (Lines{"STRAY \\x78", "STRAY \\x79", "CMD 1 DAILY REPORT -> silent",
                                    "CMD 2 DRAWER -> unplugged"}));
}

TEST(UartPacing, HoldingRegisterFreesOneByteTimeBeforeTheShiftRegister) {
  Uart16550Model model(static_cast<ByteLink*>(nullptr));
  ASSERT_TRUE(model.RequestAccess(0x3F8, 7));
  model.Out(0x3FB, 0x80);
  model.Out(0x3F8, 12);
  model.Out(0x3F9, 0);
  model.Out(0x3FB, 0x1B);
  EXPECT_EQ(model.ByteTimeNs(), 1145833);  // 11 bits at 9600 baud
  EXPECT_EQ(model.In(0x3FD) & 0x60, 0x60);  // unpaced: always empty
  model.SetPaced(true);
  model.Out(0x3F8, 'a');
  EXPECT_EQ(model.In(0x3FD) & 0x60, 0x20);  // the byte went on into the shift register
  model.Out(0x3F8, 'b');
  EXPECT_EQ(model.In(0x3FD) & 0x60, 0x00);  // the second waits behind it
  std::this_thread::sleep_for(std::chrono::milliseconds(3));
  EXPECT_EQ(model.In(0x3FD) & 0x60, 0x60);
}

}  // namespace
