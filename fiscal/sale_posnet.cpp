// The POSNET route: the receipt goes line by line from this process, split
// into parts when the printer's limit of lines is passed.
#include <algorithm>

#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "fiscal/posnet.h"
#include "fiscal/sale.h"
#include "fiscal/serial.h"
#include "tui/msgbox.h"

namespace {

constexpr int kOldFirmwareLimit = 20;
constexpr int kNewFirmwareLimit = 80;
constexpr int kHeadingMax = 40;
constexpr int kQuantityMax = 16;

// The result of a command through the error operation: false when it passed;
// else its text is shown (the receipt cancelled by the operation) and the port closed.
bool Failed(int code) {
  ShortText text;
  if (code == 0 || !PosnetErrorText(code, text)) return false;
  MessageBox(text + "@W tej chwili zapis w drukarce fiskalnej nie może być zrealizowany."_mz, 0);
  PosnetClose();
  return true;
}

void CancelAndClose() {
  (void)PosnetCancelReceipt();
  PosnetClose();
}

struct ReceiptPlan {
  int limit = kNewFirmwareLimit;
  ShortText heading;
  ShortText numberText;
  int count = 0;
};

ShortText Centred(const ShortText& text, int width) {
  ShortText line;
  while (line.Length() < (width - text.Length()) / 2) line += ' ';
  line += text;
  while (line.Length() < width) line += ' ';
  return line.Copy(1, kHeadingMax);
}

// Steps 1 to 5: limits, heading, the checks of the lines and the number text; false
// when the sale must not go on.
bool PlanReceipt(const FiscalConfig& config, const FiscalSale& sale, int width, ReceiptPlan& plan) {
  if (config.firmware == kFirmwareOld) {
    plan.heading = Centred("PARAGON FISKALNY", width);
    plan.limit = kOldFirmwareLimit;
  }
  plan.count = SaleLineCount(sale);
  if (plan.count < 0) {
    MessageBox("Operacja nie będzie zapisana w drukarce fiskalnej, ponieważ jej@specyfikacja zawiera towary o ilości ujemnej."_mz, 0);
    return false;
  }
  if (plan.count > plan.limit)
    MessageBox("Specyfikacja musi zostać rozbita na kilka paragonów w drukarce, ze względu@na >"_mz + IntText(plan.limit, 0) +
                   " ilość pozycji. Po każdym paragonie program zatrzyma się, aby klient"_mz +
                   "@mógł zobaczyć na wyświetlaczu kolejne sumy cząstkowe specyfikacji."_mz,
               0);
  if (config.computerNumbers != 0) plan.numberText = ReceiptNumberTextOf(sale);
  return true;
}

class PosnetReceiptWriter {
 public:
  PosnetReceiptWriter(const FiscalConfig& config, const ShortText& payment, const FiscalSale& sale,
                      const ReceiptPlan& plan, int width)
      : config_(config), payment_(payment), sale_(sale), plan_(plan), width_(width) {}

  bool Run() {
    int left = plan_.count;
    if (Failed(PosnetBeginReceipt(std::min(left, plan_.limit), plan_.heading, plan_.numberText, ""))) return false;
    for (const FiscalSaleLine& line : sale_.lines) {
      if (!(line.quantity > 0)) continue;
      if (inReceipt_ == plan_.limit && !NextPart(left)) return false;
      if (!SendLine(line)) return false;
      --left;
    }
    return !Failed(EndReceipt());
  }

 private:
  int EndReceipt() {
    const bool cash = IsCashPaymentText(payment_);
    const ShortText foot = cash ? ShortText() : "pł."_mz + payment_;
    return PosnetEndReceipt("0", CashierCode(sale_.cashierNumber, sale_.cashierName), "=>zachowaj do reklamacji", foot,
                            "", cash ? total_ : 0, total_);
  }

  // Step 9: the part is closed, the customer sees its sum, the next part opens.
  bool NextPart(int left) {
    if (Failed(EndReceipt())) return false;
    MessageBox("Jeśli klient zobaczył już sumę paragonu cząstkowego, to..."_mz, 0);
    ++part_;
    total_ = 0;
    inReceipt_ = 0;
    const ShortText number = plan_.numberText + "/" + IntText(part_, 0);
    return !Failed(PosnetBeginReceipt(std::min(left, plan_.limit), plan_.heading, number, ""));
  }

  bool SendLine(const FiscalSaleLine& line) {
    const ShortText name = ReceiptLineName(line, width_);
    if (!VatIsMapped(config_, line.vat) && !AllowUnmappedVat(name)) {
      CancelAndClose();
      return false;
    }
    const ShortText letter = VatLetterOfCode(VatToPrinterCode(config_, line.vat));
    const int64_t value = LineValueGrosz(line);
    if (Failed(PosnetReceiptLine(++inReceipt_, PosnetCleanName(name), FormatShortest(23, line.quantity).Copy(1, kQuantityMax),
                                 letter, LinePriceGrosz(line), value)))
      return false;
    total_ += value;
    return true;
  }

  const FiscalConfig& config_;
  const ShortText& payment_;
  const FiscalSale& sale_;
  const ReceiptPlan& plan_;
  int width_;
  int inReceipt_ = 0;
  int part_ = 1;
  int64_t total_ = 0;
};

}  // namespace

bool PosnetSale(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale, int width) {
  ReceiptPlan plan;
  if (!PlanReceipt(config, sale, width, plan)) return false;
  ApplyFiscalConfigToDrivers(config);
  PosnetOpen(config.port);
  if (Failed(PosnetModeX(1)) || Failed(PosnetErrorMode(1))) return false;
  if (!PosnetReceiptWriter(config, paymentText, sale, plan, width).Run()) return false;
  if (config.drawer != 0 && PosnetDisplayText(1, "SZUFLADA") != 0)
    MessageBox("@Błąd nieistotny, w trakcie wysuwania szuflady."_mz, 0);
  PosnetClose();
  return true;
}
