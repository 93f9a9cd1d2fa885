// "Wprowadzanie nowych i zmiany istniejących": the list of the current
// warehouse's goods documents, read a screenful at a time newest first,
// with its keys on the last row.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "base/text.h"
#include "documents/docentry.h"
#include "documents/doclist.h"
#include "documents/docnumber.h"
#include "documents/kindrules.h"
#include "fiscal/fiscalconfig.h"
#include "tui/askvalue.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/pagedrows.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "tui/term.h"
#include "users/users.h"

namespace {

constexpr int kRows = 21;
constexpr int kFirstRow = 3;
constexpr unsigned char kListAttr = 0x1F, kBarAttr = 0x30, kTitleAttr = 0x4F;
constexpr unsigned char kEnter = 13, kF2 = 230, kF4 = 232, kF8 = 236, kIns = 252;

const ShortText kHeader = " data       typ znak        numer  kontrahent                  suma dok. fisk."_mz;
const ShortText kKeys = " Enter-pozycje Ins-nowy F2-numer F4-fiskalizacja Esc-wyjście"_mz;
const ShortText kManagerKeys = " F8-usuń zn.fisk."_mz;
const ShortText kNumberSearch = "Podaj numer szukanego dokumentu:"_mz;
const ShortText kRemovingMark = "Usuwanie znacznika fiskalizacji..."_mz;
const ShortText kMarkRowGone = "BŁĄD !@Nie znaleziono dokumentu do zmiany !"_mz;
const ShortText kReadFault =
    "Wystąpiły zakłócenia odczytu bazy.@@Wyjdź do głównego menu programu, rezygnując z wprowadzanych zmian,@a potem wróć do wykonywanych czynności."_mz;

DocumentKey GuardKey(int32_t warehouse, const DocRef& key) { return DocumentKey{warehouse, key.kind, key.coded, key.mark}; }

// The lines of a document in a list box under its number, with the values'
// sums as the last rows; nothing in it can be changed.
void ShowDocumentLines(int32_t warehouse, const DocListRow& row) {
  std::vector<DocViewLine> lines;
  if (DocViewLinesRead(warehouse, row.key, lines) != 0) return (void)MessageBox(kReadFault, 0);
  std::vector<ShortText> shown{"poz " + PadRight("nazwa"_mz, " ", 25) + " " + PadRight("VAT"_mz, " ", 5) +
                               PadLeft("ilość"_mz, ' ', 10) + PadLeft("cena br."_mz, ' ', 11) +
                               PadLeft("wartość br."_mz, ' ', 12)};
  for (const DocViewLine& l : lines) {
    if (static_cast<int>(shown.size()) >= kPickMaxChoices - 2) break;
    shown.push_back(IntText(l.position, 3) + " " + PadRight(l.name.Copy(1, 25), " ", 25) + " " +
                    PadRight(l.vat, " ", 5) + FormatFixed(10, 3, l.quantity) + FormatFixed(11, 2, l.gross) +
                    FormatFixed(12, 2, LineValue(l.quantity, l.gross)));
  }
  const DocViewTotals totals = DocViewTotalsOf(lines);
  shown.push_back("Razem netto: "_mz + FormatFixed(12, 2, totals.net) + "  brutto: "_mz +
                  FormatFixed(12, 2, totals.gross));
  const ShortText title = "Dokument nr "_mz + DocNumberText(row.key.coded) + "/" + TrimBoth(row.key.mark, ' ') +
                          "  suma dok.: "_mz + TrimBoth(FormatFixed(15, 2, row.total), ' ');
  unsigned char ch = 0, scan = 0;
  (void)PickListHooked(1, 2, 1, 0, 0, title, shown, {}, ch, scan);
}

class DocumentListScreen {
 public:
  explicit DocumentListScreen(int32_t warehouse) : warehouse_(warehouse) {}

  void Run() {
    RunPagedList(
        list_, [this] { Draw(); }, [this](unsigned char code) { return Act(code); }, kReadFault);
  }

 private:
  bool Act(unsigned char code) {
    switch (code) {
      case kF2: return SearchNumber();
      case kEnter: return ViewLines();
      case kIns: return NewDocument();
      case kF4: return Fiscalise();
      case kF8: return RemoveMark();
      default: return false;
    }
  }

  void Draw() {
    TextAttr(kTitleAttr);
    WriteAt(1, 1, PadRight(" Dokumenty towarowe - magazyn nr "_mz + IntText(warehouse_, 0), " ", 80));
    TextAttr(kListAttr);
    WriteAt(1, 2, PadRight(kHeader, " ", 80));
    DrawPagedRows(list_, kFirstRow, kRows, DocListRowText, kListAttr, kBarAttr);
    WriteAt(1, 24, ShortText(std::string(80, ' ')));
    // The key line stops one cell short of the corner, so the screen never scrolls.
    WriteAt(1, kScreenRows, PadRight(kKeys + (CurrentUserMaxRights() ? kManagerKeys : ShortText()), " ", 79));
    GotoXY(1, kFirstRow + list_.Bar());
    TermFlush();
  }

  // A new document comes first in the list: it is shown from the top.
  bool NewDocument() {
    DocumentEntry(warehouse_);
    list_.Home();
    return true;
  }

  bool SearchNumber() {
    ShortText text;
    if (!AskValue(kNumberSearch, text, 8, 3, ShortText(), ShortText()) || TrimBoth(text, ' ').Empty()) return true;
    DocListKey at;
    if (!DocListFind(warehouse_, std::atoi(text.Str().c_str()), at)) return false;
    list_.LoadFrom(at, true);
    return true;
  }

  bool ViewLines() {
    const DocListRow* row = list_.Current();
    if (!row) return false;
    if (!CheckDocumentExists(GuardKey(warehouse_, row->key))) ShowDocumentLines(warehouse_, *row);
    list_.Reload();
    return true;
  }

  bool Fiscalise() {
    const DocListRow* row = list_.Current();
    if (!row || !DocumentKindFiscal(row->key.kind)) return false;
    (void)FiscaliseListedDocument(CurrentFiscalConfig(), warehouse_, row->key);
    list_.Reload();
    return true;
  }

  bool RemoveMark() {
    const DocListRow* row = list_.Current();
    if (!row || !CurrentUserMaxRights()) return false;
    if (CheckDocumentLock(ShortText(std::string(1, row->locked)))) return true;
    FiscalMarkRemoval result;
    {
      const ScreenKeeper keeper;
      (void)MessageBox(kRemovingMark, 2);
      result = RemoveFiscalMark(warehouse_, row->key);
    }
    if (result == FiscalMarkRemoval::kGone) (void)MessageBox(kMarkRowGone, 0);
    if (result == FiscalMarkRemoval::kNoMark) return false;
    list_.Reload();
    return true;
  }

  int32_t warehouse_;
  PagedRows<DocListRow, DocListKey> list_{
      kRows,
      [this](const DocListKey& key, bool older, int limit, std::vector<DocListRow>& rows) {
        return DocListRead(warehouse_, key, older, limit, rows) == 0;
      },
      DocListKeyOf};
};

}  // namespace

void DocumentList(int32_t warehouse) { DocumentListScreen(warehouse).Run(); }
