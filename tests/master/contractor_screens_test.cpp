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

TEST_F(ContractorScreens, SearchByAFragmentOfTheNameGoesOnAndEnds) {
  for (const ShortText& name : {ShortText("Kowalski"), "Zakład Żółć"_mz, ShortText("Nowak"), "Bednarek Żółty"_mz})
    AddNamed(ContractorKind::kCustomer, name);
  Play({{{kCtrlR}}, {Typed("żół"_mz, {kEnter})}, {{kYes}}, {{kYes}}, {{kEnter}}, {{kEsc}}});
  ContractorCatalogue(ContractorKind::kCustomer);
  EXPECT_TRUE(Shown("Wybierz żądanego odbiorcy:"_mz));
  EXPECT_TRUE(Shown(" Bednarek Żółty"_mz));
  EXPECT_TRUE(Shown(" Zakład Żółć"_mz));
  EXPECT_TRUE(Shown("Jest ! Czy szukać dalej ?"_mz));
  EXPECT_TRUE(Shown("Nie znalazłem !"_mz));
}

const KeyPair kBackspace = keys::kBackspace;

// Bad input in the form and the list, and the delete of a customer that a
// document names: each case plays keys from the list of customers and
// expects a message and the rows as they end.
TEST_F(ContractorScreens, TheFormAndTheListAnswerWithTheSystemsMessages) {
  struct Case {
    const char* what;
    std::vector<KeyStep> steps;
    ShortText message;
    std::string rows;
  };
  const ShortText inUse = "Jeżeli ten odbiorca ma na koncie obroty, to go nie kasuj.@Na pewno kasować ?"_mz;
  const Case cases[] = {
      {"a number out of range",
       {{{keys::kIns}}, {Typed(ShortText("X"), {keys::kUp})}, {Typed(ShortText("-5"), {kEnter})}, {{kEnter}},
        {{kEsc}}, {{kEsc}}},
       "Dana poza dozwolonym zakresem <1,2147483647>."_mz, "1:Kowalski:"},
      {"a flag other than T or N",
       {{{keys::kIns}}, {Typed(ShortText("Y"), {kEnter, kEnter, kEnter, kEnter, kEnter, kBackspace})},
        {Typed(ShortText("Q"), {kEnter})}, {{kEnter}}, {{kEsc}}, {{kEsc}}},
       "Ta dana może przyjąć wartość `T\" lub `N\""_mz, "1:Kowalski:"},
      {"the number of a row changed",
       {{{kEnter}}, {{keys::kUp}}, {Typed(ShortText("7"), {kF10})}, {{kEnter}}, {{kEsc}}},
       "Zmiana numeru jest zabroniona !@Poprawki odwołane."_mz, "1:Kowalski:"},
      {"an identical row",
       {{{keys::kIns}}, {Typed(ShortText("Kowalski"), {kF10})}, {{kEnter}}, {{kEsc}}},
       "Znaleziono identyczną daną - dopisanie nie ma sensu."_mz, "1:Kowalski:"},
      {"an empty name is not taken",
       {{{keys::kIns}}, {{kF10}}, {{kEsc}}, {{kEsc}}}, "Dopisanie nowego odbiorcy:"_mz, "1:Kowalski:"},
      {"a delete by another user than the manager",
       {{{keys::kDel}, [] { ClearCurrentUser(); }}, {{kEnter}}, {{kEsc}}},
       "Kasować może tylko `Kierownik Systemu\" (użytkownik nr 0)."_mz, "1:Kowalski:"},
      {"a customer in use: warned, no keeps it", {{{keys::kDel}}, {{kNo}}, {{kEsc}}}, inUse, "1:Kowalski:"},
      {"a customer in use: warned, yes deletes it", {{{keys::kDel}}, {{kYes}}, {{kEsc}}}, inUse, ""},
  };
  const Contractor w = AddNamed(ContractorKind::kWarehouse, ShortText("Magazyn"));
  AddHeaders(w.number, "(2, 1, 'X', 1)");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_TRUE(Psql("DELETE FROM dane_odbiorcy"));
    AddNamed(ContractorKind::kCustomer, ShortText("Kowalski"), 1);
    ASSERT_TRUE(Psql("UPDATE dane_odbiorcy SET czy_podmiot_gosp = 'T'"));  // as the form proposes it
    Play(c.steps);
    ContractorCatalogue(ContractorKind::kCustomer);
    EXPECT_TRUE(Shown(c.message));
    EXPECT_EQ(Rows(ContractorKind::kCustomer), c.rows);
    LogInManager();
  }
}

// Another process holds the catalogue's lock while it changes the
// telephones; our change of the name waits for it, and both survive.
TEST_F(ContractorScreens, TwoProcessesEditingOneContractorLoseNothing) {
  AddNamed(ContractorKind::kCustomer, ShortText("Kowalski"));
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  pid_t child = -1;
  auto otherProcess = [&] {
    child = fork();
    if (child == 0) {
      PGConn = nullptr;
      PGConnected = false;
      PGTransDepth = 0;
      bool ok = PGSetDefaults() == 0 && PGRunQueryNoTup("BEGIN") == 0 &&
                PGRunQueryNoTup("LOCK TABLE dane_odbiorcy IN EXCLUSIVE MODE") == 0 &&
                PGRunQueryNoTup("UPDATE dane_odbiorcy SET telefony = '22 333'") == 0;
      ok = ok && write(ready[1], "x", 1) == 1;
      PGResult slept;
      ok = ok && PGRunQueryWithTup("SELECT pg_sleep(1)", slept) == 0 && PGRunQueryNoTup("COMMIT") == 0;
      _exit(ok ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
  };
  Play({{{kEnter}}, {Typed(ShortText(" i Syn"), {kF10}), otherProcess}, {{kEsc}}});
  ContractorCatalogue(ContractorKind::kCustomer);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(Scalar("SELECT nazwa || ':' || telefony FROM dane_odbiorcy"), "Kowalski i Syn:22 333");
  close(ready[0]);
  close(ready[1]);
}

// The VAT dictionary by keys: the exempt group offered, a 30th group refused,
// the exempt group kept from deletion.
TEST_F(ContractorScreens, VatDictionaryListOffersTheExemptGroupAndGuardsIt) {
  const ShortText vat(kVatDictionary);
  ASSERT_EQ(DictionaryEnsure(vat), 0);
  Play({{{kYes}}, {{keys::kDel}}, {{kEnter}}, {{keys::kIns}}, {Typed(ShortText("23"), {kEnter})},
        {Typed(ShortText("stawka"), {kEnter})}, {{kEsc}}});
  ShortText value;
  EXPECT_FALSE(DictionaryList(ShortText("vat"), vat, false, value));
  EXPECT_TRUE(Shown("Czy chcesz automatycznie dopisać stawkę zwolnioną ?"_mz));
  EXPECT_TRUE(Shown("Lista wartości pola `vat\":"_mz));
  EXPECT_TRUE(Shown("Kasowanie grupy zwolnionej z VAT nie jest możliwe ze względu"_mz));
  EXPECT_EQ(Scalar("SELECT string_agg(indeks, ',' ORDER BY indeks) FROM dane_pola_ind_vat"), "23,zwol.");
  for (int g = 1; g <= kMaxVatGroups - 2; ++g) ASSERT_EQ(VatGroupAdd(ShortText("g" + std::to_string(g)), {}), DictionaryOutcome::kDone);
  Play({{{keys::kIns}}, {Typed(ShortText("99"), {kF10})}, {{kEnter}}, {{kEsc}}});
  EXPECT_FALSE(DictionaryList(ShortText("vat"), vat, true, value));
  EXPECT_TRUE(Shown("Nie można wpisać więcej, niż 29 grup VAT."_mz));
}

}  // namespace
