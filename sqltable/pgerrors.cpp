// The table of result codes and their texts, searched in its order.
#include <cstdio>
#include <cstdlib>

#include "base/mazovia.h"
#include "sqltable/pgconn.h"

namespace {

struct ErrRow {
  int16_t code;
  ShortText80 text;
};

// Many rows speak of files, passwords and networks that the SQL layer never
// produces; the application compares with those codes all the same.
constexpr ErrRow kErrRows[] = {
    {0, "Operacja poprawna."_mz},
    {1, "Napęd nie jest gotowy."_mz},
    {2, "Nie znaleziono katalogu."_mz},
    {3, "Plik jest zajęty."_mz},
    {4, "Plik jest zablokowany przez innego użytkownika."_mz},
    {5, "Nie można znaleźć pliku."_mz},
    {6, "Tablica jest uszkodzona."_mz},
    {7, "Uszkodzony indeks podstawowy (`primary index\")."_mz},
    {8, "Przekroczenie zakresu indeksu podstawowego (`primary index\")."_mz},
    {9, "Rekord jest zablokowany przez innego uzytkownika."_mz},
    {10, "Brak możliwości dostępu dzielonego (być może do katalogu)."_mz},
    {11, "Brak możliwości dostępu dzielonego (być może do katalogu)."_mz},
    {12, "Brak dostępu do katalogu."_mz},
    {13, "Zadeklarowany sposób sortowania nie jest zgodny z przyjętym w tablicy."_mz},
    {14, "Katalog nie jest katalogiem `prywatnym\" użytkownika."_mz},
    {15, "Wykryto kilka plików PDOXUSRS.NET, (PARADOX.NET). Usuń wszystkie."_mz},
    {115, "Użyto juz zbyt wielu haseł dostępu do tablic."_mz},
    {21, "Brak dostępu do (dalszych) danych na to hasło."_mz},
    {22, "Tablica ma założoną przez innego użytkownika blokadę zapisu."_mz},
    {116, "Nieprawidłowe hasło."_mz},
    {30, "Nieprawidłowy typ danej."_mz},
    {31, "Przekroczenie zakresu argumentu."_mz},
    {117, "Bufor jest za mały, aby wykonać tę operację."_mz},
    {33, "Nieprawidłowy argument."_mz},
    {118, "Błąd zapytania SQL."_mz},
    {119, "Tablica jest zablokowana przez innego użytkownika."_mz},
    {40, "Operacji nie można zakończyć - brak pamięci."_mz},
    {41, "Operacji nie można zakończyć - brak wolnej przestrzeni na dysku."_mz},
    {120, "Nie znaleziono tablicy."_mz},
    {121, "Nie znaleziono indeksu dodatkowego (`secondary, incsecondary index\")."_mz},
    {50, "Rekord został skasowany przez innego użytkownika."_mz},
    {122, "Indeks dodatkowy (`secondary, incsecondary index\") jest uszkodzony."_mz},
    {124, "Dysk jest zabezpieczony przed zapisem."_mz},
    {125, "Rozmiar rekordu (w byte`ach) jest za duży."_mz},
    {126, "Awaria pracy klienta DBMS."_mz},
    {127, "Operacji nie można zakończyć - stos jest za mały."_mz},
    {70, "Nie jest dostępna większa ilość `uchwytów\" plików."_mz},
    {128, "Tablica jest całkowicie zapełniona."_mz},
    {72, "Nie jest dostępna większa ilość `uchwytów\" tablic."_mz},
    {73, "Podano nieprawidłowy rodzaj (typ) danej."_mz},
    {74, "Nieprawidłowa nazwa pola."_mz},
    {75, "Nieprawidłowy `uchwyt\" pola."_mz},
    {76, "Nieprawidłowy `uchwyt\" tablicy."_mz},
    {129, "Operacji nie można zakończyć - za mały bufor tablic (`swap buffer\")."_mz},
    {78, "Połączenie z DBMS nie jest zainicjowane."_mz},
    {79, "Operacji nie można zakończyć - błąd krytyczny (`fatal error\")."_mz},
    {130, "Tablica jest repliką SQL."_mz},
    {81, "Struktury tablic są odmienne."_mz},
    {82, "Połączenie z DBMS jest aktywne."_mz},
    {83, "Takiej operacji nie można przeprowadzać na otwartej tablicy."_mz},
    {86, "Brak dostępnych nazw dla plików pomocniczych (`temporary files\")."_mz},
    {89, "Nie znaleziono rekordu."_mz},
    {136, "Do operacji konieczny jest indeks podstawowy `primary index\"."_mz},
    {93, "Operacja (cecha) nie jest dozwolona dla tablic tego typu."_mz},
    {94, "Tablica jest indeksowana."_mz},
    {95, "Tablica nie jest indeksowana."_mz},
    {96, "Przekroczenie zakresu indeksu dodatkowego (`secondary, incsecondary index\")."_mz},
    {97, "Uszkodzenie klucza (indeksów, lub pól indeksowanych)."_mz},
    {98, "Nie jest możliwe włączenie się do sieci (`zalogowanie\")."_mz},
    {99, "Nieprawidłowa nazwa tablicy."_mz},
    {16, "Katalog `jest używany\" przez DBMS w niższej wersji."_mz},
    {101, "Koniec tablicy."_mz},
    {102, "Początek tablicy."_mz},
    {103, "Nie jest dostępna większa ilość `uchwytów\" rekordów."_mz},
    {104, "Nieprawidłowy `uchwyt\" rekordu."_mz},
    {105, "Przeprowadzana jest operacja na `pustej\" tablicy."_mz},
    {106, "Nieprawidłowy kod blokady dostepu."_mz},
    {107, "Dostęp do DBMS nie został zainicjowany wielodostępnie."_mz},
    {108, "Nieprawidłowa nazwa pliku."_mz},
    {109, "Nieprawidłowy sposób zniesienia blokady dostępu."_mz},
    {110, "Nieprawidłowy `uchwyt\" dla blokady dostępu."_mz},
    {111, "`Na tablicę\" założono zbyt wiele blokad dostępu."_mz},
    {112, "Tablica jest posortowana w nieprawidłowy sposób."_mz},
    {113, "Nieprawidłowy typ systemu operacyjnego sieci."_mz},
    {114, "Nieprawidłówa nazwa katalogu."_mz},
    {51, "Operacji nie można przeprowadzić w `BLOB open mode\"."_mz},
    {52, "`BLOB\" już jest otwarty."_mz},
    {53, "Nieprawidłowy offset w `BLOB`ie."_mz},
    {54, "Nieprawidłowy rozmiar `BLOB`u\"."_mz},
    {55, "`BLOB\" został zmodyfikowany przez innego użytkownika."_mz},
    {56, "Zniczony plik `BLOB\"."_mz},
    {57, "Pola `BLOB\" nie mogą być indeksowane."_mz},
    {59, "Nieprawidłowy uchwyt `BLOB`u\"."_mz},
    {60, "Nie można używać funkcji przeszukiwania dla pól `BLOB\"."_mz},
    {92, "Tablica nie może mieć zmienionej struktury (nie jest upgrade`owalna)."_mz},
    {137, "Minął czas możliwości założenia blokady dostępu."_mz},
    {1000, "Nie znaleziono pliku parametrów połączenia z serwerem bazy."_mz},
    {1001, "Nie można nawiązać połączenia z serwerem bazy."_mz},
    {1002, "Błąd wykonania zapytania SQL."_mz},
    {1003, "Nie utworzono tablicy informacyjnej `tables_list\"."_mz},
    {1004, "Nie utworzono indeksu kolejności pól tablicy informacyjnej `tables_list\"."_mz},
    {1005, "Próba blokady poza transakcją."_mz},
};

constexpr int kErrRowCount = sizeof(kErrRows) / sizeof(kErrRows[0]);
static_assert(kErrRowCount == 92, "the code table has 92 rows");

}  // namespace

ShortText PGErrText(int16_t code) {
  for (const ErrRow& row : kErrRows)
    if (row.code == code) return ShortText(row.text);
  if (code >= 200 && code <= 250) {
    ShortText text(std::to_string(code));
    text += "Awaria pracy klienta DBMS."_mz;
    return text;
  }
  return "Nie zdefiniowany kod awarii pracy klienta DBMS. "_mz;
}

int PGErrTableSize() { return kErrRowCount; }

int16_t PGErrTableCode(int i) { return (i >= 0 && i < kErrRowCount) ? kErrRows[i].code : -1; }

void PGFatalClientError(int16_t code) {
  ShortText line("Błąd klienta DBMS nr: "_mz);
  line += std::to_string(code);
  line += ' ';
  line += PGErrText(code);
  std::fwrite(line.Data(), 1, static_cast<std::size_t>(line.Length()), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
  std::exit(0);
}
