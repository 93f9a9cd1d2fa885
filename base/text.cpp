#include "base/text.h"

#include <array>

#include "base/codepage.h"

namespace {

constexpr int ClampWidth(int width) { return width > 255 ? 255 : width; }

constexpr bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }

bool IsAlnum(unsigned char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || IsPolishLetter(c);
}

// A run of 255 blanks, so that padding with one blank is a single copy.
constexpr std::array<char, 255> kBlanks = [] {
  std::array<char, 255> b{};
  for (char& c : b) c = ' ';
  return b;
}();

bool AllOf(const ShortText& text, char c) {
  for (int i = 1; i <= text.Length(); ++i)
    if (text[i] != c) return false;
  return true;
}

int LastPos(const ShortText& text, char c) {
  for (int i = text.Length(); i >= 1; --i)
    if (text[i] == c) return i;
  return 0;
}

template <typename Keep>
ShortText Filter(const ShortText& text, Keep keep) {
  ShortText r;
  for (int i = 1; i <= text.Length(); ++i)
    if (keep(static_cast<unsigned char>(text[i]))) r.Append(text[i]);
  return r;
}

template <typename Bad>
ShortText ReplaceWhere(const ShortText& text, char c, Bad bad) {
  ShortText r = text;
  for (int i = 1; i <= r.Length(); ++i)
    if (bad(static_cast<unsigned char>(r[i]))) r[i] = c;
  return r;
}

int TrailingCount(const ShortText& text, char c) {
  int n = 0;
  while (n < text.Length() && text[text.Length() - n] == c) ++n;
  return n;
}

int LeadingCount(const ShortText& text, char c) {
  int n = 0;
  while (n < text.Length() && text[n + 1] == c) ++n;
  return n;
}

}  // namespace

ShortText PadRight(const ShortText& text, const ShortText& fill, int width) {
  width = ClampWidth(width);
  if (width <= 0 || fill.Empty()) return text;
  ShortText r = text.Copy(1, width);
  if (fill.Length() == 1 && fill[1] == ' ') {
    r.Append(std::string_view(kBlanks.data(), static_cast<std::size_t>(width - r.Length())));
  } else if (fill.Length() == 1) {
    while (r.Length() < width) r.Append(fill[1]);
  } else {
    while (r.Length() < width) r.Append(fill.View());
  }
  return r;
}

ShortText PadLeft(const ShortText& text, char fill, int width) {
  width = ClampWidth(width);
  if (width <= 0) return text;
  ShortText body = text.Copy(1, width);
  ShortText r;
  while (r.Length() < width - body.Length()) r.Append(fill);
  r.Append(body.View());
  return r;
}

ShortText TrimRight(const ShortText& text, char c) {
  return AllOf(text, c) ? text : TrimRightAll(text, c);
}

ShortText TrimLeft(const ShortText& text, char c) {
  return AllOf(text, c) ? text : TrimLeftAll(text, c);
}

ShortText TrimRightAll(const ShortText& text, char c) {
  return text.Copy(1, text.Length() - TrailingCount(text, c));
}

ShortText TrimLeftAll(const ShortText& text, char c) {
  return text.Copy(LeadingCount(text, c) + 1, 255);
}

ShortText TrimBoth(const ShortText& text, char c) { return TrimRight(TrimLeft(text, c), c); }

ShortText TrimControl(const ShortText& text) {
  ShortText r = ReplaceWhere(text, ' ', [](unsigned char b) { return b < 32 || b == 255; });
  return TrimRightAll(r, ' ');
}

ShortText DropLeadingNul(const ShortText& text) {
  return (text.Length() > 0 && text[1] == '\0') ? TrimLeftAll(text, '\0') : text;
}

ShortText ReplaceChar(const ShortText& text, char from, char to) {
  return ReplaceWhere(text, to, [from](unsigned char b) { return b == static_cast<unsigned char>(from); });
}

ShortText ReplaceCharRange(const ShortText& text, char from, char to, int first, int last) {
  if (first == 0) return ReplaceChar(text, from, to);
  ShortText r = text;
  if (first < 1) first = 1;
  if (last > r.Length()) last = r.Length();
  for (int i = first; i <= last; ++i)
    if (r[i] == from) r[i] = to;
  return r;
}

ShortText ReplaceTrailing(const ShortText& text, char from, char to) {
  ShortText r = text;
  for (int i = r.Length(); i >= 1 && r[i] == from; --i) r[i] = to;
  return r;
}

ShortText BeforeFirst(const ShortText& text, char c) {
  int p = text.Pos(c);
  return p == 0 ? text : text.Copy(1, p - 1);
}

ShortText AfterFirst(const ShortText& text, char c) {
  int p = text.Pos(c);
  return p == 0 ? text : text.Copy(p + 1, 255);
}

ShortText BeforeLast(const ShortText& text, char c) {
  int p = LastPos(text, c);
  return p == 0 ? text : text.Copy(1, p - 1);
}

ShortText AfterLast(const ShortText& text, char c) {
  int p = LastPos(text, c);
  return p == 0 ? text : text.Copy(p + 1, 255);
}

ShortText RightPart(const ShortText& text, int count) {
  if (count <= 0) return ShortText();
  if (count >= text.Length()) return text;
  return text.Copy(text.Length() - count + 1, count);
}

ShortText KeepRange(const ShortText& text, unsigned char low, unsigned char high) {
  return Filter(text, [low, high](unsigned char b) { return b >= low && b <= high; });
}

ShortText KeepDigits(const ShortText& text) { return Filter(text, IsDigit); }

ShortText DropDigits(const ShortText& text) {
  return Filter(text, [](unsigned char b) { return !IsDigit(b); });
}

ShortText ReplaceNonDigits(const ShortText& text, char c) {
  return ReplaceWhere(text, c, [](unsigned char b) { return !IsDigit(b); });
}

ShortText ReplaceNonAlnum(const ShortText& text, char c) {
  return ReplaceWhere(text, c, [](unsigned char b) { return !IsAlnum(b); });
}

ShortText KeepAlnum(const ShortText& text) { return Filter(text, IsAlnum); }

bool ContainsText(const ShortText& needle, const ShortText& text) { return text.Pos(needle.View()) > 0; }

bool ContainsChar(char c, const ShortText& text) { return text.Pos(c) > 0; }

ShortText DeleteAllText(const ShortText& needle, const ShortText& text) {
  ShortText r = text;
  if (needle.Empty()) return r;
  // Deleting may join two halves into a new occurrence, so search again from
  // where the join can start.
  for (int p = r.Pos(needle.View()); p > 0;
       p = r.PosFrom(needle.View(), p > needle.Length() ? p - needle.Length() + 1 : 1))
    r.Delete(p, needle.Length());
  return r;
}

ShortText BoolText(bool value) { return value ? ShortText("TRUE") : ShortText("FALSE"); }

unsigned char XorBytes(const void* bytes, int count) {
  const auto* p = static_cast<const unsigned char*>(bytes);
  unsigned char x = 0;
  for (int i = 0; i < count; ++i) x ^= p[i];
  return x;
}
