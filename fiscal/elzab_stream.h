// Buffered sending to the ELZAB printer: the application composes the whole
// command stream of a receipt into a work file, then plays it to the printer.
// The file holds, command after command, one byte with the command's length and
// its bytes; a first byte "*" marks a stream that was sent already.
#pragma once

#include <string>
#include <vector>

#include "base/shorttext.h"

// Writes the commands into the work file; 0 or the IO result.
[[nodiscard]] int ElzabWriteStream(const ShortText& path, const std::vector<std::string>& commands);
// The commands of a stream file's bytes; false when the bytes end inside a command.
[[nodiscard]] bool ElzabParseStream(const std::string& bytes, std::vector<std::string>& commands);
// Sends the stream on the port with the operator's resume: a refusal shows the
// printer's reason and Enter sends the command again, Esc gives up (the receipt
// cancelled); a dead line shows the step and the line's failure. Marks the file
// sent ("*") when all went through. True when the printer took every command
// (or the stream had been sent already).
bool ElzabPlayStream(int port, const ShortText& path);
