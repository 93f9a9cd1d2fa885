// The start of the program klote: a table of steps run in order (terminal,
// configuration, connection, login, printer configuration, current
// warehouse, menu bar), and its end. Steps whose subsystems are not in this
// program yet are named placeholders that do nothing; a subsystem that
// arrives fills its own step in startup.cpp and nothing else.
#pragma once

#include "app/appstate.h"

struct StartStep {
  const char* name;
  bool (*run)(AppState& state);  // false ends the start: the program then ends
};

// Runs the steps in order until one returns false or all have run; true when
// all ran. argc and argv are main's: the first argument names the data directory.
bool RunStart(AppState& state, int argc, const char* const argv[]);
// The end of the program: the user's session ended, tables and connection
// closed, screen cleared, terminal given back.
void EndProgram();
