// The start and the end of the server process: the file-creation mask is 0
// while the server runs (job files and logs are shared between users), and
// the exit procedure runs on every end of the process, normal, fatal, by a
// run-time error or by a signal: it restores the mask, releases the printer
// lines, closes the log file and gives the terminal its settings back.
#pragma once

// Sets the file-creation mask to 0, remembering the old one, and installs
// the exit procedure (at exit and for SIGINT, SIGTERM, SIGHUP and SIGQUIT).
void BeginServerProcess();
