// The table of goods document kinds and the rules read from it.
#include "documents/dockinds.h"

#include <array>
#include <iterator>

#include "users/users.h"

namespace {

using SE = StockEffect;
using KG = KindGroup;
using CC = ContractorCatalogue;

constexpr ShortText kSale = "sprzedaż fakturowana"_mz;
constexpr ShortText kSaleReturn = "zwrot ze sprzedaży fakturowanej"_mz;
constexpr ShortText kPurchase = "zakup towarów handlowych"_mz;
constexpr ShortText kPurchaseReturn = "zwrot zakupionych towarów handlowych"_mz;
constexpr ShortText kReceipt = "przyjęcie towarów handlowych"_mz;

// One row per kind, in kind order.
constexpr DocumentKind kKinds[] = {
    {1, "sprzedaż detaliczna"_mz, "zwrot ze sprzedaży detalicznej"_mz, "PA", SE::kIssue, KG::kRetail, CC::kCustomers, false},
    {2, kSale, {}, "FA", SE::kIssue, KG::kDocumentedSale, CC::kCustomers, false},
    {3, kSaleReturn, {}, "", SE::kReceipt, KG::kDocumentedSale, CC::kCustomers, false},
    {4, kSale, {}, "FV", SE::kIssue, KG::kDocumentedSale, CC::kCustomers, false},
    {5, kSaleReturn, {}, "", SE::kReceipt, KG::kDocumentedSale, CC::kCustomers, false},
    {6, kPurchase, {}, "PZ", SE::kReceipt, KG::kPurchases, CC::kSuppliers, false},
    {7, kPurchase, {}, "PZ", SE::kReceipt, KG::kPurchases, CC::kSuppliers, false},
    {8, kPurchaseReturn, {}, "", SE::kIssue, KG::kPurchases, CC::kSuppliers, false},
    {9, kPurchaseReturn, {}, "", SE::kIssue, KG::kPurchases, CC::kSuppliers, false},
    {10, kReceipt, {}, "", SE::kReceipt, KG::kOtherReceipts, CC::kSuppliers, false},
    {11, kReceipt, {}, "", SE::kReceipt, KG::kOtherReceipts, CC::kSuppliers, false},
    {12, "towarowy bilans otwarcia"_mz, {}, "BO", SE::kReceipt, KG::kOtherReceipts, CC::kSuppliers, false},
    {13, "zwrot towarów handlowych"_mz, {}, "", SE::kIssue, KG::kOtherIssues, CC::kSuppliers, false},
    {14, "wydanie towaru"_mz, {}, "WZ", SE::kIssue, KG::kOtherIssues, CC::kCustomers, false},
    {15, "przesunięcie towaru do innego magazynu"_mz, {}, "MM-", SE::kIssue, KG::kOtherIssues, CC::kWarehouses, false},
    {16, {}, {}, "", SE::kOrdered, KG::kOrders, CC::kCustomers, true},
    {17, {}, {}, "", SE::kNone, KG::kOrders, CC::kSuppliers, true},
    {18, "przyjęcie towaru z innego magazynu"_mz, {}, "MM+", SE::kReceipt, KG::kOtherReceipts, CC::kWarehouses, false},
};
static_assert(std::size(kKinds) == kLastGoodsKind);

constexpr bool InKindOrder() {
  for (std::size_t i = 0; i < std::size(kKinds); ++i)
    if (kKinds[i].kind != static_cast<int16_t>(i + 1)) return false;
  return true;
}
static_assert(InKindOrder(), "one row per kind, in kind order");

constexpr uint32_t Bits(std::initializer_list<int> kinds) {
  uint32_t m = 0;
  for (int k : kinds) m |= KindBit(k);
  return m;
}

// Names of selections, the exact set first, then "Sprzedaż" for any part of 1..5.
struct KindSet {
  uint32_t kinds;
  ShortText name;
};
constexpr KindSet kKindSets[] = {
    {Bits({2, 4}), "sprzedaż fakturowana"_mz},
    {Bits({3, 5}), "Zwroty ze sprzed.fakturow."_mz},
    {Bits({1}), "PA det."_mz},
    {Bits({15}), "MM-"_mz},
    {Bits({18}), "MM+"_mz},
    {Bits({12}), "BO"_mz},
    {Bits({6, 7, 10, 11}), "Przyjęcia dostaw"_mz},
    {Bits({8, 9, 13}), "Zwroty dostaw"_mz},
    {Bits({16, 17}), "Zamówienia"_mz},
};
constexpr uint32_t kSaleKinds = Bits({1, 2, 3, 4, 5});

// The rights and messages of an action on a document.
struct ActionRules {
  UserRight right;
  ShortText noRight;
  ShortText otherOperator;
  ShortText otherDate;
};
constexpr ActionRules kActionRules[] = {
    {UserRight::kOwnDocuments, "Nie masz praw do zmian dokumentów."_mz,
     "Nie masz praw do zmian dokumentu wystawionego przez innego użytkownika."_mz,
     "Nie masz praw do zmian dokumentów,@które mają datę inną, niż aktualna."_mz},
    {UserRight::kDeleteDocuments, "Nie masz praw do kasowania dokumentów."_mz,
     "Nie masz praw do kasowania dokumentu wystawionego przez innego użytkownika."_mz,
     "Nie masz praw do kasowania dokumentów,@które mają datę inną, niż aktualna."_mz},
};

const ActionRules& RulesOf(DocumentAction a) { return kActionRules[static_cast<int>(a)]; }

}  // namespace

const DocumentKind* DocumentKindOf(int kind) {
  return kind >= kFirstGoodsKind && kind <= kLastGoodsKind ? &kKinds[kind - 1] : nullptr;
}

ShortText KindExportText(int kind, Real total) {
  const DocumentKind* k = DocumentKindOf(kind);
  if (!k) return {};
  return total < 0 && !k->exportTextNegative.Empty() ? k->exportTextNegative : k->exportText;
}

StockEffect KindStockEffect(int kind, bool orderHandling) {
  const DocumentKind* k = DocumentKindOf(kind);
  if (!k) return StockEffect::kNone;
  return k->effect == StockEffect::kOrdered && !orderHandling ? StockEffect::kNone : k->effect;
}

ContractorCatalogue KindContractor(int kind, char dokPlatLetter) {
  const DocumentKind* k = DocumentKindOf(kind);
  if (!k) return ContractorCatalogue::kCustomers;
  if (k->contractor == ContractorCatalogue::kWarehouses) return k->contractor;
  if (dokPlatLetter == 'd') return ContractorCatalogue::kSuppliers;
  if (dokPlatLetter == 'O') return ContractorCatalogue::kCustomers;
  return k->contractor;
}

const char* ContractorTablePath(ContractorCatalogue c) {
  static constexpr const char* kPaths[] = {"dane\\odbiorcy", "dane\\dostawcy", "dane\\magazyny"};
  return kPaths[static_cast<int>(c)];
}

ShortText KindGroupTitle(KindGroup group, const ShortText& retailName) {
  static constexpr ShortText kTitles[] = {
      {},
      " ╧ç Sprzedaż udokumentowana i zwroty z niej "_mz,
      " ╧ê Zakupy i zwroty zakupionych towarów"_mz,
      " ╧ë Inne rozchody "_mz,
      " ╧è Inne przychody "_mz,
      " ╧ï Zamówienia "_mz,
  };
  if (group == KindGroup::kRetail) return " ╧à Sprzedaż detaliczna i zwroty z niej (`"_mz + retailName + "\") ";
  return kTitles[static_cast<int>(group) - 1];
}

ShortText KindSetName(uint32_t kinds) {
  for (const KindSet& s : kKindSets)
    if (kinds == s.kinds) return s.name;
  if (kinds != 0 && (kinds & ~kSaleKinds) == 0) return "Sprzedaż"_mz;
  return "Obroty"_mz;
}

ShortText DocumentOwnerRefusal(DocumentAction action, int32_t documentOperator) {
  const ActionRules& r = RulesOf(action);
  if (!CurrentUserRight(r.right)) return r.noRight;
  if (documentOperator != CurrentUserNumber() && !CurrentUserRight(UserRight::kOthersDocuments))
    return r.otherOperator;
  return {};
}

ShortText DocumentDateRefusal(DocumentAction action, int32_t documentDate, int32_t today) {
  if (documentDate == today || CurrentUserRight(UserRight::kOtherDate)) return {};
  return RulesOf(action).otherDate;
}
