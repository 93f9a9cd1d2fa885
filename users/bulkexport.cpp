// Copying a whole table out to a DBF or CSV file: one walk of the table,
// every field by its type, the file complete under its name or not there.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "exchange/dbf/dbf.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "users/bulk.h"
#include "users/bulk_detail.h"

using namespace bulk_detail;

namespace {

// The form of a blank date in both files.
constexpr const char* kBlankDate = "01000101";

// One field of the output: where it comes from and how it is written.
struct OutField {
  int source = 0;  // field number in the table
  PGTypeInfo type;
  DbfFieldSpec dbf;
};

// Type letters to DBF columns. Blobs other than memos have no column.
bool MapField(const ShortText& name, const PGTypeInfo& t, DbfFieldSpec& def) {
  def.name = BasicShortText<10>(name.View().substr(0, 10));
  switch (t.letter) {
    case 'A': def = {def.name, 'C', t.size > 254 ? 254 : (t.size > 0 ? t.size : 1), 0}; return true;
    case 'M': def = {def.name, 'C', 254, 0}; return true;  // a memo as its text
    case 'D': def = {def.name, 'D', 8, 0}; return true;
    case 'S': def = {def.name, 'N', 6, 0}; return true;
    case 'I': def = {def.name, 'N', 11, 0}; return true;
    case 'Y': def = {def.name, 'N', 20, 0}; return true;   // counts kept whole
    case 'X': def = {def.name, 'N', 28, 7}; return true;   // the exact decimal as the server holds it
    case 'N':
    case '$': def = {def.name, 'N', 20, 4}; return true;
    default: return false;
  }
}

int16_t PlanFields(int16_t tbl, std::vector<OutField>& out) {
  int16_t count = 0;
  if (int16_t code = PGRecNFlds(tbl, count)) return code;
  for (int f = 1; f <= count; ++f) {
    ShortText type, name;
    if (int16_t code = PGFldType(tbl, f, type)) return code;
    if (int16_t code = PGFldName(tbl, f, name)) return code;
    OutField o;
    o.source = f;
    if (!PGParseType(type, false, o.type)) return kPGBadArgument;
    if (MapField(name, o.type, o.dbf)) out.push_back(o);
  }
  return kPGOk;
}

// The field's value as the files write it: Mazovia text, dates YYYYMMDD.
ShortText OutValue(int16_t rec, const OutField& f) {
  ShortText value;
  if (f.type.kind == PGKind::Blob) {
    (void)PGGetBlobStr(rec, f.source, value);
    return value;
  }
  (void)PGGetAlpha(rec, f.source, value);
  if (f.type.kind != PGKind::Date) return value;
  ShortText digits;
  for (char c : value.View())
    if (c >= '0' && c <= '9') digits += c;
  return digits.Empty() || digits == "00010101" ? ShortText(kBlankDate) : digits;
}

using RowWriter = std::function<bool(int16_t rec, const std::vector<OutField>& fields)>;

// Walks the table under the progress box; false from the writer stops it with 118.
int16_t WalkTable(const ShortText& table, const ShortText& boxText, std::vector<OutField>& fields,
                  const std::function<bool()>& start, const RowWriter& write) {
  int16_t tbl = 0, rec = 0;
  if (int16_t code = PGTblOpen(table, tbl, 0)) return code;
  struct Closer {
    int16_t& tbl;
    int16_t& rec;
    ~Closer() {
      if (rec) (void)PGRecBufClose(rec);
      (void)PGTblClose(tbl);
    }
  } closer{tbl, rec};
  int32_t total = 0;
  if (int16_t code = PGRecBufOpen(tbl, rec)) return code;
  if (int16_t code = PlanFields(tbl, fields)) return code;
  if (int16_t code = PGTblNRecs(tbl, total)) return code;
  if (!start()) return kPGSqlFailed;
  ProgressBoxTen box(boxText, total);
  long done = 0;
  int16_t code = PGRecFirst(tbl);
  for (; code == 0; code = PGRecNext(tbl)) {
    if ((code = PGRecGet(tbl, rec)) != 0) return code;
    if (!write(rec, fields)) return kPGSqlFailed;
    box.Show(++done);
  }
  return code == kPGEndOfTable || code == kPGEmptyTable ? kPGOk : code;
}

// CSV: fields by ",", text in double quotes (a quote inside doubled), lines ended CR LF.
std::string CsvLine(int16_t rec, const std::vector<OutField>& fields) {
  std::string line;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) line += ',';
    const ShortText value = OutValue(rec, fields[i]);
    if (fields[i].dbf.type != 'C') {
      line += value.View();
      continue;
    }
    line += '"';
    for (char c : value.View()) line += c == '"' ? std::string("\"\"") : std::string(1, c);
    line += '"';
  }
  return line + "\r\n";
}

bool PutDbfRow(DbfFile& dbf, int16_t rec, const std::vector<OutField>& fields) {
  DbfBlankRecord(dbf);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const ShortText value = OutValue(rec, fields[i]);
    const int n = static_cast<int>(i) + 1;
    if (fields[i].dbf.type == 'N') {
      if (!value.Empty() && DbfPutNumber(dbf, n, std::strtold(value.Str().c_str(), nullptr)) != 0) return false;
    } else if (DbfPutField(dbf, n, value) != 0) {
      return false;
    }
  }
  return DbfAppendRecord(dbf) == 0;
}

// A finished file takes its name; an unfinished one goes.
int16_t Publish(const std::string& temp, const std::string& path, int16_t code) {
  if (code == 0 && std::rename(temp.c_str(), path.c_str()) != 0) code = kPGSqlFailed;
  if (code != 0) std::remove(temp.c_str());
  return code;
}

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

}  // namespace

int16_t TblToDbf(const ShortText& table, const ShortText& dbfPath) {
  PGLastOp = "TblToDbf";
  // Written whole under a name of its own first: a walk that fails half-way
  // leaves no file that looks complete.
  const std::string path = PathToUnix(dbfPath).Str();
  const std::string temp = path + "~";
  DbfFile dbf;
  std::vector<OutField> fields;
  const auto start = [&] {
    std::vector<DbfFieldSpec> specs;
    for (const OutField& f : fields) specs.push_back(f.dbf);
    return DbfCreate(dbf, ShortText(temp), specs) == 0;
  };
  const auto write = [&](int16_t rec, const std::vector<OutField>& fs) { return PutDbfRow(dbf, rec, fs); };
  int16_t code = WalkTable(table, "Trwa kopiowanie danych do pliku DBF-3...[          ]"_mz, fields, start, write);
  if (dbf.IsOpen() && DbfClose(dbf) != 0 && code == 0) code = kPGSqlFailed;
  return Publish(temp, path, code);
}

int16_t TblToCsv(const ShortText& table, const ShortText& csvPath) {
  PGLastOp = "TblToCsv";
  const std::string path = PathToUnix(csvPath).Str();
  const std::string temp = path + ".tmp";
  std::unique_ptr<std::FILE, FileCloser> file;
  std::vector<OutField> fields;
  const auto start = [&] {
    file.reset(std::fopen(temp.c_str(), "wb"));
    return file != nullptr;
  };
  const auto write = [&](int16_t rec, const std::vector<OutField>& fs) {
    const std::string line = CsvLine(rec, fs);
    return std::fwrite(line.data(), 1, line.size(), file.get()) == line.size();
  };
  int16_t code = WalkTable(table, "Trwa kopiowanie danych do pliku CSV...[          ]"_mz, fields, start, write);
  if (file && std::fclose(file.release()) != 0 && code == 0) code = kPGSqlFailed;
  return Publish(temp, path, code);
}
