// The real klote in tmux on the demo firm: the operator enters a sale invoice
// for a demo customer and a purchase from a demo supplier, each header
// naming its contractor by number, and sees the item's stock change in the
// goods catalogue. The server's rows agree with what the test works out from
// the stock before the walk.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "tmuxwalk.h"

namespace {

class EntryWalkTest : public WalkTest {
 protected:
  // The first letters of a UTF-8 text, never a letter cut in two.
  static std::string Start(std::string text) {
    text.resize(std::min<std::size_t>(text.size(), 20));
    while (!text.empty() && static_cast<unsigned char>(text.back()) >= 0x80) text.pop_back();
    return text;
  }
  // From the menu bar: the group by its digit, its first kind, one line of
  // the catalogue's first item, the header with the contractor's number
  // (its name shows beside it), and the save.
  void EnterDocument(const std::string& group, const std::string& quantity, const std::string& contractor,
                     const std::string& contractorName) {
    walk_.Keys("F2 1");
    ASSERT_TRUE(walk_.Shows("Wybierz grupę dokumentów:")) << walk_.Pane();
    walk_.Keys(group);
    ASSERT_TRUE(walk_.Shows("Wybierz konkretny rodzaj dokumentu:")) << walk_.Pane();
    walk_.Keys("Enter");
    ASSERT_TRUE(walk_.Shows("Specyfikacja:")) << walk_.Pane();
    // The work file's key, lent by the application, reaches the work file's function.
    ASSERT_TRUE(walk_.Shows("^F7 plik")) << walk_.Pane();
    walk_.Keys("C-F7");
    ASSERT_TRUE(walk_.Shows("Plik roboczy nie istnieje.")) << walk_.Pane();
    walk_.Keys("Enter");
    walk_.Keys("Enter");
    ASSERT_TRUE(walk_.Shows("Podaj ilość:")) << walk_.Pane();
    walk_.Keys(quantity + " Enter");
    ASSERT_TRUE(walk_.Shows("Suma:")) << walk_.Pane();
    walk_.Keys("F2");
    ASSERT_TRUE(walk_.Shows("data rozliczenia:")) << walk_.Pane();
    walk_.Keys("Down " + contractor + " Enter");
    ASSERT_TRUE(walk_.Shows(Start(contractorName))) << walk_.Pane();
    walk_.Keys("F2");
    ASSERT_TRUE(walk_.Shows("Zapisano dokument nr 1/")) << walk_.Pane();
    walk_.Keys("Enter Escape");
    ASSERT_TRUE(walk_.Shows("F2 Dokumenty")) << walk_.Pane();
  }
};

TEST_F(EntryWalkTest, ASaleInvoiceAndAPurchaseOfTheDemoFirmChangeTheStock) {
  ASSERT_EQ(std::system((TmuxWalk::InFirm(Db().home, KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm") + " >/dev/null")
                            .c_str()),
            0);
  // The entry's catalogue opens on the first item by name; its stock in warehouse 1 before the walk.
  const std::string item = Value("SELECT nr_wewn FROM dane_kat_tow_ ORDER BY nazwa, nazwa_, oid LIMIT 1");
  const std::string name = Value("SELECT rtrim(nazwa) FROM dane_kat_tow_ WHERE nr_wewn=" + item);
  const double before = std::stod(Value("SELECT ilosc FROM dane_1_stany_mg WHERE nr_wewn=" + item));
  ASSERT_GE(before, 3);
  ASSERT_TRUE(walk_.StartKlote(Db().home));
  ASSERT_TRUE(walk_.Shows("Wybierz, jako który użytkownik będziesz pracować:")) << walk_.Pane();
  walk_.Keys("Enter");
  ASSERT_TRUE(walk_.Shows("Wybierz magazyn, na którego konto wprowadzać będziesz dane:")) << walk_.Pane();
  walk_.Keys("Enter");
  ASSERT_TRUE(walk_.Shows("F2 Dokumenty")) << walk_.Pane();

  EnterDocument("2", "3", "3", Value("SELECT rtrim(nazwa) FROM dane_odbiorcy WHERE numer=3"));
  EnterDocument("3", "10", "5", Value("SELECT rtrim(nazwa) FROM dane_dostawcy WHERE numer=5"));

  // The goods catalogue shows the item with its new stock.
  const double after = before - 3 + 10;
  char shown[32];
  std::snprintf(shown, sizeof shown, "%.2f", after);
  walk_.Keys("F3 1");
  ASSERT_TRUE(walk_.Shows(Start(name))) << walk_.Pane();
  EXPECT_TRUE(walk_.Shows(shown)) << shown << "\n" << walk_.Pane();
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
  walk_.Keys("Escape");
  EXPECT_TRUE(walk_.Shows("KLOTE-END")) << walk_.Pane();
}

}  // namespace
