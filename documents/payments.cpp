// Payment rules, catalogue rows, payment rows and the balance walk.
#include "documents/payments.h"

#include <cstdlib>
#include <ctime>
#include <string>

#include "base/codepage.h"
#include "base/csv.h"
#include "base/dates.h"
#include "base/numbers.h"
#include "config/konfigur.h"
#include "documents/dockinds.h"
#include "documents/payments_detail.h"
#include "master/tables.h"
#include "users/users.h"
#include "sqltable/pgconn.h"

using docdetail::SqlTable;
using docdetail::TextLiteral;

bool IsRootKind(int kind) { return kind == 2 || kind == 4 || kind == 6 || kind == 7 || kind == 16; }

bool IsLinkableKind(int kind) {
  const DocumentKind* k = DocumentKindOf(kind);
  return k && kind != 12 && k->contractor != ContractorCatalogue::kWarehouses;
}

int KindSign(char incomeMark) { return incomeMark == 'N' ? -1 : 1; }

bool PaymentFitsDocument(char paymentLetter, int goodsKind, char goodsLetter) {
  const ContractorCatalogue c = KindContractor(goodsKind, goodsLetter);
  if (paymentLetter == 'd' || paymentLetter == 'w') return c == ContractorCatalogue::kSuppliers;
  if (paymentLetter == 'O' || paymentLetter == 'W') return c == ContractorCatalogue::kCustomers;
  return false;
}

Real BalanceOfEntries(int rootSign, const std::vector<BalanceEntry>& entries) {
  Real sum = 0;
  for (const BalanceEntry& e : entries) sum += (e.payment ? -e.sign : e.sign) * e.amount;
  return RoundMoney(rootSign * sum);
}

ShortText ContractorLetterText(char letter) {
  switch (letter) {
    case 'd': return "d - dostawca"_mz;
    case 'O': return "O - odbiorca"_mz;
    case 'w': return "w - wewn.przychód - dostawca"_mz;
    case 'W': return "W - wewn.rozchód - odbiorca"_mz;
    default: return ShortText(std::string(1, letter));
  }
}

Real ChangeDue(Real paid, Real total) { return RoundMoney(paid - total); }

bool ProposedDepositMark(int depositOption, int kind) {
  if (depositOption != 1 && depositOption != 3) return false;
  return kind != 1 && kind != 12 && (kind < 15 || kind > 18);
}

void ParseAutoKinds(const ShortText& csv, int16_t (&kinds)[5]) {
  for (int i = 0; i < 5; ++i) {
    const ShortText field = CsvField(csv, i + 1);
    const long v = std::strtol(field.Str().c_str(), nullptr, 10);
    kinds[i] = (v >= kFirstPaymentKind && v <= 32767) ? static_cast<int16_t>(v) : 0;
  }
}

PaymentSettings PaymentSettingsFromConfig() {
  PaymentSettings s;
  s.depositOption = ConfigInt(kConfigLineDeposits);
  s.autoPayments = ConfigInt(kConfigLineAutoPayments);
  ParseAutoKinds(ConfigText(kConfigLinePaymentKinds), s.autoKinds);
  s.numbering = NumberingSettingsFromConfig();
  return s;
}

namespace paydetail {

std::string KeyCondition(const DocRef& d, const char* prefix) {
  const std::string p(prefix);
  return p + "typ_dok=" + std::to_string(d.kind) + " AND " + p + "nr_dok=" + std::to_string(d.coded) + " AND " + p +
         "znak_dok=" + TextLiteral(d.mark);
}

std::string SourceCondition(const DocRef& d) {
  return "typ_dok_zrodl=" + std::to_string(d.kind) + " AND nr_dok_zrodl=" + std::to_string(d.coded) +
         " AND znak_dok_zrodl=" + TextLiteral(d.mark);
}

std::string SourceInList(const std::vector<DocRef>& docs) {
  std::string list;
  for (const DocRef& d : docs)
    list += (list.empty() ? "(" : ",(") + std::to_string(d.kind) + "," + std::to_string(d.coded) + "," +
            TextLiteral(d.mark) + ")";
  if (list.empty()) return "FALSE";
  return "(typ_dok_zrodl,nr_dok_zrodl,znak_dok_zrodl) IN (" + list + ")";
}

std::string SerialOf(const char* column) {
  return std::string("COALESCE(") + column + "-DATE '1899-12-30',0)";
}

int32_t Int(const PGResult& r, int row, int col) {
  return static_cast<int32_t>(std::strtol(std::string(r.Value(row, col)).c_str(), nullptr, 10));
}

Real Money(const PGResult& r, int row, int col) {
  return std::strtold(std::string(r.Value(row, col)).c_str(), nullptr);
}

ShortText Text(const PGResult& r, int row, int col) { return DbToMaz(r.Text(row, col)); }

char Letter(const PGResult& r, int row, int col) {
  const std::string_view v = r.Value(row, col);
  return v.empty() ? ' ' : v[0];
}

int32_t TodaySerial() {
  const std::time_t now = std::time(nullptr);
  std::tm t{};
  localtime_r(&now, &t);
  return EncodeDaySerial(t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
}

}  // namespace paydetail

using namespace paydetail;

KindRow ReadKindRow(int kind) {
  KindRow k;
  PGResult r;
  const std::string sql = "SELECT nazwa,typ_kontrahenta,czy_przychod,konto_przeciwstawne,znak_dok,zablokowany FROM " +
                          SqlTable("dane\\dok_plat") + " WHERE typ_dok=" + std::to_string(kind);
  if (PGRunQueryWithTup(sql, r) || r.Rows() == 0) return k;
  k.found = true;
  k.name = Text(r, 0, 0);
  k.contractorLetter = Letter(r, 0, 1);
  k.income = Letter(r, 0, 2);
  k.account = Text(r, 0, 3);
  k.mark = Text(r, 0, 4);
  k.locked = Letter(r, 0, 5) == 'T';
  return k;
}

std::vector<int16_t> PaymentKinds() {
  std::vector<int16_t> kinds;
  PGResult r;
  if (PGRunQueryWithTup("SELECT typ_dok FROM " + SqlTable("dane\\dok_plat") + " WHERE typ_dok>=" +
                            std::to_string(kFirstPaymentKind) + " ORDER BY typ_dok",
                        r))
    return kinds;
  for (int i = 0; i < r.Rows(); ++i) kinds.push_back(static_cast<int16_t>(Int(r, i, 0)));
  return kinds;
}

namespace {

constexpr const char* kPaymentColumns =
    "typ_dok,nr_dok,znak_dok,typ_dok_zrodl,nr_dok_zrodl,znak_dok_zrodl,opis_typ_dok,typ_kontrahenta,nr_kontrahenta,"
    "nazwa_kontrahenta,konto_przeciwstawne,suma_dok,komentarz,nr_operatora,zablokowany,";

PaymentRow PaymentFrom(const PGResult& r, int i) {
  PaymentRow p;
  p.key = {static_cast<int16_t>(Int(r, i, 0)), Int(r, i, 1), Text(r, i, 2)};
  p.source = {static_cast<int16_t>(Int(r, i, 3)), Int(r, i, 4), Text(r, i, 5)};
  p.kindText = Text(r, i, 6);
  p.contractorLetter = Letter(r, i, 7);
  p.contractor = Int(r, i, 8);
  p.contractorName = Text(r, i, 9);
  p.account = Text(r, i, 10);
  p.amount = Money(r, i, 11);
  p.comment = Text(r, i, 12);
  p.operatorNumber = Int(r, i, 13);
  p.locked = Text(r, i, 14);
  p.date = Int(r, i, 15);
  p.sourceDate = Int(r, i, 16);
  return p;
}

std::string PaymentSelect(int32_t warehouse) {
  return std::string("SELECT ") + kPaymentColumns + SerialOf("data_dok") + "," + SerialOf("data_dok_zrodl") +
         " FROM " + SqlTable(WarehouseTablePath(warehouse, "kasa____"));
}

}  // namespace

bool ReadPayment(int32_t warehouse, const DocRef& key, PaymentRow& out) {
  PGResult r;
  if (PGRunQueryWithTup(PaymentSelect(warehouse) + " WHERE " + KeyCondition(key, ""), r) || r.Rows() == 0)
    return false;
  out = PaymentFrom(r, 0);
  return true;
}

std::vector<PaymentRow> ListPayments(int32_t warehouse, int limit) {
  std::vector<PaymentRow> rows;
  PGResult r;
  if (PGRunQueryWithTup(PaymentSelect(warehouse) + " ORDER BY data_dok,typ_dok,nr_dok,znak_dok LIMIT " +
                            std::to_string(limit),
                        r))
    return rows;
  for (int i = 0; i < r.Rows(); ++i) rows.push_back(PaymentFrom(r, i));
  return rows;
}

PaymentRow NewPaymentRow(int16_t kind, const KindRow& row, const DocRef& src, const SourceInfo& info, int32_t date,
                         Real amount) {
  PaymentRow p;
  p.key = {kind, 0, row.mark};
  p.date = date;
  p.source = src;
  p.kindText = row.name.Copy(1, 7);
  p.contractorLetter = row.contractorLetter;
  p.contractor = info.contractor;
  p.contractorName = info.contractorName;
  p.account = row.account;
  p.amount = amount;
  p.operatorNumber = CurrentUserNumber();
  p.sourceDate = info.date;
  return p;
}

std::vector<SourceCandidate> SourceCandidates(int32_t warehouse, int year, int32_t number, int limit) {
  std::vector<SourceCandidate> out;
  int32_t first = 0, last = 0;
  if (!TryEncodeDocNumber(year, number > 0 ? number : 0, first) ||
      !TryEncodeDocNumber(year, number > 0 ? number : kDocMaxNumber, last))
    return out;
  PGResult r;
  const std::string sql = "SELECT typ_dok,nr_dok,znak_dok," + SerialOf("data_dok") + ",suma_dok,nazwa_kontrahenta FROM " +
                          SqlTable(WarehouseTablePath(warehouse, "naglowki")) + " WHERE nr_dok BETWEEN " +
                          std::to_string(first) + " AND " + std::to_string(last) +
                          " ORDER BY data_dok,typ_dok,nr_dok,znak_dok LIMIT " + std::to_string(limit);
  if (PGRunQueryWithTup(sql, r)) return out;
  for (int i = 0; i < r.Rows(); ++i)
    out.push_back({{static_cast<int16_t>(Int(r, i, 0)), Int(r, i, 1), Text(r, i, 2)}, Int(r, i, 3), Money(r, i, 4),
                   Text(r, i, 5)});
  return out;
}
