// Balances of documents and contractors after partial payments,
// overpayments, corrections and changed payments; deposit settlement. The
// expected values are computed here from the amounts the test writes.
#include <vector>

#include "payments_fixture.h"

namespace {

TEST(PaymentRules, SignsRootsAndContractorLetters) {
  EXPECT_EQ(BalanceOfEntries(1, {{1, 100, false}, {-1, 10, false}, {1, 30.005L, true}}), RoundMoney(59.995L));
  EXPECT_EQ(BalanceOfEntries(-1, {{-1, 500, false}, {-1, 200, true}}), 300);  // a purchase paid in part
  for (int k : {2, 4, 6, 7, 16}) EXPECT_TRUE(IsRootKind(k)) << k;
  for (int k : {1, 3, 5, 14, 15, 18}) EXPECT_FALSE(IsRootKind(k)) << k;
  for (int k : {12, 15, 18, 0, 19}) EXPECT_FALSE(IsLinkableKind(k)) << k;
  EXPECT_FALSE(PaymentFitsDocument('O', 15, 'O'));  // transfers name warehouses
  EXPECT_TRUE(ProposedDepositMark(3, 14));
  EXPECT_FALSE(ProposedDepositMark(3, 16));
  EXPECT_FALSE(ProposedDepositMark(2, 14));
  int16_t kinds[5];
  ParseAutoKinds(ShortText("101,0,x,105"), kinds);
  EXPECT_EQ(std::vector<int16_t>(kinds, kinds + 5), (std::vector<int16_t>{101, 0, 0, 105, 0}));
}

TEST_F(PaymentsTest, ContractorBalanceIsInvoicesLessCorrectionsLessPayments) {
  struct Invoice {
    int16_t kind;
    Real total, discount, correction;
    std::vector<Real> payments;
  };
  const std::vector<Invoice> invoices = {
      {2, 1000.00L, 0, 100.00L, {300.00L, 600.00L}},  // corrected, then paid to zero
      {4, 250.50L, 0.50L, 0, {400.00L}},              // overpaid; the discount counts
      {2, 99.99L, 0, 0, {0.01L, 33.33L}},             // partial
      {2, 10.00L, 0, 0, {}},                          // unpaid
  };
  Real expected = 0;
  int n = 0;
  for (const Invoice& inv : invoices) {
    const DocRef doc = Header(inv.kind, ++n, inv.total, 7, inv.discount);
    if (inv.correction) Header(3, ++n, inv.correction, 7, 0, doc);
    Real owed = inv.total - inv.discount - inv.correction;
    for (Real p : inv.payments) {
      ASSERT_EQ(Pay(kKP, doc, p), PaymentResult::kDone);
      owed -= p;
    }
    EXPECT_EQ(BalanceOf(doc), RoundMoney(owed));
    expected += owed;
  }
  Header(2, ++n, 500, 8);  // another customer's invoice
  EXPECT_EQ(ContractorBalance(kWarehouse, 'O', 7, Settings()), RoundMoney(expected));

  // A zero balance refuses a further payment, even one meant as an overpayment.
  const DocRef settled{2, Code(2024, 1), ShortText("A")};
  EXPECT_EQ(Pay(kKP, settled, 5), PaymentResult::kZeroBalance);
  // The correction is part of its root: seen from the correction the balance is the same.
  EXPECT_EQ(BalanceOf({3, Code(2024, 2), ShortText("A")}), 0);

  // A changed payment and a refund (an expense kind) move the balance by what the test expects.
  DocRef p;
  const DocRef partial{2, Code(2024, 4), ShortText("A")};
  ASSERT_EQ(Pay(kKP, partial, 50, &p), PaymentResult::kDone);
  PaymentRow row;
  ASSERT_TRUE(ReadPayment(kWarehouse, p, row));
  EXPECT_EQ(row.amount, 50);
  row.amount = 20;
  ASSERT_EQ(UpdatePayment(kWarehouse, row), PaymentResult::kDone);
  const DocRef overpaid{4, Code(2024, 3), ShortText("A")};
  ASSERT_EQ(Pay(kRefund, overpaid, 150), PaymentResult::kDone);
  expected += -20 + 150;
  EXPECT_EQ(BalanceOf(overpaid), 0);
  EXPECT_EQ(ContractorBalance(kWarehouse, 'O', 7, Settings()), RoundMoney(expected));

  // A deleted payment no longer counts; deleting it twice says it is gone.
  ASSERT_EQ(RemovePayment(kWarehouse, p), PaymentResult::kDone);
  EXPECT_EQ(RemovePayment(kWarehouse, p), PaymentResult::kPaymentGone);
  EXPECT_EQ(UpdatePayment(kWarehouse, row), PaymentResult::kPaymentGone);
  EXPECT_EQ(ContractorBalance(kWarehouse, 'O', 7, Settings()), RoundMoney(expected + 20));
}

TEST_F(PaymentsTest, PurchaseBalanceAndBrokenWalks) {
  // A purchase paid out in part: seen from the purchase, what is still owed.
  const DocRef buy = Header(6, 2, 700, 3);
  ASSERT_EQ(Pay(kKW, buy, 200), PaymentResult::kDone);
  EXPECT_EQ(BalanceOf(buy), 500);
  EXPECT_EQ(ContractorBalance(kWarehouse, 'd', 3, Settings()), 500);
  // A header without a root, a missing one and a kind outside the catalogue.
  const DocRef wz = Header(14, 3, 40, 7);
  EXPECT_FALSE(ComputeBalance(kWarehouse, wz, Settings()).found);
  EXPECT_EQ(Pay(kKP, {2, Code(2024, 99), ShortText("A")}, 5), PaymentResult::kSourceGone);
  EXPECT_FALSE(ComputeBalance(kWarehouse, {7, Code(2024, 1), ShortText("A")}, Settings()).usable);
  // A loop of references ends.
  const DocRef c1 = Header(3, 4, 1, 7, 0, {3, Code(2024, 5), ShortText("A")});
  Header(3, 5, 1, 7, 0, c1);
  EXPECT_FALSE(ComputeBalance(kWarehouse, c1, Settings()).found);
}

TEST_F(PaymentsTest, DepositsSettleOnlyAtZero) {
  const DocRef inv = Header(2, 1, 120, 7, 0, {}, true);
  Line(inv, 1, 2);
  Line(inv, 2, 3);
  const DocRef plain = Header(2, 2, 80, 7);
  EXPECT_EQ(SettleDepositChain(kWarehouse, inv, Settings()), PaymentResult::kNotZero);
  DocRef pay;
  ASSERT_EQ(Pay(kKP, inv, 120, &pay), PaymentResult::kDone);
  ASSERT_EQ(Pay(kKP, plain, 80), PaymentResult::kDone);
  EXPECT_EQ(SettleDepositChain(kWarehouse, plain, Settings()), PaymentResult::kNotDeposit);
  EXPECT_EQ(SettleDepositChain(kWarehouse, inv, Settings(), &pay), PaymentResult::kDone);
  EXPECT_EQ(Scalar("SELECT sum(ilosc_w_depozycie)::int FROM DANE_1_SPECYFIK"), "0");
  EXPECT_EQ(Scalar("SELECT czy_depozyt FROM DANE_1_NAGLOWKI WHERE nr_dok=" + std::to_string(inv.coded)), "N");

  // The menu's settlement clears every zero-balance chain of customers and leaves the rest.
  const DocRef paid = Header(2, 3, 60, 7, 0, {}, true);
  const DocRef open = Header(2, 4, 60, 9, 0, {}, true);
  Line(paid, 1, 4);
  Line(open, 1, 6);
  ASSERT_EQ(Pay(kKP, paid, 60), PaymentResult::kDone);
  ASSERT_EQ(Pay(kKP, open, 59.99L), PaymentResult::kDone);
  int settled = -1;
  EXPECT_EQ(SettleAllDeposits(kWarehouse, Settings(), settled), PaymentResult::kDone);
  EXPECT_EQ(settled, 1);
  EXPECT_EQ(Scalar("SELECT string_agg(nr_dok::text||czy_depozyt, ',' ORDER BY nr_dok) FROM DANE_1_NAGLOWKI"),
            std::to_string(Code(2024, 1)) + "N," + std::to_string(Code(2024, 2)) + "N," +
                std::to_string(Code(2024, 3)) + "N," + std::to_string(Code(2024, 4)) + "T");
  EXPECT_EQ(Scalar("SELECT sum(ilosc_w_depozycie)::int FROM DANE_1_SPECYFIK"), "6");
}

TEST_F(PaymentsTest, AutomaticPaymentOfASavedDocument) {
  PaymentSettings s;
  s.autoPayments = 1;
  ParseAutoKinds(ShortText("101,103,101,0"), s.autoKinds);
  // Paid VAT apart: position 3 written, position 4 holds 0 and writes nothing.
  const DocRef vat = Header(2, 3, 123, 7);
  EXPECT_EQ(WriteAutoPayment(kWarehouse, vat, Day(2024, 3, 1), s, 23), 1);
  EXPECT_EQ(BalanceOf(vat), 100);
  s.autoPayments = 0;
  EXPECT_EQ(WriteAutoPayment(kWarehouse, vat, Day(2024, 3, 1), s), 0);
}

}  // namespace
