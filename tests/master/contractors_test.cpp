// The catalogues without screens: number ranges, add, find, store, delete,
// and the use of a contractor by the documents of the warehouses.
#include <gtest/gtest.h>

#include "contractors_fixture.h"
#include "master/tables.h"

namespace {

TEST(ContractorRules, NumberRangesAndNextNumber) {
  struct Case {
    const char* text;
    int32_t from, to;
  } ranges[] = {{"", 1, kContractorMaxNumber},     {"100,200", 100, 200}, {" 5 , 9 ", 5, 9},
                {"abc,7", 1, 7},                   {"300,200", 300, kContractorMaxNumber},
                {"0,-4", 1, kContractorMaxNumber}, {"10", 10, kContractorMaxNumber}};
  for (const Case& c : ranges) {
    const NumberRange r = ParseNumberRange(ShortText(c.text));
    EXPECT_EQ(r.from, c.from) << c.text;
    EXPECT_EQ(r.to, c.to) << c.text;
  }
  struct Next {
    NumberRange range;
    int32_t last, expected;
  } next[] = {{{100, 200}, 0, 100},  {{100, 200}, 150, 151}, {{100, 200}, 200, 0},
              {{1, kContractorMaxNumber}, kContractorMaxNumber, 0}, {{100, 200}, 7, 100}};
  for (const Next& n : next) EXPECT_EQ(NextContractorNumber(n.range, n.last), n.expected) << n.last;
}

using ContractorTables = ContractorsTest;

TEST_F(ContractorTables, AddTakesTheNextNumberInTheRangeAndStopsAtItsEnd) {
  const NumberRange range{10, 12};
  for (const char* name : {"Alfa", "Beta", "Gamma"}) {
    Contractor c = Named(ShortText(name), ShortText("Radom"));
    ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, c, range), ContractorOutcome::kDone) << name;
  }
  // The top of the range is used: adding stops though lower numbers are free.
  Contractor d = Named(ShortText("Delta"));
  EXPECT_EQ(ContractorAdd(ContractorKind::kCustomer, d, range), ContractorOutcome::kLimit);
  Contractor given = Named(ShortText("Epsilon"));
  given.number = 11;
  EXPECT_EQ(ContractorAdd(ContractorKind::kCustomer, given, range), ContractorOutcome::kNumberTaken);
  Contractor same = Named(ShortText("Beta"), ShortText("Radom"));
  same.number = 40;
  EXPECT_EQ(ContractorAdd(ContractorKind::kCustomer, same, range), ContractorOutcome::kIdentical);
  EXPECT_EQ(Rows(ContractorKind::kCustomer), "10:Alfa:Radom\n11:Beta:Radom\n12:Gamma:Radom");
  EXPECT_EQ(Rows(ContractorKind::kSupplier), "");
}

TEST_F(ContractorTables, FindByNumberAndRegistrationAndNullsReadNeutral) {
  Contractor c = Named("Zakład Łąkowy"_mz, "Łódź"_mz);
  c[KontrahentCol::nr_rej] = ShortText("R-77");
  c[KontrahentCol::nip] = ShortText("5260250274");
  c.discount = Real(12.5);
  ASSERT_EQ(ContractorAdd(ContractorKind::kSupplier, c, NumberRange{}), ContractorOutcome::kDone);
  ASSERT_TRUE(Psql("UPDATE dane_dostawcy SET rabat = NULL, symbol_fk = NULL, email = NULL"));
  Contractor byNumber, byKey;
  bool found = false;
  ASSERT_EQ(ContractorFind(ContractorKind::kSupplier, c.number, byNumber, found), 0);
  ASSERT_TRUE(found);
  EXPECT_EQ(byNumber[KontrahentCol::nazwa], "Zakład Łąkowy"_mz);
  EXPECT_EQ(byNumber[KontrahentCol::miasto], "Łódź"_mz);
  EXPECT_EQ(byNumber.discount, 0);
  EXPECT_TRUE(byNumber[KontrahentCol::email].Empty());
  EXPECT_TRUE(ContractorHasTaxId(byNumber));
  ASSERT_EQ(ContractorFindByRegistration(ContractorKind::kSupplier, ShortText("R-77"), byKey, found), 0);
  EXPECT_TRUE(found);
  EXPECT_EQ(byKey.number, c.number);
  ASSERT_EQ(ContractorFind(ContractorKind::kSupplier, c.number + 1, byKey, found), 0);
  EXPECT_FALSE(found);
}

TEST_F(ContractorTables, StoreKeepsOtherFieldsChangedMeanwhileAndReportsAGoneRow) {
  Contractor c = Named(ShortText("Omega"), ShortText("Kielce"));
  ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, c, NumberRange{}), ContractorOutcome::kDone);
  Contractor after = c;
  after[KontrahentCol::nazwa] = ShortText("Omega Bis");
  ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET miasto = 'Opole'"));  // another operator, another field
  EXPECT_EQ(ContractorStoreChanges(ContractorKind::kCustomer, c, after), ContractorOutcome::kDone);
  EXPECT_EQ(Rows(ContractorKind::kCustomer), "1:Omega Bis:Opole");
  ASSERT_TRUE(Psql("DELETE FROM dane_odbiorcy"));
  EXPECT_EQ(ContractorStoreChanges(ContractorKind::kCustomer, c, after), ContractorOutcome::kGone);
  EXPECT_EQ(ContractorDelete(ContractorKind::kCustomer, 1), ContractorOutcome::kGone);
}

// A warehouse with its tables, the kinds of dok_plat, and one header per case.
TEST_F(ContractorTables, UseByDocumentsFollowsTheKindsContractorLetter) {
  ASSERT_EQ(CreateTableFrom(ShortText("dane\\dok_plat"), kDokPlatDef), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_dok_plat (typ_dok, nazwa, typ_kontrahenta) VALUES (2, 'FA', 'O'), (6, 'PZ', 'd')"));
  const Contractor w = AddNamed(ContractorKind::kWarehouse, ShortText("Magazyn A"));
  EXPECT_FALSE(WarehouseIsSpecial(w));
  const Contractor s = AddNamed(ContractorKind::kWarehouse, ShortText("Obcy"), 0, true);
  EXPECT_TRUE(WarehouseIsSpecial(s));
  const std::string headers = PGSqlName(WarehouseTablePath(w.number, "naglowki")).Str();
  struct Case {
    const char* rows;  // headers of the warehouse: (typ_dok, nr_kontrahenta, nr_magazynu_mm)
    bool customer5, supplier5, warehouse2;
  } cases[] = {
      {"", false, false, false},
      {"(2, 5, 0)", true, false, false},
      {"(6, 5, 0)", false, true, false},
      {"(9, 5, 0)", true, true, false},  // a kind that dok_plat does not know counts for both
      {"(15, 1, 2)", false, false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rows);
    ASSERT_TRUE(Psql("DELETE FROM " + headers));
    if (*c.rows) {
      ASSERT_TRUE(Psql("INSERT INTO " + headers + " (typ_dok, nr_dok, znak_dok, nr_kontrahenta, nr_magazynu_mm) "
                       "SELECT a, 1, 'X', b, m FROM (VALUES " + c.rows + ") v(a, b, m)"));
    }
    bool inUse = true;
    ASSERT_EQ(ContractorInUse(ContractorKind::kCustomer, 5, inUse), 0);
    EXPECT_EQ(inUse, c.customer5);
    ASSERT_EQ(ContractorInUse(ContractorKind::kSupplier, 5, inUse), 0);
    EXPECT_EQ(inUse, c.supplier5);
    ASSERT_EQ(ContractorInUse(ContractorKind::kWarehouse, s.number, inUse), 0);
    EXPECT_EQ(inUse, c.warehouse2);
  }
  AddNamed(ContractorKind::kCustomer, ShortText("Piaty"), 5);
  AddHeaders(w.number, "(2, 2, 'X', 5)");
  EXPECT_EQ(ContractorDelete(ContractorKind::kCustomer, 5), ContractorOutcome::kInUse);
  EXPECT_EQ(Rows(ContractorKind::kCustomer), "5:Piaty:");
  // The warehouse with documents is in use; deleting it anyway drops its tables.
  EXPECT_EQ(ContractorDelete(ContractorKind::kWarehouse, w.number), ContractorOutcome::kInUse);
  EXPECT_EQ(ContractorDelete(ContractorKind::kWarehouse, w.number, true), ContractorOutcome::kDone);
  bool exists = true;
  (void)PGTblExist(WarehouseTablePath(w.number, "naglowki"), exists);
  EXPECT_FALSE(exists);
}

}  // namespace
