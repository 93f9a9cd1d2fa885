// The choice of the kind of a new document.
#include <vector>

#include "config/konfigur.h"
#include "documents/docentry.h"
#include "documents/dockinds.h"
#include "documents/kindrules.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "users/users.h"

namespace {

// The groups in the order of their keys; the first names the retail kind.
ShortText GroupChoices() {
  const ShortText retail = KindName(1);
  return " ╧à Sprzedaż detaliczna i zwroty z niej (`"_mz + retail + "') @"_mz +
         " ╧ç Sprzedaż udokumentowana i zwroty z niej @"_mz + " ╧ê Zakupy i zwroty zakupionych towarów@"_mz +
         " ╧ë Inne rozchody @"_mz + " ╧è Inne przychody @"_mz + " ╧ï Zamówienia "_mz;
}

// The kinds a user may enter in a group; 18 comes only as a transfer's mirror.
std::vector<int> KindsOfGroup(KindGroup group) {
  std::vector<int> kinds;
  for (int k = kFirstGoodsKind; k <= kLastGoodsKind; ++k)
    if (k != 18 && DocumentKindOf(k)->group == group) kinds.push_back(k);
  return kinds;
}

// The second step; 0 for Esc.
int ChooseKindOfGroup(KindGroup group) {
  const std::vector<int> kinds = KindsOfGroup(group);
  if (kinds.size() == 1) return kinds[0];
  ShortText options;
  for (int k : kinds) options += (options.Empty() ? ""_mz : "@"_mz) + KindName(k);
  unsigned char ch = 0, scan = 0;
  const int16_t pick = PickList(0, 1, 1, 0, 0, kChooseKindTitle, options, ch, scan);
  return pick > 0 ? kinds[static_cast<std::size_t>(pick - 1)] : 0;
}

}  // namespace

ShortText KindName(int kind) {
  const ShortText name = DocumentKindName(kind);
  return name.Empty() ? ConfigDocumentName(kind) : name;
}

int ChooseDocumentKind() {
  int16_t group = 1;
  for (;;) {
    unsigned char ch = 0, scan = 0;
    group = PickList(0, group, 1, 0, 0, kChooseGroupTitle, GroupChoices(), ch, scan);
    if (group <= 0) return 0;
    const int kind = ChooseKindOfGroup(static_cast<KindGroup>(group));
    if (kind == 0) continue;
    const ShortText refusal = KindRefusal(kind, CurrentUserNumber());
    if (refusal.Empty()) return kind;
    (void)MessageBox(refusal, 0);
  }
}
