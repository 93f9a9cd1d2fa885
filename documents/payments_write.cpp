// Writes of payments and of deposit settlements, each in one transaction
// under the exclusive locks of the tables it writes.
#include <cstdio>
#include <optional>
#include <set>
#include <string>

#include "documents/numbering.h"
#include "documents/payments.h"
#include "documents/payments_detail.h"
#include "master/columns.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgconn.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "base/dates.h"
#include "users/users.h"

using docdetail::DateLiteral;
using docdetail::ExclusiveLock;
using docdetail::SqlTable;
using docdetail::TableRecord;
using docdetail::TextLiteral;
using namespace paydetail;

namespace {

ShortText KasaPath(int32_t warehouse) { return WarehouseTablePath(warehouse, "kasa____"); }

std::string MoneyLiteral(Real value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.2Lf", RoundMoney(value));
  return buf;
}

// The buffer's fields from the row; the first failing put's code.
int16_t PutPayment(int16_t rec, const PaymentRow& p) {
  using C = KasaCol;
  int16_t code = PGRecBufEmpty(rec);
  auto put = [&](int16_t c) { code = code ? code : c; };
  put(PGPutShort(rec, C::typ_dok, p.key.kind));
  put(PGPutLong(rec, C::nr_dok, p.key.coded));
  put(PGPutAlpha(rec, C::znak_dok, p.key.mark));
  put(PGPutDate(rec, C::data_dok, p.date));
  put(PGPutShort(rec, C::typ_dok_zrodl, p.source.kind));
  put(PGPutLong(rec, C::nr_dok_zrodl, p.source.coded));
  put(PGPutAlpha(rec, C::znak_dok_zrodl, p.source.mark));
  put(PGPutAlpha(rec, C::opis_typ_dok, p.kindText));
  put(PGPutAlpha(rec, C::typ_kontrahenta, ShortText(std::string(1, p.contractorLetter))));
  put(PGPutLong(rec, C::nr_kontrahenta, p.contractor));
  put(PGPutAlpha(rec, C::nazwa_kontrahenta, p.contractorName));
  put(PGPutAlpha(rec, C::konto_przeciwstawne, p.account));
  put(PGPutExt(rec, C::suma_dok, RoundMoney(p.amount)));
  put(PGPutAlpha(rec, C::komentarz, p.comment));
  put(PGPutLong(rec, C::nr_operatora, p.operatorNumber));
  put(PGPutDate(rec, C::data_dok_zrodl, p.sourceDate));
  put(PGPutAlpha(rec, C::zablokowany, p.locked));
  return code;
}

// Where a payment kind draws its numbers: the firm's register when every
// document is numbered for the firm, else the warehouse's kasa____.
ShortText PaymentNumberTable(int32_t warehouse, int kind, const NumberingSettings& s) {
  return UnderCommonNumbering(kind, s) ? ShortText(kRegisterTable) : KasaPath(warehouse);
}

// Numbers the row, appends it and, under common numbering, registers its
// number; kasa____ (and the register first) are locked by the caller.
PaymentResult InsertPayment(int32_t warehouse, PaymentRow& row, const PaymentSettings& s) {
  const ShortText kasa = KasaPath(warehouse);
  NextNumber n;
  CheckDBError(NextDocNumber(row.date, row.key.kind, PaymentNumberTable(warehouse, row.key.kind, s.numbering),
                             s.numbering, n));
  if (n.failed) return PaymentResult::kNoNumber;
  row.key.coded = n.coded;
  ShortText mark;
  CheckDBError(FreeMarkInTable(kasa, row.key.kind, row.key.coded, row.key.mark, mark));
  row.key.mark = mark;
  TableRecord t(kasa);
  CheckDBError(t.code());
  CheckDBError(PutPayment(t.rec(), row));
  CheckDBError(PGRecAppend(t.tbl(), t.rec()));
  t.MarkChanged();
  CheckDBError(RegisterDocNumber(row.key.kind, row.key.coded, row.key.mark, row.date, s.numbering));
  return PaymentResult::kDone;
}

// The register's lock when the kind is numbered for the firm: taken before
// kasa____, the order of the goods-document save.
class RegisterLock {
 public:
  RegisterLock(int kind, const NumberingSettings& s) {
    if (UnderCommonNumbering(kind, s)) lock_.emplace(ShortText(kRegisterTable));
  }
  void Commit() {
    if (lock_) CheckDBError(lock_->Commit());
  }

 private:
  std::optional<ExclusiveLock> lock_;
};

// A deleted payment's number stays taken in the register: its row gets the
// deletion's date, time, user and the sum.
void MarkNumberDeleted(const PaymentRow& p) {
  const std::string sql = "UPDATE " + SqlTable(kRegisterTable) + " SET data_ost_skasowania=" +
                          DateLiteral(TodaySerial()) + ",czas_ost_skasowania=" +
                          std::to_string(NowMinutes()) + ",nr_uzytk_kasujacego=" +
                          std::to_string(CurrentUserNumber()) + ",nazwa_uz_kasujacego=" +
                          TextLiteral(CurrentUserName().Copy(1, 30)) + ",ost_suma_dok_skas=" +
                          MoneyLiteral(p.amount) + " WHERE " + KeyCondition(p.key, "");
  CheckDBError(PGRunQueryNoTup(sql));
}

// Rows a statement touched, through "WITH w AS (...RETURNING 1) SELECT count(*)".
int32_t CountTouched(const std::string& statement) {
  std::string value;
  bool isNull = false;
  CheckDBError(docdetail::QueryValue("WITH w AS (" + statement + " RETURNING 1) SELECT count(*) FROM w", value, isNull));
  return static_cast<int32_t>(std::strtol(value.c_str(), nullptr, 10));
}

PaymentResult Committed(ExclusiveLock& lock, PaymentResult r) {
  CheckDBError(lock.Commit());
  return r;
}

}  // namespace

PaymentResult SavePayment(int32_t warehouse, PaymentRow& row, const PaymentSettings& s) {
  RegisterLock reg(row.key.kind, s.numbering);
  ExclusiveLock lock(KasaPath(warehouse));
  // Taken again under the lock: another operator may have paid meanwhile.
  const Balance b = ComputeBalance(warehouse, row.source, s);
  if (!b.found) return PaymentResult::kSourceGone;
  if (b.value == 0) return PaymentResult::kZeroBalance;
  const PaymentResult r = InsertPayment(warehouse, row, s);
  if (r != PaymentResult::kDone) return r;
  Committed(lock, r);
  reg.Commit();
  return r;
}

PaymentResult UpdatePayment(int32_t warehouse, const PaymentRow& row) {
  ExclusiveLock lock(KasaPath(warehouse));
  const std::string sql = "UPDATE " + SqlTable(KasaPath(warehouse)) + " SET suma_dok=" + MoneyLiteral(row.amount) +
                          ",data_dok=" + DateLiteral(row.date) + ",komentarz=" + TextLiteral(row.comment) +
                          " WHERE " + KeyCondition(row.key, "");
  if (CountTouched(sql) == 0) return PaymentResult::kPaymentGone;
  return Committed(lock, PaymentResult::kDone);
}

PaymentResult RemovePayment(int32_t warehouse, const DocRef& key, const NumberingSettings& s) {
  RegisterLock reg(key.kind, s);
  ExclusiveLock lock(KasaPath(warehouse));
  PaymentRow p;
  if (!ReadPayment(warehouse, key, p)) return PaymentResult::kPaymentGone;
  if (CountTouched("DELETE FROM " + SqlTable(KasaPath(warehouse)) + " WHERE " + KeyCondition(key, "")) == 0)
    return PaymentResult::kPaymentGone;
  if (UnderCommonNumbering(key.kind, s)) MarkNumberDeleted(p);
  Committed(lock, PaymentResult::kDone);
  reg.Commit();
  return PaymentResult::kDone;
}

PaymentResult SettleDepositChain(int32_t warehouse, const DocRef& doc, const PaymentSettings& s,
                                 const DocRef* viaPayment) {
  // The order of the goods-document save: headers, lines, then payments.
  ExclusiveLock headers(WarehouseTablePath(warehouse, "naglowki"));
  ExclusiveLock lines(WarehouseTablePath(warehouse, "specyfik"));
  ExclusiveLock kasa(KasaPath(warehouse));
  PaymentRow payment;
  if (viaPayment && !ReadPayment(warehouse, *viaPayment, payment)) return PaymentResult::kPaymentGone;
  const Balance b = ComputeBalance(warehouse, doc, s);
  if (!b.found) return PaymentResult::kChainBroken;
  if (!b.deposit) return PaymentResult::kNotDeposit;
  if (b.value != 0 || !b.usable) return PaymentResult::kNotZero;
  bool broken = false;
  for (const DocRef& d : b.goods) {
    CheckDBError(PGRunQueryNoTup("UPDATE " + SqlTable(WarehouseTablePath(warehouse, "specyfik")) +
                                 " SET ilosc_w_depozycie=0 WHERE " + KeyCondition(d, "")));
    broken = CountTouched("UPDATE " + SqlTable(WarehouseTablePath(warehouse, "naglowki")) +
                          " SET czy_depozyt='N' WHERE " + KeyCondition(d, "")) == 0 ||
             broken;
  }
  CheckDBError(kasa.Commit());
  CheckDBError(lines.Commit());
  return Committed(headers, broken ? PaymentResult::kChainBroken : PaymentResult::kDone);
}

PaymentResult SettleAllDeposits(int32_t warehouse, const PaymentSettings& s, int& settled) {
  settled = 0;
  PGResult r;
  const std::string sql = "SELECT typ_dok,nr_dok,znak_dok FROM " +
                          SqlTable(WarehouseTablePath(warehouse, "naglowki")) +
                          " WHERE czy_depozyt='T' ORDER BY typ_dok,nr_dok,znak_dok";
  CheckDBError(PGRunQueryWithTup(sql, r));
  std::set<std::string> roots;
  PaymentResult worst = PaymentResult::kDone;
  for (int i = 0; i < r.Rows(); ++i) {
    const DocRef d{static_cast<int16_t>(Int(r, i, 0)), Int(r, i, 1), Text(r, i, 2)};
    if (!PaymentFitsDocument('O', d.kind, ReadKindRow(d.kind).contractorLetter)) continue;
    const Balance b = ComputeBalance(warehouse, d, s);
    if (!b.found || !b.usable || b.value != 0) continue;
    if (!roots.insert(KeyCondition(b.root, "")).second) continue;
    const PaymentResult one = SettleDepositChain(warehouse, b.root, s);
    if (one == PaymentResult::kDone) ++settled;
    if (one == PaymentResult::kChainBroken) worst = one;
  }
  return worst;
}

int WriteAutoPayment(int32_t warehouse, const DocRef& doc, int32_t date, const PaymentSettings& s, Real paidVat) {
  if (s.autoPayments <= 0) return 0;
  const SourceInfo src = ReadSource(warehouse, doc);
  if (!src.found || src.total == 0) return 0;
  const bool customer = PaymentFitsDocument('O', doc.kind, ReadKindRow(doc.kind).contractorLetter);
  struct Part {
    int16_t kind;
    Real amount;
  };
  std::vector<Part> parts;
  if (doc.kind == 2 && paidVat > 0)
    parts = {{s.autoKinds[2], paidVat}, {s.autoKinds[3], src.total - paidVat}};
  else
    parts = {{s.autoKinds[customer ? 0 : 1], src.total}};
  RegisterLock reg(kFirstPaymentKind, s.numbering);
  ExclusiveLock lock(KasaPath(warehouse));
  int written = 0;
  for (const Part& part : parts) {
    if (part.kind == 0 || RoundMoney(part.amount) == 0) continue;
    PaymentRow row = NewPaymentRow(part.kind, ReadKindRow(part.kind), doc, src, date, part.amount);
    if (InsertPayment(warehouse, row, s) != PaymentResult::kDone) return -1;
    ++written;
  }
  CheckDBError(lock.Commit());
  reg.Commit();
  return written;
}
