// The real klote in tmux against the test run's cluster: the login list and
// the System Manager's entry, the menu bar after the start, every heading by its function key and by Left and Right, the
// lists and the explanation line checked against the texts, one entry that
// is not built yet, the users' list, and Esc that ends the program and the
// session. Also the end after a failed connection, and the number register
// that the start lends the other catalogues.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "dbfixture.h"

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

class KloteE2eTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    if (std::system("command -v tmux >/dev/null 2>&1") != 0) GTEST_SKIP() << "tmux is not installed";
    // A server of its own for each test: a name reused at once could meet the last one still going.
    static int tests = 0;
    socket_ = "klote" + std::to_string(::getpid()) + "_" + std::to_string(++tests);
  }
  void TearDown() override {
    if (!socket_.empty()) Tmux("kill-server");
  }
  void Start(const std::string& home) {
    const std::string program = KLOTE_BINARY_DIR "/app/main/klote";
    const char* options = std::getenv("PGOPTIONS");
    const std::string command = "cd " + home + " && HOME=" + home + " PGOPTIONS='" + (options ? options : "") +
                                "' TERM=xterm TERM_KLOTE_CP=UTF " + program + "; echo KLOTE-END; sleep 20";
    ASSERT_EQ(Tmux("-f /dev/null new-session -d -s k -x 80 -y 25 \"" + command + "\" \\; set-option -g status off"),
              0);
  }
  int Tmux(const std::string& args) { return std::system(("tmux -L " + socket_ + " " + args + " 2>/dev/null").c_str()); }
  std::vector<std::string> Rows() {
    std::string text;
    FILE* p = ::popen(("tmux -L " + socket_ + " capture-pane -p -t k 2>/dev/null").c_str(), "r");
    if (p) {
      char buf[4096];
      for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) text.append(buf, n);
      ::pclose(p);
    }
    std::vector<std::string> rows;
    for (std::size_t at = 0, nl; at < text.size(); at = nl + 1) {
      nl = text.find('\n', at);
      if (nl == std::string::npos) nl = text.size();
      std::string row = text.substr(at, nl - at);
      row.erase(row.find_last_not_of(' ') + 1);
      rows.push_back(row);
    }
    rows.resize(25);
    return rows;
  }
  static std::string Joined(const std::vector<std::string>& rows) {
    std::string all;
    for (const std::string& r : rows) all += r + "\n";
    return all;
  }
  // Waits up to five seconds for the check to hold on the pane.
  template <typename Check>
  bool WaitFor(Check check) {
    for (int i = 0; i < 500; ++i) {
      if (check(Rows())) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  bool WaitForText(const std::string& text) {
    return WaitFor([&](const std::vector<std::string>& rows) { return Joined(rows).find(text) != std::string::npos; });
  }
  // The bar, the heading's list (each entry after its key-cap digit) and the explanation of its first entry.
  bool ShowsHeading(const Heading& h) {
    return WaitFor([&](const std::vector<std::string>& rows) {
      const std::string all = Joined(rows);
      if (rows[0] != kBar || rows[24] != h.firstExplanation) return false;
      for (std::size_t i = 0; i < h.entries.size(); ++i)
        if (all.find(" " + std::to_string((i + 1) % 10) + " " + h.entries[i]) == std::string::npos) return false;
      return true;
    });
  }
  void Keys(const std::string& keys) { Tmux("send-keys -t k " + keys); }
  // The login list holds the System Manager only; his empty password admits him at once.
  void LogInAsManager() {
    ASSERT_TRUE(WaitForText("Wybierz, jako który użytkownik będziesz pracować:")) << Joined(Rows());
    ASSERT_TRUE(WaitForText("Kierownik            | Systemu                        |          0")) << Joined(Rows());
    Keys("Enter");
  }
  std::string socket_;
};

TEST_F(KloteE2eTest, StartWalkEveryHeadingOpenAnEntryAndLeave) {
  Start(Db().home);
  LogInAsManager();
  ASSERT_TRUE(ShowsHeading(kHeadings[0])) << Joined(Rows());
  std::string mark;
  EXPECT_TRUE(Psql("SELECT status FROM dane_uzytkown_uzytkown WHERE numer = 0", &mark));
  EXPECT_EQ(mark, ">\n");
  for (const Heading& h : kHeadings) {
    Keys(h.key);
    EXPECT_TRUE(ShowsHeading(h)) << h.key << "\n" << Joined(Rows());
  }
  // Right from the last heading wraps to the first; Left goes back.
  Keys("Right");
  EXPECT_TRUE(ShowsHeading(kHeadings[0])) << Joined(Rows());
  Keys("Left");
  EXPECT_TRUE(ShowsHeading(kHeadings[4])) << Joined(Rows());
  for (int i = 3; i >= 0; --i) {
    Keys("Left");
    EXPECT_TRUE(ShowsHeading(kHeadings[static_cast<std::size_t>(i)])) << Joined(Rows());
  }
  // The bar on the second entry shows its explanation.
  Keys("Down");
  EXPECT_TRUE(WaitFor([](const std::vector<std::string>& rows) {
    return rows[24] == "Dodawanie i zmiany dokumentów rozchodu i przychodu towarów, np. faktur, zakupów.";
  })) << Joined(Rows());

  // An entry whose module is not built yet says so, and Enter gives the list back.
  Keys("F6 4");  // the export for the accounting system
  ASSERT_TRUE(WaitForText("Ta opcja nie jest jeszcze dostępna.")) << Joined(Rows());
  Keys("Enter");  // the list comes back on the entry it left
  EXPECT_TRUE(WaitForText("Eksport dokumentów do programu finansowo-księgowego.")) << Joined(Rows());
  // A document entry without a current warehouse.
  Keys("F2 1");
  ASSERT_TRUE(WaitForText("Nie wybrano magazynu aktualnego !")) << Joined(Rows());
  Keys("Enter");
  EXPECT_TRUE(ShowsHeading(kHeadings[0])) << Joined(Rows());

  // The users' catalogue is the list in its managing form.
  Keys("F6 1");
  ASSERT_TRUE(WaitForText("Lista użytkowników:")) << Joined(Rows());
  Keys("Escape");
  EXPECT_TRUE(ShowsHeading(kHeadings[4])) << Joined(Rows());

  Keys("Escape");
  EXPECT_TRUE(WaitForText("KLOTE-END")) << Joined(Rows());
  // The connection step gave the new database its catalogue and the firm's tables; the end cleared the mark.
  std::string out;
  EXPECT_TRUE(Psql("SELECT count(*) FROM tables_list", &out)) << out;
  EXPECT_TRUE(Psql("SELECT count(*) FROM dane_kat_tow_", &out)) << out;
  EXPECT_TRUE(Psql("SELECT status FROM dane_uzytkown_uzytkown WHERE numer = 0", &mark));
  EXPECT_EQ(mark, "N\n");
}

TEST_F(KloteE2eTest, FailedConnectionShowsTheLayersMessageAndEnds) {
  const std::string home = Db().home + "/nowhere";
  std::filesystem::create_directories(home);
  Start(home);
  ASSERT_TRUE(WaitForText("Błąd DBMS nr 1000. Program przerywa pracę w trybie awaryjnym.")) << Joined(Rows());
  EXPECT_EQ(Joined(Rows()).find("Dokumenty"), std::string::npos);
  Keys("n");
  EXPECT_TRUE(WaitForText("KLOTE-END")) << Joined(Rows());
}

}  // namespace

namespace {

// The customer catalogue from the menu: a customer with Polish letters
// added by the form, found again by a fragment of its name, and the way out.
TEST_F(KloteE2eTest, CustomerCatalogueAddAndFindByName) {
  Start(Db().home);
  LogInAsManager();
  ASSERT_TRUE(ShowsHeading(kHeadings[0])) << Joined(Rows());
  Keys("F6 2");
  ASSERT_TRUE(WaitForText("odbiorcy")) << Joined(Rows());
  Keys("1");
  ASSERT_TRUE(WaitForText("Wybierz żądanego odbiorcy:")) << Joined(Rows());
  Keys("IC");
  ASSERT_TRUE(WaitForText("Dopisanie nowego odbiorcy:")) << Joined(Rows());
  Keys("'Zakład Żółć' Enter");     // the name (the number left empty takes the next one)
  Keys("Enter Enter 'Łódź' F10");  // other name, code, town, then confirm
  ASSERT_TRUE(WaitForText("Zakład Żółć")) << Joined(Rows());
  EXPECT_TRUE(WaitForText("Łódź")) << Joined(Rows());
  Keys("C-r");
  ASSERT_TRUE(WaitForText("Wprowadź szukany fragment (ciąg znaków) z nazwy:")) << Joined(Rows());
  Keys("'żółć' Enter");
  ASSERT_TRUE(WaitForText("Jest ! Czy szukać dalej ?")) << Joined(Rows());
  Keys("n");
  Keys("Escape");  // back in the list of Inne, on the entry that ran
  EXPECT_TRUE(WaitFor([](const std::vector<std::string>& rows) {
    return rows[24] == "Dopisywanie i zmiany danych odbiorców, dostawców i magazynów.";
  })) << Joined(Rows());
  Keys("Escape");
  EXPECT_TRUE(WaitForText("KLOTE-END")) << Joined(Rows());
  std::string out;
  ASSERT_TRUE(Psql("SELECT numer || ':' || nazwa || ':' || miasto FROM dane_odbiorcy", &out)) << out;
  EXPECT_EQ(out, "1:Zakład Żółć:Łódź\n");
}

}  // namespace

namespace {

// "Inne katalogi" of the real program ends with the register of document
// numbers, lent at the start: with common numbering off it refuses.
TEST_F(KloteE2eTest, OtherCataloguesOfferTheNumberRegister) {
  Start(Db().home);
  LogInAsManager();
  ASSERT_TRUE(ShowsHeading(kHeadings[0])) << Joined(Rows());
  Keys("F6 3");
  ASSERT_TRUE(WaitForText("katalog numerów dokumentów")) << Joined(Rows());
  Keys("End Enter");
  ASSERT_TRUE(WaitForText("Opcje wspólnej numeracji dokumentów sa wylaczone.")) << Joined(Rows());
  Keys("Enter Escape Escape");
  EXPECT_TRUE(WaitForText("KLOTE-END")) << Joined(Rows());
}

// One step of a walk: keys sent, then a text that must appear.
struct WalkStep {
  std::string keys;
  std::string shown;
};

// The goods walks run on the demo firm, made by tools/demo-firm in the test's own schema.
class KloteGoodsE2eTest : public KloteE2eTest {
 protected:
  void SetUp() override {
    KloteE2eTest::SetUp();
    if (IsSkipped()) return;
    const char* options = std::getenv("PGOPTIONS");
    const std::string demo = "cd " + Db().home + " && HOME=" + Db().home + " PGOPTIONS='" + (options ? options : "") +
                             "' " KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm >/dev/null";
    ASSERT_EQ(std::system(demo.c_str()), 0);
  }
  // The manager logs in and takes the first warehouse; the bar of Towary is up.
  void StartInFirstWarehouse() {
    Start(Db().home);
    LogInAsManager();
    ASSERT_TRUE(WaitForText("Wybierz magazyn, na którego konto wprowadzać będziesz dane:")) << Joined(Rows());
    Keys("Enter");
    ASSERT_TRUE(ShowsHeading(kHeadings[0])) << Joined(Rows());
  }
  // Esc back to the menu, whose bar rests on the entry with that explanation, and Esc out of the program.
  void LeaveToTheEnd(const std::string& explanation) {
    Keys("Escape");
    ASSERT_TRUE(WaitFor([&](const std::vector<std::string>& rows) { return rows[24] == explanation; }))
        << Joined(Rows());
    Keys("Escape");
    EXPECT_TRUE(WaitForText("KLOTE-END")) << Joined(Rows());
  }
  static std::string One(const std::string& sql) {
    std::string out;
    EXPECT_TRUE(Psql(sql, &out)) << out;
    if (!out.empty() && out.back() == '\n') out.pop_back();
    return out;
  }
};

// The catalogue from the menu: an item found by the start of its name, another
// by its character index (the search by any field), its price changed in the
// catalogue and the warehouse, and the way out; the database then holds the price.
TEST_F(KloteGoodsE2eTest, CatalogueFindsByNameAndCodeAndChangesAPrice) {
  const std::string bread = "nazwa='Chleb żytni' AND nazwa_='Mazowiecki'";
  const std::string number = One("SELECT nr_wewn FROM dane_kat_tow_ WHERE " + bread);
  const std::string code = One("SELECT rtrim(indeks_znakowy_isbn) FROM dane_kat_tow_ WHERE " + bread);
  ASSERT_EQ(code.size(), 13u);
  const std::string elsewhere = One("SELECT csb FROM dane_2_stany_mg WHERE nr_wewn=" + number);
  StartInFirstWarehouse();
  const WalkStep steps[] = {
      {"F3 1", "Katalog towarów - magazyn nr 1"},
      {"F2", "Wprowadź początek szukanej nazwy:"},
      {"'Kawa mi' Enter", "\n Kawa mielona"},  // the first row of the list
      {"F7", "Wybierz, według jakiego pola szukać:"},
      {"Down Down Down Down Down Down Down Down Enter", "Podaj pełną wartość pola:"},  // the ninth, indeks_znakowy_isbn
      {code + " Enter", "\n Chleb żytni Mazowiecki"},
      {"Enter", "Korekta danych oznaczonej ciemnym pasem kartoteki towarowej:"},
      {"BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace BSpace '7.77' Enter",
       "Jak zmienić dane (jeśli nie wiesz, wybierz zaznaczoną opcję)"},
      {"Enter", "7.77"},  // the marked scope: the catalogue and the current warehouse
  };
  for (const WalkStep& step : steps) {
    Keys(step.keys);
    ASSERT_TRUE(WaitForText(step.shown)) << step.keys << "\n" << Joined(Rows());
  }
  LeaveToTheEnd("Specjalne operacje na katalogu towarów, dopisywanie kartotek, zmiany.");
  EXPECT_EQ(One("SELECT cena_s_b||'/'||round(cena_s_n,2) FROM dane_kat_tow_ WHERE " + bread),
            "7.7700000/" + One("SELECT round(7.77/1.05,2)"));
  EXPECT_EQ(One("SELECT csb FROM dane_1_stany_mg WHERE nr_wewn=" + number), "7.7700000");
  EXPECT_EQ(One("SELECT csb FROM dane_2_stany_mg WHERE nr_wewn=" + number), elsewhere);  // out of the scope
}

// The work file from the Towary menu: filled from the catalogue in its
// editor, written as DBF to a directory, and that file read by Debian's
// python3-dbfread against the warehouse's stock.
TEST_F(KloteGoodsE2eTest, WorkFileFromTheCatalogueWrittenAsDbf) {
  const std::string dir = Db().home + "/wyj";
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  StartInFirstWarehouse();
  const WalkStep steps[] = {
      {"F3 2", "6  Wprowadzanie zmian w pliku roboczym"},
      {"6", "Plik roboczy jest pusty."},
      {"IC", "Dopisać do pliku roboczego:"},
      {"2", "Atlas Polski (eksport)"},  // the list of rows, name order
      {"Escape", "Wybierz opcję:"},
      {"7", "Skopiować plik roboczy do miejsca:"},
      {"wyj Enter", "Kopiowanie zakończone poprawnie."},
      {"Enter", "Wybierz opcję:"},
  };
  for (const WalkStep& step : steps) {
    Keys(step.keys);
    ASSERT_TRUE(WaitForText(step.shown)) << step.keys << "\n" << Joined(Rows());
  }
  LeaveToTheEnd("Przesyłanie, eksporty, importy sporządzonej listy roboczej towarów.");

  const std::string script = "import dbfread\n"
                             "rows = list(dbfread.DBF('" + dir + "/plikrob_.dbf', encoding='latin1'))\n"
                             "print(len(rows), sum(r['NR_WEWN'] for r in rows), '%.3f' % sum(r['ILOSC'] for r in rows))\n";
  FILE* py = ::popen(("/usr/bin/python3 -c \"" + script + "\"").c_str(), "r");
  ASSERT_NE(py, nullptr);
  char line[200] = {};
  const bool read = std::fgets(line, sizeof line, py) != nullptr;
  ASSERT_EQ(::pclose(py), 0);
  ASSERT_TRUE(read);
  EXPECT_EQ(std::string(line),
            One("SELECT count(*)||' '||sum(K.nr_wewn)||' '||to_char(sum(S.ilosc),'FM999990.000') FROM dane_kat_tow_ K "
                "JOIN dane_1_stany_mg S ON S.nr_wewn=K.nr_wewn WHERE K.ilosc IS NOT NULL") + "\n");
  EXPECT_EQ(One("SELECT count(*) FROM dane_uzytkown_0_plikrob_"), One("SELECT count(*) FROM dane_kat_tow_"));
}

}  // namespace
