// The ELZAB route: the receipt's commands are composed into a work file first,
// with every question asked, and only then played to the printer.
#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/text.h"
#include "fiscal/elzab.h"
#include "fiscal/elzab_stream.h"
#include "fiscal/jobs_amounts.h"
#include "fiscal/sale.h"
#include "tui/msgbox.h"

namespace {

constexpr int kNameBytes = 28;
constexpr const char* kStreamFile = "fiskelz.tmp";
// Tax code 1..7 of the ELZAB table and the letter the printer prints for it.
constexpr char kElzabLetters[] = "ABCDZEF";

ShortText ElzabLetter(int code) {
  ShortText letter;
  letter += code >= 1 && code <= 7 ? kElzabLetters[code - 1] : 'A';
  return letter;
}

ShortText JoinedName(const FiscalSaleLine& line) { return TrimRight(line.name1 + line.name2, ' '); }

bool HasNegativeLine(const FiscalSale& sale) {
  for (const FiscalSaleLine& line : sale.lines) {
    if (!(line.quantity < 0)) continue;
    MessageBox("Na specyfikacji jest pozycja `"_mz + JoinedName(line) + " " + "@z ilością ujemną, co jest niedopuszczalne."_mz +
                   "@Dokument nie będzie zapisany w pamięci fiskalnej."_mz,
               0);
    return true;
  }
  return false;
}

ElzabSaleLine ElzabLineOf(const FiscalConfig& config, const FiscalSaleLine& line) {
  const int code = VatToPrinterCode(config, line.vat);
  const ShortText letter = ElzabLetter(code);
  const ElzabQuantity q = ElzabQuantityOf(line.quantity);
  ElzabSaleLine out;
  out.name = MazToLatin2(JoinedName(line)).Copy(1, kNameBytes - letter.Length()) + letter;
  out.quantity = q.value;
  out.decimals = q.decimals;
  out.unit = MazToLatin2(MazLowCaseText(line.unit));
  out.priceGrosz = PriceGrosz(line.price);
  out.taxCode = static_cast<uint8_t>(code >= 1 && code <= 7 ? code : 1);
  out.valueGrosz = ElzabLineValueGrosz(line.quantity, line.price);
  return out;
}

// The whole stream in the order: open, lines, end of items, free texts, close;
// false when the operator refused a line's VAT.
bool ComposeStream(const FiscalConfig& config, const ShortText& payment, const FiscalSale& sale,
                   std::vector<std::string>& commands) {
  std::vector<std::string> lines;
  Real total = 0;
  for (const FiscalSaleLine& line : sale.lines) {
    if (!(line.quantity > 0)) continue;
    if (!VatIsMapped(config, line.vat) && !AllowUnmappedVat(JoinedName(line))) return false;
    const ElzabSaleLine wire = ElzabLineOf(config, line);
    total += wire.valueGrosz;
    lines.push_back(ElzabSaleLineCommand(wire));
  }
  commands.push_back(ElzabOpenReceiptCommand(total));
  commands.insert(commands.end(), lines.begin(), lines.end());
  commands.push_back(ElzabEndItemsCommand());
  if (config.computerNumbers != 0) commands.push_back(ElzabFreeTextCommand('6', MazToLatin2(ReceiptNumberTextOf(sale))));
  commands.push_back(ElzabFreeTextCommand('2', MazToLatin2(payment) + " "));
  commands.push_back(ElzabFreeTextCommand('5', MazToLatin2(" " + MazToAscii(sale.cashierName) + ".")));
  commands.push_back(ElzabCloseReceiptCommand());
  return true;
}

}  // namespace

bool ElzabSale(const FiscalConfig& config, const ShortText& paymentText, const FiscalSale& sale) {
  if (HasNegativeLine(sale)) return false;
  std::vector<std::string> commands;
  if (!ComposeStream(config, paymentText, sale, commands)) return false;
  ApplyFiscalConfigToDrivers(config);
  if (ElzabWriteStream(kStreamFile, commands) != 0) {
    MessageBox("Błąd zapisu"_mz, 0);
    return false;
  }
  return ElzabPlayStream(config.port, kStreamFile);
}
