// The item catalogue and the stock lists on the real server: the rules of
// new items, prices, stock changes against sums the test keeps itself, the
// grouped view, the list's pages, and the screen driven by keys.

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "items_fixture.h"
#include "sqltable/pgconn.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

using keys::kEnter;

// A step typing the text, then the keys after it.
KeyStep Keys(const char* text, std::vector<KeyPair> after = {}) { return {Typed(text, std::move(after))}; }

class ItemsTest : public ItemTablesTest {
 protected:
  // One value read through the program's own connection (the session's view is visible only there).
  static std::string Own(const std::string& sql) {
    PGResult res;
    EXPECT_EQ(PGRunQueryWithTup(sql, res), 0);
    return res.Rows() > 0 ? std::string(res.Value(0, 0)) : std::string("-");
  }
};

TEST(ItemRulesTest, DataOfANewItemIsCheckedInTheOrderOfTheForm) {
  struct Case {
    const char* what;
    std::function<void(ItemData&, ItemRules&)> change;
    ShortText refusal;
  };
  const ShortText range = "Indeks numeryczny musi zawierać się w przedziale [0,999999999999999]."_mz;
  const Case cases[] = {
      {"fine", [](ItemData&, ItemRules&) {}, ""},
      {"highest digit index", [](ItemData& i, ItemRules&) { i.digitIndex = 999999999999999LL; }, ""},
      {"digit index past it", [](ItemData& i, ItemRules&) { i.digitIndex = 1000000000000000LL; }, range},
      {"negative digit index", [](ItemData& i, ItemRules&) { i.digitIndex = -1; }, range},
      {"short code", [](ItemData& i, ItemRules& r) { i.code = "1234"; r.minCodeLength = 5; },
       "Niepoprawny indeks.@Minimalna długość indeksu to 5"_mz},
      {"code long enough", [](ItemData& i, ItemRules& r) { i.code = "12345"; r.minCodeLength = 5; }, ""},
      {"no supplier", [](ItemData& i, ItemRules&) { i.supplier = 0; },
       "Dla towaru musi być wybrany dostawca z numerem różnym od zera."_mz},
      {"no unit", [](ItemData& i, ItemRules&) { i.unit = "  "; }, "Towar musi mieć jakąś jednostkę miary, prawda ?"_mz},
      {"price too big", [](ItemData& i, ItemRules&) { i.saleGross = 1e22L; }, "Przekroczenie zakresu argumentu."_mz},
      {"price not a number", [](ItemData& i, ItemRules&) { i.buyNet = NAN; }, "Przekroczenie zakresu argumentu."_mz},
  };
  for (const Case& c : cases) {
    ItemData item = Item("A");
    ItemRules rules;
    c.change(item, rules);
    EXPECT_EQ(CheckItemData(item, rules), c.refusal) << c.what;
  }
}

TEST(ItemRulesTest, PricesFollowTheVatGroupAndTheRoundingStep) {
  struct Case {
    Real value;
    Real expected;
    Real computed;
  };
  const Case cases[] = {
      {100, 123, GrossFromNet(100, "23")},       {100, 108, GrossFromNet(100, "8 ")},
      {100, 100, GrossFromNet(100, "zwol.")},    {100, 100, GrossFromNet(100, "-100")},
      {123, 100, NetFromGross(123, "23")},       {1.234L, 1.25L, RoundToStep(1.234L, 0.05L)},
      {1.224L, 1.20L, RoundToStep(1.224L, 0.05L)}, {7.77L, 7.77L, RoundToStep(7.77L, 0)},
      {80, 100, SaleFromPurchase(80, 20, true)}, {80, 96, SaleFromPurchase(80, 20, false)},
  };
  for (const Case& c : cases) EXPECT_NEAR(static_cast<double>(c.computed), static_cast<double>(c.expected), 1e-9) << c.value;
}

TEST_F(ItemsTest, AddingGivesNumbersDigitIndexesAndStockRows) {
  ItemData first = Item("MLEKO");
  first.code = "5900001";
  first.digitIndex = 0;
  const int32_t a = AddItemRow(first, 5);
  const int32_t b = AddItemRow(Item("CHLEB"));
  EXPECT_EQ(b, a + 1);
  EXPECT_EQ(Scalar("SELECT indeks_numeryczny||'/'||ilosc||'/'||dostawca FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(a)),
            "1/0.0000000/7");  // the first free digit index, active
  EXPECT_EQ(Scalar("SELECT indeks_numeryczny FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(b)), "2");
  EXPECT_EQ(Quantity(kWarehouse, a), 5);
  EXPECT_EQ(Scalar("SELECT csb FROM dane_1_stany_mg WHERE nr_wewn=" + std::to_string(a)), "18.4500000");

  ItemRules highest;
  highest.digitIndexAfterHighest = true;
  ASSERT_TRUE(Psql("UPDATE dane_kat_tow_ SET indeks_numeryczny=40 WHERE nr_wewn=" + std::to_string(b)));
  ItemData third = Item("SER");
  ShortText refusal;
  ASSERT_EQ(ItemAdd(third, highest, 0, StockRow{}, refusal), 0);
  EXPECT_EQ(third.digitIndex, 41);
}

TEST_F(ItemsTest, ItemsAreFoundByNumberCodeDigitIndexAndName) {
  ItemData milk = Item("");
  milk.name = "MLEKO ŁACIATE"_mz;
  milk.code = "5900001";
  milk.digitIndex = 77;
  const int32_t number = AddItemRow(milk);
  AddItemRow(Item("MAKA"));
  struct Case {
    const char* what;
    std::function<int16_t(ItemData&, bool&)> find;
    bool found;
  };
  const Case cases[] = {
      {"number", [&](ItemData& i, bool& f) { return ItemFindByNumber(number, i, f); }, true},
      {"code", [](ItemData& i, bool& f) { return ItemFindByCode("5900001", i, f); }, true},
      {"digit index", [](ItemData& i, bool& f) { return ItemFindByDigitIndex(77, i, f); }, true},
      {"name start", [](ItemData& i, bool& f) { return ItemFindByName("MLEKO Ł"_mz, i, f); }, true},
      {"no such number", [](ItemData& i, bool& f) { return ItemFindByNumber(999, i, f); }, false},
      {"no such code", [](ItemData& i, bool& f) { return ItemFindByCode("59'; DROP", i, f); }, false},
      {"no such name", [](ItemData& i, bool& f) { return ItemFindByName("MLEKA", i, f); }, false},
  };
  for (const Case& c : cases) {
    ItemData item;
    bool found = false;
    EXPECT_EQ(c.find(item, found), 0) << c.what;
    EXPECT_EQ(found, c.found) << c.what;
    if (c.found) {
      EXPECT_EQ(item.name, "MLEKO ŁACIATE"_mz) << c.what;
    }
  }
}

TEST_F(ItemsTest, StockIsTheOpeningPlusEveryChange) {
  const int32_t number = AddItemRow(Item("CUKIER"), 12.5L);
  const Real changes[] = {-2.25L, 10, -0.125L, 3};
  Real expected = 12.5L;
  ShortText refusal;
  for (Real d : changes) {
    ASSERT_EQ(StockChange(kWarehouse, number, d, refusal), 0);
    expected += d;
  }
  EXPECT_EQ(Quantity(kWarehouse, number), expected);
  // A warehouse without the row starts from nothing, with the catalogue's prices.
  ASSERT_EQ(StockChange(2, number, -4, refusal), 0);
  EXPECT_EQ(Quantity(2, number), -4);
  EXPECT_EQ(Scalar("SELECT csn FROM dane_2_stany_mg WHERE nr_wewn=" + std::to_string(number)), "15.0000000");
}

// Sale prices, purchase prices and edits of an item: each goes where its scope
// says; a clash with another item's key or character index writes nothing.
TEST_F(ItemsTest, ChangesGoWhereTheirScopeSaysAndAClashWritesNothing) {
  const int32_t a = AddItemRow(Item("KAWA"), 1);
  const int32_t b = AddItemRow(Item("KAWA", "8"), 1);
  ItemData other = Item("HERBATA");
  other.code = "590111";
  AddItemRow(other, 1);
  const std::string n = std::to_string(a);
  ASSERT_EQ(SetItemActive(a, false), 0);
  EXPECT_EQ(Scalar("SELECT ilosc IS NULL FROM dane_kat_tow_ WHERE nr_wewn=" + n), "t");
  ASSERT_EQ(SetItemActive(a, true), 0);
  EXPECT_EQ(Scalar("SELECT ilosc FROM dane_kat_tow_ WHERE nr_wewn=" + n), "0.0000000");
  ASSERT_EQ(SetItemDiscountLock(a, 1), 0);
  EXPECT_EQ(Scalar("SELECT blok_rab FROM dane_kat_tow_ WHERE nr_wewn=" + n), "1");
  ShortText refusal;
  ASSERT_EQ(StockChange(2, a, 3, refusal), 0);
  AddLine(2, a);
  // The catalogue's "name/vat/purchase net/sale gross/sale net", the sale gross of warehouses 1 and 2, the line's VAT.
  auto state = [&n] {
    return Scalar("SELECT nazwa||'/'||vat||'/'||cena_z_n||'/'||cena_s_b||'/'||round(cena_s_n,2) FROM dane_kat_tow_ "
                  "WHERE nr_wewn=" + n) + " " +
           Scalar("SELECT csb FROM dane_1_stany_mg WHERE nr_wewn=" + n) + " " +
           Scalar("SELECT csb FROM dane_2_stany_mg WHERE nr_wewn=" + n) + " " +
           Scalar("SELECT vat FROM dane_2_specyfik WHERE nr_towaru=" + n);
  };
  bool found = false;
  std::vector<std::string> walked;
  auto price = [&](Real gross, ItemPriceScope scope) {
    return [&, gross, scope] { return ItemChangeSalePrice(a, gross, scope, kWarehouse, found, refusal); };
  };
  auto edit = [&](const char* name, const char* vat, Real gross, ItemPriceScope scope, const char* code = "") {
    return [&, name, vat, gross, scope, code] {
      ItemData item;
      EXPECT_EQ(ItemFindByNumber(a, item, found), 0);
      item.name = name;
      item.vat = vat;
      item.saleGross = gross;
      item.code = code;
      return ItemEdit(item, scope, kWarehouse, [&walked](const ShortText& t) { walked.push_back(t.Str()); }, found,
                      refusal);
    };
  };
  // Purchase prices are part of the key: taking those of the other KAWA with its features is refused.
  auto otherPrices = [&] {
    EXPECT_TRUE(Psql("UPDATE dane_kat_tow_ SET vat='23', cena_z_n=3, cena_z_b=4 WHERE nr_wewn=" + std::to_string(b)));
    ItemData item;
    EXPECT_EQ(ItemFindByNumber(a, item, found), 0);
    item.buyNet = 3;
    item.buyGross = 4;
    return ItemStorePrices(item, found, refusal);
  };
  auto net = [](Real gross) { return std::to_string(static_cast<double>(gross / 1.23L)).substr(0, 5); };
  struct Case {
    const char* what;
    std::function<int16_t()> change;
    bool clash;
    std::string expected;
  };
  const Case cases[] = {
      {"price here", price(24.6L, ItemPriceScope::kWarehouse), false,
       "KAWA/23/10.0000000/18.4500000/15.00 24.6000000 18.4500000 23"},
      {"price here and in the catalogue", price(36.9L, ItemPriceScope::kCatalogueAndWarehouse), false,
       "KAWA/23/10.0000000/36.9000000/" + net(36.9L) + " 36.9000000 18.4500000 23"},
      {"price everywhere", price(12.3L, ItemPriceScope::kEverywhere), false,
       "KAWA/23/10.0000000/12.3000000/" + net(12.3L) + " 12.3000000 12.3000000 23"},
      {"purchase prices of the other KAWA", otherPrices, true,
       "KAWA/23/10.0000000/12.3000000/" + net(12.3L) + " 12.3000000 12.3000000 23"},
      {"edit here", edit("KAWA", "23", 20, ItemPriceScope::kWarehouse), false,
       "KAWA/23/10.0000000/12.3000000/" + net(12.3L) + " 20.0000000 12.3000000 23"},
      {"edit here and in the catalogue", edit("KAWA2", "8", 21, ItemPriceScope::kCatalogueAndWarehouse), false,
       "KAWA2/8/10.0000000/21.0000000/" + net(12.3L) + " 21.0000000 12.3000000 8"},
      {"edit everywhere", edit("KAWA2", "8", 22, ItemPriceScope::kEverywhere), false,
       "KAWA2/8/10.0000000/22.0000000/" + net(12.3L) + " 22.0000000 22.0000000 8"},
      {"the other item's character index", edit("KAWA3", "5", 30, ItemPriceScope::kEverywhere, "590111"), true,
       "KAWA2/8/10.0000000/22.0000000/" + net(12.3L) + " 22.0000000 22.0000000 8"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(c.change(), 0);
    EXPECT_TRUE(found);
    EXPECT_EQ(refusal, c.clash ? kClash : ShortText());
    EXPECT_EQ(state(), c.expected);
  }
  EXPECT_NE(std::find(walked.begin(), walked.end(), "Zmiana specyfikacji operacji towarowych, magazyn nr 2"_mz.Str()),
            walked.end());
  ItemData gone = Item("KAWA");
  gone.number = 999;
  ASSERT_EQ(ItemEdit(gone, ItemPriceScope::kEverywhere, kWarehouse, nullptr, found, refusal), 0);
  EXPECT_FALSE(found);
}

TEST_F(ItemsTest, TheGroupedViewSumsTheFirst320Warehouses) {
  const int32_t a = AddItemRow(Item("A"), 1);
  const int32_t b = AddItemRow(Item("B"), 0);
  ShortText refusal;
  for (int32_t w : {2, 3}) ASSERT_EQ(StockChange(w, a, w * 10, refusal), 0);
  int spanned = 0;
  ASSERT_EQ(BuildStockView(spanned), 0);
  EXPECT_EQ(spanned, 3);
  EXPECT_EQ(Own("SELECT ilosc FROM tmp_view_stanyx WHERE nr_wewn=" + std::to_string(a)), "51.0000000");
  EXPECT_EQ(Own("SELECT ilosc FROM tmp_view_stanyx WHERE nr_wewn=" + std::to_string(b)), "0.0000000");
  // Warehouses 4..321 exist only with their stock lists; the 321st is left out.
  for (int32_t w = 4; w <= 321; ++w) ASSERT_EQ(CreateTableFrom(WarehouseTablePath(w, "stany_mg"), kStanyMgDef), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_magazyny (nazwa,nazwa_inne,numer,czy_podmiot_gosp) "
                   "SELECT 'M', '', g, 'Z' FROM generate_series(4, 321) g"));
  for (int32_t w : {320, 321}) ASSERT_EQ(StockChange(w, a, 1000 * (w - 319), refusal), 0);
  ASSERT_EQ(BuildStockView(spanned), 0);
  EXPECT_EQ(spanned, 320);
  EXPECT_EQ(Own("SELECT ilosc FROM tmp_view_stanyx WHERE nr_wewn=" + std::to_string(a)), "1051.0000000");
}

TEST_F(ItemsTest, TheListReadsPagesInNameOrderUnderItsFilters) {
  for (int i = 0; i < 45; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "T%02d", 44 - i);
    const int32_t n = AddItemRow(Item(name), i % 3 == 0 ? 0 : i);
    if (i % 5 == 0) {
      ASSERT_EQ(SetItemActive(n, false), 0);
    }
  }
  auto pages = [](const ItemListKind& kind, bool forward) {
    std::string out;
    std::vector<ItemListRow> rows;
    ItemListKey key;
    for (;;) {
      EXPECT_EQ(ItemListRead(kind, kWarehouse, key, forward, 20, rows), 0);
      if (rows.empty()) return out;
      for (const ItemListRow& r : rows) out += r.item.name.Str() + (r.quantity != 0 ? "+" : "") + " ";
      key = ItemListKeyOf(forward ? rows.back() : rows.front());
    }
  };
  auto expect = [](auto keep) {
    std::string all;
    for (int k = 0; k < 45; ++k) {
      const int i = 44 - k;  // T<k> was added as the i-th
      if (keep(i)) all += "T" + std::string(k < 10 ? "0" : "") + std::to_string(k) + (i % 3 ? "+" : "") + " ";
    }
    return all;
  };
  EXPECT_EQ(pages(ItemListKind{}, true), expect([](int) { return true; }));
  EXPECT_EQ(pages(ItemListKind{}, false).size(), pages(ItemListKind{}, true).size());
  EXPECT_EQ(pages({ItemListStock::kNonZero, false, false}, true), expect([](int i) { return i % 3 != 0; }));
  EXPECT_EQ(pages({ItemListStock::kAll, true, false}, true), expect([](int i) { return i % 5 != 0; }));
  int spanned = 0;
  ASSERT_EQ(BuildStockView(spanned), 0);
  EXPECT_EQ(pages({ItemListStock::kNonZero, true, true}, true), expect([](int i) { return i % 3 && i % 5; }));
}

TEST_F(ItemsTest, TheScreenFindsByNameAndIndexAndChangesAPrice) {
  for (const char* name : {"BULKA", "CHLEB", "DROZDZE", "MAKA", "MLEKO", "SER"}) AddItemRow(Item(name), 2);
  ItemData milk;
  bool found = false;
  ASSERT_EQ(ItemFindByName("MLEKO", milk, found), 0);
  ASSERT_TRUE(Psql("UPDATE dane_kat_tow_ SET indeks_numeryczny=4242 WHERE nazwa='DROZDZE'"));
  Play({Keys("", {keys::F(2)}), Keys("MLE", {kEnter}), Keys("", {kEnter}), {Repeat(keys::kBackspace, 5)},
        Keys("24.60", {kEnter}), Keys("2"), Keys("", {keys::F(4)}), Keys("4242", {kEnter})});
  ItemCatalogue(kWarehouse);
  EXPECT_TRUE(Shown(" Katalog towarów - magazyn nr 1"_mz));
  EXPECT_TRUE(Shown("Wprowadź początek szukanej nazwy: ---"_mz));
  EXPECT_TRUE(Shown(" MLEKO "));
  EXPECT_TRUE(Shown("Wprowadź szukany indeks cyfrowy:"_mz));
  EXPECT_EQ(Scalar("SELECT cena_s_b FROM dane_kat_tow_ WHERE nazwa='MLEKO'"), "24.6000000");
  EXPECT_EQ(Scalar("SELECT csb FROM dane_1_stany_mg WHERE nr_wewn=" + std::to_string(milk.number)), "24.6000000");
  // The last screen starts at DROZDZE, found by its digit index.
  EXPECT_NE(LastScreen().find(" DROZDZE"), std::string::npos);
  EXPECT_EQ(LastScreen().find(" CHLEB"), std::string::npos);

  // An item deleted by another process while the list shows it.
  const int32_t ser = milk.number + 1;
  Play({Keys("", {keys::kEnd}), {{kEnter}, [ser] {
          // Another process (psql, with its own connection) deletes the item.
          EXPECT_TRUE(Psql("DELETE FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(ser)));
        }},
        Keys("", {kEnter})});
  ItemCatalogue(kWarehouse);
  EXPECT_TRUE(Shown("SER\"")) ;
  EXPECT_TRUE(Shown("został usunięty z katalogu przez innego użytkownika."_mz));
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(ser)), "0");

  // The stock list gone under the list: the next read ends the list with the system's message, not the program.
  Play({{{keys::kEnd}, [] { EXPECT_TRUE(Psql("DROP TABLE dane_1_stany_mg")); }}});
  ItemCatalogue(kWarehouse);
  EXPECT_TRUE(Shown("Wystąpiły zakłócenia odczytu bazy."_mz));
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kat_tow_"), "5");
}

// --- Changes and maintenance ---

// The current user with the given rights (maximum rights when max).
void LogIn(std::initializer_list<UserRight> rights, bool max = false) {
  UserRecord user;
  user.number = 5;
  user.surname = "TEST";
  user.maxRights = max ? 1 : 0;
  for (UserRight r : rights) user.rights |= static_cast<uint16_t>(1u << (static_cast<int>(r) - 1));
  SetCurrentUser(user);
}

TEST_F(ItemsTest, MaintenanceKeepsWhatHasTurnoverOrStock) {
  const int32_t sold = AddItemRow(Item("A"), 0), held = AddItemRow(Item("B"), 5), idle = AddItemRow(Item("C"), 0), owed = AddItemRow(Item("D"), -2);
  const int32_t spare = AddItemRow(Item("E"));
  AddLine(2, sold);
  StockCounts counts;
  ASSERT_EQ(StockCountIn(kWarehouse, counts), 0);
  EXPECT_EQ(std::vector<long>({counts.positive, counts.negative, counts.zero, counts.all}),
            std::vector<long>({1, 1, 3, 5}));

  struct Case {
    int32_t number;
    bool hadTurnover;
    const char* catalogueRows;  // of that number afterwards
  };
  const Case cases[] = {{sold, true, "1"}, {held, true, "1"}, {idle, false, "0"}, {999, false, "0"}};
  for (const Case& c : cases) {
    bool found = false, turnover = false;
    ASSERT_EQ(ItemDelete(c.number, found, turnover), 0);
    EXPECT_EQ(found, c.number != 999);
    EXPECT_EQ(turnover, c.hadTurnover) << c.number;
    EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(c.number)), c.catalogueRows);
  }
  // The sold item's empty stock row went, the held one's stayed.
  EXPECT_EQ(Scalar("SELECT string_agg(nr_wewn::text,',' ORDER BY nr_wewn) FROM dane_1_stany_mg"),
            std::to_string(held) + "," + std::to_string(owed) + "," + std::to_string(spare));
  long removed = 0;
  ASSERT_EQ(RemoveItemsWithoutTurnover(removed), 0);
  EXPECT_EQ(removed, 1);  // only E: A has a line, B and D stock
  EXPECT_EQ(Scalar("SELECT string_agg(nazwa,',' ORDER BY nazwa) FROM dane_kat_tow_"), "A,B,D");
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_1_stany_mg"), "2");
  // The deleted item is kept whole in the copy.
  EXPECT_EQ(Scalar("SELECT nazwa||'/'||vat||'/'||cena_s_n FROM dane_kat_towz"), "E/23/15.0000000");
}

TEST_F(ItemsTest, UnusedItemsAreHiddenAndDigitIndexesPutInOrder) {
  std::vector<int32_t> n;
  for (const char* name : {"P", "Q", "R", "S", "T"}) n.push_back(AddItemRow(Item(name)));
  AddLine(1, n[0], "2024-06-01");
  AddLine(3, n[1], "2023-01-01");
  long hidden = 0;
  int steps = 0;
  ASSERT_EQ(HideUnusedItems("01-01-2024", [&steps](int s) { steps = s; }, hidden), 0);
  EXPECT_EQ(steps, 4);
  EXPECT_EQ(hidden, 4);
  EXPECT_EQ(Scalar("SELECT string_agg(nazwa,',' ORDER BY nazwa) FROM dane_kat_tow_ WHERE ilosc IS NOT NULL"), "P");
  EXPECT_EQ(HideUnusedItems("31-02-2024", nullptr, hidden), kPGArgRange);

  auto indexes = [] { return Scalar("SELECT string_agg(indeks_numeryczny::text,',' ORDER BY nr_wewn) FROM dane_kat_tow_"); };
  ASSERT_TRUE(Psql("UPDATE dane_kat_tow_ SET indeks_numeryczny=CASE nazwa WHEN 'P' THEN -3 WHEN 'Q' THEN 7000 "
                   "WHEN 'R' THEN 50 WHEN 'S' THEN 50 ELSE 50 END"));
  long changed = 0;
  ASSERT_EQ(ZeroDigitIndexes(1000, changed), 0);
  EXPECT_EQ(changed, 2);
  EXPECT_EQ(indexes(), "0,0,50,50,50");
  ShortText refusal;
  ASSERT_EQ(RepairDigitIndexes(changed, refusal), 0);
  EXPECT_EQ(changed, 2);
  EXPECT_EQ(indexes(), "0,0,50,51,52");  // the first holder keeps it, the others go above the highest
  // When the highest leaves no room, nothing changes.
  ASSERT_TRUE(Psql("UPDATE dane_kat_tow_ SET indeks_numeryczny=999999999999999 WHERE nazwa IN ('Q','R')"));
  const std::string before = indexes();
  ASSERT_EQ(RepairDigitIndexes(changed, refusal), 0);
  EXPECT_EQ(refusal.Str().substr(0, 28), std::string("Wartość maksymalnego indeksu"_mz.View()));
  EXPECT_EQ(indexes(), before);
}

TEST_F(ItemsTest, TheAddFormRefusesBadInputAndHonoursRights) {
  ItemData taken = Item("MLEKO");
  taken.code = "590";
  AddItemRow(taken);
  ASSERT_TRUE(Psql("INSERT INTO dane_dostawcy (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES ('ZAMKNIETY','',9,'Z')"));
  const std::string rows = "SELECT count(*)||'/'||(SELECT count(*) FROM dane_1_stany_mg) FROM dane_kat_tow_";
  const std::string before = Scalar(rows);
  // Fields: name, name 2, code, digit index, vat, sww, payer, supplier, unit, purchase, sale, place, pack, stock.
  auto form = [](const std::string& code, const std::string& digits, const std::string& supplier, const std::string& stock) {
    return std::vector<KeyStep>{Keys("SER", {kEnter}),  Keys("", {kEnter}), Keys(code.c_str(), {kEnter}),
                                Keys(digits.c_str(), {kEnter}), Keys("23", {kEnter}), Keys("", {kEnter}),
                                Keys("", {kEnter}), Keys(supplier.c_str(), {kEnter}), Keys("kg", {kEnter}),
                                Keys("", {kEnter}), Keys("", {kEnter}), Keys("", {kEnter}),
                                Keys("", {kEnter}), Keys(stock.c_str(), {kEnter})};
  };
  struct Case {
    const char* what;
    bool maxRights;
    std::vector<KeyStep> steps;
    ShortText shown;
  };
  const Case cases[] = {
      {"code in use", true, form("590", "", "7", ""), "Znaleziono identyczną daną - dopisanie nie ma sensu."_mz},
      {"digit index", true, form("", "1000000000000000", "7", ""),
       "Indeks numeryczny musi zawierać się w przedziale [0,999999999999999]."_mz},
      {"closed supplier", false, form("", "", "9", ""), "o uprawnieniach maksymalnych w programie, lub `Kierownik"_mz},
      {"negative price", true, [&form] { auto f = form("", "", "7", ""); f[10] = Keys("-5", {kEnter}); return f; }(),
       "Przekroczenie zakresu argumentu."_mz},
  };
  for (const Case& c : cases) {
    LogIn({}, c.maxRights);
    Play(c.steps);
    int32_t number = 0;
    EXPECT_FALSE(AddItem(kWarehouse, ItemRules{}, number)) << c.what;
    EXPECT_TRUE(Shown(c.shown)) << c.what;
    EXPECT_EQ(Scalar(rows), before) << c.what;
  }
  // With the rights: added with its stock, the purchase price taken.
  LogIn({UserRight::kPurchasePrices});
  auto steps = form("591", "", "7", "4");
  steps[9] = Keys("10", {kEnter});
  Play(steps);
  int32_t number = 0;
  ASSERT_TRUE(AddItem(kWarehouse, ItemRules{}, number));
  EXPECT_EQ(Scalar("SELECT nazwa||'/'||cena_z_b||'/'||jednostka FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(number)),
            "SER/12.3000000/kg");
  EXPECT_EQ(Quantity(kWarehouse, number), 4);
  // Without them the purchase price is passed by with the message, and stays 0.
  LogIn({});
  steps = form("592", "", "7", "");
  steps[0] = Keys("SER2", {kEnter});
  steps[9] = Keys("", {kEnter});  // the message box takes this Enter
  Play(steps);
  ASSERT_TRUE(AddItem(kWarehouse, ItemRules{}, number));
  EXPECT_TRUE(Shown("Nie masz praw do edycji cen."_mz));
  EXPECT_EQ(Scalar("SELECT cena_z_n FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(number)), "0.0000000");
}

TEST_F(ItemsTest, TheListDeletesFindsByAnyFieldAndChangesItsView) {
  const int32_t a = AddItemRow(Item("BULKA"), 1);
  ItemData cheese = Item("SER");
  cheese.place = "R12";
  AddItemRow(cheese, 0);
  AddLine(1, a);
  // Without full rights deletion is refused; with them the item without turnover goes.
  LogIn({});
  Play({Keys("", {keys::kDown}), Keys("", {keys::kDel})});
  ItemCatalogue(kWarehouse);
  EXPECT_TRUE(Shown("Nie masz uprawnień do kasowania kartotek towarów."_mz));
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kat_tow_"), "2");
  LogIn({}, true);
  // F7: search by column 12 (miejsce_w_magazynie) for R12; F6 then "tylko z ilością niezerową" hides SER.
  std::vector<KeyPair> toPlace = Repeat(keys::kDown, 11);
  toPlace.push_back(kEnter);
  Play({Keys("", {keys::F(7)}), {toPlace}, Keys("R12", {kEnter}), Keys("", {keys::F(6)}), Keys("1"),
        Keys("", {keys::kDel}), Keys("", {kEnter}), Keys("T")});
  ItemCatalogue(kWarehouse);
  EXPECT_TRUE(Shown("Wybierz, według jakiego pola szukać:"_mz));
  EXPECT_TRUE(Shown("Podaj pełną wartość pola:"_mz));
  EXPECT_TRUE(Shown("Na towarze przeprowadzano obroty."_mz));
  const std::string last = LastScreen();
  EXPECT_NE(last.find(" BULKA"), std::string::npos);
  EXPECT_EQ(last.find(" SER"), std::string::npos);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_kat_tow_"), "2");
}

}  // namespace
