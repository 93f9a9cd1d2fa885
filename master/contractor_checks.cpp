// The checks before a contractor is written: rows similar to a new one in
// the compared fields, and the warehouse that only one contractor may hold.
#include <algorithm>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/text.h"
#include "master/contractors.h"
#include "master/contractors_detail.h"
#include "sqltable/dbapp.h"

namespace {

// The text as compared: capitals, without blanks, dashes, dots and commas,
// so that "526-025-02-74" and "5260250274" are one NIP.
std::string Normalised(const ShortText& text) {
  const ShortText capitals = MazUpCaseText(text);
  std::string out;
  for (char ch : capitals.View())
    if (ch != ' ' && ch != '-' && ch != '.' && ch != ',') out += ch;
  return out;
}

// The sorted pairs of neighbouring bytes of a text.
std::vector<uint16_t> Pairs(const std::string& s) {
  std::vector<uint16_t> pairs;
  for (std::size_t i = 0; i + 1 < s.size(); ++i)
    pairs.push_back(static_cast<uint16_t>(static_cast<unsigned char>(s[i]) << 8 | static_cast<unsigned char>(s[i + 1])));
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}

// The fields compared with a new row, and their SQL names.
struct CheckedField {
  KontrahentCol::Column column;
  const char* sql;
};
constexpr CheckedField kCheckedFields[] = {{KontrahentCol::nazwa, "nazwa"},
                                           {KontrahentCol::nip, "nip"},
                                           {KontrahentCol::regon, "regon"},
                                           {KontrahentCol::miasto, "miasto"},
                                           {KontrahentCol::ulica, "ulica"}};

int PairsPercent(const std::vector<uint16_t>& a, const std::vector<uint16_t>& b) {
  std::size_t common = 0;
  for (std::size_t i = 0, j = 0; i < a.size() && j < b.size();) {
    if (a[i] == b[j]) ++common, ++i, ++j;
    else if (a[i] < b[j]) ++i;
    else ++j;
  }
  return static_cast<int>(200 * common / (a.size() + b.size()));
}

}  // namespace

int SimilarityPercent(const ShortText& a, const ShortText& b) {
  const std::string x = Normalised(a), y = Normalised(b);
  if (x.empty() || y.empty()) return 0;
  if (x == y) return 100;
  if (x.size() < 2 || y.size() < 2) return 0;
  return PairsPercent(Pairs(x), Pairs(y));
}

int16_t ContractorSimilarRows(ContractorKind kind, const Contractor& c, int percent, std::vector<RepeatMatch>& matches) {
  matches.clear();
  percent = std::clamp(percent, 1, 100);
  std::string columns;
  for (const CheckedField& field : kCheckedFields)
    columns += std::string(columns.empty() ? "" : ",") + "COALESCE(" + field.sql + ",'')";
  PGResult res;
  if (const int16_t code =
          PGRunQueryWithTup("SELECT " + columns + " FROM " + PGSqlName(ContractorTablePath(kind)).Str(), res))
    return code;
  for (std::size_t f = 0; f < std::size(kCheckedFields); ++f) {
    const KontrahentCol::Column col = kCheckedFields[f].column;
    if (Normalised(c[col]).empty()) continue;
    for (int r = 0; r < res.Rows(); ++r) {
      const ShortText value = DbToMaz(ShortText(res.Value(r, static_cast<int>(f))));
      if (SimilarityPercent(c[col], value) >= percent) {
        matches.push_back({col, value});
        break;
      }
    }
  }
  return 0;
}

int16_t WarehouseHolder(ContractorKind kind, int32_t contractor, int32_t warehouse, int32_t& other) {
  other = 0;
  if (kind == ContractorKind::kWarehouse) return 0;
  PGResult res;
  const int16_t code = PGRunQueryWithTup("SELECT nr_kon FROM " + PGSqlName(ContractorLinkPath(kind)).Str() +
                                             " WHERE nr_mag = " + std::to_string(warehouse) +
                                             " AND nr_kon <> " + std::to_string(contractor) + " ORDER BY nr_kon LIMIT 1",
                                         res);
  if (code == 0 && res.Rows() > 0) other = static_cast<int32_t>(std::stol(std::string(res.Value(0, 0))));
  return code;
}

int16_t ContractorLinkWarehouse(ContractorKind kind, int32_t contractor, int32_t warehouse) {
  if (kind == ContractorKind::kWarehouse) return 0;
  const std::string table = PGSqlName(ContractorLinkPath(kind)).Str();
  const std::string where = " WHERE nr_kon = " + std::to_string(contractor) + " AND nr_mag = " + std::to_string(warehouse);
  return PGRunQueryNoTup("INSERT INTO " + table + " (nr_kon, nr_mag) SELECT " + std::to_string(contractor) + ", " +
                         std::to_string(warehouse) + " WHERE NOT EXISTS (SELECT 1 FROM " + table + where + ")");
}
