// The list of a catalogue and its keys. The list reads a screenful at a
// time by the key of a row it shows, in the order chosen, so a catalogue of
// any size shows its first screen and each next one after one short read.
#include "master/contractor_screens.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "master/catalogue_print.h"
#include "master/contractor_hooks.h"
#include "master/contractors_detail.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "tui/askvalue.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

using contractors_detail::BoxKeeper;
using contractors_detail::Checked;
using contractors_detail::FragmentField;
using contractors_detail::ListKey;
using contractors_detail::ListOrder;
using contractors_detail::KeyOf;
using contractors_detail::ListRead;

namespace {

constexpr int kVisibleRows = 18;
constexpr unsigned char kBarAttr = 0x30;
constexpr unsigned char kF2 = 230, kF3 = 231, kF4 = 232, kF5 = 233, kF6 = 234, kF7 = 235;
constexpr KeyPair kCtrlF3{0, 96};
constexpr unsigned char kKeyIns = 252, kKeyDel = 253, kCtrlK = 11, kCtrlN = 14, kCtrlR = 18, kCtrlT = 20;
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

// A capital letter as ReadKeyUpper gives it, Polish ones too.
bool IsLetter(unsigned char code) {
  return (code >= 'A' && code <= 'Z') || "ĄĆĘŁŃÓŚŹŻ"_mz.View().find(static_cast<char>(code)) != std::string_view::npos;
}

ShortText RowText(const Contractor& c) {
  return " " + PadRight(c[KontrahentCol::nazwa], " ", 30) + " ¥ "_mz +
         PadLeft(ShortText(std::to_string(c.number)), ' ', 10) + " ¥ "_mz + PadRight(c[KontrahentCol::miasto], " ", 20);
}

// The list as it stands: the order, the rows on the screen and the bar
// among them. Rows are read by the key of a row shown, never by place.
struct ListState {
  ListOrder order = ListOrder::kName;
  std::vector<Contractor> rows;
  int bar = 0;
  bool loaded = false;
};

// What the operator did in the list.
struct ListEnd {
  unsigned char code = 27;
  int32_t number = 0;
};

// The names of the town orders as the order line shows them.
ShortText OrderName(ListOrder order) {
  switch (order) {
    case ListOrder::kTown: return "miasta - siedziby firmy"_mz;
    case ListOrder::kDocumentTown: return "miasta - miejsca wystawiania dokumentów"_mz;
    case ListOrder::kMailTown: return "miasta - do korespondencji"_mz;
    default: return ShortText();
  }
}

bool IsTownOrder(ListOrder order) { return !OrderName(order).Empty(); }

class ListScreen {
 public:
  ListScreen(ContractorKind kind, ListState& s, const std::vector<int32_t>* marks = nullptr)
      : kind_(kind), s_(s), marks_(marks) {}

  // A screenful from the key on (forward) or up to it (backward), the bar on its first (last) row.
  void LoadFrom(const ListKey& key, bool forward) {
    Checked(ListRead(kind_, s_.order, key, forward, kVisibleRows, std::string(), s_.rows));
    s_.bar = forward ? 0 : static_cast<int>(s_.rows.size()) - 1;
    if (s_.bar < 0) s_.bar = 0;
  }

  // The list as it was before a form or another order: from its first row
  // on, the bar where it stood; the end of the list when those rows went.
  void Reload() {
    const int bar = s_.bar;
    if (!s_.loaded || s_.rows.empty()) LoadFrom(ListKey{}, true);
    else LoadFrom(KeyOf(s_.rows.front(), true), true);
    if (s_.rows.empty()) LoadFrom(ListKey{}, false);
    s_.bar = std::min(bar, std::max(0, static_cast<int>(s_.rows.size()) - 1));
    s_.loaded = true;
  }

  // The list from the row on, the row under the bar.
  void ShowFrom(const Contractor& row) { LoadFrom(KeyOf(row, true), true); }

  int32_t BarNumber() const { return s_.rows.empty() ? 0 : s_.rows[static_cast<std::size_t>(s_.bar)].number; }

  void Draw() const {
    for (int i = 0; i < kVisibleRows; ++i) {
      const bool filled = i < static_cast<int>(s_.rows.size());
      TextAttr(filled && i == s_.bar ? kBarAttr : kAttrBoxBody);
      ShortText row = filled ? RowText(s_.rows[static_cast<std::size_t>(i)]) : PadRight("", " ", kColumns.Length());
      if (filled && marks_ && WarehouseMarked(*marks_, s_.rows[static_cast<std::size_t>(i)].number)) row.Data()[0] = '*';
      WriteAt(2, 4 + i, row);
    }
    TextAttr(kAttrBoxBody);
    const ShortText line = IsTownOrder(s_.order) ? "Kolejność przeglądania wg "_mz + OrderName(s_.order) : ShortText();
    WriteAt(2, 4 + kVisibleRows, PadRight(line, " ", kColumns.Length()));
    GotoXY(2, 4 + s_.bar);
  }

  bool Move(unsigned char code) {
    switch (code) {
      case kUp: return Step(false);
      case kDown: return Step(true);
      case kPgUp: return Page(false);
      case kPgDn: return Page(true);
      case kHome: LoadFrom(ListKey{}, true); return true;
      case kEnd: LoadFrom(ListKey{}, false); return true;
      default: return false;
    }
  }

  // The first row from the bar's on (or after it) that meets the condition, under the bar; false when none.
  bool FindFromBar(const std::string& condition, bool afterBar) {
    std::vector<Contractor> found;
    const ListKey from = s_.rows.empty() ? ListKey{} : KeyOf(s_.rows[static_cast<std::size_t>(s_.bar)], !afterBar);
    Checked(ListRead(kind_, s_.order, from, true, 1, condition, found));
    if (found.empty()) return false;
    ShowFrom(found.front());
    return true;
  }

  // The first row of the whole order that meets the condition.
  bool FindFromStart(const std::string& condition) {
    std::vector<Contractor> found;
    Checked(ListRead(kind_, s_.order, ListKey{}, true, 1, condition, found));
    if (found.empty()) return false;
    ShowFrom(found.front());
    return true;
  }

 private:
  bool Step(bool down) {
    if (s_.rows.empty()) return false;
    const int last = static_cast<int>(s_.rows.size()) - 1;
    if (down ? s_.bar < last : s_.bar > 0) {
      s_.bar += down ? 1 : -1;
      return true;
    }
    std::vector<Contractor> more;
    Checked(ListRead(kind_, s_.order, KeyOf(down ? s_.rows.back() : s_.rows.front(), false), down, 1, std::string(),
                     more));
    if (more.empty()) return true;  // the bar stays at the end
    if (static_cast<int>(s_.rows.size()) == kVisibleRows) {
      if (down) s_.rows.erase(s_.rows.begin());
      else s_.rows.pop_back();
    }
    if (down) s_.rows.push_back(more.front());
    else s_.rows.insert(s_.rows.begin(), more.front());
    s_.bar = down ? static_cast<int>(s_.rows.size()) - 1 : 0;
    return true;
  }

  bool Page(bool down) {
    if (s_.rows.empty()) return true;
    std::vector<Contractor> more;
    Checked(ListRead(kind_, s_.order, KeyOf(down ? s_.rows.back() : s_.rows.front(), false), down, kVisibleRows,
                     std::string(), more));
    if (static_cast<int>(more.size()) < kVisibleRows) {  // the end: its last (first) screenful, the bar on the edge
      LoadFrom(ListKey{}, !down);
      s_.bar = down ? static_cast<int>(s_.rows.size()) - 1 : 0;
      return true;
    }
    const int bar = s_.bar;
    s_.rows = std::move(more);
    s_.bar = bar;
    return true;
  }

  ContractorKind kind_;
  ListState& s_;
  const std::vector<int32_t>* marks_;
};

// A box with the text and a field of the width on its last line; the edited value, false on Esc or nothing.
bool AskInBox(const ShortText& text, int width, int mode, ShortText& value) {
  BoxKeeper keeper;
  MessageBox(text, 2);
  GotoXY(2, 2 + static_cast<int>(std::count(text.View().begin(), text.View().end(), '@')));
  TextAttr(kAttrReverse);
  unsigned char key = 0;
  EditField(mode, 1, ' ', width, value, key);
  value = TrimBoth(TrimRightAll(value, ' '), ' ');
  return key != 27 && !value.Empty();
}

// A fragment searched for by Ctrl+R, Ctrl+T, Ctrl+K or Ctrl+N; false on Esc.
bool AskFragment(FragmentField field, ShortText& fragment) {
  fragment = ShortText();
  const ShortText prompt = "Wprowadź szukany fragment (ciąg znaków) z"_mz;
  switch (field) {
    case FragmentField::kName: return AskInBox(prompt + " nazwy:             @"_mz + PadRight("", " ", 30), 30, 1, fragment);
    case FragmentField::kTelephones:
      return AskInBox(prompt + " pola `telefon\":    @"_mz + PadRight("", " ", 30), 30, 1, fragment);
    case FragmentField::kRegistration:
      return AskInBox(prompt + " pola `nr rej.\":    @"_mz + PadRight("", " ", 30), 20, 1, fragment);
    case FragmentField::kNip: break;
  }
  return contractors_detail::AskOnDashes("Wprowadź szukany NIP, lub jego fragment: -------------------------- "_mz,
                                         fragment) &&
         !fragment.Empty();
}

// The search by a fragment: "Jest ! Czy szukać dalej ?" moves on to the
// next row, "Nie znalazłem !" ends. The row under the bar is looked at first.
void SearchFragment(ListScreen& list, FragmentField field) {
  ShortText fragment;
  if (!AskFragment(field, fragment)) return;
  const std::string condition = contractors_detail::FragmentCondition(field, fragment);
  for (bool afterBar = false;; afterBar = true) {
    bool found = false;
    {
      BoxKeeper keeper;
      if (field == FragmentField::kNip) MessageBox("Szukam...@[          ]"_mz, 2);
      found = list.FindFromBar(condition, afterBar);
    }
    if (!found) {
      MessageBox("Nie znalazłem !"_mz, 0);
      return;
    }
    list.Draw();
    if (!MessageBox("Jest ! Czy szukać dalej ?"_mz, 1)) return;
    MessageBox("No, to szukam dalej..."_mz, 300);
  }
}

// A digit opens the search by number with that digit typed.
void SearchNumber(ContractorKind kind, ListScreen& list, unsigned char digit) {
  ShortText typed(std::string(1, static_cast<char>(digit)));
  if (!AskInBox("Wprowadź szukany numer:            "_mz, 10, 3, typed)) return;
  const auto number = static_cast<long long>(TextToRealLoose(typed));
  bool found = false;
  if (number >= 1 && number <= kContractorMaxNumber) {
    std::vector<Contractor> rows;
    Checked(ListRead(kind, ListOrder::kNumber, ListKey{}, true, 1, "numer = " + std::to_string(number), rows));
    if (!rows.empty()) list.ShowFrom(rows.front()), found = true;
  }
  if (!found) MessageBox("Nie ma takiego numeru !"_mz, 0);
}

// A letter goes to the first row whose name (in a town order, whose town) starts with it.
bool GoToStart(ListScreen& list, ListOrder order, unsigned char letter) {
  if (!IsLetter(letter)) return false;
  const ShortText start(std::string(1, static_cast<char>(letter)));
  const std::string condition = contractors_detail::StartCondition(order, start);
  return list.FindFromStart(condition);
}

// F6: the exchange with a dBASE file in the user's directory, named as the catalogue's table.
void DbfExchange(ContractorKind kind) {
  const int16_t way = contractors_detail::AskDbfWay();
  if (way == 0) return;
  const ShortText table = ContractorTablePath(kind);
  const ShortText file = UserPath(CurrentUserNumber(), table.Copy(table.Pos("\\") + 1, 8) + ".dbf");
  int64_t count = 0;
  int code = 0;
  if (way == 1) {
    code = ContractorDbfExport(kind, file, DbfCodePage::kAsIs, count);
  } else {
    DbfCodePage page = DbfCodePage::kAsIs;
    if (!contractors_detail::AskDbfImportPage(page)) return;
    unsigned char ch = 0, scan = 0;
    const int16_t mode = PickList(1, 1, 1, 0, 0, "Wybierz sposób dopisywania do katalogu:"_mz,
                                  "tylko wtedy, gdy inny jest numer kontrahenta@jw., z tworzeniem nowych, jeśli numer istnieje@wszystkich dopisać, jako nowych"_mz,
                                  ch, scan);
    if (mode == 0) return;
    code = ContractorDbfImport(kind, file, page, static_cast<DbfImportMode>(mode), count);
  }
  if (code != 0) MessageBox(DbfErrorText(code), 0);
}

// F3: the FK symbol of the contractor under the bar in a popup, written as a
// change of that field alone.
void EditFkSymbol(ContractorKind kind, int32_t number) {
  Contractor before;
  bool found = false;
  Checked(ContractorFind(kind, number, before, found));
  if (!found) {
    MessageBox("Kontrahent zniknął ?!@Zmiana nie jest możliwa."_mz, 0);
    return;
  }
  Contractor after = before;
  ShortText symbol = TrimRight(before[KontrahentCol::symbol_fk], ' ');
  if (!AskValue("Edycja symbolu FK:"_mz, symbol, 20, 1, ShortText(), ShortText())) return;
  after[KontrahentCol::symbol_fk] = symbol;
  if (ContractorStoreChanges(kind, before, after) == ContractorOutcome::kGone)
    MessageBox("Kontrahent zniknął ?!@Zmiana nie jest możliwa."_mz, 0);
}

// The function keys of the list on the bottom row of the screen (the keeper of the list puts the row back).
void ShowKeyLine() {
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kAttrPrompt);
  WriteAt(1, kScreenRows, PadRight("╫ç-należn. ╫ë-dokumenty ╫è-druk ╫ï-do/z DBF"_mz, " ", kScreenCols - 1));
}

// The keys that lead out of the list to another screen; true when the key was one of them.
bool RunOuterKey(ContractorKind kind, KeyPair key, int32_t number) {
  const unsigned char code = KeyCodeOf(key);
  const ContractorDocumentHooks& hooks = ContractorDocumentHooksNow();
  if (code == kF5) return PrintContractorCatalogue(kind), true;
  if (code == kF7 && kind == ContractorKind::kWarehouse) return MarkMergedWarehouses(), true;
  if (number == 0 || !(code == kF2 || code == kF3 || code == kF4 || code == kF7 || key == kCtrlF3)) return false;
  if (key == kCtrlF3 && kind == ContractorKind::kWarehouse) (void)EditWarehousePrintData(number);
  else if (key == kCtrlF3) (void)EditContractorNote(kind, number);
  else if (code == kF3) EditFkSymbol(kind, number);
  else if (code == kF7) (void)LinkContractorToWarehouse(kind, number);
  else if (ContractorDocumentFn fn = code == kF2 ? hooks.receivables : hooks.documents) fn(kind, number);
  return true;
}

ListEnd Browse(ContractorKind kind, const ShortText& title, bool choosing, ListState& state) {
  BoxKeeper keeper;
  ListScreen list(kind, state);
  list.Reload();
  if (state.rows.empty() && choosing) {
    MessageBox(EmptyListText(kind), 0);
    return ListEnd{};
  }
  ShowKeyLine();
  ShortText text = PadRight(title, " ", kColumns.Length()) + "@" + kColumns;
  for (int i = 0; i <= kVisibleRows; ++i) text += '@';
  MessageBox(text, 2);
  for (;;) {
    list.Draw();
    const KeyPair key = ReadKeyUpper();
    const unsigned char code = KeyCodeOf(key);
    const int32_t number = list.BarNumber();
    if (key == keys::kShiftTab) {
      state.order = static_cast<ListOrder>((static_cast<int>(state.order) + 1) % contractors_detail::kListOrderCount);
      if (number != 0) list.ShowFrom(state.rows[static_cast<std::size_t>(state.bar)]);
      else list.LoadFrom(ListKey{}, true);
      continue;
    }
    if (list.Move(code)) continue;
    if (code == kCtrlR || code == kCtrlT || code == kCtrlK || code == kCtrlN) {
      SearchFragment(list, code == kCtrlR   ? FragmentField::kName
                           : code == kCtrlT ? FragmentField::kTelephones
                           : code == kCtrlK ? FragmentField::kRegistration
                                            : FragmentField::kNip);
      continue;
    }
    if (RunOuterKey(kind, key, number)) {
      list.Reload();
      continue;
    }
    if (code == kF6) {
      DbfExchange(kind);
      list.Reload();
      continue;
    }
    if (code >= '1' && code <= '9') {
      SearchNumber(kind, list, code);
      continue;
    }
    if (GoToStart(list, state.order, code)) continue;
    if (code == 27 || code == kKeyIns || ((code == 13 || code == kKeyDel) && number != 0)) return ListEnd{code, number};
    Beep(1000);
  }
}

int32_t RunList(ContractorKind kind, const ShortText& title, bool choosing) {
  ListState state;
  for (;;) {
    const ListEnd end = Browse(kind, title, choosing, state);
    switch (end.code) {
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

bool WarehouseMarked(const std::vector<int32_t>& marks, int32_t number) {
  return std::find(marks.begin(), marks.end(), number) != marks.end();
}

bool ToggleWarehouseMark(std::vector<int32_t>& marks, int32_t number) {
  const auto at = std::find(marks.begin(), marks.end(), number);
  if (at != marks.end()) {
    marks.erase(at);
    return true;
  }
  if (static_cast<int>(marks.size()) >= kMaxMarkedWarehouses) return false;
  marks.push_back(number);
  return true;
}

bool MergeWarehouseSelection(std::vector<int32_t>& marks) {
  BoxKeeper keeper;
  std::vector<int32_t> chosen = marks;
  ListState state;
  state.order = ListOrder::kNumber;
  ListScreen list(ContractorKind::kWarehouse, state, &chosen);
  list.Reload();
  // The title is wider than the columns: the box takes its width.
  ShortText text = "Podaj, czy dodawać stan tego magazynu do widocznego w opcji `Wprowadzanie\":"_mz + "@" + kColumns;
  for (int i = 0; i <= kVisibleRows; ++i) text += '@';
  MessageBox(text, 2);
  for (;;) {
    list.Draw();
    const unsigned char code = KeyCodeOf(ReadKeyUpper());
    if (list.Move(code)) continue;
    if (code == 27) return false;
    if (code == 13) {
      marks = chosen;
      return true;
    }
    if (code == ' ' && list.BarNumber() != 0) {
      if (!ToggleWarehouseMark(chosen, list.BarNumber()))
        MessageBox("Można zaznaczyć do 320 magazynów, a ten limit wyczerpano."_mz, 0);
      continue;
    }
    Beep(1000);
  }
}

void ContractorCatalogue(ContractorKind kind) { (void)RunList(kind, Title(kind, ChoosePurpose::kAny), false); }

int32_t ChooseContractor(ContractorKind kind, ChoosePurpose purpose) {
  return RunList(kind, Title(kind, purpose), true);
}

void ContractorCataloguesMenu() {
  CheckDBError(ContractorTablesEnsure());
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(1, 1, 1, 0, 0, ShortText(),
                                  "odbiorcy@dostawcy@magazyny@kasowanie odbiorców, z którymi nie ma obrotów"_mz, ch, scan);
  if (choice == 1) ContractorCatalogue(ContractorKind::kCustomer);
  if (choice == 2) ContractorCatalogue(ContractorKind::kSupplier);
  if (choice == 3) ContractorCatalogue(ContractorKind::kWarehouse);
  if (choice == 4) (void)DeleteCustomersWithoutTurnover();
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
