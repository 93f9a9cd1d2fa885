// The box of the selection lists: a message box of code 2 with blank lines
// where the rows go, and the window narrowed to those rows.
#include "base/filevar.h"
#include "base/text.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/picklist_detail.h"

namespace tui_detail {

namespace {

constexpr int kMaxBoxLines = 22;  // a message box shows at most 22 lines
constexpr int kMaxInner = 78;

int LongestLine(const ShortText& text) {
  int longest = 0, run = 0;
  for (int i = 1; i <= text.Length(); ++i) {
    run = text.At(i) == '@' ? 0 : run + 1;
    if (run > longest) longest = run;
  }
  return longest;
}

// The title with its last line padded, so that the box is as wide as the
// widest of the title, the rows and the hints.
ShortText PaddedTitle(const ShortText& title, int width) {
  int lastStart = 1;
  for (int i = 1; i <= title.Length(); ++i)
    if (title.At(i) == '@') lastStart = i + 1;
  int lastLength = title.Length() - lastStart + 1;
  if (width > kMaxInner) width = kMaxInner;
  ShortText padded = title;
  for (int i = lastLength; i < width; ++i) padded += ' ';
  return padded;
}

}  // namespace

std::vector<ShortText> SplitChoices(const ShortText& options, int limit) {
  std::vector<ShortText> choices;
  int start = 1;
  for (int i = 1; i <= options.Length() + 1 && static_cast<int>(choices.size()) < limit; ++i) {
    if (i <= options.Length() && options.At(i) != '@') continue;
    choices.push_back(options.Copy(start, i - start));
    start = i + 1;
  }
  return choices;
}

std::vector<ShortText> ReadChoiceLines(const ShortText& fileName, int limit) {
  std::vector<ShortText> choices;
  FileVar file;
  AssignFile(file, fileName);
  if (file.Reset(kFileModeReadOnly) == 0)
    for (ShortText line; static_cast<int>(choices.size()) < limit && file.ReadLine(line);) choices.push_back(line);
  if (choices.empty()) choices.emplace_back();
  return choices;
}

int LineCount(const ShortText& text) {
  int lines = 1;
  for (int i = 1; i <= text.Length(); ++i)
    if (text.At(i) == '@') ++lines;
  return lines;
}

int RowsThatFit(int titleLines, int hintLines) {
  int rows = kMaxBoxLines - titleLines - hintLines;
  if (rows > kPickRowsPerBox) rows = kPickRowsPerBox;
  return rows < 1 ? 1 : rows;
}

ListBox OpenListBox(const ListBoxSpec& layout) {
  int titleLines = LineCount(layout.title);
  int hintLines = layout.hints.Empty() ? 0 : LineCount(layout.hints);
  int width = layout.rowWidth > LongestLine(layout.hints) ? layout.rowWidth : LongestLine(layout.hints);
  ShortText text = PaddedTitle(layout.title, width);
  for (int i = 0; i < layout.rowCount; ++i) text += '@';
  bool hintsInside = hintLines > 0 && titleLines + layout.rowCount + hintLines <= kMaxBoxLines;
  if (hintsInside) text += "@" + layout.hints;
  if (layout.column == 0 && layout.row == 0) {
    MessageBoxColour(text, 2, layout.attr);
  } else {
    Window(layout.column, layout.row, kScreenCols, kScreenRows);
    MessageBoxHere(text, 2, layout.attr);
  }
  WindowRect b = CurrentWindow();
  if (hintLines > 0 && !hintsInside) {  // no room for a line of its own: over the bottom frame
    TextAttr(layout.attr);
    GotoXY(1, b.bottom - b.top + 1);
    WriteCentred(BeforeFirst(layout.hints, '@'));
  }
  ListBox box;
  box.innerWidth = b.right - b.left - 1;
  box.rows = WindowRect{b.left + 1, b.top + titleLines + 1, b.right - 1, b.top + titleLines + layout.rowCount};
  if (box.rows.bottom > b.bottom - 1) box.rows.bottom = b.bottom - 1;
  Window(box.rows.left, box.rows.top, box.rows.right, box.rows.bottom);
  return box;
}

void WriteListRow(const ListBox& box, int index, const ShortText& text, unsigned char attr) {
  Window(box.rows.left, box.rows.top, box.rows.right, box.rows.bottom);
  TextAttr(attr);
  WriteAt(1, index, PadRight(text, ShortText(" "), box.innerWidth).Copy(1, box.innerWidth));
  GotoXY(1, index);
}

}  // namespace tui_detail

ScreenKeeper::ScreenKeeper()
    : windowMin_(WindowMinPacked()), windowMax_(WindowMaxPacked()), x_(WhereX()), y_(WhereY()),
      attr_(CurrentAttr()) {
  ScreenSave(saved_);
}

ScreenKeeper::~ScreenKeeper() {
  ScreenRestore(saved_);
  WindowPacked(windowMin_, windowMax_);
  GotoXY(x_, y_);
  TextAttr(attr_);
}

void ScreenKeeper::Repaint() {
  ScreenRestore(saved_);
  WindowPacked(windowMin_, windowMax_);
  ScreenSave(saved_);
}
