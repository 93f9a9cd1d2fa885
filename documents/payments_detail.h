// Inside the payments module: SQL pieces and cell readers. Other folders do not include it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/real.h"
#include "base/shorttext.h"
#include "documents/docdetail.h"
#include "documents/payments.h"

class PGResult;

namespace paydetail {

// typ_dok, nr_dok, znak_dok equal to the key (columns behind prefix, e.g. "n.").
std::string KeyCondition(const DocRef& d, const char* prefix);
// typ_dok_zrodl, nr_dok_zrodl, znak_dok_zrodl equal to the key.
std::string SourceCondition(const DocRef& d);
// The source reference is one of the keys (none matches an empty list).
std::string SourceInList(const std::vector<DocRef>& docs);
// A date column as a day serial, 0 when NULL.
std::string SerialOf(const char* column);
int32_t Int(const PGResult& r, int row, int col);
Real Money(const PGResult& r, int row, int col);
ShortText Text(const PGResult& r, int row, int col);
char Letter(const PGResult& r, int row, int col);
// The system date as a day serial.
int32_t TodaySerial();

// --- Screens' helpers ---
// A message box waiting for Enter or Esc.
void Say(const ShortText& text);
// An amount as the screens show it, to the grosz.
ShortText MoneyText(Real v);
// A day serial as "DD-MM-RRRR"; blank layout for no date.
ShortText DateText(int32_t serial);
// Asks the year and the number of the goods document a payment of the
// contractor letter is for; an empty number offers the year's list. False on
// Esc or when nothing was found (after saying so).
bool ChooseSource(int32_t warehouse, char paymentLetter, DocRef& out);
// The payment's form under title: kind, document, contractor and balance
// shown; date, amount and comment edited into row. False on Esc.
bool EditPaymentForm(const ShortText& title, const ShortText& kindName, const SourceInfo& info, const Balance& b,
                     PaymentRow& row);

}  // namespace paydetail
