// The checks of a whole line list before the save writes anything: the
// least value of an invoice for firms, the suppliers of the lines, and the
// cut of issues to what stock holds beyond the customers' orders.
#include <map>

#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docentry.h"
#include "documents/entry_detail.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace entrydetail {

namespace {

constexpr ShortText kCheckingText = "Trwa kontrola specyfikacji...[          ]"_mz;
// The other invoice series, which a sale below the least value takes.
constexpr int kOtherInvoiceKind = 4;

ShortText DifferentSupplierText(int position) {
  return "Na specyfikacji znaleziono towar (poz."_mz + IntText(position, 0) + ")"_mz +
         "który pochodzi od innego dostawcy, niż pierwszy ze specyfikacji.@"_mz +
         "Popraw specyfikację i zapisz dane powtórnie."_mz;
}

// Step 5: the suppliers of the lines by the kind's rule; false when the save stops.
bool SuppliersPass(int kind, std::span<const DocLine> lines) {
  const SupplierRule rule = KindSupplierRule(kind);
  if (rule == SupplierRule::kAny) return true;
  (void)MessageBox(kCheckingText, 2);
  ShowProgress(FindProgressBar(kCheckingText), 1, 1);
  const int position = DifferentSupplierAt(lines);
  if (position == 0) return true;
  if (rule == SupplierRule::kRequire) {
    (void)MessageBox(DifferentSupplierText(position), 0);
    return false;
  }
  if (MessageBox("Na specyfikacji znaleziono towary@od różnych dostawców.@Czy tak ma być ?"_mz, 1)) return true;
  return !MessageBox("Czy zrezygnować z zapisu ?@"_mz + "(Jeśli nie wiesz, co zrobić, odpowiedz `tak\",@"_mz +
                         "ponieważ potem możesz mieć kłopoty)."_mz,
                     1);
}

}  // namespace

SupplierRule KindSupplierRule(int kind) {
  switch (kind) {
    case 8: case 9: return SupplierRule::kRequire;  // goods go back to the one supplier they came from
    case 6: case 7: return SupplierRule::kWarn;
    default: return SupplierRule::kAny;
  }
}

int DifferentSupplierAt(std::span<const DocLine> lines) {
  int32_t first = 0;
  int position = 0;
  for (const DocLine& l : lines) {
    if (l.quantity == 0) continue;
    ++position;
    if (l.item.supplier == 0) continue;
    if (first == 0) first = l.item.supplier;
    else if (l.item.supplier != first) return position;
  }
  return 0;
}

ShortText MinimumValueRefusal(int kind, Real total, Real limit, const ShortText& name, const ShortText& otherName) {
  if (kind != 2 || limit <= 0 || !(total < limit)) return {};
  return "Wartość dokumentu `"_mz + name + "\" nie może"_mz + "@ być mniejsza, niż "_mz + TrimLeftAll(FormatFixed(15, 2, limit), ' ') +
         "- zł ."_mz + "@Należy wystawić dokument `"_mz + otherName + "'."_mz;
}

bool LimitToUnreserved(std::vector<DocLine>& lines, const StockLevels& levels) {
  std::map<int32_t, Real> free;  // what each item has beyond its orders, as the lines use it
  for (const auto& [item, level] : levels)
    if (level.quantity > 0 && level.ordered > 0) free[item] = level.quantity - level.ordered;
  bool cut = false;
  for (DocLine& l : lines) {
    const auto f = free.find(l.item.number);
    if (f == free.end() || l.quantity <= 0) continue;
    if (f->second < l.quantity) {
      l.quantity = f->second > 0 ? f->second : 0;
      cut = true;
    }
    f->second -= l.quantity;
  }
  return cut;
}

bool PassesSaveChecks(const DocumentHeader& header, std::span<const DocLine> lines, int vatMode) {
  const Real limit = TextToRealLoose(ConfigText(kConfigInvoiceMinimum));
  if (!CurrentUserMaxRights()) {
    const Real total = ComputeTotals(lines, KindTotalMethod(header.kind, vatMode)).total;
    const ShortText refusal =
        MinimumValueRefusal(header.kind, total, limit, KindName(header.kind), KindName(kOtherInvoiceKind));
    if (!refusal.Empty()) {
      (void)MessageBox(refusal, 0);
      return false;
    }
  }
  return SuppliersPass(header.kind, lines);
}

}  // namespace entrydetail
