// Creation of the application's tables through the table layer: one table
// from its definition, the tables of a warehouse with their progress box,
// and the firm-wide tables.
#include <filesystem>
#include <system_error>
#include <vector>

#include "base/mazovia.h"
#include "base/paths.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "sqltable/pgwrite.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

int16_t AddSingleIndexes(const ShortText& path, const TableDef& def) {
  for (const IndexDef& index : def.indexes) {
    const int16_t field[1] = {index.field};
    if (const int16_t code = PGKeyAdd(path, 1, field, index.kind); code != 0) return code;
  }
  return 0;
}

// A composite index is first defined by name, then indexed; the descriptor
// is released afterwards, since the handles are few and shared by the process.
int16_t AddComposites(const ShortText& path, const TableDef& def) {
  for (const CompositeDef& composite : def.composites) {
    int handle = 0;
    int16_t code = PGKeyMap(path, composite.count, composite.fields, PGName(composite.name), handle);
    const int16_t index[1] = {static_cast<int16_t>(handle)};
    if (code == 0) code = PGKeyAdd(path, 1, index, 1);
    if (handle != 0) PGKeyRelease(handle);
    if (code != 0) return code;
  }
  return 0;
}

// The statement of a failing step names the table being made.
void CheckStep(int16_t code, const ShortText& path) {
  if (code == 0) return;
  lastOpenTable = path;
  CheckDBError(code);
}

void MakeFolder(const ShortText& dosPath) {
  std::error_code ignored;  // an existing folder is what we want; a missing one shows at first use
  std::filesystem::create_directories(PathToUnix(dosPath).Str(), ignored);
}

// The no-wait box of a long job whose one line ends in a bracketed field
// that each step fills with its own text. The box stays on the screen; the
// window, cursor and attribute in force before it are given back.
class StepBox {
 public:
  explicit StepBox(const ShortText& text)
      : window_(CurrentWindow()), x_(WhereX()), y_(WhereY()), attr_(CurrentAttr()) {
    const auto open = text.View().find('[');
    column_ = open == std::string_view::npos ? 2 : static_cast<int>(open) + 3;  // the line starts in column 2
    (void)MessageBox(text, 2);
  }
  ~StepBox() {
    Window(window_.left, window_.top, window_.right, window_.bottom);
    GotoXY(x_, y_);
    TextAttr(attr_);
    TermFlush();
  }
  StepBox(const StepBox&) = delete;
  StepBox& operator=(const StepBox&) = delete;

  void Show(const ShortText& step) {
    TextAttr(kAttrBoxBody);
    WriteAt(column_, 2, step);
    TermFlush();
  }

 private:
  WindowRect window_;
  int x_, y_;
  unsigned char attr_;
  int column_ = 2;
};

enum class StepAction { kCreate, kCreateWithKey, kIndexes, kClone };

struct WarehouseStep {
  ShortText text;
  const char* table;
  const TableDef* def;
  StepAction action;
  const char* source;  // the table cloned by kClone
};

// The order in which a warehouse is set up, each step under its progress text.
const WarehouseStep kWarehouseSteps[] = {
    {"rozliczenia samochodu  "_mz, "ksiegasa", &kKsiegasaDef, StepAction::kCreate, nullptr},
    {"księga przych.i rozch. "_mz, "ksiega__", &kKsiegaDef, StepAction::kCreate, nullptr},
    {"katalog towarów - stany"_mz, "stany_mg", &kStanyMgDef, StepAction::kCreate, nullptr},
    {"nagłówki dokumentów    "_mz, "naglowki", &kNaglowkiDef, StepAction::kCreate, nullptr},
    {"specyfikacje dokumentów"_mz, "specyfik", &kSpecyfikDef, StepAction::kCreateWithKey, nullptr},
    {"indeksy specyfikacji   "_mz, "specyfik", &kSpecyfikDef, StepAction::kIndexes, nullptr},
    {"kontrolki dokumentów   "_mz, "speckont", nullptr, StepAction::kClone, "specyfik"},
    {"dokumenty kasowe       "_mz, "kasa____", &kKasaDef, StepAction::kCreate, nullptr},
};

int16_t RunStep(const WarehouseStep& step, int32_t warehouse, const ShortText& path) {
  switch (step.action) {
    case StepAction::kCreate: return CreateTableFrom(path, *step.def);
    case StepAction::kCreateWithKey: return CreateTableWithKey(path, *step.def);
    case StepAction::kIndexes: return AddSecondaryIndexes(path, *step.def);
    case StepAction::kClone: return PGTblCloneIdx(WarehouseTablePath(warehouse, step.source), path);
  }
  return 0;
}

// A table handle and a record buffer on it, released on every path.
struct OpenRecord {
  int16_t tbl = 0, rec = 0;
  ~OpenRecord() {
    if (rec != 0) (void)PGRecBufClose(rec);
    if (tbl != 0) (void)PGTblClose(tbl);
  }
};

// The base rate of the exchange-rate list, which the list never lets go.
int16_t InsertBaseRate(const ShortText& path) {
  OpenRecord r;
  int16_t code = PGTblOpen(path, r.tbl, 0);
  if (code == 0) code = PGRecBufOpen(r.tbl, r.rec);
  if (code == 0) code = PGPutAlpha(r.rec, SlownikCol::indeks, ShortText("+"));
  if (code == 0) code = PGPutAlpha(r.rec, SlownikCol::opis, "PLN (polski złoty)"_mz);
  if (code == 0) code = PGRecInsert(r.tbl, r.rec);
  return code;
}

struct FirmTable {
  const char* path;
  const TableDef* def;
};

const FirmTable kFirmTables[] = {
    {"dane\\naglowki", &kNaglowkiFirmyDef},     {"dane\\odbiorcy", &kKontrahentDef},
    {"dane\\dostawcy", &kKontrahentDef},        {"dane\\magazyny", &kKontrahentDef},
    {"dane\\odb_mag_", &kKontMagDef},           {"dane\\dost_mag", &kKontMagDef},
    {"dane\\dok_plat", &kDokPlatDef},           {"dane\\dok_plaz", &kDokPlazDef},
    {"dane\\dodnrdok", &kDodNrDokDef},          {"dane\\przelicr", &kSlownikDef},
    {"dane\\pola_ind\\vat", &kSlownikDef},      {"dane\\pola_ind\\rabat", &kSlownikDef},
    {"dane\\pola_ind\\przykl", &kSlownikDef},   {"dane\\pola_ind\\nazwa_d", &kSlownikDef},
    {"dane\\pola_ind\\forma_p", &kSlownikDef},
};

// kat_tow_ with its character index of the configured width.
int16_t CreateItemCatalogue(const ShortText& path, int isbnLength) {
  if (isbnLength < 1 || isbnLength > 255) isbnLength = kDefaultIsbnLength;
  std::vector<ColumnDef> columns(kKatTowDef.columns.begin(), kKatTowDef.columns.end());
  const std::string isbnType = "A" + std::to_string(isbnLength);
  columns[KatTowCol::indeks_znakowy_isbn - 1].type = isbnType.c_str();
  TableDef def = kKatTowDef;
  def.columns = columns;
  return CreateTableFrom(path, def);
}

}  // namespace

ShortText WarehouseFolderName(int32_t warehouse) {
  ShortText folder(std::to_string(warehouse));
  if (folder.Length() > 8) folder.Insert(".", 9);
  return folder;
}

ShortText WarehouseTablePath(int32_t warehouse, const char* table) {
  ShortText path("dane\\");
  path += WarehouseFolderName(warehouse);
  path += '\\';
  path += table;
  return path;
}

int16_t CreateTableWithKey(const ShortText& path, const TableDef& def) {
  std::vector<PGName> names, types;
  for (const ColumnDef& column : def.columns) {
    names.emplace_back(column.name);
    types.emplace_back(column.type);
  }
  int16_t code = PGTblCreate(path, static_cast<int>(names.size()), names.data(), types.data());
  if (code != 0 || def.keyFields == 0) return code;
  std::vector<int16_t> key(static_cast<std::size_t>(def.keyFields));
  for (int i = 0; i < def.keyFields; ++i) key[static_cast<std::size_t>(i)] = static_cast<int16_t>(i + 1);
  return PGKeyAdd(path, def.keyFields, key.data(), 0);
}

int16_t AddSecondaryIndexes(const ShortText& path, const TableDef& def) {
  const int16_t code = AddSingleIndexes(path, def);
  return code != 0 ? code : AddComposites(path, def);
}

int16_t CreateTableFrom(const ShortText& path, const TableDef& def) {
  const int16_t code = CreateTableWithKey(path, def);
  return code != 0 ? code : AddSecondaryIndexes(path, def);
}

void CreateWarehouseTables(bool checkOnly, int32_t warehouse) {
  MakeFolder("dane\\"_mz + WarehouseFolderName(warehouse));
  StepBox box(checkOnly ? "Sprawdzenie istnienia baz magazynu ...[                       ]"_mz
                        : "Trwa tworzenie pustej bazy magazynu...[                       ]"_mz);
  for (const WarehouseStep& step : kWarehouseSteps) {
    box.Show(step.text);
    const ShortText path = WarehouseTablePath(warehouse, step.table);
    CheckStep(RunStep(step, warehouse, path), path);
  }
}

void CreateFirmTables(int isbnLength) {
  const ShortText catalogue("dane\\kat_tow_");
  CheckStep(CreateItemCatalogue(catalogue, isbnLength), catalogue);
  for (const FirmTable& table : kFirmTables) {
    const ShortText path(table.path);
    CheckStep(CreateTableFrom(path, *table.def), path);
  }
  const ShortText rates("dane\\przelicr");
  CheckStep(InsertBaseRate(rates), rates);
}
