// DOS-style paths on the Linux disk, and the few whole-file operations. Paths
// may use '\' or '/', may start with "A:\" or "B:\" (the exchange directories
// of "floppdir.cfg"), and name directories in any case: the directories on disk
// are lower case, a file name keeps the case in which it is found.
#pragma once

#include "base/shorttext.h"

// The path as the disk knows it: "A:\" and "B:\" replaced by the exchange
// directories when set, '\' turned to '/', the directory part in lower case,
// and the file name as found on disk (exact, else upper case, else lower case;
// exact when none exists).
ShortText PathToUnix(const ShortText& path);

// The exchange directories that stand for "A:\" (drive 'A') and "B:\" (drive
// 'B'); empty when not set. Read from "floppdir.cfg" in the current directory
// on first use: line 1 is A, line 2 is B.
ShortText ExchangeDir(char drive);
// Sets both exchange directories, replacing what "floppdir.cfg" said.
void SetExchangeDirs(const ShortText& driveA, const ShortText& driveB);
// Forgets the exchange directories, so that "floppdir.cfg" is read again.
void ResetExchangeDirs();

// True if the path names an existing file that is not a directory.
bool FileExists(const ShortText& path);
// True if the path names an existing directory.
bool DirExists(const ShortText& path);
// Removes the file; 0 on success, else the IO result (an errno value).
int DeleteFile(const ShortText& path);
// Gives the file a new name; 0 on success, else the IO result (an errno value).
int RenameFile(const ShortText& oldPath, const ShortText& newPath);
