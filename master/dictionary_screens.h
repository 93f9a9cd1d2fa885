// The list of a dictionary: choosing a value or keeping the list (Ins adds,
// Ctrl+Enter changes, Del deletes), with the rights and messages of the
// dictionaries; and the menu entry of the other catalogues.
#pragma once

#include "base/shorttext.h"

// What a place of the program allows in a dictionary's list; a refused key
// says "Dopisywanie (Usuwanie, Edycja) w tym miejscu programu nie jest możliw...".
struct DictionaryUse {
  bool add = true;
  bool change = true;
  bool remove = true;
};

// DictionaryList: the list titled by the field's name; choosing gives the
// chosen value in value and true, Esc false. In keeping mode F5 prints it
// and F6 exchanges it with a dBASE file.
bool DictionaryList(const ShortText& fieldName, const ShortText& path, bool choose, ShortText& value,
                    const DictionaryUse& use = {});
// A dictionary of at least this many rows is not read whole.
inline constexpr int kLargeDictionaryRows = 1000;
// DictionaryCopyList: DictionaryList for a dictionary of fewer than
// kLargeDictionaryRows rows; a larger one asks the start of a value
// ("Wprowadź początek szukanej danej:") and lists the rows from there, read
// afresh each time, with the same keys. Esc at the question ends it.
bool DictionaryCopyList(const ShortText& fieldName, const ShortText& path, bool choose, ShortText& value,
                        const DictionaryUse& use = {});
// The menu entry "Inne katalogi": which dictionary, then its list for keeping.
void DictionaryCataloguesMenu();
// A further row at the end of the "Inne katalogi" list, lent by a module
// above the catalogues (the application registers the register of document
// numbers there); a null function takes the row away.
void SetOtherCatalogueRow(const ShortText& title, void (*run)());
// F6: export to or import from the file named as the table in the user's directory.
void DictionaryDbfExchange(const ShortText& path);
