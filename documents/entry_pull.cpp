// Items pulled onto the line list from a saved document of the warehouse:
// the kind, the document, then (with lines already there) whether they are
// replaced or added to. Each line takes the item's catalogue row with the
// document's own VAT, prices and quantity.
#include <string>
#include <vector>

#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/docdetail.h"
#include "documents/docentry.h"
#include "documents/docnumber.h"
#include "documents/entry_detail.h"
#include "documents/save_detail.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace entrydetail {

namespace {

constexpr int kDocumentsShown = 21;
const ShortText kMissingItemText = "Uszkodzenie bazy !@Brak towaru nr "_mz;

struct SavedDoc {
  int32_t coded = 0;
  ShortText mark;
};

int PickIndex(const ShortText& title, const std::vector<ShortText>& choices) {
  unsigned char ch = 0, scan = 0;
  return PickListHooked(0, 1, 1, 0, 0, title, choices, PickListHooks{}, ch, scan);
}

int ChooseKind() {
  std::vector<ShortText> names;
  for (int k = kFirstGoodsKind; k <= kLastGoodsKind; ++k) names.push_back(KindName(k));
  return PickIndex(kPullKindTitle, names);
}

// The latest documents of the kind, newest first; false when none is chosen.
bool ChooseDocument(int32_t warehouse, int kind, SavedDoc& doc) {
  PGResult res;
  CheckDBError(PGRunQueryWithTup("SELECT nr_dok,znak_dok,data_dok,suma_dok FROM " +
                                     docdetail::SqlTable(WarehouseTablePath(warehouse, "naglowki")) +
                                     " WHERE typ_dok=" + std::to_string(kind) + " ORDER BY data_dok DESC,oid DESC LIMIT " +
                                     std::to_string(kDocumentsShown),
                                 res));
  std::vector<SavedDoc> docs;
  std::vector<ShortText> rows;
  for (int r = 0; r < res.Rows(); ++r) {
    docs.push_back({static_cast<int32_t>(savedetail::IntOf(res.Value(r, 0))), savedetail::TextOf(res, r, 1)});
    rows.push_back(PadRight(DocNumberText(docs.back().coded), " ", 12) + " "_mz + PadRight(docs.back().mark, " ", 4) +
                   " "_mz + ShortText(std::string(res.Value(r, 2))) + " "_mz +
                   FormatFixed(12, 2, savedetail::RealOf(res.Value(r, 3))));
  }
  if (docs.empty()) return false;
  const int at = PickIndex(KindName(kind), rows);
  if (at <= 0) return false;
  doc = docs[static_cast<std::size_t>(at - 1)];
  return true;
}

// The document's lines as lines of the list; false (after the message) when an item is missing.
bool DocumentLines(int32_t warehouse, int kind, const SavedDoc& doc, std::vector<DocLine>& lines) {
  PGResult res;
  CheckDBError(PGRunQueryWithTup(
      "SELECT nr_towaru,ilosc,vat,c_zak_netto,c_zak_brutto,c_spr_netto,c_spr_brutto FROM " +
          docdetail::SqlTable(WarehouseTablePath(warehouse, "specyfik")) + " WHERE typ_dok=" + std::to_string(kind) +
          " AND nr_dok=" + std::to_string(doc.coded) + " AND znak_dok=" + savedetail::TextSql(doc.mark) +
          " ORDER BY pozycja,oid",
      res));
  for (int r = 0; r < res.Rows(); ++r) {
    DocLine line;
    const auto number = static_cast<int32_t>(savedetail::IntOf(res.Value(r, 0)));
    bool found = false;
    CheckDBError(ItemFindByNumber(number, line.item, found));
    if (!found) {
      (void)MessageBox(kMissingItemText + ShortText(std::to_string(number)), 0);
      return false;
    }
    line.quantity = savedetail::RealOf(res.Value(r, 1));
    line.item.vat = savedetail::TextOf(res, r, 2);
    line.item.buyNet = savedetail::RealOf(res.Value(r, 3));
    line.item.buyGross = savedetail::RealOf(res.Value(r, 4));
    line.item.saleNet = savedetail::RealOf(res.Value(r, 5));
    line.item.saleGross = savedetail::RealOf(res.Value(r, 6));
    lines.push_back(line);
  }
  return true;
}

}  // namespace

EntryAfter PullFromDocuments(EntryView& v) {
  const int kind = ChooseKind();
  SavedDoc doc;
  if (kind <= 0 || !ChooseDocument(v.warehouse, kind, doc)) return EntryAfter::kDone;
  bool replace = false;
  if (!v.lines.empty()) {
    unsigned char ch = 0, scan = 0;
    const int choice = PickList(0, 2, 1, 0, 0, ShortText(), kPullChoices, ch, scan);
    if (choice == 0) return EntryAfter::kDone;
    replace = choice == 1;
  }
  std::vector<DocLine> pulled;
  if (!DocumentLines(v.warehouse, kind, doc, pulled)) return EntryAfter::kDone;
  std::vector<DocLine> all = replace ? std::vector<DocLine>{} : v.lines;
  all.insert(all.end(), pulled.begin(), pulled.end());
  std::vector<int64_t> before;
  for (const DocLine& l : all) before.push_back(l.rowId);
  CheckDBError(WorkRewriteInOrder(v.work, all));
  RemapRowIds(v.x.marked, before, all);  // kept lines keep their marks; replaced ones lose them
  return EntryAfter::kReadLines;
}

}  // namespace entrydetail
