// The documents' list on the real server: headers and lines written straight
// into the warehouse's tables, keys played into the list, and its rows, the
// lines' view and the fiscal mark read back from the screen and the table.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "../master/contractors_fixture.h"
#include "documents/doclist.h"
#include "fiscal/fiscalconfig.h"
#include "master/tables.h"
#include "sqltable/pgconn.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

using keys::kEnter;
using keys::kEsc;
constexpr int32_t kWarehouse = 1;
constexpr int kFirstRow = 3;
const KeyPair kF2 = keys::F(2), kF8 = keys::F(8);

struct Doc {
  int16_t kind;
  int32_t number;  // in 2024; below 0 a broken coded number
  int day;         // of March 2024
  const char* mark;
  const char* contractor;
  const char* total;
  char cash;
};

class DocListTest : public ContractorsTest {
 protected:
  void SetUp() override {
    ContractorsTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
  }
  static int32_t Coded(int32_t number) { return number < 0 ? number : ((2024 - 1996) << 24) | number; }
  static DocRef Key(const Doc& d) { return {d.kind, Coded(d.number), ShortText(d.mark)}; }
  static void Add(const Doc& d) {
    ASSERT_TRUE(Psql("INSERT INTO DANE_1_NAGLOWKI (typ_dok,nr_dok,znak_dok,data_dok,nazwa_kontrahenta,suma_dok,"
                     "czy_gotowkowy,zablokowany) VALUES (" +
                     std::to_string(d.kind) + "," + std::to_string(Coded(d.number)) + ",'" + d.mark +
                     "','2024-03-" + std::to_string(d.day) + "','" + d.contractor + "'," + d.total + ",'" +
                     std::string(1, d.cash) + "','N')"));
  }
  static std::string Mark(const Doc& d) {
    return Scalar("SELECT czy_gotowkowy FROM DANE_1_NAGLOWKI WHERE nr_dok=" + std::to_string(Coded(d.number)));
  }
  // The screen's rows as the key that follows finds them.
  static KeyStep Snap(std::vector<std::string>& into, std::vector<KeyPair> keys) {
    return {std::move(keys), [&into] {
              into.clear();
              for (int row = 1; row <= kScreenRows; ++row) into.push_back(RowText(row).Str());
            }};
  }
  static std::string Row(const std::vector<std::string>& screen, int i) { return screen.at(kFirstRow - 1 + i); }
};

// Written out of order: the list must sort them by date, then by the order of writing.
const Doc kDocs[] = {
    {1, 7, 3, "PA", "Kowalski", "12.50", 'T'},   {4, 2, 5, "FV", "Nowak", "1230.00", 'f'},
    {1, 8, 5, "PA", "Wisniewski", "7.49", 'F'}, {6, 3, 1, "PZ", "Hurtownia", "99.99", 'N'},
    {1, -5, 4, "PA", "Zepsuty", "1.00", 'T'},
};

TEST_F(DocListTest, TheListShowsTheNewestFirstWithNumbersAndFiscalMarks) {
  for (const Doc& d : kDocs) Add(d);
  std::vector<std::string> screen;
  Play({Snap(screen, {kEsc})});
  DocumentList(kWarehouse);
  // Day 5 twice (the later written first), then days 4, 3, 1.
  const int order[] = {2, 1, 4, 0, 3};
  for (int i = 0; i < 5; ++i) {
    const Doc& d = kDocs[order[i]];
    SCOPED_TRACE(d.contractor);
    const std::string row = Row(screen, i);
    const std::string number = d.number < 0 ? "0/0" : std::to_string(d.number) + "/2024";
    EXPECT_NE(row.find(" " + number + " "), std::string::npos) << row;
    EXPECT_NE(row.find(d.contractor), std::string::npos) << row;
    EXPECT_NE(row.find(std::string(" ") + d.total + " "), std::string::npos) << row;
    EXPECT_NE(row.find((d.day < 10 ? "0" : "") + std::to_string(d.day) + "-03-2024"), std::string::npos) << row;
    const bool fiscal = d.cash == 'F' || d.cash == 'f';
    EXPECT_EQ(row[row.find_last_not_of(' ')], fiscal ? d.cash : std::string(d.total).back()) << row;
  }
  EXPECT_EQ(Row(screen, 5).find_first_not_of(' '), std::string::npos);
  EXPECT_NE(screen.at(kScreenRows - 1).find("F8-"), std::string::npos) << "the manager sees the mark's key";
}

TEST_F(DocListTest, PagesAndTheSearchByNumberMoveThroughALongList) {
  // 30 documents, number n on its own day: the newest is 30.
  for (int n = 1; n <= 30; ++n)
    ASSERT_TRUE(Psql("INSERT INTO DANE_1_NAGLOWKI (typ_dok,nr_dok,znak_dok,data_dok,suma_dok) VALUES (1," +
                     std::to_string(Coded(n)) + ",'PA',DATE '2024-01-01'+" + std::to_string(n) + ",1)"));
  std::vector<std::string> first, down, end, home, found;
  Play({Snap(first, {keys::kPgDn}), Snap(down, {keys::kHome}), Snap(home, {keys::kEnd}), Snap(end, {kF2}),
        {Typed(ShortText("17"), {kEnter})}, Snap(found, {kEsc})});
  DocumentList(kWarehouse);
  const auto top = [](const std::vector<std::string>& s, int i) {
    const std::string row = Row(s, i);
    return std::stoi(row.substr(row.find("/2024") - 6, 6));
  };
  EXPECT_EQ(top(first, 0), 30);
  EXPECT_EQ(top(first, 20), 10);
  EXPECT_EQ(top(down, 0), 21) << "the last screenful: the 21 oldest";
  EXPECT_EQ(top(down, 20), 1);
  EXPECT_EQ(top(home, 0), 30);
  EXPECT_EQ(top(end, 20), 1);
  EXPECT_EQ(top(found, 0), 17);
  EXPECT_EQ(top(found, 1), 16);
}

TEST_F(DocListTest, EnterShowsTheLinesWithTheirTotals) {
  const Doc doc{1, 4, 2, "PA", "Kowalski", "30.19", 'T'};
  Add(doc);
  struct Line {
    const char* name;
    const char* vat;
    int64_t milli;   // quantity in thousandths
    int64_t netGr, grossGr;  // prices in grosz
  };
  const Line lines[] = {{"Chleb", "5", 1500, 475, 499}, {"Maslo", "23", 255, 609, 749}, {"Usluga", "zw", 1000, 1200, 1200},
                        {"Jablka", "8", 750, 308, 333}};
  int64_t net = 0, gross = 0;  // values each rounded half away to the grosz, then summed
  const auto lineValue = [](int64_t milli, int64_t gr) { return (milli * gr + 500) / 1000; };
  for (std::size_t i = 0; i < std::size(lines); ++i) {
    const Line& l = lines[i];
    ASSERT_TRUE(Psql("INSERT INTO DANE_KAT_TOW_ (nazwa,nazwa_,cena_z_n,cena_z_b,vat,sww,czy_od_pl_vat,nr_wewn) "
                     "VALUES ('" + std::string(l.name) + "','',0,0,'','',''," + std::to_string(i + 1) + ")"));
    // Written in the reverse order of their positions.
    ASSERT_TRUE(Psql("INSERT INTO DANE_1_SPECYFIK (typ_dok,nr_dok,znak_dok,pozycja,nr_towaru,vat,ilosc,c_spr_netto,"
                     "c_spr_brutto) VALUES (1," + std::to_string(Coded(4)) + ",'PA'," +
                     std::to_string(std::size(lines) - i) + "," + std::to_string(i + 1) + ",'" + l.vat + "'," +
                     std::to_string(l.milli / 1000.0) + "," + std::to_string(l.netGr / 100.0) + "," +
                     std::to_string(l.grossGr / 100.0) + ")"));
    net += lineValue(l.milli, l.netGr);
    gross += lineValue(l.milli, l.grossGr);
  }
  std::vector<std::string> view;
  Play({{{kEnter}}, Snap(view, {kEsc}), {{kEsc}}});
  DocumentList(kWarehouse);
  std::string all;
  for (const std::string& row : view) all += row + "\n";
  const auto money = [](int64_t gr) {
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%02lld", static_cast<long long>(gr / 100), static_cast<long long>(gr % 100));
    return std::string(text);
  };
  EXPECT_NE(all.find("netto: " + std::string(12 - money(net).size(), ' ') + money(net)), std::string::npos) << all;
  EXPECT_NE(all.find("brutto: " + std::string(12 - money(gross).size(), ' ') + money(gross)), std::string::npos) << all;
  // Position order: the last written line comes first.
  std::size_t at = 0;
  for (std::size_t i = std::size(lines); i-- > 0;) {
    const std::size_t next = all.find(lines[i].name, at);
    EXPECT_NE(next, std::string::npos) << lines[i].name << "\n" << all;
    at = next;
  }
}

struct MarkCase {
  const char* name;
  char before;
  bool maxRights;
  const char* after;
};

TEST_F(DocListTest, F8RemovesTheFiscalMarkForAUserWithMaximumRightsOnly) {
  const MarkCase cases[] = {
      {"cash document", 'F', true, "T"},
      {"other document", 'f', true, "N"},
      {"never printed", 'T', true, "T"},
      {"without maximum rights", 'F', false, "F"},
  };
  for (const MarkCase& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_TRUE(Psql("DELETE FROM DANE_1_NAGLOWKI"));
    const Doc doc{1, 1, 1, "PA", "K", "1.00", c.before};
    Add(doc);
    UserRecord user = CurrentUser();
    user.maxRights = c.maxRights ? 1 : 0;
    SetCurrentUser(user);
    std::vector<std::string> after;
    Play({{{kF8}}, Snap(after, {kEsc})});
    DocumentList(kWarehouse);
    EXPECT_EQ(Mark(doc), c.after);
    EXPECT_FALSE(Shown("Nie znaleziono dokumentu do zmiany !"_mz));
  }
}

TEST_F(DocListTest, AGoneDocumentIsToldAndNothingIsWritten) {
  struct GoneCase {
    const char* name;
    KeyPair key;
    ShortText shown;
  };
  const GoneCase cases[] = {
      {"the mark's removal", kF8, "BŁĄD !@Nie znaleziono dokumentu do zmiany !"_mz},
      {"the lines' view", kEnter, "Dokument zniknął !"_mz},
  };
  const Doc doc{1, 3, 1, "PA", "K", "1.00", 'F'};
  for (const GoneCase& c : cases) {
    SCOPED_TRACE(c.name);
    Add(doc);
    // Another operator deletes the row while this list shows it.
    Play({{{c.key}, [] { ASSERT_TRUE(Psql("DELETE FROM DANE_1_NAGLOWKI")); }}, {{kEnter}}, {{kEsc}}});
    DocumentList(kWarehouse);
    EXPECT_TRUE(Shown(c.shown));
    EXPECT_EQ(Scalar("SELECT count(*) FROM DANE_1_NAGLOWKI"), "0");
  }
  EXPECT_EQ(RemoveFiscalMark(kWarehouse, Key(doc)), FiscalMarkRemoval::kGone);
}

// Another operator's process holds the row while it marks the document; the
// later fiscalisation waits for the row, reads the mark again and is refused
// before it opens the printer's line.
TEST_F(DocListTest, TheLaterFiscalisationWaitsForTheRowAndFindsTheMark) {
  const Doc doc{1, 6, 1, "PA", "K", "1.00", 'T'};
  Add(doc);
  ::setenv("KLOTE_SERIAL_PREFIX", "/nonexistent/tty", 1);
  FiscalConfig config;
  config.printerType = kFiscalPosnet;
  config.port = 1;
  config.documentFlags[0] = 1;
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t other = ::fork();
  if (other == 0) {
    ConnectChild();
    if (PGRunQueryNoTup("BEGIN") || PGRunQueryNoTup("UPDATE DANE_1_NAGLOWKI SET czy_gotowkowy='F'")) _exit(4);
    (void)::write(ready[1], "x", 1);
    // Commits once the list's process is seen waiting for a lock (or after 30 s, when it never waits).
    const std::string waiting = "SELECT 1 FROM pg_stat_activity WHERE wait_event_type='Lock' AND datname=current_database()";
    for (int i = 0; i < 3000; ++i, ::usleep(10000)) {
      PGResult r;
      if (PGRunQueryWithTup(waiting, r) == 0 && r.Rows() > 0) break;
    }
    _exit(PGRunQueryNoTup("COMMIT") ? 5 : 0);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  Play({{{kEnter}}});
  EXPECT_FALSE(FiscaliseListedDocument(config, kWarehouse, Key(doc)));
  EXPECT_EQ(ExitStatus(other), 0);
  EXPECT_TRUE(Shown("Dokument jest już zapisany w drukarce fiskalnej."_mz));
  EXPECT_EQ(Mark(doc), "F");
  ::unsetenv("KLOTE_SERIAL_PREFIX");
  ::close(ready[0]);
  ::close(ready[1]);
}

}  // namespace
