// Payments and settlement: payment documents in kasa____ of a warehouse,
// tied to goods documents by typ_dok_zrodl, nr_dok_zrodl, znak_dok_zrodl.
//
// Contract:
// - The balance of a goods document is a walk: from the document to its root
//   (kinds 2, 4, 6, 7, 16), the root's total less rab_kwot, each correction
//   (a header referring to the root) with its kind's sign, and every payment
//   referring to the root or a correction taken away with its kind's sign.
//   It is seen from the root: positive is what is still owed, negative an
//   overpayment. Signs are column 6 of dane\dok_plat: 'N' takes minus.
// - Every write (enter, change, delete, settle) runs in one transaction under
//   the exclusive lock of the tables it writes, and re-reads what it works on
//   inside the lock: a payment entered twice at once cannot settle the same
//   last grosz twice, and a payment that another process deleted meanwhile is
//   refused with the system's message.
// - The goods-document save calls WriteAutoPayment inside its own
//   transaction, after the header is written.
#pragma once

#include <cstdint>
#include <vector>

#include "base/mazovia.h"
#include "base/real.h"
#include "base/shorttext.h"
#include "documents/doccalc.h"
#include "documents/docnumber.h"

// --- Texts shared by the screens and the tests ---
inline constexpr ShortText kPaymentGoneText =
    "Dokument został skasowany lub zmieniono mu numer.@Wykonanie Twojego polecenia jest niemożliwe."_mz;
inline constexpr ShortText kZeroBalanceText = "Bilans wychodzi na zero. Nie ma sensu wpisywać płatności."_mz;
inline constexpr ShortText kSourceLostText =
    "BŁĄD !@──────@Nie znaleziono dokumentu związanego. Płatność być może nie powinna istnieć.@Sprawdź to koniecznie !"_mz;
inline constexpr ShortText kOtherContractorKindText =
    "Nie wolno wybrać dokumentu z innym, niż dla wprowadzanego dokumentu@płatności rodzajem kontrahenta/operacji."_mz;
inline constexpr ShortText kNotLinkedText = "Ten typ dokumentu nie jest przewidziany@do wiązania z płatnościami."_mz;
inline constexpr ShortText kNoDepositText =
    "Towarowe dokumenty związane z tą płatnością nie są depozytowe.@W tej sytuacji nie ma czego rozliczać."_mz;
inline constexpr ShortText kChainBrokenText =
    "Wykryto brak jakiegoś koniecznego dokumentu z bilansowanych.@Zmieniono tylko możliwe do zmiany dokumenty, "
    "jeśli zmieniono@coś w ogóle. Sprawdź bazę danych."_mz;
inline constexpr ShortText kKindMissingText =
    "Wykryto brak jakiegoś dokumentu na liście obowiązujących@dokumentów księgowanych. Nie jest możliwe wykonanie "
    "bilansu@dla wybranego dokumentu."_mz;

// --- Pure rules ---

// Invoices, purchases and orders stand at the root of a settlement.
bool IsRootKind(int kind);
// Kinds that are never tied to payments: the opening balance and transfers.
bool IsLinkableKind(int kind);
// +1 for column 6 'T' (income), -1 for 'N' (expense).
int KindSign(char incomeMark);
// Whether a payment whose kind has contractor letter paymentLetter may settle
// a document of goodsKind: 'd' and 'w' go with suppliers, 'O' and 'W' with
// customers (of the kind's catalogue, dok_plat's letter of the goods kind first).
bool PaymentFitsDocument(char paymentLetter, int goodsKind, char goodsLetter);

// The contractor letter of a payment kind with what it means ('w' and 'W'
// are internal income and expense on a supplier's and a customer's account).
ShortText ContractorLetterText(char letter);

// One amount of a walk: a goods document (total less rab_kwot) or a payment.
struct BalanceEntry {
  int sign = 1;
  Real amount = 0;
  bool payment = false;
};
// The balance seen from a root of sign rootSign: goods entries add, payments
// take away, each with its own sign; rounded to the grosz.
Real BalanceOfEntries(int rootSign, const std::vector<BalanceEntry>& entries);

// The change at the till: what the customer hands over less the total, to the grosz.
Real ChangeDue(Real paid, Real total);

// The deposit mark a new header proposes: option 1 or 3 and a kind other
// than 1, 12 and 15..18.
bool ProposedDepositMark(int depositOption, int kind);

// --- Settings ---
inline constexpr int kConfigLinePaymentKinds = 11;   // five payment kinds of the automatic payments
inline constexpr int kConfigLineDeposits = 197;      // deposit option 0..3
inline constexpr int kConfigLineAutoPayments = 201;  // automatic payments 0..2

struct PaymentSettings {
  bool amountDiscounts = true;  // rab_kwot is taken away from totals
  int depositOption = 0;
  int autoPayments = 0;
  int16_t autoKinds[5] = {0, 0, 0, 0, 0};  // positions 1..5 of the configured list
  NumberingSettings numbering;
};
PaymentSettings PaymentSettingsFromConfig();
// The five kinds from the configured CSV text; a missing or bad position is 0.
void ParseAutoKinds(const ShortText& csv, int16_t (&kinds)[5]);

// --- The catalogue row of a kind (dane\dok_plat) ---
struct KindRow {
  bool found = false;
  ShortText name;
  char contractorLetter = ' ';
  char income = 'T';
  ShortText account;  // opposite account, column 5
  ShortText mark;     // proposed mark, column 7
  bool locked = false;
};
KindRow ReadKindRow(int kind);
// The payment kinds (100 and above) in number order.
std::vector<int16_t> PaymentKinds();

// --- Keys and rows ---
struct DocRef {
  int16_t kind = 0;
  int32_t coded = 0;
  ShortText mark;
};

struct PaymentRow {
  DocRef key;  // kind 100 and above
  int32_t date = 0;
  DocRef source;
  ShortText kindText;  // opis_typ_dok
  char contractorLetter = ' ';
  int32_t contractor = 0;
  ShortText contractorName;
  ShortText account;
  Real amount = 0;
  ShortText comment;
  int32_t operatorNumber = 0;
  int32_t sourceDate = 0;
  ShortText locked = ShortText("N");
};
// Reads a payment by its key; false when it is not there.
bool ReadPayment(int32_t warehouse, const DocRef& key, PaymentRow& out);
// The payments of a warehouse in date and number order (at most limit).
std::vector<PaymentRow> ListPayments(int32_t warehouse, int limit);

// What a payment takes from its goods document.
struct SourceInfo {
  bool found = false;
  int32_t date = 0;
  Real total = 0;
  int32_t contractor = 0;
  ShortText contractorName;
};
SourceInfo ReadSource(int32_t warehouse, const DocRef& doc);

// A goods document offered as the source of a payment.
struct SourceCandidate {
  DocRef key;
  int32_t date = 0;
  Real total = 0;
  ShortText contractorName;
};
// The goods documents of a year in date, kind and number order (at most
// limit); with number above 0 only those whose running number it is, of any
// kind and mark. A year or number that cannot be coded gives none.
std::vector<SourceCandidate> SourceCandidates(int32_t warehouse, int year, int32_t number, int limit);

// A new payment of kind (its catalogue row given) for the document src by
// the current user; the number is given when it is saved.
PaymentRow NewPaymentRow(int16_t kind, const KindRow& row, const DocRef& src, const SourceInfo& info, int32_t date,
                         Real amount);

// --- The balance ---
struct Balance {
  bool usable = true;  // false when a kind of the walk is not in dok_plat
  bool found = false;  // the root header was found
  Real value = 0;
  bool deposit = false;  // some goods document of the chain is a deposit
  DocRef root;
  int32_t rootDate = 0;
  Real rootTotal = 0;
  std::vector<DocRef> goods;  // root first, then its corrections
  int walked = 0;             // headers passed on the way to the root
};
// The walk for (kind, coded, mark) of a warehouse's naglowki. Shows no box.
Balance ComputeBalance(int32_t warehouse, const DocRef& doc, const PaymentSettings& s);
// The sum of a contractor's balances: every root document of the kinds whose
// catalogue is the contractor's ('O'/'W' customers, 'd'/'w' suppliers).
Real ContractorBalance(int32_t warehouse, char contractorLetter, int32_t contractor, const PaymentSettings& s);

// --- Writes ---
enum class PaymentResult : int8_t {
  kDone,
  kZeroBalance,   // nothing to pay: refused
  kSourceGone,    // the goods document is not there
  kPaymentGone,   // the payment is not there (deleted or renumbered meanwhile)
  kNoNumber,      // no next number in the year of the date
  kNotDeposit,    // nothing of the chain is on deposit
  kNotZero,       // a deposit cannot be settled before the balance is zero
  kChainBroken,   // a header of the chain vanished while it was settled
};

// Enters a payment for row.source under the lock of kasa____: the balance
// is taken again inside the lock and a zero one refuses; the number comes
// from NextDocNumber, on kasa____ of the warehouse or, when every document
// is numbered for the firm, on the register dane\naglowki (locked first),
// where the number is entered too. row.key.coded receives the number given.
[[nodiscard]] PaymentResult SavePayment(int32_t warehouse, PaymentRow& row, const PaymentSettings& s);
// Writes the amount, date and comment of a payment over its row, found by key.
[[nodiscard]] PaymentResult UpdatePayment(int32_t warehouse, const PaymentRow& row);
// Deletes a payment by key. Under common numbering its number stays taken in
// the firm's register, which records the deletion.
[[nodiscard]] PaymentResult RemovePayment(int32_t warehouse, const DocRef& key,
                                          const NumberingSettings& s = NumberingSettings{});
// Clears the deposit of the chain of the goods document doc when its balance
// is zero: ilosc_w_depozycie 0 on all lines, czy_depozyt 'N' on each header.
// With viaPayment, the payment is looked up again inside the locks first.
[[nodiscard]] PaymentResult SettleDepositChain(int32_t warehouse, const DocRef& doc, const PaymentSettings& s,
                                               const DocRef* viaPayment = nullptr);
// Settles every deposit of customers' root documents whose balance is zero;
// settled counts the chains cleared.
[[nodiscard]] PaymentResult SettleAllDeposits(int32_t warehouse, const PaymentSettings& s, int& settled);

// The payment of a goods document saved as paid at once, written inside the
// caller's transaction (it takes the lock of kasa____ itself, nested). Does
// nothing when s.autoPayments is 0 or no payment kind fits. paidVat above 0
// on a kind 2 splits the payment: paidVat under position 3 and the rest
// under position 4; otherwise the whole total under position 1 (customers)
// or 2 (suppliers). A position holding 0 writes nothing. Returns the number
// of payments written, -1 on a failure of the layer.
int WriteAutoPayment(int32_t warehouse, const DocRef& doc, int32_t date, const PaymentSettings& s,
                     Real paidVat = 0);

// --- Screens ---
// The menu's payment documents: list of kasa____ with Ins (enter), Enter
// (change), Del (delete), F2 (related documents), F3 (settle deposits),
// F4 (the change at the till for the payment's amount).
void PaymentDocuments(int32_t warehouse);
// The menu's automatic deposit settlement for customers.
void AutoSettleDeposits(int32_t warehouse);
// "Dopisanie dokumentu:" dialog; true when a payment was written.
bool EnterPayment(int32_t warehouse, const PaymentSettings& s);
bool ChangePayment(int32_t warehouse, const DocRef& key, const PaymentSettings& s);
bool DeletePayment(int32_t warehouse, const DocRef& key);
// The deposit settlement started from a payment; true when settled.
bool SettleDeposit(int32_t warehouse, const DocRef& payment, const PaymentSettings& s);
// "Obliczenie reszty:": asks what the customer hands over (on a return, what
// is paid out to him) against total and shows the change after "RESZTA".
// False on Esc.
bool TillChange(Real total, bool isReturn);
// The list of documents related to a goods document, with its balance.
void ListRelatedDocuments(int32_t warehouse, const DocRef& doc, const PaymentSettings& s);
