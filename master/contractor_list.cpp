// The list's reads by key: a screenful after or before the row of a key in
// one of the orders, and the conditions of the searches. They go past the
// table layer's cursor, which would materialise the whole ordered
// catalogue at every open and jump, and read the rows in one statement.
#include <algorithm>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "master/contractors_detail.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"

namespace contractors_detail {

namespace {

struct OrderColumn {
  const char* sql;  // the expression ordered by
  KontrahentCol::Column column;
};

// The columns of an order; the number ends each, so that the order is total.
std::vector<OrderColumn> OrderColumns(ListOrder order) {
  const OrderColumn number{"numer", KontrahentCol::numer};
  switch (order) {
    case ListOrder::kName:
      return {{"nazwa", KontrahentCol::nazwa}, {"nazwa_inne", KontrahentCol::nazwa_inne}, number};
    case ListOrder::kNumber: return {number};
    case ListOrder::kTown: return {{"COALESCE(miasto,'')", KontrahentCol::miasto}, number};
    case ListOrder::kDocumentTown: return {{"COALESCE(miejsce_wyst,'')", KontrahentCol::miejsce_wyst}, number};
    case ListOrder::kMailTown: return {{"COALESCE(kor_miasto,'')", KontrahentCol::kor_miasto}, number};
  }
  return {number};
}

std::string ValueOf(const Contractor& c, KontrahentCol::Column column) {
  return column == KontrahentCol::numer ? std::to_string(c.number) : SqlText(c[column]);
}

// "(a, b) > (x, y)" for the key: the row comparison that the order's index serves.
std::string KeyCondition(ListOrder order, const ListKey& from, bool forward) {
  std::string columns, values;
  for (const OrderColumn& oc : OrderColumns(order)) {
    const char* comma = columns.empty() ? "" : ", ";
    columns += comma + std::string(oc.sql);
    values += comma + ValueOf(from.row, oc.column);
  }
  const char* op = forward ? (from.inclusive ? ">=" : ">") : (from.inclusive ? "<=" : "<");
  return "(" + columns + ") " + op + " (" + values + ")";
}

std::string OrderBy(ListOrder order, bool forward) {
  std::string text;
  for (const OrderColumn& oc : OrderColumns(order))
    text += (text.empty() ? " ORDER BY " : ", ") + std::string(oc.sql) + (forward ? "" : " DESC");
  return text;
}

// The column in capitals as the needle is compared with it. The server's
// upper() leaves Polish letters alone under a byte-order collation, so they
// are folded here too, but only for a needle that holds one: folding bytes
// above 127 cannot change where an ASCII needle is found, and translate()
// would more than double the time of a search through the whole catalogue.
std::string Folded(const std::string& column, const ShortText& needle) {
  const bool ascii = std::all_of(needle.View().begin(), needle.View().end(),
                                 [](char ch) { return static_cast<unsigned char>(ch) < 128; });
  if (ascii) return "upper(" + column + ")";
  return "upper(translate(" + column + ", '" + MazToDb("ąćęłńóśźż"_mz).Str() + "', '" +
         MazToDb("ĄĆĘŁŃÓŚŹŻ"_mz).Str() + "'))";
}

// The 25 columns in field order.
std::string ListColumns() {
  std::string out;
#define KLOTE_LIST_COLUMN(name, type) out += (out.empty() ? "" : ",") + std::string(ColumnSqlName(#name));
  KLOTE_COLUMNS_KONTRAHENT(KLOTE_LIST_COLUMN)
#undef KLOTE_LIST_COLUMN
  return out;
}

// Row r of a read of ListColumns(); NULL reads as an empty text or 0.
Contractor RowOf(const PGResult& res, int r) {
  Contractor c;
  for (int f = 1; f <= KontrahentCol::kCount; ++f) {
    const std::string_view value = res.Value(r, f - 1);
    if (f == KontrahentCol::numer) c.number = static_cast<int32_t>(TextToRealLoose(ShortText(value)));
    else if (f == KontrahentCol::rabat) c.discount = TextToRealLoose(ShortText(value));
    else c.text[static_cast<std::size_t>(f)] = DbToMaz(ShortText(value));
  }
  return c;
}

}  // namespace

std::string SqlText(const ShortText& text) {
  std::string bytes = text.Str();
  MazToDbInPlace(bytes.data(), bytes.size());
  return PGValueLiteral(PGKind::Text, bytes);
}

ListKey KeyOf(const Contractor& row, bool inclusive) {
  ListKey key;
  key.set = true;
  key.inclusive = inclusive;
  key.row = row;
  return key;
}

int16_t ListRead(ContractorKind kind, ListOrder order, const ListKey& from, bool forward, int limit,
                 const std::string& condition, std::vector<Contractor>& rows) {
  std::string where = condition;
  if (from.set) where += (where.empty() ? "" : " AND ") + KeyCondition(order, from, forward);
  const int16_t code = SelectRows(kind, where, OrderBy(order, forward) + " LIMIT " + std::to_string(limit), rows);
  if (!forward) std::reverse(rows.begin(), rows.end());
  return code;
}

int16_t SelectRows(ContractorKind kind, const std::string& condition, const std::string& tail,
                   std::vector<Contractor>& rows) {
  rows.clear();
  PGResult res;
  const int16_t code = PGRunQueryWithTup("SELECT " + ListColumns() + " FROM " +
                                             PGSqlName(ContractorTablePath(kind)).Str() +
                                             (condition.empty() ? "" : " WHERE " + condition) + tail,
                                         res);
  for (int r = 0; code == 0 && r < res.Rows(); ++r) rows.push_back(RowOf(res, r));
  return code;
}

std::string FragmentCondition(FragmentField field, const ShortText& fragment) {
  switch (field) {
    case FragmentField::kName:
      return "position(" + SqlText(MazUpCaseText(fragment)) + " IN " + Folded("nazwa", fragment) + ") > 0";
    case FragmentField::kTelephones: return "position(" + SqlText(fragment) + " IN COALESCE(telefony,'')) > 0";
    case FragmentField::kRegistration: return "position(" + SqlText(fragment) + " IN COALESCE(nr_rej,'')) > 0";
    case FragmentField::kNip: break;
  }
  std::string digits;
  for (char ch : fragment.View())
    if (ch != '-' && ch != ' ') digits += ch;
  return "position(" + SqlText(ShortText(digits)) + " IN translate(COALESCE(nip,''), '- ', '')) > 0";
}

std::string StartCondition(ListOrder order, const ShortText& start) {
  const char* column = order == ListOrder::kTown           ? "COALESCE(miasto,'')"
                       : order == ListOrder::kDocumentTown ? "COALESCE(miejsce_wyst,'')"
                       : order == ListOrder::kMailTown     ? "COALESCE(kor_miasto,'')"
                                                           : "nazwa";
  return "left(" + Folded(column, start) + ", " + std::to_string(start.Length()) + ") = " + SqlText(MazUpCaseText(start));
}

}  // namespace contractors_detail
