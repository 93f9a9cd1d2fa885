// The users suites: a database with the users table and user 0, the firm's
// directory in the suite's HOME, and key scripts whose steps may also act
// (as another process would) before their keys go in.
#pragma once

#include <signal.h>

#include <functional>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "sqltable/sqltest.h"
#include "tui/keydecode.h"
#include "users/users.h"

struct Step {
  Step(std::vector<KeyPair> k, std::function<void()> b = {}) : keys(std::move(k)), before(std::move(b)) {}
  std::vector<KeyPair> keys;
  std::function<void()> before;  // runs before the keys go in
};

// Forks a process with a connection of its own that runs take and, when take
// holds, waits to be killed: its pid once it has answered, or -1 when take failed.
inline pid_t HoldInAnotherProcess(const std::function<bool()>& take) {
  int ready[2];
  if (pipe(ready) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    ::close(ready[0]);
    ConnectChild();
    const char answer = take() ? 'y' : 'n';
    (void)!::write(ready[1], &answer, 1);
    for (;;) pause();
  }
  ::close(ready[1]);
  char answer = 0;
  (void)!::read(ready[0], &answer, 1);
  ::close(ready[0]);
  if (answer == 'y') return child;
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  return -1;
}

// Ends a process of HoldInAnotherProcess, if any.
inline void KillHolder(pid_t& child) {
  if (child <= 0) return;
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  child = -1;
}

// Keys of typed text followed by further keys.
std::vector<KeyPair> Type(const std::string& text, std::vector<KeyPair> after = {});
// Keys that rub out count characters of a field, type text and press Enter.
std::vector<KeyPair> Retype(int count, const std::string& text);

class UsersTest : public CatalogueTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Feeds the steps whenever a key is wanted; after the last the input ends (Esc).
  static void Play(std::vector<Step> steps);
  // Forgets the screens seen so far.
  static void ForgetScreens();
  // True when some screen seen so far showed every line of the text ("@" between lines).
  static bool Shown(const ShortText& text);
  // How many screens showed the text's first line.
  static int TimesShown(const ShortText& text);
  // Logs in the row of the number as the current user.
  static void ActAs(int32_t number);
  // Adds a user through the table alone (status "N", empty password) with its directory.
  static void AddRow(int32_t number, const char* first, const char* surname, const char* status = "N");
  // Rows of the table: "number:first:surname:status" in number order.
  static std::string Rows();
};
