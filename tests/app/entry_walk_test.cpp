// The real klote in tmux on the demo firm: the operator enters a sale invoice
// for a demo customer and a purchase from a demo supplier, each header
// naming its contractor by number, and sees the item's stock change in the
// goods catalogue. The server's rows agree with what the test works out from
// the stock before the walk.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "dbfixture.h"

namespace {

class EntryWalkTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    if (std::system("command -v tmux >/dev/null 2>&1") != 0) GTEST_SKIP() << "tmux is not installed";
    socket_ = "entrywalk" + std::to_string(::getpid());
  }
  void TearDown() override {
    if (!socket_.empty()) Tmux("kill-server");
  }
  std::string InFirm(const std::string& program) {
    const char* options = std::getenv("PGOPTIONS");
    return "cd " + Db().home + " && HOME=" + Db().home + " PGOPTIONS='" + (options ? options : "") + "' " + program;
  }
  int Tmux(const std::string& args) { return std::system(("tmux -L " + socket_ + " " + args + " 2>/dev/null").c_str()); }
  std::string Pane() {
    std::string text;
    FILE* p = ::popen(("tmux -L " + socket_ + " capture-pane -p -t k 2>/dev/null").c_str(), "r");
    if (p) {
      char buf[4096];
      for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) text.append(buf, n);
      ::pclose(p);
    }
    return text;
  }
  // Waits up to ten seconds for the text on the pane.
  bool WaitForText(const std::string& text) {
    for (int i = 0; i < 1000; ++i) {
      if (Pane().find(text) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  void Keys(const std::string& keys) { Tmux("send-keys -t k " + keys); }
  static std::string Value(const std::string& sql) {
    std::string out;
    EXPECT_TRUE(Psql(sql, &out)) << out;
    while (!out.empty() && out.back() == '\n') out.pop_back();
    return out;
  }
  // From the menu bar: the group by its digit, its first kind, one line of
  // the catalogue's first item, the header with the contractor's number,
  // and the save.
  void EnterDocument(const std::string& group, const std::string& quantity, const std::string& contractor) {
    Keys("F2 1");
    ASSERT_TRUE(WaitForText("Wybierz grupę dokumentów:")) << Pane();
    Keys(group);
    ASSERT_TRUE(WaitForText("Wybierz konkretny rodzaj dokumentu:")) << Pane();
    Keys("Enter");
    ASSERT_TRUE(WaitForText("Specyfikacja:")) << Pane();
    Keys("Enter");
    ASSERT_TRUE(WaitForText("Podaj ilość:")) << Pane();
    Keys(quantity + " Enter");
    ASSERT_TRUE(WaitForText("Suma:")) << Pane();
    Keys("F2");
    ASSERT_TRUE(WaitForText("data rozliczenia:")) << Pane();
    Keys("Down " + contractor + " Enter");
    ASSERT_TRUE(WaitForText(contractorName_)) << Pane();
    Keys("F2");
    ASSERT_TRUE(WaitForText("Zapisano dokument nr 1/")) << Pane();
    Keys("Enter Escape");
    ASSERT_TRUE(WaitForText("F2 Dokumenty")) << Pane();
  }
  std::string socket_;
  std::string contractorName_;
};

TEST_F(EntryWalkTest, ASaleInvoiceAndAPurchaseOfTheDemoFirmChangeTheStock) {
  ASSERT_EQ(std::system((InFirm(KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm") + " >/dev/null").c_str()), 0);
  // The entry's catalogue opens on the first item by name; its stock in warehouse 1 before the walk.
  const std::string item = Value("SELECT nr_wewn FROM dane_kat_tow_ ORDER BY nazwa, nazwa_, oid LIMIT 1");
  const std::string name = Value("SELECT rtrim(nazwa) FROM dane_kat_tow_ WHERE nr_wewn=" + item);
  const double before = std::stod(Value("SELECT ilosc FROM dane_1_stany_mg WHERE nr_wewn=" + item));
  ASSERT_GE(before, 3);
  const std::string command = InFirm("TERM=xterm TERM_KLOTE_CP=UTF " KLOTE_BINARY_DIR "/app/main/klote") +
                              "; echo KLOTE-END; sleep 20";
  ASSERT_EQ(Tmux("-f /dev/null new-session -d -s k -x 80 -y 25 \"" + command + "\" \\; set-option -g status off"), 0);
  ASSERT_TRUE(WaitForText("Wybierz, jako który użytkownik będziesz pracować:")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(WaitForText("Wybierz magazyn, na którego konto wprowadzać będziesz dane:")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(WaitForText("F2 Dokumenty")) << Pane();

  contractorName_ = Value("SELECT rtrim(nazwa) FROM dane_odbiorcy WHERE numer=3").substr(0, 20);
  EnterDocument("2", "3", "3");
  contractorName_ = Value("SELECT rtrim(nazwa) FROM dane_dostawcy WHERE numer=5").substr(0, 20);
  EnterDocument("3", "10", "5");

  // The goods catalogue shows the item with its new stock.
  const double after = before - 3 + 10;
  char shown[32];
  std::snprintf(shown, sizeof shown, "%.2f", after);
  Keys("F3 1");
  ASSERT_TRUE(WaitForText(name.substr(0, 20))) << Pane();
  EXPECT_TRUE(WaitForText(shown)) << shown << "\n" << Pane();
  Keys("Escape");

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
  Keys("Escape");
  EXPECT_TRUE(WaitForText("KLOTE-END")) << Pane();
}

}  // namespace
