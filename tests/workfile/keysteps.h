// Key scripts for screens on the real server: at each wait for a key the
// screen is kept and the next step runs (keys pushed, or what another process
// does meanwhile); past the last step, Esc until the screens end.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tui/keyboard.h"
#include "tui/keydecode.h"
#include "tui/screen.h"

namespace keysteps {

using Step = std::function<void()>;
inline std::vector<Step> gSteps;
inline std::size_t gNext = 0;
inline std::vector<std::string> gScreens;

inline void Next() {
  std::string screen;
  for (int row = 1; row <= kScreenRows; ++row) screen += RowText(row).Str() + "\n";
  gScreens.push_back(screen);
  if (gNext < gSteps.size()) return gSteps[gNext++]();
  (void)PushKey(27, 1);
}

// The steps from the next wait on; the kept screens start empty.
inline void Play(std::vector<Step> steps) {
  gScreens.clear();
  gSteps = std::move(steps);
  gNext = 0;
  SetKeyIdleHook(Next);
}

inline void Stop() {
  SetKeyIdleHook(nullptr);
  KeyboardReset();
}

// A step typing the text's bytes as their keys, then the keys after it.
inline Step Keys(const std::string& text, std::vector<KeyPair> after = {}) {
  return [text, after] {
    for (unsigned char c : text) (void)PushKey(KeyOfByte(c).ch, KeyOfByte(c).scan);
    for (KeyPair k : after) (void)PushKey(k.ch, k.scan);
  };
}

// Whether a kept screen showed the line.
inline bool Shown(const ShortText& line) {
  for (const std::string& s : gScreens)
    if (s.find(line.Str()) != std::string::npos) return true;
  return false;
}

}  // namespace keysteps
