// The server's output: plain lines on standard output, for which a log file
// named on the command line may stand in. With a log file the output is
// closed and reopened after each result, so every result is on disk at once.
#pragma once

#include "base/shorttext.h"

// Makes the log file (path through AssignFile) standard output: opened for
// appending, else created anew. False, with the screen kept, when neither works.
[[nodiscard]] bool OpenLogAsOutput(const ShortText& logName);
// True while a log file stands for standard output.
bool LogIsOpen();
// Closes the log file and opens it for appending again.
void ReopenLog();
// Flushes and closes the log file (the exit procedure's step).
void CloseLog();

// Writes the bytes as they are, without a line end.
void WriteOut(const ShortText& text);
// Writes the text and a line end.
void WriteLine(const ShortText& text);
// Sends what is buffered to the screen or the file.
void FlushOut();
