// The current user: the one state of the module that the rest of the system
// asks for "who is logged in and with what rights".
#include "users/users.h"

namespace {

UserRecord gCurrent;

}  // namespace

void SetCurrentUser(const UserRecord& user) { gCurrent = user; }

void ClearCurrentUser() { gCurrent = UserRecord{}; }

bool UserLoggedIn() { return gCurrent.number != kNoUser; }

int32_t CurrentUserNumber() { return gCurrent.number; }

ShortText CurrentUserName() { return UserLoggedIn() ? UserName(gCurrent) : ShortText(); }

bool CurrentUserMaxRights() { return UserLoggedIn() && gCurrent.maxRights > 0; }

bool CurrentUserIsManager() { return gCurrent.number == kSystemManager; }

bool CurrentUserRight(UserRight r) { return UserLoggedIn() && UserHasRight(gCurrent, r); }

const UserRecord& CurrentUser() { return gCurrent; }
