// Configuration tests run in a scratch directory that is the firm's directory
// (with "dane/" in it), on a terminal without a terminal, so that the boxes of
// the configuration can be read from the screen.
#pragma once

#include <sys/stat.h>

#include <string>

#include "base/file_fixture.h"
#include "tui/keyboard.h"
#include "tui/tui_fixture.h"

namespace config_test {

// The rows of the screen joined by '\n', taken when a box first waits for a key.
inline std::string g_boxSeen;

inline void SeeBoxThenEnter() {
  g_boxSeen.clear();
  for (int row = 1; row <= 25; ++row) g_boxSeen += RowText(row).Str() + "\n";
  (void)PushKey(13, 0x1C);
}

class ConfigDirTest : public tui_test::TuiTest {
 protected:
  void SetUp() override {
    TuiTest::SetUp();
    ASSERT_TRUE(scratch_.Entered());
    ::mkdir("dane", 0777);
    g_boxSeen.clear();
    SetKeyIdleHook(SeeBoxThenEnter);
  }
  void TearDown() override {
    SetKeyIdleHook(nullptr);
    TuiTest::TearDown();
  }
  // True when the screen shown by the last box holds the text.
  static bool BoxShowed(const std::string& text) { return g_boxSeen.find(text) != std::string::npos; }

  file_test::ScratchDir scratch_;
};

}  // namespace config_test
