// A catalogue out to a dBASE file and back into another catalogue by each
// way of numbering, and a file that is no dBASE file.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "base/file_fixture.h"
#include "contractors_fixture.h"

namespace {

using ContractorDbf = ContractorsTest;

TEST_F(ContractorDbf, ExportAndImportByEachWayOfNumbering) {
  for (const auto& [number, name] : {std::pair{1, ShortText("Alfa")}, {2, "Łąka Żółć"_mz}, {5, ShortText("Gamma")}})
    AddNamed(ContractorKind::kCustomer, name, number);
  ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET miasto = 'Radom', rabat = 12.5"));
  int64_t written = 0;
  ASSERT_EQ(ContractorDbfExport(ContractorKind::kCustomer, ShortText("dane\\odb.dbf"), DbfCodePage::kLatin2, written), 0);
  EXPECT_EQ(written, 3);
  struct Case {
    DbfImportMode mode;
    int64_t added;
    std::string rows, discounts;
  } cases[] = {
      {DbfImportMode::kOnlyNewNumbers, 2, "1:Alfa:Radom\n2:Inny:\n5:Gamma:Radom", "1:12.5,5:12.5"},
      {DbfImportMode::kNewNumberWhenTaken, 3, "1:Alfa:Radom\n2:Inny:\n3:Łąka Żółć:Radom\n5:Gamma:Radom",
       "1:12.5,3:12.5,5:12.5"},
      {DbfImportMode::kAllAsNew, 3, "2:Inny:\n3:Alfa:Radom\n4:Łąka Żółć:Radom\n5:Gamma:Radom", "3:12.5,4:12.5,5:12.5"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.mode));
    ASSERT_TRUE(Psql("DELETE FROM dane_dostawcy"));
    AddNamed(ContractorKind::kSupplier, ShortText("Inny"), 2);
    int64_t added = 0;
    ASSERT_EQ(ContractorDbfImport(ContractorKind::kSupplier, ShortText("dane\\odb.dbf"), DbfCodePage::kLatin2, c.mode,
                                  added),
              0);
    EXPECT_EQ(added, c.added);
    EXPECT_EQ(Rows(ContractorKind::kSupplier), c.rows);  // psql gives UTF-8, as this source is written
    EXPECT_EQ(Scalar("SELECT string_agg(numer || ':' || rabat::numeric::float8, ',' ORDER BY numer) FROM dane_dostawcy WHERE numer <> 2"),
              c.discounts);
  }
  // A file that is no dBASE file: a code, nothing added.
  file_test::WriteBytes("dane/zly.dbf", "not a table");
  int64_t added = 0;
  EXPECT_NE(ContractorDbfImport(ContractorKind::kSupplier, ShortText("dane\\zly.dbf"), DbfCodePage::kAsIs,
                                DbfImportMode::kAllAsNew, added),
            0);
  EXPECT_EQ(added, 0);
}

}  // namespace
