// The copy of the users list in "dane\uzytkown\uzytkown.dbf" for the tools
// that run without the database.
#include "users/users.h"

// Not written yet: the DBF writer is not in the tree. This is the one place
// where the copy will be made.
bool UsersWriteDbfCopy() { return true; }
