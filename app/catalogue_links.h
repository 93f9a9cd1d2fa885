// What the application lends the catalogues, which lie below the documents:
// the contractor list's receivables (F2) and documents (F4) of the current
// warehouse, and the register of document numbers as a row of "Inne
// katalogi" ("katalog numerów dokumentów", its rebuild); and the entry of
// documents the taking of the work file into its line list.
#pragma once

#include "app/appstate.h"

// Registers the functions; they read the current warehouse from state, which must outlive the program's menu.
void RegisterCatalogueLinks(const AppState& state);
