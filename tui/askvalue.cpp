// AskValue and AskValueRange: a code-2 message box with fields in its last lines.
#include "tui/askvalue.h"

#include "base/csv.h"
#include "base/mazovia.h"
#include "tui/editfield.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/picklist_detail.h"
#include "tui/screen.h"

namespace {

constexpr unsigned char kFieldAttr = 0x70;
constexpr unsigned char kHelpMark = 7;

struct Dialog {
  ShortText help, examples;
  int width = 1, mode = 1;
  int rows = 0;  // rows of the box's text lines: the last one holds the field
};

// Opens the box with the title, the F1 line and the field lines.
Dialog OpenDialog(const ShortText& title, const ShortText& fieldLines, int width, int mode, const ShortText& help,
                  const ShortText& examples) {
  Dialog d{help, examples, width, mode, 0};
  ShortText text = title;
  if (!examples.Empty()) text += "@╫à - lista przykładowych wartości"_mz;
  else if (!help.Empty()) text += "@╫à - pomoc"_mz;
  text += fieldLines;
  d.rows = tui_detail::LineCount(text) + 1;
  MessageBox(text, 2);
  return d;
}

// F1: an example picked into the field, or the help.
void ShowHelp(const Dialog& d, ShortText& field) {
  if (d.examples.Empty()) {
    if (!d.help.Empty()) MessageBox(d.help, 0);
    return;
  }
  ShortText options;
  for (int i = 1; i <= CsvFieldCount(d.examples); ++i) options += (i > 1 ? "@" : "") + CsvField(d.examples, i);
  ShortText title = "Lista przykładowych wartości:"_mz;
  if (!d.help.Empty()) {
    title += static_cast<char>(kHelpMark);
    title += d.help;
  }
  unsigned char ch = 0, scan = 0;
  int16_t chosen = PickList(4, 1, 1, 0, 0, title, options, ch, scan);
  if (chosen > 0) field = CsvField(d.examples, chosen).Copy(1, d.width);
}

// Edits the field at column x of box row y until a key other than F1 ends it.
unsigned char EditAt(const Dialog& d, int x, int y, int endMode, ShortText& field) {
  for (;;) {
    GotoXY(x, y);
    TextAttr(kFieldAttr);
    unsigned char key = 0;
    EditField(d.mode, endMode, ' ', d.width, field, key);
    if (key != 229) return key;
    ShowHelp(d, field);
  }
}

// Shows a field that is not being edited.
void DrawField(const Dialog& d, int x, int y, const ShortText& field) {
  TextAttr(kFieldAttr);
  ShortText shown = field;
  while (shown.Length() < d.width) shown += ' ';
  WriteAt(x, y, shown);
}

ShortText Blanks(int count) { return ShortText(std::string(static_cast<std::size_t>(count), ' ')); }

int Clamp(int width, int most) { return width < 1 ? 1 : (width > most ? most : width); }

}  // namespace

bool AskValue(const ShortText& title, ShortText& value, int width, int mode, const ShortText& help,
              const ShortText& examples) {
  tui_detail::ScreenKeeper keeper;
  width = Clamp(width, 78);
  Dialog d = OpenDialog(title, "@" + Blanks(width), width, mode, help, examples);
  ShortText field = value.Copy(1, width);
  if (EditAt(d, 2, d.rows, 1, field) != 13) return false;
  value = field;
  return true;
}

bool AskValueRange(const ShortText& title, ShortText& from, ShortText& to, int width, int mode,
                   const ShortText& help, const ShortText& examples) {
  tui_detail::ScreenKeeper keeper;
  width = Clamp(width, 74);
  Dialog d = OpenDialog(title, "@@od: " + Blanks(width) + "@do:", width, mode, help, examples);
  ShortText fields[2] = {from.Copy(1, width), to.Copy(1, width)};
  DrawField(d, 6, d.rows - 1, fields[0]);
  DrawField(d, 6, d.rows, fields[1]);
  for (int at = 0;;) {
    unsigned char key = EditAt(d, 6, d.rows - 1 + at, 2, fields[at]);
    if (key == 27) return false;
    if (key == 13 && at == 1) break;
    at = key == 242 ? 0 : (key == 250 || key == 13 ? 1 : at);
  }
  from = fields[0];
  to = fields[1];
  return true;
}
