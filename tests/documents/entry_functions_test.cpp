// The entry's searches and functions by keys on the real server: each case
// plays keys from the choice of the kind on, reads the line list that the
// work table holds before leaving, and the texts the screens showed.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "../master/contractors_fixture.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docentry.h"
#include "documents/docsave.h"
#include "documents/entry_detail.h"
#include "master/items.h"
#include "master/tables.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

using keys::kEnter;
using keys::kEsc;
constexpr int32_t kWarehouse = 1;
const KeyPair kShiftF3{0, 86}, kShiftF6{0, 89}, kShiftF8{0, 91};
const KeyPair kYes = KeyOfByte('T'), kNo = KeyOfByte('N');

struct Item {
  ShortText name;
  int64_t digits;
  const char* vat;
  Real saleNet, stock;
  int16_t discountLock;
};
// Młotek: taxed, in packages of 12; Śruba: no stock; Wkręt: locked against
// discounts; Gwóźdź: exempt; Młotek duży: the same index as Młotek.
const Item kItems[] = {{"Młotek"_mz, 5901, "23", 10.37L, 50, 0},
                       {"Młotek duży"_mz, 5901, "23", 14.10L, 5, 0},
                       {"Śruba"_mz, 5902, "23", 3.49L, 0, 0},
                       {"Wkręt"_mz, 5903, "8", 7.77L, 20, 1},
                       {"Gwóźdź"_mz, 5904, "zw", 2.35L, 10, 0}};

class EntryFunctions : public ContractorsTest {
 protected:
  void SetUp() override {
    ContractorsTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
    for (const Item& i : kItems) {
      ItemData item;
      item.name = i.name;
      item.vat = ShortText(i.vat);
      item.digitIndex = i.digits;
      item.supplier = 1;
      item.unit = "szt";
      item.packQuantity = i.digits == 5901 ? 12 : 0;
      item.saleNet = i.saleNet;
      item.saleGross = GrossOfNet(i.saleNet, VatRateOf(item.vat));
      StockRow stock;
      stock.quantity = i.stock;
      stock.saleNet = item.saleNet;
      stock.saleGross = item.saleGross;
      ShortText refusal;
      ASSERT_EQ(ItemAdd(item, ItemRules{}, kWarehouse, stock, refusal), 0) << refusal.Str();
      if (i.discountLock) {
        ASSERT_EQ(SetItemDiscountLock(item.number, 1), 0);
      }
    }
    ConfigSettings() = ConfigValues{};
    ConfigSettings().SetNumber(entrydetail::kConfigLineDigitTake, 1);
    ConfigSettings().SetNumber(entrydetail::kConfigLineDigitQuantity, 2);
    ConfigSettings().SetText(entrydetail::kConfigLineDigitAutoQuantity, ShortText("3"));
  }
  void TearDown() override {
    ConfigSettings() = ConfigValues{};
    ContractorsTest::TearDown();
  }
  // The line list as the work table holds it now.
  static std::vector<DocLine> Lines() {
    std::vector<DocLine> lines;
    EXPECT_EQ(WorkLinesRead(WorkTablePath(CurrentUserNumber()), lines), 0);
    return lines;
  }
  // Plays the retail sale's entry: group 1, the steps, then a check of the
  // lines, then leaving with the lines dropped.
  static void RunEntry(std::vector<KeyStep> steps, const std::function<void(const std::vector<DocLine>&)>& check) {
    std::vector<KeyStep> all = {{{KeyOfByte('1')}}};
    all.insert(all.end(), steps.begin(), steps.end());
    all.push_back({{kEsc}, [check] { check(Lines()); }});
    // Leaving asks about the lines; a box still up takes the first Esc.
    all.push_back({{kYes}});
    all.push_back({{kEsc, kYes}});
    Play(std::move(all));
    DocumentEntry(kWarehouse);
  }
  static KeyStep Digits(const char* digits) { return {Typed(ShortText(digits), {kEnter})}; }
  // A field of so many places cleared, the text typed and Enter.
  static KeyStep Retyped(std::size_t places, const char* text) {
    std::vector<KeyPair> k(places, keys::kBackspace);
    for (const KeyPair t : Typed(ShortText(text), {kEnter})) k.push_back(t);
    return {k};
  }
};

// The lines as "name:quantity" in order.
std::string Summary(const std::vector<DocLine>& lines) {
  std::string out;
  for (const DocLine& l : lines)
    out += TrimRight(l.item.name, ' ').Str() + ":" + std::to_string(static_cast<int>(l.quantity)) + ";";
  return out;
}

TEST_F(EntryFunctions, DigitSearchesAndFunctionsOverTheLineList) {
  struct Case {
    const char* what;
    std::vector<KeyStep> steps;
    std::string lines;
    std::vector<ShortText> shown;
    std::function<void()> setup = {};
  };
  auto config = [](int line, int value) { return [=] { ConfigSettings().SetNumber(line, value); }; };
  const std::string hammer = "Młotek"_mz.Str(), screw = "Wkręt"_mz.Str();
  const Case cases[] = {
      {"the index takes the item with the configured quantity", {Digits("5901")}, hammer + ":3;", {}},
      {"an unknown index", {Digits("777"), {{kEnter}}}, "", {entrydetail::kNoDigitIndexText}},
      {"no item above zero: the question", {Digits("5902"), {{kNo}}}, "", {entrydetail::kNoPositiveText}},
      {"taken after the question, with the note", {Digits("5902"), {{kYes}}, {{kEnter}}}, "(any)",
       {entrydetail::kZeroStockText}},
      {"asked about each item of the index in turn",
       {Digits("5901"), {{kYes}}},
       "Młotek duży"_mz.Str() + ":3;",
       {"Jest ! Czy szukać dalej ?"_mz},
       config(entrydetail::kConfigLineDigitTake, 0)},
      {"keypad letters typed as the index's digits", {Digits("59mj")}, hammer + ":3;", {},
       config(entrydetail::kConfigLineDigitLetters, 1)},
      {"packages: the entry counts standards", {Digits("5901")}, hammer + ":36;", {},
       config(entrydetail::kConfigLinePackages, 3)},
      {"automatic sort by name", {Digits("5903"), Digits("5901")}, hammer + ":3;" + screw + ":3;", {},
       config(entrydetail::kConfigLineAutoSort, 1)},
      {"VAT of a line in the fallback mode",
       {Digits("5901"), {{keys::kTab, KeyPair{0, 88}}}, {{kEnter}}},
       hammer + ":3;",
       {"Pracujesz w trybie awaryjnym baz połączenia."_mz},
       [] {
         ConfigSettings().SetNumber(entrydetail::kConfigLineVatChange, 1);
         ConfigSettings().SetNumber(entrydetail::kConfigLineFallbackBase, 2);
       }},
      {"sign reversal, then zeroing",
       {Digits("5901"), Digits("5903"), {{keys::F(6)}}},
       hammer + ":-3;" + screw + ":-3;",
       {}},
      {"zeroing", {Digits("5901"), {{kShiftF6}}}, hammer + ":0;", {}},
      {"another date of entry warns",
       {{{keys::F(9)}}, Retyped(10, "01-02-2024"), {{kEnter}}},
       "",
       {entrydetail::kDateChangeTitle, "Pracujesz z datą inną, niż dziesiejsza."_mz}},
      {"two lines of one item joined on the current one",
       {Digits("5901"), Digits("5903"), Digits("5901"), {{keys::kTab, keys::kUp, keys::kUp, keys::F(8)}},
        {{keys::kDown, keys::kDown, kShiftF8}}},
       screw + ":3;" + hammer + ":6;",
       {}},
      {"a mark survives the automatic sort that rewrites the lines",
       {Digits("5901"), {{keys::kTab, keys::F(8), keys::kTab}}, Digits("5904"), Digits("5901"),
        {{keys::kTab, kShiftF8}}},
       "Gwóźdź"_mz.Str() + ":3;" + hammer + ":6;",
       {},
       config(entrydetail::kConfigLineAutoSort, 1)},
  };
  for (const Case& c : cases) {
    ConfigSettings().SetNumber(entrydetail::kConfigLineDigitTake, 1);
    if (c.setup) c.setup();
    std::string got = "(not reached)";
    RunEntry(c.steps, [&](const std::vector<DocLine>& lines) { got = Summary(lines); });
    if (c.lines != "(any)") {
      EXPECT_EQ(got, c.lines) << c.what;
    }
    ConfigSettings() = ConfigValues{};
    ConfigSettings().SetNumber(entrydetail::kConfigLineDigitQuantity, 2);
    ConfigSettings().SetText(entrydetail::kConfigLineDigitAutoQuantity, ShortText("3"));
    for (const ShortText& text : c.shown) EXPECT_TRUE(Shown(text)) << c.what;
    EXPECT_TRUE(Shown(entrydetail::EntryKeysText())) << c.what;
  }
}

TEST_F(EntryFunctions, PatternSearchPutsTheBarOnTheFoundItem) {
  std::string barRow;
  RunEntry({{{kShiftF3}}, {Typed(ShortText("ruba"), {kEnter})}},
           [&](const std::vector<DocLine>&) { barRow = tui_test::Cells(3, 1, 6); });
  EXPECT_EQ(barRow, "Śruba "_mz.Str());
  EXPECT_NE(ScreenBytes().find("LIKE %ruba%"), std::string::npos);
}

// Discount of the whole list: step and percentage typed in the form; the
// prices come from the catalogue's net price, the locked item keeps its own.
TEST_F(EntryFunctions, DocumentDiscountByStepWithTheLockedItemCounted) {
  ConfigSettings().SetNumber(entrydetail::kConfigLineDiscountLock, 1);
  for (const double step : {0.01, 1.0}) {
    std::vector<DocLine> got;
    RunEntry({Digits("5901"), Digits("5904"), Digits("5903"), {{keys::F(5)}}, Retyped(8, step == 1.0 ? "1" : "0.01"),
              Retyped(8, "10"), {{kEnter}}},
             [&](const std::vector<DocLine>& lines) { got = lines; });
    ASSERT_EQ(got.size(), 3u) << step;
    for (const DocLine& l : got) {
      const Item* item = nullptr;
      for (const Item& i : kItems)
        if (i.name == TrimRight(l.item.name, ' ')) item = &i;
      ASSERT_NE(item, nullptr);
      const double rate = item->vat == std::string("zw") ? 0 : std::atof(item->vat);
      double net = static_cast<double>(item->saleNet), gross = 0;
      if (item->discountLock) {
        gross = static_cast<double>(GrossOfNet(item->saleNet, rate));
      } else {
        net = step * std::round(net * 0.9 / step);
        gross = rate == 0 ? net : std::round(net * (100 + rate)) / 100;
      }
      EXPECT_NEAR(static_cast<double>(l.item.saleNet), net, 1e-9) << step << " " << item->digits;
      EXPECT_NEAR(static_cast<double>(l.item.saleGross), gross, 1e-9) << step << " " << item->digits;
      if (rate == 0) {
        EXPECT_EQ(l.item.saleNet, l.item.saleGross);
      }
    }
    EXPECT_TRUE(Shown("Podanie rabatu od cen sprzedaży, który naliczony będzie@dla całości specyfikacji"_mz)) << step;
    EXPECT_TRUE(Shown("Na specyfikacji nie udzielono rabatów dla 1 pozycji, "_mz)) << step;
  }
}

#define SQL(statement)                           \
  do {                                           \
    std::string out_;                            \
    ASSERT_TRUE(Psql(statement, &out_)) << out_; \
  } while (0)

// A line of a saved document straight into the warehouse's lines (its position the item's number).
std::string SpecRow(int kind, int32_t coded, const char* date, int item, double q, double buy, double sale,
                    const char* vat) {
  char row[256];
  std::snprintf(row, sizeof row, "(%d,%d,'A',%d,'%s',%d,'%s',%g,%g,%g,%g,%g)", kind, coded, item, date, item, vat, q, buy,
                buy, sale, sale);
  return row;
}
const std::string kSpecColumns =
    "INSERT INTO DANE_1_SPECYFIK (typ_dok,nr_dok,znak_dok,pozycja,data_dok,nr_towaru,vat,ilosc,c_zak_netto,"
    "c_zak_brutto,c_spr_netto,c_spr_brutto) VALUES ";

// FIFO: 28 of 78 received are gone (stock 50), so 3 more take 2 at the first
// receipt's price and 1 at the second's; a sale's line is no receipt.
TEST_F(EntryFunctions, FifoCostOfAnIssueFromTheEarlierReceipts) {
  SQL(kSpecColumns + SpecRow(6, 1, "2024-01-05", 1, 30, 4, 0, "23") + "," +
      SpecRow(1, 2, "2024-01-10", 1, 10, 9, 12, "23") + "," + SpecRow(6, 3, "2024-02-01", 1, 48, 5, 0, "23"));
  ConfigSettings().SetNumber(entrydetail::kConfigLineEntryBrowse, 2);
  std::vector<DocLine> got;
  RunEntry({Digits("5901")}, [&](const std::vector<DocLine>& lines) { got = lines; });
  ASSERT_EQ(got.size(), 1u);
  const double skip = 30 + 48 - 50, fromFirst = std::min(3.0, 30 - skip);
  EXPECT_NEAR(static_cast<double>(got[0].item.buyNet), (fromFirst * 4 + (3 - fromFirst) * 5) / 3, 1e-6);
}

// Items of a saved invoice come onto an empty list, replace a list or join it.
TEST_F(EntryFunctions, ItemsPulledFromASavedDocument) {
  SQL("INSERT INTO DANE_1_NAGLOWKI (typ_dok,nr_dok,znak_dok,data_dok,suma_dok) VALUES (2,7,'A','2024-03-01',62.40)");
  SQL(kSpecColumns + SpecRow(2, 7, "2024-03-01", 1, 2, 6, 10, "23") + "," +
      SpecRow(2, 7, "2024-03-01", 4, 5, 5, 7, "8"));
  const std::string pulled = "Młotek:2;Wkręt:5;"_mz.Str();
  const struct {
    const char* what;
    std::vector<KeyStep> steps;
    std::string lines;
  } cases[] = {
      {"onto an empty list", {{{keys::F(7)}}, {{keys::kDown, kEnter}}, {{kEnter}}}, pulled},
      {"replacing the lines",
       {Digits("5904"), {{keys::F(7)}}, {{keys::kDown, kEnter}}, {{kEnter}}, {{keys::kUp, kEnter}}},
       pulled},
      {"added to the lines",
       {Digits("5904"), {{keys::F(7)}}, {{keys::kDown, kEnter}}, {{kEnter}}, {{kEnter}}},
       "Gwóźdź:3;"_mz.Str() + pulled},
      {"a marked line keeps its mark and joins a pulled line of its item",
       {Digits("5901"), {{keys::kTab, keys::F(8), keys::kTab}}, {{keys::F(7)}}, {{keys::kDown, kEnter}}, {{kEnter}},
        {{kEnter}}, {{keys::kTab, keys::kUp, keys::kUp, keys::kUp, keys::kDown, kShiftF8}}},
       "Młotek:"_mz.Str() + std::to_string(3 + 2) + ";" + "Wkręt:5;"_mz.Str()},
  };
  for (const auto& c : cases) {
    std::vector<DocLine> got;
    RunEntry(c.steps, [&](const std::vector<DocLine>& lines) { got = lines; });
    EXPECT_EQ(Summary(got), c.lines) << c.what;
    for (const DocLine& l : got) {
      if (l.item.number == 1) {
        EXPECT_EQ(l.item.saleNet, 10) << c.what;
      }
    }
    EXPECT_TRUE(Shown(entrydetail::kPullKindTitle)) << c.what;
  }
}

// The customer's discount by registration number, and one that is not there.
TEST_F(EntryFunctions, DiscountOfACustomerNamedByRegistration) {
  Contractor customer;
  customer[KontrahentCol::nazwa] = ShortText("Klient");
  customer[KontrahentCol::nr_rej] = ShortText("R1");
  customer.discount = 15;
  ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, customer, NumberRange{}), ContractorOutcome::kDone);
  ConfigSettings().SetNumber(entrydetail::kConfigLineContractorFeatures, 1);
  const struct {
    const char* registration;
    KeyPair answer;
    ShortText shown;
    double percent;
  } cases[] = {{"R1", kYes, "15 %@Czy tak ?"_mz, 15}, {"R9", kEnter, entrydetail::kNoSuchCustomerText, 0}};
  for (const auto& c : cases) {
    std::vector<KeyStep> steps = {Digits("5901"), {{keys::F(5)}}, {Typed(ShortText(c.registration), {kEnter})}};
    steps.push_back({{c.answer}});
    steps.push_back({{kEnter, kEnter}});
    std::vector<DocLine> got;
    RunEntry(steps, [&](const std::vector<DocLine>& lines) { got = lines; });
    ASSERT_EQ(got.size(), 1u) << c.registration;
    EXPECT_NEAR(static_cast<double>(got[0].item.saleNet), std::round(1037 * (100 - c.percent) / 100) / 100, 1e-9)
        << c.registration;
    EXPECT_TRUE(Shown(c.shown)) << c.registration;
  }
}

// An item renamed by another user meanwhile keeps its line's prices.
TEST_F(EntryFunctions, DiscountSkipsALineWhoseItemChanged) {
  std::vector<DocLine> got;
  RunEntry({Digits("5901"),
            {{keys::F(5)}, [] { SQL("UPDATE DANE_KAT_TOW_ SET nazwa='Inny' WHERE nr_wewn=1"); }},
            {{kEnter}},
            {{keys::kBackspace, KeyOfByte('1'), KeyOfByte('0'), kEnter}},
            {{kEnter}}},
           [&](const std::vector<DocLine>& lines) { got = lines; });
  ASSERT_EQ(got.size(), 1u);
  EXPECT_EQ(got[0].item.saleNet, kItems[0].saleNet);
  EXPECT_TRUE(Shown("Ktoś skasował pozycję `Młotek@albo zmienił jej znaczące cechy."_mz));
}

// Joining takes at most 100 marked lines.
TEST_F(EntryFunctions, TheHundredAndFirstMarkIsRefused) {
  ASSERT_EQ(WorkTableEnsure(CurrentUserNumber()), 0);
  for (int i = 0; i < entrydetail::kMergeMax + 1; ++i) {
    DocLine line;
    line.item.number = 1;
    line.item.name = kItems[0].name;
    line.quantity = 1;
    ASSERT_EQ(WorkLineAppend(WorkTablePath(CurrentUserNumber()), line), 0);
  }
  std::vector<KeyStep> steps = {{{keys::kTab, keys::kHome}}};
  for (int i = 0; i < entrydetail::kMergeMax + 1; ++i) steps.push_back({{keys::F(8), keys::kDown}});
  steps.push_back({{kEnter}});
  std::size_t lines = 0;
  RunEntry(steps, [&](const std::vector<DocLine>& l) { lines = l.size(); });
  EXPECT_EQ(lines, static_cast<std::size_t>(entrydetail::kMergeMax + 1));
  EXPECT_TRUE(Shown("Nie można połączyć więcej, niż 100 pozycji."_mz));
}

// The default customer goes into the header of kinds that name customers only.
TEST_F(EntryFunctions, DefaultCustomerFillsTheHeader) {
  Contractor customer;
  customer[KontrahentCol::nazwa] = ShortText("Klient");
  ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, customer, NumberRange{}), ContractorOutcome::kDone);
  entrydetail::EntryExtras x;
  x.defaultCustomer = customer.number;
  const struct {
    int kind;
    int32_t given;
    int32_t expected;
  } cases[] = {{1, 0, customer.number}, {14, 0, customer.number}, {6, 0, 0}, {2, 77, 77}};
  for (const auto& c : cases) {
    DocumentHeader header;
    header.contractor = c.given;
    entrydetail::ApplyDefaultCustomer(x, c.kind, header);
    EXPECT_EQ(header.contractor, c.expected) << c.kind;
    EXPECT_EQ(TrimRight(header.contractorName, ' ') == ShortText("Klient"), c.given == 0 && c.expected != 0);
  }
}

}  // namespace
