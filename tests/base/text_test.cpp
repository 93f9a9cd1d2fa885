#include <gtest/gtest.h>

#include <string>

#include "base/mazovia.h"
#include "base/text.h"
#include "base/expect_rows.h"

namespace {

using test_rows::ExpectRows;

ShortText Repeat(char c, int n) { return ShortText(std::string(static_cast<std::size_t>(n), c)); }

TEST(TextPad, RightWithOneAndManyCharacterFillsAndLeft) {
  // A long fill is appended whole; a longer text is cut to the width; widths above 255 count as 255.
  ExpectRows<ShortText>({{PadRight("ab", " ", 5), "ab   "}, {PadRight("ab", ".", 5), "ab..."},
                         {PadRight("ab", "xyz", 6), "abxyzxyz"}, {PadRight("ab", "xy", 6), "abxyxy"},
                         {PadRight("abcdef", " ", 3), "abc"}, {PadRight("abc", " ", 0), "abc"},
                         {PadRight("abc", " ", -4), "abc"}, {PadRight("abc", "", 9), "abc"},
                         {PadRight("", " ", 1000), Repeat(' ', 255)}, {PadLeft("12", '0', 5), "00012"},
                         {PadLeft("123456", ' ', 4), "1234"}, {PadLeft("ab", ' ', 0), "ab"}});
  EXPECT_EQ(PadRight("a", "xy", 255).Length(), 255) << "overshoot cut at 255";
  EXPECT_EQ(PadLeft("", '*', 300).Length(), 255);
}

TEST(TextTrim, DeliberateExceptionForTextOfOnlyThatCharacter) {
  ExpectRows<ShortText>({{TrimRight("   ", ' '), "   "}, {TrimLeft("   ", ' '), "   "}, {TrimBoth("   ", ' '), "   "},
                         {TrimRightAll("   ", ' '), ""}, {TrimLeftAll("   ", ' '), ""}, {TrimRight("", ' '), ""},
                         {TrimRight(" a  ", ' '), " a"}, {TrimLeft(" a  ", ' '), "a  "}, {TrimBoth("00100", '0'), "1"},
                         {TrimRightAll("x--", '-'), "x"}});
}

TEST(TextTrim, ControlAndNul) {
  const auto bytes = [](std::string_view v) { return ShortText(v); };
  ExpectRows<ShortText>({{TrimControl(bytes("a\tb\x01\xFF  ")), "a b"}, {TrimControl(bytes("\x01\x02 ")), ""},
                         {DropLeadingNul(bytes({"\0\0ab\0", 5})), bytes({"ab\0", 3})},
                         {DropLeadingNul(bytes({"\0\0", 2})), ""},
                         {DropLeadingNul(bytes({" \0", 2})), bytes({" \0", 2})}});
}

TEST(TextReplace, CharactersAndRanges) {
  // A first place of 0 is the whole text.
  ExpectRows<ShortText>({{ReplaceChar("a.b.c", '.', ','), "a,b,c"}, {ReplaceCharRange("aaaaa", 'a', 'b', 2, 3), "abbaa"},
                         {ReplaceCharRange("aaaaa", 'a', 'b', 0, 2), "bbbbb"},
                         {ReplaceCharRange("aaa", 'a', 'b', 2, 99), "abb"},
                         {ReplaceTrailing("a  b  ", ' ', '.'), "a  b.."}, {ReplaceTrailing("", ' ', '.'), ""}});
}

TEST(TextCut, BeforeAndAfter) {
  ExpectRows<ShortText>({
      {BeforeFirst("a@b@c", '@'), "a"}, {AfterFirst("a@b@c", '@'), "b@c"},
      {BeforeLast("a@b@c", '@'), "a@b"}, {AfterLast("a@b@c", '@'), "c"},
      {BeforeFirst("abc", '@'), "abc"}, {AfterFirst("abc", '@'), "abc"},
      {BeforeLast("abc", '@'), "abc"}, {AfterLast("abc", '@'), "abc"},
      {AfterLast("abc@", '@'), ""}, {BeforeFirst("@abc", '@'), ""},
      {RightPart("abcdef", 2), "ef"}, {RightPart("ab", 5), "ab"}, {RightPart("ab", 0), ""}, {RightPart("ab", -1), ""},
  });
}

TEST(TextFilter, DigitsLettersAndRanges) {
  ShortText mixed = "Zażółć 12-ab!"_mz;
  // The system's own letters (0xAD, 0x9B) are not among the 18 Polish ones.
  ExpectRows<ShortText>({{KeepDigits(mixed), "12"}, {DropDigits("a1b2"), "ab"}, {ReplaceNonDigits("1a2-", '0'), "1020"},
                         {KeepAlnum(mixed), "Zażółć12ab"_mz}, {ReplaceNonAlnum(mixed, '_'), "Zażółć_12_ab_"_mz},
                         {KeepRange("aZ9\x86", 'A', 'Z'), "Z"}, {KeepAlnum(ShortText("\xAD\x9B")), ""}});
}

TEST(TextSearch, ContainsAndDeleteAll) {
  ExpectRows<bool>({{ContainsText("bc", "abcd"), true}, {ContainsText("", "abcd"), false},
                    {ContainsText("x", ""), false}, {ContainsChar('d', "abcd"), true}, {ContainsChar('e', "abcd"), false}});
  // "aabb": the deletion forms a new occurrence, which goes too.
  ExpectRows<ShortText>({{DeleteAllText("ab", "xabyab"), "xy"}, {DeleteAllText("ab", "aabb"), ""},
                         {DeleteAllText("", "abc"), "abc"}});
}

TEST(TextWrap, NextLineBreaksAfterLastBreakCharacter) {
  ShortText t = "alfa beta gamma";
  int next = 0;
  EXPECT_EQ(WrapNext(t, 1, 7, next), "alfa");
  EXPECT_EQ(next, 6);
  EXPECT_EQ(WrapNext(t, next, 7, next), "beta");
  EXPECT_EQ(next, 11);
  EXPECT_EQ(WrapNext(t, next, 7, next), "gamma");
  EXPECT_EQ(next, 16);
  EXPECT_EQ(WrapNext("abcdefgh", 1, 3, next), "abc") << "hard break without a break character";
  EXPECT_EQ(next, 4);
  EXPECT_EQ(WrapNext(ShortText("ab\tcd\xFF" "ef"), 1, 6, next), ShortText("ab\tcd\xFF"));
  EXPECT_EQ(next, 7);
  EXPECT_EQ(WrapNext("abc", 9, 5, next), "");
  EXPECT_EQ(WrapNext("abc", 1, 0, next), "a") << "width below 1 still moves on";
}

TEST(TextSuccessor, NextFreeCode) {
  struct Row { const char* in; int max; const char* want; };
  const Row rows[] = {
      {"A1", 5, "A2"},   {"A9", 5, "B0"},   {"AZ", 5, "BA"},   {"az", 5, "ba"},
      {"a-z", 5, "b-a"}, {"zz", 5, "zzA"},  {"zz", 2, "zz"},   {"", 3, "A"},
      {"Y", 3, "Z"},     {"8", 3, "9"},     {"Z9z", 5, "Z9zA"}, {"A99", 5, "B00"},
  };
  for (const auto& r : rows) EXPECT_EQ(SuccessorText(r.in, r.max), r.want) << r.in;
}

TEST(TextSplit, On255OrAtFixedLengths) {
  const TextPair marked = SplitOn255(ShortText("ab\xFF" "cde"), 1, 1), fixed = SplitOn255("abcdef", 2, 3),
                 empty = SplitOn255("", 2, 3);
  ExpectRows<ShortText>({{marked.first, "ab"}, {marked.second, "cde"}, {fixed.first, "ab"}, {fixed.second, "cde"},
                         {empty.first, ""}, {empty.second, ""}});
}

TEST(TextSplit, WrapAt76) {
  ShortText t = Repeat('x', 200);
  ShortText w = WrapAt76(t);
  EXPECT_EQ(w.Length(), 202);
  EXPECT_EQ(w[77], '@');
  EXPECT_EQ(w[154], '@');
  EXPECT_EQ(WrapAt76(Repeat('x', 76)), Repeat('x', 76)) << "no mark without a following line";
  EXPECT_EQ(WrapAt76(Repeat('x', 255)).Length(), 255) << "cut at 255";
}

TEST(TextMisc, XorAndBool) {
  const unsigned char bytes[] = {0x0F, 0xF0, 0x01};
  ExpectRows<int>({{XorBytes(bytes, 3), 0xFE}, {XorBytes(bytes, 0), 0}});
  ExpectRows<ShortText>({{BoolText(true), "TRUE"}, {BoolText(false), "FALSE"}});
}

TEST(TextXml, ValueBetweenTags) {
  // A longer tag name is another tag; a missing tag on either side gives false and an empty text.
  struct Row { const char* xml; const char* tag; bool found; const char* value; };
  const Row rows[] = {
      {"<a><nip>123</nip></a>", "nip", true, "123"}, {"<nip type=\"x\">45</nip>", "nip", true, "45"},
      {"<n><![CDATA[a<b]]></n>", "n", true, "a<b"},  {"<n></n>", "n", true, ""},
      {"<nip>123", "nip", false, ""},                {"123</nip>", "nip", false, ""},
      {"<nipx>1</nipx>", "nip", false, ""},
  };
  for (const Row& r : rows) {
    ShortText out = "stale";
    EXPECT_EQ(XmlValue(r.xml, r.tag, out), r.found) << r.xml;
    EXPECT_EQ(out, r.value) << r.xml;
  }
}

}  // namespace
