// Lines, codes and fields cut out of a text.
#include "base/text.h"

namespace {

bool IsBreak(unsigned char c) { return c == 7 || c == 9 || c == 32 || c == 255; }

// Where a digit or letter of the free-index alphabet goes on to the next one,
// and where it wraps back to the first.
bool CanStep(char c) {
  return (c >= '0' && c <= '8') || (c >= 'A' && c <= 'Y') || (c >= 'a' && c <= 'y');
}

char WrapToFirst(char c) {
  if (c >= '1' && c <= '9') return '0';
  if (c >= 'B' && c <= 'Z') return 'A';
  if (c >= 'b' && c <= 'z') return 'a';
  return c;
}

// Position just past the opening tag, 0 when there is none. "<tag>" is looked
// for first, then "<tag " with attributes up to its '>'.
int AfterOpeningTag(const ShortText& text, const ShortText& tag) {
  ShortText plain = "<" + tag + ">";
  if (int p = text.Pos(plain.View()); p > 0) return p + plain.Length();
  ShortText withAttributes = "<" + tag + " ";
  int p = text.Pos(withAttributes.View());
  if (p == 0) return 0;
  int close = text.PosFrom(">", p + withAttributes.Length());
  return close == 0 ? 0 : close + 1;
}

ShortText WithoutCdata(const ShortText& value) {
  constexpr std::string_view kOpen = "<![CDATA[", kClose = "]]>";
  std::string_view v = value.View();
  if (v.size() >= kOpen.size() + kClose.size() && v.starts_with(kOpen) && v.ends_with(kClose))
    return ShortText(v.substr(kOpen.size(), v.size() - kOpen.size() - kClose.size()));
  return value;
}

}  // namespace

ShortText WrapNext(const ShortText& text, int start, int width, int& next) {
  if (width > 255) width = 255;
  if (width < 1) width = 1;
  if (start < 1) start = 1;
  int end;  // last position of this line
  if (text.Length() - start + 1 <= width) {
    end = text.Length();
  } else {
    end = start + width - 1;
    for (int i = start + width - 1; i >= start; --i) {
      if (IsBreak(static_cast<unsigned char>(text[i]))) {
        end = i;
        break;
      }
    }
  }
  next = end + 1 > start ? end + 1 : start;
  ShortText line = text.Copy(start, end - start + 1);
  while (line.Length() > 0 && line[line.Length()] == ' ') line.SetLength(line.Length() - 1);
  return line;
}

ShortText SuccessorText(const ShortText& text, int maxLength) {
  if (maxLength > 255) maxLength = 255;
  ShortText r = text;
  for (int i = r.Length(); i >= 1; --i) {
    if (!CanStep(r[i])) continue;
    r[i] = static_cast<char>(r[i] + 1);
    for (int k = i + 1; k <= r.Length(); ++k) r[k] = WrapToFirst(r[k]);
    return r;
  }
  if (r.Length() < maxLength) r.Append('A');
  return r;
}

TextPair SplitOn255(const ShortText& text, int firstLength, int secondLength) {
  int p = text.Pos('\xFF');
  if (p > 0) return {text.Copy(1, p - 1), text.Copy(p + 1, 255)};
  if (firstLength < 0) firstLength = 0;
  return {text.Copy(1, firstLength), text.Copy(firstLength + 1, secondLength)};
}

ShortText WrapAt76(const ShortText& text) {
  ShortText r;
  for (int i = 1; i <= text.Length(); ++i) {
    r.Append(text[i]);
    if (i % 76 == 0 && i < text.Length()) r.Append('@');
  }
  return r;
}

bool XmlValue(const ShortText& text, const ShortText& tag, ShortText& out) {
  out.Clear();
  int from = AfterOpeningTag(text, tag);
  if (from == 0) return false;
  ShortText closing = "</" + tag + ">";
  int to = text.PosFrom(closing.View(), from);
  if (to == 0) return false;
  out = WithoutCdata(text.Copy(from, to - from));
  return true;
}
