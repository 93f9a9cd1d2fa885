// The exchange of a dictionary with a dBASE file of its three columns.
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/text.h"
#include "exchange/dbf/dbf.h"
#include "master/contractors_detail.h"
#include "master/dictionaries.h"
#include "master/dictionary_screens.h"
#include "sqltable/dbapp.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

namespace {

// INDEKS C15, OPIS C254 (a dBASE field holds no more), CZY_BYL_OB C1.
std::vector<DbfFieldSpec> DictionaryFields() {
  std::vector<DbfFieldSpec> specs(3);
  const char* names[] = {"INDEKS", "OPIS", "CZY_BYL_OB"};
  const uint8_t widths[] = {15, 254, 1};
  for (std::size_t i = 0; i < specs.size(); ++i) {
    specs[i].name = BasicShortText<10>(std::string_view(names[i]));
    specs[i].width = widths[i];
  }
  return specs;
}

int PutEntry(DbfFile& file, const DictionaryEntry& e) {
  DbfBlankRecord(file);
  int code = DbfPutField(file, 1, e.indeks);
  if (code == 0) code = DbfPutField(file, 2, e.opis);
  if (code == 0) code = DbfPutField(file, 3, e.czyBylObrot);
  return code != 0 ? code : DbfAppendRecord(file);
}

ShortText FieldByName(const DbfFile& file, const char* name) {
  const int at = DbfFindField(file, ShortText(name));
  return at == 0 ? ShortText() : TrimRightAll(DbfGetField(file, at), ' ');
}

}  // namespace

int DictionaryDbfExport(const ShortText& path, const ShortText& fileName, DbfCodePage codePage, int64_t& written) {
  written = 0;
  std::vector<DictionaryEntry> rows;
  CheckDBError(DictionaryRead(path, rows));
  DbfFile file;
  if (const int code = DbfCreate(file, fileName, DictionaryFields(), codePage)) return code;
  for (const DictionaryEntry& e : rows) {
    if (const int code = PutEntry(file, e)) {
      written = 0;
      return contractors_detail::AbandonDbf(file, fileName, code);
    }
    ++written;
  }
  return DbfClose(file);
}

int DictionaryDbfImport(const ShortText& path, const ShortText& fileName, DbfCodePage codePage, int64_t& added) {
  added = 0;
  DbfFile file;
  if (const int code = DbfOpen(file, fileName)) return code;
  if (codePage != DbfCodePage::kAsIs) DbfSetCodePage(file, codePage);
  for (int64_t n = 1; n <= file.recordCount; ++n) {
    if (const int code = DbfReadRecord(file, n)) return code;
    if (DbfIsDeleted(file)) continue;
    const DictionaryEntry e{FieldByName(file, "INDEKS"), FieldByName(file, "OPIS"), FieldByName(file, "CZY_BYL_OB")};
    if (!e.indeks.Empty() && DictionaryAdd(path, e) == DictionaryOutcome::kDone) ++added;
  }
  return DbfClose(file);
}

void DictionaryDbfExchange(const ShortText& path) {
  const int16_t way = contractors_detail::AskDbfWay();
  DbfCodePage page = DbfCodePage::kAsIs;
  if (way == 0 || (way == 2 && !contractors_detail::AskDbfImportPage(page))) return;
  const std::string_view table = path.View().substr(path.View().rfind('\\') + 1, 8);  // npos + 1 is 0
  const ShortText file = UserPath(CurrentUserNumber(), ShortText(table) + ".dbf");
  int64_t count = 0;
  const int code = way == 1 ? DictionaryDbfExport(path, file, page, count) : DictionaryDbfImport(path, file, page, count);
  if (code != 0) (void)MessageBox(DbfErrorText(code), 0);
}
