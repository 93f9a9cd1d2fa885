// The server's side of a job file: what kind of job waits, its deletion, and
// the words of its result line.
#pragma once

#include <cstdint>

#include "base/filevar.h"
#include "base/platform.h"
#include "base/shorttext.h"
#include "fiscal/settle.h"

// Opens the job file read only (retrying each second for as long as it stays
// locked, with the line "BLOKADA  [Ctrl+Break] - zakonczenie pracy servera (errno)"
// after every fourth failure; a file that is gone ends the wait with kind 0) and
// reads record 1. Gives the JobKind; for
// kinds other than 0 the file stays open at record 2, else it is closed.
[[nodiscard]] uint8_t ClassifyJobFile(const ShortText& path, FileVar& file);
// Closes and erases the job file; on failure writes the line "Wystąpil
// problem usuniecia pliku posredniego." No retry.
void DeleteJobFileLogged(FileVar& file);

// " nie wyk.zad. DD-MM-YYYY HH:MM:SS" with blank-padded numbers, for the moment given.
ShortText JobFailureStampAt(const ClockReading& when);
// JobFailureStampAt for now.
ShortText JobFailureStamp();
// "HH:MM:SS" with each number right-aligned in 2 columns.
ShortText ClockText(const ClockReading& when);
// The result line of a job in polling mode: the result text and " O.K.",
// the failure stamp, or " Wycofanie komendy." for a withdrawal.
ShortText JobResultLine(uint8_t kind, uint8_t result, const ShortText& resultText, const ClockReading& when);

// Takes the check before a receipt into its result text: a receipt that an
// interrupted job left open and that is cancelled now is told
// ("@Anulowano paragon pozostawiony otwarty w drukarce."); one that stays open
// fails the job ("@Nie mozna anulowac paragonu otwartego w drukarce.") and gives
// false. A printer that did not answer is left to the receipt's own commands.
[[nodiscard]] bool NoteSettledReceipt(ReceiptSettle settle, ShortText& resultText);
// The line of the start for a printer found inside a receipt, or empty when none
// was open: "ANULOWANO PARAGON POZOSTAWIONY OTWARTY W DRUKARCE <family>,<port>" or
// "NIE MOZNA ANULOWAC PARAGONU OTWARTEGO W DRUKARCE <family>,<port>".
ShortText SettleStartLine(ReceiptSettle settle, int family, int port);
// What a job file left from an earlier run holds, for the line of its deletion:
// the kind's name, and for a receipt its document number and total in zloty
// ("PARAGON nr P 12/2024 suma 28.43"); "NIEKOMPLETNE" when record 1 names no job.
ShortText StaleJobText(const ShortText& path);
