// Helpers shared by the bulk operations' files. Private to users/.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/shorttext.h"
#include "sqltable/pgtable.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

namespace bulk_detail {

// One field as the catalogue holds it.
struct CatalogueField {
  std::string name;
  ShortText type;
};

// The SQL name of a table path.
inline std::string SqlName(const ShortText& table) { return PGSqlName(table).Str(); }
// Runs a statement without rows; its code.
[[nodiscard]] int16_t Run(const std::string& sql);
// The table's fields in order; 118 when the catalogue cannot be read or has none.
[[nodiscard]] int16_t ReadFields(const std::string& sqlName, std::vector<CatalogueField>& fields);
// The field names joined by ",", each after prefix.
std::string JoinNames(const std::vector<CatalogueField>& fields, const std::string& prefix = "");
// Runs steps in one transaction that also bumps the table's change counter;
// commits on 0, rolls back on anything else. The code of the steps.
[[nodiscard]] int16_t RewriteInTransaction(const std::string& sqlName, const std::function<int16_t()>& steps);

// A box with a bar of ten cells, shown at once and put away when destroyed;
// the bar is redrawn only when another cell fills.
class ProgressBoxTen {
 public:
  ProgressBoxTen(const ShortText& text, long total);
  ~ProgressBoxTen();
  ProgressBoxTen(const ProgressBoxTen&) = delete;
  ProgressBoxTen& operator=(const ProgressBoxTen&) = delete;
  void Show(long done);

 private:
  ScreenCopyPtr screen_;
  ProgressBar bar_;
  long total_ = 0;
  long shown_ = -1;
};

}  // namespace bulk_detail
