// The dictionary list. Dictionaries are small: the rows are read afresh
// before each showing.
#include "master/dictionary_screens.h"

#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/text.h"
#include "master/catalogue_print.h"
#include "master/contractors_detail.h"
#include "master/dictionaries.h"
#include "sqltable/dbapp.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

using contractors_detail::BoxKeeper;

namespace {

// The row a higher module lends the menu of the other catalogues.
ShortText gExtraTitle;
void (*gExtraRun)() = nullptr;

constexpr int kVisibleRows = 18;
constexpr unsigned char kBarAttr = 0x30;
constexpr unsigned char kKeyIns = 252, kKeyDel = 253, kCtrlEnter = 10, kF1 = 229, kF5 = 233, kF6 = 234;

const ShortText kChooseHelp =
    "ƒ0..Ż⌐-przeszukanie@ƒ╒¿⌐- wybór wartości@ƒCtrl+╒¿⌐- poprawienie wskazywanej wartości.@ƒIns⌐- dopisanie nowej wartości.@ƒDel⌐- skasowanie wartości."_mz;
const ShortText kEditHelp =
    "ƒ0..Ż⌐-przeszukanie@ƒCtrl+╒¿⌐- poprawienie wskazywanej wartości@ƒIns⌐- dopisanie nowej wartości@ƒDel⌐- skasowanie wartości@ƒ╫è⌐- wydruk@ƒ╫ï⌐- do/z DBF-3"_mz;

ShortText RowText(const DictionaryEntry& e) { return " " + PadRight(e.indeks, " ", 15) + " ¥ "_mz + PadRight(e.opis, " ", 50); }

struct ListEnd {
  unsigned char code = 27;
  int index = -1;
};

// A printable key opens the search by the start of a value with that key
// typed; the bar goes to the first value that starts so.
void SearchStart(const std::vector<DictionaryEntry>& rows, unsigned char first, int& bar) {
  ShortText start(std::string(1, static_cast<char>(first)));
  if (!contractors_detail::AskOnDashes("Wprowadź początek szukanej danej: --------------- "_mz, start)) return;
  const int found = DictionaryFindStart(rows, start);
  if (found >= 0) bar = found;
  else Beep(1000);
}

ListEnd Browse(const ShortText& title, bool choose, const std::vector<DictionaryEntry>& rows, int& bar) {
  BoxKeeper keeper;
  const int count = static_cast<int>(rows.size());
  const int shown = count == 0 ? 1 : std::min(count, kVisibleRows);
  ShortText text = PadRight(title, " ", 69);
  for (int i = 0; i < shown; ++i) text += '@';
  MessageBox(text, 2);
  int top = 0;
  for (;;) {
    bar = std::max(0, std::min(bar, count - 1));
    top = std::min(top, bar);
    if (bar >= top + shown) top = bar - shown + 1;
    for (int i = 0; i < shown; ++i) {
      TextAttr(top + i == bar ? kBarAttr : kAttrBoxBody);
      WriteAt(2, 3 + i, top + i < count ? RowText(rows[static_cast<std::size_t>(top + i)]) : PadRight("", " ", 69));
    }
    GotoXY(2, 3 + bar - top);
    const unsigned char code = KeyCodeOf(ReadKeyUpper());
    if (code == 242 || code == 250) bar += code == 250 ? 1 : -1;
    else if (code == kF1) MessageBox(choose ? kChooseHelp : kEditHelp, 0);
    else if (code > ' ' && code != 127 && code < 224 && count > 0) SearchStart(rows, code, bar);
    else if (code == 27 || code == kKeyIns || ((code == kF5 || code == kF6) && !choose))
      return ListEnd{code, bar};
    else if ((code == 13 || code == kCtrlEnter || code == kKeyDel) && count > 0) return ListEnd{code, bar};
    else Beep(1000);
  }
}

// The two fields of a value; false on Esc or an empty key.
bool EditEntry(DictionaryEntry& e) {
  BoxKeeper keeper;
  MessageBox("indeks: "_mz + PadRight("", " ", 15) + "@opis:   " + PadRight("", " ", 60), 2);
  ShortText fields[2] = {e.indeks, e.opis};
  const int widths[2] = {15, 60};
  for (int at = 0;;) {
    GotoXY(10, 2 + at);
    TextAttr(kAttrReverse);
    unsigned char key = 0;
    EditField(1, 3, ' ', widths[at], fields[at], key);
    if (key == 27) return false;
    if ((key == 238 || (key == 13 && at == 1)) && !TrimRightAll(fields[0], ' ').Empty()) break;
    at = key == 242 ? 0 : 1 - at;
  }
  e.indeks = TrimRightAll(fields[0], ' ');
  e.opis = TrimRightAll(fields[1], ' ');
  return true;
}

void SayOutcome(DictionaryOutcome outcome, const ShortText& path, const DictionaryEntry& e) {
  switch (outcome) {
    case DictionaryOutcome::kDone: return;
    case DictionaryOutcome::kFull: MessageBox("Nie można wpisać więcej, niż 29 grup VAT."_mz, 0); return;
    case DictionaryOutcome::kDuplicate:
      MessageBox("Istnieje już na liście dana o takiej nazwie. Zmiana nie jest możliwa."_mz, 0);
      return;
    case DictionaryOutcome::kGone:
      MessageBox("Ktoś skasował aktualnie poprawiane dane.@Nie można zapisać zmian."_mz, 0);
      return;
    case DictionaryOutcome::kRefused: {
      const ShortText why = DictionaryDeleteRefusal(path, e);
      MessageBox(why.Empty() ? "Nie wolno zmieniać nazwy grupy zwolnionej z VAT."_mz : why, 0);
    }
  }
}

bool MayChange() {
  if (CurrentUserIsManager()) return true;
  MessageBox("Dane tego typu mogą być zmieniane tylko przez `Kierownika Systemu\"@(użytkownik nr 0). Ty możesz jedynie dopisać."_mz, 0);
  return false;
}

// The refusal of a key that this place of the program does not allow, or empty.
ShortText UseRefusal(const DictionaryUse& use, unsigned char code) {
  if (code == kKeyIns) return use.add ? ShortText() : "Dopisywanie w tym miejscu programu nie jest możliwe."_mz;
  if (code == kKeyDel) return use.remove ? ShortText() : "Usuwanie w tym miejscu programu nie jest możliwe."_mz;
  return use.change ? ShortText() : "Edycja w tym miejscu programu nie jest możliwa."_mz;
}

void RunDictionaryKey(const ShortText& path, unsigned char code, const DictionaryEntry& at, const DictionaryUse& use) {
  const ShortText refused = UseRefusal(use, code);
  if (!refused.Empty()) return (void)MessageBox(refused, 0);
  DictionaryEntry e = code == kKeyIns ? DictionaryEntry{} : at;
  if (code == kKeyIns) {
    if (EditEntry(e)) SayOutcome(DictionaryAdd(path, e), path, e);
  } else if (code == kKeyDel) {
    const ShortText refusal = DictionaryDeleteRefusal(path, at);
    if (!refusal.Empty()) return (void)MessageBox(refusal, 0);
    if (!MayChange()) return;
    if (MessageBox("Zamierzasz usunąć klucz `"_mz + TrimRightAll(at.indeks, ' ') + "\"@może to spowodować zakłócenia pracy programu,@"_mz +
                       "jeśli klucz ten został użyty w bazach danych programu.@@"_mz + "Czy na pewno chcesz go usunąć ?"_mz,
                   1))
      SayOutcome(DictionaryDelete(path, at.indeks), path, at);
  } else if (MayChange() && EditEntry(e)) {
    SayOutcome(DictionaryChange(path, at.indeks, e), path, e);
  }
}

ShortText DictionaryListTitle(const ShortText& fieldName, bool choose) {
  return (choose ? "Wybierz wartość pola `"_mz : "Lista wartości pola `"_mz) + fieldName + "\":";
}

// The list of a large dictionary from a start the operator gives: the rows
// from there in a pick list; Ins, Del and Ctrl+Enter end it for their key,
// Esc (or no row from there) goes back to the start. kLargeEnd when the
// operator gave up the start.
constexpr unsigned char kLargeEnd = 0;
ListEnd BrowseFrom(const ShortText& path, const ShortText& title, ShortText& start, std::vector<DictionaryEntry>& rows) {
  if (!contractors_detail::AskOnDashes("Wprowadź początek szukanej danej: --------------- "_mz, start))
    return ListEnd{kLargeEnd, -1};
  CheckDBError(DictionaryReadFrom(path, start, kPickMaxChoices, rows));
  if (rows.empty()) {
    Beep(1000);
    return ListEnd{27, -1};
  }
  std::vector<ShortText> lines;
  for (const DictionaryEntry& e : rows) lines.push_back(RowText(e));
  KeyPair ended{};
  PickListHooks hooks;
  hooks.endsList = [&ended](KeyPair k) {
    const unsigned char code = KeyCodeOf(k);
    ended = k;
    return code == kKeyIns || code == kKeyDel || code == kCtrlEnter;
  };
  unsigned char ch = 0, scan = 0;
  const int16_t at = PickListHooked(1, 1, 1, 0, 0, title, lines, hooks, ch, scan);
  if (at == 0) return ListEnd{27, -1};
  const unsigned char code = KeyCodeOf(KeyPair{ch, scan});
  return ListEnd{code == kKeyIns || code == kKeyDel || code == kCtrlEnter ? code : static_cast<unsigned char>(13),
                 at - 1};
}

// The VAT dictionary offers its exempt group when it has none.
void OfferExemptGroup(const ShortText& path) {
  if (path != ShortText(kVatDictionary)) return;
  bool has = true;
  CheckDBError(VatHasExemptGroup(has));
  if (!has && MessageBox("Czy chcesz automatycznie dopisać stawkę zwolnioną ?"_mz, 1)) (void)VatAddExemptGroup();
}

}  // namespace

bool DictionaryList(const ShortText& fieldName, const ShortText& path, bool choose, ShortText& value,
                    const DictionaryUse& use) {
  CheckDBError(DictionaryEnsure(path));
  OfferExemptGroup(path);
  const ShortText title = DictionaryListTitle(fieldName, choose);
  for (int bar = 0;;) {
    std::vector<DictionaryEntry> rows;
    CheckDBError(DictionaryRead(path, rows));
    const ListEnd end = Browse(title, choose, rows, bar);
    if (end.code == 27) return false;
    if (end.code == kF5 || end.code == kF6) {
      if (end.code == kF5) (void)PrintDictionaryCatalogue(fieldName, path);
      else DictionaryDbfExchange(path);
      continue;
    }
    const DictionaryEntry at = end.index >= 0 && end.index < static_cast<int>(rows.size())
                                   ? rows[static_cast<std::size_t>(end.index)] : DictionaryEntry{};
    if (end.code == 13 && choose) {
      value = at.indeks;
      return true;
    }
    RunDictionaryKey(path, end.code == 13 ? kCtrlEnter : end.code, at, use);
  }
}

void SetOtherCatalogueRow(const ShortText& title, void (*run)()) {
  gExtraTitle = title;
  gExtraRun = run;
}

void DictionaryCataloguesMenu() {
  ShortText options;
  for (const DictionaryDef& d : Dictionaries()) options += (options.Empty() ? "" : "@") + d.title;
  if (gExtraRun != nullptr) options += "@" + gExtraTitle;
  unsigned char ch = 0, scan = 0;
  const int16_t choice = PickList(1, 1, 1, 0, 0, ShortText(), options, ch, scan);
  if (gExtraRun != nullptr && choice == static_cast<int16_t>(Dictionaries().size()) + 1) return gExtraRun();
  if (choice < 1 || choice > static_cast<int16_t>(Dictionaries().size())) return;
  const DictionaryDef& d = Dictionaries()[static_cast<std::size_t>(choice - 1)];
  ShortText unused;
  (void)DictionaryList(d.title, ShortText(d.path), false, unused);
}

bool DictionaryCopyList(const ShortText& fieldName, const ShortText& path, bool choose, ShortText& value,
                        const DictionaryUse& use) {
  CheckDBError(DictionaryEnsure(path));
  int64_t count = 0;
  CheckDBError(DictionaryCount(path, count));
  if (count < kLargeDictionaryRows) return DictionaryList(fieldName, path, choose, value, use);
  const ShortText title = DictionaryListTitle(fieldName, choose);
  ShortText start;
  for (;;) {
    std::vector<DictionaryEntry> rows;
    const ListEnd end = BrowseFrom(path, title, start, rows);
    if (end.code == kLargeEnd) return false;
    if (end.code == 27) continue;
    const DictionaryEntry at = end.index >= 0 ? rows[static_cast<std::size_t>(end.index)] : DictionaryEntry{};
    if (end.code == 13 && choose) {
      value = at.indeks;
      return true;
    }
    RunDictionaryKey(path, end.code == 13 ? kCtrlEnter : end.code, at, use);
  }
}
