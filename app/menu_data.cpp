// The two bars: their headings, entries and explanations.
#include "app/menu.h"

namespace {

constexpr ShortText kGoodsWarehouseExplanation =
    "Ustawienie magazynu (jednostki firmy) dla której wprowadzane będą dok.towarowe."_mz;

constexpr MenuEntry kDocuments[] = {
    {"Wprowadzanie nowych"_mz, "Dodawanie nowych dokumentów rozchodu i przychodu towarów, np. faktur, zakupów."_mz,
     MenuOp::kNewDocuments},
    {"Wprowadzanie nowych i zmiany istniejących"_mz,
     "Dodawanie i zmiany dokumentów rozchodu i przychodu towarów, np. faktur, zakupów."_mz, MenuOp::kDocuments},
    {"Wybór aktualnego magazynu"_mz, kGoodsWarehouseExplanation, MenuOp::kChooseWarehouse},
};

constexpr MenuEntry kGoods[] = {
    {"Katalog towarów"_mz, "Specjalne operacje na katalogu towarów, dopisywanie kartotek, zmiany."_mz,
     MenuOp::kGoodsCatalogue},
    {"Operacje na plikach roboczych"_mz, "Przesyłanie, eksporty, importy sporządzonej listy roboczej towarów."_mz,
     MenuOp::kWorkFiles},
    {"Wybór aktualnego magazynu"_mz, kGoodsWarehouseExplanation, MenuOp::kChooseWarehouse},
    {"Sprawdzanie obecności towarów"_mz, "Sprawdzenie, czy ceny towarów są ustawione prawidłowo."_mz,
     MenuOp::kGoodsCheck},
};

constexpr MenuEntry kCash[] = {
    {"Wprowadzanie i zmiany dokumentów płatności i kasowych"_mz,
     "Wprowadzanie płatności typu KP, KW, przelewy, odsetki i inne."_mz, MenuOp::kCashDocuments},
    {"Wybór aktualnego magazynu"_mz,
     "Ustawienie magazynu (jednostki firmy) dla której wprowadzane będą dok.kasowe."_mz, MenuOp::kChooseWarehouse},
};

constexpr MenuEntry kAnalyses[] = {
    {"Analizy towarowe i ich podsumowania"_mz, "Obroty i stany towarów w wybranym okresie, z podsumowaniami."_mz,
     MenuOp::kGoodsAnalyses},
    {"Analizy dokumentów towarowych i ich podsumowania"_mz,
     "Zestawienia dokumentów towarowych według rodzajów, kontrahentów i okresów."_mz, MenuOp::kDocumentAnalyses},
    {"Analizy dokumentów kasowych i ich podsumowania"_mz,
     "Zestawienia dokumentów płatności i kasowych, rozrachunki z kontrahentami."_mz, MenuOp::kCashAnalyses},
    {"Analizy księgowe i ich podsumowania"_mz, "Rejestry VAT sprzedaży i zakupów oraz zestawienia dla księgowości."_mz,
     MenuOp::kAccountingAnalyses},
    {"Analizy towarowe - rozszerzone i ich podsumowania"_mz,
     "Analizy towarowe z dodatkowymi warunkami wyboru i grupowania."_mz, MenuOp::kExtendedGoodsAnalyses},
    {"Zestawienia stanów i towary bez obrotu"_mz,
     "Stany magazynowe na dzień oraz towary, które nie miały obrotu w okresie."_mz, MenuOp::kStockLists},
    {"Zestawienia specjalne"_mz, "Zestawienia nietypowe, przygotowane dla potrzeb firmy."_mz, MenuOp::kSpecialLists},
    {"Raporty sprzedaży z drukarki fiskalnej"_mz,
     "Raport dobowy i okresowy sprzedaży drukowany na drukarce fiskalnej."_mz, MenuOp::kFiscalReports},
};

constexpr MenuEntry kOther[] = {
    {"Katalog użytkowników"_mz, "Dopisywanie użytkowników programu, ich haseł i uprawnień."_mz, MenuOp::kUsers},
    {"Katalogi odbiorców, dostawców i magazynów"_mz,
     "Dopisywanie i zmiany danych odbiorców, dostawców i magazynów."_mz, MenuOp::kContractors},
    {"Inne katalogi"_mz, "Stawki VAT, rabaty, formy płatności i inne katalogi pomocnicze."_mz,
     MenuOp::kOtherCatalogues},
    {"Przygotowanie danych dla systemu `FK\""_mz, "Eksport dokumentów do programu finansowo-księgowego."_mz,
     MenuOp::kAccountingExport},
    {"Konfiguracja programu"_mz, "Ustawienia programu zapisane w pliku konfiguracji."_mz, MenuOp::kProgramConfig},
    {"Konfigurowanie drukarki głównej"_mz, "Wybór modelu i sposobu drukowania na drukarce głównej."_mz,
     MenuOp::kMainPrinter},
    {"Konfigurowanie drukarki fiskalnej"_mz, "Ustawienia drukarki fiskalnej: typ, port, stawki VAT."_mz,
     MenuOp::kFiscalPrinter},
    {"Konfigurowanie drukarki paragonowej/etykiet"_mz,
     "Ustawienia drukarki paragonów niefiskalnych i drukarki etykiet."_mz, MenuOp::kReceiptPrinter},
    {"Kasowanie zbędnych dokumentów"_mz, "Usuwanie starych dokumentów, które nie są już potrzebne."_mz,
     MenuOp::kDeleteDocuments},
    {"Automatyczne rozliczanie depozytów dla odbiorców"_mz,
     "Rozliczanie depozytów (np. opakowań zwrotnych) wydanych odbiorcom."_mz, MenuOp::kDepositSettlement},
};

constexpr MenuEntry kBook[] = {
    {"Księga"_mz, "Wprowadzanie i zmiany zapisów w księdze przychodów i rozchodów."_mz, MenuOp::kBook},
    {"Rozliczenia kilometrówki"_mz, "Ewidencja przebiegu pojazdu i rozliczenie kosztów kilometrówki."_mz,
     MenuOp::kMileage},
    {"Lista dokumentów księgowanych"_mz, "Przeglądanie dokumentów, które zostały zaksięgowane."_mz,
     MenuOp::kBookedDocuments},
    {"Wybór magazynu/firmy, dla której wprowadzamy księgę"_mz,
     "Ustawienie magazynu (firmy), dla której wprowadzane będą zapisy w księdze."_mz, MenuOp::kChooseBookFirm},
};

constexpr MenuHeading kWarehouseHeadings[] = {
    {2, "Dokumenty"_mz, kDocuments}, {3, "Towary"_mz, kGoods}, {4, "Kasa"_mz, kCash},
    {5, "Analizy"_mz, kAnalyses},    {6, "Inne"_mz, kOther},
};

constexpr MenuHeading kBookHeadings[] = {
    {2, "Księga"_mz, kBook},
    {3, "Inne"_mz, kOther},
};

// The book bar has Esc where the warehouse bar has it.
constexpr MenuBarDef kWarehouseBar = {
    "   ╫ç Dokumenty   ╫ê Towary   ╫ë Kasa   ╫è Analizy   ╫ï Inne       ╤╥û Wyjście"_mz, kWarehouseHeadings};
constexpr MenuBarDef kBookBar = {
    "   ╫ç Księga   ╫ê Inne                                             ╤╥û Wyjście"_mz, kBookHeadings};

}  // namespace

const MenuBarDef& MenuBarOf(MenuKind kind) { return kind == MenuKind::kBook ? kBookBar : kWarehouseBar; }
