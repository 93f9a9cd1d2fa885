// The texts of the layer's codes, and of the platform's codes that a table
// meets on the disk.
#include <string>

#include "base/mazovia.h"
#include "exchange/dbf/dbf_io.h"

namespace {

struct CodeText {
  int code;
  ShortText text;
};

constexpr CodeText kTexts[] = {
    {kDbfNotFound, "Nie znaleziono pliku"_mz},
    {kDbfNotOpenForInput, "Nie otwarto pliku do wprowadzania"_mz},
    {kDbfNotOpenForOutput, "Nie otwarto pliku do wyprowadzania"_mz},
    {kDbfNotOpen, "Nie otwarto pliku"_mz},
    {kDbfSeekPastEnd, "Próba szukania rekordu poza znakiem końca pliku"_mz},
    {kDbfUnexpectedEnd, "Niespodziwany koniec pliku"_mz},
    {kDbfWriteError, "Błąd zapisu na dysk"_mz},
    {kDbfDiskFull, "Brak miejsca na dysku"_mz},
    {kDbfTooManyFiles, "Zbyt wiele plików"_mz},
    {kDbfAccessLost, "Utracony dostęp do pliku"_mz},
    {kDbfNotDbase, "Plik nie jest w formacie dBASE 2, ani 3, ani 3+"_mz},
    {kDbfBadFieldType, "Niewłasciwy typ pola"_mz},
    {kDbfRecordRange, "Rekord przekroczył zakres wielkosci"_mz},
    {kDbfBufferError, "Błąd odczytu/zapisu z/do bufora danych rekordu"_mz},
};

constexpr ShortText kReadPastEnd = "Proba odczytu rekordu poza znakiem końca pliku"_mz;

// Whether the last code 130 came from a read.
bool g_rangeFromRead = false;

}  // namespace

int DbfRangeError(bool fromRead) {
  g_rangeFromRead = fromRead;
  return DbfStatus = kDbfRecordRange;
}

ShortText DbfErrorText(int code) {
  ShortText text = "Błąd pliku DBASE.@"_mz;
  if (code == kDbfRecordRange && g_rangeFromRead) return text + kReadPastEnd;
  for (const CodeText& entry : kTexts)
    if (entry.code == code) return text + entry.text;
  return text + "(Błąd nieskatalogowany) "_mz + std::to_string(code);
}

ShortText DbfStopText(int code, bool fromOutside, bool dataUnsafe) {
  ShortText text = DbfErrorText(code);
  if (fromOutside) {
    text += "@Jeśli plik pobrany został z zewnątrz, nie ponawiaj próby pobrania,"_mz;
    text += "@ale zawiadom dostarczyciela pliku."_mz;
  }
  text += dataUnsafe ? "@Program musi zakończyć działanie."_mz : "@Program kończy działanie."_mz;
  return text;
}
