#include <gtest/gtest.h>

#include "base/mazovia.h"

namespace {

ShortText Bytes(std::initializer_list<unsigned char> b) {
  ShortText t;
  for (auto c : b) t.Append(static_cast<char>(c));
  return t;
}

// Every glyph that the system's texts use, with the byte it must become.
TEST(MazoviaLiteral, GlyphsOfSystemTexts) {
  struct Row { ShortText got; ShortText want; };
  const Row rows[] = {
      {"ąćęłńóśźż"_mz, Bytes({0x86, 0x8D, 0x91, 0x92, 0xA4, 0xA2, 0x9E, 0xA6, 0xA7})},
      {"å"_mz, Bytes({0x86})},  // 0x86 in code page 437, which Mazovia gives to ą: both spellings meet there
      {"ĄĆĘŁŃÓŚŹŻ"_mz, Bytes({0x8F, 0x95, 0x90, 0x9C, 0xA5, 0xA3, 0x98, 0xA0, 0xA1})},
      {"╤╥û"_mz, Bytes({0xD1, 0xD2, 0x96})}, {"╫ç"_mz, Bytes({0xD7, 0x87})},
      {"╧à"_mz, Bytes({0xCF, 0x85})}, {"ƒ⌐"_mz, Bytes({0x9F, 0xA9})}, {"─│"_mz, Bytes({0xC4, 0xB3})},
      {"¥«»±¿"_mz, Bytes({0x9D, 0xAE, 0xAF, 0xF1, 0xA8})},
      {"èêëïöüà÷∙"_mz, Bytes({0x8A, 0x88, 0x89, 0x8B, 0x94, 0x81, 0x85, 0xF6, 0xF9})},
      {"╒╓╨╪"_mz, Bytes({0xD5, 0xD6, 0xD0, 0xD8})}, {"↑↓"_mz, Bytes({0x18, 0x19})}, {""_mz, Bytes({})},
  };
  for (const auto& r : rows) EXPECT_EQ(r.got, r.want);
}

// Each glyph of code page 437 from 0x80 up becomes its own byte.
consteval bool EveryHighGlyphTakesItsByte() {
  for (int i = 0; i < 128; ++i)
    if (mazovia_detail::ByteForCodePoint(mazovia_detail::kCp437High[i]) != 0x80 + i) return false;
  for (int i = 1; i < 32; ++i)
    if (mazovia_detail::ByteForCodePoint(mazovia_detail::kCp437Low[i]) != i) return false;
  return true;
}
static_assert(EveryHighGlyphTakesItsByte());
// The literal is made at compile time and keeps ASCII as it is.
static_assert("KONIEC PRACY SERVERA"_mz == ShortText("KONIEC PRACY SERVERA"));

TEST(ShortTextCore, CutsAtCapacityAndCountsFromOne) {
  ShortText10 t("0123456789abc");
  EXPECT_EQ(t.Length(), 10);
  EXPECT_EQ(t.At(1), '0');
  EXPECT_EQ(t.At(11), 0);
  ShortText big(std::string(300, 'x'));
  EXPECT_EQ(big.Length(), 255);
  big += "y";
  EXPECT_EQ(big.Length(), 255);
  ShortText s("abcdef");
  EXPECT_EQ(s.Copy(2, 3), ShortText("bcd"));
  EXPECT_EQ(s.Copy(0, 2), ShortText("a"));
  EXPECT_EQ(s.Copy(6, 10), ShortText("f"));
  EXPECT_EQ(s.Copy(7, 1), ShortText(""));
  EXPECT_EQ(s.Pos("cd"), 3);
  EXPECT_EQ(s.Pos("zz"), 0);
  s.Delete(2, 2);
  EXPECT_EQ(s, ShortText("adef"));
  s.Delete(3, 99);
  EXPECT_EQ(s, ShortText("ad"));
  s.Insert("XY", 2);
  EXPECT_EQ(s, ShortText("aXYd"));
  EXPECT_LT(ShortText("a"), ShortText("\x86"));
  EXPECT_LT(ShortText("ab"), ShortText("abc"));
}

}  // namespace
