// A saved sale written into the warehouse's tables goes to the simulated
// printers by every route: POSNET and ELZAB from this process, and job files
// for the real fisksrv, polling and one-shot. Each journal is checked line by
// line against names, VAT letters and grosz amounts the test works out itself;
// printers that refuse or fall silent leave no open receipt behind.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/jobfile.h"
#include "base/dates.h"
#include "documents/docsave.h"
#include "documents/fiscalise.h"
#include "fiscal_receipts.h"
#include "fiscal/fiscaljob.h"
#include "master/tables.h"
#include "print/keyscript.h"
#include "users/users.h"

namespace {

using namespace fiscal_receipts;

// Polish names, fractional quantities, three rates and an exempt line; the
// line of quantity 0 never reaches a printer.
const Item kItems[] = {
    {"Chleb żytni", "23", "szt", 4.99L, 1.5L, 'A', 1},
    {"Masło ekstra", "8", "kg", 7.49L, 0.255L, 'B', 2},
    {"Jabłka Łąckie", "5", "kg", 3.33L, 2.0L, 'C', 3},
    {"Usługa", "zwol.", "szt", 12.00L, 1.0L, 'Z', 5},
    {"Próbka", "23", "szt", 1.00L, 0.0L, 'A', 1},
};
constexpr int kSoldLines = 4;

class FiscalSaleTest : public FiscalPrintersTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    ASSERT_EQ(::mkdir((dir_ / "srvfisk").c_str(), 0777), 0);
    ASSERT_NE(::getcwd(home_, sizeof home_), nullptr);
    ASSERT_EQ(::chdir(dir_.path().c_str()), 0);
    CreateFirmTables();
    CreateWarehouseTables(false, 1);
    UserRecord user;
    user.number = 7;
    user.firstName = Utf8ToMaz(ShortText("Łucja"));
    user.surname = "Nowak";
    SetCurrentUser(user);
    WriteItems();
    WriteDocument(kKey);
    config_ = Config(kFiscalPosnet);
  }
  void TearDown() override {
    ClearCurrentUser();
    SetKeyIdleHook(nullptr);
    DiscardPendingKeys();
    (void)::chdir(home_);
    FiscalPrintersTest::TearDown();
  }

  static FiscalConfig Config(int type) {
    FiscalConfig c;
    c.printerType = type;
    c.port = 1;
    c.documentFlags[0] = 1;
    c.computerNumbers = 1;
    const char* names[] = {"23", "8", "5", "0", "zwol."};
    const int ascii[] = {'A', 'B', 'C', 'D', 'Z'};
    for (int i = 0; i < 5; ++i) {
      c.vatName[i] = names[i];
      c.vatCode[i] = type == kFiscalElzab ? (i == 4 ? 5 : i + 1) : ascii[i];
    }
    return c;
  }

  // The items as numbers 101 on; the header and the lines of the sale, positions
  // written in reverse to prove the order.
  static void WriteItems() {
    std::string values;
    for (std::size_t n = 1; n <= std::size(kItems); ++n)
      values += std::string(n > 1 ? "," : "") + "('" + kItems[n - 1].name + "','',0,0,'','','" + kItems[n - 1].vat +
                "'," + std::to_string(100 + n) + ",'" + kItems[n - 1].unit + "')";
    ASSERT_TRUE(Psql("INSERT INTO DANE_KAT_TOW_ (nazwa,nazwa_,cena_z_n,cena_z_b,sww,czy_od_pl_vat,vat,nr_wewn,"
                     "jednostka) VALUES " + values));
  }
  static void WriteDocument(const DocumentKey& key) {
    const std::string doc = std::to_string(key.kind) + "," + std::to_string(key.coded) + ",'" + key.mark.Str() + "'";
    ASSERT_TRUE(Psql("INSERT INTO DANE_1_NAGLOWKI (typ_dok,nr_dok,znak_dok,sposob_rozlicz) VALUES (" + doc +
                     ",' gotówką')"));
    std::string values;
    for (std::size_t n = std::size(kItems); n >= 1; --n)
      values += std::string(values.empty() ? "" : ",") + "(" + doc + "," + std::to_string(n) + "," +
                std::to_string(100 + n) + ",'" + kItems[n - 1].vat + "'," + QuantityText(kItems[n - 1].quantity) +
                "," + QuantityText(kItems[n - 1].price) + ")";
    ASSERT_TRUE(Psql("INSERT INTO DANE_1_SPECYFIK (typ_dok,nr_dok,znak_dok,pozycja,nr_towaru,vat,ilosc,c_spr_brutto) "
                     "VALUES " + values));
  }

  void StartPosnet(std::vector<std::string> faults = {}) { FiscalPrintersTest::StartPosnet(dir_.path(), faults); }
  // The whole POSNET receipt of the document at the width.
  // nameWidth is the job file's 24 on the server's road.
  static Lines PosnetReceipt(std::size_t width, std::size_t nameWidth = 0) {
    return fiscal_receipts::PosnetReceipt(std::span(kItems, kSoldLines), width, "07L", nameWidth);
  }

  static bool Has(const Lines& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }

  const DocumentKey kKey{1, 1, 17, ""};
  TempDir dir_;
  char home_[4096] = {};
  FiscalConfig config_;
};

// Keys the operator gives, in order, to the boxes that wait.
void Answer(const std::vector<KeyPair>& keys) {
  for (const KeyPair& k : keys) ASSERT_TRUE(PushKey(k.ch, k.scan));
}
constexpr KeyPair kNo{'N', 49};
using keys::kEnter;
using keys::kEsc;

TEST_F(FiscalSaleTest, PosnetDirectPrintsTheReceipt) {
  StartPosnet();
  FiscalSale sale;
  ShortText payment;
  ASSERT_EQ(ReadSavedSale(kKey, sale, payment), SavedSaleRead::kRead);
  EXPECT_EQ(FiscalSaveDocument(config_, payment, sale), FiscalSaveOutcome::kPrinted);
  const Lines journal = posnet_->Journal();
  EXPECT_EQ(WithoutHeads(journal), WithoutHeads(PosnetReceipt(40))) << ScreenBytes();
  EXPECT_TRUE(Has(journal, "FOOT =>zachowaj do reklamacji"));
}

TEST_F(FiscalSaleTest, ElzabDirectPlaysTheStream) {
  StartElzab();
  config_ = Config(kFiscalElzab);
  EXPECT_TRUE(FiscaliseDocument(config_, kKey));
  const Lines want = ElzabReceipt(std::span(kItems, kSoldLines), "P 17", "Lucja Nowak", false);
  EXPECT_EQ(elzab_->Journal(), want) << ScreenBytes();
}

TEST_F(FiscalSaleTest, ServerPollingPrintsTheJob) {
  StartPosnet();
  config_ = Config(kFiscalServer);
  server_.emplace("2,1,\"srvfisk\\1\",,0");
  ASSERT_TRUE(PollingFisksrv::Configured());
  EXPECT_TRUE(FiscaliseDocument(config_, kKey));
  ASSERT_TRUE(WaitUntil([&] { return !posnet_->Journal().empty() && posnet_->Journal().back().rfind("TOTAL", 0) == 0; },
                        30000)) << ReadFileText("fisk.log");
  EXPECT_EQ(WithoutHeads(posnet_->Journal()), WithoutHeads(PosnetReceipt(40, 24))) << ReadFileText("fisk.log");
}


TEST_F(FiscalSaleTest, RefusalsSilenceAndAnUnmappedRateLeaveNoOpenReceiptAndAskTheSaveQuestion) {
  // POSNET: #x 1, #e 2, $h 3, line 1 4, line 2 5 refused: the printer's message, then "no" to saving without it.
  // An unmapped rate ("zwol." no longer known to the printer): refused, the advice read, saved without it.
  struct Case {
    std::vector<std::string> fail;
    bool unmapped;
    std::vector<KeyPair> answers;
    FiscalSaveOutcome outcome;
    const char* shown;
  };
  const Case cases[] = {
      {{"--fail", "5:error=21"}, false, {kEnter, kNo}, FiscalSaveOutcome::kGiveUp, "drukarki fiskalnej nr 21"},
      {{"--fail", "5:silent"}, false, {kEnter, kNo}, FiscalSaveOutcome::kGiveUp, "drukarki fiskalnej"},
      {{}, true, {kNo, kEnter, kEnter}, FiscalSaveOutcome::kSaveWithout, "ma VAT nie zapisany w drukarce fiskalnej"},
  };
  FiscalSale sale;
  ShortText payment;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shown);
    StartPosnet(c.fail);
    config_.vatName[4] = c.unmapped ? ShortText() : ShortText("zwol.");
    ASSERT_EQ(ReadSavedSale(kKey, sale, payment), SavedSaleRead::kRead);
    (void)ScreenBytes();
    Answer(c.answers);
    EXPECT_EQ(FiscalSaveDocument(config_, payment, sale), c.outcome);
    const std::string screen = ScreenBytes();
    EXPECT_NE(screen.find(c.shown), std::string::npos);
    EXPECT_NE(screen.find("Czy pomimo braku mo"), std::string::npos);
    const Lines journal = posnet_->Journal();
    EXPECT_TRUE(Has(journal, "CANCELLED")) << ::testing::PrintToString(posnet_->Trace());
    for (const std::string& l : journal) EXPECT_NE(l.rfind("TOTAL", 0), 0u);
  }
  // A document deleted meanwhile; one that no flag sends to the printer stays out of it.
  Answer({kEnter});
  EXPECT_FALSE(FiscaliseDocument(config_, {1, 1, 99, ""}));
  EXPECT_NE(ScreenBytes().find("skasowa"), std::string::npos);
  config_.documentFlags[0] = 0;
  EXPECT_EQ(FiscalSaveDocument(config_, payment, sale), FiscalSaveOutcome::kNotFiscal);

  // ELZAB: open 1, line 1 2, line 2 3 refused; Esc gives up and the receipt is cancelled.
  StartElzab({"--fail", "3:nak=0,0x02"});
  config_ = Config(kFiscalElzab);
  keyscript::Begin();  // Esc at every wait, the screens kept
  EXPECT_FALSE(FiscaliseDocument(config_, kKey));
  keyscript::End();
  EXPECT_TRUE(tui_test::AnyScreenShows(keyscript::gScreens, "Błąd drukarki ELZAB.@("_mz));
  const Lines journal = elzab_->Journal();
  ASSERT_FALSE(journal.empty());
  EXPECT_EQ(journal.back(), "CANCELLED");
}

// A sale of n lines of quantity 1, prices 0.10, 0.20, ... zl, all at rate "23".
FiscalSale LongSale(int n) {
  FiscalSale sale;
  sale.number = "17";
  sale.cashierNumber = 7;
  sale.cashierName = "Nowak";
  for (int i = 1; i <= n; ++i) {
    FiscalSaleLine line;
    line.name1 = ShortText("Towar nr ") + ShortText(std::to_string(i).c_str());
    line.vat = "23";
    line.price = i / 10.0L;
    line.quantity = 1;
    line.unit = "szt";
    sale.lines.push_back(line);
  }
  return sale;
}

// The receipts of a journal: "RECEIPT n", the count of its lines, its total and paid.
Lines ReceiptShapes(const Lines& journal) {
  Lines out;
  int lines = 0;
  for (const std::string& l : journal) {
    if (l.rfind("LINE ", 0) == 0) ++lines;
    if (l.rfind("RECEIPT", 0) == 0) out.push_back(l), lines = 0;
    if (l.rfind("TOTAL", 0) == 0) out.push_back(std::to_string(lines) + " lines, " + l);
  }
  return out;
}

// What the parts of a split sale of n lines hold with the limit: each its own sum, paid in cash.
Lines ExpectedParts(int n, int limit) {
  Lines out;
  for (int first = 1; first <= n; first += limit) {
    const int count = std::min(limit, n - first + 1);
    int64_t total = 0;
    for (int i = first; i < first + count; ++i) total += i * 10;
    out.push_back("RECEIPT " + std::to_string(count));
    const std::string sum = Money(total);
    out.push_back(std::to_string(count) + " lines, TOTAL " + sum + "/ PAID " + sum + "/");
  }
  return out;
}

TEST_F(FiscalSaleTest, PosnetSplitsASaleOverTheLimitIntoNumberedParts) {
  struct Case { int firmware, lines, limit; };
  for (const Case& c : {Case{kFirmwareNew, 81, 80}, Case{kFirmwareOld, 21, 20}, Case{kFirmwareNew, 80, 80}}) {
    SCOPED_TRACE(c.lines);
    StartPosnet();
    config_.firmware = c.firmware;
    const std::size_t seen = ScreenBytes().size();  // the terminal's bytes only grow
    if (c.lines > c.limit) Answer({kEnter, kEnter});  // the notice of the split, the pause between parts
    ASSERT_TRUE(PosnetSale(config_, " gotówką"_mz, LongSale(c.lines), 40));
    const Lines journal = posnet_->Journal();
    EXPECT_EQ(ReceiptShapes(journal), ExpectedParts(c.lines, c.limit));
    const bool split = c.lines > c.limit;
    EXPECT_EQ(ScreenBytes().find("na >" + std::to_string(c.limit) + " ilo", seen) != std::string::npos, split);
    EXPECT_EQ(std::any_of(journal.begin(), journal.end(),
                          [](const std::string& l) { return l.find("P 17/2") != std::string::npos; }),
              split);
    EXPECT_EQ(std::any_of(journal.begin(), journal.end(),
                          [](const std::string& l) { return l.find("PARAGON FISKALNY") != std::string::npos; }),
              c.firmware == kFirmwareOld);
  }
}

// Printer 3 is redirected by srvfisk/3.cfg; the one-shot server reads the same path.
TEST_F(FiscalSaleTest, ServerJobsGoWhereTheCfgSaysAndStopAtFiftyLines) {
  StartPosnet();
  ASSERT_EQ(::symlink(KLOTE_BINARY_DIR "/server/fisksrv", "fisksrv"), 0);
  ASSERT_EQ(::mkdir("spool", 0777), 0);
  const std::string job = dir_ / "spool/x";
  { std::ofstream(dir_ / "srvfisk/3.cfg") << job << "\n"; }
  config_ = Config(kFiscalServer);
  config_.port = 3;
  config_.serverRow = ShortText(("2,1," + job + ",,0").c_str());
  EXPECT_EQ(JobFilePath(config_), ShortText(job.c_str()));

  EXPECT_TRUE(ServerSale(config_, " gotówką"_mz, LongSale(kReceiptMaxLines)));
  EXPECT_EQ(ReceiptShapes(posnet_->Journal()), ExpectedParts(kReceiptMaxLines, kReceiptMaxLines));
  EXPECT_FALSE(PathExists(job));
  EXPECT_FALSE(PathExists("srvfisk/3"));

  // One line more: refused with the advice before a line is written, the job withdrawn.
  const std::size_t before = posnet_->Journal().size();
  (void)ScreenBytes();
  Answer({kEnter});
  EXPECT_TRUE(ServerSale(config_, " gotówką"_mz, LongSale(kReceiptMaxLines + 1)));
  EXPECT_NE(ScreenBytes().find("Do serwera drukarek mog"), std::string::npos);
  EXPECT_EQ(posnet_->Journal().size(), before);
  EXPECT_FALSE(PathExists(job));
}

}  // namespace

// --- The document save's fiscal step: the lines of the work table go to the printer before the save ---

class FiscalSaveTest : public FiscalSaleTest {
 protected:
  static constexpr int32_t kUser = 7;
  void SetUp() override {
    FiscalSaleTest::SetUp();
    ASSERT_EQ(WorkTableEnsure(kUser), 0);
    int32_t number = 100;
    for (const Item& i : kItems) {
      DocLine l;
      l.item.number = ++number;
      l.item.name = Utf8ToMaz(ShortText(i.name));
      l.item.vat = i.vat;
      l.item.unit = i.unit;
      l.item.saleGross = i.price;
      l.item.saleNet = i.price;
      l.quantity = i.quantity;
      ASSERT_EQ(WorkLineAppend(WorkTablePath(kUser), l), 0);
    }
    CurrentFiscalConfig() = config_;
  }
  void TearDown() override {
    CurrentFiscalConfig() = FiscalConfig{};
    FiscalSaleTest::TearDown();
  }
  static SaveResult SaveRetailSale() {
    DocumentHeader h;
    h.kind = 1;
    h.date = EncodeDaySerial(2024, 3, 15);
    h.operatorNumber = kUser;
    SaveSettings s;
    s.mayGoBelowZero = true;  // the items have no stock
    return SaveNewDocument(1, h, WorkTablePath(kUser), s);
  }
  // The rows other than those of the document the fixture wrote.
  const std::string kNotFixture = " WHERE nr_dok<>" + std::to_string(kKey.coded);
};

// The save that prints (POSNET, direct: one whole receipt, its number in the
// foot, the document marked "F") is walked by the klote sale test.
TEST_F(FiscalSaveTest, ARefusingPrinterLeavesTheAnswerToTheOperator) {
  struct Case { KeyPair answer; const char* headers; const char* workLines; };
  // "no" gives the save up with the lines kept; Enter ("yes") saves without the fiscal mark.
  for (const Case& c : {Case{kNo, "", "5"}, Case{kEnter, "T", "0"}}) {
    SCOPED_TRACE(c.headers);
    StartPosnet({"--fail", "5:error=21"});
    const std::size_t seen = ScreenBytes().size();
    Answer({kEnter, c.answer});  // the printer's message, then the save question
    const SaveResult r = SaveRetailSale();
    EXPECT_EQ(r.outcome, c.answer.ch == kNo.ch ? SaveOutcome::kGivenUp : SaveOutcome::kSaved);
    const std::string screen = ScreenBytes().substr(seen);
    const auto asked = screen.find("Czy pomimo braku mo");
    ASSERT_NE(asked, std::string::npos);
    EXPECT_EQ(screen.find("Czy pomimo braku mo", asked + 1), std::string::npos);  // asked once
    for (const std::string& l : posnet_->Journal()) EXPECT_NE(l.rfind("TOTAL", 0), 0u);
    EXPECT_EQ(Scalar("SELECT string_agg(czy_gotowkowy, '') FROM DANE_1_NAGLOWKI" + kNotFixture), c.headers);
    EXPECT_EQ(Scalar("SELECT count(*) FROM " + std::string(PGSqlName(WorkTablePath(kUser)).Str())), c.workLines);
  }
}
