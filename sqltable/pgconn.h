// The bottom of the table layer: the one database connection of the process,
// SQL text execution, the logical transaction counter, result-code texts and
// the log of failed statements. Every operation returns a 16-bit code, 0 for
// success. The client library's types stay inside sqltable/.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/shorttext.h"

struct pg_result;  // the client library's result; opaque outside sqltable/

// Result codes that the layer itself produces.
inline constexpr int16_t kPGOk = 0;
inline constexpr int16_t kPGArgRange = 31;
inline constexpr int16_t kPGBadArgument = 33;
inline constexpr int16_t kPGNoResult = 40;
inline constexpr int16_t kPGRecordGone = 50;
inline constexpr int16_t kPGBlobKey = 57;
inline constexpr int16_t kPGBlobSearch = 60;
inline constexpr int16_t kPGNoTableHandle = 72;
inline constexpr int16_t kPGBadFieldName = 74;
inline constexpr int16_t kPGBadFieldHandle = 75;
inline constexpr int16_t kPGBadTableHandle = 76;
inline constexpr int16_t kPGNoCatalogue = 79;
inline constexpr int16_t kPGLayoutDiffers = 81;
inline constexpr int16_t kPGRecordNotFound = 89;
inline constexpr int16_t kPGIndexNotCreated = 94;
inline constexpr int16_t kPGNoPrimaryKey = 95;
inline constexpr int16_t kPGIndexInCatalogue = 97;
inline constexpr int16_t kPGCatalogueRows = 99;
inline constexpr int16_t kPGEndOfTable = 101;
inline constexpr int16_t kPGStartOfTable = 102;
inline constexpr int16_t kPGNoRecordBuffer = 103;
inline constexpr int16_t kPGBadRecordBuffer = 104;
inline constexpr int16_t kPGEmptyTable = 105;
inline constexpr int16_t kPGRecordLock = 110;
inline constexpr int16_t kPGSqlFailed = 118;
inline constexpr int16_t kPGTableNotFound = 120;
inline constexpr int16_t kPGIndexNotFound = 121;
inline constexpr int16_t kPGCompositeNotFound = 122;
inline constexpr int16_t kPGNoParameters = 1000;
inline constexpr int16_t kPGConnectFailed = 1001;
inline constexpr int16_t kPGExecFailed = 1002;
inline constexpr int16_t kPGCatalogueNotCreated = 1003;
inline constexpr int16_t kPGCatalogueIndexNotCreated = 1004;
inline constexpr int16_t kPGLockOutsideTransaction = 1005;

// Rows of one statement, owned: the client's result is freed when this is
// destroyed, cleared or given another result.
class PGResult {
 public:
  PGResult() = default;
  ~PGResult();
  PGResult(PGResult&& other) noexcept;
  PGResult& operator=(PGResult&& other) noexcept;
  PGResult(const PGResult&) = delete;
  PGResult& operator=(const PGResult&) = delete;

  // True while a result is held.
  bool Valid() const { return res_ != nullptr; }
  // Row count; 0 without a result.
  int Rows() const;
  // Column count; 0 without a result.
  int Cols() const;
  // Value text of a cell (0-based), bytes as the server sent them (LATIN2);
  // empty outside the result.
  std::string_view Value(int row, int col) const;
  // The same cut to 255 bytes.
  ShortText Text(int row, int col) const { return ShortText(Value(row, col)); }
  // Frees the result.
  void Clear();
  // Takes ownership of a client result, freeing the one held (sqltable/ only).
  void Reset(pg_result* res);
  pg_result* Raw() const { return res_; }

 private:
  pg_result* res_ = nullptr;
};

// Process-wide state of the connection.
// Name of the table operation being run and, after a failure, ":@" and the server's message.
extern ShortText PGLastOp;
// True after a successful connection and encoding set-up.
extern bool PGConnected;
// Number of open logical transactions.
extern int32_t PGTransDepth;
// Second field of "pxengine.cfg" was 1: PGPutAlpha strips trailing blanks.
extern bool PGTrimAlpha;
// The keyword string that connected, kept for PGReconnect.
extern std::string PGConnInfo;

// Reads "pxengine.cfg" / "$HOME/orbel-sql/conn_parm.cfg", loads the client,
// connects and sets the encoding: 0, 1000 (no parameters), 1001 (no connection)
// or the code of the encoding statement.
[[nodiscard]] int16_t PGSetDefaults();
// Connects again with the kept PGConnInfo (or the given keyword string when
// none is kept); codes as PGSetDefaults.
[[nodiscard]] int16_t PGReconnect(const std::string& connInfo = std::string());
// 0 when tables_list can be read, else 79.
[[nodiscard]] int16_t PGInit();
// Creates tables_list and its index: 0, 1003 or 1004.
[[nodiscard]] int16_t PGinitializett();
// Closes the connection and drops one reference to the client library.
void PGDisconnect();
// The keyword string built from the six lines of conn_parm.cfg (host,
// hostaddr, port, user, password, dbname): "keyword=value " for each
// non-empty value, in the order dbname, user, password, host, hostaddr, port.
std::string PGKeywordString(const std::string lines[6]);

// Statements sent to the server so far (one round trip each); for measurements.
extern uint64_t PGStatementCount;

// Runs one statement. Success (0) needs status "tuples" when wantsTuples,
// else "command ok"; the result then stays in out. 40: no result at all;
// 1002: any other status, with ":@" and the server's text added to PGLastOp.
[[nodiscard]] int16_t PGExec(PGResult& out, const std::string& sql, bool wantsTuples);
// The same contract for cursor traffic (DECLARE, FETCH, CLOSE, snapshots).
[[nodiscard]] int16_t PGExecCur(PGResult& out, const std::string& sql, bool wantsTuples);
// Runs a statement that returns no rows under its own PGLastOp; a failure is logged.
[[nodiscard]] int16_t PGRunQueryNoTup(const std::string& sql);
// Runs a statement that returns rows into out; a failure is logged.
[[nodiscard]] int16_t PGRunQueryWithTup(const std::string& sql, PGResult& out);
// Appends the failed statement, PGLastOp and the screen to "error.log" in the
// current directory; shows the statement on the screen when the log cannot be opened.
void PGLogBadQuery(const std::string& sql);

// Logical transactions nest; only the outermost reaches the server. A failed
// BEGIN, COMMIT or ROLLBACK shows two message boxes and ends the program (exit 0).
int16_t PGTransBegin();
int16_t PGTransCommit();
int16_t PGTransRollback();
int16_t PGTransCommitAll();
int16_t PGTransRollbackAll();

// Message text of a result code (first match in the table of 92; 200..250 and
// unknown codes get the generic texts).
ShortText PGErrText(int16_t code);
// Number of rows in the code table, and its i-th code (0-based), for checks.
int PGErrTableSize();
int16_t PGErrTableCode(int i);
// Prints "Błąd klienta DBMS nr: " with the code and its text on standard
// output and ends the program (exit 0); for use before the screen exists.
[[noreturn]] void PGFatalClientError(int16_t code);
