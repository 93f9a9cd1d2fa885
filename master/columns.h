// Column lists of the application's tables. Each list names the columns of
// one table with their type texts (as PGTblCreate takes them) in field order:
// field numbers count from 1 in the order written here, and the documents,
// catalogues and reports address fields by those numbers. Every list gives
// both the table's definition (master/tables.h) and a struct of named column
// numbers, so code writes NaglowkiCol::data_dok, never 4.
#pragma once

#include <cstdint>
#include <string_view>

// The SQL name of a column from its identifier in a list: the identifier
// itself, except that a C++ keyword is written with a trailing underscore.
constexpr const char* ColumnSqlName(const char* ident) {
  return std::string_view(ident) == "operator_" ? "operator" : ident;
}

// Headers of goods documents of one warehouse: dane\<nr>\naglowki.
#define KLOTE_COLUMNS_NAGLOWKI(X)                                                                        \
  X(typ_dok, "S") X(nr_dok, "I") X(znak_dok, "A4") X(data_dok, "D") X(typ_dok_zrodl, "S")               \
  X(nr_dok_zrodl, "I") X(znak_dok_zrodl, "A4") X(suma_dok, "X") X(data_sprzedazy, "D")                  \
  X(data_rozliczenia, "D") X(nr_kontrahenta, "I") X(nazwa_kontrahenta, "A17") X(nr_operatora, "I")      \
  X(nr_magazynu_mm, "I") X(sposob_rozlicz, "A15") X(nazwa_dok_dodatk, "A15") X(nr_dok_dodatk, "A17")    \
  X(czy_depozyt, "A1") X(czy_gotowkowy, "A1") X(komentarz, "A255") X(data_dok_zrodl, "D")               \
  X(zablokowany, "A1") X(czas_automatycznie, "N") X(dod_inf, "A12") X(rab_kwot, "X") X(czy_mm_zwr, "A1")

// Lines of goods documents: dane\<nr>\specyfik, and its copy speckont.
// Columns 6 to 10 and 21 are one character wide on purpose: the line takes
// those data from its header.
#define KLOTE_COLUMNS_SPECYFIK(X)                                                                        \
  X(typ_dok, "S") X(nr_dok, "I") X(znak_dok, "A4") X(pozycja, "I") X(data_dok, "D")                     \
  X(data_sprzedazy, "A1") X(data_rozliczenia, "A1") X(nr_kontrahenta, "A1") X(nazwa_kontrahenta, "A1")  \
  X(nr_operatora, "A1") X(nr_towaru, "I") X(vat, "A5") X(sww, "A10") X(ilosc, "X") X(c_zak_netto, "X")  \
  X(c_zak_brutto, "X") X(c_spr_netto, "X") X(c_spr_brutto, "X") X(c_spr_n_katal, "X")                   \
  X(c_spr_b_katal, "X") X(magazyn_mm, "A1") X(ilosc_w_depozycie, "X") X(czy_od_pl_vat, "A1")            \
  X(nr_dostawcy_towaru, "I")

// Stock list of one warehouse: dane\<nr>\stany_mg.
#define KLOTE_COLUMNS_STANY_MG(X)                                                                  \
  X(nr_wewn, "I") X(ilosc, "X") X(ilosc_zamowiona_odb, "X") X(csn, "X") X(csb, "X") X(nr_zwiaz, "I") \
  X(oznacz, "A1")

// Payment documents of one warehouse: dane\<nr>\kasa____.
#define KLOTE_COLUMNS_KASA(X)                                                                          \
  X(typ_dok, "S") X(nr_dok, "I") X(znak_dok, "A4") X(data_dok, "D") X(typ_dok_zrodl, "S")             \
  X(nr_dok_zrodl, "I") X(znak_dok_zrodl, "A4") X(opis_typ_dok, "A7") X(typ_kontrahenta, "A1")         \
  X(nr_kontrahenta, "I") X(nazwa_kontrahenta, "A17") X(konto_przeciwstawne, "A3") X(suma_dok, "X")    \
  X(komentarz, "A36") X(nr_operatora, "I") X(data_dok_zrodl, "D") X(zablokowany, "A1")

// Income and expense book of one warehouse: dane\<nr>\ksiega__.
#define KLOTE_COLUMNS_KSIEGA(X)                                                                     \
  X(data, "D") X(typ_dow, "S") X(nr_dow, "A17") X(suma, "X") X(nr_kon, "I") X(naz_kon, "A26")       \
  X(operator_, "I") X(opis, "B0") X(uwagi, "B0") X(tresc, "B0")

// Settlements of a car: dane\<nr>\ksiegasa.
#define KLOTE_COLUMNS_KSIEGASA(X)                                                                     \
  X(data, "D") X(typ, "A1") X(nr_trasy, "S") X(numer_dow_il_km, "A30") X(wart_il_ltr, "X")            \
  X(opis, "A100") X(cel, "A55") X(nr_oper, "I") X(uwagi, "A100")

// General list of document numbers of the firm: dane\naglowki.
#define KLOTE_COLUMNS_NAGLOWKI_FIRMY(X)                                                              \
  X(typ_dok, "S") X(nr_dok, "I") X(znak_dok, "A4") X(data_dok, "D") X(data_ost_skasowania, "D")      \
  X(czas_ost_skasowania, "S") X(nr_uzytk_kasujacego, "I") X(nazwa_uz_kasujacego, "A30")              \
  X(ost_suma_dok_skas, "X")

// Main item catalogue: dane\kat_tow_. Column 9 takes the configured index
// length at creation; blok_rab, the discount lock, follows the 24 columns.
#define KLOTE_COLUMNS_KAT_TOW(X)                                                                        \
  X(nazwa, "A31") X(nazwa_, "A30") X(cena_z_n, "X") X(cena_z_b, "X") X(vat, "A5") X(sww, "A10")        \
  X(czy_od_pl_vat, "A13") X(nr_wewn, "I") X(indeks_znakowy_isbn, "A13") X(indeks_numeryczny, "Y")      \
  X(dostawca, "I") X(miejsce_w_magazynie, "A9") X(k1_pochodzenie_autor, "A15") X(k2_wydawca, "A15")    \
  X(k3_grupa_tow, "A15") X(k4, "A15") X(k5, "A15") X(cena_s_n, "X") X(cena_s_b, "X") X(ilosc, "X")    \
  X(jednostka, "A7") X(ilosc_w_opak, "X") X(dostawca_opis, "A20") X(il_zamowiona, "X") X(blok_rab, "S")

// Customers, suppliers and warehouses, one layout: dane\odbiorcy,
// dane\dostawcy, dane\magazyny. Column 3 is the number, column 19 the only
// decimal; in magazyny column 7 holds Z for a warehouse with its own tables.
#define KLOTE_COLUMNS_KONTRAHENT(X)                                                                      \
  X(nazwa, "A50") X(nazwa_inne, "A50") X(numer, "I") X(kod, "A6") X(miasto, "A30") X(ulica, "A40")      \
  X(czy_podmiot_gosp, "A1") X(nip, "A13") X(pesel, "A11") X(regon, "A14") X(nr_rej, "A20")             \
  X(telefony, "A40") X(konto, "A60") X(osoba, "A40") X(miejsce_wyst, "A30") X(kor_miasto, "A30")       \
  X(kor_kod, "A6") X(kor_ulica, "A40") X(rabat, "X") X(cecha1, "A20") X(cecha2, "A20") X(cecha3, "A20") \
  X(cecha4, "A20") X(symbol_fk, "A20") X(email, "A60")

// Links of customers and of suppliers to warehouses: dane\odb_mag_, dane\dost_mag.
#define KLOTE_COLUMNS_KONT_MAG(X) X(nr_kon, "I") X(nr_mag, "I")

// Catalogue of document kinds, goods and payment: dane\dok_plat.
#define KLOTE_COLUMNS_DOK_PLAT(X)                                                                    \
  X(typ_dok, "S") X(nazwa, "A30") X(typ_kontrahenta, "A1") X(konto, "A3") X(konto_przeciwstawne, "A3") \
  X(czy_przychod, "A1") X(znak_dok, "A4") X(zablokowany, "A1") X(druk_dodatkowy, "A1")               \
  X(instrukcja_ksieg, "A60") X(rezerwa, "S")

// Kinds closed for one user: dane\dok_plaz.
#define KLOTE_COLUMNS_DOK_PLAZ(X) X(nr_uzytkownika, "I") X(typ_dok, "S")

// Additional document numbers: dane\dodnrdok.
#define KLOTE_COLUMNS_DODNRDOK(X)                                                                       \
  X(nr_magazynu, "I") X(typ_dok, "S") X(nr_dok, "I") X(znak_dok, "A4") X(nr_dod, "I") X(data_dok, "D") \
  X(wartosc, "I") X(tekst, "A30")

// Dictionaries dane\pola_ind\<name> and the exchange-rate list dane\przelicr.
#define KLOTE_COLUMNS_SLOWNIK(X) X(indeks, "A15") X(opis, "A255") X(czy_byl_obrot, "A1")

// The users' list dane\uzytkown\uzytkown is the users' module's own: its
// field numbers are userfld:: in users/users.h.

// Every list with the name of its struct of column numbers.
#define KLOTE_COLUMN_LISTS(L)                                                                       \
  L(NaglowkiCol, KLOTE_COLUMNS_NAGLOWKI) L(SpecyfikCol, KLOTE_COLUMNS_SPECYFIK)                     \
  L(StanyMgCol, KLOTE_COLUMNS_STANY_MG) L(KasaCol, KLOTE_COLUMNS_KASA)                              \
  L(KsiegaCol, KLOTE_COLUMNS_KSIEGA) L(KsiegasaCol, KLOTE_COLUMNS_KSIEGASA)                         \
  L(NaglowkiFirmyCol, KLOTE_COLUMNS_NAGLOWKI_FIRMY) L(KatTowCol, KLOTE_COLUMNS_KAT_TOW)             \
  L(KontrahentCol, KLOTE_COLUMNS_KONTRAHENT) L(KontMagCol, KLOTE_COLUMNS_KONT_MAG)                  \
  L(DokPlatCol, KLOTE_COLUMNS_DOK_PLAT) L(DokPlazCol, KLOTE_COLUMNS_DOK_PLAZ)                       \
  L(DodNrDokCol, KLOTE_COLUMNS_DODNRDOK) L(SlownikCol, KLOTE_COLUMNS_SLOWNIK)

// Column numbers: XxxCol::name is the field number of that column, counted
// from 1; XxxCol::kCount is the number of columns.
#define KLOTE_COLUMN_NUMBER(name, type) name,
#define KLOTE_COLUMN_STRUCT(Struct, LIST)                                  \
  struct Struct {                                                          \
    enum Column : int16_t { kNoColumn = 0, LIST(KLOTE_COLUMN_NUMBER) kEnd }; \
    static constexpr int kCount = kEnd - 1;                                \
  };
KLOTE_COLUMN_LISTS(KLOTE_COLUMN_STRUCT)
#undef KLOTE_COLUMN_STRUCT
#undef KLOTE_COLUMN_NUMBER
