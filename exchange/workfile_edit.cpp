// Changing the work file by hand: its rows in a list, the quantity changed
// on Enter, a row removed on Del, a document or the catalogue added on Ins.
#include <cstdio>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "exchange/workfile.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace {

constexpr int kDocumentsShown = 200;

struct DocumentRef {
  int16_t kind = 0;
  int32_t number = 0;
  ShortText mark;
};

ShortText RowText(const WorkFileRow& row) {
  char figures[48];
  std::snprintf(figures, sizeof figures, " %12.3Lf %12.2Lf", static_cast<long double>(row.quantity),
                static_cast<long double>(row.item.saleGross));
  return PadRight(row.item.name, ShortText(" "), 31) + figures;
}

// The latest documents of the warehouse, newest first.
std::vector<DocumentRef> LatestDocuments(int32_t warehouse, ShortText& options) {
  std::vector<DocumentRef> docs;
  int16_t tbl = 0;
  CheckDBError(PGTblOpen(WarehouseTablePath(warehouse, "naglowki"), tbl, 0));
  int16_t rec = 0;
  CheckDBError(PGRecBufOpen(tbl, rec));
  for (int16_t code = PGRecLast(tbl); code == 0 && docs.size() < kDocumentsShown; code = PGRecPrev(tbl)) {
    DocumentRef doc;
    ShortText customer;
    CheckDBError(PGRecGet(tbl, rec));
    CheckDBError(PGGetShort(rec, NaglowkiCol::typ_dok, doc.kind));
    CheckDBError(PGGetLong(rec, NaglowkiCol::nr_dok, doc.number));
    CheckDBError(PGGetAlpha(rec, NaglowkiCol::znak_dok, doc.mark));
    CheckDBError(PGGetAlpha(rec, NaglowkiCol::nazwa_kontrahenta, customer));
    char head[32];
    std::snprintf(head, sizeof head, "%3d %8d/", doc.kind, doc.number);
    const ShortText line = ShortText(head) + TrimRight(doc.mark, ' ') + " " + customer;
    if (options.Length() + line.Length() + 1 > 255) break;
    options += (docs.empty() ? "" : "@") + line;
    docs.push_back(doc);
  }
  (void)PGRecBufClose(rec);
  (void)PGTblClose(tbl);
  return docs;
}

void AddDocument(int32_t warehouse) {
  ShortText options;
  const std::vector<DocumentRef> docs = LatestDocuments(warehouse, options);
  if (docs.empty()) return;
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(2, 1, 1, 0, 0, "Wybierz dokument:"_mz, options, ch, scan);
  if (choice <= 0) return;
  const DocumentRef& doc = docs[static_cast<std::size_t>(choice - 1)];
  std::vector<WorkFileRow> rows;
  CheckDBError(WorkRowsFromDocument(warehouse, doc.kind, doc.number, doc.mark, rows));
  (void)AddSpecificationToWorkFile(rows, false);
}

void AddCatalogue(int32_t warehouse) {
  std::vector<WorkFileRow> rows;
  CheckDBError(WorkRowsFromCatalogue(warehouse, rows));
  (void)AddSpecificationToWorkFile(rows, true);
}

void AddRows(int32_t warehouse) {
  unsigned char ch = 0, scan = 0;
  const int16_t source =
      PickList(2, 1, 1, 0, 0, "Dopisać do pliku roboczego:"_mz, "dokument@katalog towarów"_mz, ch, scan);
  if (source == 1) AddDocument(warehouse);
  if (source == 2) AddCatalogue(warehouse);
}

// Writes the changed rows back in place of the work file.
bool Store(const std::vector<WorkFileRow>& rows) {
  WorkFileLock lock(WorkFileName());
  if (lock.busy()) {
    (void)MessageBox("Ktoś już pracuje, jako ten użytkownik.@Wejdź do programu jako inny użytkownik, niż ten."_mz, 0);
    return false;
  }
  CheckDBError(WorkFileWrite(WorkFileName(), rows, false));
  return true;
}

}  // namespace

void EditWorkFile(int32_t warehouse) {
  int16_t at = 1;
  for (;;) {
    std::vector<WorkFileRow> rows;
    CheckDBError(WorkFileRead(WorkFileName(), rows));
    std::vector<ShortText> choices;
    for (std::size_t i = 0; i < rows.size() && i < kPickMaxChoices; ++i) choices.push_back(RowText(rows[i]));
    if (choices.empty()) choices.push_back("Plik roboczy jest pusty."_mz);
    KeyPair ended{};
    PickListHooks hooks;
    hooks.endsList = [&ended](KeyPair key) {
      ended = key;
      return key == keys::kIns || key == keys::kDel;
    };
    unsigned char ch = 0, scan = 0;
    ended = {};
    at = PickListHooked(2, at, 1, 0, 0, "Plik roboczy (Ins dopisanie, Del usunięcie, Enter ilość):"_mz, choices, hooks,
                        ch, scan);
    if (ended == keys::kIns) {
      AddRows(warehouse);
      continue;
    }
    if (at <= 0) return;
    if (rows.empty()) continue;
    const std::size_t i = static_cast<std::size_t>(at - 1);
    if (ended == keys::kDel) {
      if (MessageBox("Usunąć pozycję z pliku roboczego ?"_mz, 1)) {
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(i));
        (void)Store(rows);
      }
      continue;
    }
    ShortText value;
    if (!AskValue("Podaj ilość:"_mz, value, 15, 0, ShortText(), ShortText())) continue;
    rows[i].quantity = TextToRealLoose(value);
    (void)Store(rows);
  }
}
