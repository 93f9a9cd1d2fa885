// The save on the real server: a document's header, lines and stock as the
// test works them out from its own lines; a failure that leaves nothing; four
// real processes saving into one warehouse at once; and a saver killed in
// the middle of its save.
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "../master/items_fixture.h"
#include "base/dates.h"
#include "base/numbers.h"
#include "config/konfigur.h"
#include "documents/docsave.h"
#include "documents/payments.h"
#include "master/tables.h"
#include "sqltable/pglib.h"
#include "sqltable/sqltest.h"

namespace {

constexpr int32_t kWarehouse = 1;
constexpr int kItems = 30;
constexpr int32_t kUser = 5;
const int32_t kDate = EncodeDaySerial(2024, 3, 15);

// Item n: VAT 23, 8 or 5 by n, prices in whole grosze, opening stock 40 + n.
const char* VatOf(int n) { return n % 3 == 0 ? "23" : n % 3 == 1 ? "8" : "5"; }
Real SaleNetOf(int n) { return 1 + n * 0.37L; }
Real BuyNetOf(int n) { return 0.5L + n * 0.21L; }
int OpeningOf(int n) { return 40 + n; }

DocLine LineOf(int n, Real q) {
  DocLine l;
  l.item.number = n;
  l.item.name = ShortText("Towar " + std::to_string(n));
  l.item.vat = VatOf(n);
  l.item.saleNet = RoundHalfAway(SaleNetOf(n) * 100) / 100;
  l.item.saleGross = l.item.saleNet;
  l.item.buyNet = RoundHalfAway(BuyNetOf(n) * 100) / 100;
  l.item.supplier = 1;
  l.quantity = q;
  return l;
}

DocumentHeader HeaderOf(int kind, const std::string& comment) {
  DocumentHeader h;
  h.kind = static_cast<int16_t>(kind);
  h.mark = "A";
  h.date = kDate;
  h.operatorNumber = kUser;
  h.comment = ShortText(comment);
  return h;
}

// Every save of these tests: plain numbering, VAT from net, no right below zero.
SaveSettings Plain() { return SaveSettings{}; }

// Runs SQL through the fixture; the server's message on failure.
#define SQL(statement)                               \
  do {                                               \
    std::string out_;                                \
    ASSERT_TRUE(Psql(statement, &out_)) << out_;     \
  } while (0)

class SaveDbTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
    for (int n = 1; n <= kItems; ++n) {
      ItemData item = LineOf(n, 0).item;
      item.saleGross = RoundHalfAway(item.saleNet * 110) / 100;
      item.number = 0;
      item.supplier = 1;
      item.unit = "szt";
      // The last item has no stock row.
      ASSERT_EQ(AddItemRow(item, OpeningOf(n), n == kItems ? 0 : kWarehouse), n);
    }
  }
  static Real Stock(int n) {
    return std::strtold(Scalar("SELECT COALESCE((SELECT ilosc FROM DANE_1_STANY_MG WHERE nr_wewn=" + std::to_string(n) +
                               "),0)").c_str(), nullptr);
  }
  // The stock that the documents' lines as written give: opening plus receipts less issues.
  static std::string StockFromLines() {
    return Scalar(
        "SELECT string_agg(n || ':' || (o + COALESCE(e,0))::numeric(20,2), ',' ORDER BY n) FROM "
        "(SELECT K.nr_wewn n, COALESCE(S0.o,0) o, "
        " (SELECT sum(CASE WHEN L.typ_dok IN (6,7,3,5,10,11,12,18) THEN L.ilosc ELSE -L.ilosc END) "
        "  FROM DANE_1_SPECYFIK L WHERE L.nr_towaru=K.nr_wewn) e "
        " FROM DANE_KAT_TOW_ K LEFT JOIN opening S0 ON S0.n=K.nr_wewn) X");
  }
  static std::string StockNow() {
    return Scalar("SELECT string_agg(K.nr_wewn || ':' || COALESCE(S.ilosc,0)::numeric(20,2), ',' ORDER BY K.nr_wewn) "
                  "FROM DANE_KAT_TOW_ K LEFT JOIN DANE_1_STANY_MG S ON S.nr_wewn=K.nr_wewn");
  }
  static void KeepOpening() {
    SQL(("CREATE TABLE opening AS SELECT nr_wewn n, ilosc o FROM DANE_1_STANY_MG"));
  }
  // Totals of every header recomputed from its lines, VAT added per group to
  // rounded net lines, against suma_dok: the headers whose total differs.
  static std::string TotalsThatDiffer() {
    return Scalar(
        "WITH g AS (SELECT typ_dok,nr_dok,znak_dok,vat::int r, "
        "  sum(round(ilosc * CASE WHEN typ_dok IN (6,7,8,9) THEN c_zak_netto ELSE c_spr_netto END, 2)) net "
        "  FROM DANE_1_SPECYFIK GROUP BY 1,2,3,4), "
        "t AS (SELECT typ_dok,nr_dok,znak_dok, round(sum(net + net * r / 100), 2) total FROM g GROUP BY 1,2,3) "
        "SELECT count(*) FROM DANE_1_NAGLOWKI H LEFT JOIN t USING (typ_dok,nr_dok,znak_dok) "
        "WHERE H.suma_dok IS DISTINCT FROM COALESCE(t.total,0)");
  }
};

TEST_F(SaveDbTest, ASaleAndAPurchaseWriteHeaderLinesAndStock) {
  KeepOpening();
  ASSERT_EQ(WorkTableEnsure(kUser), 0);
  const ShortText work = WorkTablePath(kUser);
  // Item 3 twice, a line of quantity 0 that is left out, and an item without a stock row.
  for (DocLine l : {LineOf(3, 2), LineOf(7, 1), LineOf(3, 4), LineOf(9, 0)}) ASSERT_EQ(WorkLineAppend(work, l), 0);
  std::vector<DocLine> lines;
  ASSERT_EQ(WorkLinesRead(work, lines), 0);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[2].item.name, ShortText("Towar 3"));
  EXPECT_GT(lines[1].rowId, lines[0].rowId);

  DocumentHeader sale = HeaderOf(2, "sprzedaż");
  SaveResult r;
  ASSERT_EQ(SaveDocument(kWarehouse, sale, lines, Plain(), r), 0) << PGLastOp.Str();
  ASSERT_EQ(r.outcome, SaveOutcome::kSaved);
  EXPECT_EQ(r.lines, 3);
  EXPECT_EQ(r.coded, EncodeDocNumber(2024, 1));
  const Real net3 = LineOf(3, 1).item.saleNet, net7 = LineOf(7, 1).item.saleNet;
  const Real expected = RoundHalfAway((6 * net3 * 1.23L + net7 * 1.08L) * 100) / 100;
  EXPECT_EQ(r.totals.total, expected);
  EXPECT_EQ(Scalar("SELECT typ_dok||'/'||nr_dok||'/'||znak_dok||'/'||data_dok||'/'||zablokowany||'/'||sposob_rozlicz "
                   "FROM DANE_1_NAGLOWKI"),
            "2/" + std::to_string(EncodeDocNumber(2024, 1)) + "/A/2024-03-15/N/ gotówką");
  EXPECT_EQ(Scalar("SELECT string_agg(pozycja||':'||nr_towaru||':'||ilosc::numeric(9,1), ',' ORDER BY pozycja) "
                   "FROM DANE_1_SPECYFIK"),
            "1:3:2.0,2:7:1.0,3:3:4.0");
  EXPECT_EQ(Stock(3), OpeningOf(3) - 6);
  EXPECT_EQ(Stock(7), OpeningOf(7) - 1);

  DocumentHeader purchase = HeaderOf(6, "zakup");
  ASSERT_EQ(SaveDocument(kWarehouse, purchase, {LineOf(kItems, 5), LineOf(3, 10)}, Plain(), r), 0);
  EXPECT_EQ(r.coded, EncodeDocNumber(2024, 1));  // a series of its own
  EXPECT_EQ(Stock(kItems), 5);                   // a new stock row
  EXPECT_EQ(Stock(3), OpeningOf(3) + 4);
  EXPECT_EQ(Scalar("SELECT csn FROM DANE_1_STANY_MG WHERE nr_wewn=" + std::to_string(kItems)),
            Scalar("SELECT cena_s_n FROM DANE_KAT_TOW_ WHERE nr_wewn=" + std::to_string(kItems)));
  EXPECT_EQ(StockNow(), StockFromLines());
  EXPECT_EQ(TotalsThatDiffer(), "0");
  DocumentTotals again;
  ASSERT_EQ(ComputeSavedTotals(kWarehouse, 2, sale.coded, sale.mark, 0, again), 0);
  EXPECT_EQ(again.total, expected);
  EXPECT_NE(Scalar("SELECT il_zm FROM tables_list WHERE nazt='DANE_1_STANY_MG' AND lp=1"), "0");
}

TEST_F(SaveDbTest, IssuesWithoutTheRightAreCutToStockAndAllCutIsTotalZero) {
  SaveResult r;
  DocumentHeader h = HeaderOf(14, "");
  const int all = OpeningOf(4);
  ASSERT_EQ(SaveDocument(kWarehouse, h, {LineOf(4, all - 1), LineOf(4, 5), LineOf(kItems, 2)}, Plain(), r), 0);
  EXPECT_TRUE(r.reduced);
  EXPECT_EQ(Stock(4), 0);
  EXPECT_EQ(Scalar("SELECT string_agg(ilosc::numeric(9,1)::text, ',' ORDER BY pozycja) FROM DANE_1_SPECYFIK"),
            std::to_string(all - 1) + ".0,1.0,0.0");
  // Now nothing is left: every line becomes 0 and the document is worth nothing.
  DocumentHeader again = HeaderOf(14, "");
  ASSERT_EQ(SaveDocument(kWarehouse, again, {LineOf(4, 3)}, Plain(), r), 0);
  EXPECT_EQ(r.outcome, SaveOutcome::kSaved);
  EXPECT_EQ(r.totals.total, 0);
  EXPECT_NE(r.totalBeforeReduction, 0);
  // With the right the stock goes below zero, a missing row too.
  SaveSettings right;
  right.mayGoBelowZero = true;
  DocumentHeader third = HeaderOf(14, "");
  ASSERT_EQ(SaveDocument(kWarehouse, third, {LineOf(4, 3), LineOf(kItems, 2)}, right, r), 0);
  EXPECT_EQ(Stock(4), -3);
  EXPECT_EQ(Stock(kItems), -2);
  EXPECT_FALSE(r.reduced);
  // An empty line list saves nothing.
  ASSERT_EQ(SaveDocument(kWarehouse, third, {LineOf(4, 0)}, right, r), 0);
  EXPECT_EQ(r.outcome, SaveOutcome::kNoLines);
}

TEST_F(SaveDbTest, AFailureAfterTheHeaderLeavesNothing) {
  KeepOpening();
  const std::string before = StockNow();
  DocumentHeader h = HeaderOf(6, "");
  SaveResult r;
  // The second line's quantity fits no column: the lines' statement fails after header and stock.
  EXPECT_NE(SaveDocument(kWarehouse, h, {LineOf(2, 3), LineOf(5, 1e22L)}, Plain(), r), 0);
  EXPECT_EQ(PGTransDepth, 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_SPECYFIK"), "0");
  EXPECT_EQ(StockNow(), before);
  // The next save goes on normally, with the first number.
  ASSERT_EQ(SaveDocument(kWarehouse, h, {LineOf(2, 3)}, Plain(), r), 0);
  EXPECT_EQ(r.coded, EncodeDocNumber(2024, 1));
}

// Automatic payments on: customers' documents are paid under kind 101 and
// suppliers' under 103, positions 1 and 2 of the configured list.
class AutoPaymentTest : public SaveDbTest {
 protected:
  void SetUp() override {
    SaveDbTest::SetUp();
    saved_ = ConfigSettings();
    ConfigSettings().SetNumber(kConfigLineAutoPayments, 1);
    ConfigSettings().SetText(kConfigLinePaymentKinds, "101,103,0,0,0");
    SQL(("INSERT INTO DANE_DOK_PLAT (typ_dok,nazwa,typ_kontrahenta,konto,konto_przeciwstawne,czy_przychod,znak_dok,"
         "zablokowany,druk_dodatkowy,instrukcja_ksieg,rezerwa) VALUES (2,'Faktura','O','','','T','A','N','N','',0),"
         "(6,'Zakup','d','','','N','A','N','N','',0),(14,'WZ','O','','','T','A','N','N','',0),(101,'KP','O','','100','T','KP','N','N','',0),"
         "(103,'KW','d','','100','N','KW','N','N','',0)"));
  }
  void TearDown() override {
    ConfigSettings() = saved_;
    SaveDbTest::TearDown();
  }
  // The document's total in grosze, worked out here: net lines at whole-grosz
  // prices, each with its rate added, the sum rounded half up.
  static int64_t TotalGrosz(const std::vector<std::pair<int, int>>& lines, bool purchase) {
    int64_t hundredths = 0;
    for (auto [n, q] : lines) {
      const DocLine l = LineOf(n, q);
      const int64_t net = std::llround((purchase ? l.item.buyNet : l.item.saleNet) * 100) * q;
      hundredths += net * (100 + std::atoi(VatOf(n)));
    }
    return (hundredths + 50) / 100;
  }
  static std::string PaymentsOf(int kind, int32_t coded) {
    return Scalar("SELECT string_agg(typ_dok || ':' || (suma_dok*100)::bigint, ',') FROM DANE_1_KASA____ WHERE "
                  "typ_dok_zrodl=" + std::to_string(kind) + " AND nr_dok_zrodl=" + std::to_string(coded));
  }
  ConfigValues saved_;
};

TEST_F(AutoPaymentTest, ASavedDocumentIsPaidInItsOwnSave) {
  // common: every document numbered for the firm, the payment's number registered with the invoice's.
  struct Case { int kind; bool on; const char* paidUnder; int common = 0; };
  const std::vector<std::pair<int, int>> lines = {{3, 2}, {7, 1}, {8, 5}, {3, 1}};
  for (const Case& c : {Case{2, true, "101", 2}, Case{2, true, "101"}, Case{6, true, "103"}, Case{2, false, ""}}) {
    SCOPED_TRACE(c.kind);
    ConfigSettings().SetNumber(kConfigLineAutoPayments, c.on ? 1 : 0);
    ConfigSettings().SetNumber(kConfigLineCommonNumbering, c.common);
    SaveSettings settings = Plain();
    settings.numbering = NumberingSettingsFrom(c.common, 0);
    std::vector<DocLine> docLines;
    for (auto [n, q] : lines) docLines.push_back(LineOf(n, q));
    DocumentHeader h = HeaderOf(c.kind, "zapłacony");
    SaveResult r;
    ASSERT_EQ(SaveDocument(kWarehouse, h, docLines, settings, r), 0) << PGLastOp.Str();
    ASSERT_EQ(r.outcome, SaveOutcome::kSaved);
    const int64_t total = TotalGrosz(lines, c.kind == 6);
    EXPECT_EQ(std::llround(r.totals.total * 100), total);
    EXPECT_EQ(PaymentsOf(c.kind, r.coded), c.on ? std::string(c.paidUnder) + ":" + std::to_string(total) : "");
    if (c.common) {
      EXPECT_EQ(Scalar("SELECT string_agg(typ_dok::text, ',' ORDER BY typ_dok) FROM DANE_NAGLOWKI"), "2,101");
    }
  }
  EXPECT_EQ(PGTransDepth, 0);
}

TEST_F(AutoPaymentTest, APaymentThatCannotBeWrittenRollsTheSaveBack) {
  KeepOpening();
  const std::string before = StockNow();
  // The payments' series of 2024 is full: no number is left for the payment.
  SQL(("INSERT INTO DANE_1_KASA____ (typ_dok,nr_dok,znak_dok,data_dok) VALUES (101," +
       std::to_string(EncodeDocNumber(2024, kDocMaxNumber)) + ",'KP','2024-03-01')"));
  DocumentHeader h = HeaderOf(2, "");
  SaveResult r;
  EXPECT_NE(SaveDocument(kWarehouse, h, {LineOf(2, 3)}, Plain(), r), 0);
  EXPECT_EQ(PGTransDepth, 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_SPECYFIK"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_KASA____"), "1");
  EXPECT_EQ(StockNow(), before);
}

// A saver: 100 documents of 1..20 lines on the shared items, sales,
// purchases and issues mixed; each result "kind coded total" on a line of out.
[[noreturn]] void Saver(int seed, const std::string& out) {
  ConnectChild();
  std::mt19937 rng(static_cast<unsigned>(seed));
  std::ofstream file(out);
  const int kinds[] = {2, 6, 14};
  for (int d = 0; d < 100; ++d) {
    std::vector<DocLine> lines;
    const int count = 1 + static_cast<int>(rng() % 20);
    for (int i = 0; i < count; ++i) lines.push_back(LineOf(1 + static_cast<int>(rng() % kItems), 1 + rng() % 5));
    DocumentHeader h = HeaderOf(kinds[rng() % 3], "p" + std::to_string(seed));
    SaveResult r;
    if (SaveDocument(kWarehouse, h, lines, Plain(), r) != 0 || r.outcome != SaveOutcome::kSaved) _exit(4);
    file << h.kind << ' ' << r.coded << ' ' << RoundHalfAway(r.totals.total * 100) << '\n';
  }
  file.close();
  _exit(0);
}

// With automatic payments on, so that the payments' lock nests in every save.
TEST_F(AutoPaymentTest, FourProcessesSaveIntoOneWarehouse) {
  KeepOpening();
  std::vector<pid_t> savers;
  for (int p = 0; p < 4; ++p) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) Saver(100 + p, "saver" + std::to_string(p) + ".txt");
    savers.push_back(pid);
  }
  for (pid_t pid : savers) EXPECT_EQ(ExitStatus(pid), 0);
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI"), "400");
  // Every kind's numbers are 1..n of 2024, each once.
  EXPECT_EQ(Scalar("SELECT count(*) FROM (SELECT typ_dok, count(*) c, count(DISTINCT nr_dok) d, "
                   "max(nr_dok) - " + std::to_string(EncodeDocNumber(2024, 0)) + " m FROM DANE_1_NAGLOWKI GROUP BY 1) X "
                   "WHERE c <> d OR c <> m"),
            "0");
  EXPECT_EQ(StockNow(), StockFromLines());
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_STANY_MG WHERE ilosc < 0"), "0");
  EXPECT_EQ(TotalsThatDiffer(), "0");
  // Every document of a value is paid once, by its total, customers' under 101 and suppliers' under 103,
  // and each payment kind's numbers are 1..n.
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI H FULL JOIN DANE_1_KASA____ K ON K.typ_dok_zrodl=H.typ_dok "
                   "AND K.nr_dok_zrodl=H.nr_dok AND K.znak_dok_zrodl=H.znak_dok WHERE H.suma_dok<>0 AND "
                   "(K.suma_dok IS DISTINCT FROM H.suma_dok OR K.typ_dok <> CASE H.typ_dok WHEN 6 THEN 103 ELSE 101 END) "
                   "OR H.typ_dok IS NULL OR (H.suma_dok=0 AND K.typ_dok IS NOT NULL)"),
            "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM (SELECT typ_dok, count(*) c, max(nr_dok) - " +
                   std::to_string(EncodeDocNumber(2024, 0)) + " m FROM DANE_1_KASA____ GROUP BY 1) X WHERE c <> m"),
            "0");
  // What each saver was told matches the header it wrote.
  int told = 0;
  for (int p = 0; p < 4; ++p) {
    std::ifstream in("saver" + std::to_string(p) + ".txt");
    for (int kind, coded; in >> kind >> coded;) {
      long long grosze = 0;
      in >> grosze;
      ++told;
      EXPECT_EQ(Scalar("SELECT (suma_dok*100)::bigint FROM DANE_1_NAGLOWKI WHERE typ_dok=" + std::to_string(kind) +
                       " AND nr_dok=" + std::to_string(coded)),
                std::to_string(grosze));
    }
    std::remove(("saver" + std::to_string(p) + ".txt").c_str());
  }
  EXPECT_EQ(told, 400);
}

TEST_F(SaveDbTest, ASaverKilledInTheMiddleLeavesNoTrace) {
  KeepOpening();
  // The lines' insert waits on an advisory lock that this process holds, so
  // the saver stands after its header and stock writes when it is killed.
  SQL(("CREATE FUNCTION hold() RETURNS trigger AS $$ BEGIN PERFORM pg_advisory_xact_lock(42); "
                   "RETURN NEW; END $$ LANGUAGE plpgsql; CREATE TRIGGER hold BEFORE INSERT ON DANE_1_SPECYFIK "
                   "FOR EACH ROW EXECUTE FUNCTION hold()"));
  PGResult res;
  ASSERT_EQ(PGTransBegin(), 0);
  ASSERT_EQ(PGRunQueryWithTup("SELECT pg_advisory_xact_lock(42)", res), 0);
  const std::string before = StockNow();
  const pid_t pid = fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    ConnectChild();
    DocumentHeader h = HeaderOf(2, "zabity");
    SaveResult r;
    (void)SaveDocument(kWarehouse, h, {LineOf(1, 2), LineOf(2, 3)}, Plain(), r);
    _exit(0);
  }
  bool waiting = false;
  for (int i = 0; i < 500 && !waiting; ++i) {
    ASSERT_EQ(PGRunQueryWithTup("SELECT count(*) FROM pg_locks WHERE locktype='advisory' AND NOT granted", res), 0);
    waiting = res.Value(0, 0) != "0";
    if (!waiting) usleep(20000);
  }
  ASSERT_TRUE(waiting);
  ASSERT_EQ(kill(pid, SIGKILL), 0);
  EXPECT_EQ(ExitStatus(pid), -1);
  ASSERT_EQ(PGTransCommit(), 0);  // lets the orphaned statement end; its transaction cannot commit
  std::string left = "1";
  for (int i = 0; i < 500 && left != "0"; ++i) {
    left = Scalar("SELECT count(*) FROM pg_stat_activity WHERE state <> 'idle' AND query LIKE 'INSERT INTO DANE_1_SPECYFIK%'");
    if (left != "0") usleep(20000);
  }
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_SPECYFIK"), "0");
  EXPECT_EQ(StockNow(), before);
  // A whole save after it takes the first number.
  DocumentHeader h = HeaderOf(2, "");
  SaveResult r;
  SQL(("DROP TRIGGER hold ON DANE_1_SPECYFIK"));
  ASSERT_EQ(SaveDocument(kWarehouse, h, {LineOf(1, 2)}, Plain(), r), 0);
  EXPECT_EQ(r.coded, EncodeDocNumber(2024, 1));
  EXPECT_EQ(StockNow(), StockFromLines());
}

}  // namespace
