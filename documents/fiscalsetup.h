// The operator's fiscal printer settings and their dialog. konffisk.txt is a
// personal copy in the user's directory (dane\uzytkown\<n>\, copied from user
// 0's when the user is made); a user without one has no fiscal printer.
// konffiss.txt (helper script, ELZAB delay) belongs to the workstation and
// stands in the firm's directory that klote runs in. The dialog offers the VAT
// groups of the firm's dictionary for the printer's rates.
#pragma once

#include "base/shorttext.h"
#include "fiscal/fiscalconfig.h"

// "dane\uzytkown\<n>\" of the current user: where his konffisk.txt lies.
ShortText UserFiscalConfigDirectory();
// The current user's settings with the workstation's konffiss.txt.
FiscalConfig ReadUserFiscalConfig();
// Writes the current user's konffisk.txt and the workstation's konffiss.txt;
// 0 or the IO result of the failing step.
[[nodiscard]] int WriteUserFiscalConfig(const FiscalConfig& config);
// Reads the current user's settings into CurrentFiscalConfig and hands them to the drivers.
void LoadUserFiscalConfig();

// The description of the settings that the dialog's first question shows.
ShortText FiscalConfigDescription(const FiscalConfig& config);

// The seven printer rates, each given the VAT group of the program that it
// prints (empty: none); Esc gives false and leaves config as it was.
bool EditVatMapping(FiscalConfig& config);
// The dialog over config: type, port or server row, documents, VAT rates and
// the questions of the type. False when the operator gave it up (config unchanged).
bool EditFiscalSettings(FiscalConfig& config);
// The menu's dialog: the current user's settings, changed, written and
// followed by the reminders; true when they were written.
bool EditFiscalConfig();
