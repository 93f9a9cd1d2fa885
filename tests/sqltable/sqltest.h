// Helpers shared by the table layer's tests.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "dbfixture.h"
#include "sqltable/pglib.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "tui/tui_fixture.h"

// A suite whose tests each start on an empty database, connected through
// PGSetDefaults, and leave the layer closed.
class ConnectedTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    // A terminal without a terminal: bytes into a string, keys from the buffer only.
    TermOutputToBuffer(&screenBytes_);
    tui_test::InitTerminal("xterm");
    ASSERT_TRUE(WipeDatabase());
    WriteDefaultConnParm();
    PGTransDepth = 0;
    PGTrimAlpha = false;
    PGConnInfo.clear();
    ASSERT_EQ(PGSetDefaults(), 0) << PGLastOp.Str();
  }
  void TearDown() override {
    PGShutdownTables(1);
    while (PGConnected || PGLibRefs() > 0) PGDisconnect();
    PGTransDepth = 0;
    std::remove("error.log");
    SetKeyIdleHook(nullptr);
    TermOutputToBuffer(nullptr);
    TermOutputToFd(-1);
  }
  // What the terminal received so far.
  std::string ScreenBytes() {
    TermFlush();
    return screenBytes_;
  }
  // One value read with psql from the suite's database.
  static std::string Scalar(const std::string& sql) {
    std::string out;
    Psql(sql, &out);
    while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
    return out;
  }
  // From now on every wait for a key prints the screen's rows on standard
  // error and is answered with Enter: death tests read the boxes from there.
  static void AnswerBoxesOnStderr() {
    SetKeyIdleHook([] {
      for (int row = 1; row <= kScreenRows; ++row) {
        const ShortText text = RowText(row);
        std::fwrite(text.Data(), 1, static_cast<std::size_t>(text.Length()), stderr);
        std::fputc('\n', stderr);
      }
      PushKey(13, 28);
    });
  }
  static std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
  }

  std::string screenBytes_;
};

// A connected suite with tables_list in place.
class CatalogueTest : public ConnectedTest {
 protected:
  void SetUp() override {
    ConnectedTest::SetUp();
    ASSERT_EQ(PGinitializett(), 0) << PGLastOp.Str();
  }
  // The table's indexes in name order, each "[UNIQUE ]name (columns)", ';' between them.
  static std::string IndexesOf(const std::string& table) {
    return Scalar("SELECT string_agg(regexp_replace(indexdef, 'CREATE (UNIQUE )?INDEX (\\S+) ON \\S+ USING btree ', "
                  "'\\1\\2 '), ';' ORDER BY indexname) FROM pg_indexes WHERE schemaname=current_schema() AND tablename='" +
                  table + "'");
  }
  // The table's catalogue rows in field order, each "name/type/k/i/ci/cilp/typi/typci", ' ' between them.
  static std::string CatalogueOf(const std::string& table) {
    return Scalar("SELECT string_agg(concat_ws('/', nazp, typp, trim(k), trim(i), ci, cilp, typi, typci), ' ' "
                  "ORDER BY lp) FROM tables_list WHERE nazt='" + table + "'");
  }
};

// A catalogue suite that works on one open table through one record buffer.
class OneTableTest : public CatalogueTest {
 protected:
  void OpenTable(const ShortText& path, int index = 0) {
    ASSERT_EQ(PGTblOpen(path, tbl_, index), 0) << PGLastOp.Str();
    ASSERT_EQ(PGRecBufOpen(tbl_, rec_), 0);
  }
  // A field of the current row, read through the buffer.
  int32_t LongOf(int fld) {
    int32_t v = -1;
    EXPECT_EQ(PGRecGet(tbl_, rec_), 0);
    EXPECT_EQ(PGGetLong(rec_, fld, v), 0);
    return v;
  }
  std::string AlphaOf(int fld) {
    ShortText v;
    EXPECT_EQ(PGRecGet(tbl_, rec_), 0);
    EXPECT_EQ(PGGetAlpha(rec_, fld, v), 0);
    return v.Str();
  }
  // A move's or a search's code, and a field of the row it leaves the table on.
  void ExpectOn(int16_t code, int fld, int32_t value, int16_t expected = 0) {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(LongOf(fld), value);
  }
  void ExpectOn(int16_t code, int fld, const char* text, int16_t expected = 0) {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(AlphaOf(fld), text);
  }
  // The number of the current row as the layer counts it.
  int32_t Num() {
    int32_t n = -1;
    EXPECT_EQ(PGRecNum(tbl_, n), 0);
    return n;
  }

  int16_t tbl_ = 0, rec_ = 0;
};

// Creates a table from (name, type) pairs.
inline int16_t CreateTable(const ShortText& path, const std::vector<std::pair<const char*, const char*>>& fields) {
  std::vector<PGName> names, types;
  for (const auto& f : fields) {
    names.emplace_back(f.first);
    types.emplace_back(f.second);
  }
  return PGTblCreate(path, static_cast<int>(names.size()), names.data(), types.data());
}
inline int16_t CreateTable(const ShortText& path, std::initializer_list<std::pair<const char*, const char*>> fields) {
  return CreateTable(path, std::vector<std::pair<const char*, const char*>>(fields));
}

// Creates a table, opens it and a record buffer on it.
inline void CreateAndOpen(const ShortText& path, const std::vector<std::pair<const char*, const char*>>& fields,
                          int16_t& tbl, int16_t& rec) {
  ASSERT_EQ(CreateTable(path, fields), 0) << PGLastOp.Str();
  ASSERT_EQ(PGTblOpen(path, tbl, 0), 0) << PGLastOp.Str();
  ASSERT_EQ(PGRecBufOpen(tbl, rec), 0);
}

// In a forked child: a connection of its own, the parent's left untouched.
inline void ConnectChild() {
  PGConn = nullptr;
  PGConnected = false;
  PGTransDepth = 0;
  if (PGSetDefaults() != 0) _exit(3);
}

// The exit status of a child process, -1 when it did not exit normally.
inline int ExitStatus(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}
