// demo-firm: fills the firm's database in the current directory (the firm's
// directory, conn_parm.cfg under $HOME as klote reads it) with the demo
// firm, through the program's own functions: the users with two operators,
// two warehouses with their tables, the VAT groups, twenty customers and
// twenty suppliers, 200 items with prices and stock in both warehouses, and
// the fiscal settings pointing at the printers of the fiscal print server.
//
// Every step looks before it adds, so a second run finds everything and
// changes nothing. Boxes of the functions it calls are drawn into a buffer,
// not the terminal; a database failure ends the run with the screen of the
// failure on standard error and exit status 1.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/codepage.h"
#include "base/paths.h"
#include "base/textfiles.h"
#include "master/contractors.h"
#include "master/dictionaries.h"
#include "master/firmdb.h"
#include "master/items.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tools/demo-firm/demo_data.h"
#include "tui/screen.h"
#include "tui/term.h"
#include "users/users.h"

namespace {

// The fiscal print server's printers of the demo (demo/fisksrv.cfg).
constexpr int kServerElzab = 1;
constexpr int kServerPosnet = 2;

std::string gScreenBytes;  // where the boxes go
bool gFinished = false;

// Mazovia text as UTF-8 for the messages of this tool.
std::string ToUtf8(const ShortText& maz) {
  static const char* const kLetters[] = {"ą", "ć", "ę", "ł", "ń", "ó", "ś", "ź", "ż",
                                         "Ą", "Ć", "Ę", "Ł", "Ń", "Ó", "Ś", "Ź", "Ż"};
  std::string out;
  for (char c : maz.View()) {
    const char* letter = nullptr;
    for (const char* l : kLetters)
      if (Utf8ToMaz(ShortText(l)).At(1) == c) letter = l;
    if (letter) out += letter;
    else out += c;
  }
  return out;
}

// A failure that CheckDBError ended: the screen it left, and status 1.
void ReportUnfinished() {
  if (gFinished) return;
  std::fprintf(stderr, "demo-firm: stopped on a database failure; the screen was:\n");
  for (int row = 1; row <= kScreenRows; ++row) {
    const std::string text = ToUtf8(RowText(row));
    if (text.find_first_not_of(' ') != std::string::npos) std::fprintf(stderr, "%s\n", text.c_str());
  }
  _exit(1);
}

[[noreturn]] void Fail(const std::string& what) {
  gFinished = true;
  std::fprintf(stderr, "demo-firm: %s\n", what.c_str());
  std::exit(1);
}

// Counts of one step, printed as one line.
struct Tally {
  const char* what;
  int added = 0;
  int present = 0;
  void Print() const { std::printf("demo-firm: %-22s %3d added, %3d present\n", what, added, present); }
};

void EnsureVatGroups() {
  CheckDBError(DictionaryEnsure(ShortText(kVatDictionary)));
  Tally tally{"VAT groups"};
  for (const DemoVatGroup& g : DemoVatGroups()) {
    const DictionaryOutcome outcome = VatGroupAdd(g.group, g.description);
    if (outcome == DictionaryOutcome::kDone) ++tally.added;
    else if (outcome == DictionaryOutcome::kDuplicate) ++tally.present;
    else Fail("the VAT group " + ToUtf8(g.group) + " was refused");
  }
  tally.Print();
}

void EnsureDocumentKinds() {
  Tally tally{"document kinds"};
  for (const DocumentKindRow& row : DemoDocumentKinds()) ++(DocumentKindEnsure(row) ? tally.added : tally.present);
  tally.Print();
}

// A warehouse found without its tables (a run stopped between the row and
// the tables) gets them now.
void EnsureWarehouseTables(int32_t number) {
  bool exists = false;
  CheckDBError(PGTblExist(WarehouseTablePath(number, "stany_mg"), exists));
  if (!exists) CreateWarehouseTables(false, number);
}

void EnsureContractors(ContractorKind kind, std::vector<Contractor> rows, const char* what) {
  Tally tally{what};
  for (Contractor& c : rows) {
    Contractor stored;
    bool found = false;
    CheckDBError(ContractorFind(kind, c.number, stored, found));
    if (found) {
      ++tally.present;
      if (kind == ContractorKind::kWarehouse) EnsureWarehouseTables(c.number);
      continue;
    }
    if (ContractorAdd(kind, c, NumberRange{}) != ContractorOutcome::kDone)
      Fail("the row " + std::to_string(c.number) + " of " + what + " was refused");
    ++tally.added;
  }
  tally.Print();
}

// The stock row of an item in a warehouse unless it has one.
bool EnsureStock(int32_t warehouse, int32_t number, Real quantity, const ItemData& item) {
  StockRow row;
  bool found = false;
  CheckDBError(StockRead(warehouse, number, row, found));
  if (found) return false;
  row = StockRow{number, quantity, 0, item.saleNet, item.saleGross, 0, ShortText()};
  ShortText refusal;
  CheckDBError(StockSet(warehouse, row, refusal));
  if (!refusal.Empty()) Fail("stock of item " + std::to_string(number) + ": " + ToUtf8(refusal));
  return true;
}

void EnsureItems() {
  Tally items{"items"}, stock{"stock rows"};
  for (DemoItem& demo : DemoItems()) {
    ItemData stored;
    bool found = false;
    CheckDBError(ItemFindByCode(demo.data.code, stored, found));
    if (found) {
      ++items.present;
    } else {
      ShortText refusal;
      StockRow opening;
      opening.quantity = demo.stock[0];
      CheckDBError(ItemAdd(demo.data, ItemRules{}, kDemoWarehouses[0], opening, refusal));
      if (!refusal.Empty()) Fail("item " + ToUtf8(demo.data.code) + ": " + ToUtf8(refusal));
      stored = demo.data;
      ++items.added;
      ++stock.added;
    }
    for (int w = 0; w < 2; ++w) {
      if (!found && w == 0) continue;  // ItemAdd wrote it
      if (EnsureStock(kDemoWarehouses[w], stored.number, demo.stock[w], stored)) ++stock.added;
      else ++stock.present;
    }
  }
  items.Print();
  stock.Print();
}

// Writes the fiscal settings into the directory ("" the firm's, else ending
// in "\") unless it has them: a setting changed since is kept.
bool EnsureFiscalConfig(const ShortText& directory, int serverPrinter, bool replace = false) {
  if (!replace && FileExists(directory + "konffisk.txt")) return false;
  if (WriteFiscalConfig(directory, DemoFiscalConfig(serverPrinter)) != 0)
    Fail("cannot write " + ToUtf8(directory) + "konffisk.txt");
  return true;
}

void EnsureManagerFiles() {
  std::error_code ignored;  // a directory that cannot be made shows when the file is written
  std::filesystem::create_directories(PathToUnix(UserDirectory(kSystemManager)).Str(), ignored);
  Tally tally{"fiscal settings"};
  for (const ShortText& dir : {ShortText(), UserDirectory(kSystemManager) + "\\"})
    ++(EnsureFiscalConfig(dir, kServerPosnet) ? tally.added : tally.present);
  tally.Print();
}

// The operators, found by name; a new one gets his directory with user 0's
// settings, the seller's fiscal printer being the ELZAB one.
void EnsureOperators() {
  std::vector<UserRecord> users;
  CheckDBError(UsersRead(users));
  Tally tally{"operators"};
  int serverPrinter = kServerElzab;
  for (UserRecord& op : DemoOperators()) {
    const int printer = serverPrinter;
    serverPrinter = kServerPosnet;
    bool present = false;
    for (const UserRecord& u : users) present |= u.firstName == op.firstName && u.surname == op.surname;
    if (present) {
      ++tally.present;
      continue;
    }
    if (UserAppend(op) != UserAppendOutcome::kDone) Fail("the operator " + ToUtf8(UserName(op)) + " was refused");
    (void)EnsureFiscalConfig(UserDirectory(op.number) + "\\", printer, true);
    ++tally.added;
  }
  if (tally.added > 0 && !UsersWriteDbfCopy()) Fail("cannot write the copy of the users' list");
  tally.Print();
}

}  // namespace

int main() {
  TermOutputToBuffer(&gScreenBytes);
  TermInputFromFd(-1);  // a box that waits gets Esc at once
  std::atexit(ReportUnfinished);
  OpenFirmDatabase();
  CheckDBError(ContractorTablesEnsure());
  EnsureVatGroups();
  EnsureContractors(ContractorKind::kWarehouse, DemoWarehouses(), "warehouses");
  EnsureContractors(ContractorKind::kCustomer, DemoContractors(ContractorKind::kCustomer), "customers");
  EnsureContractors(ContractorKind::kSupplier, DemoContractors(ContractorKind::kSupplier), "suppliers");
  EnsureItems();
  EnsureDocumentKinds();
  EnsureManagerFiles();
  EnsureOperators();
  PGShutdownTables(2);
  PGDisconnect();
  gFinished = true;
  return 0;
}
