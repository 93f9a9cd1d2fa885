// The screens of the contractor catalogues: the list with its keys, the
// forms of adding and changing, deleting, the search by a fragment of the
// name, and the choice of one contractor. They take the current user's
// rights and show the system's messages; the writes are those of
// master/contractors.h.
#pragma once

#include <cstdint>
#include <vector>

#include "master/contractors.h"

// Why a contractor is being chosen; it gives the list its title.
enum class ChoosePurpose : uint8_t {
  kAny,            // "Wybierz żądanego ..."
  kSaleReport,     // the unit whose sale report is taken
  kTransferTo,     // the warehouse goods are moved to
  kTransferFrom,   // the warehouse goods are moved from
  kCurrentWarehouse,  // the warehouse whose data will be entered
};

// The list of a catalogue for keeping it: Ins adds, Enter changes, Del
// deletes; Ctrl+R, Ctrl+N, Ctrl+T and Ctrl+K search a fragment of the name,
// NIP, telephones and registration number from the bar on; a digit opens the
// search by number and a letter goes to the first name (in a town order, the
// first town) that starts with it; Shift+Tab changes the order (name,
// number, and the three towns); F2 and F4 run the receivables and the
// documents of master/contractor_hooks.h, F3 edits the FK symbol and
// Ctrl+F3 the note, F5 prints the catalogue, F6 exchanges it with a dBASE
// file, F7 links a customer or supplier to a warehouse (in the warehouses,
// marks those added to the stock of the entry); Esc ends.
void ContractorCatalogue(ContractorKind kind);
// ChooseContractor: the same list for choosing one; Enter gives its number,
// Esc 0. Ins still adds.
int32_t ChooseContractor(ContractorKind kind, ChoosePurpose purpose);
// The menu entry of the three catalogues: which one, then its list; a
// fourth choice deletes the customers without turnover.
void ContractorCataloguesMenu();

// AddContractor: the form titled "Dopisanie nowego" and the kind; true when a row was added.
bool AddContractor(ContractorKind kind);
// ChangeContractor: the form of the row of the number; true when it was written.
bool ChangeContractor(ContractorKind kind, int32_t number);
// Links the contractor to the warehouse; when another contractor of the
// catalogue holds it, only after a yes to "Inny kontrahent (nr ...) ma
// przyporządkowany ten sam magazyn". True when the link stands.
bool LinkWarehouseAsked(ContractorKind kind, int32_t contractor, int32_t warehouse);
// DeleteContractor: the questions and the delete; true when the row went.
bool DeleteContractor(ContractorKind kind, int32_t number);

// The System Manager's delete of every customer that no document names,
// after the questions; the list of those deleted on request. True when the delete ran.
bool DeleteCustomersWithoutTurnover();

// The choice of the current warehouse ("Wybierz magazyn, na którego konto
// wprowadzać będziesz dane:"): number and special receive the chosen one,
// true then. At the start of the program a catalogue of one warehouse gives
// it without asking and an empty one gives false without a box.
bool ChooseCurrentWarehouse(bool atStart, int32_t& number, bool& special);

// The most warehouses marked at once, as the grouped view of stock takes them.
inline constexpr int kMaxMarkedWarehouses = 320;
// Whether the number is among the marks.
bool WarehouseMarked(const std::vector<int32_t>& marks, int32_t number);
// Marks the warehouse, or unmarks a marked one; false (nothing changed) when
// kMaxMarkedWarehouses are marked already.
bool ToggleWarehouseMark(std::vector<int32_t>& marks, int32_t number);
// MergeWarehouseSelection: the warehouses in number order, Space marking the
// one under the bar (a "*" before it) for the stock added to the one shown in
// the entry; Enter gives the marks back in marks, Esc leaves them as they were.
bool MergeWarehouseSelection(std::vector<int32_t>& marks);

// The note of a contractor: a text file in dane\notatki named after the catalogue and the number.
ShortText ContractorNotePath(ContractorKind kind, int32_t number);
// Ctrl+F3: the note in the editor under "Edycja notatki:"; true when written back.
// In the warehouses Ctrl+F3 edits the warehouse's printing data instead.
bool EditContractorNote(ContractorKind kind, int32_t number);
// The text printed for a warehouse on invoices and issues: nazwa_ma in its folder.
ShortText WarehousePrintDataPath(int32_t warehouse);
// Its editor; "Zapis danych magazynu nie powiódł się." when it cannot be written. True when written.
bool EditWarehousePrintData(int32_t warehouse);
// F7 of customers and suppliers: a warehouse chosen, then LinkWarehouseAsked.
bool LinkContractorToWarehouse(ContractorKind kind, int32_t contractor);
// The warehouses the current user adds to the stock shown in the entry: the
// file magsum.txt in his directory, one number a line (bad lines skipped).
ShortText MergedWarehousesPath();
std::vector<int32_t> ReadMergedWarehouses();
// F7 of the warehouses: MergeWarehouseSelection over the stored marks,
// stored again on Enter; true when stored.
bool MarkMergedWarehouses();
