// Progress bars inside code-2 message boxes.
#include <cstdio>

#include "tui/msgbox.h"
#include "tui/screen.h"

namespace {

constexpr int kBarCells = 10;
constexpr unsigned char kFullBlock = 0xDB;

bool Blanks(const ShortText& t, int from, int count) {
  for (int i = from; i < from + count; ++i)
    if (t.At(i) != ' ') return false;
  return true;
}

// The kind of bar whose "[" is at position open of the line.
ProgressBar::Kind KindAt(const ShortText& line, int open) {
  if (Blanks(line, open + 1, kBarCells) && line.At(open + 11) == ']') return ProgressBar::kFill;
  if (Blanks(line, open + 1, kBarCells) && line.At(open + 11) == '/' && Blanks(line, open + 12, kBarCells) &&
      line.At(open + 22) == ']')
    return ProgressBar::kCount;
  if (Blanks(line, open + 1, 3) && line.At(open + 4) == '%' && line.At(open + 5) == ']') return ProgressBar::kPercent;
  return ProgressBar::kNone;
}

ShortText Number(long n, int width, bool left) {
  char buf[32];
  std::snprintf(buf, sizeof buf, left ? "%-*ld" : "%*ld", width, n);
  return ShortText(buf).Copy(1, width);
}

}  // namespace

ProgressBar FindProgressBar(const ShortText& text) {
  int lineNo = 0, lineStart = 1;
  for (int i = 1; i <= text.Length() + 1; ++i) {
    if (i <= text.Length() && text.At(i) != '@') continue;
    ShortText line = text.Copy(lineStart, i - lineStart);
    for (int p = 1; p <= line.Length(); ++p) {
      if (line.At(p) != '[') continue;
      if (ProgressBar::Kind kind = KindAt(line, p); kind != ProgressBar::kNone)
        return ProgressBar{kind, p + 1, lineNo + 2};
    }
    ++lineNo;
    lineStart = i + 1;
  }
  return ProgressBar{};
}

ShortText ProgressText(ProgressBar::Kind kind, long done, long total) {
  if (total <= 0) total = 1;
  if (done < 0) done = 0;
  if (done > total) done = total;
  ShortText out;
  if (kind == ProgressBar::kFill) {
    long cells = done * kBarCells / total;
    for (int i = 0; i < kBarCells; ++i) out.Append(static_cast<char>(i < cells ? kFullBlock : ' '));
  } else if (kind == ProgressBar::kCount) {
    out = Number(done, kBarCells, false);
    out += '/';
    out += Number(total, kBarCells, true);
  } else if (kind == ProgressBar::kPercent) {
    out = Number(done * 100 / total, 3, false);
  }
  return out;
}

void ShowProgress(const ProgressBar& bar, long done, long total) {
  if (bar.kind == ProgressBar::kNone) return;
  WriteAt(bar.x + 1, bar.y, ProgressText(bar.kind, done, total));
}
