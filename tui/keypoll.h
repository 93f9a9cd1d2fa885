// A small poll of the keyboard on standard input, for programs without the
// full screen (the fiscal print server): keys come as PC pairs through
// DecodeKey, F10 as (0, 68). Signals keep working (Ctrl+C, Ctrl+Break).
#pragma once

#include "tui/keydecode.h"

// Puts a terminal on standard input into key-at-a-time mode without echo,
// remembering its settings. Without a terminal only the reading is set up.
void KeyPollBegin();
// Gives the terminal back its remembered settings. Safe in a signal handler.
void KeyPollEnd();
// Reads one waiting key; false at once when no key waits.
[[nodiscard]] bool KeyPollRead(KeyPair& key);
