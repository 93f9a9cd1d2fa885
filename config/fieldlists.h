// Captions of the user fields of item and contractor records, from the list
// files in "dane\": "lista_in.txt" (items), "lista_i2.txt" (further item
// fields) and "list_c_k.txt" (contractors). Each file holds one CSV line of
// captions; a missing file keeps the defaults, an empty field is "??" (unset).
#pragma once

#include <array>
#include <span>

#include "base/shorttext.h"

inline constexpr int kItemCaptions = 9;
inline constexpr int kItemCaptions2 = 9;
inline constexpr int kContractorCaptions = 4;

struct ConfigFieldLists {
  std::array<ShortText, kItemCaptions> item;
  std::array<ShortText, kItemCaptions2> item2;
  std::array<ShortText, kContractorCaptions> contractor;
};

// The captions as a fresh installation has them.
ConfigFieldLists DefaultFieldLists();
// The program's captions, filled by ConfigReadLists.
const ConfigFieldLists& ConfigLists();

// Reads one list line into captions: fields in order, an empty or missing one
// "??". False (captions untouched) when the line does not parse: a quote left
// open, or more fields than captions.
[[nodiscard]] bool ParseCaptionList(const ShortText& line, std::span<ShortText> captions);
// Reads the three list files; a line that does not parse is shown as
// "Niepoprawna lista:@" and the line, and its list keeps the defaults.
void ConfigReadLists();

// Positions (from 1) of the first caption that repeats an earlier one, the
// unset "??" aside; both 0 when all differ.
struct CaptionRepeat {
  int first = 0;
  int second = 0;
};
CaptionRepeat FindRepeatedCaption(std::span<const ShortText> captions);
// Item captions (both lists, positions 1..18) and contractor captions must
// differ. On a repeat it shows "Błąd konfiguracji." with the two names and
// returns false: the program must not go on and the caller ends it.
[[nodiscard]] bool ConfigCheckFieldNames();
