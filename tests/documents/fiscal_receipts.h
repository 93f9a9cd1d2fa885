// What the simulated printers must print for a sale, worked out by the tests
// from their own inputs: the item names as each route cuts and cleans them,
// the VAT letters, the quantities and the grosz amounts of lines and totals.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "../server/harness.h"
#include "base/codepage.h"
#include "base/shorttext.h"
#include "elzab_sim_process.h"
#include "fiscal/elzab_line.h"
#include "fiscal/portio.h"
#include "fiscal/serial.h"
#include "sim_process.h"
#include "sqltable/sqltest.h"

namespace fiscal_receipts {

using Lines = std::vector<std::string>;

struct Item {
  const char* name;  // UTF-8
  const char* vat;
  const char* unit;
  long double price;
  long double quantity;
  char letter;       // the VAT letter the configuration maps the rate to
  int elzabCode;
};

inline int64_t Grosz(long double zl) { return std::llround(zl * 100); }
inline int64_t PosnetValue(const Item& i) { return std::llround(static_cast<long double>(Grosz(i.price)) * i.quantity); }
inline int64_t ElzabValue(const Item& i) {
  return std::llround(std::llround(i.quantity * 1000) / 1000.0L * Grosz(i.price));
}

// The POSNET journal's amount: whole zloty, or zloty and two places of grosz.
inline std::string Money(int64_t grosz) {
  std::string s = std::to_string(grosz / 100);
  if (grosz % 100 != 0) {
    char cents[4];
    std::snprintf(cents, sizeof cents, "%02lld", static_cast<long long>(grosz % 100));
    s += "." + std::string(cents);
  }
  return s;
}

// The shortest decimal text of a quantity of at most three places.
inline std::string QuantityText(long double q) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3Lf", q);
  std::string s = text;
  while (s.back() == '0') s.pop_back();
  if (s.back() == '.') s.pop_back();
  return s;
}

inline std::string Pad(std::string s, std::size_t width) {
  s.resize(width, ' ');
  return s;
}

inline std::string Maz(const char* utf8) { return Utf8ToMaz(ShortText(utf8)).Str(); }

// Mazovia bytes back to UTF-8 (the Polish letters; ASCII passes).
inline std::string MazToUtf8(const std::string& maz) {
  static const char* const kLetters[] = {"ą", "ć", "ę", "ł", "ń", "ó", "ś", "ź", "ż",
                                         "Ą", "Ć", "Ę", "Ł", "Ń", "Ó", "Ś", "Ź", "Ż"};
  std::string out;
  for (char c : maz) {
    const auto* hit = std::find_if(std::begin(kLetters), std::end(kLetters),
                                   [&](const char* l) { return Maz(l) == std::string(1, c); });
    out += hit == std::end(kLetters) ? std::string(1, c) : std::string(*hit);
  }
  return out;
}

// The receipt name (Mazovia): the item's name padded to the width, the rate
// text over its end, and what is no letter or digit blanked (the printer's name filter).
inline std::string ReceiptName(const Item& i, std::size_t width) {
  std::string name = Pad(Maz(i.name), width - std::string(i.vat).size()) + i.vat;
  int plain = 0;
  for (char& c : name) {
    if (c == '.') c = ' ';
    plain += std::isalnum(static_cast<unsigned char>(c)) ? 1 : 0;
  }
  // Fewer than ten plain letters and digits: blanks from the end become "x".
  for (std::size_t k = name.size(); k-- > 0 && plain < 10;)
    if (name[k] == ' ') name[k] = 'x', ++plain;
  return name;
}

// The ELZAB journal's name (UTF-8): the name and the VAT letter behind it, padded to 28.
inline std::string ElzabName(const std::string& utf8, int elzabCode) {
  const char letters[] = "ABCDZEF";
  const std::string name = utf8 + letters[elzabCode - 1];
  const auto chars = std::count_if(name.begin(), name.end(), [](char c) { return (c & 0xC0) != 0x80; });
  return name + std::string(28 - static_cast<std::size_t>(chars), ' ');
}

// A POSNET receipt of the items sold in cash, heads and feet left out. nameWidth
// is the job file's 24 on the server's road, 0 for the receipt's width.
inline Lines PosnetReceipt(std::span<const Item> items, std::size_t width, const std::string& cashier,
                           std::size_t nameWidth = 0) {
  Lines out = {"RECEIPT " + std::to_string(items.size())};
  int64_t total = 0;
  int n = 0;
  for (const Item& i : items) {
    out.push_back("LINE " + std::to_string(++n) + "|" + Pad(ReceiptName(i, nameWidth ? nameWidth : width), width) + "|" +
                  QuantityText(i.quantity) + "|" + std::string(1, i.letter) + "|" + Money(Grosz(i.price)) + "/" +
                  Money(PosnetValue(i)) + "/");
    total += PosnetValue(i);
  }
  out.push_back("CASHIER " + cashier);
  out.push_back("TOTAL " + Money(total) + "/ PAID " + Money(total) + "/");
  return out;
}

// An ELZAB receipt of the items sold in cash. fromJob: the names are those of the
// server's job (24 wide, cleaned) rather than the items' own.
inline Lines ElzabReceipt(std::span<const Item> items, const std::string& number, const std::string& cashier,
                          bool fromJob) {
  int64_t total = 0;
  for (const Item& i : items) total += ElzabValue(i);
  Lines out = {"RECEIPT " + std::to_string(total)};
  int n = 0;
  for (const Item& i : items) {
    const long long thousandths = std::llround(i.quantity * 1000);
    const int decimals = thousandths % 1000 == 0 ? 0 : thousandths % 100 == 0 ? 1 : thousandths % 10 == 0 ? 2 : 3;
    const long long wire = std::llround(i.quantity * std::pow(10.0L, decimals));
    const std::string name = fromJob ? MazToUtf8(ReceiptName(i, 24)) : std::string(i.name);
    out.push_back("LINE " + std::to_string(++n) + "|" + ElzabName(name, i.elzabCode) + "|" + std::to_string(wire) + "/" +
                  std::to_string(decimals) + "|" + Pad(i.unit, 4) + "|" + std::to_string(Grosz(i.price)) + "|" +
                  std::to_string(i.elzabCode) + "|" + std::to_string(ElzabValue(i)));
  }
  out.push_back("END ITEMS");
  if (!number.empty()) out.push_back("TEXT 6|" + number);
  out.push_back("TEXT 2| gotówką ");
  out.push_back("TEXT 5| " + cashier + ".");
  out.push_back("CLOSE " + std::to_string(total));
  return out;
}

// The journal without the head and foot texts, which differ by route.
inline Lines WithoutHeads(Lines journal) {
  journal.erase(std::remove_if(journal.begin(), journal.end(),
                               [](const std::string& l) { return l.rfind("HEAD", 0) == 0 || l.rfind("FOOT", 0) == 0; }),
                journal.end());
  return journal;
}

// The real fisksrv polling the one row of fisk.cfg in the current directory
// every 50 ms, logging to fisk.log there; stopped when it goes.
class PollingFisksrv {
 public:
  explicit PollingFisksrv(const std::string& row) {
    WriteFileText("fisk.cfg", row + "\n");
    std::remove("fisk.log");
    pid_ = ::fork();
    if (pid_ == 0) {
      (void)std::freopen("/dev/null", "w", stdout);
      ::execl(KLOTE_BINARY_DIR "/server/fisksrv", "fisksrv", "fisk.cfg", "50", "fisk.log", "x", nullptr);
      ::_exit(127);
    }
  }
  ~PollingFisksrv() {
    if (pid_ > 0) ::kill(pid_, SIGTERM), ::waitpid(pid_, nullptr, 0);
  }
  PollingFisksrv(const PollingFisksrv&) = delete;
  PollingFisksrv& operator=(const PollingFisksrv&) = delete;
  // Its log says it has read its configuration.
  static bool Configured() {
    return WaitUntil([] { return ReadFileText("fisk.log").find("SKONFIGUROWANO") != std::string::npos; }, 10000);
  }

 private:
  pid_t pid_ = -1;
};

// The simulated printers and the polling server of a test, reached the way the
// drivers find them: POSNET through <dir>/tty0 and the serial prefix, ELZAB
// through its line in the environment.
class FiscalPrintersTest : public CatalogueTest {
 protected:
  void TearDown() override {
    StopPrinters();
    ::unsetenv("KLOTE_SERIAL_PREFIX");
    ::unsetenv("KLOTE_ELZAB_LINE");
    CatalogueTest::TearDown();
  }
  void StartPosnet(const std::string& dir, std::vector<std::string> faults = {}) {
    PosnetCloseAtExit();  // the driver keeps a healthy port open from sale to sale
    posnet_ = std::make_unique<SimProcess>(std::move(faults));
    ASSERT_FALSE(posnet_->Slave().empty());
    ::unlink((dir + "/tty0").c_str());
    ASSERT_EQ(::symlink(posnet_->Slave().c_str(), (dir + "/tty0").c_str()), 0);
    ::setenv("KLOTE_SERIAL_PREFIX", (dir + "/tty").c_str(), 1);
  }
  void StartElzab(std::vector<std::string> faults = {}) {
    elzab_ = std::make_unique<ElzabSimProcess>(std::move(faults));
    ASSERT_FALSE(elzab_->Line().empty());
    ::setenv("KLOTE_ELZAB_LINE", elzab_->Line().c_str(), 1);
    SetElzabPortIo(nullptr);  // the next use connects to this simulator
    ElzabLine().ready = false;
  }
  // The server and both printers stopped, the drivers' lines let go.
  void StopPrinters() {
    server_.reset();
    PosnetCloseAtExit();
    SetElzabPortIo(nullptr);
    ElzabLine().ready = false;
    posnet_.reset();
    elzab_.reset();
  }

  std::unique_ptr<SimProcess> posnet_;
  std::unique_ptr<ElzabSimProcess> elzab_;
  std::optional<PollingFisksrv> server_;
};

}  // namespace fiscal_receipts
