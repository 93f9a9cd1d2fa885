// The start-up steps of klote.
#include "app/startup.h"

#include "app/menu.h"
#include "master/contractor_screens.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgtable.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

bool StartTerminal(AppState&) {
  TermInit();
  return true;
}

// Placeholder until the configuration file is read here (ConfigRead); it
// will also set state.menu from the installation's bar setting.
bool ReadConfiguration(AppState&) { return true; }

// The one connection of the process. A new database gets its catalogue; any
// failure is the layer's message and the end of the program.
bool ConnectDatabase(AppState&) {
  CheckDBError(PGSetDefaults());
  int16_t code = PGInit();
  if (code == kPGNoCatalogue) code = PGinitializett();
  CheckDBError(code);
  return true;
}

// Placeholder until the users' login list and password prompt come here.
bool LogIn(AppState&) { return true; }

// Placeholder until the printer configuration is read here.
bool ReadPrinterConfiguration(AppState&) { return true; }

// The current warehouse: the only one of the catalogue, or the operator's
// choice among several; none when the catalogue is empty or the choice is
// given up (document entries then say so).
bool ChooseWarehouse(AppState& state) {
  (void)ChooseCurrentWarehouse(true, state.warehouse, state.warehouseSpecial);
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
    {"menu", RunMenuBar},
};

}  // namespace

bool RunStart(AppState& state) {
  for (const StartStep& step : kStartSteps)
    if (!step.run(state)) return false;
  return true;
}

void EndProgram() {
  PGShutdownTables(2);
  if (PGConnected) PGDisconnect();
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kAttrNormal);
  ClearWindow();
  TermFlush();
  TermHandOver();
}
