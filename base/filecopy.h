// The checked copy: every block written is read back from the target and
// compared with the source, so that a bad diskette or a full disk shows at
// once. The result is a code with a text of its own; nothing is thrown.
#pragma once

#include <cstdint>
#include <functional>

#include "base/shorttext.h"

// Bytes moved per step of CopyFileChecked; the step of the progress bar.
inline constexpr int kCopyBlockSize = 16 * 1024;

// Result codes of CopyFileChecked.
inline constexpr uint8_t kCopyOk = 0;
inline constexpr uint8_t kCopyNoBuffer = 1;
inline constexpr uint8_t kCopySourceOpen = 2;
inline constexpr uint8_t kCopyTargetOpen = 3;
inline constexpr uint8_t kCopyTargetEnd = 4;
inline constexpr uint8_t kCopySourceRead = 5;
inline constexpr uint8_t kCopyTargetWrite = 6;
inline constexpr uint8_t kCopyReadBack = 7;
inline constexpr uint8_t kCopyCompare = 8;
inline constexpr uint8_t kCopyTargetCreate = 9;

// The operator's text of a result code; "Błąd odczytu/zapisu." for an unknown one.
ShortText CopyResultText(uint8_t code);

// Called after each block: blocks done so far and the blocks of the whole copy.
using CopyProgress = std::function<void(int64_t blocksDone, int64_t blocksTotal)>;

// Copies length bytes of source from start into target, reading each block
// back and comparing it. start -1 copies the whole source into a target made
// anew; start 0 or more appends the part to the target (made when missing);
// length -1 means up to the end of the source. A part beyond the source's end
// copies nothing. Times and attributes are not copied. A failure leaves what
// was written so far in the target. Returns the result code.
[[nodiscard]] uint8_t CopyFileChecked(const ShortText& source, const ShortText& target, int64_t start,
                                      int64_t length, const CopyProgress& progress = {});
