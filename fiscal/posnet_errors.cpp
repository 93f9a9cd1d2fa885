// The error texts of the POSNET driver and printer, in the system's own bytes.
#include "base/mazovia.h"
#include "fiscal/posnet_wire.h"

namespace {

ShortText DriverErrorText(int code) {
  switch (code) {
    case -8: return "inny błąd drukarki (np. niewykonanie zmiany trybu pracy)"_mz;
    case -5: return "łącze COM nie jest zainicjowane"_mz;
    case -4: return "czas zegara drukarki jest niepoprawny - drukowanie raportu dobowego@nie jest możliwe"_mz;
    case -3: return "odpowiedź drukarki nieprawidłowa"_mz;
    case -2: return "brak odpowiedzi drukarki"_mz;
    case -1: return "przekroczenie czasu wysyłania (dlugi XOFF)"_mz;
    default: return {};
  }
}

ShortText PrinterErrorTextLow(int code) {
  switch (code) {
    case 1: return "nie zainicjalizowany zegar RTC (blokada wszystkich sekwencji oprócz@ustawiania zegara i odsyłania statusu"_mz;
    case 2: return "błąd bajtu kontrolnego"_mz;
    case 3: return "zła ilość parametrów"_mz;
    case 4: return "błąd podanego parametru - program przesłał zły parametr sterujący@do drukarki"_mz;
    case 5: return "błąd operacji z zegarem czasu rzeczywistego drukarki (RTC)"_mz;
    case 6: return "błąd operacji z modułem fiskalnym, błąd odczytu totalizerów@(błąd fatalny)"_mz;
    case 7: return "błąd daty - aktualnie ustawiona data jest wcześniejsza od daty@ostatniego zapisu w pamięci fiskalnej"_mz;
    case 8: return "błąd operacji niezerowe totalizery (np. dla zmiany stawek PTU lub@denominacji !)"_mz;
    case 9: return "błąd operacji I/O (np. z mechanizmem drukującym)"_mz;
    case 10: return "zmiana czasu wykracza poza dopuszczalny zakres, (± 30 minut@w obrębie tej samej doby)"_mz;
    case 11: return "zła ilość wartości PTU (maksymalnie może być 6 i dodatkowo@grupa zwolniona) lub błąd liczby"_mz;
    case 12: return "błędny nagłówek (np. za długi lub zawierający nie dozwolone znaki)"_mz;
    case 13: return "próba fiskalizacji sfiskalizowanego urządzenia"_mz;
    case 14: return "próba przesłania do RAM nagłówka dla urządzenia sfiskalizowanego"_mz;
    case 15: return "błąd w dodatkowych liniach nagłówka (np. za długie opisy)"_mz;
    case 16: return "błędna nazwa (pusta lub za długa)"_mz;
    case 17: return "błędne oznaczenie ilości (puste lub za długie)"_mz;
    case 18: return "błędne oznaczenie stawki PTU (lub brak)"_mz;
    case 19: return "błąd wartości CENA (syntaktyka, zakres lub brak)"_mz;
    case 20: return "błąd wartości BRUTTO (syntaktyka, zakres lub brak)"_mz;
    default: return {};
  }
}

ShortText PrinterErrorTextHigh(int code) {
  switch (code) {
    case 21: return "sekwencja odebrana przez drukarkę przy wyłączonym trybie transakcji"_mz;
    case 22: return "błąd operacji STORNO (np. próba wykonania w trybie blokowym, @On-Line, lub w wyniku jej wykonania suma w danej grupie podatkowej wychodzi @ujemna)"_mz;
    case 23: return "błędna liczba rekordów (linii) paragonu"_mz;
    case 24: return "przepełnienie bufora drukarki"_mz;
    case 25: return "błędny kod terminala/kasjera (zła długość lub format), lub błędna@treść dodatkowych linii"_mz;
    case 26: return "błąd kwoty wpłaty (syntaktyka; jeżeli różnica WPŁATA-TOTAL < 0, to @napisy: GOTÓWKA i RESZTA nie będą drukowane !)"_mz;
    case 27: return "błędna suma całkowita TOTAL"_mz;
    case 28: return "przepełnienie totalizera"_mz;
    case 29: return "żądanie zakończenia (pozytywnego !) trybu transakcji, w momencie@kiedy nie został on jeszcze włączony"_mz;
    case 30: return "błąd kwoty WPŁATA (syntaktyka)"_mz;
    case 31: return "nadmiar dodawania (przekroczenie zakresu gotówki w kasie)"_mz;
    case 32: return "wartość po odjęciu staje się ujemna (przyjmuje się wówczas stan@zerowy kasy !)"_mz;
    case 33: return "błąd napisu »zmiana« (np. za długi lub zawierający błędne znaki)"_mz;
    case 34: return "błąd napisu »kasjer«"_mz;
    case 35: return "zerowy stan totalizerów"_mz;
    case 36: return "już istnieje zapis z tą datą (o dacie)"_mz;
    case 37: return "operacja przerwana z klawiatury"_mz;
    case 38: return "błąd nazwy"_mz;
    case 39: return "błąd oznaczenia PTU"_mz;
    default: return {};
  }
}

}  // namespace

ShortText PosnetErrorTableText(int code) {
  ShortText text = code < 0 ? DriverErrorText(code)
                            : (code <= 20 ? PrinterErrorTextLow(code) : PrinterErrorTextHigh(code));
  if (text.Empty()) text = "błąd rozkazu wysłanego do drukarki"_mz;
  return text;
}

ShortText PosnetErrorMessage(int code) {
  ShortText message = "Błąd drukarki fiskalnej nr "_mz;
  message += PosnetNumber(code);
  message += ":@`";
  message += PosnetErrorTableText(code);
  message += "\".";
  if (code == -2) message += "@Należy wyjść z programu, wyłączyć i włączyć drukarkę i wejść@ponownie do programu."_mz;
  return message;
}
