// The list of a dictionary: choosing a value or keeping the list (Ins adds,
// Ctrl+Enter changes, Del deletes), with the rights and messages of the
// dictionaries; and the menu entry of the other catalogues.
#pragma once

#include "base/shorttext.h"

// DictionaryList: the list titled by the field's name; choosing gives the
// chosen value in value and true, Esc false. In keeping mode F5 prints it.
bool DictionaryList(const ShortText& fieldName, const ShortText& path, bool choose, ShortText& value);
// The menu entry "Inne katalogi": which dictionary, then its list for keeping.
void DictionaryCataloguesMenu();
// A further row at the end of the "Inne katalogi" list, lent by a module
// above the catalogues (the application registers the register of document
// numbers there); a null function takes the row away.
void SetOtherCatalogueRow(const ShortText& title, void (*run)());
