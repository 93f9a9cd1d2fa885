// The real klote in tmux: with its only warehouse taken as the current one, the operator enters a sale
// invoice and a purchase from the menu, each header taking its contractor from the list, and sees the
// stock change on the entry's catalogue; the rows of the server say the same.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "documents/docsave.h"
#include "master/contractors.h"
#include "master/items.h"
#include "master/tables.h"
#include "sqltable/sqltest.h"
#include "users/users.h"

namespace {

class EntryE2eTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    if (std::system("command -v tmux >/dev/null 2>&1") != 0) GTEST_SKIP() << "tmux is not installed";
    socket_ = "entry" + std::to_string(::getpid());
    ASSERT_EQ(UsersTableEnsure(), 0);
    CreateFirmTables();
    Contractor warehouse;  // the only warehouse: klote takes it as the current one
    warehouse.number = 1;
    warehouse[KontrahentCol::nazwa] = "Magazyn"_mz;
    ASSERT_EQ(ContractorAdd(ContractorKind::kWarehouse, warehouse, NumberRange{}), ContractorOutcome::kDone);
    for (ContractorKind kind : {ContractorKind::kCustomer, ContractorKind::kSupplier}) {
      Contractor c;  // the one contractor each document's header takes from its list
      c[KontrahentCol::nazwa] = "Kontrahent"_mz;
      c[KontrahentCol::nip] = "525-000-00-00";
      ASSERT_EQ(ContractorAdd(kind, c, NumberRange{}), ContractorOutcome::kDone);
    }
    ItemData item;
    item.name = "Młotek"_mz;
    item.vat = "23";
    item.supplier = 1;
    item.unit = "szt";
    item.saleNet = 10;
    item.saleGross = 12.3L;
    item.buyNet = 7;
    StockRow stock;
    stock.quantity = 50;
    stock.saleNet = 10;
    stock.saleGross = 12.3L;
    ShortText refusal;
    ASSERT_EQ(ItemAdd(item, ItemRules{}, 1, stock, refusal), 0);
  }
  void TearDown() override {
    if (!socket_.empty()) Tmux("kill-server");
    CatalogueTest::TearDown();
  }
  void Start() {
    const std::string program = KLOTE_BINARY_DIR "/app/main/klote";
    const char* options = std::getenv("PGOPTIONS");
    const std::string home = Db().home;
    const std::string command = "cd " + home + " && HOME=" + home + " PGOPTIONS='" + (options ? options : "") +
                                "' TERM=xterm TERM_KLOTE_CP=UTF " + program + "; echo KLOTE-END; sleep 20";
    ASSERT_EQ(Tmux("-f /dev/null new-session -d -s k -x 80 -y 25 \"" + command + "\" \\; set-option -g status off"), 0);
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
  // Waits up to five seconds for the text on the pane.
  bool WaitForText(const std::string& text) {
    for (int i = 0; i < 500; ++i) {
      if (Pane().find(text) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  void Keys(const std::string& keys) { Tmux("send-keys -t k " + keys); }
  // From the menu: the group by its digit, the first kind of it, one line of
  // the first item, the save and its number, and back to the menu.
  void EnterDocument(const std::string& group, const std::string& quantity, const std::string& stockAfter) {
    Keys("F2 1");
    ASSERT_TRUE(WaitForText("Wybierz grupę dokumentów:")) << Pane();
    Keys(group);
    ASSERT_TRUE(WaitForText("Wybierz konkretny rodzaj dokumentu:")) << Pane();
    Keys("Enter");
    ASSERT_TRUE(WaitForText("Specyfikacja:")) << Pane();
    ASSERT_TRUE(WaitForText("Młotek")) << Pane();
    Keys("Enter");
    ASSERT_TRUE(WaitForText("Podaj ilość:")) << Pane();
    Keys(quantity + " Enter");
    ASSERT_TRUE(WaitForText("Suma:")) << Pane();
    Keys("F2");  // the header form
    ASSERT_TRUE(WaitForText("data rozliczenia:")) << Pane();
    Keys("F2");  // confirmed: the contractor it needs comes from the list
    ASSERT_TRUE(WaitForText("Kontrahent")) << Pane();
    Keys("Enter");
    ASSERT_TRUE(WaitForText("Zapisano dokument nr 1/")) << Pane();
    Keys("Enter");
    ASSERT_TRUE(WaitForText(stockAfter)) << Pane();  // the catalogue above shows the new stock
    Keys("Escape");
  }
  std::string socket_;
};

TEST_F(EntryE2eTest, ASaleInvoiceAndAPurchaseChangeTheStock) {
  Start();
  ASSERT_TRUE(WaitForText("Wybierz, jako który użytkownik będziesz pracować:")) << Pane();
  Keys("Enter");
  ASSERT_TRUE(WaitForText("F2 Dokumenty")) << Pane();
  EnterDocument("2", "3", "47.00");
  ASSERT_TRUE(WaitForText("F2 Dokumenty")) << Pane();
  EnterDocument("3", "10", "57.00");
  std::string out;
  EXPECT_TRUE(Psql("SELECT string_agg(typ_dok||':'||nr_towaru||':'||ilosc::numeric(9,1), ',' ORDER BY typ_dok) "
                   "FROM DANE_1_SPECYFIK", &out));
  EXPECT_EQ(out, "2:1:3.0,6:1:10.0\n");
  EXPECT_TRUE(Psql("SELECT ilosc::numeric(9,1) FROM DANE_1_STANY_MG WHERE nr_wewn=1", &out));
  EXPECT_EQ(out, "57.0\n");
  EXPECT_TRUE(Psql("SELECT count(*) FROM DANE_UZYTKOWN_0_PRACA___", &out));
  EXPECT_EQ(out, "0\n");
  Keys("Escape");
  EXPECT_TRUE(WaitForText("KLOTE-END")) << Pane();
}

}  // namespace
