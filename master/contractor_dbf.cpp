// The exchange of a catalogue with a dBASE file: every row out, or the
// rows of a file in by one of three ways of numbering them.
#include <string>
#include <vector>

#include "base/filevar.h"
#include "base/numbers.h"
#include "base/text.h"
#include "exchange/dbf/dbf.h"
#include "master/contractors.h"
#include "master/contractors_detail.h"

namespace {

struct DbfColumn {
  const char* name;  // the SQL name; the field takes its first 10 letters in capitals
  const char* type;
};
constexpr DbfColumn kColumns[] = {
#define KLOTE_DBF_COLUMN(name, type) {ColumnSqlName(#name), type},
    KLOTE_COLUMNS_KONTRAHENT(KLOTE_DBF_COLUMN)
#undef KLOTE_DBF_COLUMN
};

DbfFieldSpec SpecOf(const DbfColumn& c) {
  DbfFieldSpec def;
  std::string name = std::string(c.name).substr(0, 10);
  for (char& ch : name) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
  def.name = BasicShortText<10>(std::string_view(name));
  if (c.type[0] == 'I') def.type = 'N', def.width = 10;
  else if (c.type[0] == 'X') def.type = 'N', def.width = 20, def.decimals = 4;
  else def.width = std::stoi(c.type + 1);
  return def;
}

// Row r of the file into c by the field names; a field the file lacks stays empty.
Contractor FromRecord(const DbfFile& file) {
  Contractor c;
  for (int f = 1; f <= KontrahentCol::kCount; ++f) {
    const int at = DbfFindField(file, ShortText(SpecOf(kColumns[f - 1]).name.View()));
    const ShortText value = at == 0 ? ShortText() : DbfGetField(file, at);
    if (f == KontrahentCol::numer) c.number = static_cast<int32_t>(TextToRealLoose(value));
    else if (f == KontrahentCol::rabat) c.discount = TextToRealLoose(value);
    else c.text[static_cast<std::size_t>(f)] = value;
  }
  return c;
}

int PutRecord(DbfFile& file, const Contractor& c) {
  DbfBlankRecord(file);
  int code = 0;
  for (int f = 1; code == 0 && f <= KontrahentCol::kCount; ++f) {
    if (f == KontrahentCol::numer) code = DbfPutNumber(file, f, c.number);
    else if (f == KontrahentCol::rabat) code = DbfPutNumber(file, f, c.discount);
    else code = DbfPutField(file, f, c.text[static_cast<std::size_t>(f)]);
  }
  return code != 0 ? code : DbfAppendRecord(file);
}

}  // namespace

namespace contractors_detail {

int AbandonDbf(DbfFile& file, const ShortText& fileName, int code) {
  (void)DbfClose(file);
  FileVar half;
  AssignFile(half, fileName);
  (void)half.Erase();
  return code;
}

}  // namespace contractors_detail

int ContractorDbfExport(ContractorKind kind, const ShortText& fileName, DbfCodePage codePage, int64_t& written) {
  written = 0;
  std::vector<DbfFieldSpec> specs;
  for (const DbfColumn& c : kColumns) specs.push_back(SpecOf(c));
  DbfFile file;
  if (const int code = DbfCreate(file, fileName, specs, codePage)) return code;
  using contractors_detail::ListKey;
  std::vector<Contractor> rows;
  ListKey from;
  for (;;) {  // a thousand rows at a time in number order
    contractors_detail::Checked(contractors_detail::ListRead(kind, contractors_detail::ListOrder::kNumber, from, true,
                                                             1000, std::string(), rows));
    for (const Contractor& c : rows) {
      if (const int code = PutRecord(file, c)) {
        written = 0;
        return contractors_detail::AbandonDbf(file, fileName, code);
      }
      ++written;
    }
    if (rows.size() < 1000) break;
    from = contractors_detail::KeyOf(rows.back(), false);
  }
  return DbfClose(file);
}

int ContractorDbfImport(ContractorKind kind, const ShortText& fileName, DbfCodePage codePage, DbfImportMode mode,
                        int64_t& added) {
  added = 0;
  DbfFile file;
  if (const int code = DbfOpen(file, fileName)) return code;
  if (codePage != DbfCodePage::kAsIs) DbfSetCodePage(file, codePage);
  const NumberRange range = ConfiguredNumberRange(kind);
  for (int64_t n = 1; n <= file.recordCount; ++n) {
    if (const int code = DbfReadRecord(file, n)) return code;
    if (DbfIsDeleted(file)) continue;
    Contractor c = FromRecord(file);
    if (c.number < 1 || mode == DbfImportMode::kAllAsNew) c.number = 0;
    ContractorOutcome outcome = ContractorAdd(kind, c, range);
    if (outcome == ContractorOutcome::kNumberTaken && mode == DbfImportMode::kNewNumberWhenTaken) {
      c.number = 0;
      outcome = ContractorAdd(kind, c, range);
    }
    if (outcome == ContractorOutcome::kDone) ++added;
    if (outcome == ContractorOutcome::kLimit) break;
  }
  return DbfClose(file);
}
