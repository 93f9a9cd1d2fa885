// The server's side of a job file: what kind of job waits, its deletion, and
// the words of its result line.
#pragma once

#include <cstdint>

#include "base/filevar.h"
#include "base/platform.h"
#include "base/shorttext.h"

// Opens the job file read only (retrying each second for as long as it stays
// locked, with the line "BLOKADA  [Ctrl+Break] - zakonczenie pracy servera"
// after every fourth failure) and reads record 1. Gives the JobKind; for
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
