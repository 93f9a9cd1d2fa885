// The work file's screens: the menu "Operacje na plikach roboczych", writing
// rows into it, export and import as DBF, passing between users, editing.
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "base/filecopy.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "base/text.h"
#include "config/konfigur.h"
#include "exchange/workfile.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgtable.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "tui/term.h"
#include "users/users.h"

namespace {

constexpr int kExchangeDirLine = 192;  // configuration: the exchange directory of KLOTE
constexpr const char* kDbfName = "plikrob_.dbf";

const ShortText kLockHeld = "Ktoś już pracuje, jako ten użytkownik.@Wejdź do programu jako inny użytkownik, niż ten."_mz;
const ShortText kOtherWorking =
    "Użytkownik nadal pracuje, albo system operacyjny nie zamknął jego zbiorów.@Każ użytkownikowi wyjść ..."_mz;
const ShortText kCopyFailed =
    "Kopiowanie nieudane.@Możliwe powody:@ 1) brak pliku roboczego@ 2) brak nośnika lub jego awaria@ 3) na na nośniku nie ma miejsca@ 4) inne błędy."_mz;
const ShortText kNotAvailable = "Ta opcja nie jest jeszcze dostępna."_mz;

int16_t Choose(const ShortText& title, const ShortText& options, int16_t initial = 1) {
  unsigned char ch = 0, scan = 0;
  return PickList(2, initial, 1, 0, 0, title, options, ch, scan);
}

// A box with a bar that stays up while the work is done, then shows it full.
class WorkBox {
 public:
  explicit WorkBox(const ShortText& text) : bar_(FindProgressBar(text)) { (void)MessageBox(text, 2); }
  void Done() const { ShowProgress(bar_, 1, 1); }

 private:
  ProgressBar bar_;
};

// A directory as a prefix for file names: ends in a separator.
ShortText AsDirectory(ShortText dir) {
  dir = TrimRight(TrimLeft(dir, ' '), ' ');
  if (!dir.Empty() && dir[dir.Length()] != '/' && dir[dir.Length()] != '\\') dir += "/";
  return dir;
}

ShortText LocalDbf() { return UserPath(CurrentUserNumber(), ShortText(kDbfName)); }

bool WorkFileExists() {
  bool exists = false;
  (void)PGTblExist(WorkFileName(), exists);
  return exists;
}

ShortText PlaceOf(int16_t choice) { return choice == 2 ? ShortText("B:\\") : ShortText("A:\\"); }

ShortText AskDirectory(const ShortText& title) {
  ShortText dir;
  if (!AskValue(title, dir, 60, 0, ShortText(), ShortText())) return ShortText();
  return AsDirectory(dir);
}

void ExportToPlaces() {
  const int16_t form = Choose("Wyeksportować plik roboczy w postaci:"_mz,
                              "wewnętrznym programu KLOTE `DBF-3\" bez informacji o dokumentach@eksport do rozliczeń@mini (numer,ilość)"_mz);
  if (form == 0) return;
  if (form == 2) {
    (void)MessageBox(kNotAvailable, 0);
    return;
  }
  const int16_t place = Choose("Skopiować plik roboczy do miejsca:"_mz, "A@B"_mz);
  if (place == 0) return;
  if (form == 1) {
    (void)ExportWorkFileTo(PlaceOf(place));
    return;
  }
  WorkFileLock lock(WorkFileName());
  if (lock.busy()) return (void)MessageBox(kLockHeld, 0);
  (void)MessageBox("Trwa kopiowanie..."_mz, 2);
  int16_t code = 0;
  const bool ok = WorkFileExists() && WorkFileToMini(WorkFileName(), PlaceOf(place) + "dane.klt", code);
  CheckDBError(code);
  (void)MessageBox(ok ? "Kopiowanie zakończone poprawnie."_mz : kCopyFailed, 0);
}

// Which of the forms found to take; 0 for none.
int ChooseForm(int forms) {
  struct Form {
    int bit;
    ShortText row, question;
  };
  const Form kForms[] = {
      {kFormDbf, "wewnętrzny DBF-3 (plikrob_.dbf)"_mz, ShortText()},
      {kFormReturn, "zwrot z wydania"_mz, "Wykryto zwrot.@Wgrać ?"_mz},
      {kFormSales, "relacja sprzedaży"_mz, "Wykryto raport sprzedaży.@Wgrać ?"_mz},
      {kFormMini, "`mini\" (numer,ilość)"_mz, "Wykryto `mini\" (numer,ilość).@Wgrać ?"_mz},
  };
  std::vector<int> bits;
  ShortText rows;
  for (const Form& f : kForms)
    if (forms & f.bit) {
      rows += (bits.empty() ? ""_mz : "@"_mz) + f.row;
      bits.push_back(f.bit);
    }
  if (bits.empty()) {
    (void)MessageBox("Nie wykryto pliku roboczego."_mz, 0);
    return 0;
  }
  if (bits.size() == 1) {
    for (const Form& f : kForms)
      if (f.bit == bits[0] && !f.question.Empty() && !MessageBox(f.question, 1)) return 0;
    return bits[0];
  }
  const int16_t choice = Choose("Wykryto kilka form pliku roboczego - wybierz odpowiednią:"_mz, rows);
  return choice == 0 ? 0 : bits[static_cast<std::size_t>(choice - 1)];
}

DbfCodePage AskCodePage(bool& cancelled) {
  constexpr DbfCodePage kPages[] = {DbfCodePage::kAsIs, DbfCodePage::kLatin2, DbfCodePage::kCp1250,
                                    DbfCodePage::kCp1250, DbfCodePage::kIso};
  const int16_t choice =
      Choose("Zaimportować plik roboczy z miejsca:"_mz,
             "import KLOTE/Orbel-SQL (bez konwersji)@DOS Latin2 (cp852)@win cp1250@Excel(R) 4@ISO8859-2"_mz);
  cancelled = choice == 0;
  return cancelled ? DbfCodePage::kAsIs : kPages[choice - 1];
}

// The rows that were left out because the catalogue does not hold their items.
void ShowDropped(const std::vector<ShortText>& names) {
  if (names.empty()) return;
  (void)MessageBox("Znaleziono w pliku roboczym pozycje, których nie ma w Twoim katalogu@towarów. Zostały one usunięte z pliku roboczego."_mz, 0);
  ShortText list = "Towary nie znalezione w Twoim katalogu towarów:"_mz;
  for (std::size_t i = 0; i < names.size() && i < 8; ++i) list += "@"_mz + names[i];
  (void)MessageBox(list + "@(Zostały usunięte na wszelki wypadek z pliku roboczego)."_mz, 0);
}

// Rows not in the catalogue are gone from the work file: the list of them.
void CheckAgainstCatalogue() {
  std::vector<ShortText> names;
  {
    WorkBox box("Trwa kontrola pliku roboczego...[          ]"_mz);
    CheckDBError(WorkFileDropUnknown(WorkFileName(), names));
    box.Done();
  }
  ShowDropped(names);
}

// dane.klt: the numbers taken from the catalogue, those it lacks listed.
bool ImportMini(const ShortText& directory) {
  const ShortText local = UserPath(CurrentUserNumber(), ShortText("dane.klt"));
  if (CopyFileChecked(directory + "dane.klt", local, -1, -1) != 0) {
    (void)MessageBox(kCopyFailed, 0);
    return false;
  }
  int16_t code = 0;
  std::vector<int32_t> unknown;
  WorkFileImport result;
  {
    WorkBox box("Trwa kontrola pliku roboczego...[          ]"_mz);
    result = WorkFileFromMini(WorkFileName(), local, code, unknown);
    box.Done();
  }
  CheckDBError(code);
  if (result == WorkFileImport::kBadFile) (void)MessageBox(kCopyFailed, 0);
  if (result == WorkFileImport::kLocked) (void)MessageBox(kLockHeld, 0);
  if (result != WorkFileImport::kDone) return false;
  std::vector<ShortText> names;
  for (int32_t number : unknown) names.push_back(ShortText("nr " + std::to_string(number)));
  ShowDropped(names);
  (void)MessageBox("Kopiowanie zakończone poprawnie."_mz, 0);
  return true;
}

void ImportFromPlaces() {
  const int16_t place = Choose(
      "Skopiować plik roboczy z miejsca:"_mz + "@! Podczas tej operacji stary plik roboczy"_mz +
          "@zostanie zastąpiony pobranym !"_mz,
      "A@B"_mz);
  if (place != 0) (void)ImportWorkFileFrom(PlaceOf(place), false);
}

ShortText ExchangeDirectory() { return AsDirectory(ConfigText(kExchangeDirLine)); }

void ExportAnywhere() {
  const ShortText dir = AskDirectory("Skopiować plik roboczy do miejsca:"_mz);
  if (!dir.Empty()) (void)ExportWorkFileTo(dir);
}
void ImportAnywhere() {
  const ShortText dir = AskDirectory("Skopiować plik roboczy z miejsca:"_mz);
  if (!dir.Empty()) (void)ImportWorkFileFrom(dir, true);
}
void ExportToExchange() { (void)ExportWorkFileTo(ExchangeDirectory()); }
void ImportFromExchange() { (void)ImportWorkFileFrom(ExchangeDirectory(), true); }

// Deletes the plain files of the diskette's main directory (a directory
// already in system form) under the bar; subdirectories stay.
void DeleteMainDirectory(const ShortText& dir) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (auto it = std::filesystem::directory_iterator(dir.Str(), error);
       !error && it != std::filesystem::directory_iterator(); it.increment(error))
    if (it->is_regular_file(error)) files.push_back(it->path());
  const ShortText text = "Trwa kasowanie...[            ]"_mz;
  ScreenKeeper screen;
  (void)MessageBox(text, 2);
  const ProgressBar bar = FindProgressBar(text);
  for (std::size_t i = 0; i < files.size(); ++i) {
    std::filesystem::remove(files[i], error);
    ShowProgress(bar, static_cast<long>(i + 1), static_cast<long>(files.size()));
    TermFlush();
  }
}

void ClearFloppy() {
  const int16_t place =
      Choose("Wsadź dyskietkę do wyczyszczenia i...określ, w jakim napędzie ona jest:"_mz, "A@B"_mz);
  if (place == 0) return;
  const ShortText dir = AsDirectory(PathToUnix(PlaceOf(place)));
  std::string upper = dir.Str();
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const ShortText probe = dir + "zzz.txt";
  std::FILE* test = upper.find("/FLOPPY/") != std::string::npos ? std::fopen(probe.Str().c_str(), "wb") : nullptr;
  if (!test) {
    (void)MessageBox("Wybrane miejsce nie wygląda na dyskietkę.@Wyczyść je z poziomu systemu operacyjnego."_mz, 0);
    return;
  }
  std::fclose(test);
  DeleteMainDirectory(dir);
}

// The menu's rows with their functions (the list puts the key-caps before
// them); the warehouse goes to the editor.
int32_t gWarehouse = 0;
void EditHere() { EditWorkFile(gWarehouse); }
void NotYet() { (void)MessageBox(kNotAvailable, 0); }

struct MenuRow {
  ShortText text;
  void (*run)();
};

}  // namespace

bool AddSpecificationToWorkFile(const std::vector<WorkFileRow>& rows, bool report) {
  const ShortText path = WorkFileName();
  CheckDBError(EnsureWorkFile(path));
  WorkFileLock lock(path);
  if (lock.busy()) {
    (void)MessageBox(kLockHeld, 0);
    return false;
  }
  int32_t count = 0;
  CheckDBError(WorkFileCount(path, count));
  const ShortText question =
      report ? "W pliku roboczym są dane. Czy dodać zestawienie do nich ?"_mz
             : "W pliku roboczym są dane. Czy dodać specyfikację do nich ?@(Jeśli nie, w pliku roboczym znajdą się tylko w tej chwili zapisywane@do niego dane)."_mz;
  const bool append = count > 0 && MessageBox(question, 1);
  {
    WorkBox box(report ? "Trwa zapis do pliku roboczego...[          ]"_mz : "Trwa zapis...[          ]"_mz);
    CheckDBError(WorkFileWrite(path, rows, append));
    box.Done();
  }
  (void)MessageBox(report ? "Zapis do pliku roboczego poprawny."_mz : "Zapis poprawny."_mz, 1500);
  return true;
}

bool ExportWorkFileTo(const ShortText& directory) {
  const ShortText path = WorkFileName();
  WorkFileLock lock(path);
  if (lock.busy()) {
    (void)MessageBox(kLockHeld, 0);
    return false;
  }
  bool ok = WorkFileExists() && !directory.Empty();
  if (ok) CheckDBError(WorkFileToDbf(path, LocalDbf()));
  if (ok) {
    (void)MessageBox("Trwa kopiowanie..."_mz, 2);
    ok = CopyFileChecked(LocalDbf(), directory + kDbfName, -1, -1) == 0;
  }
  (void)MessageBox(ok ? "Kopiowanie zakończone poprawnie."_mz : kCopyFailed, 0);
  return ok;
}

bool ImportWorkFileFrom(const ShortText& directory, bool askCodePage) {
  const int form = directory.Empty() ? 0 : ChooseForm(DetectWorkFileForms(directory));
  if (form == 0) return false;
  if (form == kFormMini) return ImportMini(directory);
  if (form != kFormDbf) {
    (void)MessageBox(kNotAvailable, 0);
    return false;
  }
  bool cancelled = false;
  const DbfCodePage page = askCodePage ? AskCodePage(cancelled) : DbfCodePage::kAsIs;
  if (cancelled) return false;
  if (CopyFileChecked(directory + kDbfName, LocalDbf(), -1, -1) != 0) {
    (void)MessageBox(kCopyFailed, 0);
    return false;
  }
  int16_t code = 0;
  WorkFileImport result;
  {
    WorkBox box(
        "Skopiowany plik był w standardzie DBF.@Trwa jego tłumaczenie na standard wewnętrzny programu...[          ]"_mz);
    result = WorkFileFromDbf(WorkFileName(), LocalDbf(), page, code);
    box.Done();
  }
  CheckDBError(code);
  if (result == WorkFileImport::kBadDbf) (void)MessageBox("Plik DBF jest uszkodzony, lub nie istnieje."_mz, 0);
  if (result == WorkFileImport::kLocked) (void)MessageBox(kLockHeld, 0);
  if (result != WorkFileImport::kDone) return false;
  CheckAgainstCatalogue();
  (void)MessageBox("Kopiowanie zakończone poprawnie."_mz, 0);
  return true;
}

void PassWorkFile() {
  const int16_t mode = Choose(
      "Przekazywanie pliku roboczego:"_mz,
      "`dolepienie\" p.r. do p.r. innego użytkownika@przekopiowanie p.r. do innego użytk.@`dolepienie\" p.r. innego użytk. do swojego@przekopiowanie p.r. od innego użytk."_mz);
  if (mode == 0) return;
  const int32_t other = UserList(UserListMode::kPartner);
  if (other == kNoUser) return;
  const int32_t self = CurrentUserNumber();
  if (other == self) {
    (void)MessageBox("Wysłanie swojego pliku roboczego sobie nie jest możliwe."_mz, 0);
    return;
  }
  if (UserWorkingElsewhere(other)) {
    (void)MessageBox(kOtherWorking, 0);
    return;
  }
  const bool outward = mode <= 2;
  const int32_t from = outward ? self : other;
  const int32_t to = outward ? other : self;
  bool exists = false;
  (void)PGTblExist(WorkFileName(from), exists);
  if (!exists) {
    (void)MessageBox("Plik roboczy nie istnieje."_mz, 0);
    return;
  }
  WorkFileLock source(WorkFileName(from));
  WorkFileLock target(WorkFileName(to));
  if (source.busy() || target.busy()) {
    (void)MessageBox("Kopiowanie nieudane."_mz, 0);
    return;
  }
  CheckDBError(WorkFileTransfer(from, to, mode == 1 || mode == 3));
  (void)MessageBox("Przekopiowano."_mz, 0);
}

void WorkFileMenu(int32_t warehouse) {
  gWarehouse = warehouse;
  const MenuRow kRows[] = {
      {" Eksport pliku roboczego do miejsc A i B (format `KLOTE\") "_mz, ExportToPlaces},
      {" Import pliku roboczego z miejsc A i B (format `KLOTE\") "_mz, ImportFromPlaces},
      {" Przekazywanie pliku roboczego pomiędzy użytkownikami "_mz, PassWorkFile},
      {" Import do pliku roboczego z formatów innych programów "_mz, NotYet},
      {" Eksport pliku roboczego w formatach innych programów "_mz, NotYet},
      {" Wprowadzanie zmian w pliku roboczym "_mz, EditHere},
      {" Eksport pliku roboczego do dowolnego miejsca systemu plików "_mz, ExportAnywhere},
      {" Import pliku roboczego z dowolnego miejsca systemu plików "_mz, ImportAnywhere},
      {" Eksport pliku roboczego do `katalogu wymiany plików\" "_mz, ExportToExchange},
      {" Import pliku roboczego z `katalogu wymiany plików\" "_mz, ImportFromExchange},
      {" Czyszczenie głównego katalogu dyskietki "_mz, ClearFloppy},
  };
  std::vector<ShortText> choices;
  for (const MenuRow& row : kRows) choices.push_back(row.text);
  int16_t choice = 1;
  for (;;) {
    unsigned char ch = 0, scan = 0;
    choice = PickListHooked(2, choice, 1, 0, 0, "Wybierz opcję:"_mz, choices, {}, ch, scan);
    if (choice <= 0 || choice > static_cast<int16_t>(std::size(kRows))) return;
    kRows[choice - 1].run();
  }
}
