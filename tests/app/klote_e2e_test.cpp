// The real klote in tmux against the test run's cluster: the login list and
// the System Manager's entry, the menu bar after the start, every heading by its function key and by Left and Right, the
// lists and the explanation line checked against the texts, one entry that
// is not built yet, the users' list, and Esc that ends the program and the
// session. Also the end after a failed connection, and the number register
// that the start lends the other catalogues.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "exchange/dbf_fixture.h"
#include "tmuxwalk.h"

namespace {

// What tmux shows (UTF-8; key-caps in their plain form on xterm).
const std::string kBar = "   F2 Dokumenty   F3 Towary   F4 Kasa   F5 Analizy   F6 Inne       Esc Wyjście";

struct Heading {
  std::string key;
  std::vector<std::string> entries;
  std::string firstExplanation;
};

const std::vector<Heading> kHeadings = {
    {"F2",
     {"Wprowadzanie nowych", "Wprowadzanie nowych i zmiany istniejących", "Wybór aktualnego magazynu"},
     "Dodawanie nowych dokumentów rozchodu i przychodu towarów, np. faktur, zakupów."},
    {"F3",
     {"Katalog towarów", "Operacje na plikach roboczych", "Wybór aktualnego magazynu",
      "Sprawdzanie obecności towarów"},
     "Specjalne operacje na katalogu towarów, dopisywanie kartotek, zmiany."},
    {"F4",
     {"Wprowadzanie i zmiany dokumentów płatności i kasowych", "Wybór aktualnego magazynu"},
     "Wprowadzanie płatności typu KP, KW, przelewy, odsetki i inne."},
    {"F5",
     {"Analizy towarowe i ich podsumowania", "Analizy dokumentów towarowych i ich podsumowania",
      "Analizy dokumentów kasowych i ich podsumowania", "Analizy księgowe i ich podsumowania",
      "Analizy towarowe - rozszerzone i ich podsumowania", "Zestawienia stanów i towary bez obrotu",
      "Zestawienia specjalne", "Raporty sprzedaży z drukarki fiskalnej"},
     "Obroty i stany towarów w wybranym okresie, z podsumowaniami."},
    {"F6",
     {"Katalog użytkowników", "Katalogi odbiorców, dostawców i magazynów", "Inne katalogi",
      "Przygotowanie danych dla systemu \"FK\"", "Konfiguracja programu", "Konfigurowanie drukarki głównej",
      "Konfigurowanie drukarki fiskalnej", "Konfigurowanie drukarki paragonowej/etykiet",
      "Kasowanie zbędnych dokumentów", "Automatyczne rozliczanie depozytów dla odbiorców"},
     "Dopisywanie użytkowników programu, ich haseł i uprawnień."},
};

class KloteE2eTest : public WalkTest {
 protected:
  void Start(const std::string& home) { ASSERT_TRUE(walk_.StartKlote(home)); }
  // The bar, the heading's list (each entry after its key-cap digit) and the explanation of its first entry.
  bool ShowsHeading(const Heading& h) {
    return walk_.Until([&](const std::string& pane) {
      if (TmuxWalk::Row(pane, 0) != kBar || TmuxWalk::Row(pane, 24) != h.firstExplanation) return false;
      for (std::size_t i = 0; i < h.entries.size(); ++i)
        if (pane.find(" " + std::to_string((i + 1) % 10) + " " + h.entries[i]) == std::string::npos) return false;
      return true;
    });
  }
  // The login list holds the System Manager only; his empty password admits him at once.
  void LogInAsManager() {
    walk_.Walk({{"", "Wybierz, jako który użytkownik będziesz pracować:"},
                {"", "Kierownik            | Systemu                        |          0"}});
    walk_.Keys("Enter");
  }
};

TEST_F(KloteE2eTest, StartWalkEveryHeadingOpenEntriesAndLeave) {
  Start(Db().home);
  LogInAsManager();
  ASSERT_TRUE(ShowsHeading(kHeadings[0])) << walk_.Pane();
  EXPECT_EQ(Value("SELECT status FROM dane_uzytkown_uzytkown WHERE numer = 0"), ">");
  // Every heading by its key; Right from the last wraps to the first; Left goes back all the way.
  for (const Heading& h : kHeadings) {
    walk_.Keys(h.key);
    EXPECT_TRUE(ShowsHeading(h)) << h.key << "\n" << walk_.Pane();
  }
  const int leftRight[] = {0, 4, 3, 2, 1, 0};
  for (std::size_t i = 0; i < std::size(leftRight); ++i) {
    walk_.Keys(i == 0 ? "Right" : "Left");
    EXPECT_TRUE(ShowsHeading(kHeadings[static_cast<std::size_t>(leftRight[i])])) << i << "\n" << walk_.Pane();
  }
  // The bar on the second entry shows its explanation.
  walk_.Keys("Down");
  EXPECT_TRUE(walk_.ShowsRow(24, "Dodawanie i zmiany dokumentów rozchodu i przychodu towarów, np. faktur, zakupów."))
      << walk_.Pane();
  // An entry whose module is not built yet says so, and Enter gives the list back on the entry it left;
  // a document entry without a current warehouse; the users' catalogue in its managing form.
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({
      {"F6 4", "Ta opcja nie jest jeszcze dostępna."},  // the export for the accounting system
      {"Enter", "Eksport dokumentów do programu finansowo-księgowego."},
      {"F2 1", "Nie wybrano magazynu aktualnego !"},
  }));
  walk_.Keys("Enter");
  EXPECT_TRUE(ShowsHeading(kHeadings[0])) << walk_.Pane();
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({{"F6 1", "Lista użytkowników:"}}));
  walk_.Keys("Escape");
  EXPECT_TRUE(ShowsHeading(kHeadings[4])) << walk_.Pane();
  // The customer catalogue: a customer with Polish letters added by the form, found again by a fragment of its name.
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({
      {"F6 2", "odbiorcy"},
      {"1", "Wybierz żądanego odbiorcy:"},
      {"IC", "Dopisanie nowego odbiorcy:"},
      // The name (the number left empty takes the next one), other name, code, town, then confirm.
      {"'Zakład Żółć' Enter Enter Enter 'Łódź' F10", "Zakład Żółć"},
      {"", "Łódź"},
      {"C-r", "Wprowadź szukany fragment (ciąg znaków) z nazwy:"},
      {"'żółć' Enter", "Jest ! Czy szukać dalej ?"},
  }));
  walk_.Keys("n Escape");  // back in the list of Inne, on the entry that ran
  EXPECT_TRUE(walk_.ShowsRow(24, "Dopisywanie i zmiany danych odbiorców, dostawców i magazynów.")) << walk_.Pane();
  // "Inne katalogi" ends with the register of document numbers, lent at the start: with common numbering off it
  // refuses.
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({
      {"3", "katalog numerów dokumentów"},
      {"End Enter", "Opcje wspólnej numeracji dokumentów sa wylaczone."},
      {"Enter Escape Escape", "KLOTE-END"},
  }));
  EXPECT_EQ(Value("SELECT numer || ':' || nazwa || ':' || miasto FROM dane_odbiorcy"), "1:Zakład Żółć:Łódź");
  // The connection step gave the new database its catalogue and the firm's tables; the end cleared the mark.
  std::string out;
  EXPECT_TRUE(Psql("SELECT count(*) FROM tables_list", &out)) << out;
  EXPECT_TRUE(Psql("SELECT count(*) FROM dane_kat_tow_", &out)) << out;
  EXPECT_EQ(Value("SELECT status FROM dane_uzytkown_uzytkown WHERE numer = 0"), "N");
}

TEST_F(KloteE2eTest, FailedConnectionShowsTheLayersMessageAndEnds) {
  const std::string home = Db().home + "/nowhere";
  std::filesystem::create_directories(home);
  Start(home);
  ASSERT_TRUE(walk_.Shows("Błąd DBMS nr 1000. Program przerywa pracę w trybie awaryjnym.")) << walk_.Pane();
  EXPECT_EQ(walk_.Pane().find("Dokumenty"), std::string::npos);
  walk_.Keys("n");
  EXPECT_TRUE(walk_.Shows("KLOTE-END")) << walk_.Pane();
}

// The demo firm, made by tools/demo-firm in the test's own schema. The goods
// catalogue from the menu: an item found by the start of its name, another by
// its character index (the search by any field), its price changed in the
// catalogue and the warehouse; the database then holds the price. The work
// file from the Towary menu: filled from the catalogue in its editor, written
// as DBF to a directory, and that file read by Debian's python3-dbfread
// against the warehouse's stock.
TEST_F(KloteE2eTest, DemoFirmCatalogueChangesAPriceAndWritesTheWorkFileAsDbf) {
  ASSERT_TRUE(TmuxWalk::MakeDemoFirm(Db().home));
  const std::string bread = "nazwa='Chleb żytni' AND nazwa_='Mazowiecki'";
  const std::string number = Value("SELECT nr_wewn FROM dane_kat_tow_ WHERE " + bread);
  const std::string code = Value("SELECT rtrim(indeks_znakowy_isbn) FROM dane_kat_tow_ WHERE " + bread);
  ASSERT_EQ(code.size(), 13u);
  const std::string elsewhere = Value("SELECT csb FROM dane_2_stany_mg WHERE nr_wewn=" + number);
  const std::string dir = Db().home + "/wyj";
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  Start(Db().home);
  ASSERT_NO_FATAL_FAILURE(walk_.LogIn(true));
  ASSERT_TRUE(ShowsHeading(kHeadings[0])) << walk_.Pane();
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({
      {"F3 1", "Katalog towarów - magazyn nr 1"},
      {"F2", "Wprowadź początek szukanej nazwy:"},
      {"'Kawa mi' Enter", "\n Kawa mielona"},  // the first row of the list
      {"F7", "Wybierz, według jakiego pola szukać:"},
      {"Down Down Down Down Down Down Down Down Enter", "Podaj pełną wartość pola:"},  // the ninth, indeks_znakowy_isbn
      {code + " Enter", "\n Chleb żytni Mazowiecki"},
      {"Enter", "Korekta danych oznaczonej ciemnym pasem kartoteki towarowej:"},
      {TmuxWalk::Erase(12) + "'7.77' Enter", "Jak zmienić dane (jeśli nie wiesz, wybierz zaznaczoną opcję)"},
      {"Enter", "7.77"},  // the marked scope: the catalogue and the current warehouse
  }));
  walk_.Keys("Escape");  // back in the list, on the entry that ran
  ASSERT_TRUE(walk_.ShowsRow(24, "Specjalne operacje na katalogu towarów, dopisywanie kartotek, zmiany.")) << walk_.Pane();
  ASSERT_NO_FATAL_FAILURE(walk_.Walk({
      {"F3 2", "6  Wprowadzanie zmian w pliku roboczym"},
      {"6", "Plik roboczy jest pusty."},
      {"IC", "Dopisać do pliku roboczego:"},
      {"2", "Atlas Polski (eksport)"},  // the list of rows, name order
      {"Escape", "Wybierz opcję:"},
      {"7", "Skopiować plik roboczy do miejsca:"},
      {"wyj Enter", "Kopiowanie zakończone poprawnie."},
      {"Enter", "Wybierz opcję:"},
  }));
  walk_.Keys("Escape");
  ASSERT_TRUE(walk_.ShowsRow(24, "Przesyłanie, eksporty, importy sporządzonej listy roboczej towarów.")) << walk_.Pane();
  walk_.Quit();
  EXPECT_EQ(Value("SELECT cena_s_b||'/'||round(cena_s_n,2) FROM dane_kat_tow_ WHERE " + bread),
            "7.7700000/" + Value("SELECT round(7.77/1.05,2)"));
  EXPECT_EQ(Value("SELECT csb FROM dane_1_stany_mg WHERE nr_wewn=" + number), "7.7700000");
  EXPECT_EQ(Value("SELECT csb FROM dane_2_stany_mg WHERE nr_wewn=" + number), elsewhere);  // out of the scope

  const std::string script = "import dbfread\n"
                             "rows = list(dbfread.DBF('" + dir + "/plikrob_.dbf', encoding='latin1'))\n"
                             "print(len(rows), sum(r['NR_WEWN'] for r in rows), '%.3f' % sum(r['ILOSC'] for r in rows))\n";
  bool ok = false;
  EXPECT_EQ(dbf_test::RunCommand("/usr/bin/python3 -c \"" + script + "\"", ok),
            Value("SELECT count(*)||' '||sum(K.nr_wewn)||' '||to_char(sum(S.ilosc),'FM999990.000') FROM dane_kat_tow_ K "
                  "JOIN dane_1_stany_mg S ON S.nr_wewn=K.nr_wewn WHERE K.ilosc IS NOT NULL") + "\n");
  EXPECT_TRUE(ok);
  EXPECT_EQ(Value("SELECT count(*) FROM dane_uzytkown_0_plikrob_"), Value("SELECT count(*) FROM dane_kat_tow_"));
}

}  // namespace
