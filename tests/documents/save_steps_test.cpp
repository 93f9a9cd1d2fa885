// The save's questions before its writes (the VAT payment of an invoice, the
// operator's stock decision), the receipt's dating of the catalogue, and the
// entry's purchase price edit and work file key: rules by tables, then keys
// on the real server with the results worked out here.
#include <gtest/gtest.h>

#include <cmath>

#include "../master/contractors_fixture.h"
#include "../master/items_fixture.h"
#include "base/dates.h"
#include "base/numbers.h"
#include "config/konfigur.h"
#include "documents/docentry.h"
#include "documents/docsave.h"
#include "documents/entry_detail.h"
#include "documents/payments.h"
#include "documents/save_detail.h"
#include "master/items.h"
#include "master/tables.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

using keys::kEnter;
using keys::kEsc;
using savedetail::StockDecision;
constexpr int32_t kWarehouse = 1;
const KeyPair kYes = KeyOfByte('T'), kNo = KeyOfByte('N');
const int32_t kDate = EncodeDaySerial(2024, 3, 15);

TEST(SaveStepRules, StockDecisionVatPaymentPlaceAndReturnTransfer) {
  std::array<bool, 19> flagged{};
  flagged[2] = flagged[14] = flagged[16] = flagged[17] = true;
  using D = StockDecision;
  struct Stock { int kind, option; D want; };
  for (const Stock c : {Stock{2, 0, D::kNoChange}, Stock{14, 1, D::kAsk}, Stock{2, 2, D::kKindEffect},
                        Stock{6, 0, D::kKindEffect}, Stock{16, 0, D::kKindEffect}, Stock{17, 1, D::kKindEffect},
                        Stock{2, 7, D::kKindEffect}, Stock{19, 0, D::kKindEffect}})
    EXPECT_EQ(savedetail::DecideStockChange(c.kind, flagged, c.option), c.want) << c.kind << "/" << c.option;
  struct Vat { int kind, option; Real total; bool asks; };
  for (const Vat c : {Vat{2, 1, 10, true}, Vat{2, 2, 0.01L, true}, Vat{2, 0, 10, false}, Vat{2, 1, 0, false},
                      Vat{1, 1, 10, false}, Vat{2, 3, 10, false}})
    EXPECT_EQ(savedetail::AsksVatPayment(c.kind, c.option, c.total), c.asks) << c.kind << "/" << c.option;
  struct Place { int kind, fieldKind; bool on; const char* want; };
  for (const Place c : {Place{7, 0, true, "2024"}, Place{12, 2, true, ""}, Place{18, 0, true, ""},
                        Place{2, 1, true, ""}, Place{6, 1, false, ""}}) {
    SaveSettings s;
    s.placeOnReceipt = c.on;
    s.placeFieldKind = c.fieldKind;
    EXPECT_EQ(savedetail::ReceiptPlaceValue(c.kind, s, kDate).Str(), c.want) << c.kind << "/" << c.fieldKind;
  }
  EXPECT_TRUE(entrydetail::IsReturnTransfer(15, 7, 7));
  EXPECT_FALSE(entrydetail::IsReturnTransfer(15, 0, 0));
  EXPECT_FALSE(entrydetail::IsReturnTransfer(2, 7, 7));
}

// Three items with stock 20, VAT 23, 8 and 5, net sale prices in whole grosze.
const char* const kVat[] = {"23", "8", "5"};
const Real kSaleNet[] = {12.34L, 5.55L, 0.99L};
const Real kQuantity[] = {3, 2, 7};

class SaveSteps : public ContractorsTest {
 protected:
  void SetUp() override {
    ContractorsTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
    for (int i = 0; i < 3; ++i) {
      ItemData item;
      item.name = ShortText("Towar " + std::to_string(i + 1));
      item.vat = ShortText(kVat[i]);
      item.digitIndex = 5901 + i;
      item.supplier = 1;
      item.unit = "szt";
      item.saleNet = kSaleNet[i];
      item.buyNet = RoundHalfAway(kSaleNet[i] * 50) / 100;
      item.saleGross = GrossOfNet(kSaleNet[i], VatRateOf(item.vat));
      item.place = i == 2 ? ShortText("R1") : ShortText();
      item.number = AddItemRow(item, 20);
      items_.push_back(item);
    }
    ASSERT_TRUE(Psql("INSERT INTO DANE_DOK_PLAT (typ_dok,nazwa,typ_kontrahenta,konto,konto_przeciwstawne,czy_przychod,"
                     "znak_dok,zablokowany,druk_dodatkowy,instrukcja_ksieg,rezerwa) VALUES "
                     "(2,'Faktura','O','','','T','A','N','N','',0),(105,'KP VAT','O','','100','T','KV','N','N','',0),"
                     "(106,'KP reszta','O','','100','T','KR','N','N','',0)"));
    ConfigSettings() = ConfigValues{};
    ASSERT_EQ(WorkTableEnsure(CurrentUserNumber()), 0);
  }
  void TearDown() override {
    ConfigSettings() = ConfigValues{};
    SetEntryWorkFileHook(nullptr);
    ContractorsTest::TearDown();
  }
  void WriteLines() {
    for (int i = 0; i < 3; ++i) {
      DocLine l;
      l.item = items_[static_cast<std::size_t>(i)];
      l.quantity = kQuantity[i];
      ASSERT_EQ(WorkLineAppend(WorkTablePath(CurrentUserNumber()), l), 0);
    }
  }
  // The invoice's total in grosze: net lines rounded to grosze, VAT added per rate, rounded half up.
  static int64_t TotalGrosz() {
    int64_t hundredths = 0;
    for (int i = 0; i < 3; ++i)
      hundredths += std::llround(kSaleNet[i] * 100) * static_cast<int64_t>(kQuantity[i]) * (100 + std::atoi(kVat[i]));
    return (hundredths + 50) / 100;
  }
  static std::string Stocks() {
    return Scalar("SELECT string_agg(ilosc::numeric(9,1)::text, ',' ORDER BY nr_wewn) FROM DANE_1_STANY_MG");
  }
  static SaveResult Save(int kind, const SaveSettings& s, std::vector<KeyStep> steps) {
    DocumentHeader h;
    h.kind = static_cast<int16_t>(kind);
    h.mark = "A";
    h.date = kDate;
    Play(std::move(steps));
    return SaveNewDocument(kWarehouse, h, WorkTablePath(CurrentUserNumber()), s);
  }
  std::vector<ItemData> items_;
};

TEST_F(SaveSteps, TheVatPaymentOfAnInvoiceIsAskedCheckedAndPaidInParts) {
  ConfigSettings().SetNumber(kConfigLineAutoPayments, 1);
  ConfigSettings().SetText(kConfigLinePaymentKinds, "0,0,105,106,0");
  const int64_t total = TotalGrosz();
  const std::string tooMuch = std::to_string(total / 100 + 1), paid = "10.5";
  struct Case {
    const char* what;
    std::vector<KeyStep> keys;
    bool saved;
    std::string payments;  // kind:grosze of the document's payments
  };
  const Case cases[] = {
      {"Esc at the question gives up", {{{kEsc}}}, false, ""},
      {"too much, then giving up", {{Typed(ShortText(tooMuch), {kEnter})}, {{kYes}}}, false, ""},
      {"too much, then a fitting payment",
       {{Typed(ShortText(tooMuch), {kEnter})}, {{kNo}}, {Typed(ShortText(paid), {kEnter})}},
       true,
       "105:1050,106:" + std::to_string(total - 1050)},
      {"the whole total paid as VAT", {{Typed(ShortText(std::to_string(total / 100) + "." +
                                                       std::to_string(100 + total % 100).substr(1)),
                                              {kEnter})}},
       true, "105:" + std::to_string(total)},
  };
  SaveSettings s;
  s.vatPaymentOption = 1;
  for (const Case& c : cases) {
    WriteLines();
    const SaveResult r = Save(2, s, c.keys);
    EXPECT_EQ(r.outcome == SaveOutcome::kSaved, c.saved) << c.what;
    EXPECT_TRUE(Shown(kAskVatPaymentText)) << c.what;
    EXPECT_EQ(Shown(kVatPaymentTooBigText), c.keys.size() > 1) << c.what;
    if (!c.saved) {
      EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI"), "0") << c.what;
      ASSERT_EQ(WorkTableClear(WorkTablePath(CurrentUserNumber())), 0);
      continue;
    }
    EXPECT_EQ(std::llround(r.totals.total * 100), total) << c.what;
    EXPECT_EQ(Scalar("SELECT string_agg(typ_dok || ':' || (suma_dok*100)::bigint, ',' ORDER BY typ_dok) FROM "
                     "DANE_1_KASA____ WHERE nr_dok_zrodl=" + std::to_string(r.coded)),
              c.payments)
        << c.what;
  }
}

TEST_F(SaveSteps, TheOperatorDecidesTheStockChangeOfFlaggedKinds) {
  struct Case {
    const char* what;
    int option;
    bool flagged;
    std::vector<KeyStep> keys;
    bool issued;  // the stock went down by the lines
  };
  const Case cases[] = {{"asked, refused", 1, true, {{{kNo}}}, false},
                        {"asked, agreed", 1, true, {{{kYes}}}, true},
                        {"never", 0, true, {}, false},
                        {"a kind not flagged", 0, false, {}, true}};
  std::vector<Real> stock = {20, 20, 20};
  for (const Case& c : cases) {
    WriteLines();
    SaveSettings s;
    s.stockChangeOption = c.option;
    s.stockDecidedKinds[14] = c.flagged;
    s.mayGoBelowZero = true;
    const SaveResult r = Save(14, s, c.keys);
    ASSERT_EQ(r.outcome, SaveOutcome::kSaved) << c.what;
    EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_SPECYFIK WHERE nr_dok=" + std::to_string(r.coded)), "3") << c.what;
    std::string want;
    for (int i = 0; i < 3; ++i) {
      if (c.issued) stock[static_cast<std::size_t>(i)] -= kQuantity[i];
      want += (i ? "," : "") + std::to_string(static_cast<int>(stock[static_cast<std::size_t>(i)])) + ".0";
    }
    EXPECT_EQ(Stocks(), want) << c.what;
    EXPECT_EQ(Shown(kAskStockChangeText), !c.keys.empty()) << c.what;
  }
}

TEST_F(SaveSteps, AReceiptDatesTheEmptyPlaceOfItsItems) {
  WriteLines();
  SaveSettings s;
  s.placeOnReceipt = true;
  s.placeFieldKind = 1;
  ASSERT_EQ(Save(6, s, {}).outcome, SaveOutcome::kSaved);
  // The third item had its place already; the others take the date in the short layout.
  EXPECT_EQ(Scalar("SELECT string_agg(TRIM(miejsce_w_magazynie), ',' ORDER BY nr_wewn) FROM DANE_KAT_TOW_"),
            "15-03-24,15-03-24,R1");
}

// A changed line VAT: the pair of transfers of the warehouse to itself, out
// under the catalogue's VAT and in under the line's, and the catalogue follows.
TEST_F(SaveSteps, AChangedLineVatCorrectsTheCatalogueThroughAPairOfTransfers) {
  struct Case { const char* what; bool changed, option; const char* lineVat; bool corrected; };
  const Case cases[] = {{"corrected", true, true, "8", true},
                        {"the option off", true, false, "8", false},
                        {"not changed in the entry", false, true, "8", false},
                        {"the same VAT as the catalogue", true, true, "23", false}};
  for (const Case& c : cases) {
    DocLine l;
    l.item = items_[0];
    l.item.vat = ShortText(c.lineVat);
    l.item.buyGross = GrossOfNet(l.item.buyNet, 8);
    l.item.saleGross = GrossOfNet(l.item.saleNet, 8);
    l.quantity = 2;
    ASSERT_EQ(WorkLineAppend(WorkTablePath(CurrentUserNumber()), l), 0);
    SaveSettings s;
    s.vatChanged = c.changed;
    s.correctVat = c.option;
    const SaveResult r = Save(14, s, {});
    ASSERT_EQ(r.outcome, SaveOutcome::kSaved) << c.what;
    const std::string pair = Scalar(
        "SELECT string_agg(H.typ_dok || ':' || TRIM(S.vat) || ':' || S.ilosc::numeric(9,1) || ':' || "
        "(S.c_zak_netto * 100)::bigint, ',' ORDER BY H.typ_dok) FROM DANE_1_NAGLOWKI H JOIN DANE_1_SPECYFIK S "
        "USING (typ_dok,nr_dok,znak_dok) WHERE H.komentarz LIKE 'zm.VAT dla %'");
    const std::string cost = std::to_string(std::llround(items_[0].buyNet * 100));
    EXPECT_EQ(pair, c.corrected ? "15:23:2.0:" + cost + ",18:8:2.0:" + cost : "") << c.what;
    EXPECT_EQ(Scalar("SELECT TRIM(vat) FROM DANE_KAT_TOW_ WHERE nr_wewn=" + std::to_string(items_[0].number)),
              c.corrected ? "8" : "23")
        << c.what;
    if (c.corrected) {
      ASSERT_TRUE(Psql("UPDATE DANE_KAT_TOW_ SET vat='23' WHERE nr_wewn=" + std::to_string(items_[0].number)));
      ASSERT_TRUE(Psql("DELETE FROM DANE_1_NAGLOWKI WHERE typ_dok IN (15,18)"));
    }
  }
  // The pairs move nothing: only the issues of 2 each took stock.
  EXPECT_EQ(Scalar("SELECT ilosc::numeric(9,1) FROM DANE_1_STANY_MG WHERE nr_wewn=" +
                   std::to_string(items_[0].number)),
            "12.0");
}

// The entry: F4 edits a line's purchase price, after which a kind that
// does not keep purchase prices is refused; Ctrl+F7 runs the lent work file
// function and the line list is read again.
int32_t gHookWarehouse = 0;
void AddOneLine(int32_t warehouse) {
  gHookWarehouse = warehouse;
  DocLine l;
  l.item.number = 2;
  l.item.name = "Z pliku";
  l.quantity = 4;
  (void)WorkLineAppend(WorkTablePath(CurrentUserNumber()), l);
}

TEST_F(SaveSteps, EntryEditsPurchasePricesAndTakesTheWorkFile) {
  ConfigSettings().SetNumber(entrydetail::kConfigLineDigitTake, 1);
  ConfigSettings().SetNumber(entrydetail::kConfigLineDigitQuantity, 2);
  ConfigSettings().SetText(entrydetail::kConfigLineDigitAutoQuantity, ShortText("3"));
  ConfigSettings().SetNumber(entrydetail::kConfigLineBuyPrices, 2);
  EXPECT_EQ(entrydetail::EntryKeysText().Str().find("^F7"), std::string::npos);
  SetEntryWorkFileHook(AddOneLine);
  EXPECT_NE(entrydetail::EntryKeysText().Str().find("^F7"), std::string::npos);
  EXPECT_LE(entrydetail::EntryKeysText().Length(), 80);
  std::vector<DocLine> seen;
  const KeyPair kShiftF9{0, 92}, kCtrlF7{0, 100};
  Play({{{KeyOfByte('1')}},
        {Typed(ShortText("5901"), {kEnter})},
        {{keys::kTab, keys::F(4)}},
        {[] {
          std::vector<KeyPair> k(8, keys::kBackspace);
          for (const KeyPair t : Typed(ShortText("7.25"), {kEnter})) k.push_back(t);
          return k;
        }()},
        {{kShiftF9, KeyOfByte('2'), kEnter}},
        {{kEnter, kCtrlF7}},
        {{kEsc}, [&] { EXPECT_EQ(WorkLinesRead(WorkTablePath(CurrentUserNumber()), seen), 0); }},
        {{kYes}},
        {{kEsc, kYes}}});
  DocumentEntry(kWarehouse);
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].item.buyNet, 7.25L);
  EXPECT_EQ(seen[0].item.buyGross, GrossOfNet(7.25L, 23));
  EXPECT_EQ(seen[1].item.name.Str(), "Z pliku");
  EXPECT_EQ(gHookWarehouse, kWarehouse);
  EXPECT_TRUE(Shown(entrydetail::kBuyPricesChangedText));
}

}  // namespace
