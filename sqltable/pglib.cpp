// Loading the client library by name at run time, with a reference count so
// that a reconnection or a second user of the layer does not reopen it.
#include "sqltable/pglib.h"

#include <dlfcn.h>

#include <array>

namespace {

// The whole client interface of the generation the layer was written for,
// looked up in this order. Only the entries of PGLibApi are ever called.
constexpr std::array<std::string_view, kPGLibEntryCount> kEntryNames = {
    "PQconnectStart", "PQconnectPoll", "PQconnectdb", "PQsetdbLogin", "PQfinish",
    "PQconndefaults", "PQconninfoFree", "PQresetStart", "PQresetPoll", "PQreset",
    "PQrequestCancel", "PQdb", "PQuser", "PQpass", "PQhost", "PQport", "PQtty",
    "PQoptions", "PQstatus", "PQtransactionStatus", "PQparameterStatus",
    "PQprotocolVersion", "PQerrorMessage", "PQsocket", "PQbackendPID",
    "PQclientEncoding", "PQsetClientEncoding", "PQsetErrorVerbosity", "PQtrace",
    "PQuntrace", "PQsetNoticeReceiver", "PQsetNoticeProcessor", "PQexec",
    "PQexecParams", "PQexecPrepared", "PQPrepare", "PQsendQuery", "PQsendQueryParams",
    "PQsendQueryPrepared", "PQgetResult", "PQisBusy", "PQconsumeInput", "PQnotifies",
    "PQputCopyData", "PQputCopyEnd", "PQgetCopyData", "PQgetline", "PQputline",
    "PQgetlineAsync", "PQputnbytes", "PQendcopy", "PQsetnonblocking",
    "PQisnonblocking", "PQflush", "PQfn", "PQresultStatus", "PQresStatus",
    "PQresultErrorMessage", "PQresultErrorField", "PQntuples", "PQnfields",
    "PQbinaryTuples", "PQfname", "PQfnumber", "PQftable", "PQftablecol", "PQfformat",
    "PQftype", "PQfsize", "PQfmod", "PQcmdStatus", "PQoidStatus", "PQoidValue",
    "PQcmdTuples", "PQgetvalue", "PQgetlength", "PQgetisnull", "PQclear",
    "PQfreemem", "PQmakeEmptyPGresult", "PQescapeString", "PQescapeBytea",
    "PQunescapeBytea", "PQprint", "PQdisplayTuples", "PQprintTuples", "lo_open",
    "lo_close", "lo_read", "lo_write", "lo_lseek", "lo_creat", "lo_tell", "lo_unlink",
    "lo_import", "lo_export", "PQmblen", "PQenv2encoding",
};

// Debian ships the unversioned name only with the development package.
constexpr const char* kStandardFirst = "libpq.so";
constexpr const char* kStandardSecond = "libpq.so.5";

struct LibState {
  void* handle = nullptr;
  int refs = 0;
  int resolved = 0;
  std::array<void*, kPGLibEntryCount> entries{};
  PGLibApi api;
  const char* first = kStandardFirst;
  const char* second = kStandardSecond;
};

LibState& State() {
  static LibState state;
  return state;
}

void* Entry(std::string_view name) {
  const LibState& s = State();
  for (int i = 0; i < kPGLibEntryCount; ++i)
    if (kEntryNames[i] == name) return s.entries[i];
  return nullptr;
}

template <typename Fn>
void Bind(Fn& slot, std::string_view name) {
  slot = reinterpret_cast<Fn>(Entry(name));
}

void BindApi(PGLibApi& api) {
  Bind(api.connectdb, "PQconnectdb");
  Bind(api.status, "PQstatus");
  Bind(api.errorMessage, "PQerrorMessage");
  Bind(api.setNoticeProcessor, "PQsetNoticeProcessor");
  Bind(api.finish, "PQfinish");
  Bind(api.exec, "PQexec");
  Bind(api.resultStatus, "PQresultStatus");
  Bind(api.ntuples, "PQntuples");
  Bind(api.nfields, "PQnfields");
  Bind(api.getvalue, "PQgetvalue");
  Bind(api.getlength, "PQgetlength");
  Bind(api.oidValue, "PQoidValue");
  Bind(api.clear, "PQclear");
}

// The entries that the layer calls; a library without one of them is not a
// client the layer can use.
bool ApiComplete(const PGLibApi& a) {
  return a.connectdb && a.status && a.errorMessage && a.setNoticeProcessor && a.finish && a.exec &&
         a.resultStatus && a.ntuples && a.nfields && a.getvalue && a.getlength && a.clear;
}

void ResolveAll(LibState& s) {
  s.resolved = 0;
  for (int i = 0; i < kPGLibEntryCount; ++i) {
    std::string name(kEntryNames[i]);
    s.entries[i] = dlsym(s.handle, name.c_str());
    if (s.entries[i]) ++s.resolved;
  }
  BindApi(s.api);
}

}  // namespace

std::string_view PGLibEntryName(int i) {
  return (i >= 0 && i < kPGLibEntryCount) ? kEntryNames[i] : std::string_view();
}

bool PGLibLoad() {
  LibState& s = State();
  if (++s.refs > 1) return true;
  s.handle = dlopen(s.first, RTLD_NOW | RTLD_LOCAL);
  if (!s.handle && s.second) s.handle = dlopen(s.second, RTLD_NOW | RTLD_LOCAL);
  if (s.handle) ResolveAll(s);
  if (!s.handle || !ApiComplete(s.api)) {
    s.refs = 1;
    PGLibUnload();
    return false;
  }
  return true;
}

void PGLibUnload() {
  LibState& s = State();
  if (s.refs <= 0) return;
  if (--s.refs > 0) return;
  if (s.handle) dlclose(s.handle);
  s.handle = nullptr;
  s.entries.fill(nullptr);
  s.api = PGLibApi{};
  s.resolved = 0;
}

int PGLibRefs() { return State().refs; }

const PGLibApi& PGLib() { return State().api; }

int PGLibResolvedCount() { return State().resolved; }

void PGLibSetCandidates(const char* first, const char* second) {
  LibState& s = State();
  s.first = first ? first : kStandardFirst;
  s.second = first ? second : kStandardSecond;
}
