// A firm with three warehouses whose documents the test saves straight
// through the table layer, keeping its own copy of every line so that the
// expected figures are computed from the inputs, not read back.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "base/real.h"
#include "sqltable/sqltest.h"

// One line of an expected report: printf's format, ending in CR LF.
std::string Line(const char* format, ...) __attribute__((format(printf, 1, 2)));
int32_t Day(int y, int m, int d);
// The two figures differ by less than 1e-4.
void ExpectNear(Real actual, Real expected, const std::string& what);
// The text key by which a report sorts a number: -100 times the value at two
// decimals, "a" before a negative one, "b" before the rest.
std::string SortKey(Real value);

// How many temporary tables the layer's connection holds (sibling test
// processes in the same database keep theirs apart).
std::string TemporaryTablesLeft();

// What each kind does to stock, written out here on its own.
inline const std::set<int16_t> kIssues = {1, 2, 4, 8, 9, 13, 14, 15};
inline const std::set<int16_t> kReceipts = {3, 5, 6, 7, 10, 11, 12, 18};
// Catalogue purchase price (gross) and group of item n of the quarter.
inline const Real kPrices[] = {0, 1.25L, 2.5L, 4, 0.5L, 3};
inline const char* const kGroups[] = {"", "NABIAL", "PIECZYWO", "NABIAL", "", "OWOCE"};

struct SavedLine {
  int32_t warehouse = 0;
  int16_t kind = 0;
  int32_t date = 0;  // day serial
  int32_t item = 0;
  Real quantity = 0, purchaseNet = 0, purchaseGross = 0, saleNet = 0, saleGross = 0;
  Real onDeposit = 0;  // ilosc_w_depozycie; a document with any marks its header as a deposit
};

class DocumentsTest : public CatalogueTest {
 protected:
  void SetUp() override;
  // A catalogue row: number, name, supplier, purchase price gross, group (k3_grupa_tow).
  void AddItem(int32_t item, const ShortText& name, int32_t supplier, Real purchaseGross = 0,
               const ShortText& group = ShortText());
  // A warehouse row of dane\magazyny.
  void AddWarehouse(int32_t number, const char* name);
  // One document: its header and its lines (warehouse, kind and date taken from the first line).
  void SaveDocument(int32_t number, const std::vector<SavedLine>& lines);
  // Two items, two warehouses; in warehouse 1 an opening balance in January
  // (10 of item 1, 4 of item 2) and a retail sale on 5 February (3 and 1.5).
  void SaveSmallFirm();
  // Items 1-5 (supplier 100 for even numbers, 200 for odd) and, in warehouses
  // 1 and 2, a document of every kind in each month of the first quarter of
  // 2026, some lines partly on deposit; item 6 has lines but no catalogue row,
  // item 5 lines only in February, item 3 another purchase price in March;
  // warehouse 3 holds one line before all.
  void SaveQuarter();

  std::vector<SavedLine> saved_;
  std::set<int32_t> catalogue_;
  std::vector<int32_t> suppliers_ = std::vector<int32_t>(100, 0);  // supplier of item n
};
