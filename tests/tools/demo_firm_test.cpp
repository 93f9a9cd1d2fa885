// tools/demo-firm against the test run's database: what it writes (counts,
// NIP check digits, stock totals, the fiscal settings) checked against
// values computed here, and that a second run changes no row of any table,
// keeps what a person changed meanwhile and puts back what was removed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "dbfixture.h"
#include "fiscal/fiscalconfig.h"

namespace {

class DemoFirmTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    ASSERT_TRUE(WipeDatabase());
    WriteDefaultConnParm();
    firm_ = Db().home + "/firm";  // read back as "firm/...": the program lower-cases its paths
    std::filesystem::remove_all(firm_);
    std::filesystem::create_directories(firm_);
  }
  // Runs the tool in the firm's directory; its exit status.
  int RunDemoFirm() {
    const std::string command = "cd '" + firm_ + "' && '" KLOTE_BINARY_DIR "/tools/demo-firm/demo-firm' >/dev/null";
    return std::system(command.c_str());
  }
  std::string Query(const std::string& sql) {
    std::string out;
    EXPECT_TRUE(Psql(sql, &out)) << sql << "\n" << out;
    if (!out.empty() && out.back() == '\n') out.pop_back();
    return out;
  }
  // Every table of the schema: its row count and an md5 of its rows without
  // the row id (a row written again gets a new id), in a fixed order.
  std::map<std::string, std::string> Snapshot() {
    std::map<std::string, std::string> tables;
    std::istringstream names(
        Query("SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema() "
              "AND table_type = 'BASE TABLE' ORDER BY 1"));
    for (std::string t; std::getline(names, t);)
      tables[t] = Query("SELECT count(*) || ' ' || coalesce(md5(string_agg(r, '|' ORDER BY r)), '-') FROM "
                        "(SELECT (to_jsonb(x) - 'oid')::text AS r FROM " + t + " x) s");
    return tables;
  }
  std::string firm_;
};

// The NIP rule: weights 6 5 7 2 3 4 5 6 7 over the first nine digits, the sum mod 11 is the tenth.
bool NipValid(const std::string& nip) {
  std::string digits;
  for (char c : nip)
    if (c != '-') digits += c;
  if (digits.size() != 10) return false;
  const int weights[] = {6, 5, 7, 2, 3, 4, 5, 6, 7};
  int sum = 0;
  for (int i = 0; i < 9; ++i) sum += (digits[static_cast<std::size_t>(i)] - '0') * weights[i];
  return sum % 11 == digits[9] - '0';
}

TEST_F(DemoFirmTest, FillsTheFirmAsDescribed) {
  ASSERT_EQ(RunDemoFirm(), 0);
  struct Count {
    const char* sql;
    const char* expected;
  };
  const Count counts[] = {
      {"SELECT string_agg(numer || ' ' || imie || ' ' || nazwisko, ',' ORDER BY numer) FROM dane_uzytkown_uzytkown",
       "0 Kierownik Systemu,1 Łucja Kowalczyk,2 Grzegorz Wiśniewski"},
      {"SELECT string_agg(numer || czy_podmiot_gosp, ',' ORDER BY numer) FROM dane_magazyny", "1Z,2Z"},
      {"SELECT string_agg(indeks, ',' ORDER BY indeks) FROM dane_pola_ind_vat", "0,23,5,8,zwol."},
      {"SELECT count(DISTINCT numer) || ' ' || min(numer) || ' ' || max(numer) FROM dane_odbiorcy", "20 1 20"},
      {"SELECT count(DISTINCT numer) || ' ' || min(numer) || ' ' || max(numer) FROM dane_dostawcy", "20 1 20"},
      {"SELECT count(DISTINCT indeks_znakowy_isbn) FROM dane_kat_tow_ WHERE cena_s_b > cena_s_n OR vat IN ('0','zwol.')",
       "200"},
      {"SELECT count(*) FROM dane_kat_tow_ K JOIN dane_dostawcy D ON D.numer = K.dostawca", "200"},
      {"SELECT count(*) FROM dane_1_stany_mg S JOIN dane_kat_tow_ K USING (nr_wewn)", "200"},
      {"SELECT count(*) FROM dane_2_stany_mg S JOIN dane_kat_tow_ K USING (nr_wewn)", "200"},
  };
  for (const Count& c : counts) EXPECT_EQ(Query(c.sql), c.expected) << c.sql;

  // Names with Polish letters, and every NIP valid.
  EXPECT_EQ(Query("SELECT count(*) FROM dane_odbiorcy WHERE nazwa ~ '[ąćęłńóśźżĄĆĘŁŃÓŚŹŻ]'"), "20");
  std::istringstream nips(Query("SELECT nip FROM dane_odbiorcy UNION ALL SELECT nip FROM dane_dostawcy"));
  int valid = 0;
  for (std::string nip; std::getline(nips, nip);) valid += NipValid(nip) ? 1 : 0;
  EXPECT_EQ(valid, 40);

  // Gross sale prices: net plus VAT of the group, to the grosz.
  EXPECT_EQ(Query("SELECT count(*) FROM dane_kat_tow_ WHERE abs(cena_s_b - round(cena_s_n * (1 + CASE WHEN vat ~ "
                  "'^[0-9]+$' THEN vat::numeric ELSE 0 END / 100), 2)) > 0.005"),
            "0");
  // Opening stock: 10 + (7i mod 91) in the first warehouse, 13i mod 41 in the second, items i = 0..199.
  long first = 0, second = 0;
  for (int i = 0; i < 200; ++i) first += 10 + (i * 7) % 91, second += (i * 13) % 41;
  EXPECT_EQ(Query("SELECT sum(ilosc)::bigint FROM dane_1_stany_mg"), std::to_string(first));
  EXPECT_EQ(Query("SELECT sum(ilosc)::bigint FROM dane_2_stany_mg"), std::to_string(second));

  // The fiscal settings: the server's POSNET for the firm and user 0, ELZAB for the first operator.
  struct Fiscal {
    const char* dir;
    int port;
  };
  for (const Fiscal f : {Fiscal{"", 2}, Fiscal{"dane/uzytkown/0/", 2}, Fiscal{"dane/uzytkown/1/", 1},
                         Fiscal{"dane/uzytkown/2/", 2}}) {
    const FiscalConfig c = ReadFiscalConfig(ShortText(std::string("firm/") + f.dir));
    EXPECT_EQ(c.printerType, kFiscalServer) << f.dir;
    EXPECT_EQ(c.port, f.port) << f.dir;
    EXPECT_EQ(VatToPrinterCode(c, ShortText("23")), 'A') << f.dir;
    EXPECT_EQ(VatToPrinterCode(c, ShortText("zwol.")), 'Z') << f.dir;
    EXPECT_TRUE(c.serverRow.Empty()) << f.dir;  // the polling server, not a one-shot one
  }
}

// A second run changes no row; a third keeps what a person changed and puts back what was removed.
TEST_F(DemoFirmTest, RunsAgainChangeNothingKeepChangesAndPutBackWhatIsMissing) {
  ASSERT_EQ(RunDemoFirm(), 0);
  const auto first = Snapshot();
  ASSERT_GT(first.size(), 20u);
  ASSERT_EQ(RunDemoFirm(), 0);
  EXPECT_EQ(Snapshot(), first);

  ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET miasto = 'Sopot' WHERE numer = 3"));
  ASSERT_TRUE(Psql("DELETE FROM dane_dostawcy WHERE numer = 7"));
  ASSERT_TRUE(Psql("DELETE FROM dane_2_stany_mg WHERE nr_wewn IN (5, 150)"));
  ASSERT_TRUE(Psql("DELETE FROM dane_pola_ind_vat WHERE indeks = '8'"));
  std::filesystem::remove(firm_ + "/dane/uzytkown/0/konffisk.txt");
  ASSERT_EQ(RunDemoFirm(), 0);
  EXPECT_EQ(Query("SELECT miasto FROM dane_odbiorcy WHERE numer = 3"), "Sopot");
  ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET miasto = 'Łódź' WHERE numer = 3"));
  // The VAT dictionary's row ids follow its key's order and the catalogue
  // counts the writes of each table: both are compared by their rows.
  EXPECT_EQ(Query("SELECT string_agg(indeks, ',' ORDER BY indeks) FROM dane_pola_ind_vat"), "0,23,5,8,zwol.");
  auto second = Snapshot();
  auto expected = first;
  for (const char* t : {"dane_pola_ind_vat", "tables_list"}) second.erase(t), expected.erase(t);
  EXPECT_EQ(second, expected);
  EXPECT_EQ(ReadFiscalConfig(ShortText("firm/dane/uzytkown/0/")).port, 2);
}

TEST_F(DemoFirmTest, NoDatabaseEndsWithFailureAndWritesNothing) {
  WriteConnParm("/nonexistent-socket-dir", "", "1", "postgres", "", "nowhere");
  EXPECT_NE(RunDemoFirm(), 0);
  EXPECT_FALSE(std::filesystem::exists(firm_ + "/konffisk.txt"));
}

}  // namespace
