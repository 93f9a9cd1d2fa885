// The table side of document kinds and headers: names and locks of kinds
// from dane\dok_plat and dane\dok_plaz, and the guards that a document runs
// before it is changed or deleted. Each guard shows its message itself.
#pragma once

#include <cstdint>

#include "base/mazovia.h"
#include "base/shorttext.h"
#include "documents/dockinds.h"

inline constexpr ShortText kKindLockedText = "Ten typ dokumentu jest zablokowany do wprowadzania i modyfikacji."_mz;
inline constexpr ShortText kKindLockedForUserText =
    "Ten typ dokumentu jest zablokowany dla CIebie do wprowadzania i modyfikacji."_mz;
inline constexpr ShortText kAllKindsLockedText =
    "Wszystkie dokumenty towarowe są zablokowane do wprowadzania i zmian."_mz;

// Column 2 of the kind's row of dane\dok_plat; empty when there is none.
ShortText DocumentKindName(int kind);

// Why the user may not enter or change documents of the kind: the kind is
// locked in dok_plat, or closed for the user in dok_plaz; empty when open.
ShortText KindRefusal(int kind, int32_t user);
// A row of dane\dok_plat as a new firm's catalogue of kinds holds it.
struct DocumentKindRow {
  int16_t kind = 0;
  ShortText name;
  char contractor = ' ';  // 'O' customer, 'd' supplier, 'w'/'W' internal
  ShortText account;      // konto_przeciwstawne
  bool income = true;     // czy_przychod: 'T' income, 'N' expense
  ShortText mark;         // the proposed mark of its documents
};
// Adds the kind's row unless the kind is there; true when added. A failing
// statement goes to the layer's fatal check.
bool DocumentKindEnsure(const DocumentKindRow& row);

// Whether any goods kind is open to the user.
bool AnyKindOpen(int32_t user);

// The key of a header in a warehouse.
struct DocumentKey {
  int32_t warehouse = 0;
  int16_t kind = 0;
  int32_t coded = 0;
  ShortText mark;
};

// true (refused) when zablokowany is "T" and the user either lacks maximum
// rights or, having them, answers no to going on.
bool CheckDocumentLock(const ShortText& zablokowany);
// true (gone) when the header's row is no longer in naglowki, after the message.
bool CheckDocumentExists(const DocumentKey& key);
// The four steps before a change or deletion, in order; true when allowed.
// documentDate and today are day serials.
bool DocumentMayBeTouched(DocumentAction action, const DocumentKey& key, int32_t documentOperator,
                          int32_t documentDate, int32_t today);
