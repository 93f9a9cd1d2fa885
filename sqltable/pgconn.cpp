// Opening and closing the one connection of the process, and running SQL text.
#include "sqltable/pgconn.h"

#include "base/codepage.h"
#include "sqltable/pglib.h"

ShortText PGLastOp;
bool PGConnected = false;
int32_t PGTransDepth = 0;
bool PGTrimAlpha = false;
std::string PGConnInfo;
PGconn* PGConn = nullptr;

namespace {

// The handler in force before ours; the client's default takes no argument.
PQnoticeProcessor savedNotice = nullptr;
bool noticeInstalled = false;

// Server notices must never reach the terminal: the screen belongs to the
// text interface.
void IgnoreNotice(void* /*arg*/, const char* /*message*/) {}

void InstallQuietNotices() {
  savedNotice = PGLib().setNoticeProcessor(PGConn, IgnoreNotice, nullptr);
  noticeInstalled = true;
}

void RestoreNotices() {
  if (!noticeInstalled) return;
  if (PGConn && PGLib().setNoticeProcessor)
    PGLib().setNoticeProcessor(PGConn, savedNotice, nullptr);
  noticeInstalled = false;
}

void AppendServerText(const char* text) {
  if (text) PGLastOp += DbToMaz(ShortText(std::string_view(text)));
}

// Runs one set-up statement that returns no rows.
int16_t RunSetting(const char* sql) {
  PGResult res;
  return PGExec(res, sql, false);
}

// The connection speaks LATIN2, and backslashes in literals keep the meaning
// the layer's escaping gives them.
int16_t SetUpSession() {
  int16_t status = RunSetting("SET CLIENT_ENCODING='LATIN2'");
  if (status == 0) status = RunSetting("SET standard_conforming_strings=off");
  if (status == 0) status = RunSetting("SET escape_string_warning=off");
  return status;
}

}  // namespace

// Loads the client, connects, keeps the keyword string and sets the session up.
int16_t PGConnectWithInfo(const std::string& info) {
  if (PGConn) PGDisconnect();  // one connection per process: a new one replaces the old
  if (!PGLibLoad()) {
    PGLastOp += kPGLibMissingText;
    PGConnected = false;
    return kPGConnectFailed;
  }
  int16_t status = 0;
  PGConn = PGLib().connectdb(info.c_str());
  if (!PGConn || PGLib().status(PGConn) == CONNECTION_BAD) {
    // The failed handle serves nothing; the library stays counted until PGDisconnect.
    if (PGConn) {
      AppendServerText(PGLib().errorMessage(PGConn));
      PGLib().finish(PGConn);
      PGConn = nullptr;
    }
    status = kPGConnectFailed;
  }
  PGConnected = (status == 0);
  if (!PGConnected) return status;
  if (PGConnInfo.empty()) PGConnInfo = info;
  InstallQuietNotices();
  status = SetUpSession();
  if (status != 0) {
    RestoreNotices();
    PGLib().finish(PGConn);
    PGConn = nullptr;
  }
  PGConnected = (status == 0);
  return status;
}

PGResult::~PGResult() { Clear(); }

PGResult::PGResult(PGResult&& other) noexcept : res_(other.res_) { other.res_ = nullptr; }

PGResult& PGResult::operator=(PGResult&& other) noexcept {
  if (this != &other) {
    Clear();
    res_ = other.res_;
    other.res_ = nullptr;
  }
  return *this;
}

int PGResult::Rows() const { return res_ ? PGLib().ntuples(res_) : 0; }

int PGResult::Cols() const { return res_ ? PGLib().nfields(res_) : 0; }

std::string_view PGResult::Value(int row, int col) const {
  if (!res_ || row < 0 || col < 0 || row >= Rows() || col >= Cols()) return {};
  const char* v = PGLib().getvalue(res_, row, col);
  if (!v) return {};
  return std::string_view(v, static_cast<std::size_t>(PGLib().getlength(res_, row, col)));
}

void PGResult::Clear() {
  // The result may outlive the connection but never the library.
  if (res_ && PGLibRefs() > 0) PGLib().clear(res_);
  res_ = nullptr;
}

void PGResult::Reset(pg_result* res) {
  Clear();
  res_ = res;
}

std::string PGKeywordString(const std::string lines[6]) {
  // Lines: host, hostaddr, port, user, password, dbname. No quoting is done,
  // so a value holding a blank cannot be expressed.
  static constexpr int kOrder[6] = {5, 3, 4, 0, 1, 2};
  static constexpr const char* kKeyword[6] = {"host=",     "hostaddr=", "port=",
                                              "user=",     "password=", "dbname="};
  std::string out;
  for (int idx : kOrder) {
    if (lines[idx].empty()) continue;
    out += kKeyword[idx];
    out += lines[idx];
    out += ' ';
  }
  return out;
}

int16_t PGReconnect(const std::string& connInfo) {
  PGLastOp = "PGReconnect:@";
  return PGConnectWithInfo(PGConnInfo.empty() ? connInfo : PGConnInfo);
}

void PGDisconnect() {
  if (PGConn) {
    RestoreNotices();
    PGLib().finish(PGConn);
    PGConn = nullptr;
  }
  PGConnected = false;
  PGLibUnload();
}

int16_t PGInit() {
  PGLastOp = "PGInit";
  PGResult res;
  return PGExec(res, "SELECT 1 FROM tables_list LIMIT 1", true) == 0 ? kPGOk : kPGNoCatalogue;
}

int16_t PGinitializett() {
  PGLastOp = "PGinitializett";
  PGResult res;
  if (PGExec(res,
             "CREATE TABLE tables_list (nazt varchar(255),nazp varchar(25),typp varchar(4),"
             "k char default '',i char default '',ci varchar(25) default '',temp char default '',"
             "maxrec int default 0,lp int default 0,cilp int default 0,lck char default 'N',"
             "typi smallint default 0,typci smallint default 0,il_zm int default -2147483647,"
             "PRIMARY KEY (nazt,nazp))",
             false) != 0)
    return kPGCatalogueNotCreated;
  if (PGExec(res, "CREATE INDEX tables_list_lp on tables_list(lp)", false) != 0)
    return kPGCatalogueIndexNotCreated;
  return kPGOk;
}

uint64_t PGStatementCount = 0;

int16_t PGExec(PGResult& out, const std::string& sql, bool wantsTuples) {
  ++PGStatementCount;
  const ExecStatusType expected = wantsTuples ? PGRES_TUPLES_OK : PGRES_COMMAND_OK;
  out.Clear();
  if (!PGConn || PGLibRefs() == 0) return kPGNoResult;
  out.Reset(PGLib().exec(PGConn, sql.c_str()));
  if (!out.Valid()) return kPGNoResult;
  if (PGLib().resultStatus(out.Raw()) == expected) return kPGOk;
  out.Clear();
  PGLastOp += ":@";
  AppendServerText(PGLib().errorMessage(PGConn));
  return kPGExecFailed;
}

int16_t PGExecCur(PGResult& out, const std::string& sql, bool wantsTuples) {
  return PGExec(out, sql, wantsTuples);
}
