// Kinds of goods documents, the rights on a document and the kind locks.
#include <string>
#include <vector>

#include "documents/kindrules.h"
#include "master/tables.h"
#include "sqltable/sqltest.h"
#include "users/users.h"

namespace {

TEST(DocumentKinds, StockEffectsOfEveryKind) {
  // Signs as the stock list sees them: issue -, receipt +, ordered o, none 0.
  auto sign = [](StockEffect e) { return e == StockEffect::kIssue ? '-' : e == StockEffect::kReceipt ? '+' : e == StockEffect::kOrdered ? 'o' : '0'; };
  std::string on, off;
  for (int k = 1; k <= 18; ++k) {
    on += sign(KindStockEffect(k, true));
    off += sign(KindStockEffect(k, false));
  }
  EXPECT_EQ(on, "--+-+++--+++--" "-o0+");
  EXPECT_EQ(off, "--+-+++--+++--" "-00+");
  EXPECT_EQ(KindStockEffect(0, true), StockEffect::kNone);
  EXPECT_EQ(DocumentKindOf(19), nullptr);
}

TEST(DocumentKinds, ExportTextsCodesAndContractors) {
  EXPECT_EQ(KindExportText(1, 10), "sprzedaż detaliczna"_mz);
  EXPECT_EQ(KindExportText(1, -0.01L), "zwrot ze sprzedaży detalicznej"_mz);  // a return though still kind 1
  EXPECT_EQ(KindExportText(2, -5), "sprzedaż fakturowana"_mz);
  EXPECT_EQ(KindExportText(18, 1), "przyjęcie towaru z innego magazynu"_mz);
  EXPECT_TRUE(KindExportText(16, 1).Empty());
  EXPECT_TRUE(DocumentKindOf(17)->exportFromCatalogue);
  const std::vector<std::pair<int, std::string>> codes = {{1, "PA"}, {2, "FA"}, {4, "FV"}, {6, "PZ"}, {12, "BO"},
                                                          {14, "WZ"}, {15, "MM-"}, {18, "MM+"}, {3, ""}};
  for (const auto& [kind, code] : codes) EXPECT_EQ(DocumentKindOf(kind)->shortCode, code) << kind;
  EXPECT_EQ(KindContractor(2, ' '), ContractorCatalogue::kCustomers);
  EXPECT_EQ(KindContractor(2, 'd'), ContractorCatalogue::kSuppliers);
  EXPECT_EQ(KindContractor(6, 'O'), ContractorCatalogue::kCustomers);
  EXPECT_EQ(KindContractor(15, 'd'), ContractorCatalogue::kWarehouses);
  EXPECT_STREQ(ContractorTablePath(KindContractor(18, ' ')), "dane\\magazyny");
  EXPECT_EQ(KindGroupTitle(KindGroup::kRetail, "Paragon"), " ╧à Sprzedaż detaliczna i zwroty z niej (`Paragon\") "_mz);
  EXPECT_EQ(KindGroupTitle(KindGroup::kOrders, ""), " ╧ï Zamówienia "_mz);
}

TEST(DocumentKinds, NamesOfSelections) {
  auto bits = [](std::initializer_list<int> kinds) {
    uint32_t m = 0;
    for (int k : kinds) m |= KindBit(k);
    return m;
  };
  EXPECT_EQ(KindSetName(bits({1, 2, 3, 4, 5})), "Sprzedaż"_mz);
  EXPECT_EQ(KindSetName(bits({1, 3})), "Sprzedaż"_mz);
  EXPECT_EQ(KindSetName(bits({3, 5})), "Zwroty ze sprzed.fakturow."_mz);
  EXPECT_EQ(KindSetName(bits({1})), "PA det."_mz);
  EXPECT_EQ(KindSetName(bits({6, 7, 10, 11})), "Przyjęcia dostaw"_mz);
  EXPECT_EQ(KindSetName(bits({8, 9, 13})), "Zwroty dostaw"_mz);
  EXPECT_EQ(KindSetName(bits({16, 17})), "Zamówienia"_mz);
  EXPECT_EQ(KindSetName(bits({1, 15})), "Obroty"_mz);
  EXPECT_EQ(KindSetName(0), "Obroty"_mz);
}

UserRecord UserWith(int32_t number, const std::vector<UserRight>& rights) {
  UserRecord u;
  u.number = number;
  for (UserRight r : rights) u.rights |= static_cast<uint16_t>(1u << (static_cast<int>(r) - 1));
  return u;
}

TEST(DocumentRights, ChangeAndDeletionInTheirOrder) {
  using R = UserRight;
  struct Case {
    DocumentAction action;
    std::vector<R> rights;
    int32_t author;
    int32_t date;
    ShortText want;  // the message, empty when allowed
  };
  const int32_t today = 45000;
  const std::vector<Case> cases = {
      {DocumentAction::kChange, {}, 5, today, "Nie masz praw do zmian dokumentów."_mz},
      {DocumentAction::kChange, {R::kOwnDocuments}, 6, today,
       "Nie masz praw do zmian dokumentu wystawionego przez innego użytkownika."_mz},
      {DocumentAction::kChange, {R::kOwnDocuments}, 5, today, {}},
      {DocumentAction::kChange, {R::kOwnDocuments}, 5, today - 1,
       "Nie masz praw do zmian dokumentów,@które mają datę inną, niż aktualna."_mz},
      {DocumentAction::kChange, {R::kOwnDocuments, R::kOthersDocuments, R::kOtherDate}, 6, today - 1, {}},
      {DocumentAction::kDelete, {R::kOwnDocuments}, 5, today, "Nie masz praw do kasowania dokumentów."_mz},
      {DocumentAction::kDelete, {R::kDeleteDocuments}, 6, today,
       "Nie masz praw do kasowania dokumentu wystawionego przez innego użytkownika."_mz},
      {DocumentAction::kDelete, {R::kDeleteDocuments}, 5, today - 2,
       "Nie masz praw do kasowania dokumentów,@które mają datę inną, niż aktualna."_mz},
      {DocumentAction::kDelete, {R::kDeleteDocuments}, 5, today, {}},
  };
  for (const Case& c : cases) {
    SetCurrentUser(UserWith(5, c.rights));
    ShortText got = DocumentOwnerRefusal(c.action, c.author);
    if (got.Empty()) got = DocumentDateRefusal(c.action, c.date, today);
    EXPECT_EQ(got, c.want) << got.Str();
  }
  ClearCurrentUser();
}

class KindTablesTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    ASSERT_EQ(CreateTableFrom("dane\\dok_plat", kDokPlatDef), 0);
    ASSERT_EQ(CreateTableFrom("dane\\dok_plaz", kDokPlazDef), 0);
    ASSERT_EQ(CreateTableFrom(WarehouseTablePath(1, "naglowki"), kNaglowkiDef), 0);
  }
};

TEST_F(KindTablesTest, NamesAndLocksOfKinds) {
  ASSERT_TRUE(Psql("INSERT INTO DANE_DOK_PLAT (typ_dok,nazwa,zablokowany) VALUES (1,'Paragon','N'),(2,'Faktura','T')"));
  ASSERT_TRUE(Psql("INSERT INTO DANE_DOK_PLAZ (nr_uzytkownika,typ_dok) VALUES (4,1)"));
  EXPECT_EQ(DocumentKindName(1), ShortText("Paragon"));
  EXPECT_TRUE(DocumentKindName(9).Empty());
  EXPECT_EQ(KindRefusal(2, 3), kKindLockedText);
  EXPECT_EQ(KindRefusal(1, 4), kKindLockedForUserText);
  EXPECT_TRUE(KindRefusal(1, 3).Empty());
  EXPECT_TRUE(AnyKindOpen(4));
  std::string all = "INSERT INTO DANE_DOK_PLAZ (nr_uzytkownika,typ_dok) VALUES (4,2)";
  for (int k = 3; k <= 18; ++k) all += ",(4," + std::to_string(k) + ")";
  ASSERT_TRUE(Psql(all));
  EXPECT_FALSE(AnyKindOpen(4));
}

TEST_F(KindTablesTest, GuardsOfAChangeShowTheirMessages) {
  ASSERT_TRUE(Psql("INSERT INTO DANE_1_NAGLOWKI (typ_dok,nr_dok,znak_dok,zablokowany) VALUES (2,7,'A','T'),(2,8,'A','N')"));
  AnswerBoxesOnStderr();  // every box answered with Enter (yes to a question)
  SetCurrentUser(UserWith(5, {UserRight::kOwnDocuments}));
  ::testing::internal::CaptureStderr();
  EXPECT_TRUE(DocumentMayBeTouched(DocumentAction::kChange, {1, 2, 8, "A"}, 5, 100, 100));
  EXPECT_FALSE(DocumentMayBeTouched(DocumentAction::kChange, {1, 2, 9, "A"}, 5, 100, 100));
  EXPECT_FALSE(DocumentMayBeTouched(DocumentAction::kChange, {1, 2, 7, "A"}, 5, 100, 100));
  UserRecord max = UserWith(5, {UserRight::kOwnDocuments});
  max.maxRights = 1;
  SetCurrentUser(max);
  EXPECT_TRUE(DocumentMayBeTouched(DocumentAction::kChange, {1, 2, 7, "A"}, 5, 100, 100));
  const std::string boxes = ::testing::internal::GetCapturedStderr();
  ClearCurrentUser();
  EXPECT_NE(boxes.find(ShortText("Dokument znikn"_mz).Str()), std::string::npos);
  EXPECT_NE(boxes.find("Dokument jest zablokowany do edycji/usuwania."), std::string::npos);
  EXPECT_NE(boxes.find(ShortText("Czy wykonać Twoją"_mz).Str()), std::string::npos);
}

}  // namespace
