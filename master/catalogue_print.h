// Printed catalogues: the customers, suppliers and warehouses, and the
// dictionaries. Each print is formed into the user's print file and handed
// to the print flow (PrintDestination), which asks where it goes. The
// formatters are pure functions over rows, so that a print can be checked
// byte for byte; the reads and the dialogs stand apart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/shorttext.h"
#include "master/contractors.h"
#include "master/dictionaries.h"

// Lines of one printed page; a record is never split between two pages.
inline constexpr int kCatalogueLinesPerPage = 60;

// The sorts of "Posortować wydruk według:", numbered as its choices.
enum class CatalogueSort : uint8_t { kName = 1, kNumber, kTown, kPerson, kNip, kMailTown };

// What the operator chose for a print of a contractor catalogue.
struct CataloguePrintChoice {
  int32_t from = 1;
  int32_t to = kContractorMaxNumber;
  std::vector<ShortText> towns;  // empty: every town
  CatalogueSort sort = CatalogueSort::kName;
};

// "Katalog magazynów", "Katalog odbiorców" or "Katalog dostawców".
ShortText CatalogueHeading(ContractorKind kind);
// The lines of one contractor: the labelled columns, the VAT mark after the
// number (customers and suppliers), and a rule under them.
std::vector<ShortText> ContractorPrintLines(ContractorKind kind, const Contractor& c);
// The whole print: each page opens with the heading and a blank line,
// records follow whole, pages are parted by a form feed, lines end in CR LF.
std::string FormatContractorCatalogue(ContractorKind kind, const std::vector<Contractor>& rows, int linesPerPage);
// The rows of the choice in its sort (the number ends every sort).
[[nodiscard]] int16_t ReadCatalogueForPrint(ContractorKind kind, const CataloguePrintChoice& choice,
                                            std::vector<Contractor>& rows);
// The towns of the seats in the catalogue, in order, each once.
[[nodiscard]] int16_t CatalogueTowns(ContractorKind kind, std::vector<ShortText>& towns);
// F5 of the list: the range, the towns and the sort asked, then the print
// flow; false when given up or nothing was printed.
bool PrintContractorCatalogue(ContractorKind kind);

// The print of a dictionary: "Katalog " and its name, then one line per
// value, indeks, opis and czy_byl_obrot parted by " | "; pages as above.
std::string FormatDictionaryCatalogue(const ShortText& name, const std::vector<DictionaryEntry>& rows,
                                      int linesPerPage);
// F5 of a dictionary's list: "Trwa przygotowanie wydruku..." and the print flow.
bool PrintDictionaryCatalogue(const ShortText& name, const ShortText& path);
