// Reading tables_list, shared by the catalogue operations. Private to sqltable/.
#pragma once

#include <string>
#include <vector>

#include "sqltable/pgtable.h"

// One row of tables_list.
struct PGCatalogueRow {
  PGName nazp;
  PGName typp;
  bool key = false;      // k = "*"
  bool indexed = false;  // i = "*"
  PGName ci;
  bool temp = false;     // temp = "*"
  int lp = 0;
  int cilp = 0;
  int typi = 0;
  int typci = 0;
  int32_t ilZm = 0;
};

// Reads the rows of one table (by SQL name) in field order: 0 or 118.
int16_t PGReadCatalogue(const ShortText& sqlName, std::vector<PGCatalogueRow>& rows);
// The field names of a catalogue read joined by ",", from field `from` to `to` (1-based).
std::string PGJoinFieldNames(const std::vector<PGCatalogueRow>& rows, int from, int to);
// Runs a statement without rows; 0 or the code of PGExec.
int16_t PGRunStatement(const std::string& sql);
// Runs a statement returning rows into out; 0 or the code of PGExec.
int16_t PGRunSelect(const std::string& sql, PGResult& out);
// Text of a 32-bit number.
std::string PGNum(long long value);
