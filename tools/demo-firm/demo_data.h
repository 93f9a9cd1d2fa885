// The demo firm's data as values: warehouses, contractors, items, users and
// the fiscal settings. Pure: the same values on every call, so that a
// second run of the tool finds exactly what the first one wrote.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "documents/kindrules.h"
#include "fiscal/fiscalconfig.h"
#include "master/contractors.h"
#include "master/items.h"
#include "users/users.h"

inline constexpr int kDemoContractors = 20;
inline constexpr int kDemoItems = 200;
inline constexpr int32_t kDemoWarehouses[] = {1, 2};

// The NIP of ten digits from its first nine with the check digit (weights
// 6 5 7 2 3 4 5 6 7, sum mod 11), written "123-456-32-18"; empty when the
// nine digits give the check value 10, which no NIP may have.
ShortText NipFromDigits(const std::string& nine);
// The EAN-13 text from its first twelve digits with the check digit.
ShortText Ean13FromDigits(const std::string& twelve);

// The two warehouses (numbers 1 and 2), both with tables of their own.
std::vector<Contractor> DemoWarehouses();
// Twenty customers or suppliers numbered 1..20, names with Polish letters, valid NIPs.
std::vector<Contractor> DemoContractors(ContractorKind kind);

// The VAT groups of the dictionary: rate text and description.
struct DemoVatGroup {
  ShortText group;
  ShortText description;
};
std::vector<DemoVatGroup> DemoVatGroups();

// The catalogue of document kinds: the goods kinds with their contractor
// letter and sign, then the payment kinds of the till and the bank.
std::vector<DocumentKindRow> DemoDocumentKinds();

// An item with its quantities in the two warehouses.
struct DemoItem {
  ItemData data;
  Real stock[2] = {0, 0};
};
// The 200 items, codes unique EAN-13, each from one of the 20 suppliers.
std::vector<DemoItem> DemoItems();

// The two operators (numbers given by the list when added).
std::vector<UserRecord> DemoOperators();

// The fiscal settings: a printer of the fiscal print server (1 ELZAB,
// 2 POSNET, as the demo's fisksrv.cfg rows), retail sales fiscal, the five
// VAT groups mapped to the letters A B C D and Z.
FiscalConfig DemoFiscalConfig(int serverPrinter);
