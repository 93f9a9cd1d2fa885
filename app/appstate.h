// The state of the application that the start-up sets and the menu's
// operations read.
#pragma once

#include <cstdint>

// The two bars; the configuration decides which one an installation shows.
enum class MenuKind : uint8_t {
  kWarehouse,  // Dokumenty, Towary, Kasa, Analizy, Inne
  kBook,       // Księga, Inne: the income and expense book variant
};

struct AppState {
  MenuKind menu = MenuKind::kWarehouse;  // set by the configuration step
  int32_t warehouse = 0;                 // the current warehouse's number; 0 when none is chosen
  bool warehouseSpecial = false;         // the current warehouse is a special one
};
