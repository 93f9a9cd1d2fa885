// An item change carried into the users' work tables and work files, and
// bad input to the catalogue's writing functions: each refused with the
// system's message and nothing written, an item deleted meanwhile by
// another process (psql) included.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "items_fixture.h"
#include "master/items.h"
#include "master/tables.h"
#include "sqltable/sqltest.h"
#include "users/users.h"

namespace {

const TableDef kUserRowsDef{kKatTowDef.columns.first(24), 0, {}, {}};
const ShortText kRange = "Przekroczenie zakresu argumentu."_mz;
const ShortText kSame = "Znaleziono identyczną daną - dopisanie nie ma sensu."_mz;

// An item without purchase prices under its character index.
ItemData Coded(const char* name, const char* code, Real saleNet) {
  ItemData item = Item(ShortText(name), "23", 0, saleNet);
  item.code = ShortText(code);
  return item;
}

std::string Money(Real value) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2Lf", static_cast<long double>(value));
  return buf;
}

class ItemChangeTest : public ItemTablesTest {
 protected:
  void SetUp() override {
    ItemTablesTest::SetUp();
    a_ = AddItemRow(Coded("MLEKO", "590001", 10));
    b_ = AddItemRow(Coded("CHLEB", "590002", 4));
    // User 0 writes a document and holds a work file: item a at the
    // catalogue's prices and at a price of its own, and item b.
    for (const char* table : {"praca___", "plikrob_"}) {
      ASSERT_EQ(CreateTableFrom(UserPath(0, ShortText(table)), kUserRowsDef), 0);
      const std::string sql = Sql(table);
      for (const auto& [number, net] : {std::pair{a_, Real(10)}, {a_, Real(7)}, {b_, Real(4)}})
        ASSERT_TRUE(Psql("INSERT INTO " + sql + " (nazwa,vat,nr_wewn,cena_s_n,cena_s_b,ilosc) SELECT nazwa,vat,nr_wewn," +
                         Money(net) + "," + Money(GrossFromNet(net, ShortText("23"))) + ",2 FROM dane_kat_tow_ WHERE nr_wewn=" +
                         std::to_string(number)));
    }
  }
  static std::string Sql(const char* table) { return "dane_uzytkown_0_" + std::string(table); }
  // "name/vat/net/gross" of every row of a user table in the order written.
  static std::string Rows(const char* table) {
    return Scalar("SELECT string_agg(rtrim(nazwa)||'/'||rtrim(vat)||'/'||round(cena_s_n,2)||'/'||round(cena_s_b,2), ' ' "
                  "ORDER BY oid) FROM " + Sql(table));
  }
  // Everything the catalogue's functions may write.
  static std::string Everything() {
    return Scalar("SELECT string_agg(nr_wewn||':'||nazwa||':'||indeks_znakowy_isbn||':'||cena_s_b, ',' ORDER BY nr_wewn) "
                  "FROM dane_kat_tow_") + "|" +
           Scalar("SELECT string_agg(nr_wewn||':'||ilosc||':'||csb, ',' ORDER BY nr_wewn) FROM dane_1_stany_mg") + "|" +
           Rows("praca___") + "|" + Rows("plikrob_");
  }
  using Change = std::function<int16_t(ShortText&)>;
  // Item a as stored, changed, then written by an edit of the scope.
  Change Edit(std::function<void(ItemData&)> change, ItemPriceScope scope = ItemPriceScope::kEverywhere) const {
    return [this, change, scope](ShortText& refusal) {
      ItemData item;
      bool found = false;
      EXPECT_EQ(ItemFindByNumber(a_, item, found), 0);
      change(item);
      return ItemEdit(item, scope, kWarehouse, nullptr, found, refusal);
    };
  }
  // Item a's sale price made the gross in the scope.
  Change Price(Real gross, ItemPriceScope scope = ItemPriceScope::kEverywhere) const {
    return [this, gross, scope](ShortText& refusal) {
      bool found = false;
      return ItemChangeSalePrice(a_, gross, scope, kWarehouse, found, refusal);
    };
  }
  int32_t a_ = 0, b_ = 0;
};

TEST_F(ItemChangeTest, AChangeOfTheCatalogueReachesTheUsersRowsOfTheItem) {
  struct Case {
    const char* what;
    Change change;
    std::string name, vat;  // what the rows of item a then hold
    Real followedNet;        // the price pair that followed the catalogue (net)
  };
  const Case cases[] = {
      {"edit of the catalogue row", Edit([](ItemData& item) {
         item.name = "MLEKO UHT";
         item.vat = "8";
         item.saleNet = 12;
         item.saleGross = GrossFromNet(12, item.vat);
       }, ItemPriceScope::kCatalogueAndWarehouse), "MLEKO UHT", "8", 12},
      {"price everywhere", Price(20), "MLEKO UHT", "8", NetFromGross(20, ShortText("8"))},
      {"price in the warehouse only", Price(50, ItemPriceScope::kWarehouse), "MLEKO UHT", "8",
       NetFromGross(20, ShortText("8"))},
  };
  const std::string bRow = "CHLEB/23/" + Money(4) + "/" + Money(GrossFromNet(4, ShortText("23")));
  const std::string ownRow = "/" + Money(7) + "/" + Money(GrossFromNet(7, ShortText("23")));
  for (const Case& c : cases) {
    ShortText refusal;
    ASSERT_EQ(c.change(refusal), 0) << c.what;
    ASSERT_TRUE(refusal.Empty()) << c.what << refusal.Str();
    const std::string head = c.name + "/" + c.vat;
    const std::string followed = head + "/" + Money(c.followedNet) + "/" + Money(GrossFromNet(c.followedNet, ShortText(c.vat.c_str())));
    for (const char* table : {"praca___", "plikrob_"})
      EXPECT_EQ(Rows(table), followed + " " + head + ownRow + " " + bRow) << c.what << " " << table;
  }
  // The walk tells each table of each user it goes through.
  std::vector<std::string> told;
  ItemData item;
  bool found = false;
  ASSERT_EQ(ItemFindByNumber(b_, item, found), 0);
  item.name2 = "RAZOWY";
  ShortText refusal;
  ASSERT_EQ(ItemEdit(item, ItemPriceScope::kEverywhere, kWarehouse,
                     [&](const ShortText& t) { told.push_back(t.Str()); }, found, refusal), 0);
  const std::vector<std::string> users = {("Zmiana specyfikacji użytownika nr 0"_mz).Str(),
                                          ("Zmiana pliku roboczego użytownika nr 0"_mz).Str()};
  EXPECT_NE(std::search(told.begin(), told.end(), users.begin(), users.end()), told.end());
  EXPECT_EQ(Scalar("SELECT count(*) FROM " + Sql("plikrob_") + " WHERE nazwa_='RAZOWY'"), "1");
}

TEST_F(ItemChangeTest, BadInputIsRefusedWithTheSystemsMessageAndWritesNothing) {
  constexpr Real kHuge = 1e22L;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  struct Case {
    const char* what;
    Change run;
    ShortText refusal;
  };
  auto add = [](ItemData item, Real quantity) {
    return [item, quantity](ShortText& refusal) mutable {
      StockRow stock;
      stock.quantity = quantity;
      return ItemAdd(item, ItemRules{}, kWarehouse, stock, refusal);
    };
  };
  const Case cases[] = {
      {"new item, price too large", add(Coded("SER", "", kHuge), 1), kRange},
      {"new item, quantity too large", add(Coded("SER", "", 5), kHuge), kRange},
      {"new item, quantity not a number", add(Coded("SER", "", 5), nan), kRange},
      {"new item, code that exists", add(Coded("SER", "590001", 5), 1), kSame},
      {"new item, the features of another at other prices", add(Item("MLEKO", "23", 99, 99), 0), kSame},
      {"edit, code of another item", Edit([](ItemData& i) { i.code = "590002"; }), kClash},
      {"edit, key of another item", Edit([](ItemData& i) { i.name = "CHLEB"; }), kClash},
      {"edit, price too large", Edit([](ItemData& i) { i.saleGross = kHuge; }), kRange},
      {"sale price too large", Price(kHuge), kRange},
      {"sale price below zero", Price(-1), kRange},
      {"sale price not a number", Price(nan), kRange},
      {"stock row, quantity too large",
       [this](ShortText& refusal) {
         StockRow row;
         row.number = a_;
         row.quantity = kHuge;
         return StockSet(kWarehouse, row, refusal);
       },
       kRange},
      {"stock change too large", [this](ShortText& refusal) { return StockChange(kWarehouse, a_, kHuge, refusal); },
       kRange},
  };
  const std::string before = Everything();
  for (const Case& c : cases) {
    ShortText refusal;
    EXPECT_EQ(c.run(refusal), 0) << c.what;
    EXPECT_EQ(refusal, c.refusal) << c.what << ": " << refusal.Str();
    EXPECT_EQ(Everything(), before) << c.what;
  }
}

TEST_F(ItemChangeTest, AnItemDeletedByAnotherProcessIsReportedGoneAndNothingIsWritten) {
  ItemData shown;
  bool found = false;
  ASSERT_EQ(ItemFindByNumber(a_, shown, found), 0);
  ASSERT_TRUE(Psql("DELETE FROM dane_kat_tow_ WHERE nr_wewn=" + std::to_string(a_)));
  const std::string before = Everything();
  struct Case {
    const char* what;
    std::function<int16_t(bool&, ShortText&)> run;
  };
  const Case cases[] = {
      {"edit", [&](bool& f, ShortText& r) { return ItemEdit(shown, ItemPriceScope::kEverywhere, kWarehouse, nullptr, f, r); }},
      {"sale price", [&](bool& f, ShortText& r) { return ItemChangeSalePrice(a_, 30, ItemPriceScope::kEverywhere, kWarehouse, f, r); }},
      {"prices", [&](bool& f, ShortText& r) { return ItemStorePrices(shown, f, r); }},
  };
  for (const Case& c : cases) {
    bool found = true;
    ShortText refusal;
    EXPECT_EQ(c.run(found, refusal), 0) << c.what;
    EXPECT_FALSE(found) << c.what;
    EXPECT_EQ(Everything(), before) << c.what;
  }
}

TEST_F(ItemChangeTest, TheWorkFileIsCountedBySignOfItsQuantities) {
  ASSERT_TRUE(Psql("UPDATE " + Sql("plikrob_") + " SET ilosc=CASE WHEN cena_s_n=7 THEN -1 WHEN nr_wewn=" +
                   std::to_string(b_) + " THEN 0 ELSE ilosc END"));
  StockCounts counts;
  bool exists = false;
  ASSERT_EQ(WorkFileCountIn(0, counts, exists), 0);
  EXPECT_TRUE(exists);
  EXPECT_EQ(std::vector<long>({counts.positive, counts.negative, counts.zero, counts.all}),
            std::vector<long>({1, 1, 1, 3}));
  ASSERT_EQ(WorkFileCountIn(5, counts, exists), 0);
  EXPECT_FALSE(exists);
  EXPECT_EQ(counts.all, 0);
}

}  // namespace
