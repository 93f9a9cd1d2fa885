// The entry's checks: the pure rules by tables, then on the real server the
// stock check of a line (work table summed, reductions, the question on going
// below zero and its remembered answers, orders), the header form driven by
// keys, the save's checks of the whole line list, and a save that leaves
// the customers' ordered quantity in stock.
#include <deque>
#include <string>
#include <vector>

#include "base/dates.h"
#include "base/codepage.h"
#include "base/numbers.h"
#include "config/konfigur.h"
#include "documents/entry_detail.h"
#include "master/contractors.h"
#include "master/tables.h"
#include "print/keyscript.h"
#include "sqltable/sqltest.h"
#include "users/users.h"

namespace {

using namespace entrydetail;

// --- Pure rules ---
TEST(EntryRules, OrdersCutToWhatIsBeyondThem) {
  struct Case { Real q, available, ordered; bool keep; bool told; Real cut; };
  for (const Case& c : {Case{3, 10, 4, true, false, 3}, Case{6, 10, 4, true, false, 6},
                        Case{8, 10, 4, false, true, 8}, Case{8, 10, 4, true, true, 6},
                        Case{8, 3, 4, true, true, 0}, Case{8, 10, 0, true, false, 8}}) {
    Real cut = -1;
    const ShortText text = OrdersNotice(c.q, c.available, c.ordered, c.keep, cut);
    EXPECT_EQ(!text.Empty(), c.told) << static_cast<double>(c.q);
    EXPECT_EQ(cut, c.cut) << static_cast<double>(c.q);
    EXPECT_EQ(text.Pos("zredukowana do ") > 0, c.told && c.keep);
  }
}

TEST(EntryRules, ReturnsAboveTheStockOrNegativeAreQuestioned) {
  struct Case { int kind; Real q, available; ShortText word; };
  for (const Case& c : {Case{8, 9, 5, "większa"_mz}, Case{3, 9, 5, "większa"_mz}, Case{3, -2, 5, "mniejsza"_mz},
                        Case{13, 4, 5, {}}, Case{2, 9, 5, {}}, Case{5, 0, 5, {}}}) {
    const ShortText q = ReturnQuestion(c.kind, c.q, c.available);
    EXPECT_EQ(q.Empty(), c.word.Empty()) << c.kind;
    if (!c.word.Empty()) { EXPECT_GT(q.Pos(c.word.View()), 0) << c.kind; }
  }
}

TEST(EntryRules, FiscalLineLimitOfARetailSale) {
  struct Case { int kind, lines, option; LineLimit verdict; };
  for (const Case& c : {Case{1, 30, 0, LineLimit::kFine}, Case{1, 20, 20, LineLimit::kFine},
                        Case{1, 21, 20, LineLimit::kAsk}, Case{1, 21, -20, LineLimit::kRefuse},
                        Case{2, 99, -20, LineLimit::kFine}})
    EXPECT_EQ(FiscalLineLimit(c.kind, c.lines, c.option), c.verdict) << c.lines << " " << c.option;
  EXPECT_EQ(FiscalLimitText(LineLimit::kRefuse, -20),
            "Dokument SPRZEDAŻY FISKALNEJ może mieć do 20 pozycjiZapis zostaje odwołany."_mz);
}

TEST(EntryRules, HeaderProposals) {
  const ShortText defaults = "\" kartą\",\" przelewem\",\"przel.dla odb.\""_mz;
  EXPECT_EQ(ProposedPayment(1, defaults, false), " gotówką"_mz);
  EXPECT_EQ(ProposedPayment(1, defaults, true), " kartą"_mz);
  EXPECT_EQ(ProposedPayment(4, defaults, false), " przelewem"_mz);
  EXPECT_EQ(ProposedPayment(5, defaults, false), "przel.dla odb."_mz);
  EXPECT_EQ(ProposedPayment(6, defaults, false), " gotówką"_mz);
  const int32_t d = EncodeDaySerial(2026, 11, 23), s = EncodeDaySerial(2026, 11, 20);
  EXPECT_EQ(ProposedSettleDate(2, d, s, 14, false), EncodeDaySerial(2026, 12, 7));
  EXPECT_EQ(ProposedSettleDate(2, d, s, 14, true), EncodeDaySerial(2026, 12, 4));
  EXPECT_EQ(ProposedSettleDate(6, d, s, 14, false), d);
  EXPECT_EQ(DateOfText("31-02-2026"), 0);
  EXPECT_EQ(ProposedMark(2, "FS  ", 1), ShortText("FS"));
  EXPECT_EQ(ProposedMark(2, "FS", 0), ShortText("FA"));
  struct Case { int kind; bool has, required; ContractorKind catalogue; };
  for (const Case& c : {Case{1, true, false, ContractorKind::kCustomer}, Case{6, true, true, ContractorKind::kSupplier},
                        Case{12, false, false, ContractorKind::kCustomer},
                        Case{15, true, true, ContractorKind::kWarehouse}}) {
    const HeaderRules r = HeaderRulesOf(c.kind, ' ');
    EXPECT_EQ(r.hasContractor, c.has) << c.kind;
    EXPECT_EQ(r.required, c.required) << c.kind;
    if (c.has) { EXPECT_EQ(r.catalogue, c.catalogue) << c.kind; }
  }
}

DocLine Line(int32_t item, int32_t supplier, Real q) {
  DocLine l;
  l.item.number = item;
  l.item.name = ShortText("Towar " + std::to_string(item));
  l.item.supplier = supplier;
  l.quantity = q;
  return l;
}

TEST(EntryRules, SuppliersOfTheLinesAndTheOrderedReserve) {
  EXPECT_EQ(DifferentSupplierAt(std::vector<DocLine>{Line(1, 0, 1), Line(2, 3, 1), Line(3, 3, 2)}), 0);
  EXPECT_EQ(DifferentSupplierAt(std::vector<DocLine>{Line(1, 3, 1), Line(2, 4, 0), Line(3, 0, 1), Line(4, 4, 1)}), 3);
  EXPECT_FALSE(SupplierRefusal(8, 3, 4, "x").Empty());
  EXPECT_TRUE(SupplierRefusal(6, 3, 4, "x").Empty());
  // Item 1: 10 in stock, 4 ordered, so two lines share 6; item 2 has nothing ordered.
  const StockLevels levels{{1, StockLevel{10, 4, true}}, {2, StockLevel{5, 0, true}}};
  std::vector<DocLine> lines{Line(1, 0, 4), Line(2, 0, 9), Line(1, 0, 5), Line(1, 0, -1)};
  EXPECT_TRUE(LimitToUnreserved(lines, levels));
  EXPECT_EQ(lines[0].quantity, 4);
  EXPECT_EQ(lines[1].quantity, 9);
  EXPECT_EQ(lines[2].quantity, 10 - 4 - 4);
  EXPECT_EQ(lines[3].quantity, -1);
  EXPECT_EQ(MinimumValueRefusal(2, 50, 100, "FA", "FV"),
            "Wartość dokumentu `FA\" nie może@ być mniejsza, niż 100.00- zł .@Należy wystawić dokument `FV'."_mz);
  EXPECT_TRUE(MinimumValueRefusal(4, 50, 100, "FA", "FV").Empty());
  ItemData item;
  item.saleNet = 10;
  item.vat = "23";
  PurchasePriceFromSale(item, 2.5L);
  EXPECT_EQ(item.buyNet, 7.5L);
  EXPECT_EQ(item.buyGross, RoundHalfAway(7.5L * 123) / 100);
}

// --- On the server, driven by keys ---
constexpr int32_t kWarehouse = 1;
constexpr int32_t kUser = 5;

class EntryChecksDbTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
    ASSERT_EQ(ContractorTablesEnsure(), 0);
    ConfigSettings() = ConfigValues::Defaults();
    AddItem(1, 10, 4);
    AddItem(2, 0, 0);
    ASSERT_EQ(WorkTableEnsure(kUser), 0);
    work_ = WorkTablePath(kUser);
    SetUser(false);
    keyscript::Begin();  // every wait for a key takes the next scripted answer, Esc when none is left
  }
  void TearDown() override {
    ClearCurrentUser();
    ConfigSettings() = ConfigValues::Defaults();
    CatalogueTest::TearDown();
  }
  static void SetUser(bool belowZero) {
    UserRecord u;
    u.number = kUser;
    u.rights = belowZero ? static_cast<uint16_t>(1u << (static_cast<int>(UserRight::kBelowZero) - 1)) : 0;
    SetCurrentUser(u);
  }
  static void AddItem(int32_t n, Real quantity, Real ordered) {
    ItemData item;
    item.name = ShortText("Towar " + std::to_string(n));
    item.vat = "23";
    item.supplier = n;
    item.unit = "szt";
    item.saleNet = 10;
    item.saleGross = 12.3L;
    StockRow stock;
    stock.quantity = quantity;
    ShortText refusal;
    ASSERT_EQ(ItemAdd(item, ItemRules{}, kWarehouse, stock, refusal), 0);
    ASSERT_EQ(item.number, n) << refusal.Str();
    stock.number = n;
    stock.ordered = ordered;
    ASSERT_EQ(StockSet(kWarehouse, stock, refusal), 0);
  }
  void OnList(int32_t item, Real q) {
    DocLine l = Line(item, item, q);
    EXPECT_EQ(WorkLineAppend(work_, l), 0);
  }
  static bool Asked(const char* text) {
    return tui_test::AnyScreenShows(keyscript::gScreens, Utf8ToMaz(ShortText(text)));
  }
  ShortText work_;
};

TEST_F(EntryChecksDbTest, TheStockCheckSumsTheWorkTableAndReducesOrFallsBack) {
  OnList(1, 2);
  OnList(1, 1);  // the same item twice: both count, 10 - 3 = 7 available
  struct Case { Real asked; bool passes; Real result; int boxes; };
  for (const Case& c : {Case{5, true, 5, 0}, Case{7, true, 7, 0}, Case{9, true, 7, 1}}) {
    keyscript::gScreens.clear();
    Real q = c.asked;
    LineMemory memory;
    EXPECT_EQ(CheckLineQuantity(kWarehouse, 2, work_, Line(1, 1, 0), q, memory), c.passes);
    EXPECT_EQ(q, c.result) << static_cast<double>(c.asked);
    EXPECT_EQ(static_cast<int>(keyscript::gScreens.size()), c.boxes) << static_cast<double>(c.asked);
  }
  EXPECT_TRUE(Asked("do ilości = 7"));
  EXPECT_TRUE(Asked("Nie masz praw do zapisu operacji"));
  // The line being changed does not count against itself; an item at 0 falls back.
  OnList(1, 6);
  std::vector<DocLine> lines;
  ASSERT_EQ(WorkLinesRead(work_, lines), 0);
  Real q = 7;
  LineMemory memory;
  EXPECT_TRUE(CheckLineQuantity(kWarehouse, 2, work_, lines.back(), q, memory));
  EXPECT_EQ(q, 7);
  q = 1;
  EXPECT_FALSE(CheckLineQuantity(kWarehouse, 1, work_, Line(2, 2, 0), q, memory));
  // A purchase is not checked.
  q = 500;
  EXPECT_TRUE(CheckLineQuantity(kWarehouse, 6, work_, Line(1, 1, 0), q, memory));
  EXPECT_EQ(q, 500);
}

TEST_F(EntryChecksDbTest, BelowZeroQuestionAndItsRememberedChoices) {
  SetUser(true);
  LineMemory memory;
  struct Case { KeyPair answer; bool passes; Real result; };
  // 10 in stock: 1 keeps 12, 2 reduces to 10, Esc keeps the line as it was.
  for (const Case& c : {Case{{'1', 2}, true, 12}, Case{{'2', 3}, true, 10}, Case{keys::kEsc, false, 12}}) {
    keyscript::gScript = {c.answer};
    Real q = 12;
    EXPECT_EQ(CheckLineQuantity(kWarehouse, 14, work_, Line(1, 1, 0), q, memory), c.passes);
    if (c.passes) { EXPECT_EQ(q, c.result); }
  }
  EXPECT_TRUE(Asked("stan pozycji Towar 1 będzie ujemny."));
  keyscript::gScript = {{'4', 5}};  // always reduce: asked once, then never
  Real q = 12;
  EXPECT_TRUE(CheckLineQuantity(kWarehouse, 14, work_, Line(1, 1, 0), q, memory));
  EXPECT_EQ(q, 10);
  keyscript::gScreens.clear();
  q = 15;
  EXPECT_TRUE(CheckLineQuantity(kWarehouse, 14, work_, Line(1, 1, 0), q, memory));
  EXPECT_EQ(q, 10);
  EXPECT_TRUE(keyscript::gScreens.empty());
  EXPECT_TRUE(memory.alwaysReduce);
}

TEST_F(EntryChecksDbTest, OrdersAreToldAndKeptWhenConfigured) {
  ConfigSettings().SetNumber(kConfigOrdersReserve, 2);
  Real q = 8;
  LineMemory memory;
  EXPECT_TRUE(CheckLineQuantity(kWarehouse, 2, work_, Line(1, 1, 0), q, memory));
  EXPECT_EQ(q, 10 - 4);
  EXPECT_TRUE(Asked("Zamówiona jest w tej chwili ilość = 4"));
  ConfigSettings().SetNumber(kConfigOrdersReserve, 1);
  q = 8;
  EXPECT_TRUE(CheckLineQuantity(kWarehouse, 2, work_, Line(1, 1, 0), q, memory));
  EXPECT_EQ(q, 8);
}

TEST_F(EntryChecksDbTest, HeaderFormByKeys) {
  Contractor c;
  c[KontrahentCol::nazwa] = "Hurtownia Żak"_mz;
  c[KontrahentCol::nip] = "525-000-00-00";
  ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, c, NumberRange{}), ContractorOutcome::kDone);
  ConfigSettings().SetNumber(kConfigInvoiceDays, 14);
  const int32_t today = EncodeDaySerial(2026, 11, 23);
  // An invoice: Down to the contractor, its number, F2.
  DocumentHeader h = NewHeader(kWarehouse, 2, today);
  keyscript::gScript = {keys::kDown, {'1', 2}, keys::F(2)};
  EXPECT_TRUE(PrepareHeader(kWarehouse, h, today));
  EXPECT_EQ(h.contractor, c.number);
  EXPECT_EQ(h.contractorName, "Hurtownia Żak"_mz);
  EXPECT_EQ(h.settleDate, today + 14);
  EXPECT_EQ(h.payment, " przelewem"_mz);
  EXPECT_EQ(h.cash, 'N');
  // F2 at once: the required contractor comes from the list (Enter on its only row).
  h = NewHeader(kWarehouse, 2, today);
  keyscript::gScript = {keys::F(2), keys::kEnter};
  EXPECT_TRUE(PrepareHeader(kWarehouse, h, today));
  EXPECT_EQ(h.contractor, c.number);
  // The customer linked to the warehouse is proposed when so configured.
  ASSERT_EQ(ContractorLinkWarehouse(ContractorKind::kCustomer, c.number, kWarehouse), 0);
  EXPECT_EQ(NewHeader(kWarehouse, 2, today).contractor, 0);
  ConfigSettings().SetNumber(kConfigLinkedContractor, 1);
  EXPECT_EQ(NewHeader(kWarehouse, 2, today).contractor, c.number);
  EXPECT_EQ(NewHeader(kWarehouse, 6, today).contractor, 0);  // no supplier is linked
  // A retail sale: no form by default; one F2 when its header is asked.
  h = NewHeader(kWarehouse, 1, today);
  keyscript::gScreens.clear();
  EXPECT_TRUE(PrepareHeader(kWarehouse, h, today));
  EXPECT_TRUE(keyscript::gScreens.empty());
  EXPECT_EQ(h.payment, " gotówką"_mz);
  EXPECT_EQ(h.cash, 'T');
  ConfigSettings().SetNumber(kConfigReceiptHeader, 2);
  keyscript::gScript = {keys::F(2)};
  EXPECT_TRUE(PrepareHeader(kWarehouse, h, today));
  EXPECT_EQ(keyscript::gScreens.size(), 1u);
  // Another date on a retail sale is questioned; Esc at the question then at the form gives up.
  h.date = today - 1;
  keyscript::gScript = {keys::F(2), keys::kEsc, keys::kEsc};
  EXPECT_FALSE(PrepareHeader(kWarehouse, h, today));
  EXPECT_TRUE(Asked("Próbujesz zapisać sprzedaż detaliczną z datą inną"));
}

TEST_F(EntryChecksDbTest, SaveChecksOfTheWholeLineList) {
  DocumentHeader h;
  struct Case { int kind; std::deque<KeyPair> answers; bool passes; };
  const std::vector<DocLine> mixed{Line(1, 1, 1), Line(2, 2, 1)};
  for (const Case& c : {Case{8, {keys::kEnter}, false}, Case{6, {keys::kEnter}, true},
                        Case{6, {keys::kEsc, keys::kEnter}, false}, Case{6, {keys::kEsc, keys::kEsc}, true},
                        Case{14, {}, true}}) {
    h.kind = static_cast<int16_t>(c.kind);
    keyscript::gScript = c.answers;
    EXPECT_EQ(PassesSaveChecks(h, mixed, 0), c.passes) << c.kind << " " << c.answers.size();
  }
  ConfigSettings().SetText(kConfigInvoiceMinimum, "100");
  h.kind = 2;
  keyscript::gScript = {keys::kEnter};
  EXPECT_FALSE(PassesSaveChecks(h, std::vector<DocLine>{Line(1, 1, 1)}, 0));  // 10 net + 23%: below 100
  EXPECT_TRUE(Asked("Wartość dokumentu"));
}

TEST_F(EntryChecksDbTest, ASaveLeavesTheOrderedQuantityInStock) {
  DocumentHeader h;
  h.kind = 2;
  h.mark = "FA";
  h.date = EncodeDaySerial(2026, 11, 23);
  h.operatorNumber = kUser;
  SaveSettings s;
  s.respectOrders = true;
  std::vector<DocLine> lines{Line(1, 1, 5), Line(1, 1, 3)};
  for (DocLine& l : lines) l.item.saleNet = 10;
  SaveResult r;
  ASSERT_EQ(SaveDocument(kWarehouse, h, lines, s, r), 0) << PGLastOp.Str();
  ASSERT_EQ(r.outcome, SaveOutcome::kSaved);
  EXPECT_TRUE(r.reduced);
  const Real beyond = 10 - 4;  // what the first line may take; the second gets the rest of it
  EXPECT_EQ(Scalar("SELECT string_agg(ilosc::numeric(9,1)::text, ',' ORDER BY pozycja) FROM DANE_1_SPECYFIK"),
            "5.0,1.0");
  EXPECT_EQ(Scalar("SELECT ilosc::numeric(9,1) FROM DANE_1_STANY_MG WHERE nr_wewn=1"),
            std::to_string(static_cast<int>(10 - beyond)) + ".0");
}

}  // namespace
