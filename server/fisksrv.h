// The fiscal print server fisksrv as a whole.
#pragma once

// Common start-up (file-creation mask, exit procedure), then polling mode,
// or one-shot mode when parameter 1 is the marker "XVENTKLOTE".
// Gives the exit status.
int FisksrvMain();
