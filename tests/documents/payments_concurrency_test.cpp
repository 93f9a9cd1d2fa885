// Payments entered and deleted by several real processes, each with its own
// connection as operators have.
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "payments_fixture.h"
#include "tui/keyboard.h"
#include "tui/screen.h"

namespace {

class PaymentRaceTest : public PaymentsTest {};

TEST_F(PaymentRaceTest, OperatorsPayingTheSameInvoiceCannotBothSettleItsLastGrosz) {
  const Real total = 250.37L, paidBefore = 100.00L;
  const DocRef inv = Header(2, 1, total, 7);
  ASSERT_EQ(Pay(kKP, inv, paidBefore), PaymentResult::kDone);
  const Real rest = total - paidBefore;
  constexpr int kOperators = 4;
  // Each operator saw the same balance and pays all of it.
  const std::vector<int> statuses = RunOperators(kOperators, [&](int) {
    const PaymentResult r = Pay(kKP, inv, rest);
    return r == PaymentResult::kDone ? 0 : r == PaymentResult::kZeroBalance ? 1 : 2;
  });
  const auto done = std::count(statuses.begin(), statuses.end(), 0);
  const auto refused = std::count(statuses.begin(), statuses.end(), 1);
  EXPECT_EQ(done, 1);
  EXPECT_EQ(refused, kOperators - 1);
  EXPECT_EQ(BalanceOf(inv), RoundMoney(total - paidBefore - rest));
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_KASA____"), "2");
  EXPECT_EQ(Scalar("SELECT count(DISTINCT nr_dok) FROM DANE_1_KASA____"), "2");
}

// The key waits of the settlement: the first (its question) lets another
// process delete the payment, then says yes; the next (the answer) is read.
DocRef gPayment;
int gWaits = 0;
std::string gAnswer;
int gChildStatus = -1;

void DeleteMeanwhile() {
  if (++gWaits == 1) {
    const pid_t pid = fork();
    if (pid == 0) {
      ConnectChild();
      _exit(RemovePayment(1, gPayment) == PaymentResult::kDone ? 0 : 1);
    }
    gChildStatus = ExitStatus(pid);
    PushKey('T', 20);
    return;
  }
  for (int row = 1; row <= kScreenRows; ++row) gAnswer += RowText(row).Str() + "\n";
  PushKey(13, 28);
}

TEST_F(PaymentRaceTest, PaymentDeletedByAnotherProcessWhileBeingSettled) {
  const DocRef inv = Header(2, 1, 42.50L, 7, 0, {}, true);
  Line(inv, 1, 3);
  ASSERT_EQ(Pay(kKP, inv, 42.50L, &gPayment), PaymentResult::kDone);
  SetKeyIdleHook(DeleteMeanwhile);
  EXPECT_FALSE(SettleDeposit(kWarehouse, gPayment, Settings()));
  SetKeyIdleHook(nullptr);
  EXPECT_EQ(gChildStatus, 0);
  EXPECT_EQ(gWaits, 2);
  const ShortText firstLine = "Dokument został skasowany lub zmieniono mu numer."_mz;
  EXPECT_NE(gAnswer.find(firstLine.Str()), std::string::npos) << gAnswer;
  // Nothing of the chain was settled.
  EXPECT_EQ(Scalar("SELECT czy_depozyt FROM DANE_1_NAGLOWKI"), "T");
  EXPECT_EQ(Scalar("SELECT sum(ilosc_w_depozycie)::int FROM DANE_1_SPECYFIK"), "3");
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_KASA____"), "0");
}

}  // namespace
