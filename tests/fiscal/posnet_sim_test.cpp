// The simulated printer's own logic, bytes in and out, without a line.
#include <gtest/gtest.h>

#include <tuple>

#include "fiscal/posnet_wire.h"
#include "posnet_sim_core.h"

namespace {

std::string Feed(PosnetPrinterSim& sim, const std::string& bytes) {
  std::string out;
  for (char c : bytes) sim.Receive(static_cast<uint8_t>(c), out);
  return out;
}

std::string Command(PosnetPrinterSim& sim, const std::string& body) {
  return Feed(sim, PosnetCheckedFrame(body) + "\x05\x05");
}

// The error code the simulator's status record names.
long RecordCode(PosnetPrinterSim& sim) {
  std::string frame = Feed(sim, PosnetPlainFrame("0#s"));
  auto rec = ParsePosnetStatusRecord(frame.substr(1, frame.size() - 3));
  return rec ? rec->ErrorCode() : -999;
}

TEST(PosnetSimRules, FaultRulesParse) {
  const struct { const char* text; int command; bool onwards; SimFaultKind kind; int arg; } rows[] = {
      {"3:error=21", 3, false, SimFaultKind::kError, 21}, {"5+:silent", 5, true, SimFaultKind::kSilent, 0},
      {"2:xoff", 2, false, SimFaultKind::kXoff, 0},        {"2:xoff=1500", 2, false, SimFaultKind::kXoff, 1500}};
  for (const auto& r : rows) {
    auto rule = ParseSimFaultRule(r.text);
    ASSERT_TRUE(rule) << r.text;
    EXPECT_EQ(std::tuple(rule->command, rule->onwards, rule->kind, rule->arg), std::tuple(r.command, r.onwards, r.kind, r.arg))
        << r.text;
  }
  for (const char* bad : {"x:error", "0:silent", "3:boom", "3", "3:error=x", ":oneenq"})
    EXPECT_FALSE(ParseSimFaultRule(bad)) << bad;
}

TEST(PosnetSimRules, AmountsParseAsTheDriverWritesThem) {
  for (const auto& [text, grosz] : {std::pair{"12.34", 1234}, {"12.05", 1205}, {"12", 1200}, {"0.5", 50}})
    EXPECT_EQ(ParseSimAmount(text), grosz) << text;
  for (const char* bad : {"", "1.234", "-1", "a", "1.", ".5"}) EXPECT_FALSE(ParseSimAmount(bad)) << bad;
}

TEST(PosnetSim, StatusByteFollowsAcceptanceAndTransaction) {
  PosnetPrinterSim sim;
  EXPECT_EQ(Command(sim, "1#e"), "\x64\x64");
  EXPECT_EQ(Command(sim, "1;0$h"), "\x66\x66");
  EXPECT_EQ(Command(sim, "1$lChleb\r2\rA/1.05/2.10/"), "\x66\x66");
  EXPECT_EQ(Command(sim, "1;0;0$eK\r2.10/2.10/"), "\x64\x64");
  auto journal = sim.TakeJournal();
  ASSERT_EQ(journal.size(), 4u);
  EXPECT_EQ(journal[1], "LINE 1|Chleb|2|A|1.05/2.10/");
  EXPECT_EQ(journal[3], "TOTAL 2.10/ PAID 2.10/");
}

TEST(PosnetSim, RefusesWhatAPrinterRefuses) {
  const struct { const char* before; const char* body; long code; } rows[] = {
      {"", "1$lChleb\r2\rA/1.05/2.10/", 21},               // no transaction
      {"", "1;0;0$eK\r0/0/", 29},                          // nothing to close
      {"1;0$h", "1$lChleb\r2\rA/1.05/2.11/", 20},         // value is not quantity x price
      {"1;0$h", "1$lChleb\r2\rA/x/2.10/", 19},
      {"1;0$h", "1$l\r2\rA/1/2/", 16},
      {"1;0$h", "1;0;0$eK\r0/5/", 27},                     // total differs from the lines
      {"0;0$h", "1$lChleb\r1\rA/1/1/", 23},                // more lines than announced
      {"", "1;2$hA\r", 15},                                // fewer head lines than announced
      {"1;0$h", "1;0$h", 4},                               // a head inside a receipt
      {"", "1#q", 4},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.body);
    PosnetPrinterSim sim;
    if (*r.before) Command(sim, r.before);
    std::string answer = Command(sim, r.body);
    EXPECT_EQ(answer[0] & kPosnetAccepted, 0);
    EXPECT_EQ(RecordCode(sim), r.code);
  }
}

TEST(PosnetSim, BadCheckValueIsError2) {
  PosnetPrinterSim sim;
  std::string frame = PosnetCheckedFrame("1#e");
  frame[5] = '9';
  EXPECT_EQ(Feed(sim, frame + "\x05"), "\x60");
  EXPECT_EQ(RecordCode(sim), 2);
}

TEST(PosnetSim, CancelInsideAFrameDropsIt) {
  PosnetPrinterSim sim;
  Command(sim, "1;0$h");
  EXPECT_EQ(Feed(sim, "\x1BP1$lhalf\x18"), "");
  EXPECT_TRUE(sim.InTransaction());
  Command(sim, "0$e");
  EXPECT_FALSE(sim.InTransaction());
  auto journal = sim.TakeJournal();
  EXPECT_EQ(journal.back(), "CANCELLED");
}

TEST(PosnetSim, FaultsApplyToTheirCommand) {
  SimOptions options;
  options.faults = {*ParseSimFaultRule("2:oneenq"), *ParseSimFaultRule("4:xoff=700"),
                    *ParseSimFaultRule("5+:silent")};
  PosnetPrinterSim sim(options);
  EXPECT_EQ(Command(sim, "1#x"), "\x64\x64");
  EXPECT_EQ(Command(sim, "1#e"), "\x64");  // only the first ENQ is answered
  EXPECT_EQ(Command(sim, "1#t"), "\x64\x13\x64");  // the line stops before command 4
  EXPECT_EQ(sim.TakeXoffHold(), 700);
  EXPECT_EQ(Command(sim, "1#t"), "\x64\x64");
  EXPECT_EQ(Command(sim, "1#t"), "");
  EXPECT_EQ(Command(sim, "1#t"), "");
  EXPECT_EQ(Feed(sim, PosnetPlainFrame("0#s")), "");
}

TEST(PosnetSim, IgnoredCancelKeepsTheTransaction) {
  SimOptions options;
  options.ignoreCancel = true;
  PosnetPrinterSim sim(options);
  Command(sim, "1;0$h");
  EXPECT_EQ(Feed(sim, "\x18") + Command(sim, "0$e"), "\x66\x66");
}

// Random byte strings rich in the protocol's own bytes: neither the printer nor the
// driver's reply parsers may fail on them, and the printer answers only status bytes
// and whole frames.
TEST(PosnetRobustness, ArbitraryBytesNeitherCrashNorConfuse) {
  const std::string alphabet = std::string("\x1B" "P\\\x05\x18\r/;$#.0123456789lhe") + "\xFF";
  uint32_t seed = 12345;
  auto next = [&seed] { return seed = seed * 1103515245u + 12345u, (seed >> 16) & 0x7FFF; };
  PosnetPrinterSim sim;
  for (int round = 0; round < 3000; ++round) {
    std::string bytes;
    int length = static_cast<int>(next() % 40);
    for (int i = 0; i < length; ++i)
      bytes += next() % 8 == 0 ? static_cast<char>(next() % 256) : alphabet[next() % alphabet.size()];
    std::string out = Feed(sim, bytes);
    for (std::size_t i = 0; i < out.size(); ++i) {
      if (out[i] == '\x1B') {
        std::size_t end = out.find("\x1B\\", i + 1);
        ASSERT_NE(end, std::string::npos) << round;
        i = end + 1;
      } else {
        ASSERT_TRUE(IsPosnetStatusByte(static_cast<unsigned char>(out[i])) || out[i] == '\x13') << round;
      }
    }
    (void)ParsePosnetStatusRecord(bytes);
    (void)ParsePosnetClock(bytes);
    (void)ParsePosnetStatusRecord("P1#X" + bytes);
  }
}

}  // namespace
