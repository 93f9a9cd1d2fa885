// Entry of new goods documents: the choice of the kind and the entry
// function with its two windows, the catalogue with the current
// warehouse's stock above and the line list being written below. The
// line list lives in the user's work table praca___, so it survives a
// failure of the program and the next entry goes on with it; the user leaves
// only with a saved or a dropped line list.
#pragma once

#include <cstdint>

#include "base/mazovia.h"
#include "base/shorttext.h"

inline constexpr ShortText kChooseGroupTitle = "Wybierz grupę dokumentów:"_mz;
inline constexpr ShortText kChooseKindTitle = "Wybierz konkretny rodzaj dokumentu:"_mz;
inline constexpr ShortText kLeaveEntryText =
    "Wyjście spowoduje utratę specyfikacji, którą wpisałeś(aś).@Czy na pewno chcesz wyjść ?"_mz;
inline constexpr ShortText kNotTodayText =
    "@Pracujesz z datą inną, niż dziesiejsza.@@(Jeżeli niniejszy komunikat nie jest prawdziwy, znaczy to, że zegar@Twojego komputera źle pracuje)."_mz;

// The two steps of the choice: the group on F1..F6 (or the digits 1..6),
// then the kind when the group holds several. 0 for Esc; a kind closed for
// the user is refused with its message and the choice starts again.
int ChooseDocumentKind();

// The name of a kind: its row of dok_plat, else the configured document name.
ShortText KindName(int kind);

// The entry function over the warehouse: the kind, then the line list
// until it is saved or dropped.
void DocumentEntry(int32_t warehouse);

// The work file lies above the documents: the application lends the entry
// the taking of the work file into the user's line list of the warehouse.
// Without it the entry offers no such key.
using EntryWorkFileHook = void (*)(int32_t warehouse);
void SetEntryWorkFileHook(EntryWorkFileHook hook);
