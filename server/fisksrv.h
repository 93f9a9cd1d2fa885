// The fiscal print server fisksrv as a whole.
#pragma once

// Common start-up (file-creation mask, exit procedure), then polling mode.
// Gives the exit status.
int FisksrvMain();
