// The tables of a warehouse and of the firm as the server and tables_list
// hold them after creation: column order, types, keys and indexes.
#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include "master/tables.h"
#include "sqltable/sqltest.h"

namespace {

// The server's type of a type text, by the layer's rule.
std::string ServerType(const std::string& typp) {
  static const std::map<std::string, std::string> fixed = {{"S", "smallint"}, {"I", "integer"}, {"Y", "bigint"},
      {"D", "date"}, {"N", "double precision"}, {"X", "numeric(28,7)"}, {"B0", "text"}, {"A1", "character(1)"}};
  const auto it = fixed.find(typp);
  return it != fixed.end() ? it->second : "character varying(" + typp.substr(1) + ")";
}

class MasterTablesTest : public CatalogueTest {
 protected:
  // "name type,..." of tables_list, in field order.
  static std::string Catalogue(const std::string& table) {
    return Scalar("SELECT string_agg(lower(nazp)||' '||typp, ',' ORDER BY lp) FROM tables_list WHERE nazt=upper('" + table +
                  "')");
  }
  // The same from the server's own columns, the row id first.
  static std::string ServerColumns(const std::string& table) {
    return Scalar("SELECT string_agg(attname||' '||format_type(atttypid,atttypmod), ',' ORDER BY attnum) "
                  "FROM pg_attribute WHERE attrelid=(current_schema()||'." + table + "')::regclass AND attnum>0 AND NOT attisdropped");
  }
  static std::string KeyFields(const std::string& nazt) {
    return Scalar("SELECT string_agg(lp::text, ',' ORDER BY lp) FROM tables_list WHERE nazt='" + nazt + "' AND k='*'");
  }
  // "name(columns)" of every index, by name; unique ones marked "!".
  static std::string Indexes(const std::string& table) {
    return Scalar("SELECT string_agg(replace(c.relname, '" + table + "_', '')||CASE WHEN i.indisunique AND NOT i.indisprimary THEN '!' ELSE '' END||"
                  "regexp_replace(pg_get_indexdef(i.indexrelid), '.* USING btree ', ''), ' ' ORDER BY c.relname) "
                  "FROM pg_index i JOIN pg_class c ON c.oid=i.indexrelid WHERE i.indrelid=(current_schema()||'." + table + "')::regclass");
  }
  // Checks columns against the written-out list, in tables_list and on the server.
  static void ExpectColumns(const std::string& table, const std::string& expected) {
    EXPECT_EQ(Catalogue(table), expected) << table;
    std::string server = "oid bigint";
    std::istringstream columns(expected);
    for (std::string name, type; std::getline(columns, name, ' ') && std::getline(columns, type, ',');)
      server += "," + name + " " + ServerType(type);
    EXPECT_EQ(ServerColumns(table), server) << table;
  }
};

const char kNaglowki[] =
    "typ_dok S,nr_dok I,znak_dok A4,data_dok D,typ_dok_zrodl S,nr_dok_zrodl I,znak_dok_zrodl A4,suma_dok X,"
    "data_sprzedazy D,data_rozliczenia D,nr_kontrahenta I,nazwa_kontrahenta A17,nr_operatora I,nr_magazynu_mm I,"
    "sposob_rozlicz A15,nazwa_dok_dodatk A15,nr_dok_dodatk A17,czy_depozyt A1,czy_gotowkowy A1,komentarz A255,"
    "data_dok_zrodl D,zablokowany A1,czas_automatycznie N,dod_inf A12,rab_kwot X,czy_mm_zwr A1";
const char kSpecyfik[] =
    "typ_dok S,nr_dok I,znak_dok A4,pozycja I,data_dok D,data_sprzedazy A1,data_rozliczenia A1,nr_kontrahenta A1,"
    "nazwa_kontrahenta A1,nr_operatora A1,nr_towaru I,vat A5,sww A10,ilosc X,c_zak_netto X,c_zak_brutto X,"
    "c_spr_netto X,c_spr_brutto X,c_spr_n_katal X,c_spr_b_katal X,magazyn_mm A1,ilosc_w_depozycie X,"
    "czy_od_pl_vat A1,nr_dostawcy_towaru I";
const char kStanyMg[] = "nr_wewn I,ilosc X,ilosc_zamowiona_odb X,csn X,csb X,nr_zwiaz I,oznacz A1";
const char kKsiega[] =
    "data D,typ_dow S,nr_dow A17,suma X,nr_kon I,naz_kon A26,operator I,opis B0,uwagi B0,tresc B0";

TEST_F(MasterTablesTest, WarehouseTablesHaveTheirColumnsAndKeys) {
  CreateWarehouseTables(false, 7);
  ExpectColumns("dane_7_naglowki", kNaglowki);
  ExpectColumns("dane_7_specyfik", kSpecyfik);
  ExpectColumns("dane_7_speckont", kSpecyfik);
  ExpectColumns("dane_7_stany_mg", kStanyMg);
  ExpectColumns("dane_7_ksiega__", kKsiega);
  const std::pair<const char*, const char*> keys[] = {
      {"NAGLOWKI", "1,2,3"}, {"SPECYFIK", "1,2,3,4"}, {"SPECKONT", "1,2,3,4"},
      {"STANY_MG", "1"},     {"KASA____", "1,2,3"},   {"KSIEGA__", "1,2,3"}, {"KSIEGASA", ""}};
  for (const auto& [table, fields] : keys) EXPECT_EQ(KeyFields("DANE_7_" + std::string(table)), fields) << table;
  const std::string headerIndexes =
      "data_dok(data_dok) data_dok_u(data_dok, typ_dok, nr_dok, znak_dok) "
      "dok_zrodl(typ_dok_zrodl, nr_dok_zrodl, znak_dok_zrodl) nr_kontrahenta(nr_kontrahenta) oidindeks!(oid) "
      "pkey(typ_dok, nr_dok, znak_dok)";
  EXPECT_EQ(Indexes("dane_7_naglowki"), headerIndexes);
  EXPECT_EQ(Indexes("dane_7_kasa____"), headerIndexes);
  const std::string lineIndexes = "nr_towaru(nr_towaru) oidindeks!(oid) pkey(typ_dok, nr_dok, znak_dok, pozycja)";
  EXPECT_EQ(Indexes("dane_7_specyfik"), lineIndexes);
  EXPECT_EQ(Indexes("dane_7_speckont"), lineIndexes);
  EXPECT_EQ(Indexes("dane_7_stany_mg"), "oidindeks!(oid) pkey(nr_wewn)");
  EXPECT_EQ(Indexes("dane_7_ksiegasa"), "oidindeks!(oid)");
  // The composite index is recorded under its name, in field order.
  EXPECT_EQ(Scalar("SELECT string_agg(lp||':'||ci||cilp, ',' ORDER BY lp) FROM tables_list WHERE nazt='DANE_7_KASA____' AND ci<>''"),
            "5:DOK_ZRODL1,6:DOK_ZRODL2,7:DOK_ZRODL3");
  EXPECT_TRUE(std::filesystem::is_directory("dane/7"));
}

TEST_F(MasterTablesTest, CreatingAgainReplacesTheTablesWithoutDuplicates) {
  CreateWarehouseTables(false, 7);
  ASSERT_TRUE(Psql("INSERT INTO dane_7_naglowki (typ_dok,nr_dok,znak_dok) VALUES (1,2,'A')"));
  const std::string catalogue = Scalar("SELECT count(*) FROM tables_list");
  const std::string indexes = Indexes("dane_7_naglowki");
  CreateWarehouseTables(true, 7);
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_7_naglowki"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list"), catalogue);
  EXPECT_EQ(Indexes("dane_7_naglowki"), indexes);
  EXPECT_EQ(Catalogue("DANE_7_NAGLOWKI"), kNaglowki);
}

TEST_F(MasterTablesTest, LongWarehouseNumberGetsAPointInItsFolder) {
  CreateWarehouseTables(false, 123456789);
  EXPECT_TRUE(std::filesystem::is_directory("dane/12345678.9"));
  bool exists = false;
  (void)PGTblExist("dane\\12345678.9\\stany_mg", exists);
  EXPECT_TRUE(exists);
  EXPECT_EQ(Catalogue("DANE_123456782E9_STANY_MG"), kStanyMg);
}

TEST_F(MasterTablesTest, ProgressBoxShowsEachStepInItsBrackets) {
  for (const bool checkOnly : {false, true}) {
    screenBytes_.clear();
    CreateWarehouseTables(checkOnly, 3);
    const std::string title = checkOnly ? "Sprawdzenie istnienia baz magazynu ...[" : "Trwa tworzenie pustej bazy magazynu...[";
    bool found = false;
    for (int row = 1; row <= kScreenRows; ++row)
      found = found || RowText(row).Str().find(title + "dokumenty kasowe       ]") != std::string::npos;
    EXPECT_TRUE(found) << checkOnly;
    // Every step reached the terminal, in order (the ASCII parts of their texts).
    const std::string sent = ScreenBytes();
    std::size_t at = 0;
    for (const char* step : {"rozliczenia samochodu  ", "przych.i rozch. ", "w - stany", "dokument", "specyfikacje dokument",
                             "indeksy specyfikacji   ", "kontrolki dokument", "dokumenty kasowe       "}) {
      at = sent.find(step, at);
      ASSERT_NE(at, std::string::npos) << step;
    }
    EXPECT_EQ(WhereX(), 1);  // the cursor and window given back
    EXPECT_EQ(CurrentWindow().right, kScreenCols);
  }
}

// A table that cannot be replaced ends the program with the failure box naming it.
TEST_F(MasterTablesTest, FailingStepEndsTheProgramNamingTheTable) {
  ASSERT_TRUE(Psql("CREATE VIEW dane_5_stany_mg AS SELECT 1 AS x"));
  AnswerBoxesOnStderr();
  EXPECT_EXIT(CreateWarehouseTables(false, 5), ::testing::ExitedWithCode(0),
              "Ostatnia otwierana tablica: `DANE_5_STANY_MG[^\n]*\n[^\n]*\\(stany magazynowe - magazyn nr 5\\)");
}

const char kKatTow[] =
    "nazwa A31,nazwa_ A30,cena_z_n X,cena_z_b X,vat A5,sww A10,czy_od_pl_vat A13,nr_wewn I,indeks_znakowy_isbn A20,"
    "indeks_numeryczny Y,dostawca I,miejsce_w_magazynie A9,k1_pochodzenie_autor A15,k2_wydawca A15,k3_grupa_tow A15,"
    "k4 A15,k5 A15,cena_s_n X,cena_s_b X,ilosc X,jednostka A7,ilosc_w_opak X,dostawca_opis A20,il_zamowiona X,"
    "blok_rab S";

TEST_F(MasterTablesTest, FirmTablesHaveTheirColumnsAndKeys) {
  for (int pass = 0; pass < 2; ++pass) CreateFirmTables(20);
  ExpectColumns("dane_kat_tow_", kKatTow);
  EXPECT_EQ(KeyFields("DANE_KAT_TOW_"), "1,2,3,4,5,6,7");
  const std::string key = "nazwa, nazwa_, cena_z_n, cena_z_b, vat, sww, czy_od_pl_vat";
  EXPECT_EQ(Indexes("dane_kat_tow_"),
            "dostawca(dostawca) dostawca_u(dostawca, " + key + ") indeks_numeryczny(indeks_numeryczny) "
            "indeks_numeryczny_u(indeks_numeryczny, " + key + ") indeks_znakowy_isbn(indeks_znakowy_isbn) "
            "indeks_znakowy_isbn_u(indeks_znakowy_isbn, " + key + ") nr_wewn!(nr_wewn) nr_wewn_u(nr_wewn, " + key +
            ") oidindeks!(oid) pkey(" + key + ")");
  ExpectColumns("dane_naglowki", "typ_dok S,nr_dok I,znak_dok A4,data_dok D,data_ost_skasowania D,czas_ost_skasowania S,"
                                 "nr_uzytk_kasujacego I,nazwa_uz_kasujacego A30,ost_suma_dok_skas X");
  // The general list is no warehouse table: no extended index on its date.
  EXPECT_EQ(Indexes("dane_naglowki"), "data_dok(data_dok) oidindeks!(oid) pkey(typ_dok, nr_dok, znak_dok)");
  for (const char* table : {"dane_odbiorcy", "dane_dostawcy", "dane_magazyny"}) {
    EXPECT_EQ(Scalar("SELECT string_agg(attnum||attname, ',' ORDER BY attnum) FROM pg_attribute WHERE attrelid=(current_schema()||'." +
                     std::string(table) + "')::regclass AND attname IN ('numer','czy_podmiot_gosp','rabat')"),
              "4numer,8czy_podmiot_gosp,20rabat")
        << table;
  }
  ExpectColumns("dane_odb_mag_", "nr_kon I,nr_mag I");
  EXPECT_EQ(Indexes("dane_dost_mag"), "nr_mag(nr_mag) oidindeks!(oid) pkey(nr_kon, nr_mag)");
  EXPECT_EQ(Indexes("dane_dodnrdok"),
            "oidindeks!(oid) pkey(nr_magazynu, typ_dok, nr_dok, znak_dok) td_nr_dod(nr_magazynu, typ_dok, nr_dod)");
  ExpectColumns("dane_pola_ind_forma_p", "indeks A15,opis A255,czy_byl_obrot A1");
  // The base rate, once, though the tables were made twice.
  EXPECT_EQ(Scalar("SELECT string_agg(indeks||'|'||opis, ',') FROM dane_przelicr"), "+|PLN (polski złoty)");
}

}  // namespace
