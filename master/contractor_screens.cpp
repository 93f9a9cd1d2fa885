// The list of a catalogue and its keys. The list pages through the table
// layer (row n of the order through the row cache), so a catalogue of any
// size shows its first screen after one count and one batch of rows.
#include "master/contractor_screens.h"

#include <string>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/text.h"
#include "master/contractors_detail.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

using contractors_detail::BoxKeeper;
using contractors_detail::CatalogueTable;
using contractors_detail::Checked;

namespace {

constexpr int kVisibleRows = 18;
constexpr unsigned char kBarAttr = 0x30;
constexpr unsigned char kKeyIns = 252, kKeyDel = 253, kCtrlR = 18;
constexpr unsigned char kUp = 242, kDown = 250, kHome = 241, kEnd = 249, kPgUp = 243, kPgDn = 251;

const ShortText kColumns = "             nazwa             ¥   numer    ¥        miasto       "_mz;

ShortText Title(ContractorKind kind, ChoosePurpose purpose) {
  switch (purpose) {
    case ChoosePurpose::kSaleReport: return "Wybierz jednostkę, z której przyjmujesz relację sprzedaży:"_mz;
    case ChoosePurpose::kTransferTo: return "Wybierz magazyn, do którego przesuwasz towar:"_mz;
    case ChoosePurpose::kTransferFrom: return "Wybierz magazyn, z którego przesuwasz towar:"_mz;
    case ChoosePurpose::kCurrentWarehouse: return "Wybierz magazyn, na którego konto wprowadzać będziesz dane:"_mz;
    case ChoosePurpose::kAny: break;
  }
  return "Wybierz żądan"_mz + "ego " + ContractorKindGenitive(kind) + ":";
}

ShortText EmptyListText(ContractorKind kind) {
  const ShortText what = kind == ContractorKind::kWarehouse  ? "y magazyn"_mz
                         : kind == ContractorKind::kSupplier ? "ego dostawcę"_mz
                                                             : "ego odbiorcę"_mz;
  return "Lista jest pusta. Wybieranie czegoś z pustej listy nie ma sensu.@"_mz + "Aby dopisać now"_mz + what +
         ", użyj klawisza ƒInsert⌐."_mz + "@Aby zrezygnować z wybierania, wciśnij klawisz ƒEsc⌐."_mz;
}

ShortText RowText(const Contractor& c) {
  return " " + PadRight(c[KontrahentCol::nazwa], " ", 30) + " ¥ "_mz +
         PadLeft(ShortText(std::to_string(c.number)), ' ', 10) + " ¥ "_mz + PadRight(c[KontrahentCol::miasto], " ", 20);
}

// The list's place: the bar's row and the first row shown, from 1.
struct ListPlace {
  int32_t bar = 1, top = 1;
  int indexHandle = 0;  // 0 name order, KontrahentCol::numer number order
};

bool MoveBar(unsigned char code, int32_t count, int32_t& bar) {
  switch (code) {
    case kUp: bar -= 1; break;
    case kDown: bar += 1; break;
    case kHome: bar = 1; break;
    case kEnd: bar = count; break;
    case kPgUp: bar -= kVisibleRows; break;
    case kPgDn: bar += kVisibleRows; break;
    default: return false;
  }
  if (bar > count) bar = count;
  if (bar < 1) bar = 1;
  return true;
}

// Draws the rows of the window of the list; the number under the bar in barNumber.
void DrawRows(CatalogueTable& t, int32_t count, ListPlace& at, int32_t& barNumber) {
  if (at.bar < at.top) at.top = at.bar;
  if (at.bar >= at.top + kVisibleRows) at.top = at.bar - kVisibleRows + 1;
  barNumber = 0;
  std::vector<Contractor> page;
  contractors_detail::ReadPage(t, at.top, count < at.top + kVisibleRows ? count - at.top + 1 : kVisibleRows, page);
  for (int i = 0; i < kVisibleRows; ++i) {
    const int32_t n = at.top + i;
    ShortText row = PadRight("", " ", kColumns.Length());
    if (i < static_cast<int>(page.size())) {
      row = RowText(page[static_cast<std::size_t>(i)]);
      if (n == at.bar) barNumber = page[static_cast<std::size_t>(i)].number;
    }
    TextAttr(n == at.bar ? kBarAttr : kAttrBoxBody);
    WriteAt(2, 4 + i, row);
  }
  GotoXY(2, 4 + at.bar - at.top);
}

// The text searched for; false on Esc.
bool AskFragment(ShortText& fragment) {
  BoxKeeper keeper;
  MessageBox("Wprowadź szukany fragment (ciąg znaków) z"_mz + " nazwy:             @"_mz + PadRight("", " ", 30), 2);
  GotoXY(2, 3);
  TextAttr(kAttrReverse);
  unsigned char key = 0;
  fragment = ShortText();
  EditField(1, 1, ' ', 30, fragment, key);
  fragment = TrimRightAll(fragment, ' ');
  return key != 27 && !fragment.Empty();
}

// Ctrl+R: "Jest ! Czy szukać dalej ?" moves on to the next, "Nie znalazłem !" ends.
void SearchName(CatalogueTable& t, ListPlace& at) {
  ShortText fragment;
  if (!AskFragment(fragment)) return;
  for (int32_t from = at.bar - 1;;) {  // the row under the bar is the first one looked at
    const int32_t found = contractors_detail::FindNameFragment(t, fragment, from);
    if (found == 0) {
      MessageBox("Nie znalazłem !"_mz, 0);
      return;
    }
    at.bar = found;
    int32_t number = 0;
    int32_t count = 0;
    Checked(PGTblNRecs(t.tbl(), count));
    DrawRows(t, count, at, number);
    if (!MessageBox("Jest ! Czy szukać dalej ?"_mz, 1)) return;
    MessageBox("No, to szukam dalej..."_mz, 300);
    from = found;
  }
}

// What the operator did in the list.
struct ListEnd {
  unsigned char code = 27;
  int32_t number = 0;
};

ListEnd Browse(ContractorKind kind, const ShortText& title, bool choosing, ListPlace& at) {
  BoxKeeper keeper;
  CatalogueTable t(kind, at.indexHandle);
  Checked(t.code());
  int32_t count = 0;
  Checked(PGTblNRecs(t.tbl(), count));
  if (count == 0 && choosing) {
    MessageBox(EmptyListText(kind), 0);
    return ListEnd{};
  }
  ShortText text = PadRight(title, " ", kColumns.Length()) + "@" + kColumns;
  for (int i = 0; i < kVisibleRows; ++i) text += '@';
  MessageBox(text, 2);
  for (;;) {
    int32_t number = 0;
    DrawRows(t, count, at, number);
    const KeyPair key = ReadKeyUpper();
    const unsigned char code = KeyCodeOf(key);
    if (key == keys::kShiftTab) {
      at.indexHandle = at.indexHandle == 0 ? KontrahentCol::numer : 0;
      return ListEnd{0, 0};
    }
    if (MoveBar(code, count, at.bar)) continue;
    if (code == kCtrlR) {
      SearchName(t, at);
      continue;
    }
    if (code == 27 || code == kKeyIns || ((code == 13 || code == kKeyDel) && number != 0)) return ListEnd{code, number};
    Beep(1000);
  }
}

int32_t RunList(ContractorKind kind, const ShortText& title, bool choosing) {
  ListPlace at;
  for (;;) {
    const ListEnd end = Browse(kind, title, choosing, at);
    switch (end.code) {
      case 0: break;  // the order changed: shown again
      case 27: return 0;
      case kKeyIns: (void)AddContractor(kind); break;
      case kKeyDel: (void)DeleteContractor(kind, end.number); break;
      default:
        if (choosing) return end.number;
        (void)ChangeContractor(kind, end.number);
    }
  }
}

}  // namespace

namespace contractors_detail {

void ReadPage(CatalogueTable& t, int32_t top, int count, std::vector<Contractor>& rows) {
  rows.clear();
  for (int i = 0; i < count; ++i) {
    if (Checked(PGRecGoto_c(t.tbl(), top + i), kPGArgRange) != 0) return;
    Contractor c;
    Checked(t.Read(c));
    rows.push_back(c);
  }
}

// The rows after row `after` of the order: the order's columns compared as
// one row value with the values of that row, so that the server walks the
// index from there and stops at the first match.
std::string AfterCondition(CatalogueTable& t, const PGTable& table, int32_t after) {
  if (after < 1 || Checked(PGRecGoto_c(t.tbl(), after), kPGArgRange) != 0) return std::string();
  Checked(PGRecGet(t.tbl(), t.rec()));
  const PGRecordBuffer* buf = PGRecordAt(t.rec());
  std::string columns, values;
  for (int f : PGOrderColumns(table)) {
    const char* comma = columns.empty() ? "" : ", ";
    columns += comma + table.fields[static_cast<std::size_t>(f)].name.Str();
    values += comma + PGValueLiteral(table.fields[static_cast<std::size_t>(f)].kind,
                                     buf->fields[static_cast<std::size_t>(f)].value);
  }
  return " AND (" + columns + ") > (" + values + ")";
}

int32_t FindNameFragment(CatalogueTable& t, const ShortText& fragment, int32_t after) {
  const PGTable* table = PGTableAt(t.tbl());
  if (!table) return 0;
  // Letters are compared as capitals, folded here: the server's own upper()
  // leaves Polish letters alone under a byte-order collation.
  const std::string needle = PGEscapeStr(MazToDb(MazUpCaseText(fragment)).View());
  const std::string name = "upper(translate(nazwa, '" + MazToDb("ąćęłńóśźż"_mz).Str() + "', '" +
                           MazToDb("ĄĆĘŁŃÓŚŹŻ"_mz).Str() + "'))";
  PGResult res;
  Checked(PGRunQueryWithTup("SELECT * FROM " + t.SqlName() + " WHERE position('" + needle + "' IN " + name +
                                ") > 0" + AfterCondition(t, *table, after) + PGOrderText(*table, false) + " LIMIT 1",
                            res));
  if (res.Rows() == 0) return 0;
  // The found row's place: the table put on it by its key, then its number in the order.
  PGTable* open = PGTableAt(t.tbl());
  PGLoadCurrent(*open, res, 0);
  Checked(PGRecGet(t.tbl(), t.rec()));
  Checked(PGSrchKeyFull(t.tbl(), t.rec()));
  int32_t place = 0;
  Checked(PGRecNum(t.tbl(), place));
  return place;
}

}  // namespace contractors_detail

void ContractorCatalogue(ContractorKind kind) { (void)RunList(kind, Title(kind, ChoosePurpose::kAny), false); }

int32_t ChooseContractor(ContractorKind kind, ChoosePurpose purpose) {
  return RunList(kind, Title(kind, purpose), true);
}

void ContractorCataloguesMenu() {
  CheckDBError(ContractorTablesEnsure());
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(1, 1, 1, 0, 0, ShortText(), "odbiorcy@dostawcy@magazyny"_mz, ch, scan);
  if (choice == 1) ContractorCatalogue(ContractorKind::kCustomer);
  if (choice == 2) ContractorCatalogue(ContractorKind::kSupplier);
  if (choice == 3) ContractorCatalogue(ContractorKind::kWarehouse);
}

bool ChooseCurrentWarehouse(bool atStart, int32_t& number, bool& special) {
  CheckDBError(ContractorTablesEnsure());
  int32_t chosen = 0;
  if (atStart) {
    PGResult res;
    Checked(PGRunQueryWithTup("SELECT numer FROM " + PGSqlName(ContractorTablePath(ContractorKind::kWarehouse)).Str() +
                                  " LIMIT 2",
                              res));
    if (res.Rows() == 0) return false;
    if (res.Rows() == 1) chosen = std::stoi(std::string(res.Value(0, 0)));
  }
  if (chosen == 0) chosen = ChooseContractor(ContractorKind::kWarehouse, ChoosePurpose::kCurrentWarehouse);
  Contractor w;
  bool found = false;
  Checked(ContractorFind(ContractorKind::kWarehouse, chosen, w, found));
  if (chosen == 0 || !found) return false;
  number = chosen;
  special = WarehouseIsSpecial(w);
  return true;
}
