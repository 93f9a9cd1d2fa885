// The cash day summary over two warehouses and two days, and the deposit-mark
// check with one document per disagreement, on the real database.
#include <gtest/gtest.h>

#include <map>

#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "docfixture.h"
#include "reports/cashanalysis.h"

namespace {

struct CashEntry {
  int32_t warehouse;
  int16_t kind;  // 100 and above a payment; 1 or 2 a goods header
  int32_t date;
  Real amount;
  const char* payment;  // form of payment of a goods header (UTF-8)
};

class CashAnalysisTest : public DocumentsTest {
 protected:
  void SetUp() override {
    DocumentsTest::SetUp();
    AddWarehouse(1, "Sklep");
    AddWarehouse(2, "Hurtownia");
    ASSERT_TRUE(Psql("INSERT INTO DANE_DOK_PLAT (typ_dok,nazwa,typ_kontrahenta,czy_przychod) VALUES "
                     "(101,'KP','O','T'),(102,'Zwrot','W','N'),(103,'KW','d','N')"));
  }
  // A payment row, or a goods header with its form of payment, written by
  // another client (psql), as any program of the firm may write them.
  void Write(const CashEntry& e, int32_t number) {
    const bool payment = e.kind >= 100;
    ASSERT_TRUE(Psql("INSERT INTO DANE_" + std::to_string(e.warehouse) + (payment ? "_KASA____" : "_NAGLOWKI") +
                     " (typ_dok,nr_dok,znak_dok,data_dok,suma_dok" + (payment ? "" : ",sposob_rozlicz") +
                     ") VALUES (" + std::to_string(e.kind) + "," + std::to_string(number) + ",'K',DATE '1899-12-30'+" +
                     std::to_string(e.date) + "," + std::to_string(static_cast<double>(e.amount)) +
                     (payment ? "" : ",'" + std::string(e.payment) + "'") + ")"));
  }
};

constexpr const char* kCash = " gotówką";

// What the day summary must count: payments by their kind's sign, kind 1
// paid in cash; a kind 1 paid otherwise, a cash invoice and days outside the
// period stay out.
bool Counts(const CashEntry& e, int32_t from, int32_t to) {
  if (e.date < from || e.date > to) return false;
  return e.kind >= 100 || (e.kind == 1 && std::string(e.payment) == kCash);
}

TEST_F(CashAnalysisTest, DayTotalsIncomeExpenseAndClosingBalance) {
  const int32_t d1 = Day(2026, 3, 2), d2 = Day(2026, 3, 3), before = Day(2026, 3, 1), after = Day(2026, 3, 4);
  const std::vector<CashEntry> entries = {
      {1, 101, d1, 100.10L, ""},  {1, 103, d1, 40.25L, ""},    {1, 1, d1, 12.34L, kCash},
      {1, 1, d1, 99, " przelewem"}, {1, 2, d1, 77, kCash}, {2, 102, d1, 5.5L, ""},
      {2, 101, d2, 60, ""},       {2, 1, d2, 8.01L, kCash}, {1, 103, d2, 1000, ""},
      {1, 101, before, 500, ""},  {2, 1, after, 300, kCash}};
  for (std::size_t i = 0; i < entries.size(); ++i) Write(entries[i], static_cast<int32_t>(i + 1));

  for (bool split : {false, true}) {
    SCOPED_TRACE(split ? "split" : "summed");
    CashParams p;
    p.from = d1;
    p.to = d2;
    p.warehouses = {1, 2, 9};  // 9 has no tables
    p.splitByWarehouse = split;
    p.symbol = "RK/7";
    p.opening = 250.5L;
    std::map<std::pair<int32_t, int32_t>, std::pair<Real, Real>> expected;
    Real income = 0, expense = 0;
    for (const CashEntry& e : entries) {
      if (!Counts(e, d1, d2)) continue;
      const bool out = e.kind == 102 || e.kind == 103;
      auto& day = expected[{split ? e.warehouse : 0, e.date}];
      (out ? day.second : day.first) += e.amount;
      (out ? expense : income) += e.amount;
    }
    const std::vector<CashDay> days = ReadCashDays(p);
    ASSERT_EQ(days.size(), expected.size());
    std::size_t i = 0;
    for (const auto& [key, sums] : expected) {
      EXPECT_EQ(days[i].warehouse, key.first);
      EXPECT_EQ(days[i].date, key.second);
      ExpectNear(days[i].income, sums.first, "income");
      ExpectNear(days[i].expense, sums.second, "expense");
      ++i;
    }
    const CashTotals t = SumCashDays(days, p.opening);
    ExpectNear(t.income, income, "total income");
    ExpectNear(t.expense, expense, "total expense");
    ExpectNear(t.closing, p.opening + income - expense, "closing");
    const std::string report = FormatCashReport(p, days, 60);
    EXPECT_NE(report.find("RK/7"), std::string::npos);
    const ShortText closing = FormatMoneyRounded(15, 2, p.opening + income - expense);
    EXPECT_NE(report.find(std::string("Stan końcowy kasy:"_mz.View()) + std::string(28, ' ') +
                          std::string(closing.View()) + "\r\n"),
              std::string::npos)
        << report;
  }
}

TEST_F(CashAnalysisTest, DepositCheckNamesEachDisagreement) {
  AddItem(1, "Mleko", 100, 2);
  AddWarehouse(9, "Bez tabel");  // listed, its tables never made: passed over
  struct Case {
    const char* header;            // czy_depozyt
    std::vector<Real> onDeposit;   // ilosc_w_depozycie of each line
    DepositFault fault;
    const char* text;
  };
  const std::vector<Case> cases = {
      {"T", {}, DepositFault::kHeaderWithoutLines, "d.depozyt, specyfik - nie dep."},
      {"T", {0, 0}, DepositFault::kNoLineMarked,
       "w nag. jest oznaczenie dep., brak jakiegokolwiek ozn.dep.w calej specyfik."},
      {"T", {2, 0}, DepositFault::kSomeLinesUnmarked, "brak niekt.oznaczen dep.w specyfik."},
      {"N", {0, 1}, DepositFault::kHeaderUnmarked, "brak oznaczenia dep.w nagl. i specyfik."},
      {"T", {1, 3}, DepositFault::kNone, ""},
      {"N", {0, 0}, DepositFault::kNone, ""}};
  const int32_t date = Day(2026, 4, 1);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const int32_t number = static_cast<int32_t>(i + 1);
    std::vector<SavedLine> lines;
    for (Real q : cases[i].onDeposit) lines.push_back({2, 14, date, 1, 5, 0, 0, 0, 0, q});
    if (lines.empty())
      Write({2, 14, date, 0, ""}, number);
    else
      SaveDocument(number, lines);
    ASSERT_TRUE(Psql(std::string("UPDATE DANE_2_NAGLOWKI SET czy_depozyt='") + cases[i].header +
                     "' WHERE nr_dok=" + std::to_string(number)));
  }
  const std::vector<DepositFinding> found = CheckDepositMarks();
  std::vector<DepositFinding> expected;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    if (cases[i].fault == DepositFault::kNone) continue;
    EXPECT_EQ(DepositFaultText(cases[i].fault), ShortText(cases[i].text));
    expected.push_back({2, 14, static_cast<int32_t>(i + 1), "A", date, cases[i].fault});
  }
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i].warehouse, expected[i].warehouse);
    EXPECT_EQ(found[i].coded, expected[i].coded);
    EXPECT_EQ(found[i].fault, expected[i].fault) << i;
  }
  EXPECT_NE(FormatDepositReport(found, 60).find("brak niekt.oznaczen dep.w specyfik."), std::string::npos);
}

}  // namespace
