// The real klote in tmux on the demo firm: the operator enters a sale invoice
// for a demo customer and a purchase from a demo supplier, each header
// naming its contractor by number, and sees the item's stock change in the
// goods catalogue. The server's rows agree with what the test works out from
// the stock before the walk; and a cash payment from the Kasa menu.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "tmuxwalk.h"

namespace {

using EntryWalkTest = WalkTest;

// The first letters of a UTF-8 text, never a letter cut in two.
std::string Start(std::string text) {
  text.resize(std::min<std::size_t>(text.size(), 20));
  while (!text.empty() && static_cast<unsigned char>(text.back()) >= 0x80) text.pop_back();
  return text;
}

// From the menu bar: the group by its digit, its first kind, one line of the
// catalogue's first item, the header with the contractor's number (its name
// shows beside it), and the save. The work file's key, lent by the
// application, reaches the work file's function on the way.
void EnterDocument(TmuxWalk& walk, const std::string& group, const std::string& quantity,
                   const std::string& contractor, const std::string& contractorName) {
  walk.Walk({
      {"F2 1", "Wybierz grupę dokumentów:"},
      {group, "Wybierz konkretny rodzaj dokumentu:"},
      {"Enter", "Specyfikacja:"},
      {"", "^F7 plik"},
      {"C-F7", "Plik roboczy nie istnieje."},
      {"Enter Enter", "Podaj ilość:"},
      {quantity + " Enter", "Suma:"},
      {"F2", "data rozliczenia:"},
      {"Down " + contractor + " Enter", Start(contractorName)},
      {"F2", "Zapisano dokument nr 1/"},
      {"Enter Escape", "F2 Dokumenty"},
  });
}

TEST_F(EntryWalkTest, ASaleInvoiceAndAPurchaseOfTheDemoFirmChangeTheStock) {
  ASSERT_TRUE(TmuxWalk::MakeDemoFirm(Db().home));
  // The entry's catalogue opens on the first item by name; its stock in warehouse 1 before the walk.
  const std::string item = Value("SELECT nr_wewn FROM dane_kat_tow_ ORDER BY nazwa, nazwa_, oid LIMIT 1");
  const std::string name = Value("SELECT rtrim(nazwa) FROM dane_kat_tow_ WHERE nr_wewn=" + item);
  const double before = std::stod(Value("SELECT ilosc FROM dane_1_stany_mg WHERE nr_wewn=" + item));
  ASSERT_GE(before, 3);
  ASSERT_TRUE(walk_.StartKlote(Db().home));
  ASSERT_NO_FATAL_FAILURE(walk_.LogIn(true));
  const std::string customer = Value("SELECT rtrim(nazwa) FROM dane_odbiorcy WHERE numer=3");
  const std::string supplier = Value("SELECT rtrim(nazwa) FROM dane_dostawcy WHERE numer=5");
  ASSERT_NO_FATAL_FAILURE(EnterDocument(walk_, "2", "3", "3", customer));
  ASSERT_NO_FATAL_FAILURE(EnterDocument(walk_, "3", "10", "5", supplier));

  // The goods catalogue shows the item with its new stock.
  const double after = before - 3 + 10;
  char shown[32];
  std::snprintf(shown, sizeof shown, "%.2f", after);
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({{"F3 1", Start(name)}, {"", shown}}));
  walk_.Keys("Escape");

  EXPECT_EQ(Value("SELECT string_agg(typ_dok||':'||H.nr_kontrahenta||':'||nr_towaru||':'||S.ilosc::numeric(9,1), ',' "
                  "ORDER BY typ_dok) FROM dane_1_naglowki H JOIN dane_1_specyfik S USING (typ_dok,nr_dok,znak_dok)"),
            "2:3:" + item + ":3.0,6:5:" + item + ":10.0");
  // Each header carries its contractor's name as the catalogue holds it.
  EXPECT_EQ(Value("SELECT count(*) FROM dane_1_naglowki H JOIN "
                  "(SELECT 2 t, numer, nazwa FROM dane_odbiorcy UNION ALL SELECT 6, numer, nazwa FROM dane_dostawcy) C "
                  "ON C.t=H.typ_dok AND C.numer=H.nr_kontrahenta AND rtrim(H.nazwa_kontrahenta)=rtrim(left(C.nazwa,17))"),
            "2");
  EXPECT_EQ(std::stod(Value("SELECT ilosc FROM dane_1_stany_mg WHERE nr_wewn=" + item)), after);
  EXPECT_EQ(Value("SELECT count(*) FROM dane_uzytkown_0_praca___"), "0");
  walk_.Quit();
}

// From the Kasa menu: a cash payment for part of a demo customer's invoice
// found by its typed number, the balance left on the list of related
// documents, and the change at the till. The row in kasa____ agrees with what
// the test works out.
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
