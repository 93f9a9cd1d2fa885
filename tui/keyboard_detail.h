// Inside the keyboard layer: the terminal as a source of raw key pairs.
#pragma once

#include "tui/keyboard.h"

namespace tui_detail {

// True if a key arrives from the terminal within timeoutMs (0: only if waiting now).
bool TerminalKeyWaiting(int timeoutMs);
// Reads and decodes one key from the terminal, waiting for it; false at the end of input.
bool ReadTerminalKey(KeyPair& key);
// Drops what the terminal has sent and nobody has read.
void DiscardTerminalInput();
// The input descriptor, -1 when there is none.
int InputFd();

}  // namespace tui_detail
