#include <gtest/gtest.h>

#include "base/codepage.h"
#include "base/expect_rows.h"
#include "base/mazovia.h"

namespace {

using test_rows::ExpectRows;

struct LetterRow {
  const char* utf8;
  unsigned char maz, latin2, win1250, iso;
};

// The published bytes of the 18 Polish letters.
constexpr LetterRow kLetters[] = {
    {"ą", 0x86, 0xA5, 0xB9, 0xB1}, {"ć", 0x8D, 0x86, 0xE6, 0xE6}, {"ę", 0x91, 0xA9, 0xEA, 0xEA},
    {"ł", 0x92, 0x88, 0xB3, 0xB3}, {"ń", 0xA4, 0xE4, 0xF1, 0xF1}, {"ó", 0xA2, 0xA2, 0xF3, 0xF3},
    {"ś", 0x9E, 0x98, 0x9C, 0xB6}, {"ź", 0xA6, 0xAB, 0x9F, 0xBC}, {"ż", 0xA7, 0xBE, 0xBF, 0xBF},
    {"Ą", 0x8F, 0xA4, 0xA5, 0xA1}, {"Ć", 0x95, 0x8F, 0xC6, 0xC6}, {"Ę", 0x90, 0xA8, 0xCA, 0xCA},
    {"Ł", 0x9C, 0x9D, 0xA3, 0xA3}, {"Ń", 0xA5, 0xE3, 0xD1, 0xD1}, {"Ó", 0xA3, 0xE0, 0xD3, 0xD3},
    {"Ś", 0x98, 0x97, 0x8C, 0xA6}, {"Ź", 0xA0, 0x8D, 0x8F, 0xAC}, {"Ż", 0xA1, 0xBD, 0xAF, 0xAF},
};

TEST(CodePage, EveryLetterThroughEveryConversionAndBack) {
  for (const auto& l : kLetters) {
    SCOPED_TRACE(l.utf8);
    EXPECT_EQ(MazToLatin2(l.maz), l.latin2);
    EXPECT_EQ(MazToLatin2Text(l.maz), l.latin2);
    EXPECT_EQ(Latin2ToMaz(l.latin2), l.maz);
    EXPECT_EQ(MazToCp1250(l.maz), l.win1250);
    EXPECT_EQ(Cp1250ToMaz(l.win1250), l.maz);
    EXPECT_EQ(MazToIsoScreen(l.maz), l.iso);
    EXPECT_EQ(MazToIsoFile(l.maz), l.iso);
    EXPECT_EQ(IsoToMaz(l.iso), l.maz);
    EXPECT_EQ(MazToDb(l.maz), l.iso);
    EXPECT_EQ(DbToMaz(l.iso), l.maz);
    EXPECT_EQ(MazToPlain(l.maz), l.maz);
    EXPECT_TRUE(IsPolishLetter(l.maz));
    EXPECT_EQ(Utf8ToMaz(ShortText(l.utf8)), ShortText(std::string_view(reinterpret_cast<const char*>(&l.maz), 1)));
  }
}

TEST(CodePage, SystemOwnLettersGoOutPlain) {
  const unsigned char own[] = {0xAD, 0xAE, 0xAF, 0xB0, 0xB1, 0xB2};
  const char plain[] = {'A', 'E', 'E', 'O', 'O', 'U'};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(MazToLatin2(own[i]), plain[i]);
    EXPECT_EQ(MazToLatin2Text(own[i]), plain[i]);
    EXPECT_EQ(MazToCp1250(own[i]), plain[i]);
    EXPECT_EQ(MazToIsoFile(own[i]), plain[i]);
    EXPECT_EQ(MazToAscii(own[i]), plain[i]);
    EXPECT_EQ(MazToPlain(own[i]), plain[i]);
    EXPECT_EQ(MazUpCase(own[i]), own[i]) << "case rules leave the system's own letters";
  }
  // The marked w (0x9B) changes only where named.
  ExpectRows<unsigned char>({{MazToPlain(0x9B), 'w'}, {MazToAscii(0x9B), 'w'}, {MazToIsoScreen(0x9B), 'w'},
                             {MazToLatin2(0x9B), 0x9B}, {MazToLatin2Text(0x9B), 0x9B}, {MazToIsoFile(0x9B), 0x9B},
                             {MazToCp1250(0x9B), 0x9B}, {MazUpCase(0x9B), 0x9B}});
}

TEST(CodePage, FrameBytesPerBorder) {
  // Text files keep frames (MazToLatin2Text); an unlisted corner is a blank on the screen.
  ExpectRows<unsigned char>({
      {MazToLatin2(0xB7), 0xBF}, {MazToLatin2(0xD4), 0xC0}, {MazToLatin2(0xDD), 0xDB}, {MazToLatin2(0xFB), '<'},
      {MazToLatin2Text(0xB7), 0xB7}, {MazToIsoScreen(0xB3), '|'}, {MazToIsoScreen(0xC4), '-'},
      {MazToIsoScreen(0xD9), '-'}, {MazToIsoScreen(0xDB), '#'}, {MazToIsoScreen(0xDC), '_'},
      {MazToIsoScreen(0xDF), '^'}, {MazToIsoScreen(0x18), '!'}, {MazToIsoScreen(0x19), 0xAD},
      {MazToIsoFile(0xBA), '|'}, {MazToIsoFile(0xB7), '*'}, {MazToIsoFile(0xBC), 0xD9}, {MazToIsoFile(0xBF), '>'},
      {MazToIsoFile(0xCD), 0xC4}, {MazToAscii(0x80), '$'}, {Latin2ToMaz(0xA2), 0xA2},
  });
}

TEST(CodePage, DatabaseFormKeepsSeparatorAndNulAndEveryOtherByte) {
  ExpectRows<unsigned char>({{MazToDb(255), 1}, {DbToMaz(1), 255}, {DbToMaz(0), 0}});
  // Every byte that is not a Polish letter's database form comes back as it went.
  for (int b = 0; b < 256; ++b) {
    auto c = static_cast<unsigned char>(b);
    bool collides = false;
    for (const auto& l : kLetters) collides |= (l.iso == c && l.maz != c);
    if (collides || c == 1) continue;
    EXPECT_EQ(DbToMaz(MazToDb(c)), c) << b;
  }
  // The text and in-place forms give what the byte forms give, for every byte at once.
  std::string text, db, back;
  for (int b = 1; b < 256; ++b) {
    const auto c = static_cast<unsigned char>(b);
    text += static_cast<char>(c);
    db += static_cast<char>(MazToDb(c));
    back += static_cast<char>(DbToMaz(MazToDb(c)));
  }
  EXPECT_EQ(MazToDb(ShortText(text)).Str(), db);
  EXPECT_EQ(DbToMaz(ShortText(db)).Str(), back);
  MazToDbInPlace(text.data(), text.size());
  EXPECT_EQ(text, db);
  DbToMazInPlace(text.data(), text.size());
  EXPECT_EQ(text, back);
  EXPECT_EQ(DbToMaz(ShortText(std::string_view("\x01\x00", 2))), ShortText(std::string_view("\xFF\x00", 2)));
}

TEST(CodePage, TextFormsOfMixedText) {
  ExpectRows<unsigned char>({{MazUpCase(0xA2), 0xA3}, {MazUpCase(0xA7), 0xA1}, {MazUpCase('q'), 'Q'}});  // ó, ż
  // Both zets fold to z; a plain letter takes a blank in the digraph form.
  ExpectRows<ShortText>({
      {MazToAscii("Źdźbło Żółw"_mz), "Zdzblo Zolw"}, {MazUpCaseText("zażółć gęślą jaźń"_mz), "ZAŻÓŁĆ GĘŚLĄ JAŹŃ"_mz},
      {MazLowCaseText("ZAŻÓŁĆ GĘŚLĄ JAŹŃ"_mz), "zażółć gęślą jaźń"_mz}, {MazToDigraph("łąka"_mz), "l,a,k a "},
      {MazToDigraph(ShortText()), ""},
  });
  EXPECT_EQ(MazToDigraph(ShortText(std::string(200, 'x'))).Length(), 254) << "input cut at 127 characters";
}

TEST(CodePage, ScreenBlanksWhatItCannotShow) {
  // Unlisted frame corners and the system's own letters are not among the screen's rows either.
  for (int b = 0x7E; b < 256; ++b) {
    auto c = static_cast<unsigned char>(b);
    unsigned char out = MazToIsoScreen(c);
    bool listed = IsPolishLetter(c) || c == 0x9B || c == 0xB3 || c == 0xDD || c == 0xDE || c == 0xC4 ||
                  c == 0xD9 || c == 0xDB || c == 0xDC || c == 0xDF || c == 0xFB;
    if (!listed) {
      EXPECT_EQ(out, ' ') << b;
    }
  }
  EXPECT_EQ(MazToIsoScreen(0xFB), '<');
  for (int b = 0x1A; b < 0x7E; ++b) EXPECT_EQ(MazToIsoScreen(static_cast<unsigned char>(b)), b);
}

TEST(CodePage, TextFormsRoundTripEveryLetter) {
  ShortText letters = "ąćęłńóśźżĄĆĘŁŃÓŚŹŻ"_mz;
  ExpectRows<ShortText>({
      {Latin2ToMaz(MazToLatin2(letters)), letters}, {Latin2ToMaz(MazToLatin2Text(letters)), letters},
      {Cp1250ToMaz(MazToCp1250(letters)), letters}, {IsoToMaz(MazToIsoFile(letters)), letters},
      {IsoToMaz(MazToIsoScreen(letters)), letters}, {DbToMaz(MazToDb(letters)), letters},
      {MazToPlain(letters), letters}, {MazToAscii(letters), "acelnoszzACELNOSZZ"},
      {MazToDigraph(letters), "a,c,e,l,n,o,s,z,z.A,C,E,L,N,O,S,Z,Z."},
  });
}

TEST(CodePage, Utf8LettersReplacedInTheirOrderAndOtherBytesLeft) {
  // ą (C4 85) is replaced before Ć (C4 86): its Mazovia byte 0x86 then completes
  // a Ć form with a stray C4 before it.
  ExpectRows<ShortText>({
      {Utf8ToMaz(ShortText("a\xC4\x85" "b\xC3" "\xE2\x94\x80\xC5")), ShortText("a\x86" "b\xC3" "\xE2\x94\x80\xC5")},
      {Utf8ToMaz(ShortText("\xC4\xC4\x85")), ShortText("\x95")}, {Utf8ToMaz(ShortText("\xC5\xBC\xC5\xBC")), "żż"_mz},
      {Utf8ToMaz(ShortText("")), ""},
  });
}

}  // namespace
