// CorrectCatalogueVat: after a document whose lines' VAT the entry changed,
// the items concerned leave the warehouse under their catalogue VAT and
// come back under the line's VAT in a pair of transfer documents of the
// warehouse to itself, and the catalogue takes the new VAT and the line's
// prices. The stock is the same after the pair; the VAT of what it holds is not.
#include <string>

#include "base/text.h"

#include "documents/docdetail.h"
#include "documents/docentry.h"
#include "documents/entry_detail.h"
#include "documents/save_detail.h"
#include "master/items.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgui.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace savedetail {

namespace {

const ShortText kProgressText = "Trwa korekta kartotek ........ [          ]"_mz;

// The catalogue row of each line's item; a missing row ends the program,
// since the line list names an item the catalogue no longer has.
std::vector<ItemData> CatalogueOf(std::span<const DocLine> lines) {
  std::vector<ItemData> out;
  for (const DocLine& l : lines) {
    ItemData item;
    bool found = false;
    CheckDBError(ItemFindByNumber(l.item.number, item, found));
    if (!found) {
      (void)MessageBox("Brak pozycji o numerze wewn.="_mz + ShortText(std::to_string(l.item.number)) +
                           " w katalogu towarów.@Program musi przerwać działanie."_mz,
                       0);
      PGUiEndProgram();
    }
    out.push_back(item);
  }
  return out;
}

// One of the pair: kind 15 out of the warehouse or 18 into it.
void WriteHalf(int32_t warehouse, int kind, const ShortText& comment, int32_t date, const std::vector<DocLine>& lines,
               SaveSettings settings) {
  DocumentHeader h;
  h.kind = static_cast<int16_t>(kind);
  h.mark = entrydetail::ProposedMark(kind, ShortText(), 0);
  h.date = h.saleDate = h.settleDate = date;
  h.otherWarehouse = warehouse;
  h.comment = comment;
  settings.mayGoBelowZero = true;  // the pair moves all of it, or the stock would not come back whole
  settings.changeStock = true;
  settings.stockDecidedKinds = {};
  settings.paidVat = 0;
  settings.placeOnReceipt = false;
  SaveResult r;
  for (int attempt = 0; attempt < 3; ++attempt) {
    CheckDBError(SaveDocument(warehouse, h, lines, settings, r));
    if (r.outcome != SaveOutcome::kKeyTaken) break;
  }
}

}  // namespace

std::vector<VatChange> VatChangesOf(std::span<const DocLine> lines, std::span<const ItemData> catalogue) {
  std::vector<VatChange> out;
  for (std::size_t i = 0; i < lines.size() && i < catalogue.size(); ++i)
    if (lines[i].quantity != 0 && TrimRight(lines[i].item.vat, ' ') != TrimRight(catalogue[i].vat, ' '))
      out.push_back({lines[i], catalogue[i]});
  return out;
}

Real VatChangeCost(std::span<const VatChange> changes) {
  Real sum = 0;
  for (const VatChange& c : changes) sum += c.line.item.buyNet * c.line.quantity;
  return sum;
}

void CorrectCatalogueVat(int32_t warehouse, const DocumentHeader& doc, std::span<const DocLine> lines,
                         const SaveSettings& settings) {
  if (!settings.vatChanged || !settings.correctVat) return;
  const std::vector<VatChange> changes = VatChangesOf(lines, CatalogueOf(lines));
  if (VatChangeCost(changes) <= 0) return;
  const ScreenKeeper keeper;
  (void)MessageBox(kProgressText, 2);
  const ProgressBar bar = FindProgressBar(kProgressText);
  const ShortText comment = "zm.VAT dla "_mz + TrimRight(KindName(doc.kind), ' ') + " "_mz + DocNumberText(doc.coded);
  std::vector<DocLine> out, in;
  for (const VatChange& c : changes) {
    DocLine old = c.line;
    old.item = c.catalogue;
    out.push_back(old);
    in.push_back(c.line);
  }
  WriteHalf(warehouse, 15, comment, doc.date, out, settings);
  WriteHalf(warehouse, 18, comment, doc.date, in, settings);
  docdetail::ExclusiveLock lock{ShortText(kKatTowTable)};
  long done = 0;
  for (const VatChange& c : changes) {
    const ItemData& i = c.line.item;
    CheckDBError(PGRunQueryNoTup("UPDATE " + docdetail::SqlTable(ShortText(kKatTowTable)) + " SET vat=" +
                                 TextSql(i.vat) + ",cena_z_n=" + NumberSql(i.buyNet) + ",cena_z_b=" +
                                 NumberSql(i.buyGross) + ",cena_s_n=" + NumberSql(i.saleNet) + ",cena_s_b=" +
                                 NumberSql(i.saleGross) + " WHERE nr_wewn=" + std::to_string(i.number)));
    ShowProgress(bar, ++done, static_cast<long>(changes.size()));
  }
  CheckDBError(lock.Commit());
}

}  // namespace savedetail
