// The screens of payments: the list of kasa____, entry, change, deletion,
// deposit settlement and the list of related documents.
#include <ctime>
#include <string>

#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/kindrules.h"
#include "documents/payments.h"
#include "documents/payments_detail.h"
#include "base/dates.h"
#include "master/tables.h"
#include "sqltable/pgconn.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "users/users.h"

using docdetail::SqlTable;
using namespace paydetail;

namespace paydetail {

ShortText MoneyText(Real v) { return TrimLeftAll(FormatFixed(20, 2, RoundMoney(v)), ' '); }

ShortText DateText(int32_t serial) {
  int y = 0, m = 0, d = 0;
  if (!DecodeDaySerial(serial, y, m, d)) return ShortText("  -  -    ");
  return DateFromParts(d, m, y);
}

void Say(const ShortText& text) { (void)MessageBox(text, 0); }

}  // namespace paydetail

namespace {

constexpr ShortText kNoPaymentKindsText =
    "Nie można użyć tego rodzaju dokumentu, ponieważ nie ma takich@w bazie danych."_mz;
constexpr ShortText kNoPaymentRightText =
    "Nie masz praw do wpisywania płatności dla takich dokumentów.@Program przerwie Ci dopisanie płatności."_mz;
constexpr ShortText kDepositHintText =
    "Dokument w tej chwili bilansuje wszystkie z nim związane.@Możesz uzyć funkcji rozliczenia depozytów ƒ╫ê⌐, "
    "jeśli@związane dokumenty towarowe są depozytowe."_mz;
constexpr ShortText kEarlyDateText =
    "Wprowadzasz płatność z datą wcześniejszą, niż dokument,@do którego jest płatność. To dziwne, ale rób co "
    "chcesz.@W bilansie zobowiązań i należności data tej płatności@zostanie przyjęta jako równa dacie dokumentu, "
    "do którego@jest płatność."_mz;
constexpr ShortText kSettleAsk =
    "Bilans jest zerowy i można rozliczyć depozyty.@Czy rozliczyć je w takim razie ?"_mz;
constexpr ShortText kNotZeroText =
    "Rozliczenie depozytów nie może nastapić, ponieważ bilans nie jest@zerowy. Wynosi on "_mz;
constexpr ShortText kNoRelatedText = "Nie ma dokumentów związanych !"_mz;

// The system's message of a write's result; true when it was done.
bool Report(PaymentResult r) {
  switch (r) {
    case PaymentResult::kDone: return true;
    case PaymentResult::kZeroBalance: Say(kZeroBalanceText); break;
    case PaymentResult::kSourceGone: Say(kSourceLostText); break;
    case PaymentResult::kPaymentGone: Say(kPaymentGoneText); break;
    case PaymentResult::kNoNumber: Say(kDocEncodeBroken); break;
    case PaymentResult::kNotDeposit: Say(kNoDepositText); break;
    case PaymentResult::kNotZero: Say(kNotZeroText); break;
    case PaymentResult::kChainBroken: Say(kChainBrokenText); break;
  }
  return false;
}

// Picks a payment kind open to the user; 0 when none or on Esc.
int16_t ChoosePaymentKind(KindRow& row) {
  const std::vector<int16_t> kinds = PaymentKinds();
  if (kinds.empty()) {
    Say(kNoPaymentKindsText);
    return 0;
  }
  std::vector<ShortText> names;
  for (int16_t k : kinds) names.push_back(ReadKindRow(k).name);
  unsigned char ch = 0, scan = 0;
  const int16_t pick =
      PickListHooked(1, 1, 1, 0, 0, "Wybierz konkretny rodzaj dokumentu:"_mz, names, {}, ch, scan);
  if (pick <= 0) return 0;
  const int16_t kind = kinds[pick - 1];
  row = ReadKindRow(kind);
  if (row.locked) {
    ShortText t("\"");
    t.Append(row.name.View());
    t.Append("\" jest zablokowany do wprowadzania i zmian."_mz.View());
    Say(t);
    return 0;
  }
  const ShortText refusal = KindRefusal(kind, CurrentUserNumber());
  if (!refusal.Empty()) {
    Say(refusal);
    return 0;
  }
  return kind;
}

// The source's refusals in the order of the entry; true when it may be paid.
bool SourceAccepted(const KindRow& payKind, const DocRef& src) {
  if (!IsLinkableKind(src.kind)) return Say(kNotLinkedText), false;
  if (!PaymentFitsDocument(payKind.contractorLetter, src.kind, ReadKindRow(src.kind).contractorLetter))
    return Say(kOtherContractorKindText), false;
  if (!KindRefusal(src.kind, CurrentUserNumber()).Empty()) return Say(kNoPaymentRightText), false;
  return true;
}

ShortText Titled(const ShortText& head, const ShortText& name) {
  ShortText t = head;
  t.Append(name.View());
  return t;
}

// Tests of Part of the goods documents on a payment: rights, lock and date.
bool PaymentMayBeTouched(DocumentAction action, const PaymentRow& p) {
  const ShortText owner = DocumentOwnerRefusal(action, p.operatorNumber);
  if (!owner.Empty()) return Say(owner), false;
  if (CheckDocumentLock(p.locked)) return false;
  const ShortText date = DocumentDateRefusal(action, p.date, TodaySerial());
  if (!date.Empty()) return Say(date), false;
  return true;
}

}  // namespace

bool EnterPayment(int32_t warehouse, const PaymentSettings& s) {
  KindRow kind;
  const int16_t k = ChoosePaymentKind(kind);
  if (k == 0) return false;
  DocRef src;
  if (!ChooseSource(warehouse, kind.contractorLetter, src) || !SourceAccepted(kind, src)) return false;
  const Balance b = ComputeBalance(warehouse, src, s);
  if (!b.usable) return Say(kKindMissingText), false;
  if (!b.found) return Say(kSourceLostText), false;
  if (b.value == 0) return Say(b.deposit ? kDepositHintText : kZeroBalanceText), false;
  const SourceInfo info = ReadSource(warehouse, src);
  PaymentRow row = NewPaymentRow(k, kind, src, info, TodaySerial(), b.value);
  if (!EditPaymentForm(Titled("Dopisanie dokumentu:"_mz, kind.name), kind.name, info, b, row)) return false;
  if (row.date < info.date) Say(kEarlyDateText);
  return Report(SavePayment(warehouse, row, s));
}

bool ChangePayment(int32_t warehouse, const DocRef& key, const PaymentSettings& s) {
  PaymentRow p;
  if (!ReadPayment(warehouse, key, p)) return Say(kPaymentGoneText), false;
  if (!PaymentMayBeTouched(DocumentAction::kChange, p)) return false;
  const SourceInfo info = ReadSource(warehouse, p.source);
  if (!info.found) Say(kSourceLostText);
  const ShortText name = ReadKindRow(p.key.kind).name;
  if (!EditPaymentForm(Titled("Korekta dokumentu:"_mz, name), name, info, ComputeBalance(warehouse, p.source, s), p))
    return false;
  if (info.found && p.date < info.date) Say(kEarlyDateText);
  return Report(UpdatePayment(warehouse, p));
}

bool DeletePayment(int32_t warehouse, const DocRef& key) {
  PaymentRow p;
  if (!ReadPayment(warehouse, key, p)) return Say(kPaymentGoneText), false;
  if (!PaymentMayBeTouched(DocumentAction::kDelete, p)) return false;
  if (!MessageBox(" Na pewno kasować ?"_mz, 1)) return false;
  ScreenCopyPtr screen;
  ScreenSave(screen);
  (void)MessageBox("Trwa kasowanie..."_mz, 2);
  const PaymentResult r = RemovePayment(warehouse, key, NumberingSettingsFromConfig());
  ScreenRestore(screen);
  return Report(r);
}

bool SettleDeposit(int32_t warehouse, const DocRef& payment, const PaymentSettings& s) {
  PaymentRow p;
  if (!ReadPayment(warehouse, payment, p)) return Say(kPaymentGoneText), false;
  const Balance b = ComputeBalance(warehouse, p.source, s);
  if (!b.found || !b.usable) return Say(kChainBrokenText), false;
  if (!b.deposit) return Say(kNoDepositText), false;
  if (b.value != 0) {
    ShortText t = kNotZeroText;
    t.Append(MoneyText(b.value).View());
    t.Append(".");
    return Say(t), false;
  }
  if (!MessageBox(kSettleAsk, 1)) return false;
  return Report(SettleDepositChain(warehouse, p.source, s, &payment));
}

void ListRelatedDocuments(int32_t warehouse, const DocRef& doc, const PaymentSettings& s) {
  ScreenKeeper keeper;
  (void)MessageBox("Trwa sprawdzenie dokumentów związanych...[          ]"_mz, 2);
  const Balance b = ComputeBalance(warehouse, doc, s);
  keeper.Repaint();
  if (!b.found) return Say(kSourceLostText);
  PGResult r;
  const std::string sql =
      "SELECT typ_dok,nr_dok," + SerialOf("data_dok") + ",suma_dok FROM " +
      SqlTable(WarehouseTablePath(warehouse, "naglowki")) + " WHERE " + SourceCondition(b.root) +
      " UNION ALL SELECT typ_dok,nr_dok," + SerialOf("data_dok") + ",suma_dok FROM " +
      SqlTable(WarehouseTablePath(warehouse, "kasa____")) + " WHERE " + SourceInList(b.goods) + " ORDER BY 3,1,2";
  if (PGRunQueryWithTup(sql, r) || r.Rows() == 0) return Say(kNoRelatedText);
  std::vector<ShortText> lines{"typ dok.|  numer dok. |   data   |   suma dok. "_mz,
                               ShortText("--------+-------------+----------+-------------")};
  for (int i = 0; i < r.Rows() && static_cast<int>(lines.size()) < kPickMaxChoices - 1; ++i) {
    ShortText l = FormatFixed(8, 0, Int(r, i, 0));
    l.Append("|");
    l.Append(FormatFixed(13, 0, DecodeDocNumberSoft(Int(r, i, 1))).View());
    l.Append("|");
    l.Append(DateText(Int(r, i, 2)).View());
    l.Append("|");
    l.Append(FormatFixed(13, 2, Money(r, i, 3)).View());
    lines.push_back(l);
  }
  lines.push_back(Titled("Bilans dokumentu: "_mz, MoneyText(b.value)));
  ShortText title = "Wykaz dokumentów związanych dla dokumentu:"_mz;
  for (const ShortText& part : {ShortText(" nr "), DocNumberText(b.root.coded), ShortText(" z dnia: "),
                                DateText(b.rootDate), " na sumę: "_mz, MoneyText(b.rootTotal)})
    title.Append(part.View());
  unsigned char ch = 0, scan = 0;
  (void)PickListHooked(1, 1, 1, 0, 0, title, lines, {}, ch, scan);
}

void PaymentDocuments(int32_t warehouse) {
  const PaymentSettings s = PaymentSettingsFromConfig();
  int16_t at = 1;
  for (;;) {
    const std::vector<PaymentRow> rows = ListPayments(warehouse, kPickMaxChoices);
    if (rows.empty()) {
      if (!EnterPayment(warehouse, s)) return;
      continue;
    }
    std::vector<ShortText> lines;
    for (const PaymentRow& p : rows) {
      ShortText l = p.kindText;
      for (const ShortText& part : {DocNumberText(p.key.coded), DateText(p.date), FormatFixed(12, 2, p.amount),
                                    p.contractorName})
        l.Append(" "), l.Append(part.View());
      lines.push_back(l);
    }
    KeyPair ended{};
    PickListHooks hooks;
    hooks.endsList = [&](KeyPair k) {
      const bool ends =
          k == keys::kIns || k == keys::kDel || k == keys::F(2) || k == keys::F(3) || k == keys::F(4);
      if (ends) ended = k;
      return ends;
    };
    unsigned char ch = 0, scan = 0;
    at = PickListHooked(1, at, 1, 0, 0, "Wybierz:"_mz, lines, hooks, ch, scan);
    if (at <= 0) return;
    const PaymentRow& p = rows[at - 1];
    if (ended == keys::kIns) (void)EnterPayment(warehouse, s);
    else if (ended == keys::kDel) (void)DeletePayment(warehouse, p.key);
    else if (ended == keys::F(3)) (void)SettleDeposit(warehouse, p.key, s);  // the key the zero-balance hint names
    else if (ended == keys::F(2)) ListRelatedDocuments(warehouse, p.source, s);
    else if (ended == keys::F(4)) (void)TillChange(p.amount < 0 ? -p.amount : p.amount, ReadKindRow(p.key.kind).income == 'N');
    else (void)ChangePayment(warehouse, p.key, s);
  }
}

void AutoSettleDeposits(int32_t warehouse) {
  int settled = 0;
  if (!Report(SettleAllDeposits(warehouse, PaymentSettingsFromConfig(), settled))) return;
  Say(Titled("Rozliczono depozyty dokumentów: "_mz, ShortText(std::to_string(settled))));
}
