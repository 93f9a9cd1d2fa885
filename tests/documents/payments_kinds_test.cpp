// Payment kinds of every contractor letter and sign, texts with Polish
// letters through the database, the goods documents offered by their typed
// number, the list of related documents and the change at the till.
#include <string>
#include <vector>

#include "payments_fixture.h"
#include "print/keyscript.h"

namespace {

TEST(PaymentRules, ChangeAtTheTill) {
  struct Case {
    Real paid, total, change;
  };
  for (const Case& c : std::vector<Case>{{50, 37.21L, 12.79L},
                                         {37.21L, 37.21L, 0},
                                         {20, 37.21L, -17.21L},  // too little: what is still missing
                                         {100.005L, 0, 100.01L},
                                         {0, 0, 0}})
    EXPECT_EQ(ChangeDue(c.paid, c.total), RoundMoney(c.change)) << static_cast<double>(c.paid);
}

TEST_F(PaymentsTest, SourcesByTypedNumber) {
  Header(2, 5, 10, 7);
  Header(6, 5, 20, 3);
  Header(2, 6, 30, 7);
  struct Case {
    int year;
    int32_t number;
    std::string kindsAndTotals;
  };
  for (const Case& c : std::vector<Case>{{2024, 5, "2:10,6:20,"}, {2024, 0, "2:10,2:30,6:20,"}, {2024, 7, ""},
                                         {2023, 5, ""}, {1990, 5, ""}, {2024, kDocMaxNumber + 1, ""}}) {
    std::string found;
    for (const SourceCandidate& d : SourceCandidates(kWarehouse, c.year, c.number, 255))
      found += std::to_string(d.key.kind) + ":" + std::to_string(static_cast<int>(d.total)) + ",";
    EXPECT_EQ(found, c.kindsAndTotals) << c.year << "/" << c.number;
  }
}

// Texts go to the database in its LATIN2 and come back as they were, by the
// record buffer (a new payment) and by a statement (a changed one).
TEST_F(PaymentsTest, PolishLettersSurviveWritingChangingAndReading) {
  const DocRef inv = Header(2, 1, 50, 7);
  ASSERT_TRUE(Psql("UPDATE DANE_DOK_PLAT SET nazwa='Wpłata gotówki' WHERE typ_dok=" + std::to_string(kKP)));
  ASSERT_TRUE(Psql("UPDATE DANE_1_NAGLOWKI SET nazwa_kontrahenta='Żółw i Syn'"));
  PaymentRow row = NewPaymentRow(kKP, ReadKindRow(kKP), inv, ReadSource(kWarehouse, inv), Day(2024, 3, 5), 20);
  row.comment = "zaliczka łączna"_mz;
  ASSERT_EQ(SavePayment(kWarehouse, row, Settings()), PaymentResult::kDone);
  EXPECT_EQ(Scalar("SELECT opis_typ_dok||'|'||nazwa_kontrahenta||'|'||komentarz FROM DANE_1_KASA____"),
            "Wpłata |Żółw i Syn|zaliczka łączna");
  row.comment = "dopłata źródłowa"_mz;
  ASSERT_EQ(UpdatePayment(kWarehouse, row), PaymentResult::kDone);
  PaymentRow back;
  ASSERT_TRUE(ReadPayment(kWarehouse, row.key, back));
  EXPECT_EQ(back.comment, "dopłata źródłowa"_mz);
  EXPECT_EQ(back.contractorName, "Żółw i Syn"_mz);
  EXPECT_EQ(Scalar("SELECT komentarz FROM DANE_1_KASA____"), "dopłata źródłowa");
}


// Every letter of contractor with both signs: money from a customer lowers
// what he owes, money to him raises it; money to a supplier lowers what the
// firm owes him, money from him raises it. A kind never settles a document
// of the other side.
TEST_F(PaymentsTest, EveryKindOfPaymentMovesItsDocumentsBalanceItsOwnWay) {
  ASSERT_TRUE(Psql("INSERT INTO DANE_DOK_PLAT (typ_dok,nazwa,typ_kontrahenta,konto,konto_przeciwstawne,czy_przychod,"
                   "znak_dok,zablokowany,druk_dodatkowy,instrukcja_ksieg,rezerwa) VALUES "
                   "(104,'Zwrot gotówki','O','','100','N','ZO','N','N','',0),"
                   "(105,'Przelew od dostawcy','d','','130','T','PD','N','N','',0),"
                   "(106,'Wewn. przychód','w','','100','T','WP','N','N','',0),"
                   "(107,'Wewn. rozchód dost.','w','','100','N','WR','N','N','',0),"
                   "(108,'Odsetki zapłacone','W','','100','T','OD','N','N','',0)"));
  struct Case {
    int16_t kind;
    char letter, income;
  };
  const Real total = 100, paid = 30.15L;
  int n = 0;
  for (const Case& c : std::vector<Case>{{kKP, 'O', 'T'},
                                         {104, 'O', 'N'},
                                         {kRefund, 'W', 'N'},
                                         {108, 'W', 'T'},
                                         {kKW, 'd', 'N'},
                                         {105, 'd', 'T'},
                                         {106, 'w', 'T'},
                                         {107, 'w', 'N'}}) {
    const bool customer = c.letter == 'O' || c.letter == 'W';
    const int16_t own = customer ? 2 : 6, other = customer ? 6 : 2;
    const KindRow row = ReadKindRow(c.kind);
    ASSERT_TRUE(row.found) << c.kind;
    EXPECT_EQ(row.contractorLetter, c.letter) << c.kind;
    EXPECT_TRUE(PaymentFitsDocument(row.contractorLetter, own, ReadKindRow(own).contractorLetter)) << c.kind;
    EXPECT_FALSE(PaymentFitsDocument(row.contractorLetter, other, ReadKindRow(other).contractorLetter)) << c.kind;
    const DocRef doc = Header(own, ++n, total, customer ? 7 : 3);
    ASSERT_EQ(Pay(c.kind, doc, paid), PaymentResult::kDone) << c.kind;
    const bool settles = (c.income == 'T') == customer;
    EXPECT_EQ(BalanceOf(doc), RoundMoney(settles ? total - paid : total + paid)) << c.kind;
  }
}


// The list of related documents holds the correction and the payments to
// the root and to the correction, and ends with the chain's balance.
TEST_F(PaymentsTest, RelatedDocumentsOfAChainAndItsBalance) {
  const Real total = 100, correction = 10, toRoot = 40, toCorrection = 20.5L;
  const DocRef inv = Header(2, 1, total, 7);
  const DocRef cor = Header(3, 2, correction, 7, 0, inv);
  ASSERT_EQ(Pay(kKP, inv, toRoot), PaymentResult::kDone);
  ASSERT_EQ(Pay(kKP, cor, toCorrection), PaymentResult::kDone);
  keyscript::Begin();  // the list's screen kept, then Esc
  ListRelatedDocuments(kWarehouse, cor, Settings());
  keyscript::End();
  const std::string shown = keyscript::gScreens.at(0);
  char balance[40];
  std::snprintf(balance, sizeof balance, "Bilans dokumentu: %.2Lf", total - correction - toRoot - toCorrection);
  EXPECT_NE(shown.find(balance), std::string::npos) << shown;
  for (const char* line : {"       3|            2|", "     101|            1|", "     101|            2|"})
    EXPECT_NE(shown.find(line), std::string::npos) << line << "\n" << shown;
}

}  // namespace
