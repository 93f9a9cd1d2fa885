// Helpers shared by the table layer's tests.
#pragma once

#include <fstream>
#include <sstream>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "dbfixture.h"
#include "sqltable/pglib.h"
#include "sqltable/pgtable.h"

// A suite whose tests each start on an empty database, connected through
// PGSetDefaults, and leave the layer closed.
class ConnectedTest : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
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
  }
  // One value read with psql from the suite's database.
  static std::string Scalar(const std::string& sql) {
    std::string out;
    Psql(sql, &out);
    while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
    return out;
  }
  static std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
  }
};

// A connected suite with tables_list in place.
class CatalogueTest : public ConnectedTest {
 protected:
  void SetUp() override {
    ConnectedTest::SetUp();
    ASSERT_EQ(PGinitializett(), 0) << PGLastOp.Str();
  }
};

// Creates a table from (name, type) pairs.
inline int16_t CreateTable(const ShortText& path, std::initializer_list<std::pair<const char*, const char*>> fields) {
  std::vector<PGName> names, types;
  for (const auto& f : fields) {
    names.emplace_back(f.first);
    types.emplace_back(f.second);
  }
  return PGTblCreate(path, static_cast<int>(names.size()), names.data(), types.data());
}
