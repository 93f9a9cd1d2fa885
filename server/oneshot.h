// One-shot mode of the fiscal print server: started by the application on the
// operator's terminal for a single job, with the printer row on the command
// line: fisksrv XVENTKLOTE <row>. Results are shown in message boxes.
#pragma once

#include "base/filevar.h"
#include "base/shorttext.h"
#include "server/polling.h"

// The first parameter that selects one-shot mode, compared exactly, case included.
inline constexpr const char* kOneShotMarker = "XVENTKLOTE";

// True when parameter 1 is the marker itself.
bool IsOneShotMarker(const ShortText& parameter);
// Serves parameter 2 as the only printer row: waits for its job file without
// sleeping, runs the job, shows the result and ends silently. Gives exit status 0.
int RunOneShotMode(ServerState& state);
// Closes and erases the job file; on failure shows "Wystąpił problem usunięcia
// pliku pośredniego." for 3000 ms. No retry.
void DeleteJobFileShown(FileVar& file);
