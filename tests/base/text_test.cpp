#include <gtest/gtest.h>

#include <string>

#include "base/mazovia.h"
#include "base/text.h"

namespace {

ShortText Repeat(char c, int n) { return ShortText(std::string(static_cast<std::size_t>(n), c)); }

TEST(TextPad, RightWithOneAndManyCharacterFills) {
  EXPECT_EQ(PadRight("ab", " ", 5), "ab   ");
  EXPECT_EQ(PadRight("ab", ".", 5), "ab...");
  EXPECT_EQ(PadRight("ab", "xyz", 6), "abxyzxyz") << "a long fill is appended whole";
  EXPECT_EQ(PadRight("ab", "xy", 6), "abxyxy");
  EXPECT_EQ(PadRight("abcdef", " ", 3), "abc") << "cut to width";
  EXPECT_EQ(PadRight("abc", " ", 0), "abc");
  EXPECT_EQ(PadRight("abc", " ", -4), "abc");
  EXPECT_EQ(PadRight("abc", "", 9), "abc");
  EXPECT_EQ(PadRight("", " ", 1000), Repeat(' ', 255)) << "width above 255 counts as 255";
  EXPECT_EQ(PadRight("a", "xy", 255).Length(), 255) << "overshoot cut at 255";
}

TEST(TextPad, Left) {
  EXPECT_EQ(PadLeft("12", '0', 5), "00012");
  EXPECT_EQ(PadLeft("123456", ' ', 4), "1234");
  EXPECT_EQ(PadLeft("", '*', 300).Length(), 255);
  EXPECT_EQ(PadLeft("ab", ' ', 0), "ab");
}

TEST(TextTrim, DeliberateExceptionForTextOfOnlyThatCharacter) {
  EXPECT_EQ(TrimRight("   ", ' '), "   ");
  EXPECT_EQ(TrimLeft("   ", ' '), "   ");
  EXPECT_EQ(TrimBoth("   ", ' '), "   ");
  EXPECT_EQ(TrimRightAll("   ", ' '), "");
  EXPECT_EQ(TrimLeftAll("   ", ' '), "");
  EXPECT_EQ(TrimRight("", ' '), "");
  EXPECT_EQ(TrimRight(" a  ", ' '), " a");
  EXPECT_EQ(TrimLeft(" a  ", ' '), "a  ");
  EXPECT_EQ(TrimBoth("00100", '0'), "1");
  EXPECT_EQ(TrimRightAll("x--", '-'), "x");
}

TEST(TextTrim, ControlAndNul) {
  EXPECT_EQ(TrimControl(ShortText("a\tb\x01\xFF  ")), "a b");
  EXPECT_EQ(TrimControl(ShortText("\x01\x02 ")), "");
  EXPECT_EQ(DropLeadingNul(ShortText(std::string_view("\0\0ab\0", 5))), ShortText(std::string_view("ab\0", 3)));
  EXPECT_EQ(DropLeadingNul(ShortText(std::string_view("\0\0", 2))), "");
  EXPECT_EQ(DropLeadingNul(ShortText(std::string_view(" \0", 2))), ShortText(std::string_view(" \0", 2)));
}

TEST(TextReplace, CharactersAndRanges) {
  EXPECT_EQ(ReplaceChar("a.b.c", '.', ','), "a,b,c");
  EXPECT_EQ(ReplaceCharRange("aaaaa", 'a', 'b', 2, 3), "abbaa");
  EXPECT_EQ(ReplaceCharRange("aaaaa", 'a', 'b', 0, 2), "bbbbb") << "first 0 is the whole text";
  EXPECT_EQ(ReplaceCharRange("aaa", 'a', 'b', 2, 99), "abb");
  EXPECT_EQ(ReplaceTrailing("a  b  ", ' ', '.'), "a  b..");
  EXPECT_EQ(ReplaceTrailing("", ' ', '.'), "");
}

TEST(TextCut, BeforeAndAfter) {
  struct Row { ShortText got, want; };
  const Row rows[] = {
      {BeforeFirst("a@b@c", '@'), "a"}, {AfterFirst("a@b@c", '@'), "b@c"},
      {BeforeLast("a@b@c", '@'), "a@b"}, {AfterLast("a@b@c", '@'), "c"},
      {BeforeFirst("abc", '@'), "abc"}, {AfterFirst("abc", '@'), "abc"},
      {BeforeLast("abc", '@'), "abc"}, {AfterLast("abc", '@'), "abc"},
      {AfterLast("abc@", '@'), ""}, {BeforeFirst("@abc", '@'), ""},
      {RightPart("abcdef", 2), "ef"}, {RightPart("ab", 5), "ab"}, {RightPart("ab", 0), ""},
      {RightPart("ab", -1), ""},
  };
  for (const auto& r : rows) EXPECT_EQ(r.got, r.want);
}

TEST(TextFilter, DigitsLettersAndRanges) {
  ShortText mixed = "Zażółć 12-ab!"_mz;
  EXPECT_EQ(KeepDigits(mixed), "12");
  EXPECT_EQ(DropDigits("a1b2"), "ab");
  EXPECT_EQ(ReplaceNonDigits("1a2-", '0'), "1020");
  EXPECT_EQ(KeepAlnum(mixed), "Zażółć12ab"_mz);
  EXPECT_EQ(ReplaceNonAlnum(mixed, '_'), "Zażółć_12_ab_"_mz);
  EXPECT_EQ(KeepRange("aZ9\x86", 'A', 'Z'), "Z");
  EXPECT_EQ(KeepAlnum(ShortText("\xAD\x9B")), "") << "the system's own letters are not among the 18";
}

TEST(TextSearch, ContainsAndDeleteAll) {
  EXPECT_TRUE(ContainsText("bc", "abcd"));
  EXPECT_FALSE(ContainsText("", "abcd"));
  EXPECT_FALSE(ContainsText("x", ""));
  EXPECT_TRUE(ContainsChar('d', "abcd"));
  EXPECT_FALSE(ContainsChar('e', "abcd"));
  EXPECT_EQ(DeleteAllText("ab", "xabyab"), "xy");
  EXPECT_EQ(DeleteAllText("ab", "aabb"), "") << "a deletion that forms a new occurrence";
  EXPECT_EQ(DeleteAllText("", "abc"), "abc");
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
  TextPair p = SplitOn255(ShortText("ab\xFF" "cde"), 1, 1);
  EXPECT_EQ(p.first, "ab");
  EXPECT_EQ(p.second, "cde");
  p = SplitOn255("abcdef", 2, 3);
  EXPECT_EQ(p.first, "ab");
  EXPECT_EQ(p.second, "cde");
  p = SplitOn255("", 2, 3);
  EXPECT_EQ(p.first, "");
  EXPECT_EQ(p.second, "");
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
  EXPECT_EQ(XorBytes(bytes, 3), 0xFE);
  EXPECT_EQ(XorBytes(bytes, 0), 0);
  EXPECT_EQ(BoolText(true), "TRUE");
  EXPECT_EQ(BoolText(false), "FALSE");
}

TEST(TextXml, ValueBetweenTags) {
  ShortText out = "stale";
  EXPECT_TRUE(XmlValue("<a><nip>123</nip></a>", "nip", out));
  EXPECT_EQ(out, "123");
  EXPECT_TRUE(XmlValue("<nip type=\"x\">45</nip>", "nip", out));
  EXPECT_EQ(out, "45");
  EXPECT_TRUE(XmlValue("<n><![CDATA[a<b]]></n>", "n", out));
  EXPECT_EQ(out, "a<b");
  EXPECT_TRUE(XmlValue("<n></n>", "n", out));
  EXPECT_EQ(out, "");
  EXPECT_FALSE(XmlValue("<nip>123", "nip", out));
  EXPECT_EQ(out, "");
  out = "stale";
  EXPECT_FALSE(XmlValue("123</nip>", "nip", out));
  EXPECT_EQ(out, "");
  EXPECT_FALSE(XmlValue("<nipx>1</nipx>", "nip", out)) << "a longer tag name is another tag";
}

}  // namespace
