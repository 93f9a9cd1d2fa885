// The real klote in tmux on the demo firm, from the Kasa menu: a cash
// payment for part of a demo customer's invoice found by its typed number,
// the balance left on the list of related documents, and the change at the
// till. The row in kasa____ agrees with what the test works out.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tmuxwalk.h"

namespace {

class CashWalkTest : public WalkTest {
 protected:
  static std::string Money(double v) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f", v);
    return buf;
  }
  // Clears the field's text before the cursor, then types the keys.
  void Retype(std::size_t length, const std::string& keys) {
    for (std::size_t i = 0; i < length; ++i) walk_.Keys("BSpace");
    walk_.Keys(keys);
  }
};

TEST_F(CashWalkTest, ACashPaymentForADemoCustomersInvoiceLeavesItsBalance) {
  ASSERT_EQ(std::system((TmuxWalk::InFirm(Db().home, KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm") + " >/dev/null")
                            .c_str()),
            0);
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
  ASSERT_TRUE(walk_.Shows("Wybierz, jako który użytkownik będziesz pracować:")) << walk_.Pane();
  walk_.Keys("Enter");
  ASSERT_TRUE(walk_.Shows("Wybierz magazyn, na którego konto wprowadzać będziesz dane:")) << walk_.Pane();
  walk_.Keys("Enter");
  ASSERT_TRUE(walk_.Shows("F4 Kasa")) << walk_.Pane();
  walk_.Keys("F4 1");  // no payment yet: the entry starts at once
  ASSERT_TRUE(walk_.Shows("Wybierz konkretny rodzaj dokumentu:")) << walk_.Pane();
  walk_.Keys("Enter");
  ASSERT_TRUE(walk_.Shows("Podaj rok szukanego dokumentu:")) << walk_.Pane();
  walk_.Keys("Enter");  // this year
  ASSERT_TRUE(walk_.Shows("Podaj numer dokumentu")) << walk_.Pane();
  walk_.Keys("7 Enter");
  ASSERT_TRUE(walk_.Shows("Dopisanie dokumentu:KP - wpłata")) << walk_.Pane();
  ASSERT_TRUE(walk_.Shows("7/" + year + "/A")) << walk_.Pane();
  ASSERT_TRUE(walk_.Shows(customer)) << walk_.Pane();
  ASSERT_TRUE(walk_.Shows("bilans:     " + Money(total))) << walk_.Pane();
  walk_.Keys("Enter");  // the date stays today's
  Retype(Money(total).size(), "100 Enter");
  walk_.Keys("Enter");  // the comment, the last field, confirms
  ASSERT_TRUE(walk_.Shows(Money(paid) + " " + customer)) << walk_.Pane();

  walk_.Keys("F2");
  ASSERT_TRUE(walk_.Shows("Bilans dokumentu: " + Money(total - paid))) << walk_.Pane();
  walk_.Keys("Escape F4");
  ASSERT_TRUE(walk_.Shows("Podaj, ile klient wpłaca:")) << walk_.Pane();
  Retype(Money(paid).size(), "150 Enter");
  ASSERT_TRUE(walk_.Shows("RESZTA:          " + Money(handed - paid))) << walk_.Pane();
  walk_.Keys("Enter Escape");
  ASSERT_TRUE(walk_.Shows("F4 Kasa")) << walk_.Pane();
  walk_.Keys("Escape");
  EXPECT_TRUE(walk_.Shows("KLOTE-END")) << walk_.Pane();

  EXPECT_EQ(Value("SELECT typ_dok||':'||nr_dok_zrodl||':'||suma_dok::numeric(9,2)||':'||nr_kontrahenta FROM "
                  "dane_1_kasa____"),
            "101:" + coded + ":" + Money(paid) + ":3");
}

}  // namespace
