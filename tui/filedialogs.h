// The file operations that speak to the operator: deletion and copying with
// a progress bar, the safe rename and line-end rewrites with their error
// boxes, opening a file or saying why not, and the file manager.
#pragma once

#include <cstdint>

#include "base/filevar.h"
#include "base/shorttext.h"

// Deletes the plain files of the mask under "Trwa kasowanie...@[          ]",
// the bar filling file by file; returns the number deleted.
int DeleteMany(const ShortText& mask);

// What CopyFileBar copies: the whole file, or a part appended to the target
// (as CopyFileChecked takes them).
struct CopyOptions {
  int64_t start = -1;
  int64_t length = -1;
};
// CopyFileChecked under a box "Kopiowanie pliku:@<source>@na plik:@<target>
// .@[          /          ]" counting blocks done of all blocks; a failure
// is shown as "Błąd " and the code's text (Enter or Esc) over the box.
// Returns the result code.
uint8_t CopyFileBar(const ShortText& source, const ShortText& target, const CopyOptions& options = {});

// RewriteTextFile without changing line ends; a failure is shown ("Błąd
// otwarcia pliku !", "Błąd otwarcia pliku tymczasowego !" or "Błąd <code>
// zmiany nazwy pliku.") and gives false.
bool RenameSafe(const ShortText& oldPath, const ShortText& newPath);
// Rewrites the file in place through RenameSafe with CR LF made LF.
bool DosToUnixFile(const ShortText& path);
// Rewrites the file in place through RenameSafe with LF made CR LF.
bool UnixToDosFile(const ShortText& path);

// Assigns and opens the file for reading; on failure shows "Nie mogę otworzyć
// do odczytu pliku:@" and the path, and gives false.
bool OpenReadOrWarn(FileVar& file, const ShortText& path);
// Assigns and opens the file at its end for appending (append true; a
// missing file is made), or made anew (append false); on failure shows "Nie
// mogę otworzyć w trybie dopisywania pliku:@" or "... zapisywania pliku:@"
// and the path, and gives false.
bool OpenAppendOrWarn(FileVar& file, const ShortText& path, bool append);

// The file manager's command: the first line of "fmgr.cfg" when that file
// exists and the line is not blank, else "/usr/bin/mc -as".
ShortText FileManagerCommand();
// Runs FileManagerCommand through /bin/sh with the terminal given over to it,
// then takes the terminal back and repaints the screen. Returns the shell's
// exit status, or -1 when it could not be run.
int FileManager();
