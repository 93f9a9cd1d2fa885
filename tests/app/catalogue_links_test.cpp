// What the application lends the catalogues, through the real chain: the
// contractor list's F2 and F4 on documents and payments of a warehouse, and
// the rebuild of the number register from the other catalogues' menu.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/catalogue_links.h"
#include "app/operations.h"
#include "config/konfigur.h"
#include "documents/payments_fixture.h"
#include "documents/docnumber.h"
#include "master/contractor_hooks.h"
#include "master/contractor_screens.h"
#include "master/dictionary_screens.h"
#include "print/keyscript.h"
#include "tui/tui_fixture.h"

namespace {

using namespace keyscript;

class CatalogueLinks : public PaymentsTest {
 protected:
  static constexpr int32_t kCustomer = 7;

  void SetUp() override {
    PaymentsTest::SetUp();
    tui_test::InitTerminal("linux");
    ASSERT_TRUE(Psql("INSERT INTO DANE_ODBIORCY (nazwa,nazwa_inne,numer) VALUES ('Kowalski','',7)"));
    ASSERT_TRUE(Psql("INSERT INTO DANE_MAGAZYNY (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES ('M1','',1,'Z')"));
    state_.warehouse = kWarehouse;
    RegisterCatalogueLinks(state_);
    Begin();
  }
  void TearDown() override {
    End();
    SetContractorDocumentHooks({});
    SetOtherCatalogueRow(ShortText(), nullptr);
    ConfigSettings() = ConfigValues::Defaults();
    PaymentsTest::TearDown();
  }
  static void Keys(std::initializer_list<KeyPair> keys) {
    gScript.assign(keys);
    gScreens.clear();
  }
  static bool Seen(const std::string& text) { return ScreensWith(text) > 0; }
  AppState state_;
};

std::string Money13(const char* amount) { return std::string(13 - std::string(amount).size(), ' ') + amount; }

// F2 and F4 of the customers' list: the balance and the documents of the
// current warehouse, computed here from the documents written: an invoice of
// 100 paid 30, an issue of 20; a purchase and another customer's invoice stay out.
TEST_F(CatalogueLinks, ReceivablesAndDocumentsOfTheCurrentWarehouse) {
  const DocRef invoice = Header(2, 1, 100, kCustomer);
  (void)Header(14, 2, 20, kCustomer);
  (void)Header(6, 3, 40, kCustomer);
  (void)Header(2, 4, 50, 8);
  ASSERT_EQ(Pay(kKP, invoice, 30), PaymentResult::kDone);
  const std::string balance = "bilans dla kontrahenta: "_mz.Str() + "70.00";
  const struct {
    int32_t warehouse;
    KeyPair key;
    std::vector<std::string> shown, absent;
  } cases[] = {
      {kWarehouse, keys::F(2), {balance}, {}},
      {kWarehouse, keys::F(4), {Money13("100.00") + "|" + Money13("70.00"), Money13("20.00") + "|" + std::string(13, ' ')},
       {Money13("40.00"), Money13("50.00")}},
      {0, keys::F(2), {kNoWarehouseText.Str()}, {balance}},
  };
  for (const auto& c : cases) {
    state_.warehouse = c.warehouse;
    Keys({c.key, keys::kEsc, keys::kEsc});
    ContractorCatalogue(ContractorKind::kCustomer);
    for (const std::string& text : c.shown) EXPECT_TRUE(Seen(text)) << text;
    for (const std::string& text : c.absent) EXPECT_FALSE(Seen(text)) << text;
  }
}

// "Inne katalogi" ends with the register of numbers: its rebuild adds the
// transfer of the warehouse under common numbering, and refuses with it off.
TEST_F(CatalogueLinks, RebuildOfTheNumberRegisterFromTheOtherCatalogues) {
  (void)Header(15, 5, 10, 1);
  (void)Header(2, 6, 10, kCustomer);
  const std::string transfer = "18:" + std::to_string(Code(2024, 5));
  const struct {
    int16_t common;
    std::string registered;
    ShortText shown;
  } cases[] = {
      {0, "", "Opcje wspólnej numeracji dokumentów sa wylaczone.@Funkcja nie moze byc uzyta."_mz},
      {1, transfer, "sprawdzenie i dodanie brakujacych numerów"_mz},
  };
  for (const auto& c : cases) {
    ConfigSettings().SetNumber(kConfigLineCommonNumbering, c.common);
    Keys({keys::kEnd, keys::kEnter, c.common == 0 ? keys::kEnter : KeyOfByte('2')});
    DictionaryCataloguesMenu();
    EXPECT_TRUE(Seen("katalog numerów dokumentów"_mz.Str()));
    EXPECT_TRUE(Seen(c.shown.Str().substr(0, c.shown.Str().find('@')))) << c.common;
    EXPECT_EQ(Scalar("SELECT string_agg(typ_dok||':'||nr_dok, ',') FROM DANE_NAGLOWKI"), c.registered);
  }
}

}  // namespace
