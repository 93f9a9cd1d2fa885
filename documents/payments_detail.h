// Inside the payments module: SQL pieces and cell readers. Other folders do not include it.
#pragma once

#include <cstdint>
#include <string>

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
// A date column as a day serial, 0 when NULL.
std::string SerialOf(const char* column);
int32_t Int(const PGResult& r, int row, int col);
Real Money(const PGResult& r, int row, int col);
ShortText Text(const PGResult& r, int row, int col);
char Letter(const PGResult& r, int row, int col);

}  // namespace paydetail
