// The screens of the catalogues by keys, read back from the shadows: the
// list and its search, the form's checks, the delete's questions, the
// dictionary list, and a row changed by another process meanwhile.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "contractors_fixture.h"
#include "master/contractor_screens.h"
#include "master/dictionaries.h"
#include "master/dictionary_screens.h"
#include "master/tables.h"
#include "sqltable/pglib.h"
#include "tui/keyboard.h"
#include "users/users.h"

namespace {

using keys::kEnter;
using keys::kEsc;
const KeyPair kCtrlR{18, 19};
const KeyPair kF10 = keys::F(10);

using ContractorScreens = ContractorsTest;

void AddCustomers(std::initializer_list<ShortText> names) {
  for (const ShortText& name : names) {
    Contractor c;
    c[KontrahentCol::nazwa] = name;
    ASSERT_EQ(ContractorAdd(ContractorKind::kCustomer, c, NumberRange{}), ContractorOutcome::kDone) << name.Str();
  }
}

TEST_F(ContractorScreens, SearchByAFragmentOfTheNameGoesOnAndEnds) {
  AddCustomers({ShortText("Kowalski"), "Zakład Żółć"_mz, ShortText("Nowak"), "Bednarek Żółty"_mz});
  Play({{{kCtrlR}}, {Typed("żół"_mz, {kEnter})}, {{KeyOfByte('T')}}, {{KeyOfByte('T')}}, {{kEnter}}, {{kEsc}}});
  ContractorCatalogue(ContractorKind::kCustomer);
  EXPECT_TRUE(Shown("Wybierz żądanego odbiorcy:"_mz));
  EXPECT_TRUE(Shown(" Bednarek Żółty"_mz));
  EXPECT_TRUE(Shown(" Zakład Żółć"_mz));
  EXPECT_TRUE(Shown("Jest ! Czy szukać dalej ?"_mz));
  EXPECT_TRUE(Shown("Nie znalazłem !"_mz));
}

}  // namespace
