// Numbers of payments under each state of common numbering and the register
// of the firm's numbers. Expected numbers are counted here from the payments
// the test writes.
#include <map>
#include <string>
#include <vector>

#include "documents/numbering.h"
#include "payments_fixture.h"

namespace {

class PaymentNumberingTest : public PaymentsTest {
 protected:
  static constexpr int32_t kSecond = 2;
  void SetUp() override {
    PaymentsTest::SetUp();
    CreateWarehouseTables(false, kSecond);
  }
  static int32_t Serial(int year) { return Day(year, 6, 1); }
  // A document in each warehouse, paid in small parts.
  DocRef invoices_[3];
  void Invoices() {
    invoices_[kWarehouse] = Header(2, 1, 1000, 7);
    invoices_[kSecond] = Header(2, 1, 1000, 7, 0, {}, false, kSecond);
  }
};

TEST_F(PaymentNumberingTest, PaymentsTakeOneSeriesOnlyWhenEveryDocumentIsNumberedForTheFirm) {
  Invoices();
  struct Mode {
    int common;
    int year;
  };
  const int32_t order[] = {kWarehouse, kSecond, kWarehouse, kWarehouse, kSecond};
  for (const Mode& m : std::vector<Mode>{{0, 2024}, {1, 2025}, {2, 2026}}) {
    PaymentSettings s;
    s.numbering = NumberingSettingsFrom(m.common, 0);
    std::map<int32_t, int32_t> perWarehouse;
    int32_t firm = 0;
    for (int32_t w : order) {
      DocRef key;
      ASSERT_EQ(PayIn(w, Serial(m.year), s, kKP, invoices_[w], 1, &key), PaymentResult::kDone);
      const int32_t expected = m.common == 2 ? ++firm : ++perWarehouse[w];
      EXPECT_EQ(key.coded, Code(m.year, expected)) << "mode " << m.common << " warehouse " << w;
    }
    const std::string registered = Scalar("SELECT count(*) FROM DANE_NAGLOWKI WHERE typ_dok=" +
                                          std::to_string(kKP) + " AND EXTRACT(YEAR FROM data_dok)=" +
                                          std::to_string(m.year));
    EXPECT_EQ(registered, m.common == 2 ? "5" : "0") << "mode " << m.common;
  }
}

TEST_F(PaymentNumberingTest, ADeletedPaymentKeepsItsNumberInTheRegister) {
  Invoices();
  PaymentSettings s;
  s.numbering = NumberingSettingsFrom(2, 0);
  DocRef first, last;
  ASSERT_EQ(PayIn(kWarehouse, Serial(2024), s, kKP, invoices_[kWarehouse], 5, &first), PaymentResult::kDone);
  ASSERT_EQ(PayIn(kSecond, Serial(2024), s, kKP, invoices_[kSecond], 5, &last), PaymentResult::kDone);
  ASSERT_EQ(RemovePayment(kSecond, last, s.numbering), PaymentResult::kDone);
  EXPECT_EQ(Scalar("SELECT ost_suma_dok_skas::numeric(9,2)||CASE WHEN data_ost_skasowania>'2000-01-01' THEN "
                   "' deleted' END FROM DANE_NAGLOWKI WHERE nr_dok=" + std::to_string(last.coded)),
            "5.00 deleted");
  // The number of the deleted payment is not given again.
  DocRef next;
  ASSERT_EQ(PayIn(kWarehouse, Serial(2024), s, kKP, invoices_[kWarehouse], 5, &next), PaymentResult::kDone);
  EXPECT_EQ(next.coded, Code(2024, 3));
  // A rebuild from scratch enters the payments that exist, of both warehouses.
  ASSERT_TRUE(Psql("INSERT INTO DANE_MAGAZYNY (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES ('M1','',1,'Z'),('M2','',2,'Z')"));
  int32_t added = 0;
  ASSERT_EQ(RebuildRegister(RebuildMode::kFromScratch, s.numbering, added), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT string_agg(typ_dok||':'||(nr_dok & 255), ',' ORDER BY typ_dok,nr_dok) FROM DANE_NAGLOWKI"),
            "2:1,101:1,101:3");
  EXPECT_EQ(added, 3);
}

TEST_F(PaymentNumberingTest, OperatorsOfTwoWarehousesDrawDistinctFirmNumbers) {
  Invoices();
  constexpr int kOperators = 4;
  const std::vector<int> statuses = RunOperators(kOperators, [this](int i) {
    PaymentSettings s;
    s.numbering = NumberingSettingsFrom(2, 0);
    const int32_t w = i % 2 ? kSecond : kWarehouse;
    return PayIn(w, Serial(2024), s, kKP, invoices_[w], 1) == PaymentResult::kDone ? 0 : 1;
  });
  EXPECT_EQ(statuses, std::vector<int>(kOperators, 0));
  const std::string numbers = Scalar(
      "SELECT string_agg((nr_dok & 255)::text, ',' ORDER BY nr_dok) FROM (SELECT nr_dok FROM DANE_1_KASA____ "
      "UNION ALL SELECT nr_dok FROM DANE_2_KASA____) k");
  EXPECT_EQ(numbers, "1,2,3,4");
  EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_NAGLOWKI"), std::to_string(kOperators));
}

}  // namespace
