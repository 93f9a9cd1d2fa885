// Run-time binding of the PostgreSQL client library. Private to sqltable/:
// the only header outside the .cpp files that names libpq's types.
#pragma once

#include <libpq-fe.h>

#include <string>
#include <string_view>

// The client entry points that the layer calls, resolved by dlsym. An entry
// that the loaded library lacks stays null.
struct PGLibApi {
  PGconn* (*connectdb)(const char*) = nullptr;
  ConnStatusType (*status)(const PGconn*) = nullptr;
  char* (*errorMessage)(const PGconn*) = nullptr;
  PQnoticeProcessor (*setNoticeProcessor)(PGconn*, PQnoticeProcessor, void*) = nullptr;
  void (*finish)(PGconn*) = nullptr;
  PGresult* (*exec)(PGconn*, const char*) = nullptr;
  ExecStatusType (*resultStatus)(const PGresult*) = nullptr;
  int (*ntuples)(const PGresult*) = nullptr;
  int (*nfields)(const PGresult*) = nullptr;
  char* (*getvalue)(const PGresult*, int, int) = nullptr;
  int (*getlength)(const PGresult*, int, int) = nullptr;
  Oid (*oidValue)(const PGresult*) = nullptr;
  void (*clear)(PGresult*) = nullptr;
};

// Number of names the loader looks up, in the order of the client interface.
inline constexpr int kPGLibEntryCount = 98;
// The i-th name looked up (0-based); empty past the end.
std::string_view PGLibEntryName(int i);

// Takes one reference; the first opens "libpq.so" (else "libpq.so.5") and
// resolves every entry. False when the library cannot be opened or lacks an
// entry that the layer calls; the count then stays as it was.
[[nodiscard]] bool PGLibLoad();
// Drops one reference; the last closes the library. No-op at 0.
void PGLibUnload();
// Current reference count.
int PGLibRefs();
// The resolved entry points; valid while PGLibRefs() > 0.
const PGLibApi& PGLib();
// Number of the 98 names that dlsym found in the loaded library.
int PGLibResolvedCount();
// Replaces the shared-object names tried by the next first load (tests).
// An empty list restores the standard pair.
void PGLibSetCandidates(const char* first, const char* second);

// Message of a failed load.
inline constexpr std::string_view kPGLibMissingText =
    "Can not load PosgreSQL client. Is it installed? (libpq.so)";

// The one connection of the process; null when none is open.
extern PGconn* PGConn;
// Loads the client, connects with a keyword string and sets the session up
// (steps shared by PGSetDefaults and PGReconnect).
int16_t PGConnectWithInfo(const std::string& info);
