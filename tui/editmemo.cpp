// EditMemo: a note of up to kMemoMaxLines lines in a window.
#include "tui/editmemo.h"

#include <vector>

#include "base/filevar.h"
#include "base/mazovia.h"
#include "base/paths.h"
#include "tui/editfield.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist_detail.h"
#include "tui/screen.h"

namespace {

constexpr unsigned char kTextAttr = 0x1F;

using Lines = std::vector<ShortText>;

struct Memo {
  Lines lines;
  MemoWindow w;
  int width = 1, rows = 1;
  int top = 0, cur = 0;  // first line shown, line being edited
};

void Draw(const Memo& m, bool readOnly) {
  Window(m.w.left, m.w.top, m.w.right, m.w.bottom);
  TextAttr(kTextAttr);
  for (int r = 0; r < m.rows; ++r) {
    int i = m.top + r;
    ShortText line = i < static_cast<int>(m.lines.size()) ? m.lines[i].Copy(1, m.width) : ShortText();
    while (line.Length() < m.w.right - m.w.left + 1) line += ' ';
    WriteAt(1, r + 1, line);
  }
  TextAttr(kAttrPrompt);
  ShortText keys = readOnly ? "╤╥û - koniec "_mz
                            : "╪╓ü - przemieszczanie kursora ╫╨ö - zatwierdzenie ╤╥û - rezygnacja "_mz;
  while (keys.Length() < m.w.right - m.w.left + 1) keys += ' ';
  WriteAt(1, m.rows + 1, keys);
}

void KeepInView(Memo& m) {
  int last = static_cast<int>(m.lines.size()) - 1;
  if (m.cur > last) m.cur = last;
  if (m.cur < 0) m.cur = 0;
  if (m.cur < m.top) m.top = m.cur;
  if (m.cur >= m.top + m.rows) m.top = m.cur - m.rows + 1;
}

// Edits the line under the cursor; a line longer than the field keeps its
// tail when the part shown comes back unchanged.
unsigned char EditCurrent(Memo& m) {
  Window(m.w.left, m.w.top, m.w.right, m.w.bottom);
  GotoXY(1, m.cur - m.top + 1);
  TextAttr(kTextAttr);
  ShortText text = m.lines[m.cur].Copy(1, m.width);
  unsigned char key = 0;
  EditField(1, 3, ' ', m.width, text, key);
  if (text != m.lines[m.cur].Copy(1, m.width)) m.lines[m.cur] = text;
  return key;
}

bool RunEdit(Memo& m) {
  for (;;) {
    KeepInView(m);
    Draw(m, false);
    unsigned char key = EditCurrent(m);
    if (key == 238) return true;
    if (key == 27) return false;
    bool atLast = m.cur == static_cast<int>(m.lines.size()) - 1;
    if (key == 242) --m.cur;
    else if (key == 250 || key == 13) {
      if (atLast && key == 13 && static_cast<int>(m.lines.size()) < kMemoMaxLines) m.lines.emplace_back();
      ++m.cur;
    }
  }
}

void RunReadOnly(Memo& m) {
  for (;;) {
    int last = static_cast<int>(m.lines.size()) - m.rows;
    if (m.top > last) m.top = last;
    if (m.top < 0) m.top = 0;
    Draw(m, true);
    GotoXY(1, 1);
    unsigned char key = KeyCodeOf(ReadKeyRaw());
    if (key == 27) return;
    if (key == 242) --m.top;
    else if (key == 250) ++m.top;
    else if (key == 243) m.top -= m.rows;
    else if (key == 251) m.top += m.rows;
    else if (key == 241) m.top = 0;
    else if (key == 249) m.top = last;
  }
}

// Runs the memo over the lines; true when they were confirmed with F10.
bool RunMemo(Lines& lines, const MemoWindow& w, bool readOnly) {
  tui_detail::ScreenKeeper keeper;
  Memo m;
  m.lines = lines;
  if (m.lines.empty()) m.lines.emplace_back();
  Window(w.left, w.top, w.right, w.bottom);
  WindowRect r = CurrentWindow();
  m.w = MemoWindow{r.left, r.top, r.right, r.bottom};
  m.width = r.right - r.left + 1 > kEditMaxWidth ? kEditMaxWidth : r.right - r.left + 1;
  m.rows = r.bottom - r.top > 0 ? r.bottom - r.top : 1;
  if (readOnly) {
    RunReadOnly(m);
    return false;
  }
  if (!RunEdit(m)) return false;
  while (m.lines.size() > 1 && m.lines.back().Empty()) m.lines.pop_back();
  lines = m.lines;
  return true;
}

Lines SplitBlock(const std::string& block) {
  Lines lines;
  std::size_t start = 0;
  while (start < block.size() && static_cast<int>(lines.size()) < kMemoMaxLines) {
    std::size_t end = block.find('\n', start);
    if (end == std::string::npos) end = block.size();
    lines.emplace_back(std::string_view(block).substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

std::string JoinLines(const Lines& lines) {
  std::string block;
  for (const ShortText& l : lines) {
    block += l.View();
    block += '\n';
  }
  return block;
}

// Writes the lines through a temporary file in the same directory.
bool WriteLines(const ShortText& path, const Lines& lines) {
  ShortText temporary = path + ".$$$";
  std::string block = JoinLines(lines);
  FileVar file;
  AssignFile(file, temporary);
  bool written = file.Rewrite() == 0 && file.Write(block.data(), static_cast<int>(block.size())) == 0;
  written = file.Close() == 0 && written;
  if (written && RenameFile(temporary, path) == 0) return true;
  (void)DeleteFile(temporary);
  MessageBox("Błąd zapisu do pliku docelowego."_mz, 0);
  return false;
}

}  // namespace

bool EditMemo(const ShortText& path, const MemoWindow& window, bool readOnly) {
  Lines lines;
  FileVar file;
  AssignFile(file, path);
  ShortText line;
  if (file.Reset(kFileModeReadOnly) == 0)
    while (static_cast<int>(lines.size()) < kMemoMaxLines && file.ReadLine(line)) lines.push_back(line);
  if (file.IsOpen() && file.ReadLine(line)) readOnly = true;  // too long to write back whole
  (void)file.Close();
  if (!RunMemo(lines, window, readOnly)) return false;
  return WriteLines(path, lines);
}

bool EditMemo(std::string& block, const MemoWindow& window, bool readOnly) {
  Lines lines = SplitBlock(block);
  if (JoinLines(lines).size() < block.size()) readOnly = true;  // too long to write back whole
  if (!RunMemo(lines, window, readOnly)) return false;
  block = JoinLines(lines);
  return true;
}
