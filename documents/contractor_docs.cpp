// The documents and the balance of one contractor.
#include "documents/contractor_docs.h"

#include <string>

#include "base/dates.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/payments_detail.h"
#include "master/tables.h"
#include "sqltable/pgconn.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

using docdetail::SqlTable;
using namespace paydetail;

namespace {

// Kind, number, mark, date, total and, for a root, its balance, parted by "|".
ShortText DocumentLine(const ContractorDocument& d) {
  ShortText line = FormatFixed(8, 0, d.key.kind);
  for (const ShortText& part : {FormatFixed(13, 0, DecodeDocNumberSoft(d.key.coded)),
                                PadRight(TrimRight(d.key.mark, ' '), " ", 4), DateText(d.date),
                                FormatFixed(13, 2, d.total),
                                d.root ? FormatFixed(13, 2, d.balance) : PadRight("", " ", 13)}) {
    line.Append("|");
    line.Append(part.View());
  }
  return line;
}

}  // namespace

std::vector<ContractorDocument> ContractorDocuments(int32_t warehouse, char contractorLetter, int32_t contractor,
                                                    const PaymentSettings& s) {
  std::vector<ContractorDocument> out;
  PGResult r;
  const std::string sql = "SELECT typ_dok,nr_dok,znak_dok," + SerialOf("data_dok") + ",suma_dok FROM " +
                          SqlTable(WarehouseTablePath(warehouse, "naglowki")) +
                          " WHERE nr_kontrahenta=" + std::to_string(contractor) +
                          " ORDER BY data_dok,typ_dok,nr_dok,znak_dok";
  if (PGRunQueryWithTup(sql, r)) return out;
  for (int i = 0; i < r.Rows(); ++i) {
    ContractorDocument d;
    d.key = {static_cast<int16_t>(Int(r, i, 0)), Int(r, i, 1), Text(r, i, 2)};
    if (!PaymentFitsDocument(contractorLetter, d.key.kind, ReadKindRow(d.key.kind).contractorLetter)) continue;
    d.date = Int(r, i, 3);
    d.total = Money(r, i, 4);
    d.root = IsRootKind(d.key.kind);
    if (d.root) {
      const Balance b = ComputeBalance(warehouse, d.key, s);
      d.balance = b.usable ? b.value : 0;
    }
    out.push_back(d);
  }
  return out;
}

void ShowContractorBalance(int32_t warehouse, char contractorLetter, int32_t contractor, const ShortText& name) {
  const Real balance = ContractorBalance(warehouse, contractorLetter, contractor, PaymentSettingsFromConfig());
  (void)MessageBox(TrimRight(name, ' ') + "@bilans dla kontrahenta: "_mz + MoneyText(balance), 0);
}

void ShowContractorDocuments(int32_t warehouse, char contractorLetter, int32_t contractor, const ShortText& name) {
  const PaymentSettings s = PaymentSettingsFromConfig();
  const std::vector<ContractorDocument> docs = ContractorDocuments(warehouse, contractorLetter, contractor, s);
  if (docs.empty()) return (void)MessageBox("Nie ma dokumentów związanych !"_mz, 0);
  std::vector<ShortText> lines;
  for (std::size_t i = 0; i < docs.size() && static_cast<int>(i) < kPickMaxChoices; ++i)
    lines.push_back(DocumentLine(docs[i]));
  for (int16_t at = 1;;) {
    unsigned char ch = 0, scan = 0;
    at = PickListHooked(1, at, 1, 0, 0, TrimRight(name, ' '), lines, {}, ch, scan);
    if (at < 1) return;
    ListRelatedDocuments(warehouse, docs[static_cast<std::size_t>(at - 1)].key, s);
  }
}
