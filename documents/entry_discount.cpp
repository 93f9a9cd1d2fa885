// The discount of the whole line list: every line's sale prices are made
// again from the catalogue's net price, less the percentage, rounded to the
// step the user gives; lines whose item is gone or changed keep their
// prices, and so do items locked against discounts.
#include <cmath>
#include <string>

#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "documents/docdetail.h"
#include "documents/entry_detail.h"
#include "documents/save_detail.h"
#include "master/contractors.h"
#include "sqltable/dbapp.h"
#include "tui/askvalue.h"
#include "tui/editfield.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace entrydetail {

bool SixDecimals(Real percent) {
  const Real scaled = percent * 1000000;
  return std::isfinite(static_cast<double>(scaled)) && std::fabs(scaled - RoundHalfAway(scaled)) < 1e-6L;
}

Real DiscountNet(Real catalogueNet, Real rate, const DiscountSettings& s) {
  const bool taxed = rate != 0 && rate != -100;
  Real p = catalogueNet;
  if (s.vatMode && s.vatDependent && taxed) p = RoundHalfAway(p * 100) / 100;
  p = DiscountedPrice(p, s.percent, s.step, s.vatDependent, rate);
  // The reduction of the VAT-dependent form: c2 = c1 * (1 + x - o / 100) / (1 + x), x the rate as a fraction.
  if (s.vatDependent && taxed && s.reduction != 0) {
    const Real x = rate / 100;
    p = RoundToStep(p * (1 + x - s.reduction / 100) / (1 + x), s.step);
  }
  return p;
}

int16_t WorkLineSetPrices(const ShortText& work, int64_t rowId, Real net, Real gross) {
  return PGRunQueryNoTup("UPDATE " + docdetail::SqlTable(work) + " SET cena_s_n=" + savedetail::NumberSql(net) +
                         ",cena_s_b=" + savedetail::NumberSql(gross) + " WHERE oid=" + std::to_string(rowId));
}

namespace {

ShortText Plain(Real value) { return TrimBoth(FormatShortest(16, value), ' '); }

// The percentage of a customer named by registration number; false to go on without one.
bool CustomerDiscount(Real& percent) {
  ShortText key;
  if (!AskValue(kAskRegistrationText, key, 20, 1, ShortText(), ShortText()) || TrimBoth(key, ' ').Empty())
    return false;
  Contractor customer;
  bool found = false;
  CheckDBError(ContractorFindByRegistration(ContractorKind::kCustomer, TrimBoth(key, ' '), customer, found));
  if (!found) {
    (void)MessageBox(kNoSuchCustomerText, 0);
    return false;
  }
  if (!MessageBox(Plain(customer.discount) + " %@Czy tak ?"_mz, 1)) return false;
  percent = customer.discount;
  return true;
}

struct FormField {
  int column, row, width;
};

// The field after the label of a line of the form: from ": " to the "%" or the line's end.
FormField FieldOfLine(const ShortText& form, int line) {
  std::string_view rest = form.View();
  for (int i = 0; i < line; ++i) rest = rest.substr(rest.find('@') + 1);
  rest = rest.substr(0, rest.find('@'));
  const int start = static_cast<int>(rest.find(':')) + 2;
  const std::size_t pct = rest.find('%');
  const int end = pct == std::string_view::npos ? static_cast<int>(rest.size()) : static_cast<int>(pct) - 1;
  return {2 + start, 2 + line, end - start};
}

// The form's step, percentage (and reduction); false for Esc. A percentage
// with more than 6 decimal places sends the cursor back to it.
bool AskDiscount(DiscountSettings& s) {
  const ShortText& form = s.vatDependent ? kDiscountFormVat : kDiscountForm;
  const int fields = s.vatDependent ? 3 : 2;
  const ScreenKeeper keeper;
  (void)MessageBox(form, 2);
  ShortText values[3] = {Plain(s.step), Plain(s.percent), Plain(s.reduction)};
  for (int at = 0;;) {
    const FormField f = FieldOfLine(form, 3 + at);
    GotoXY(f.column, f.row);
    unsigned char key = 0;
    const unsigned char code = EditField(13, 3, ' ', f.width, values[at], key);
    if (code == 27) return false;
    const Real value = TextToRealLoose(TrimBoth(values[at], ' '));
    if (at > 0 && !SixDecimals(value)) continue;
    const bool last = at == fields - 1;
    if (code == 238 || (code == 13 && last)) break;
    at = code == 242 ? (at + fields - 1) % fields : (at + 1) % fields;
  }
  s.step = TextToRealLoose(TrimBoth(values[0], ' '));
  s.percent = TextToRealLoose(TrimBoth(values[1], ' '));
  s.reduction = s.vatDependent ? TextToRealLoose(TrimBoth(values[2], ' ')) : 0;
  return SixDecimals(s.percent) && SixDecimals(s.reduction) && s.step >= 0;
}

const ShortText kGoneText = "Ktoś skasował pozycję `"_mz;
const ShortText kGoneTail = "@albo zmienił jej znaczące cechy."_mz + "@Rabat dla tej pozycji nie będzie udzielony."_mz;
const ShortText kLockedHead = "Na specyfikacji nie udzielono rabatów dla "_mz;
const ShortText kLockedTail = " pozycji, "_mz + "ponieważ mają one zablokowaną możliwość rabatowania."_mz;

// The columns that make a row the same item (1, 2, 5, 6, 7), blanks at the end aside.
bool SameItemKey(const ItemData& a, const ItemData& b) {
  auto same = [](const ShortText& x, const ShortText& y) { return TrimRight(x, ' ') == TrimRight(y, ' '); };
  return same(a.name, b.name) && same(a.name2, b.name2) && same(a.vat, b.vat) && same(a.sww, b.sww) &&
         same(a.vatPayer, b.vatPayer);
}

// One line's new prices; false when it is left as it is (gone, changed or locked: locked counted).
bool DiscountLine(const ShortText& work, const DocLine& line, const DiscountSettings& s, long& locked) {
  ItemData item;
  bool found = false;
  CheckDBError(ItemFindByNumber(line.item.number, item, found));
  if (!found || !SameItemKey(line.item, item)) {
    (void)MessageBox(kGoneText + TrimRight(line.item.name, ' ') + kGoneTail, 0);
    return false;
  }
  if (item.discountLock != 0 && ConfigInt(kConfigLineDiscountLock) == 1) {
    ++locked;
    return false;
  }
  const Real rate = VatRateOf(line.item.vat);
  const Real net = DiscountNet(item.saleNet, rate, s);
  CheckDBError(WorkLineSetPrices(work, line.rowId, net, GrossOfNet(net, rate)));
  return true;
}

}  // namespace

bool ApplyDocumentDiscount(EntryView v) {
  if (v.x.vatChanged || v.x.returnTransfer) {
    (void)MessageBox(v.x.vatChanged ? kDiscountVatChangedText : kDiscountReturnTransferText, 0);
    return false;
  }
  DiscountSettings s;
  s.vatDependent = ConfigInt(kConfigLineVatReduction) == 1;
  s.vatMode = ConfigInt(kConfigLineInvoiceVatMode) != 0;
  const Real step = TextToRealLoose(TrimBoth(ConfigText(kConfigLineProposedStep), ' '));
  s.step = step > 0 ? step : 0.01L;
  s.percent = TextToRealLoose(TrimBoth(ConfigText(kConfigLineProposedDiscount), ' '));
  if (v.kind >= 1 && v.kind <= 5 && ConfigInt(kConfigLineContractorFeatures) != 0) (void)CustomerDiscount(s.percent);
  if (!AskDiscount(s)) return false;
  std::vector<DocLine> lines;
  CheckDBError(WorkLinesRead(v.work, lines));
  long locked = 0;
  bool changed = false;
  {
    const ScreenKeeper keeper;
    (void)MessageBox(kDiscountProgressText, 2);
    const ProgressBar bar = FindProgressBar(kDiscountProgressText);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      changed = DiscountLine(v.work, lines[i], s, locked) || changed;
      ShowProgress(bar, static_cast<long>(i + 1), static_cast<long>(lines.size()));
    }
  }
  if (locked > 0) (void)MessageBox(kLockedHead + ShortText(std::to_string(locked)) + kLockedTail, 0);
  return changed;
}

}  // namespace entrydetail
