// The keys of the contractor list that lead out of the list: the functions
// the documents lend (F2, F4), the note (Ctrl+F3), the link of a customer or
// supplier to a warehouse and the warehouses added to the stock shown in the
// entry (F7).
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/paths.h"
#include "base/text.h"
#include "master/contractor_hooks.h"
#include "master/contractor_screens.h"
#include "master/contractors_detail.h"
#include "master/tables.h"
#include "print/print.h"
#include "tui/editmemo.h"
#include "tui/msgbox.h"
#include "users/users.h"

namespace {

ContractorDocumentHooks gHooks;

// The whole file; empty when it cannot be read (a note not written yet).
std::string ReadAllBytes(const ShortText& path) {
  std::ifstream in(std::string(PathToUnix(path).View()), std::ios::binary);
  std::ostringstream all;
  if (in) all << in.rdbuf();
  return all.str();
}

// A text file in the note editor under a title; failure told when it cannot
// be written back. True when written.
bool EditTextFile(const ShortText& path, const ShortText& title, const ShortText& failure) {
  contractors_detail::BoxKeeper keeper;
  std::string text = ReadAllBytes(path);
  ShortText box = title;
  for (int i = 0; i < 12; ++i) box += '@';
  (void)MessageBox(box, 2);
  if (!EditMemo(text, MemoWindow{5, 8, 76, 19}, false)) return false;
  if (contractors_detail::WriteWhole(path, text)) return true;
  (void)MessageBox(failure, 0);
  return false;
}

}  // namespace

namespace contractors_detail {

bool WriteWhole(const ShortText& path, const std::string& bytes) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(std::string(PathToUnix(path).View())).parent_path(),
                                      ignored);
  return WriteFileAtomically(path, bytes) == 0;
}

}  // namespace contractors_detail

void SetContractorDocumentHooks(const ContractorDocumentHooks& hooks) { gHooks = hooks; }
const ContractorDocumentHooks& ContractorDocumentHooksNow() { return gHooks; }

ShortText ContractorNotePath(ContractorKind kind, int32_t number) {
  const ShortText table = ContractorTablePath(kind);
  return "dane\\notatki\\" + table.Copy(table.Pos("\\") + 1, 8) + "_" + ShortText(std::to_string(number)) + ".txt";
}

bool EditContractorNote(ContractorKind kind, int32_t number) {
  return EditTextFile(ContractorNotePath(kind, number), PadRight("Edycja notatki:"_mz, " ", 72), "Błąd zapisu na dysk"_mz);
}

ShortText WarehousePrintDataPath(int32_t warehouse) {
  return "dane\\" + WarehouseFolderName(warehouse) + "\\nazwa_ma";
}

bool EditWarehousePrintData(int32_t warehouse) {
  return EditTextFile(WarehousePrintDataPath(warehouse),
                      "Edycja danych magazynu umieszczanych na fakturach i wydaniach towaru"_mz,
                      "Zapis danych magazynu nie powiódł się."_mz);
}

ShortText MergedWarehousesPath() { return UserPath(std::max(CurrentUserNumber(), 0), "magsum.txt"); }

std::vector<int32_t> ReadMergedWarehouses() {
  std::vector<int32_t> marks;
  std::istringstream in(ReadAllBytes(MergedWarehousesPath()));
  for (std::string line; std::getline(in, line) && static_cast<int>(marks.size()) < kMaxMarkedWarehouses;) {
    char* end = nullptr;
    const long long number = std::strtoll(line.c_str(), &end, 10);
    const bool whole = end != line.c_str() && (*end == '\0' || *end == '\r');
    if (whole && number >= 1 && number <= kContractorMaxNumber && !WarehouseMarked(marks, static_cast<int32_t>(number)))
      marks.push_back(static_cast<int32_t>(number));
  }
  return marks;
}

bool MarkMergedWarehouses() {
  std::vector<int32_t> marks = ReadMergedWarehouses();
  if (!MergeWarehouseSelection(marks)) return false;
  std::string text;
  for (int32_t number : marks) text += std::to_string(number) + "\n";
  return contractors_detail::WriteWhole(MergedWarehousesPath(), text);
}

bool LinkContractorToWarehouse(ContractorKind kind, int32_t contractor) {
  if (kind == ContractorKind::kWarehouse) return false;
  const int32_t warehouse = ChooseContractor(ContractorKind::kWarehouse, ChoosePurpose::kAny);
  return warehouse != 0 && LinkWarehouseAsked(kind, contractor, warehouse);
}
