// PickMulti: marks on up to 21 rows, whose fields may stand in aligned
// columns under a header built from the title.
#include <utility>
#include <vector>

#include "base/mazovia.h"
#include "base/text.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/picklist_detail.h"

namespace {

constexpr unsigned char kBarAttr = 0x30;
constexpr unsigned char kRowAttr = 0x70;
constexpr unsigned char kMark = 0xFB;  // a check mark
constexpr char kHelpMark = 7;
constexpr int kMaxColumns = 20;
const ShortText kSeparator = " ¥ "_mz;

// Fields of a row between the column separators.
std::vector<ShortText> SplitFields(const ShortText& text) {
  std::vector<ShortText> fields;
  int start = 1;
  for (int at = text.PosFrom(kSeparator.View(), 1); at > 0 && static_cast<int>(fields.size()) < kMaxColumns - 1;
       at = text.PosFrom(kSeparator.View(), start)) {
    fields.push_back(text.Copy(start, at - start));
    start = at + kSeparator.Length();
  }
  fields.push_back(text.Copy(start, 255));
  return fields;
}

// Every row and the header with their fields padded to the widest of each column.
void AlignColumns(std::vector<ShortText>& texts) {
  std::vector<std::vector<ShortText>> split;
  std::vector<int> widths;
  for (const ShortText& t : texts) {
    split.push_back(SplitFields(t));
    for (std::size_t c = 0; c < split.back().size(); ++c) {
      if (widths.size() <= c) widths.push_back(0);
      if (split.back()[c].Length() > widths[c]) widths[c] = split.back()[c].Length();
    }
  }
  for (std::size_t r = 0; r < texts.size(); ++r) {
    ShortText joined;
    for (std::size_t c = 0; c < split[r].size(); ++c) {
      if (c > 0) joined += kSeparator;
      joined += c + 1 < split[r].size() ? PadRight(split[r][c], ShortText(" "), widths[c]) : split[r][c];
    }
    texts[r] = joined;
  }
}

struct Multi {
  std::vector<ShortText> rows;
  bool marked[kPickMultiMaxRows] = {};
  ShortText help;
  int16_t endMode = 0;
  int bar = 0;
};

// The row texts under a title: when the title's last line has column
// separators, it is the header and is aligned with the rows.
ShortText PrepareRows(Multi& m, const ShortText& title, std::vector<ShortText> rows) {
  m.rows = std::move(rows);
  ShortText head = BeforeFirst(title, kHelpMark);
  if (title.Pos(kHelpMark) > 0) m.help = title.Copy(title.Pos(kHelpMark) + 1, 255);
  if (head.Pos(kSeparator.View()) == 0) {
    AlignColumns(m.rows);
    return head;
  }
  int lastBreak = 0;
  for (int i = 1; i <= head.Length(); ++i)
    if (head.At(i) == '@') lastBreak = i;
  m.rows.insert(m.rows.begin(), head.Copy(lastBreak + 1, 255));
  AlignColumns(m.rows);
  ShortText header = head.Copy(1, lastBreak) + "   " + m.rows.front();  // under the mark column
  m.rows.erase(m.rows.begin());
  return header;
}

ShortText RowText(const Multi& m, int i) {
  ShortText r(" ");
  r += static_cast<char>(m.marked[i] ? kMark : ' ');
  r += ' ';
  r += m.rows[i];
  return r;
}

void Draw(const Multi& m, const tui_detail::ListBox& box) {
  for (int i = 0; i < static_cast<int>(m.rows.size()); ++i)
    if (i != m.bar) tui_detail::WriteListRow(box, i + 1, RowText(m, i), kRowAttr);
  tui_detail::WriteListRow(box, m.bar + 1, RowText(m, m.bar), kBarAttr);
}

uint32_t MarkedValue(const Multi& m) {
  uint32_t value = 0;
  for (int i = 0; i < static_cast<int>(m.rows.size()); ++i)
    if (m.marked[i]) value |= 1u << i;
  return value;
}

// Handles a key that changes the bar or the marks; false for any other key.
bool Change(Multi& m, KeyPair k, unsigned char code) {
  int last = static_cast<int>(m.rows.size()) - 1;
  if (code == 242) m.bar = m.bar > 0 ? m.bar - 1 : 0;
  else if (code == 250) m.bar = m.bar < last ? m.bar + 1 : last;
  else if (code == 241 || code == 243) m.bar = 0;
  else if (code == 249 || code == 251) m.bar = last;
  else if (code == 13) m.marked[m.bar] = !m.marked[m.bar];
  else if (k.ch == '+') m.marked[m.bar] = true;
  else if (k.ch == '-') m.marked[m.bar] = false;
  else return false;
  return true;
}

uint32_t RunMulti(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                  const ShortText& title, std::vector<ShortText> rows, KeyPair& outKey, uint32_t& marks) {
  Multi m;
  m.endMode = endMode;
  tui_detail::ListBoxSpec layout;
  layout.title = PrepareRows(m, title, std::move(rows));
  for (int i = 0; i < static_cast<int>(m.rows.size()); ++i) m.marked[i] = (marks >> i) & 1u;
  m.bar = initial >= 1 && initial <= static_cast<int>(m.rows.size()) ? initial - 1 : 0;
  layout.hints = "╫╨ö - zatwierdzenie"_mz;
  if (endMode == 1 || endMode == 2) layout.hints += "@╤╥û - rezygnacja z wybierania"_mz;
  layout.rowCount = static_cast<int>(m.rows.size());
  for (int i = 0; i < layout.rowCount; ++i)
    if (RowText(m, i).Length() > layout.rowWidth) layout.rowWidth = RowText(m, i).Length();
  layout.attr = PickListAttr(colour);
  layout.column = column;
  layout.row = row;
  tui_detail::ScreenKeeper keeper;
  tui_detail::ListBox box = tui_detail::OpenListBox(layout);
  for (;;) {
    Draw(m, box);
    outKey = ReadKeyUpper();
    unsigned char code = KeyCodeOf(outKey);
    if (Change(m, outKey, code)) continue;
    if (code == 229 && !m.help.Empty()) MessageBox(m.help, 0);
    else if (code == 238 || (endMode == 2 && (code == 245 || code == 247))) return marks = MarkedValue(m);
    else if (code == 27 && endMode != 0) return 0;
    else Beep(1000);
  }
}

}  // namespace

uint32_t PickMulti(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                   const ShortText& title, const ShortText& options, KeyPair& outKey, uint32_t& marks) {
  return RunMulti(colour, initial, endMode, column, row, title, tui_detail::SplitChoices(options, kPickMultiMaxRows),
                  outKey, marks);
}

uint32_t PickMultiFile(uint8_t colour, int16_t initial, int16_t endMode, uint8_t column, uint8_t row,
                       const ShortText& title, const ShortText& fileName, KeyPair& outKey, uint32_t& marks) {
  return RunMulti(colour, initial, endMode, column, row, title, tui_detail::ReadChoiceLines(fileName, kPickMultiMaxRows),
                  outKey, marks);
}
