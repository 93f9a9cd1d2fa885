// The definitions of the application's tables, built from the column lists
// of master/columns.h with the keys and indexes of each table beside them.
#include "master/tables.h"

namespace {

#define KLOTE_COLUMN_DEF(name, type) ColumnDef{ColumnSqlName(#name), type},
#define KLOTE_COLUMN_ARRAY(Struct, LIST) constexpr ColumnDef k##Struct##s[] = {LIST(KLOTE_COLUMN_DEF)};
KLOTE_COLUMN_LISTS(KLOTE_COLUMN_ARRAY)
#undef KLOTE_COLUMN_ARRAY
#undef KLOTE_COLUMN_DEF

constexpr int kPlain = 1;
constexpr int kUnique = 3;

// The source document of a correction, mirror or payment.
// Headers and payment documents hold the source document in the same columns.
static_assert(+NaglowkiCol::typ_dok_zrodl == +KasaCol::typ_dok_zrodl &&
              +NaglowkiCol::nr_dok_zrodl == +KasaCol::nr_dok_zrodl &&
              +NaglowkiCol::znak_dok_zrodl == +KasaCol::znak_dok_zrodl);
constexpr CompositeDef kDokZrodl[] = {
    {"dok_zrodl", {NaglowkiCol::typ_dok_zrodl, NaglowkiCol::nr_dok_zrodl, NaglowkiCol::znak_dok_zrodl}, 3}};

constexpr IndexDef kNaglowkiIndexes[] = {{NaglowkiCol::data_dok, kPlain}, {NaglowkiCol::nr_kontrahenta, kPlain}};
constexpr IndexDef kSpecyfikIndexes[] = {{SpecyfikCol::nr_towaru, kPlain}};
constexpr IndexDef kKasaIndexes[] = {{KasaCol::data_dok, kPlain}, {KasaCol::nr_kontrahenta, kPlain}};
constexpr IndexDef kNaglowkiFirmyIndexes[] = {{NaglowkiFirmyCol::data_dok, kPlain}};
constexpr IndexDef kKatTowIndexes[] = {{KatTowCol::nr_wewn, kUnique},
                                       {KatTowCol::indeks_znakowy_isbn, kPlain},
                                       {KatTowCol::indeks_numeryczny, kPlain},
                                       {KatTowCol::dostawca, kPlain}};
constexpr IndexDef kKontrahentIndexes[] = {{KontrahentCol::numer, kUnique}, {KontrahentCol::nr_rej, kPlain}};
constexpr IndexDef kKontMagIndexes[] = {{KontMagCol::nr_mag, kPlain}};
// The series of additional numbers in order of number.
constexpr CompositeDef kTdNrDod[] = {{"td_nr_dod", {DodNrDokCol::nr_magazynu, DodNrDokCol::typ_dok, DodNrDokCol::nr_dod}, 3}};

}  // namespace

const TableDef kNaglowkiDef{kNaglowkiCols, 3, kNaglowkiIndexes, kDokZrodl};
const TableDef kSpecyfikDef{kSpecyfikCols, 4, kSpecyfikIndexes, {}};
const TableDef kStanyMgDef{kStanyMgCols, 1, {}, {}};
const TableDef kKasaDef{kKasaCols, 3, kKasaIndexes, kDokZrodl};
const TableDef kKsiegaDef{kKsiegaCols, 3, {}, {}};
const TableDef kKsiegasaDef{kKsiegasaCols, 0, {}, {}};

const TableDef kNaglowkiFirmyDef{kNaglowkiFirmyCols, 3, kNaglowkiFirmyIndexes, {}};
// The catalogue's key is the item's features, columns 1 to 7; nr_wewn is unique beside it.
const TableDef kKatTowDef{kKatTowCols, 7, kKatTowIndexes, {}};
// Name, other name and number: the list's order by name, unique by number.
const TableDef kKontrahentDef{kKontrahentCols, 3, kKontrahentIndexes, {}};
const TableDef kKontMagDef{kKontMagCols, 2, kKontMagIndexes, {}};
const TableDef kDokPlatDef{kDokPlatCols, 1, {}, {}};
const TableDef kDokPlazDef{kDokPlazCols, 2, {}, {}};
const TableDef kDodNrDokDef{kDodNrDokCols, 4, {}, kTdNrDod};
const TableDef kSlownikDef{kSlownikCols, 1, {}, {}};
