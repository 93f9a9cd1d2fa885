// The application's side of the job files of the fiscal print server.
#pragma once

#include "base/filevar.h"
#include "base/shorttext.h"
#include "fiscal/fiscalconfig.h"

// "srvfisk\<n>" for the configured printer number, or the first line of
// "srvfisk\<n>.cfg" when that file can be read.
ShortText JobFilePath(const FiscalConfig& config);
// Creates the job file once it does not exist, waiting with the notice of the
// tries and, after five, asking whether to wait on; true when refused.
[[nodiscard]] bool OpenJobFile(const FiscalConfig& config, FileVar& file);
// Runs the one-shot server on this terminal ("./fisksrv XVENTKLOTE <row>") when a
// one-shot row is configured, else the helper script with the job's name, else
// nothing (a polling server sees the file).
void StartServer(const FiscalConfig& config, const ShortText& jobPath);
// The notice "Trwa wydruk z drukarki fiskalnej..." for the milliseconds.
void WaitForPrinter(int milliseconds);
