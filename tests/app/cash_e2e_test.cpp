// The real klote in tmux, from the Kasa menu: a cash payment for part of a
// customer's invoice found by its typed number, the balance that is left on
// the list of related documents, and the change at the till; the row in
// kasa____ says the same.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "documents/docdetail.h"
#include "documents/payments_fixture.h"
#include "master/contractors.h"
#include "sqltable/pgconn.h"
#include "users/users.h"

namespace {

class CashE2eTest : public PaymentsTest {
 protected:
  void SetUp() override {
    PaymentsTest::SetUp();
    if (std::system("command -v tmux >/dev/null 2>&1") != 0) GTEST_SKIP() << "tmux is not installed";
    socket_ = "cash" + std::to_string(::getpid());
    ASSERT_EQ(UsersTableEnsure(), 0);
    // The only warehouse (its tables are the fixture's): klote takes it as the current one.
    ASSERT_TRUE(Psql("INSERT INTO DANE_MAGAZYNY (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES ('Magazyn','',1,'Z')"));
    Contractor customer;
    customer.number = 7;
    customer[KontrahentCol::nazwa] = "Hurtownia Żółw"_mz;
    ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, customer, NumberRange{}), ContractorOutcome::kDone);
    invoice_ = Header(2, 7, kTotal, 7);
    ASSERT_EQ(PGRunQueryNoTup("UPDATE DANE_1_NAGLOWKI SET nazwa_kontrahenta=" +
                              docdetail::TextLiteral("Hurtownia Żółw"_mz)),
              0);
  }
  void TearDown() override {
    if (!socket_.empty()) Tmux("kill-server");
    PaymentsTest::TearDown();
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
  // Waits up to five seconds for every text on the pane.
  bool Shows(std::initializer_list<std::string> texts) {
    for (int i = 0; i < 500; ++i) {
      const std::string pane = Pane();
      bool all = true;
      for (const std::string& t : texts) all = all && pane.find(t) != std::string::npos;
      if (all) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  void Keys(const std::string& keys) { Tmux("send-keys -t k " + keys); }
  // Clears a field whose text ends at the cursor, then types the value.
  void Retype(int length, const std::string& value) {
    for (int i = 0; i < length; ++i) Keys("BSpace");
    Keys(value);
  }

  static constexpr Real kTotal = 123.45L;
  static constexpr Real kPaid = 100;
  static constexpr Real kHanded = 150;
  DocRef invoice_;
  std::string socket_;
};

std::string Money(Real v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2Lf", v);
  return buf;
}

TEST_F(CashE2eTest, CashPaymentForAnInvoiceLeavesTheBalanceAndTheTillGivesChange) {
  Start();
  ASSERT_TRUE(Shows({"Wybierz, jako który użytkownik będziesz pracować:"})) << Pane();
  Keys("Enter");
  ASSERT_TRUE(Shows({"F4 Kasa"})) << Pane();
  Keys("F4 1");  // no payment yet: the entry starts at once
  ASSERT_TRUE(Shows({"Wybierz konkretny rodzaj dokumentu:", "KP"})) << Pane();
  Keys("Enter");
  ASSERT_TRUE(Shows({"Podaj rok szukanego dokumentu:"})) << Pane();
  Retype(4, "2024 Enter");
  ASSERT_TRUE(Shows({"Podaj numer dokumentu"})) << Pane();
  Keys("7 Enter");
  ASSERT_TRUE(Shows({"Dopisanie dokumentu:KP", "7/2024/A", "Hurtownia Żółw", Money(kTotal)})) << Pane();
  Keys("Enter");  // the date stays today's
  Retype(static_cast<int>(Money(kTotal).size()), std::to_string(static_cast<int>(kPaid)) + " Enter");
  Keys("Enter");  // the comment, the last field, confirms
  ASSERT_TRUE(Shows({"KP", Money(kPaid), "Hurtownia"})) << Pane();

  Keys("F3");
  ASSERT_TRUE(Shows({"Wykaz dokumentów związanych dla dokumentu: nr 7/2024",
                     "Bilans dokumentu: " + Money(kTotal - kPaid)}))
      << Pane();
  Keys("Escape");
  Keys("F4");
  ASSERT_TRUE(Shows({"Obliczenie reszty:", "Podaj, ile klient wpłaca:"})) << Pane();
  Retype(static_cast<int>(Money(kPaid).size()), std::to_string(static_cast<int>(kHanded)) + " Enter");
  ASSERT_TRUE(Shows({"RESZTA:", Money(kHanded - kPaid)})) << Pane();
  Keys("Enter");
  Keys("Escape");
  ASSERT_TRUE(Shows({"F4 Kasa"})) << Pane();
  Keys("Escape");
  EXPECT_TRUE(Shows({"KLOTE-END"})) << Pane();

  EXPECT_EQ(Scalar("SELECT typ_dok||':'||nr_dok_zrodl||':'||suma_dok::numeric(9,2)||':'||nr_kontrahenta FROM "
                   "DANE_1_KASA____"),
            std::to_string(kKP) + ":" + std::to_string(invoice_.coded) + ":" + Money(kPaid) + ":7");
  EXPECT_EQ(BalanceOf(invoice_), RoundMoney(kTotal - kPaid));
}

}  // namespace
