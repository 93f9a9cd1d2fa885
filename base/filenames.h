// Names of files and database objects: the temporary directory and unique
// temporary names, the search along PATH, and the short and safe forms of a
// long name.
#pragma once

#include "base/shorttext.h"

// The directory for temporary files: TEMP, else TMP, else the current
// directory; always ending in '/'.
ShortText TempDir();
// A new file "rfls$$$$.tmp" in TempDir, the four '$' being letters or digits
// that make it unique; the file is made empty (so no other process can take
// the name) and its path is returned. Empty when no name could be had.
ShortText TempName();
// The same in the given directory (empty: the current one; a '/' is added
// when missing).
ShortText TempNameIn(const ShortText& directory);
// A name for a temporary table: "DB" and a number in ToBase26 that no other
// call of any process running now gives.
ShortText TempTableName();

// The full path of the first existing file of that name in the directories
// of PATH (split at ':' or ';', an empty entry meaning the current directory,
// relative entries and "../" resolved from the current directory). A name with
// a '/' is looked up as it stands. False and an empty out when none is found.
[[nodiscard]] bool FindOnPath(const ShortText& name, ShortText& out);

// An 8-character DOS name from a long one, with a check character ninth:
// upper case, plain letters, cut or filled with '_' to 8, every character not
// allowed in a DOS name made '_'. The check character is the XOR of the whole
// converted text, moved upward (past 126 to '!') until it is allowed.
ShortText ShortName(const ShortText& text);
// A name of 10 to 20 characters for a database object: letters, digits and
// '_' kept, all else '_', filled with '_' to 10. A text over 20 long is cut,
// and the XOR of all its bytes in decimal ends it.
ShortText SafeKey(const ShortText& text);
