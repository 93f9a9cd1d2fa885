// Line values, VAT groups, totals, stock plans and discounted prices.
#include "documents/doccalc.h"

#include "base/numbers.h"

namespace {

// A rate that adds VAT: 0 and -100 (exempt, not subject) add none.
Real EffectiveRate(int rate) { return rate == 0 || rate == -100 ? 0 : rate; }

struct LineAmounts {
  Real net = 0, vat = 0, gross = 0;
};

LineAmounts NetUpward(Real net, int rate) {
  const Real vat = net * EffectiveRate(rate) / 100;
  return {net, vat, net + vat};
}

LineAmounts GrossDownward(Real gross, int rate) {
  const Real net = gross * 100 / (100 + EffectiveRate(rate));
  return {net, gross - net, gross};
}

LineAmounts AmountsOf(const DocLine& line, TotalMethod method, int rate) {
  const Real q = line.quantity;
  switch (method) {
    case TotalMethod::kGrossFromNetGroups: return NetUpward(LineValue(q, line.item.saleNet), rate);
    case TotalMethod::kGrossLines: return GrossDownward(LineValue(q, line.item.saleGross), rate);
    case TotalMethod::kPurchaseGrossFromGroups: return NetUpward(LineValue(q, line.item.buyNet), rate);
    case TotalMethod::kPurchaseNet: {
      const Real net = LineValue(q, line.item.buyNet);
      return {net, 0, net};
    }
  }
  return {};
}

}  // namespace

Real LineValue(Real quantity, Real price) { return RoundMoney(quantity * price); }

// The binary noise of a product such as 3 * 1.115 is taken off at a
// millionth of the unit first, so that a value that is a half grosz in
// decimal rounds up as it does on paper.
Real RoundMoney(Real value) {
  const Real cents = RoundHalfAway(value * 1000000) / 10000;
  return RoundHalfAway(cents) / 100;
}

int VatGroupKey(const ShortText& vat) { return static_cast<int>(VatRateOf(vat)); }

void VatGroups::Add(int rate, Real net, Real vat, Real gross) {
  int at = 0;
  while (at < count_ && groups_[static_cast<std::size_t>(at)].rate != rate) ++at;
  if (at == count_) {
    if (count_ == kMaxVatGroups) {
      overflowed_ = true;
      at = kMaxVatGroups - 1;
    } else {
      groups_[static_cast<std::size_t>(count_++)].rate = rate;
    }
  }
  VatGroup& g = groups_[static_cast<std::size_t>(at)];
  g.net += net;
  g.vat += vat;
  g.gross += gross;
}

TotalMethod KindTotalMethod(int kind, int vatMode) {
  switch (kind) {
    case 1: return TotalMethod::kGrossLines;
    case 2:
    case 3: return vatMode == 2 ? TotalMethod::kGrossLines : TotalMethod::kGrossFromNetGroups;
    case 4:
    case 5: return vatMode == 1 || vatMode == 2 ? TotalMethod::kGrossLines : TotalMethod::kGrossFromNetGroups;
    case 14:
    case 16: return TotalMethod::kGrossFromNetGroups;
    case 6:
    case 7:
    case 8:
    case 9:
    case 17: return TotalMethod::kPurchaseGrossFromGroups;
    default: return TotalMethod::kPurchaseNet;
  }
}

ShortText TotalMethodText(TotalMethod method) {
  switch (method) {
    case TotalMethod::kGrossFromNetGroups: return "(brutto z VAT liczonym w grupach podatk.od w.netto)"_mz;
    case TotalMethod::kGrossLines: return "(brutto liczona wg cen brutto pojedynczych towarów)"_mz;
    case TotalMethod::kPurchaseGrossFromGroups: return "(brutto w c.zakupu z VAT liczonym w grupach podatkowych)"_mz;
    case TotalMethod::kPurchaseNet: return "(netto w cenach zakupu)"_mz;
  }
  return ShortText();
}

DocumentTotals ComputeTotals(std::span<const DocLine> lines, TotalMethod method) {
  DocumentTotals t;
  Real sum = 0;
  for (const DocLine& line : lines) {
    if (line.quantity == 0) continue;
    const Real q = line.quantity;
    const int rate = VatGroupKey(line.item.vat);
    const LineAmounts a = AmountsOf(line, method, rate);
    t.groups.Add(rate, a.net, a.vat, a.gross);
    sum += a.gross;
    t.buyNet += LineValue(q, line.item.buyNet);
    t.buyGross += LineValue(q, line.item.buyGross);
    t.saleNet += LineValue(q, line.item.saleNet);
    t.saleGross += LineValue(q, line.item.saleGross);
    t.catalogueNet += LineValue(q, line.catalogueNet);
    t.catalogueGross += LineValue(q, line.catalogueGross);
  }
  t.discount = RoundMoney(t.catalogueGross - t.saleGross);
  t.total = RoundMoney(sum);
  return t;
}

Real AllowedIssue(Real asked, Real stock, bool mayGoBelowZero, bool& reduced) {
  reduced = false;
  if (mayGoBelowZero || asked <= 0) return asked;
  if (stock <= 0) {
    reduced = true;
    return 0;
  }
  if (asked > stock) {
    reduced = true;
    return stock;
  }
  return asked;
}

StockPlan PlanStock(std::span<const DocLine> lines, StockEffect effect, bool mayGoBelowZero,
                    const StockLevels& before) {
  StockPlan plan;
  plan.after = before;
  plan.quantities.reserve(lines.size());
  for (const DocLine& line : lines) {
    Real q = line.quantity;
    if (q == 0 || effect == StockEffect::kNone) {
      plan.quantities.push_back(q);
      continue;
    }
    StockLevel& level = plan.after[line.item.number];
    if (effect == StockEffect::kIssue) {
      bool reduced = false;
      q = AllowedIssue(q, level.quantity, mayGoBelowZero, reduced);
      plan.reduced = plan.reduced || reduced;
      level.quantity -= q;
    } else if (effect == StockEffect::kReceipt) {
      level.quantity += q;
    } else {
      level.ordered += q;
    }
    level.exists = true;
    plan.quantities.push_back(q);
  }
  return plan;
}

Real AvailableStock(Real stock, std::span<const DocLine> lines, int32_t item, int64_t skipRow) {
  for (const DocLine& line : lines)
    if (line.item.number == item && (skipRow == 0 || line.rowId != skipRow)) stock -= line.quantity;
  return stock;
}

bool KindChecksAvailability(int kind) {
  switch (kind) {
    case 1: case 2: case 4: case 8: case 9: case 13: case 14: case 15: return true;
    default: return false;
  }
}

Real DiscountedPrice(Real price, Real percent, Real step, bool vatDependent, Real rate) {
  const bool taxed = rate != 0 && rate != -100;
  Real p = price;
  if (percent != 0) p = RoundToStep(p - p * percent / 100, step);
  if (vatDependent && taxed) p = RoundToStep(p / (rate / 100 + 1), step);
  return p;
}

Real GrossOfNet(Real net, Real rate) {
  if (rate == 0 || rate == -100) return net;
  return RoundHalfAway(net * (100 + rate)) / 100;
}
