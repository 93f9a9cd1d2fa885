// The start-up steps of klote.
#include "app/startup.h"

#include <cstdlib>

#include "app/catalogue_links.h"
#include "app/menu.h"
#include "config/fieldlists.h"
#include "config/konfigur.h"
#include "documents/fiscalsetup.h"
#include "master/contractor_screens.h"
#include "master/firmdb.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tui/screen.h"
#include "tui/term.h"
#include "users/session.h"
#include "users/users.h"

namespace {

// The command line as main has it: the first argument names the data directory.
struct CommandLine {
  int argc = 0;
  const char* const* argv = nullptr;
};
CommandLine gCommandLine;

bool StartTerminal(AppState&) {
  TermInit();
  return true;
}

// The settings, the captions of the user fields and their check; a repeated
// caption has been shown and ends the program. No setting chooses the book
// bar, so the warehouse bar of state.menu stands.
bool ReadConfiguration(AppState&) {
  (void)ConfigRead(gCommandLine.argc, gCommandLine.argv);
  ConfigReadLists();
  if (!ConfigCheckFieldNames()) return false;
  SessionSetOverrideRule(ConfigInt(kConfigLineLoginOverride));
  return true;
}

// The one connection of the process and what a new database lacks; any
// failure is the layer's message and the end of the program.
bool ConnectDatabase(AppState&) {
  OpenFirmDatabase();
  return true;
}

// The users' list in login mode and the session; Esc ends the program.
bool LogIn(AppState&) { return SessionLogin(); }

// The logged-in user's fiscal printer settings, handed to the drivers; the
// other printers' settings are read where they are used.
bool ReadPrinterConfiguration(AppState&) {
  LoadUserFiscalConfig();
  return true;
}

// The current warehouse: the only one of the catalogue, or the operator's
// choice among several; none when the catalogue is empty or the choice is
// given up (document entries then say so).
bool ChooseWarehouse(AppState& state) {
  (void)ChooseCurrentWarehouse(true, state.warehouse, state.warehouseSpecial);
  return true;
}

// The functions the catalogues borrow from the documents, bound to the state.
bool LinkCatalogues(AppState& state) {
  RegisterCatalogueLinks(state);
  return true;
}

bool RunMenuBar(AppState& state) {
  MenuBar(state.menu, state);
  return true;
}

constexpr StartStep kStartSteps[] = {
    {"terminal", StartTerminal},
    {"configuration", ReadConfiguration},
    {"connection", ConnectDatabase},
    {"login", LogIn},
    {"printers", ReadPrinterConfiguration},
    {"warehouse", ChooseWarehouse},
    {"links", LinkCatalogues},
    {"menu", RunMenuBar},
};

}  // namespace

bool RunStart(AppState& state, int argc, const char* const argv[]) {
  gCommandLine = CommandLine{argc, argv};
  for (const StartStep& step : kStartSteps)
    if (!step.run(state)) return false;
  return true;
}

void EndProgram() {
  if (PGConnected) SessionEnd();
  PGShutdownTables(2);
  if (PGConnected) PGDisconnect();
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kAttrNormal);
  ClearWindow();
  TermFlush();
  TermHandOver();
}
