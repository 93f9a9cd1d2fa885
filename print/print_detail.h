// State shared by the viewer and the destination dialog (not for other folders).
#pragma once

#include <string>

#include "base/shorttext.h"

// True while the screen viewer is open: from it the monitor is no destination.
extern bool gPrintViewerOpen;
// The whole print file; false (and "Brak dostępu do pliku `...") when it cannot be read.
bool ReadPrintFile(const ShortText& path, std::string& bytes);
// A progress box whose bar is shown full: the work it names is one step here.
void ShowDoneBox(const ShortText& text);
