// The pure rules of the catalogue: VAT and prices, the checks of a new
// item's data, and the select of the joined list.
#include <cmath>
#include <string>

#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "master/items.h"
#include "master/items_detail.h"
#include "master/tables.h"
#include "sqltable/pgtable.h"

namespace {

// numeric(28,7) holds 21 digits before the point.
constexpr Real kAmountLimit = 1e21L;

bool NoVat(Real rate) { return rate == 0 || rate == -100; }

}  // namespace

Real VatRateOf(const ShortText& vat) {
  const ShortText text = TrimLeftAll(TrimRightAll(vat, ' '), ' ');
  if (text.Empty() || NumericCheck(text, false) != 0) return 0;
  return TextToRealLoose(text);
}

Real GrossFromNet(Real net, const ShortText& vat) {
  const Real rate = VatRateOf(vat);
  return NoVat(rate) ? net : net * (100 + rate) / 100;
}

Real NetFromGross(Real gross, const ShortText& vat) {
  const Real rate = VatRateOf(vat);
  return NoVat(rate) ? gross : gross * 100 / (100 + rate);
}

Real RoundToStep(Real price, Real step) {
  if (step <= 0) return price;
  return RoundHalfAway(price / step) * step;
}

Real SaleFromPurchase(Real purchase, Real percent, bool margin) {
  if (!margin) return purchase * (100 + percent) / 100;
  if (percent >= 100) return purchase;  // a margin of the whole price has no sale price
  return purchase * 100 / (100 - percent);
}

bool AmountInRange(Real value) { return std::isfinite(static_cast<double>(value)) && std::fabs(value) < kAmountLimit; }

ShortText CheckItemData(const ItemData& item, const ItemRules& rules) {
  const int codeLength = TrimRight(item.code, ' ').Length();
  if (rules.minCodeLength > 0 && codeLength < rules.minCodeLength)
    return "Niepoprawny indeks.@Minimalna długość indeksu to "_mz + ShortText(std::to_string(rules.minCodeLength));
  if (item.digitIndex < 0 || item.digitIndex > kDigitIndexMax)
    return "Indeks numeryczny musi zawierać się w przedziale [0,999999999999999]."_mz;
  if (item.supplier == 0) return "Dla towaru musi być wybrany dostawca z numerem różnym od zera."_mz;
  if (TrimRightAll(item.unit, ' ').Empty()) return "Towar musi mieć jakąś jednostkę miary, prawda ?"_mz;
  for (Real v : {item.buyNet, item.buyGross, item.saleNet, item.saleGross, item.packQuantity, item.ordered})
    if (!AmountInRange(v)) return items_detail::BadAmountText();
  return ShortText();
}

// --- The joined list ---

namespace {

std::string StockSource(const ItemListKind& kind, int32_t warehouse) {
  if (kind.grouped) return items_detail::kStockView;
  return PGSqlName(WarehouseTablePath(warehouse, "stany_mg")).Str();
}

std::string ListConditions(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, bool forward) {
  std::string where;
  auto add = [&where](const std::string& c) { where += (where.empty() ? " WHERE " : " AND ") + c; };
  if (kind.stock == ItemListStock::kNonZero) add("S.ilosc<>0.0");
  if (kind.stock == ItemListStock::kWithTurnover)
    add("EXISTS (SELECT 1 FROM " + PGSqlName(WarehouseTablePath(warehouse, "specyfik")).Str() +
        " P WHERE P.nr_towaru=K.nr_wewn)");
  if (kind.activeOnly) add("K.ilosc IS NOT NULL");
  if (from.set) {
    const char* op = forward ? (from.inclusive ? ">=" : ">") : (from.inclusive ? "<=" : "<");
    add("(K.nazwa,K.nazwa_,K.oid)" + std::string(op) + "(" + items_detail::SqlText(from.name) + "," +
        items_detail::SqlText(from.name2) + "," + std::to_string(from.rowId) + ")");
  }
  return where;
}

}  // namespace

std::string ItemListQuery(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, bool forward,
                          int limit) {
  return ItemListQueryWhere(kind, warehouse, from, forward, limit, std::string());
}

std::string ItemListQueryWhere(const ItemListKind& kind, int32_t warehouse, const ItemListKey& from, bool forward,
                               int limit, const std::string& condition) {
  std::string where = ListConditions(kind, warehouse, from, forward);
  if (!condition.empty()) where += (where.empty() ? " WHERE " : " AND ") + condition;
  const std::string join = kind.stock == ItemListStock::kNonZero ? " JOIN " : " LEFT OUTER JOIN ";
  const char* dir = forward ? "" : " DESC";
  return "SELECT " + items_detail::ItemColumns("K") +
         ",COALESCE(S.ilosc,0.0),COALESCE(S.csn,0.0),COALESCE(S.csb,0.0) FROM DANE_KAT_TOW_ AS K" + join +
         StockSource(kind, warehouse) + " AS S ON S.nr_wewn=K.nr_wewn" +
         where + " ORDER BY K.nazwa" + dir + ",K.nazwa_" + dir + ",K.oid" +
         dir + " LIMIT " + std::to_string(limit);
}

ItemListKey ItemListKeyOf(const ItemListRow& row) {
  ItemListKey key;
  key.set = true;
  key.name = row.item.name;
  key.name2 = row.item.name2;
  key.rowId = row.rowId;
  return key;
}
