// The checks of one line before it goes on the line list: the stock that is
// available (the stock row less what the work table already holds of the
// item), the question on going below zero with its remembered answers, the
// orders, the returns, the header's supplier and the prices by kind; and
// the texts of leaving, dropping and the fiscal limit of a retail sale.
#include <string>

#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docdetail.h"
#include "documents/docentry.h"
#include "documents/dockinds.h"
#include "documents/entry_detail.h"
#include "documents/save_detail.h"
#include "master/items.h"
#include "sqltable/dbapp.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

namespace entrydetail {

namespace {

constexpr ShortText kNoStockText = "Jest, ale ma stan zerowy lub ujemny."_mz;
constexpr ShortText kNoRightTail = ".@Nie masz praw do zapisu operacji, która spowoduje stan ujemny !"_mz;
constexpr ShortText kBelowZeroChoices =
    "tak - ma być ujemny@zredukować wpisaną ilość do takiej, która jest w stanie@"
    "ma być zawsze ujemny i nie pytać o to więcej@zawsze redukowaę ilość do dostępnej i nie pytać o to więcej"_mz;

ShortText Amount(Real value) { return TrimLeftAll(TrimRightAll(FormatShortest(15, value), ' '), ' '); }

bool SaleKind(int kind) {
  const DocumentKind* k = DocumentKindOf(kind);
  return k && (k->group == KindGroup::kRetail || k->group == KindGroup::kDocumentedSale);
}

// Step 6: what the user with the right to go below zero wants; 0 for Esc.
int AskBelowZero(const ItemData& item, LineMemory& memory) {
  if (memory.alwaysNegative) return static_cast<int>(BelowZeroChoice::kNegative);
  if (memory.alwaysReduce) return static_cast<int>(BelowZeroChoice::kReduce);
  unsigned char ch = 0, scan = 0;
  const ShortText title = "Po zapisie operacji stan pozycji"_mz + " "_mz + TrimRight(item.name, ' ') +
                          " będzie ujemny. Wybierz:"_mz;
  const int pick = PickList(0, 1, 1, 0, 0, title, kBelowZeroChoices, ch, scan);
  if (pick == static_cast<int>(BelowZeroChoice::kAlwaysNegative)) memory.alwaysNegative = true;
  if (pick == static_cast<int>(BelowZeroChoice::kAlwaysReduce)) memory.alwaysReduce = true;
  if (pick == static_cast<int>(BelowZeroChoice::kAlwaysNegative)) return static_cast<int>(BelowZeroChoice::kNegative);
  if (pick == static_cast<int>(BelowZeroChoice::kAlwaysReduce)) return static_cast<int>(BelowZeroChoice::kReduce);
  return pick;
}

// Steps 5 and 6 on an issue; false when the line falls back.
bool StockStep(const ItemData& item, Real available, Real& q, LineMemory& memory) {
  if (!CurrentUserRight(UserRight::kBelowZero)) {
    switch (JudgeStock(q, available)) {
      case StockVerdict::kFits: return true;
      case StockVerdict::kNothing: (void)MessageBox(kNoStockText, 0); return false;
      case StockVerdict::kReduced:
        (void)MessageBox(ReductionText(available) + kNoRightTail, 0);
        q = available;
        return true;
    }
  }
  if (q <= available) return true;
  const int choice = AskBelowZero(item, memory);
  if (choice == static_cast<int>(BelowZeroChoice::kNegative)) return true;
  if (choice != static_cast<int>(BelowZeroChoice::kReduce) || available <= 0) return false;
  q = available;
  return true;
}

}  // namespace

// --- Pure rules ---
bool IsReturnKind(int kind) { return kind == 3 || kind == 5 || kind == 8 || kind == 9 || kind == 13; }

StockVerdict JudgeStock(Real q, Real available) {
  if (q <= available) return StockVerdict::kFits;
  return available <= 0 ? StockVerdict::kNothing : StockVerdict::kReduced;
}

ShortText ReductionText(Real available) {
  return "Podana przez Ciebie ilość zostanie automatycznie zredukowana@"_mz + "do ilości = "_mz + Amount(available);
}

ShortText OrdersNotice(Real q, Real available, Real ordered, bool keep, Real& cut) {
  cut = q;
  const Real beyond = available - ordered;
  if (ordered <= 0 || q <= beyond) return {};
  ShortText text = "@Zamówiona jest w tej chwili ilość = "_mz + Amount(ordered) +
                   "@pozostanie do dyspozycji ilość = "_mz + Amount(beyond) +
                   "Jej zapis spowoduje brak możliwości relizacji zamówień."_mz;
  if (keep) {
    cut = beyond > 0 ? beyond : 0;
    text += "@Wpisana ilość zostaje zredukowana do "_mz + Amount(cut);
  }
  return text;
}

ShortText ReturnQuestion(int kind, Real q, Real available) {
  if (!IsReturnKind(kind) || q == 0 || q == available) return {};
  const bool above = q > available;
  if (above ? !(q > 0) : !(q < 0)) return {};  // only a return past the stock, or a negative one
  return "Wpisujesz zwrot, a ilość zwracana="_mz + Amount(q) +
         (above ? "@jest większa, niż dostępny stan="_mz : "@jest mniejsza, niż dostępny stan="_mz) +
         Amount(available) + ", co jest dziwne !@Czy tak ma być ?"_mz;
}

ShortText SupplierRefusal(int kind, int32_t headerSupplier, int32_t itemSupplier, const ShortText& kindName) {
  if (KindSupplierRule(kind) != SupplierRule::kRequire || headerSupplier == 0 || itemSupplier == 0 ||
      itemSupplier == headerSupplier)
    return {};
  return "@Towar nie jest od dostawcy z nagłówka dokumentu i nie może znaleźć się@"_mz + kindName;
}

void PurchasePriceFromSale(ItemData& item, Real lessBy) {
  if (lessBy == 0) return;
  const Real net = RoundMoney(item.saleNet - lessBy);
  item.buyNet = net > 0 ? net : 0;  // a value above the price leaves nothing, never a negative price
  item.buyGross = GrossOfNet(item.buyNet, VatRateOf(item.vat));
}

ShortText DiscountReminder(int kind, Real discount, bool remind) {
  if (!remind || discount == 0 || !SaleKind(kind)) return {};
  return "Pamiętaj, że temu kontrahentowi należy się rabat od cen sprzedaży@w wysokości "_mz + Amount(discount);
}

ShortText DropQuestion(int lines) {
  return lines > kLongListLines ? "Wpisana specyfikacja jest już dość długa.@Czy na pewno ją usunąć ?"_mz
                                : "Czy na pewno usunąć całą wpisaną specyfikację ?"_mz;
}

ShortText LeaveQuestion(bool changeMode) {
  return changeMode ? "Na pewno chcesz zrezygnować ze wprowadzonych zmian ?"_mz
                    : kLeaveEntryText;
}

LineLimit FiscalLineLimit(int kind, int lines, int option) {
  if (kind != 1 || option == 0 || lines <= (option < 0 ? -option : option)) return LineLimit::kFine;
  return option < 0 ? LineLimit::kRefuse : LineLimit::kAsk;
}

ShortText FiscalLimitText(LineLimit verdict, int option) {
  const ShortText n = IntText(option < 0 ? -option : option, 0);
  if (verdict == LineLimit::kRefuse)
    return "Dokument SPRZEDAŻY FISKALNEJ może mieć do "_mz + n + " pozycji"_mz + "Zapis zostaje odwołany."_mz;
  if (verdict == LineLimit::kAsk)
    return "Dokument SPRZEDAŻY FISKALNEJ powinien mieć do "_mz + n + " pozycji"_mz + "@Czy na pewno chcesz go zapisać ?"_mz;
  return {};
}

// --- Screens and tables ---
int16_t QuantityOnList(const ShortText& workTable, int32_t item, int64_t skipRow, Real& sum) {
  std::string value;
  bool isNull = true;
  const int16_t code = docdetail::QueryValue("SELECT SUM(ilosc) FROM " + docdetail::SqlTable(workTable) +
                                                 " WHERE nr_wewn=" + std::to_string(item) +
                                                 " AND oid<>" + std::to_string(skipRow),
                                             value, isNull);
  sum = isNull ? 0 : savedetail::RealOf(value);
  return code;
}

bool CheckLineQuantity(int32_t warehouse, int kind, const ShortText& workTable, const DocLine& line, Real& q,
                       LineMemory& memory) {
  const bool issue = KindChecksAvailability(kind) && q > 0;
  if (!issue && !IsReturnKind(kind)) return true;
  StockRow stock;
  bool found = false;
  CheckDBError(StockRead(warehouse, line.item.number, stock, found));
  Real onList = 0;
  CheckDBError(QuantityOnList(workTable, line.item.number, line.rowId, onList));
  const Real available = (found ? stock.quantity : 0) - onList;
  if (issue && !StockStep(line.item, available, q, memory)) return false;
  if (issue && ConfigInt(kConfigOrdersReserve) != 0) {
    Real cut = q;
    const ShortText notice = OrdersNotice(q, available, found ? stock.ordered : 0,
                                          ConfigInt(kConfigOrdersReserve) == 2, cut);
    if (!notice.Empty()) (void)MessageBox(notice, 0);
    if (cut <= 0) return false;
    q = cut;
  }
  const ShortText question = ReturnQuestion(kind, q, available);
  return question.Empty() || MessageBox(question, 1);
}

void PriceNewLine(int kind, const DocumentHeader* header, DocLine& line) {
  const DocumentKind* k = DocumentKindOf(kind);
  if (k && k->group == KindGroup::kPurchases) PurchasePriceFromSale(line.item, ConfigReal(kConfigPurchaseLessBy));
  if (!header || header->contractor == 0 || !SaleKind(kind)) return;
  Contractor c;
  bool found = false;
  CheckDBError(ContractorFind(ContractorKind::kCustomer, header->contractor, c, found));
  const ShortText reminder = DiscountReminder(kind, found ? c.discount : 0, ConfigInt(kConfigDiscountReminder) == 1);
  if (!reminder.Empty()) (void)MessageBox(reminder, 0);
}

bool ItemFitsHeader(int kind, const DocumentHeader* header, const ItemData& item) {
  if (!header) return true;
  const ShortText refusal = SupplierRefusal(kind, header->contractor, item.supplier, KindName(kind));
  if (refusal.Empty()) return true;
  (void)MessageBox(refusal, 0);
  return false;
}

bool PassesFiscalLimit(int kind, std::span<const DocLine> lines) {
  int count = 0;
  for (const DocLine& l : lines) count += l.quantity != 0;
  const int option = ConfigInt(kConfigLongReceipt);
  const LineLimit verdict = FiscalLineLimit(kind, count, option);
  if (verdict == LineLimit::kFine) return true;
  if (verdict == LineLimit::kRefuse) {
    (void)MessageBox(FiscalLimitText(verdict, option), 0);
    return false;
  }
  return MessageBox(FiscalLimitText(verdict, option), 1);
}

}  // namespace entrydetail
