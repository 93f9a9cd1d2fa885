// The cash analyses: reading the cash days and the deposit marks with SQL
// over each warehouse's tables, and the printed layouts.
#include "reports/cashanalysis.h"

#include <cstdlib>
#include <initializer_list>
#include <map>
#include <utility>

#include "base/codepage.h"
#include "base/numbers.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/docnumber.h"
#include "master/tables.h"
#include "reports/reportlines.h"
#include "reports/sqlsteps.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgconn.h"
#include "sqltable/pgtable.h"

namespace {

constexpr ShortText kCashForm = " gotówką"_mz;
constexpr int kWidth = 62;

std::string SerialOf(const char* column) { return std::string("COALESCE(") + column + "-DATE '1899-12-30',0)"; }
int32_t IntAt(const PGResult& r, int row, int col) {
  return static_cast<int32_t>(std::strtol(std::string(r.Value(row, col)).c_str(), nullptr, 10));
}
Real RealAt(const PGResult& r, int row, int col) { return std::strtold(std::string(r.Value(row, col)).c_str(), nullptr); }
Real Grosz(Real v) { return RoundHalfAway(v * 100) / 100; }
std::string Table(int32_t warehouse, const char* name) { return SqlName(WarehouseTablePath(warehouse, name)); }

// A warehouse of the list whose tables were never made has nothing to count:
// it is passed over, not a failing statement.
bool HasTables(int32_t warehouse, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    bool exists = false;
    if (PGTblExist(WarehouseTablePath(warehouse, name), exists) != 0 || !exists) return false;
  }
  return true;
}

// Day, income and expense of one warehouse: payments by their kind's mark,
// then the retail sales paid in cash.
std::string CashDaysSql(int32_t warehouse, int32_t from, int32_t to) {
  const std::string period = " BETWEEN " + IsoDate(from) + " AND " + IsoDate(to);
  const std::string cashForm = "'" + PGEscapeStr(MazToDb(kCashForm).View()) + "'";
  return "SELECT day,SUM(inc),SUM(exp) FROM (SELECT " + SerialOf("k.data_dok") +
         " AS day,CASE WHEN COALESCE(p.czy_przychod,'T') IN ('N','n') THEN 0 ELSE k.suma_dok END AS inc,"
         "CASE WHEN COALESCE(p.czy_przychod,'T') IN ('N','n') THEN k.suma_dok ELSE 0 END AS exp FROM " +
         Table(warehouse, "kasa____") + " k LEFT JOIN " + SqlName(ShortText("dane\\dok_plat")) +
         " p ON p.typ_dok=k.typ_dok WHERE k.data_dok" + period + " UNION ALL SELECT " + SerialOf("n.data_dok") +
         ",n.suma_dok,0 FROM " + Table(warehouse, "naglowki") + " n WHERE n.typ_dok=1 AND n.sposob_rozlicz=" +
         cashForm + " AND n.data_dok" + period + ") c GROUP BY day ORDER BY day";
}

std::string Money(Real v) { return Str(FormatMoneyRounded(15, 2, v)); }
std::string Right(const ShortText& head) { return Str(PadLeft(head, ' ', 15)); }
std::string Rule() { return std::string(kWidth, '-'); }

std::vector<std::string> CashHead(const CashParams& p) {
  std::vector<std::string> head{Str(kCashAnalysesTitle)};
  if (!p.symbol.Empty()) head.push_back(Str("Raport kasowy nr: "_mz + p.symbol));
  head.push_back("Okres: od " + DisplayDate(p.from) + " do " + DisplayDate(p.to));
  head.push_back(Rule());
  head.push_back(Cell("Data", 14) + Right("Przychód"_mz) + " " + Right("Rozchód"_mz) + " " + Right("Saldo dnia"));
  head.push_back(Rule());
  return head;
}

std::string DayLine(const CashDay& d) {
  return Cell(ShortText(DisplayDate(d.date)), 14) + Money(d.income) + " " + Money(d.expense) + " " +
         Money(d.income - d.expense);
}

void TotalLines(const char* label, const CashTotals& t, std::vector<std::string>& body) {
  body.push_back(Rule());
  body.push_back(Cell(ShortText(label), 14) + Money(t.income) + " " + Money(t.expense) + " " +
                 Money(t.income - t.expense));
}

std::string Amount(const ShortText& label, Real v) { return Cell(label, 46) + Money(v); }

}  // namespace

std::vector<CashDay> ReadCashDays(const CashParams& p) {
  std::map<std::pair<int32_t, int32_t>, CashDay> days;
  for (int32_t warehouse : p.warehouses) {
    if (!HasTables(warehouse, {"kasa____", "naglowki"})) continue;
    PGResult r;
    CheckDBError(PGRunQueryWithTup(CashDaysSql(warehouse, p.from, p.to), r));
    const int32_t group = p.splitByWarehouse ? warehouse : 0;
    for (int i = 0; i < r.Rows(); ++i) {
      CashDay& d = days[{group, IntAt(r, i, 0)}];
      d.warehouse = group;
      d.date = IntAt(r, i, 0);
      d.income += RealAt(r, i, 1);
      d.expense += RealAt(r, i, 2);
    }
  }
  std::vector<CashDay> out;
  for (auto& [key, d] : days) out.push_back({d.warehouse, d.date, Grosz(d.income), Grosz(d.expense)});
  return out;
}

CashTotals SumCashDays(const std::vector<CashDay>& days, Real opening) {
  CashTotals t;
  for (const CashDay& d : days) {
    t.income += d.income;
    t.expense += d.expense;
  }
  t.income = Grosz(t.income);
  t.expense = Grosz(t.expense);
  t.closing = Grosz(opening + t.income - t.expense);
  return t;
}

std::string FormatCashReport(const CashParams& p, const std::vector<CashDay>& days, int linesPerPage) {
  std::vector<std::string> body;
  std::vector<CashDay> section;
  auto closeSection = [&](int32_t warehouse) {
    if (!p.splitByWarehouse) return;
    body.push_back("Magazyn nr " + std::to_string(warehouse));
    for (const CashDay& d : section) body.push_back(DayLine(d));
    TotalLines("Razem mag.", SumCashDays(section, 0), body);
    body.push_back("");
    section.clear();
  };
  for (std::size_t i = 0; i < days.size(); ++i) {
    if (!p.splitByWarehouse) body.push_back(DayLine(days[i]));
    section.push_back(days[i]);
    if (i + 1 == days.size() || days[i + 1].warehouse != days[i].warehouse) closeSection(days[i].warehouse);
  }
  const CashTotals t = SumCashDays(days, p.opening);
  TotalLines("Razem", t, body);
  if (!p.symbol.Empty()) {
    body.push_back(Amount("Stan początkowy kasy:"_mz, p.opening));
    body.push_back(Amount("Przychód:"_mz, t.income));
    body.push_back(Amount("Rozchód:"_mz, t.expense));
    body.push_back(Amount("Stan końcowy kasy:"_mz, t.closing));
  }
  return Paginate(CashHead(p), body, linesPerPage);
}

// --- Deposit marks ---

DepositFault DepositFaultOf(bool headerMarked, int lines, int onDeposit) {
  if (headerMarked) {
    if (lines == 0) return DepositFault::kHeaderWithoutLines;
    if (onDeposit == 0) return DepositFault::kNoLineMarked;
    return onDeposit < lines ? DepositFault::kSomeLinesUnmarked : DepositFault::kNone;
  }
  return onDeposit > 0 ? DepositFault::kHeaderUnmarked : DepositFault::kNone;
}

ShortText DepositFaultText(DepositFault fault) {
  switch (fault) {
    case DepositFault::kHeaderWithoutLines: return "d.depozyt, specyfik - nie dep."_mz;
    case DepositFault::kNoLineMarked: return "w nag. jest oznaczenie dep., brak jakiegokolwiek ozn.dep.w calej specyfik."_mz;
    case DepositFault::kSomeLinesUnmarked: return "brak niekt.oznaczen dep.w specyfik."_mz;
    case DepositFault::kHeaderUnmarked: return "brak oznaczenia dep.w nagl. i specyfik."_mz;
    case DepositFault::kNone: break;
  }
  return ShortText();
}

std::vector<DepositFinding> CheckDepositMarks() {
  PGResult stores;
  CheckDBError(PGRunQueryWithTup("SELECT numer FROM " + SqlName(ShortText("dane\\magazyny")) + " ORDER BY numer",
                                 stores));
  std::vector<DepositFinding> out;
  for (int w = 0; w < stores.Rows(); ++w) {
    const int32_t warehouse = IntAt(stores, w, 0);
    if (!HasTables(warehouse, {"naglowki", "specyfik"})) continue;
    PGResult r;
    CheckDBError(PGRunQueryWithTup(
        "SELECT n.typ_dok,n.nr_dok,n.znak_dok," + SerialOf("n.data_dok") +
            ",n.czy_depozyt IN ('T','t'),COUNT(s.pozycja),COUNT(s.pozycja) FILTER (WHERE s.ilosc_w_depozycie<>0) FROM " +
            Table(warehouse, "naglowki") + " n LEFT JOIN " + Table(warehouse, "specyfik") +
            " s ON s.typ_dok=n.typ_dok AND s.nr_dok=n.nr_dok AND s.znak_dok=n.znak_dok "
            "GROUP BY n.typ_dok,n.nr_dok,n.znak_dok,n.data_dok,n.czy_depozyt ORDER BY 4,1,2,3",
        r));
    for (int i = 0; i < r.Rows(); ++i) {
      const DepositFault fault = DepositFaultOf(r.Value(i, 4) == "t", IntAt(r, i, 5), IntAt(r, i, 6));
      if (fault == DepositFault::kNone) continue;
      out.push_back({warehouse, static_cast<int16_t>(IntAt(r, i, 0)), IntAt(r, i, 1), DbToMaz(r.Text(i, 2)),
                     IntAt(r, i, 3), fault});
    }
  }
  return out;
}

std::string FormatDepositReport(const std::vector<DepositFinding>& findings, int linesPerPage) {
  const std::vector<std::string> head{Str("Sprawdzenie oznaczeń depozytów"_mz), std::string(100, '-'),
                                      Str("Mag. Typ Numer dok.   Data       Niezgodność"_mz), std::string(100, '-')};
  std::vector<std::string> body;
  for (const DepositFinding& f : findings)
    body.push_back(Str(IntText(f.warehouse, 4)) + " " + Str(IntText(f.kind, 3)) + " " +
                   Cell(DocNumberText(f.coded) + "/" + f.mark, 12) + " " + DisplayDate(f.date) + " " +
                   Str(DepositFaultText(f.fault)));
  return Paginate(head, body, linesPerPage);
}
