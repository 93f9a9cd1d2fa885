// The small firm with scripted keys: dialogs of the analyses answered from a script.
#pragma once

#include "docfixture.h"
#include "print/keyscript.h"

class DialogTest : public DocumentsTest {
 protected:
  void SetUp() override {
    DocumentsTest::SetUp();
    SaveSmallFirm();
    keyscript::Begin();
  }
  void TearDown() override {
    keyscript::End();
    DocumentsTest::TearDown();
  }
  // The period typed over the proposed dates.
  static void Period(const char* from, const char* to) {
    using namespace keyscript;
    Press(keys::kBackspace, 10);
    Type(from);
    Press(keys::kEnter);
    Press(keys::kBackspace, 10);
    Type(to);
    Press(keys::kEnter);
  }
  // The destination "file to print" under the name given, Mazovia.
  static void ToFile(const std::string& name) {
    using namespace keyscript;
    Type("3");
    Press(keys::kBackspace, 12);
    Type(name);
    Press(keys::kEnter);
    Type("1");
  }
};
