// The balance walk of a goods document and the balances of a contractor.
#include <map>
#include <string>

#include "documents/payments.h"
#include "documents/payments_detail.h"
#include "master/tables.h"
#include "sqltable/pgconn.h"

using docdetail::SqlTable;
using docdetail::TextLiteral;
using namespace paydetail;

namespace {

// A chain longer than this is a loop of references, not a settlement.
constexpr int kMaxWalk = 1000;

struct Header {
  bool found = false;
  DocRef key;
  DocRef source;
  Real total = 0;
  Real discount = 0;
  bool deposit = false;
  int32_t date = 0;
};

constexpr const char* kHeaderColumns =
    "typ_dok,nr_dok,znak_dok,typ_dok_zrodl,nr_dok_zrodl,znak_dok_zrodl,suma_dok,COALESCE(rab_kwot,0),czy_depozyt,";

Header HeaderFrom(const PGResult& r, int i) {
  Header h;
  h.found = true;
  h.key = {static_cast<int16_t>(Int(r, i, 0)), Int(r, i, 1), Text(r, i, 2)};
  h.source = {static_cast<int16_t>(Int(r, i, 3)), Int(r, i, 4), Text(r, i, 5)};
  h.total = Money(r, i, 6);
  h.discount = Money(r, i, 7);
  h.deposit = Letter(r, i, 8) == 'T';
  h.date = Int(r, i, 9);
  return h;
}

std::string HeaderSelect(int32_t warehouse) {
  return std::string("SELECT ") + kHeaderColumns + SerialOf("data_dok") + " FROM " +
         SqlTable(WarehouseTablePath(warehouse, "naglowki"));
}

Header ReadHeader(int32_t warehouse, const DocRef& key) {
  PGResult r;
  if (PGRunQueryWithTup(HeaderSelect(warehouse) + " WHERE " + KeyCondition(key, ""), r) || r.Rows() == 0) return {};
  return HeaderFrom(r, 0);
}

// Signs of kinds, each read once per walk; false when a kind is not in the catalogue.
class KindSigns {
 public:
  bool Sign(int kind, int& sign) {
    auto it = rows_.find(kind);
    if (it == rows_.end()) it = rows_.emplace(kind, ReadKindRow(kind)).first;
    sign = KindSign(it->second.income);
    return it->second.found;
  }

 private:
  std::map<int, KindRow> rows_;
};

// Follows the references up to a root kind; found false when a link is missing.
Header WalkToRoot(int32_t warehouse, const DocRef& doc, int& walked) {
  Header h = ReadHeader(warehouse, doc);
  while (h.found && !IsRootKind(h.key.kind)) {
    if (h.source.kind == 0 || ++walked > kMaxWalk) return {};
    h = ReadHeader(warehouse, h.source);
  }
  return h;
}

// Adds the payments referring to any goods document of the chain.
bool AddPayments(int32_t warehouse, const std::vector<DocRef>& goods, KindSigns& signs,
                 std::vector<BalanceEntry>& entries) {
  PGResult r;
  const std::string sql = "SELECT typ_dok,SUM(suma_dok) FROM " + SqlTable(WarehouseTablePath(warehouse, "kasa____")) +
                          " WHERE " + SourceInList(goods) + " GROUP BY typ_dok";
  if (PGRunQueryWithTup(sql, r)) return false;
  bool known = true;
  for (int i = 0; i < r.Rows(); ++i) {
    int sign = 1;
    known = signs.Sign(Int(r, i, 0), sign) && known;
    entries.push_back({sign, Money(r, i, 1), true});
  }
  return known;
}

}  // namespace

Balance ComputeBalance(int32_t warehouse, const DocRef& doc, const PaymentSettings& s) {
  Balance b;
  KindSigns signs;
  int sign = 1;
  if (!signs.Sign(doc.kind, sign)) {
    b.usable = false;
    return b;
  }
  const Header root = WalkToRoot(warehouse, doc, b.walked);
  if (!root.found) return b;
  b.found = true;
  b.root = root.key;
  b.rootDate = root.date;
  b.rootTotal = root.total;
  auto net = [&](const Header& h) { return h.total - (s.amountDiscounts ? h.discount : 0); };
  int rootSign = 1;
  b.usable = signs.Sign(root.key.kind, rootSign);
  std::vector<BalanceEntry> entries{{rootSign, net(root), false}};
  b.goods.push_back(root.key);
  b.deposit = root.deposit;
  PGResult r;
  if (PGRunQueryWithTup(HeaderSelect(warehouse) + " WHERE " + SourceCondition(root.key), r)) {
    b.usable = false;
    return b;
  }
  for (int i = 0; i < r.Rows(); ++i) {
    const Header c = HeaderFrom(r, i);
    int cs = 1;
    b.usable = signs.Sign(c.key.kind, cs) && b.usable;
    entries.push_back({cs, net(c), false});
    b.goods.push_back(c.key);
    b.deposit = b.deposit || c.deposit;
  }
  b.usable = AddPayments(warehouse, b.goods, signs, entries) && b.usable;
  b.value = BalanceOfEntries(rootSign, entries);
  return b;
}

SourceInfo ReadSource(int32_t warehouse, const DocRef& doc) {
  SourceInfo out;
  PGResult r;
  const std::string sql = "SELECT " + SerialOf("data_dok") + ",suma_dok,nr_kontrahenta,nazwa_kontrahenta FROM " +
                          SqlTable(WarehouseTablePath(warehouse, "naglowki")) + " WHERE " + KeyCondition(doc, "");
  if (PGRunQueryWithTup(sql, r) || r.Rows() == 0) return out;
  out.found = true;
  out.date = Int(r, 0, 0);
  out.total = Money(r, 0, 1);
  out.contractor = Int(r, 0, 2);
  out.contractorName = Text(r, 0, 3);
  return out;
}

Real ContractorBalance(int32_t warehouse, char contractorLetter, int32_t contractor, const PaymentSettings& s) {
  PGResult r;
  const std::string sql = HeaderSelect(warehouse) + " WHERE typ_dok IN (2,4,6,7,16) AND nr_kontrahenta=" +
                          std::to_string(contractor) + " ORDER BY typ_dok,nr_dok,znak_dok";
  if (PGRunQueryWithTup(sql, r)) return 0;
  Real sum = 0;
  for (int i = 0; i < r.Rows(); ++i) {
    const Header h = HeaderFrom(r, i);
    if (!PaymentFitsDocument(contractorLetter, h.key.kind, ReadKindRow(h.key.kind).contractorLetter)) continue;
    const Balance b = ComputeBalance(warehouse, h.key, s);
    if (b.usable) sum += b.value;
  }
  return RoundMoney(sum);
}
