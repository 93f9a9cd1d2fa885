// Lines of the printed analyses: cells, dates and the cut into pages. Private to reports/.
#pragma once

#include <string>
#include <vector>

#include "base/mazovia.h"
#include "base/shorttext.h"

// The totals at the end of the analyses.
inline constexpr ShortText kSumQuantityText = "SUMA ILOŚCI                               :"_mz;
inline constexpr ShortText kSumPurchaseGrossText = "SUMA WG CEN ZAKUPU BRUTTO                 :"_mz;
inline constexpr ShortText kSumStockLessDepositsText = "SUMA STANÓW-DEPOZYTY WG CEN ZAKUPU BRUTTO :"_mz;
inline constexpr ShortText kSumStockWithDepositsText = "SUMA STANÓW+DEPOZYTY WG CEN ZAKUPU BRUTTO :"_mz;
inline constexpr ShortText kSumPurchaseNetText = "SUMA WG CEN ZAKUPU NETTO :"_mz;
inline constexpr ShortText kSumSaleGrossText = "SUMA WG CEN SPRZEDAŻY BRUTTO :"_mz;
inline constexpr ShortText kIssuesPositiveText = "Uwaga ! rozchody wyjątkowo przyjęto ze znakiem \"+\"."_mz;

std::string Str(const ShortText& text);
// The text cut or padded with blanks to width.
std::string Cell(const ShortText& text, int width);
// A day serial as DD-MM-RRRR.
std::string DisplayDate(int32_t serial);
// The body in pages of linesPerPage, each opened by the head and closed by a
// form feed before the next; lines end in CR LF.
std::string Paginate(const std::vector<std::string>& head, const std::vector<std::string>& body, int linesPerPage);
