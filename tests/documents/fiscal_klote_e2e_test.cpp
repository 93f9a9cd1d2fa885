// The fiscal sale in the real klote, in tmux: the operator enters a retail
// sale of items with Polish names, fractional quantities and four VAT rates,
// saves it, and the receipt is found in the simulator's journal line by line,
// for both printer families by every road: direct from klote, through the
// polling fisksrv by job file, and through the one-shot fisksrv that klote
// starts itself. A printer that refuses or falls silent mid-receipt leaves no
// open receipt, and the document saved without it is fiscalised later once.
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <span>
#include <string>

#include "base/mazovia.h"
#include "documents/fiscalise.h"
#include "fiscal_receipts.h"
#include "master/contractors.h"
#include "master/items.h"
#include "master/tables.h"
#include "tmuxwalk.h"
#include "users/users.h"

namespace {

using namespace fiscal_receipts;

// In the catalogue's order (names and numbers agree), each with its stock.
const Item kSold[] = {
    {"Chleb żytni", "23", "szt", 4.99L, 1.5L, 'A', 1},
    {"Jabłka Łąckie", "5", "kg", 3.33L, 0.75L, 'C', 3},
    {"Masło ekstra", "8", "kg", 7.49L, 0.255L, 'B', 2},
    {"Usługa", "zwol.", "szt", 12.00L, 1.0L, 'Z', 5},
};
// The System Manager sells: his cashier code and his name on ELZAB receipts.
const std::string kCashierCode = "00K";
const std::string kCashierName = "Kierownik Systemu";

enum class Family { kPosnet, kElzab };
enum class Road { kDirect, kPolling, kOneShot };

struct RoadCase {
  const char* name;
  Family family;
  Road road;
};

const RoadCase kRoads[] = {
    {"POSNET direct", Family::kPosnet, Road::kDirect},   {"ELZAB direct", Family::kElzab, Road::kDirect},
    {"POSNET polling", Family::kPosnet, Road::kPolling}, {"ELZAB polling", Family::kElzab, Road::kPolling},
    {"POSNET one-shot", Family::kPosnet, Road::kOneShot}, {"ELZAB one-shot", Family::kElzab, Road::kOneShot},
};

class KloteSaleE2eTest : public FiscalPrintersTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    if (!TmuxWalk::Available()) GTEST_SKIP() << "tmux is not installed";
    home_ = Db().home;
    ASSERT_EQ(std::system(("cd " + home_ + " && rm -rf srvfisk fisksrv tty0 fisk.cfg fisk.log fiskelz.tmp && " +
                           "mkdir -p srvfisk dane/uzytkown/0").c_str()),
              0);
    ASSERT_EQ(UsersTableEnsure(), 0);
    CreateFirmTables();
    Contractor warehouse;  // the only warehouse: klote takes it as the current one
    warehouse.number = 1;
    warehouse[KontrahentCol::nazwa] = "Magazyn"_mz;
    ASSERT_EQ(ContractorAdd(ContractorKind::kWarehouse, warehouse, NumberRange{}), ContractorOutcome::kDone);
    for (const Item& i : kSold) AddItem(i);
  }
  void TearDown() override {
    EndCase();
    ClearCurrentUser();
    FiscalPrintersTest::TearDown();
  }

  static void AddItem(const Item& i) {
    ItemData item;
    item.name = Utf8ToMaz(ShortText(i.name));
    item.vat = i.vat;
    item.supplier = 1;
    item.unit = i.unit;
    item.saleGross = i.price;
    StockRow stock;
    stock.quantity = 100;
    stock.saleGross = i.price;
    ShortText refusal;
    ASSERT_EQ(ItemAdd(item, ItemRules{}, 1, stock, refusal), 0) << refusal.Str();
  }

  // The operator's settings: retail sales fiscal, computer numbers on the
  // receipts, the four rates mapped; ELZAB takes the table's numbers, the
  // others the letters.
  static FiscalConfig Config(Family family, Road road) {
    FiscalConfig c;
    const bool server = road != Road::kDirect;
    c.printerType = server ? kFiscalServer : family == Family::kPosnet ? kFiscalPosnet : kFiscalElzab;
    c.port = server && family == Family::kPosnet ? 2 : 1;
    c.documentFlags[0] = 1;
    c.computerNumbers = 1;
    for (int k = 0; k < 4; ++k) {
      c.vatName[k] = kSold[k].vat;
      c.vatCode[k] = c.printerType == kFiscalElzab ? kSold[k].elzabCode : kSold[k].letter;
    }
    if (road == Road::kOneShot) c.serverRow = ShortText((family == Family::kPosnet ? "2,1,srvfisk\\2,,0" : "1,1,srvfisk\\1,,0"));
    return c;
  }

  // The printer, the operator's settings and the server of the road.
  void StartCase(Family family, Road road, std::vector<std::string> faults = {}) {
    EndCase();
    family_ = family;
    if (family == Family::kPosnet) {
      ASSERT_NO_FATAL_FAILURE(StartPosnet(home_, faults));
    } else {
      ASSERT_NO_FATAL_FAILURE(StartElzab(faults));
    }
    config_ = Config(family, road);
    ASSERT_EQ(WriteFiscalConfig("dane/uzytkown/0/", "", config_), 0);
    if (road == Road::kPolling) StartPollingServer();
    if (road == Road::kOneShot) {
      ASSERT_EQ(::symlink(KLOTE_BINARY_DIR "/server/fisksrv", (home_ + "/fisksrv").c_str()), 0);
    }
  }
  void EndCase() {
    if (home_.empty()) return;
    tmux_.reset();
    StopPrinters();
    (void)std::system(("cd " + home_ + " && rm -f tty0 fisksrv").c_str());
  }
  void StartPollingServer() {
    server_.emplace(family_ == Family::kPosnet ? "2,1,\"srvfisk\\2\",,0" : "1,1,\"srvfisk\\1\",,0");
    ASSERT_TRUE(PollingFisksrv::Configured());
  }

  // --- klote in tmux, with the printers' lines of the case, logged in at the menu bar ---
  // The printers' lines reach klote through the environment that tmux's server takes from this process.
  void StartKlote() {
    tmux_ = std::make_unique<TmuxWalk>();
    ASSERT_TRUE(tmux_->StartKlote(home_));
    ASSERT_NO_FATAL_FAILURE(tmux_->LogIn(false));  // the only warehouse is taken
  }
  std::string Pane() { return tmux_->Pane(); }
  bool WaitForText(const std::string& text, int ms = 10000) { return tmux_->Shows(text, ms); }
  void Keys(const std::string& keys) { tmux_->Keys(keys); }

  // From the login to the saving keys: the retail sale with every item of kSold
  // (its group holds the one kind); each line shows its item under the catalogue.
  // A header form before the save, where entry asks one, is confirmed by its own F2.
  void EnterSale() {
    ASSERT_NO_FATAL_FAILURE(StartKlote());
    ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"F2 1", "Wybierz grupę dokumentów:"}, {"1", "Specyfikacja:"}}));
    for (std::size_t k = 0; k < std::size(kSold); ++k) {
      ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{k > 0 ? "Down Enter" : "Enter", "Podaj ilość:"}}));
      Keys("'" + QuantityText(kSold[k].quantity) + "' Enter");
      ASSERT_TRUE(tmux_->Until([&](const std::string& pane) { return CountOf(pane, kSold[k].name) == 2; })) << Pane();
    }
    Keys("F2");
    if (WaitForText("data rozliczenia:", 1000)) Keys("F2");
  }
  // After the save's notice: back to the menu and out.
  void LeaveKlote() {
    ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"Enter", "Specyfikacja:"}, {"Escape", "F2 Dokumenty"}}));
    tmux_->Quit();
  }

  // --- what the printer must hold ---
  Lines Journal() const { return family_ == Family::kPosnet ? posnet_->Journal() : elzab_->Journal(); }
  // The receipt of kSold as the road prints it, number n of the kind's "PA".
  Lines Expected(Road road, int n) const {
    const std::string number = "P " + std::to_string(n) + "/PA";
    if (family_ == Family::kPosnet)
      return PosnetReceipt(std::span(kSold), 40, kCashierCode, road == Road::kDirect ? 0 : 24);
    return ElzabReceipt(std::span(kSold), number, kCashierName, road != Road::kDirect);
  }
  // The journal's last receipt has ended (TOTAL or CLOSE) or been cancelled.
  bool ReceiptEnded() const {
    const Lines j = Journal();
    return !j.empty() && (j.back().rfind("TOTAL", 0) == 0 || j.back().rfind("CLOSE", 0) == 0 || j.back() == "CANCELLED");
  }
  std::string home_;
  std::unique_ptr<TmuxWalk> tmux_;
  Family family_ = Family::kPosnet;
  FiscalConfig config_;
};

TEST_F(KloteSaleE2eTest, ASaleReachesTheJournalByEveryRoadOfBothFamilies) {
  int saved = 0;
  for (const RoadCase& c : kRoads) {
    SCOPED_TRACE(c.name);
    StartCase(c.family, c.road);
    ASSERT_NO_FATAL_FAILURE(EnterSale());
    ASSERT_TRUE(WaitForText("Zapisano dokument nr", 60000)) << Pane();
    ++saved;
    // The server may still be printing what the application handed over.
    ASSERT_TRUE(WaitUntil([&] { return ReceiptEnded(); }, 30000)) << ::testing::PrintToString(Journal());
    EXPECT_EQ(WithoutHeads(Journal()), Expected(c.road, saved)) << Pane();
    if (c.family == Family::kPosnet) {  // the document's number stands in the receipt's foot
      EXPECT_NE(::testing::PrintToString(Journal()).find("P " + std::to_string(saved) + "/PA"), std::string::npos);
    }
    EXPECT_NE(::access((home_ + "/srvfisk/1").c_str(), F_OK) | ::access((home_ + "/srvfisk/2").c_str(), F_OK), 0);
    ASSERT_NO_FATAL_FAILURE(LeaveKlote());
  }
  // Every document carries the fiscal mark of a cash sale.
  EXPECT_EQ(Scalar("SELECT string_agg(czy_gotowkowy, '') FROM DANE_1_NAGLOWKI"), std::string(std::size(kRoads), 'F'));
}

// The menu's entry for the printer's operations, walked in klote: the list of
// the POSNET printer's operations, the daily report asked and printed, the
// drawer opened, and the way back to the bar.
TEST_F(KloteSaleE2eTest, TheMenuEntryRunsThePrintersOperations) {
  StartCase(Family::kPosnet, Road::kDirect);
  config_.drawer = 1;
  ASSERT_EQ(WriteFiscalConfig("dane/uzytkown/0/", "", config_), 0);
  ASSERT_NO_FATAL_FAILURE(StartKlote());
  ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"F5 8", "Wybierz operację drukarki fiskalnej:"},
                                       {"", "- synchronizacja zegara drukarki z komputerem"},
                                       {"Enter", "Czas drukarki : "}}));
  Keys("t");
  ASSERT_TRUE(WaitUntil([&] { return Journal() == Lines{"DAILY REPORT"}; }, 10000)) << Pane();
  Keys("Down Down Down Enter");  // the drawer, fourth on the list
  ASSERT_TRUE(WaitUntil([&] { return Journal() == Lines{"DAILY REPORT", "DRAWER SZUFLADA"}; }, 10000)) << Pane();
  ASSERT_NO_FATAL_FAILURE(
      tmux_->Walk({{"Escape", "Raport dobowy i okresowy sprzedaży drukowany na drukarce fiskalnej."}}));
  tmux_->Quit();
}

// The documents' list of the menu, walked in klote: a sale saved while the
// POSNET printer is silent is fiscalised later from the list, reaches the
// journal once, and a second try on the same row is refused.
TEST_F(KloteSaleE2eTest, ASaleSavedWithoutThePrinterIsFiscalisedFromTheDocumentsListOnce) {
  StartCase(Family::kPosnet, Road::kDirect, {"--fail", "5:silent"});
  ASSERT_NO_FATAL_FAILURE(EnterSale());
  // Its message, Enter to it, the save without the fiscal record; the receipt ends cancelled, the document unmarked.
  ASSERT_TRUE(WaitForText("brak odpowiedzi drukarki", 30000)) << Pane();
  ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"Enter", "Czy pomimo braku możliwości zapisu w drukarce fiskalnej"},
                                       {"t", "Zapisano dokument nr"}}));
  EXPECT_TRUE(WaitUntil([&] { return !Journal().empty() && Journal().back() == "CANCELLED"; }, 10000))
      << ::testing::PrintToString(Journal());
  EXPECT_EQ(Scalar("SELECT czy_gotowkowy FROM DANE_1_NAGLOWKI"), "T");
  ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"Enter", "Specyfikacja:"}, {"Escape", "F2 Dokumenty"}}));
  const Lines cancelled = Journal();
  ASSERT_NO_FATAL_FAILURE(tmux_->Walk({
      {"F2 2", "Dokumenty towarowe - magazyn nr 1"},  // "Wprowadzanie nowych i zmiany istniejących"
      {"", " 1/" + Scalar("SELECT extract(year FROM current_date)::int")},
  }));
  Keys("F4");
  ASSERT_TRUE(WaitUntil([&] { return Journal().size() > cancelled.size() && ReceiptEnded(); }, 30000)) << Pane();
  Lines printed = Journal();
  printed.erase(printed.begin(), printed.begin() + static_cast<long>(cancelled.size()));
  EXPECT_EQ(WithoutHeads(printed), Expected(Road::kDirect, 1)) << Pane();
  // The mark is written after the printer's last answer.
  EXPECT_TRUE(WaitUntil([] { return Scalar("SELECT czy_gotowkowy FROM DANE_1_NAGLOWKI") == "F"; }, 10000));

  ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"F4", "Dokument jest już zapisany w drukarce fiskalnej."}}));  // the same row
  Keys("Enter");
  EXPECT_EQ(Journal().size(), cancelled.size() + printed.size());
  Keys("Enter");  // the lines, with the names as the entry wrote them
  for (const Item& i : kSold) EXPECT_TRUE(WaitForText(i.name)) << Pane();
  ASSERT_NO_FATAL_FAILURE(tmux_->Walk({{"Escape", "F4-fiskalizacja"}, {"Escape", "F2 Dokumenty"}}));
  tmux_->Quit();
}

}  // namespace
