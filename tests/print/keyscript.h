// Keys for a dialog from a script: at every wait for a key the screen is
// kept and the next scripted key given; Esc once the script is spent, so a
// wrong turn ends instead of hanging.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "tui/keyboard.h"
#include "tui/screen.h"

namespace keyscript {

inline std::deque<KeyPair> gScript;
inline std::vector<std::string> gScreens;

inline void PlayNext() {
  std::string screen;
  for (int row = 1; row <= kScreenRows; ++row) screen += std::string(RowText(row).View()) + "\n";
  gScreens.push_back(screen);
  const KeyPair key = gScript.empty() ? keys::kEsc : gScript.front();
  if (!gScript.empty()) gScript.pop_front();
  PushKey(key.ch, key.scan);
}

// Empties the script and the kept screens and starts answering waits.
inline void Begin() {
  gScript.clear();
  gScreens.clear();
  SetKeyIdleHook(PlayNext);
}

inline void End() {
  SetKeyIdleHook(nullptr);
  KeyboardReset();
}

inline void Type(std::string_view text) {
  for (char c : text) gScript.push_back(KeyPair{static_cast<uint8_t>(c), 0});
}

inline void Press(KeyPair key, int times = 1) {
  for (int i = 0; i < times; ++i) gScript.push_back(key);
}

// How many kept screens show the text.
inline int ScreensWith(std::string_view text) {
  int n = 0;
  for (const std::string& s : gScreens) n += s.find(text) != std::string::npos;
  return n;
}

}  // namespace keyscript
