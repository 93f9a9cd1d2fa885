// The real klote in tmux on the demo firm, from the Kasa menu: a cash
// payment for part of a demo customer's invoice found by its typed number,
// the balance left on the list of related documents, and the change at the
// till. The row in kasa____ agrees with what the test works out.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tmuxwalk.h"

namespace {

using CashWalkTest = WalkTest;

std::string Money(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

TEST_F(CashWalkTest, ACashPaymentForADemoCustomersInvoiceLeavesItsBalance) {
  ASSERT_TRUE(TmuxWalk::MakeDemoFirm(Db().home));
  // Invoice 7 of this year for customer 3; the demo firm's kinds name the invoice and the payments.
  const double total = 123.45, paid = 100, handed = 150;
  const std::string year = Value("SELECT extract(year FROM current_date)::int");
  const std::string coded = std::to_string(((std::stoi(year) - 1996) << 24) | 7);
  ASSERT_TRUE(Psql("INSERT INTO dane_1_naglowki (typ_dok,nr_dok,znak_dok,data_dok,typ_dok_zrodl,nr_dok_zrodl,"
                   "znak_dok_zrodl,suma_dok,rab_kwot,czy_depozyt,nr_kontrahenta,nazwa_kontrahenta) SELECT 2," + coded +
                   ",'A',current_date,0,0,''," + Money(total) + ",0,'N',numer,left(nazwa,17) FROM dane_odbiorcy "
                   "WHERE numer=3"));
  const std::string customer = Value("SELECT left(nazwa,9) FROM dane_odbiorcy WHERE numer=3");

  ASSERT_TRUE(walk_.StartKlote(Db().home));
  ASSERT_NO_FATAL_FAILURE(walk_.LogIn(true));
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({
      {"F4 1", "Wybierz konkretny rodzaj dokumentu:"},  // no payment yet: the entry starts at once
      {"Enter", "Podaj rok szukanego dokumentu:"},
      {"Enter", "Podaj numer dokumentu"},  // this year
      {"7 Enter", "Dopisanie dokumentu:KP - wpłata"},
      {"", "7/" + year + "/A"},
      {"", customer},
      {"", "bilans:     " + Money(total)},
      // The date stays today's, the amount is typed, the comment (the last field) confirms.
      {"Enter " + TmuxWalk::Erase(Money(total).size()) + "100 Enter Enter", Money(paid) + " " + customer},
      {"F2", "Bilans dokumentu: " + Money(total - paid)},
      {"Escape F4", "Podaj, ile klient wpłaca:"},
      {TmuxWalk::Erase(Money(paid).size()) + "150 Enter", "RESZTA:          " + Money(handed - paid)},
      {"Enter Escape", "F4 Kasa"},
  }));
  walk_.Quit();
  EXPECT_EQ(Value("SELECT typ_dok||':'||nr_dok_zrodl||':'||suma_dok::numeric(9,2)||':'||nr_kontrahenta FROM "
                  "dane_1_kasa____"),
            "101:" + coded + ":" + Money(paid) + ":3");
}

}  // namespace
