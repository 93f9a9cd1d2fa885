// The start-up steps of klote.
#include "app/startup.h"

#include "app/menu.h"
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

// Placeholder until the choice of the current warehouse comes here; it will
// set state.warehouse and state.warehouseSpecial.
bool ChooseWarehouse(AppState&) { return true; }

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
