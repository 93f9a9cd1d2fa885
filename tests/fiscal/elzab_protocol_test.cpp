// The ELZAB protocol: amounts, tax codes, commands byte by byte, status texts,
// the display text, and the response rule against the register model with the
// test playing the printer on a socket pair.
#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "fiscal/elzab.h"
#include "elzab_model_fixture.h"
#include "fiscal/elzab_line.h"
#include "fiscal/jobs_amounts.h"
#include "fiscal/portio.h"
#include "fiscal/uart_model.h"
#include "elzab_sim_core.h"

namespace {

std::string Bytes(std::initializer_list<int> bytes) {
  std::string s;
  for (int b : bytes) s += static_cast<char>(b);
  return s;
}

TEST(ElzabAmount32, LeastSignificantFirstRoundedAndFfOutOfRange) {
  struct Case {
    Real value;
    std::string bytes;
  };
  const Case cases[] = {
      {0, Bytes({0, 0, 0, 0})},
      {1, Bytes({1, 0, 0, 0})},
      {258, Bytes({2, 1, 0, 0})},
      {1234.5L, Bytes({0xD3, 0x04, 0, 0})},  // half away from zero: 1235
      {-1, Bytes({0xFF, 0xFF, 0xFF, 0xFF})},
      {-2.5L, Bytes({0xFD, 0xFF, 0xFF, 0xFF})},
      {2147483647, Bytes({0xFF, 0xFF, 0xFF, 0x7F})},
      {-2147483647, Bytes({0x01, 0, 0, 0x80})},
      {2147483648.0L, Bytes({0xFF, 0xFF, 0xFF, 0xFF})},
      {-2147483648.0L, Bytes({0xFF, 0xFF, 0xFF, 0xFF})},
      {1e30L, Bytes({0xFF, 0xFF, 0xFF, 0xFF})},
  };
  for (const Case& c : cases) EXPECT_EQ(ElzabAmount32(c.value), c.bytes) << static_cast<double>(c.value);
}

TEST(ElzabTaxCode, LettersAndEverythingElse) {
  const std::pair<const char*, int> cases[] = {{"A", 1}, {"B", 2}, {"C", 3}, {"D", 4}, {"Z", 5}, {"E", 6},
                                               {"F", 7}, {"G", 1}, {"a", 1}, {"", 1},  {"BX", 2}};
  for (const auto& [letter, code] : cases) EXPECT_EQ(ElzabTaxCode(letter), code) << letter;
}

TEST(ElzabCommands, BytesOfEachCommand) {
  EXPECT_EQ(ElzabOpenReceiptCommand(2843), Bytes({0x1B, 0x20, 0x1B, 0x0B, 0, 0}));
  EXPECT_EQ(ElzabEndItemsCommand(), Bytes({0x1B, 0x07}));
  EXPECT_EQ(ElzabFreeTextCommand('6', "P 1/24"), "\x1B\x09" "6P 1/24\n");
  EXPECT_EQ(ElzabCloseReceiptCommand(), "\x1B$");
  EXPECT_EQ(ElzabCancelCommand(), "\x1B#");
  EXPECT_EQ(ElzabDailyReportCommand(), "\x1B%");
  EXPECT_EQ(ElzabDrawerCommand(), "\x1BW");

  ElzabSaleLine line{.name = "Chleb A", .quantity = 15, .decimals = 1, .unit = "szt", .priceGrosz = 350, .taxCode = 1,
                     .valueGrosz = 525};
  const std::string cmd = ElzabSaleLineCommand(line);
  ASSERT_EQ(cmd.size(), 51u);
  EXPECT_EQ(cmd.substr(0, 3), Bytes({0x1B, 0x06, 0x20}));
  EXPECT_EQ(cmd.substr(3, 28), "Chleb A" + std::string(21, ' '));
  EXPECT_EQ(cmd.substr(31), "0" + Bytes({15, 0, 0, 0, 1}) + "szt " + Bytes({0x5E, 1, 0, 0, 0x1B, 1, 0x0D, 2, 0, 0}));
  line.name = ShortText(std::string(40, 'x'));
  line.unit = "opakowanie";
  const std::string cut = ElzabSaleLineCommand(line);
  ASSERT_EQ(cut.size(), 51u);
  EXPECT_EQ(cut.substr(37, 4), "opak");
}

TEST(ElzabCommands, PeriodReportDigitsAndRange) {
  std::string cmd;
  const int from[3] = {24, 1, 5}, to[3] = {24, 12, 31};
  ASSERT_TRUE(ElzabPeriodReportCommand(true, from, to, cmd));
  EXPECT_EQ(cmd, Bytes({0x1B, '(', 2, 4, 0, 1, 0, 5, 2, 4, 1, 2, 3, 1}));
  ASSERT_TRUE(ElzabPeriodReportCommand(false, from, to, cmd));
  EXPECT_EQ(cmd[1], ')');
  const int bad[3] = {24, 100, 1};
  EXPECT_FALSE(ElzabPeriodReportCommand(true, bad, to, cmd));
}

TEST(ElzabStatusByteText, FirstSetBitFromTheLowestUpFirstByteBeforeSecond) {
  struct Case {
    uint8_t first, second;
    std::string text;
  };
  const Case cases[] = {
      {0x01, 0, "brak wolnego miejsca w bazie towarów i stawek w drukarce"},
      {0x06, 0xFF, "w pamięci drukarki znajduje się dokument do wydrukowania"},
      {0x04, 0, "w pamięci fiskalnej jest mniej, niż 30 możliwych do zapisania pozycji"},
      {0x88, 0, "nie wydrukowano raportu za poprzedni dzień - nie można wystawić paragonu"},
      {0x10, 0, "błąd CMOS drukarki - CMOS był kasowany  - nie ustawiony jest czas"},
      {0x20, 0, "blokada nazwy towaru w paragonie"},
      {0x40, 0, "wyświetlacz jest odłączony"},
      {0x80, 0, "brak komunikacji z kontrolerem drukarki"},
      {0, 0x01, "w buforze drukowania są znaki do wydrukowania"},
      {0, 0x02, "brak papieru w drukarce - świeci się LED paper out"},
      {0, 0x04, "awaria drukarki"},
      {0, 0x08, "małe napięcie akumulatora - praca możliwa, ale zawiadom serwis"},
      {0, 0x30, "nastąpiło unieważnienie operacji - paragonu"},
      {0, 0x20, "w pamięci paragonu jest mniej, niż 1 kB miejsca"},
      {0, 0x40, "wydruk został zatrzymany z powodu braku papieru"},
      {0, 0x80, "brak komunikacji z kontrolerem drukarki"},
      {0, 0, "błąd nie sklasyfikowany"},
  };
  for (const Case& c : cases) EXPECT_EQ(ElzabStatusByteText(c.first, c.second), Utf8ToMaz(ShortText(c.text))) << c.text;
}

TEST(ElzabDisplayText, StrippedCutByPointAndEndedByLineFeed) {
  const std::pair<const char*, const char*> cases[] = {
      {"  12.50  ", "12.50\n"},
      {"1234567,891234", "1234567,89\n"},
      {"123456789012", "123456789\n"},
      {"   ", "\n"},
  };
  for (const auto& [in, out] : cases) EXPECT_EQ(ElzabDisplayText(in), ShortText(out)) << in;
}

TEST(JobAmounts, QuantityDecimalsAndLineValuesOfBothFamilies) {
  struct Case {
    Real quantity, price;
    Real wire;
    int decimals;
    Real elzab, posnet;
  };
  const Case cases[] = {
      {1.5L, 3.5L, 15, 1, 525, 525},
      {2, 7.99L, 2, 0, 1598, 1598},
      {0.125L, 4.2L, 125, 3, 53, 53},
      {0.3333L, 20, 333, 3, 666, 667},  // ELZAB keeps 3 places of the quantity
      {1.10L, 1, 11, 1, 110, 110},
      {2.0004L, 1, 2, 0, 200, 200},     // 2.000 with 3 places: no decimals
      {-1.5L, 2, -15, 1, -300, -300},
  };
  for (const Case& c : cases) {
    const ElzabQuantity q = ElzabQuantityOf(c.quantity);
    EXPECT_EQ(q.value, c.wire) << static_cast<double>(c.quantity);
    EXPECT_EQ(q.decimals, c.decimals) << static_cast<double>(c.quantity);
    EXPECT_EQ(ElzabLineValueGrosz(c.quantity, c.price), c.elzab) << static_cast<double>(c.quantity);
    EXPECT_EQ(PosnetLineValueGrosz(c.quantity, c.price), c.posnet) << static_cast<double>(c.quantity);
  }
  EXPECT_EQ(PriceGrosz(1.005L), 101);  // 100.5 in the extended type rounds away
  EXPECT_EQ(PriceGrosz(7.99L), 799);
}

// The register model, its serial side a socket pair whose other end is the
// simulator's printer running in a thread.
class ElzabResponseTest : public ElzabModelTest {
 protected:
  void SetUp() override {
    AttachModel(50);  // room for the printer thread on a busy machine
    ElzabOpen(1);
  }
  void TearDown() override {
    StopPrinter();
    DetachModel();
  }
  // The printer answers from now on as the simulator does, with these faults.
  void StartPrinter(std::vector<ElzabFaultRule> faults) {
    sim_ = std::make_unique<ElzabPrinterSim>(std::move(faults));
    stop_ = false;
    thread_ = std::thread([this] {
      while (!stop_) {
        pollfd p{printer_, POLLIN, 0};
        if (poll(&p, 1, 2) <= 0) continue;
        unsigned char b;
        while (read(printer_, &b, 1) == 1) {
          received_ += static_cast<char>(b);
          std::string answer;
          sim_->Receive(b, answer);
          if (!answer.empty()) (void)!write(printer_, answer.data(), answer.size());
        }
      }
    });
  }
  // Stops the printer; gives the bytes it received.
  std::string StopPrinter() {
    if (thread_.joinable()) {
      stop_ = true;
      thread_.join();
    }
    return std::exchange(received_, {});
  }
  static ElzabFaultRule Nak(int command, uint8_t first, uint8_t second) {
    return {command, false, ElzabFaultKind::kNak, first, second};
  }

  std::unique_ptr<ElzabPrinterSim> sim_;
  std::thread thread_;
  std::atomic<bool> stop_{false};
  std::string received_;
};

TEST_F(ElzabResponseTest, OnlyNakIsARefusal) {
  // Whatever lies in the register passes: 0 here, before any byte came.
  ShortText text = "x";
  EXPECT_TRUE(ElzabResponse(1, text));
  EXPECT_TRUE(text.Empty());
  StartPrinter({Nak(2, 0, 0x04), Nak(3, 0x40, 0x04)});
  ElzabSendText(1, ElzabDrawerCommand());
  EXPECT_TRUE(ElzabResponse(1, text));  // ACK
  // A refusal asks for the first status byte, and for the second only when it is 0.
  ElzabSendText(1, ElzabDrawerCommand());
  EXPECT_FALSE(ElzabResponse(1, text));
  EXPECT_EQ(text, "@Blad drukarki ELZAB.@(awaria drukarki)");
  ElzabSendText(1, ElzabDrawerCommand());
  EXPECT_FALSE(ElzabResponse(1, text));
  EXPECT_EQ(text, "@Blad drukarki ELZAB.@(wyswietlacz jest odlaczony)");
  EXPECT_EQ(StopPrinter(), "\x1BW\x1BW\x1B\x94\x1B\x95\x1BW\x1B\x94");
}

TEST_F(ElzabResponseTest, CommandCancelsAndPurgesOnARefusalAndTellsASendTimeout) {
  StartPrinter({Nak(1, 0x08, 0)});
  ShortText result = "PARAGON";
  EXPECT_TRUE(ElzabCommand(1, ElzabOpenReceiptCommand(100), result));
  EXPECT_EQ(result, "PARAGON@@Blad drukarki ELZAB.@(nie wydrukowano raportu za poprzedni dzien - nie mozna "
                    "wystawic paragonu)");
  result = "PARAGON";
  EXPECT_FALSE(ElzabCommand(1, ElzabDailyReportCommand(), result));
  EXPECT_EQ(result, "PARAGON");
  EXPECT_EQ(StopPrinter(), ElzabOpenReceiptCommand(100) + "\x1B\x94\x1B#\x1B%");

  // With the printer not clearing to send nothing leaves, and no cancel is tried.
  model_->SetClearToSend(false);
  EXPECT_TRUE(ElzabCommand(1, ElzabCloseReceiptCommand(), result));
  EXPECT_EQ(result, "PARAGON@ Timeout nadawania.");
  EXPECT_EQ(ElzabStatusText(1), "błąd łącza szeregowego przy próbie kontroli błędu drukarki"_mz);
  char b;
  EXPECT_EQ(read(printer_, &b, 1), -1);
}

TEST_F(ElzabResponseTest, DisplayAmountOnlyWithADisplayAndWithTheLedPrefix) {
  StartPrinter({});
  ElzabConfig().displayType = kElzabDisplayNone;
  ElzabDisplayAmount(1, " 12.50 ");
  ElzabConfig().displayType = 2;
  ElzabDisplayAmount(1, " 12.50 ");
  ElzabConfig().displayType = kElzabDisplayLed;
  ElzabDisplayAmount(1, "7");
  ElzabConfig() = {};
  EXPECT_EQ(StopPrinter(), "\x1BR12.50\n\x1BS\x1BR\x0B" "0 \n\x1BS\x1BR7\n\x1BS");
  EXPECT_EQ(sim_->TakeJournal(), (std::vector<std::string>{"DISPLAY 12.50\\x0A", "DISPLAY \\x0B" "0 \\x0A",
                                                           "DISPLAY 7\\x0A"}));
}

}  // namespace
