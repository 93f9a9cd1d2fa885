// The questions of the save that come before its transaction: the VAT
// payment of an invoice and the operator's decision on the stock change.
#include <set>
#include <string>

#include "base/dates.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/docdetail.h"
#include "documents/save_detail.h"
#include "master/items.h"
#include "tui/askvalue.h"
#include "tui/msgbox.h"

namespace savedetail {

StockDecision DecideStockChange(int kind, const std::array<bool, 19>& decidedKinds, int option) {
  if (kind < 1 || kind > 18 || kind == 16 || kind == 17 || !decidedKinds[static_cast<std::size_t>(kind)])
    return StockDecision::kKindEffect;
  if (option == 0) return StockDecision::kNoChange;
  return option == 1 ? StockDecision::kAsk : StockDecision::kKindEffect;
}

bool AsksVatPayment(int kind, int option, Real total) { return kind == 2 && (option == 1 || option == 2) && total > 0; }

Real PaidVatFor(Real paid, Real total) {
  if (paid <= 0 || total <= 0) return 0;
  return paid < total ? paid : total;
}

ShortText ReceiptPlaceValue(int kind, const SaveSettings& settings, int32_t date) {
  if ((kind != 6 && kind != 7 && kind != 12) || !settings.placeOnReceipt) return ShortText();
  int year = 0, month = 0, day = 0;
  if (!DecodeDaySerial(date, year, month, day)) return ShortText();
  if (settings.placeFieldKind == 1) return DateShorten(DateFromParts(day, month, year));
  if (settings.placeFieldKind == 0) return ShortText(std::to_string(year));
  return ShortText();
}

int16_t UpdateCatalogueFromReceipt(std::span<const DocLine> lines, const ShortText& value) {
  std::set<int32_t> items;
  for (const DocLine& l : lines)
    if (l.quantity != 0) items.insert(l.item.number);
  if (value.Empty() || items.empty()) return 0;
  std::string list;
  for (const int32_t n : items) list += (list.empty() ? "" : ",") + std::to_string(n);
  return PGRunQueryNoTup("UPDATE " + docdetail::SqlTable(ShortText(kKatTowTable)) +
                         " SET miejsce_w_magazynie=" + TextSql(value) + " WHERE nr_wewn IN (" + list +
                         ") AND TRIM(COALESCE(miejsce_w_magazynie,''))=''");
}

bool AskVatPayment(int kind, std::span<const DocLine> lines, SaveSettings& settings) {
  settings.paidVat = 0;
  const Real total = ComputeTotals(lines, KindTotalMethod(kind, settings.vatMode)).total;
  if (!AsksVatPayment(kind, settings.vatPaymentOption, total)) return true;
  for (;;) {
    ShortText text;
    if (!AskValue(kAskVatPaymentText, text, 12, 0, ShortText(), ShortText())) return false;
    const Real paid = TextToRealLoose(TrimBoth(text, ' '));
    if (!AmountInRange(paid) || paid < 0) continue;  // not a sum of money: asked again
    if (paid <= total) {
      settings.paidVat = paid;
      return true;
    }
    if (MessageBox(kVatPaymentTooBigText, 1)) return false;
  }
}

void DecideStockOfSave(int kind, SaveSettings& settings) {
  if (DecideStockChange(kind, settings.stockDecidedKinds, settings.stockChangeOption) == StockDecision::kAsk &&
      !MessageBox(kAskStockChangeText, 1))
    settings.changeStock = false;
}

}  // namespace savedetail
