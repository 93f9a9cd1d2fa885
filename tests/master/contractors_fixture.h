// The contractor and dictionary suites: a database with the catalogues,
// the firm's directory with dane\, user 0 logged in, and key scripts whose
// steps may act (as another process would) before their keys go in.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "master/contractors.h"
#include "sqltable/sqltest.h"
#include "tui/keydecode.h"

struct KeyStep {
  KeyStep(std::vector<KeyPair> k, std::function<void()> b = {}) : keys(std::move(k)), before(std::move(b)) {}
  std::vector<KeyPair> keys;
  std::function<void()> before;
};

// Keys of typed Mazovia text (from a _mz literal or ASCII) followed by further keys.
std::vector<KeyPair> Typed(const ShortText& text, std::vector<KeyPair> after = {});

class ContractorsTest : public CatalogueTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Feeds the steps whenever a key is wanted; after the last the input ends (Esc).
  static void Play(std::vector<KeyStep> steps);
  // True when some screen seen so far showed every line of the text ("@" between lines).
  static bool Shown(const ShortText& text);
  // The screen kept at the last wait for a key.
  static const std::string& LastScreen();
  // A contractor with a name and a town.
  static Contractor Named(const ShortText& name, const ShortText& town = ShortText());
  // A contractor of that name added (number 0: the next free one); as stored.
  static Contractor AddNamed(ContractorKind kind, const ShortText& name, int32_t number = 0, bool special = false);
  // Rows of a catalogue as "number:name:town" in number order (Mazovia texts as LATIN2 by psql).
  static std::string Rows(ContractorKind kind);
  // User 0, the system's manager, logged in (again).
  static void LogInManager();
  // Headers "(typ_dok, nr_dok, znak_dok, nr_kontrahenta)" written into a warehouse's naglowki by psql.
  static void AddHeaders(int32_t warehouse, const std::string& values);
  static std::vector<KeyPair> Repeat(KeyPair key, int times) { return std::vector<KeyPair>(static_cast<std::size_t>(times), key); }
  static inline const KeyPair kYes = KeyOfByte('T'), kNo = KeyOfByte('N');
};
