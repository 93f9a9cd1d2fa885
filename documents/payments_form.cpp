// The dialogs of a payment: the choice of its goods document (by year and
// typed number, or from the list), the payment's form and the change at the till.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/dates.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/payments.h"
#include "documents/payments_detail.h"
#include "tui/askvalue.h"
#include "tui/datedialogs.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"

namespace paydetail {

namespace {

constexpr ShortText kAskNumber = "Podaj numer dokumentu (bez numeru - wybór z listy):"_mz;
constexpr ShortText kNoSuchNumber = "Nie ma dokumentu o takim numerze w wybranym roku."_mz;
constexpr int kLabelWidth = 12;

ShortText CandidateLine(const SourceCandidate& c) {
  ShortText l = FormatFixed(3, 0, c.key.kind);
  for (const ShortText& part : {DocNumberText(c.key.coded) + "/" + c.key.mark, DateText(c.date),
                                FormatFixed(12, 2, c.total), c.contractorName})
    l += " ", l += part;
  return l;
}

bool PickCandidate(const std::vector<SourceCandidate>& list, DocRef& out) {
  std::vector<ShortText> lines;
  for (const SourceCandidate& c : list) lines.push_back(CandidateLine(c));
  unsigned char ch = 0, scan = 0;
  const int16_t pick = PickListHooked(1, 1, 1, 0, 0, "Wybierz:"_mz, lines, {}, ch, scan);
  if (pick <= 0) return false;
  out = list[static_cast<std::size_t>(pick - 1)].key;
  return true;
}

// Among several documents of one number, those that the payment's kind may
// settle come first; one of them alone is taken without a list.
bool TakeNumbered(std::vector<SourceCandidate> list, char paymentLetter, DocRef& out) {
  std::vector<SourceCandidate> fitting;
  for (const SourceCandidate& c : list)
    if (PaymentFitsDocument(paymentLetter, c.key.kind, ReadKindRow(c.key.kind).contractorLetter))
      fitting.push_back(c);
  if (fitting.size() == 1) list = fitting;
  if (list.size() == 1) {
    out = list.front().key;
    return true;
  }
  return PickCandidate(list, out);
}

}  // namespace

bool ChooseSource(int32_t warehouse, char paymentLetter, DocRef& out) {
  ShortText year = ShortText(std::to_string(docdetail::YearOfSerial(TodaySerial())));
  if (!AskValue("Podaj rok szukanego dokumentu:"_mz, year, 4, 3, {}, {})) return false;
  ShortText number;
  if (!AskValue(kAskNumber, number, 8, 3, {}, {})) return false;
  const int y = std::atoi(year.Str().c_str());
  const long n = std::strtol(TrimRightAll(number, ' ').Str().c_str(), nullptr, 10);
  if (n > 0) {
    const std::vector<SourceCandidate> list =
        SourceCandidates(warehouse, y, static_cast<int32_t>(std::min<long>(n, kDocMaxNumber + 1L)), kPickMaxChoices);
    if (list.empty()) return Say(kNoSuchNumber), false;
    return TakeNumbered(list, paymentLetter, out);
  }
  const std::vector<SourceCandidate> list = SourceCandidates(warehouse, y, 0, kPickMaxChoices);
  if (list.empty()) return Say(kNoSuchNumber), false;
  return PickCandidate(list, out);
}

namespace {

// The form's rows: shown ones first, then the three that are edited.
struct FormRow {
  ShortText label;
  ShortText value;
  int width = 0;  // 0: shown only
  int mode = 0;   // EditField mode
};

// A field's value that the form cannot take: the date must be a day, the amount a number.
bool FieldAccepted(const FormRow& row) {
  if (row.mode == 7) return DateValidWithMessage(row.value, 10);
  return true;
}

// Runs the rows; true when F10 or Enter on the last field confirms them.
bool RunForm(const ShortText& title, std::vector<FormRow>& rows) {
  ScreenKeeper keeper;
  ShortText text = PadRight(title, " ", kLabelWidth + 40);
  for (std::size_t i = 0; i < rows.size(); ++i) text += '@';
  (void)MessageBox(text, 2);
  std::vector<int> edited;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    WriteAt(2, 3 + static_cast<int>(r), PadRight(rows[r].label, " ", kLabelWidth) + rows[r].value);
    if (rows[r].width > 0) edited.push_back(static_cast<int>(r));
  }
  const int last = static_cast<int>(edited.size()) - 1;
  for (int at = 0;;) {
    FormRow& row = rows[static_cast<std::size_t>(edited[static_cast<std::size_t>(at)])];
    GotoXY(2 + kLabelWidth, 3 + edited[static_cast<std::size_t>(at)]);
    TextAttr(kAttrReverse);
    unsigned char key = 0;
    EditField(row.mode, 3, ' ', row.width, row.value, key);
    TextAttr(kAttrBoxBody);
    if (key == 27) return false;
    if (key != 242 && !FieldAccepted(row)) continue;
    if (key == 238 || (key == 13 && at == last)) return true;
    at = key == 242 ? (at > 0 ? at - 1 : 0) : (at < last ? at + 1 : last);
  }
}

ShortText SourceText(const DocRef& src, const SourceInfo& info) {
  return ShortText(std::to_string(src.kind)) + " " + DocNumberText(src.coded) + "/" + src.mark + " z dnia "_mz +
         DateText(info.date);
}

}  // namespace

bool EditPaymentForm(const ShortText& title, const ShortText& kindName, const SourceInfo& info, const Balance& b,
                     PaymentRow& row) {
  enum { kDate = 5, kAmount, kComment };
  std::vector<FormRow> rows = {
      {"rodzaj:"_mz, kindName},
      {"typ:"_mz, ContractorLetterText(row.contractorLetter)},
      {"dokument:"_mz, SourceText(row.source, info)},
      {"kontrahent:"_mz, row.contractorName},
      {"bilans:"_mz, MoneyText(b.value)},
      {"data:"_mz, DateText(row.date), 10, 7},
      {"kwota:"_mz, MoneyText(row.amount), 14, 14},
      {"komentarz:"_mz, TrimRightAll(row.comment, ' '), 36, 1},
  };
  for (;;) {
    if (!RunForm(title, rows)) return false;
    const Real amount = RoundMoney(TextToRealLoose(rows[kAmount].value));
    if (amount == 0) {  // a payment of nothing is no payment
      Beep(1000);
      continue;
    }
    const DatePartValues d = DateParts(rows[kDate].value);
    row.date = EncodeDaySerial(d.year, d.month, d.day);
    row.amount = amount;
    row.comment = TrimRightAll(rows[kComment].value, ' ');
    return true;
  }
}

}  // namespace paydetail

bool TillChange(Real total, bool isReturn) {
  ShortText paid = paydetail::MoneyText(total);
  const ShortText ask = isReturn ? "Podaj, ile wypłacasz klientowi:                      "_mz
                                 : "Podaj, ile klient wpłaca:                      "_mz;
  if (!AskValue("Obliczenie reszty:@"_mz + ask, paid, 14, 14, {}, {})) return false;
  const Real given = RoundMoney(TextToRealLoose(paid));
  (void)MessageBox("Suma:   "_mz + FormatFixed(14, 2, total) + (isReturn ? "@Wypłata:"_mz : "@Wpłata: "_mz) +
                       FormatFixed(14, 2, given) +
                       "@RESZTA: "_mz + FormatFixed(14, 2, ChangeDue(given, total)),
                   0);
  return true;
}
