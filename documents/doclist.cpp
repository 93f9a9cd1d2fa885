// The table side of the documents' list: screenfuls of headers, a
// document's lines, the guarded later fiscalisation and the fiscal mark.
#include "documents/doclist.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "base/codepage.h"
#include "base/dates.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/doccalc.h"
#include "documents/docnumber.h"
#include "documents/fiscalise.h"
#include "documents/payments_detail.h"
#include "fiscal/sale.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgconn.h"
#include "sqltable/pglock.h"
#include "sqltable/pgtable.h"

using docdetail::SqlTable;
using docdetail::TextLiteral;
using paydetail::DateText;
using paydetail::Int;
using paydetail::Letter;
using paydetail::Money;
using paydetail::SerialOf;
using paydetail::Text;

namespace {

// typ_dok, nr_dok, znak_dok of the document (columns behind prefix).
std::string KeyCondition(const DocRef& d, const std::string& prefix) {
  return prefix + "typ_dok=" + std::to_string(d.kind) + " AND " + prefix + "nr_dok=" + std::to_string(d.coded) +
         " AND " + prefix + "znak_dok=" + TextLiteral(d.mark);
}

const std::string kDateSerial = SerialOf("data_dok");

std::string Headers(int32_t warehouse) { return SqlTable(WarehouseTablePath(warehouse, "naglowki")); }

std::string RowSelect(int32_t warehouse) {
  return "SELECT oid," + kDateSerial +
         ",typ_dok,nr_dok,znak_dok,nazwa_kontrahenta,suma_dok,czy_gotowkowy,zablokowany FROM " + Headers(warehouse);
}

DocListRow RowFrom(const PGResult& r, int i) {
  DocListRow row;
  row.rowId = std::strtoll(std::string(r.Value(i, 0)).c_str(), nullptr, 10);
  row.date = Int(r, i, 1);
  row.key = {static_cast<int16_t>(Int(r, i, 2)), Int(r, i, 3), Text(r, i, 4)};
  row.contractor = Text(r, i, 5);
  row.total = Money(r, i, 6);
  row.cash = Letter(r, i, 7);
  row.locked = Letter(r, i, 8);
  return row;
}

// Rows past the key in the direction of reading; the key's own row with inclusive.
std::string KeyCondition(const DocListKey& from, bool older) {
  if (!from.set) return "TRUE";
  const char* op = older ? (from.inclusive ? "<=" : "<") : (from.inclusive ? ">=" : ">");
  return "(" + kDateSerial + ",oid)" + op + "(" + std::to_string(from.date) + "," + std::to_string(from.rowId) + ")";
}

// czy_gotowkowy as the list shows it: the mark of the printer's memory only.
char FiscalColumn(char cash) { return cash == 'F' || cash == 'f' ? cash : ' '; }

}  // namespace

DocListKey DocListKeyOf(const DocListRow& row) { return DocListKey{true, false, row.date, row.rowId}; }

int16_t DocListRead(int32_t warehouse, const DocListKey& from, bool older, int limit, std::vector<DocListRow>& rows) {
  rows.clear();
  const char* order = older ? " DESC" : " ASC";
  const std::string sql = RowSelect(warehouse) + " WHERE " + KeyCondition(from, older) + " ORDER BY " +
                          kDateSerial + order + ",oid" + order + " LIMIT " + std::to_string(std::max(limit, 0));
  PGResult r;
  if (int16_t code = PGRunQueryWithTup(sql, r)) return code;
  for (int i = 0; i < r.Rows(); ++i) rows.push_back(RowFrom(r, i));
  if (!older) std::reverse(rows.begin(), rows.end());
  return 0;
}

bool DocListFind(int32_t warehouse, int32_t number, DocListKey& at) {
  // A number that does not decode (negative) belongs to no year: it is never found.
  const std::string sql = "SELECT oid," + kDateSerial + " FROM " + Headers(warehouse) +
                          " WHERE nr_dok>=0 AND (nr_dok & " + std::to_string(kDocMaxNumber) +
                          ")=" + std::to_string(number) + " ORDER BY 2 DESC,oid DESC LIMIT 1";
  PGResult r;
  if (number < 0 || PGRunQueryWithTup(sql, r) || r.Rows() == 0) return false;
  at = DocListKey{true, true, Int(r, 0, 1), std::strtoll(std::string(r.Value(0, 0)).c_str(), nullptr, 10)};
  return true;
}

ShortText DocListRowText(const DocListRow& row) {
  const ShortText number = PadLeft(DocNumberText(row.key.coded), ' ', 13);
  return " " + DateText(row.date) + " " + IntText(row.key.kind, 2) + " " + PadRight(row.key.mark, " ", 4) + " " +
         number + " " + PadRight(row.contractor.Copy(1, 17), " ", 17) + " " + FormatFixed(13, 2, row.total) + "  " +
         ShortText(std::string(1, FiscalColumn(row.cash)));
}

int16_t DocViewLinesRead(int32_t warehouse, const DocRef& key, std::vector<DocViewLine>& lines) {
  lines.clear();
  const std::string sql =
      "SELECT s.pozycja,k.nazwa,s.vat,s.ilosc,s.c_spr_netto,s.c_spr_brutto FROM " +
      SqlTable(WarehouseTablePath(warehouse, "specyfik")) + " s LEFT JOIN " + SqlTable("dane\\kat_tow_") +
      " k ON k.nr_wewn=s.nr_towaru WHERE " + KeyCondition(key, "s.") + " ORDER BY s.pozycja,s.oid";
  PGResult r;
  if (int16_t code = PGRunQueryWithTup(sql, r)) return code;
  for (int i = 0; i < r.Rows(); ++i)
    lines.push_back({Int(r, i, 0), Text(r, i, 1), Text(r, i, 2), Money(r, i, 3), Money(r, i, 4), Money(r, i, 5)});
  return 0;
}

DocViewTotals DocViewTotalsOf(const std::vector<DocViewLine>& lines) {
  DocViewTotals t;
  for (const DocViewLine& line : lines) {
    t.net += LineValue(line.quantity, line.net);
    t.gross += LineValue(line.quantity, line.gross);
  }
  return {RoundMoney(t.net), RoundMoney(t.gross)};
}

bool DocumentKindFiscal(int kind) { return FiscalModeOfKind(kind) != kFiscalModeNone; }

bool FiscaliseListedDocument(const FiscalConfig& config, int32_t warehouse, const DocRef& key) {
  // The row stays locked from here to the commit: the print and the mark
  // happen inside, and FiscaliseDocument reads the mark again after the wait.
  CheckDBError(PGTransBegin());
  PGResult r;
  const int16_t code = PGRunUnderMessage("Trwa wydruk fiskalny..."_mz,
                                         "SELECT 1 FROM " + Headers(warehouse) + " WHERE " + KeyCondition(key, "") +
                                             " FOR UPDATE",
                                         true, r);
  bool printed = false;
  if (code == 0) printed = FiscaliseDocument(config, DocumentKey{warehouse, key.kind, key.coded, key.mark});
  CheckDBError(code == 0 ? PGTransCommit() : PGTransRollback());
  CheckDBError(code);
  return printed;
}

FiscalMarkRemoval RemoveFiscalMark(int32_t warehouse, const DocRef& key) {
  const std::string where = " WHERE " + KeyCondition(key, "");
  const std::string update = "UPDATE " + Headers(warehouse) +
                             " SET czy_gotowkowy=CASE czy_gotowkowy WHEN 'F' THEN 'T' ELSE 'N' END" + where +
                             " AND czy_gotowkowy IN ('F','f') RETURNING 1";
  PGResult r;
  CheckDBError(PGRunQueryWithTup(update, r));
  if (r.Rows() > 0) return FiscalMarkRemoval::kRemoved;
  CheckDBError(PGRunQueryWithTup("SELECT 1 FROM " + Headers(warehouse) + where, r));
  return r.Rows() > 0 ? FiscalMarkRemoval::kNoMark : FiscalMarkRemoval::kGone;
}
