// Dialogs that ask for one value, or for a range of two: a message box whose
// last lines are fields, with help and example values on F1.
#pragma once

#include "base/shorttext.h"

// Asks for a value in a centred box: the title, a line naming F1 when there is
// help or examples, and a field of width cells (at most 78) edited in the
// EditField mode. F1 shows the examples (a CSV list) with PickList, the
// chosen one going into the field, or else the help text in a message box.
// Enter gives true and the value; Esc gives false and leaves value as it was.
bool AskValue(const ShortText& title, ShortText& value, int width, int mode, const ShortText& help,
              const ShortText& examples);
// The same with two fields under "od:" and "do:" (width at most 74); Up, Down
// and Tab move between them, Enter on "od:" goes to "do:", Enter on "do:" confirms.
bool AskValueRange(const ShortText& title, ShortText& from, ShortText& to, int width, int mode,
                   const ShortText& help, const ShortText& examples);
