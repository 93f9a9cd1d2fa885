// The pure rules of the layer: name mapping, type letters, escaping, code texts.
#include <gtest/gtest.h>

#include <string>

#include "base/mazovia.h"
#include "sqltable/pgtable.h"

namespace {

TEST(PGSqlNameTest, MapsEveryByteByTheRule) {
  struct Case {
    const char* path;
    const char* sql;
  } cases[] = {
      {"dane\\magazyny", "DANE_MAGAZYNY"}, {"dane\\uzytkown\\0\\konffisk", "DANE_UZYTKOWN_0_KONFFISK"},
      {"dane\\12345678.9\\naglowki", "DANE_123456782E9_NAGLOWKI"}, {"12abc", "N12ABC"}, {"_x", "N_X"},
      {"dane/x", "DANE2FX"}, {"a b'c", "A20B27C"}, {"", "N"}, {"Zz09_", "ZZ09_"}, {"\\x", "N_X"},
  };
  for (const Case& c : cases) EXPECT_EQ(PGSqlName(c.path), c.sql) << c.path;
  EXPECT_EQ(PGSqlName("ą"_mz), "N86");         // a Mazovia letter is not a letter here
  EXPECT_EQ(PGSqlName(ShortText(std::string_view("\xFF\x00", 2))), "FF00");  // F is a letter: no prefix
  // Mapped names map to themselves.
  EXPECT_EQ(PGSqlName(PGSqlName("dane\\kat_tow_")), "DANE_KAT_TOW_");
}

TEST(PGEscapeStrTest, NoByteCanCloseTheLiteral) {
  EXPECT_EQ(PGEscapeStr("abc"), "abc");
  EXPECT_EQ(PGEscapeStr("O'Reilly"), "O\\'Reilly");
  EXPECT_EQ(PGEscapeStr("a\\b"), "a\\\\b");
  EXPECT_EQ(PGEscapeStr("50%_"), "50\\%\\_");
  EXPECT_EQ(PGEscapeStr(std::string_view("a\0b", 3)), "a b");
  EXPECT_EQ(PGEscapeStr("\x01\x1F\t"), "\\001\\037\\011");
  EXPECT_EQ(PGEscapeStr("\x7F\xFF "), "\x7F\xFF ");
  EXPECT_EQ(PGEscapeStr(""), "");
}

TEST(PGParseTypeTest, StrictRuleOfTableCreation) {
  struct Case {
    const char* type;
    const char* sql;
    int buf;
    PGKind kind;
  } cases[] = {
      {"A25", "VARCHAR(25)", 26, PGKind::Text}, {"A1", "CHAR", 2, PGKind::Text},
      {"A0", "CHAR", 1, PGKind::Text}, {"A255", "VARCHAR(255)", 256, PGKind::Text},
      {"D", "DATE", 11, PGKind::Date}, {"S", "SMALLINT", 7, PGKind::Number},
      {"I", "INT", 12, PGKind::Number}, {"Y", "INT8", 23, PGKind::Number},
      {"Y8", "INT8", 23, PGKind::Number},  // Y is not among the letters that refuse a size
      {"N", "DOUBLE PRECISION", 30, PGKind::Number}, {"$", "DOUBLE PRECISION", 30, PGKind::Number},
      {"X", "NUMERIC(28,7)", 30, PGKind::Number}, {"M100", "TEXT", 16385, PGKind::Blob},
      {"B1", "TEXT", 16385, PGKind::Blob}, {"F2", "TEXT", 16385, PGKind::Blob},
      {"G3", "TEXT", 16385, PGKind::Blob}, {"O4", "TEXT", 16385, PGKind::Blob},
  };
  PGTypeInfo info;
  for (const char* bad : {"", "Q", "a25", "A", "M", "D8", "I4", "$2", "X1", "A256", "A1x", "A-1", "A2'"})
    EXPECT_FALSE(PGParseType(bad, true, info)) << bad;
  for (const Case& c : cases) {
    ASSERT_TRUE(PGParseType(c.type, true, info)) << c.type;
    EXPECT_EQ(info.sqlType, c.sql) << c.type;
    EXPECT_EQ(info.bufSize, c.buf) << c.type;
    EXPECT_EQ(info.kind, c.kind) << c.type;
  }
}

TEST(PGParseTypeTest, LooseRuleOnlyNeedsAKnownLetter) {
  PGTypeInfo info;
  EXPECT_TRUE(PGParseType("D8", false, info));
  EXPECT_TRUE(PGParseType("A", false, info));
  EXPECT_EQ(info.bufSize, 1);
  EXPECT_TRUE(PGParseType("A12x", false, info));
  EXPECT_EQ(info.size, 12);
  EXPECT_FALSE(PGParseType("Q1", false, info));
  EXPECT_FALSE(PGParseType("", false, info));
}

TEST(PGErrTextTest, TableHas92RowsInItsOrderEachWithItsOwnText) {
  ASSERT_EQ(PGErrTableSize(), 92);
  const int16_t order[92] = {0,   1,   2,   3,   4,   5,   6,   7,   8,   9,   10,   11,   12,   13,   14,   15,
                             115, 21,  22,  116, 30,  31,  117, 33,  118, 119, 40,   41,   120,  121,  50,   122,
                             124, 125, 126, 127, 70,  128, 72,  73,  74,  75,  76,   129,  78,   79,   130,  81,
                             82,  83,  86,  89,  136, 93,  94,  95,  96,  97,  98,   99,   16,   101,  102,  103,
                             104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114,  51,   52,   53,   54,   55,
                             56,  57,  59,  60,  92,  137, 1000, 1001, 1002, 1003, 1004, 1005};
  const ShortText unknown = PGErrText(-5);
  for (int i = 0; i < 92; ++i) {
    EXPECT_EQ(PGErrTableCode(i), order[i]) << "row " << i;
    const ShortText text = PGErrText(order[i]);
    EXPECT_FALSE(text.Empty());
    EXPECT_NE(text, unknown) << order[i];
    EXPECT_LE(text.Length(), 80);
  }
  EXPECT_EQ(PGErrTableCode(92), -1);
}

TEST(PGErrTextTest, TextsAreTheSystemsOwn) {
  struct Case {
    int16_t code;
    ShortText text;
  } cases[] = {
      {0, "Operacja poprawna."_mz}, {7, "Uszkodzony indeks podstawowy (`primary index\")."_mz},
      {10, "Brak możliwości dostępu dzielonego (być może do katalogu)."_mz},
      {11, "Brak możliwości dostępu dzielonego (być może do katalogu)."_mz},
      {9, "Rekord jest zablokowany przez innego uzytkownika."_mz}, {54, "Nieprawidłowy rozmiar `BLOB`u\"."_mz},
      {72, "Nie jest dostępna większa ilość `uchwytów\" tablic."_mz},
      {79, "Operacji nie można zakończyć - błąd krytyczny (`fatal error\")."_mz},
      {114, "Nieprawidłówa nazwa katalogu."_mz}, {118, "Błąd zapytania SQL."_mz},
      {120, "Nie znaleziono tablicy."_mz},
      {1000, "Nie znaleziono pliku parametrów połączenia z serwerem bazy."_mz},
      {1004, "Nie utworzono indeksu kolejności pól tablicy informacyjnej `tables_list\"."_mz},
      {1005, "Próba blokady poza transakcją."_mz},
  };
  for (const Case& c : cases) EXPECT_EQ(PGErrText(c.code), c.text) << c.code;
}

TEST(PGErrTextTest, CodesOutsideTheTable) {
  EXPECT_EQ(PGErrText(200), "200"_mz + "Awaria pracy klienta DBMS."_mz);
  EXPECT_EQ(PGErrText(250), "250Awaria pracy klienta DBMS."_mz);
  EXPECT_EQ(PGErrText(225), "225Awaria pracy klienta DBMS."_mz);
  for (int16_t code : {199, 251, 17, -1, 32767, 1006})
    EXPECT_EQ(PGErrText(code), "Nie zdefiniowany kod awarii pracy klienta DBMS. "_mz) << code;
  EXPECT_EQ(PGErrText(126), "Awaria pracy klienta DBMS."_mz);
}

TEST(PGErrTextTest, ClientErrorBeforeTheScreenPrintsAndEnds) {
  EXPECT_EXIT(PGFatalClientError(1001), ::testing::ExitedWithCode(0), "");
}

}  // namespace
