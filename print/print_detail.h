// State shared by the viewer and the destination dialog (not for other folders).
#pragma once

// True while the screen viewer is open: from it the monitor is no destination.
extern bool gPrintViewerOpen;
