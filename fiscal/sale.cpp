#include "fiscal/sale.h"

#include <algorithm>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "fiscal/jobs_amounts.h"
#include "tui/msgbox.h"

namespace {

constexpr int kTwoDigits = 2;

ShortText Padded(const ShortText& text, int width) {
  ShortText out = text.Copy(1, width);
  while (out.Length() < width) out += ' ';
  return out;
}

bool IsLetter(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

}  // namespace

bool IsCashPaymentText(const ShortText& paymentText) { return paymentText == " gotówką"_mz; }

int FiscalModeOfKind(int kind) {
  switch (kind) {
    case 1: return kFiscalModeRetail;
    case 2: return kFiscalModeAnyCustomer;
    case 4: return kFiscalModePrivate;
    default: return kFiscalModeNone;
  }
}

ShortText CashierCode(int32_t number, const ShortText& name) {
  ShortText digits = IntText(number < 0 ? -number : number, 0);
  digits = digits.Length() < kTwoDigits ? PadLeft(digits, '0', kTwoDigits) : digits.Copy(1, kTwoDigits);
  const ShortText plain = MazToAscii(TrimLeft(name, ' '));
  return digits + (plain.Empty() || !IsLetter(static_cast<unsigned char>(plain[1])) ? ShortText("Q") : plain.Copy(1, 1));
}

ShortText ReceiptNumberTextOf(const FiscalSale& sale) {
  const ShortText prefix = sale.kind == 2 ? "F " : sale.kind == 4 ? "f " : "P ";
  return prefix + TrimBoth(sale.number, ' ') + sale.suffix;
}

ShortText ReceiptLineName(const FiscalSaleLine& line, int width) {
  const ShortText rate = TrimBoth(line.vat, ' ');
  const ShortText joined = Padded(TrimRight(line.name1 + line.name2, ' '), width);
  return joined.Copy(1, width - rate.Length()) + rate;
}

int64_t LinePriceGrosz(const FiscalSaleLine& line) { return static_cast<int64_t>(PriceGrosz(line.price)); }

int64_t LineValueGrosz(const FiscalSaleLine& line) {
  return static_cast<int64_t>(PosnetLineValueGrosz(line.quantity, line.price));
}

int SaleLineCount(const FiscalSale& sale) {
  int count = 0;
  for (const FiscalSaleLine& line : sale.lines) {
    if (line.quantity < 0) return -1;
    if (line.quantity > 0) ++count;
  }
  return count;
}

bool AllowUnmappedVat(const ShortText& name) {
  const ShortText first = "Pozycja `"_mz + TrimRight(name, ' ') + "\"," + "@ma VAT nie zapisany w drukarce fiskalnej."_mz +
                          "@Jeżeli zezwolisz na zapis w pamięci fiskalnej,"_mz + "@pozycja otrzyma VAT z grupy A,"_mz +
                          "@Zezwalasz na zapis ?"_mz;
  if (!MessageBox(first, 1)) {
    MessageBox("Rozsądny wybór - możesz potem anulować dokument i wypisać@go na nowo, bez błędu."_mz, 0);
    return false;
  }
  return MessageBox("Jeżeli zezwolisz na zapis, pozycja będzie miała inny VAT@w pamięci fiskalnej, a inny w komputerze, "
                    "jeżeli nie zezwolisz,@dokument nie będzie zapisany w pamięci fiskalnej - możesz@go wtedy anulować "
                    "i wypisać nowy, bez błędu.@Zezwalasz na zapis ?"_mz,
                    1);
}

bool SaleGoesToPrinter(const FiscalConfig& config, const FiscalSale& sale) {
  if (!DocumentIsFiscal(config, config.printerType, sale.mode)) return false;
  // Only the second flag asks for persons outside business: a firm is left out.
  const bool onlyPersons = sale.mode == kFiscalModePrivate && config.documentFlags[1] != 0 && config.documentFlags[2] == 0;
  return !(onlyPersons && sale.contractorIsFirm);
}

bool RunFiscalRoute(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale) {
  switch (config.printerType) {
    case kFiscalElzab: return ElzabSale(config, paymentText, sale);
    case kFiscalPosnet: return PosnetSale(config, paymentText, sale, 40);
    case kFiscalPosnet24: return PosnetSale(config, paymentText, sale, 24);
    case kFiscalServer: return ServerSale(config, paymentText, sale);
    default: return false;
  }
}

FiscalSaveOutcome FiscalSaveDocument(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale) {
  if (!SaleGoesToPrinter(config, sale)) return FiscalSaveOutcome::kNotFiscal;
  if (RunFiscalRoute(config, paymentText, sale)) return FiscalSaveOutcome::kPrinted;
  const bool save =
      MessageBox("Czy pomimo braku możliwości zapisu w drukarce fiskalnej@zapisać dane na dysku (w komputerze) ?"_mz, 1);
  return save ? FiscalSaveOutcome::kSaveWithout : FiscalSaveOutcome::kGiveUp;
}
