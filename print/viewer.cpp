// The screen viewer of a print file.
#include <algorithm>
#include <string>
#include <vector>

#include "base/mazovia.h"
#include "print/print.h"
#include "print/print_detail.h"
#include "print/printtext.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"

bool gPrintViewerOpen = false;

namespace {

constexpr int kViewRows = 24;

// The stripped text by lines, and the first line of every printed page.
struct ViewText {
  std::vector<std::string> lines;
  std::vector<int> pageStarts;
};

ViewText BuildViewText(std::string_view file) {
  ViewText view;
  for (std::string_view page : SplitPages(file)) {
    view.pageStarts.push_back(static_cast<int>(view.lines.size()));
    const std::string stripped = StripControlCodes(page);
    for (std::string_view line : SplitLines(stripped)) view.lines.emplace_back(line);
  }
  if (view.pageStarts.empty()) view.pageStarts.push_back(0);
  return view;
}

struct ViewPlace {
  int top = 0;
  int left = 0;
};

int PageStartAfter(const ViewText& view, int top, int direction) {
  if (direction > 0) {
    for (int start : view.pageStarts)
      if (start > top) return start;
    return top;
  }
  int found = 0;
  for (int start : view.pageStarts)
    if (start < top) found = start;
  return found;
}

// Moves the view by one key; false when the key is not a movement.
bool MoveView(const ViewText& view, KeyPair key, ViewPlace& place) {
  const int lastTop = std::max(0, static_cast<int>(view.lines.size()) - kViewRows);
  const int scan = key.scan;
  if (key == keys::kUp) --place.top;
  else if (key == keys::kDown) ++place.top;
  else if (key == keys::kPgUp) place.top -= kViewRows;
  else if (key == keys::kPgDn) place.top += kViewRows;
  else if (key == keys::kHome) place.top = 0;
  else if (key == keys::kEnd) place.top = lastTop;
  else if (key == keys::kLeft) place.left -= 10;
  else if (key == keys::kRight) place.left += 10;
  else if (scan == 153 && key.ch != 224) place.top = PageStartAfter(view, place.top, -1);
  else if (scan == 161 && key.ch != 224) place.top = PageStartAfter(view, place.top, 1);
  else return false;
  place.top = std::clamp(place.top, 0, lastTop);
  place.left = std::clamp(place.left, 0, 175);
  return true;
}

void DrawView(const ViewText& view, const ViewPlace& place) {
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(kAttrNormal);
  for (int row = 1; row <= kViewRows; ++row) {
    const std::size_t index = static_cast<std::size_t>(place.top + row - 1);
    std::string cells(kScreenCols, ' ');
    if (index < view.lines.size() && static_cast<std::size_t>(place.left) < view.lines[index].size())
      cells.replace(0, std::min<std::size_t>(kScreenCols, view.lines[index].size() - place.left),
                    view.lines[index].substr(static_cast<std::size_t>(place.left), kScreenCols));
    WriteAt(1, row, cells.data(), kScreenCols);
  }
  TextAttr(kAttrReverse);
  ShortText keyLine = "╪╓ü,ƒHome,End,PgUp,PgDn,Alt+PgUp/PgDn⌐-ruch obrazu ╫è/Ctrl+╫è-wydruk ╤╥û-wyjście"_mz;
  while (keyLine.Length() < kScreenCols) keyLine += " ";
  WriteAt(1, kScreenRows, keyLine);
  TextAttr(kAttrNormal);
}

}  // namespace

bool PrintViewer(const ShortText& printFile, const ShortText& title) {
  std::string bytes;
  if (!ReadPrintFile(printFile, bytes)) return false;
  ShowDoneBox("Trwa usuwanie z wydruku kodów sterujących drukarki...[          ]"_mz);
  const ViewText view = BuildViewText(bytes);
  // Rows 1 to 24 are the report's and row 25 the keys': the title has no row
  // of its own on this screen, so the viewer takes it and shows it nowhere.
  (void)title;
  ScreenCopyPtr saved;
  ScreenSave(saved);
  ViewPlace place;
  for (;;) {
    DrawView(view, place);
    const KeyPair key = ReadKeyRaw();
    if (key == keys::kEsc) break;
    if (key == keys::F(5) || (key.ch == 0 && key.scan == 98)) {
      // The printer gets the file as the report wrote it, codes and all.
      PrintTarget taken = PrintTarget::kNone;
      gPrintViewerOpen = true;
      (void)PrintDestination(printFile, PrintTarget::kNone, taken);
      gPrintViewerOpen = false;
      continue;
    }
    (void)MoveView(view, key, place);
  }
  ScreenRestore(saved);
  return true;
}
