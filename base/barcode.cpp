#include "base/barcode.h"

#include "base/text.h"

namespace {

bool DigitsAt(const ShortText& text, int first, int last) {
  for (int i = first; i <= last; ++i)
    if (text.At(i) < '0' || text.At(i) > '9') return false;
  return true;
}

// ISBN check character of nine digits: weights 1 to 9, modulo 11, 10 as 'X'.
char IsbnCheck(const ShortText& text, int first) {
  int sum = 0;
  for (int i = 0; i < 9; ++i) sum += (i + 1) * (text[first + i] - '0');
  int check = sum % 11;
  return check == 10 ? 'X' : static_cast<char>('0' + check);
}

bool IsbnValid(const ShortText& code) {
  if (!DigitsAt(code, 1, 9)) return false;
  char last = code[10] == 'x' ? 'X' : code[10];
  return IsbnCheck(code, 1) == last;
}

}  // namespace

ShortText Ean13CheckDigit(const ShortText& code) {
  if (code.Length() < 12 || !DigitsAt(code, 1, 12)) return ShortText();
  int sum = 0;
  for (int i = 1; i <= 12; ++i) sum += (i % 2 == 1 ? 1 : 3) * (code[i] - '0');
  int rest = sum % 10;
  return ShortText(std::string_view(rest == 0 ? "0" : &"0987654321"[rest], 1));
}

bool Ean13Valid(const ShortText& code) {
  ShortText digits = KeepDigits(code);
  if (digits.Length() != 13) return false;
  ShortText check = Ean13CheckDigit(digits.Copy(1, 12));
  return check.Length() == 1 && check[1] == digits[13];
}

bool IsbnOrEanValid(const ShortText& code) {
  ShortText kept = KeepAlnum(code);
  if (kept.Length() == 13) return Ean13Valid(kept);
  if (kept.Length() == 10) return IsbnValid(kept);
  return false;
}

ShortText EanToIsbn(const ShortText& ean) {
  if (ean.Length() < 12 || ean[1] != '9' || ean[2] < '7' || ean[2] > '9') return ShortText();
  if (!DigitsAt(ean, 4, 12)) return ShortText();
  ShortText r = ean.Copy(4, 2);
  r += '-';
  r += ean.Copy(6, 5);
  r += '-';
  r += ean.Copy(11, 2);
  r += '-';
  r += IsbnCheck(ean, 4);
  return r;
}
