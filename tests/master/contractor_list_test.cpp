// The contractor list by keys over 45 customers whose name, number and
// town orders all differ: the number that Enter chooses is the row under
// the bar, checked against the orders the test sorts itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "contractors_fixture.h"
#include "master/contractor_screens.h"
#include "master/contractors_detail.h"
#include "tui/keyboard.h"

namespace {

using keys::kEnter;
using keys::kEsc;
constexpr int kCustomers = 45;
constexpr int kPage = 18;

std::string Two(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

struct Row {
  std::string name, town;
  int32_t number;
};

class ContractorList : public ContractorsTest {
 protected:
  void SetUp() override {
    ContractorsTest::SetUp();
    for (int i = 1; i <= kCustomers; ++i) {
      Contractor c = Named(ShortText("Firma " + Two(i * 17 % kCustomers)), ShortText("Miasto " + Two(i * 29 % kCustomers)));
      c.number = 100 + i;
      c[KontrahentCol::nip] = ShortText("526-02-" + Two(i) + "-274");
      c[KontrahentCol::telefony] = ShortText("22 60" + Two(i));
      c[KontrahentCol::nr_rej] = ShortText("REJ/" + Two(i));
      ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, c, NumberRange{}), ContractorOutcome::kDone) << i;
      rows_.push_back({c[KontrahentCol::nazwa].Str(), c[KontrahentCol::miasto].Str(), c.number});
    }
  }
  // The numbers in the order of a key function of the rows.
  template <typename Key>
  std::vector<int32_t> Ordered(Key key) const {
    std::vector<Row> sorted = rows_;
    std::sort(sorted.begin(), sorted.end(), [&](const Row& a, const Row& b) { return key(a) < key(b); });
    std::vector<int32_t> numbers;
    for (const Row& r : sorted) numbers.push_back(r.number);
    return numbers;
  }
  std::vector<int32_t> ByName() const { return Ordered([](const Row& r) { return r.name; }); }
  std::vector<Row> rows_;
};

TEST_F(ContractorList, KeysMoveTheBarThroughEachOrder) {
  const std::vector<int32_t> name = ByName();
  const std::vector<int32_t> town = Ordered([](const Row& r) { return r.town + Two(r.number); });
  const KeyPair shiftTab = keys::kShiftTab;
  struct Case {
    const char* what;
    std::vector<KeyPair> keys;
    int32_t chosen;
  };
  const Case cases[] = {
      {"the first row", {}, name[0]},
      {"PgDn keeps the bar's place", {keys::kDown, keys::kDown, keys::kPgDn}, name[2 + kPage]},
      {"PgDn at the end shows the last screenful", Repeat(keys::kPgDn, 3), name[kCustomers - 1]},
      {"End then Up", {keys::kEnd, keys::kUp}, name[kCustomers - 2]},
      {"Down past the screen scrolls", Repeat(keys::kDown, 20), name[20]},
      {"PgUp back from the end", {keys::kEnd, keys::kPgUp}, name[kCustomers - 1 - kPage]},
      {"PgUp at the start stops on the first", {keys::kDown, keys::kPgDn, keys::kPgUp, keys::kPgUp}, name[0]},
      {"Up above the screen scrolls back", {keys::kEnd, keys::kPgUp, keys::kUp, keys::kUp}, name[kCustomers - 3 - kPage]},
      {"Home", {keys::kPgDn, keys::kHome}, name[0]},
      {"the number order keeps the bar's row", {keys::kDown, shiftTab}, name[1]},
      {"the number order from its start", {shiftTab, keys::kHome}, 101},
      {"the town order", {shiftTab, shiftTab, keys::kHome, keys::kDown}, town[1]},
      {"five orders round to the name", {shiftTab, shiftTab, shiftTab, shiftTab, shiftTab, keys::kEnd}, name.back()},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<KeyPair> keys = c.keys;
    keys.push_back(kEnter);
    Play({{keys}});
    EXPECT_EQ(ChooseContractor(ContractorKind::kCustomer, ChoosePurpose::kAny), c.chosen);
  }
}

TEST_F(ContractorList, SearchesFindTheRowInTheOrderFromTheBar) {
  const KeyPair ctrlN{14, 49}, ctrlT{20, 20}, ctrlK{11, 37};
  const int32_t firstName = ByName()[0];
  struct Case {
    const char* what;
    std::vector<KeyStep> steps;
    int32_t chosen;
    ShortText message;
  };
  const Case cases[] = {
      {"NIP without its dashes", {{{ctrlN}}, {Typed(ShortText("0207"), {kEnter})}, {{kNo}}, {{kEnter}}}, 107,
       "Wprowadź szukany NIP, lub jego fragment:"_mz},
      {"telephones", {{{ctrlT}}, {Typed(ShortText("6033"), {kEnter})}, {{kNo}}, {{kEnter}}}, 133,
       "Jest ! Czy szukać dalej ?"_mz},
      {"registration, then on to nothing", {{{ctrlK}}, {Typed(ShortText("REJ/4"), {kEnter})}, {{kYes}}, {{kYes}}, {{kYes}},
                                            {{kYes}}, {{kYes}}, {{kYes}}, {{kEnter}}},
       0, "Nie znalazłem !"_mz},
      {"a number", {{{KeyOfByte('1')}}, {Typed(ShortText("23"), {kEnter})}, {{kEnter}}}, 123, ShortText()},
      {"no such number", {{{KeyOfByte('9')}}, {{kEnter}}, {{kEnter}}, {{kEnter}}}, firstName,
       "Nie ma takiego numeru !"_mz},
      {"a letter goes to the name", {{{KeyOfByte('f'), keys::kDown, KeyOfByte('F'), kEnter}}}, firstName, ShortText()},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Play(c.steps);
    const int32_t chosen = ChooseContractor(ContractorKind::kCustomer, ChoosePurpose::kAny);
    if (c.chosen != 0) {
      EXPECT_EQ(chosen, c.chosen);
    }
    if (!c.message.Empty()) {
      EXPECT_TRUE(Shown(c.message));
    }
  }
}

// Reads in both directions from a key, with and without the key's row,
// and rows that another program wrote with NULL in the later columns.
TEST_F(ContractorList, ReadsByKeyInBothDirectionsAndNullsReadNeutral) {
  using contractors_detail::KeyOf;
  using contractors_detail::ListKey;
  using contractors_detail::ListOrder;
  ASSERT_TRUE(Psql("INSERT INTO dane_odbiorcy (nazwa, nazwa_inne, numer) VALUES ('Firma 99', '', 7)"));
  rows_.push_back({"Firma 99", "", 7});
  const std::vector<int32_t> name = ByName();
  std::vector<Contractor> all, page;
  const auto read = [](ListOrder order, const ListKey& key, bool forward, int count, std::vector<Contractor>& rows) {
    ASSERT_EQ(contractors_detail::ListRead(ContractorKind::kCustomer, order, key, forward, count, std::string(), rows), 0);
  };
  read(ListOrder::kName, ListKey{}, true, 100, all);
  ASSERT_EQ(all.size(), name.size());
  for (std::size_t i = 0; i < all.size(); ++i) EXPECT_EQ(all[i].number, name[i]) << i;
  EXPECT_EQ(all.back()[KontrahentCol::miasto].Str(), "");
  EXPECT_EQ(all.back()[KontrahentCol::email].Str(), "");
  EXPECT_EQ(all.back().discount, 0);
  struct Case {
    bool forward, inclusive;
    std::size_t first, count;  // places in name order expected
  } cases[] = {{true, false, 11, 5}, {true, true, 10, 5}, {false, false, 5, 5}, {false, true, 6, 5}};
  for (const Case& c : cases) {
    read(ListOrder::kName, KeyOf(all[10], c.inclusive), c.forward, 5, page);
    ASSERT_EQ(page.size(), c.count);
    for (std::size_t i = 0; i < c.count; ++i) EXPECT_EQ(page[i].number, name[c.first + i]) << c.forward << c.inclusive;
  }
  // The row without a town comes first in the town order.
  read(ListOrder::kTown, ListKey{}, true, 1, page);
  EXPECT_EQ(page.at(0).number, 7);
}

// F3 changes the FK symbol of the row under the bar and nothing else.
TEST_F(ContractorList, F3EditsTheFkSymbolOfTheBarsRow) {
  const int32_t second = ByName()[1];
  Play({{{keys::kDown, keys::F(3)}}, {Typed(ShortText("201-05"), {kEnter})}, {{kEsc}}});
  ContractorCatalogue(ContractorKind::kCustomer);
  EXPECT_TRUE(Shown("Edycja symbolu FK:"_mz));
  EXPECT_EQ(Scalar("SELECT string_agg(numer || ':' || symbol_fk, ',') FROM dane_odbiorcy WHERE symbol_fk <> ''"),
            std::to_string(second) + ":201-05");
}

}  // namespace
