// Goods document kinds 1..18 and the rules of their headers.
//
// A kind fixes what a document does to stock, which contractor catalogue
// it names, the text of accounting exports and the group of the entry
// menu; all of that is one table (DocumentKindOf). The displayed name comes
// from the catalogue dane\dok_plat; the lock of a kind from its column 8
// and from dane\dok_plaz. The rights on a change or deletion run in a fixed
// order, each step with its own message.
#pragma once

#include <cstdint>

#include "base/mazovia.h"
#include "base/real.h"
#include "base/shorttext.h"

inline constexpr int kFirstGoodsKind = 1;
inline constexpr int kLastGoodsKind = 18;

enum class StockEffect : int8_t {
  kNone,     // the stock list is left alone
  kIssue,    // takes the quantity from stany_mg
  kReceipt,  // adds it
  kOrdered,  // moves ilosc_zamowiona_odb
};

// Groups of the entry menu, in the order of keys F1..F6.
enum class KindGroup : int8_t { kRetail = 1, kDocumentedSale, kPurchases, kOtherIssues, kOtherReceipts, kOrders };

enum class ContractorCatalogue : int8_t { kCustomers, kSuppliers, kWarehouses };

struct DocumentKind {
  int16_t kind;
  ShortText exportText;
  ShortText exportTextNegative;  // for a total below 0; empty when the kind has none
  const char* shortCode;         // "PA", "FA", ...; empty when none
  StockEffect effect;
  KindGroup group;
  ContractorCatalogue contractor;  // when dok_plat says nothing else
  bool exportFromCatalogue;        // the export text is the name from dok_plat
};

// The row of a kind; null outside 1..18.
const DocumentKind* DocumentKindOf(int kind);
// The accounting export text: a retail sale below 0 is a return though its kind stays 1.
ShortText KindExportText(int kind, Real total);
// What the kind does to stock; an order (16) moves the ordered quantity only
// while order handling is on.
StockEffect KindStockEffect(int kind, bool orderHandling);
// The catalogue that nr_kontrahenta names: dok_plat's letter 'd' supplier,
// 'O' customer; transfers always name warehouses; else the kind's own.
ContractorCatalogue KindContractor(int kind, char dokPlatLetter);
const char* ContractorTablePath(ContractorCatalogue c);
// The title shown for a group on the first step of the kind choice.
ShortText KindGroupTitle(KindGroup group, const ShortText& retailName);

// The name of a selection of kinds in reports (bit k set for kind k).
ShortText KindSetName(uint32_t kinds);
constexpr uint32_t KindBit(int kind) { return 1u << kind; }

// --- Header columns with fixed meaning ---
inline constexpr char kHeaderUnlocked = 'N';
inline constexpr char kHeaderLocked = 'T';
inline constexpr char kCashDocument = 'T';
// czy_gotowkowy after the fiscal step: 'F' for a cash document, 'f' for another.
constexpr char FiscalMark(bool cash) { return cash ? 'F' : 'f'; }

// --- Rights on a change or deletion ---
enum class DocumentAction : int8_t { kChange, kDelete };
// Steps 1 and 2 for the current user: the message when the user lacks the
// right for the action, or the document is another operator's and the user
// may not touch those; empty when allowed.
ShortText DocumentOwnerRefusal(DocumentAction action, int32_t documentOperator);
// Step 4: the message when the document's date is not today and the user
// may not work on other dates; empty when allowed.
ShortText DocumentDateRefusal(DocumentAction action, int32_t documentDate, int32_t today);
