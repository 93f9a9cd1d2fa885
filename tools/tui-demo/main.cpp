// tui-demo: the selection lists and input forms on a real terminal, for a
// person to try them. Run it with TERM set to xterm, rxvt or linux (in tmux
// or another UTF-8 terminal also TERM_KLOTE_CP=UTF):
//   TERM=xterm TERM_KLOTE_CP=UTF build/tools/tui-demo/tui-demo
// The main list offers a list of 25 choices, a multiple selection, a form of
// three fields, a range with examples and a note; Esc or "Koniec" ends.
#include <cstdio>

#include "base/mazovia.h"
#include "base/text.h"
#include "tui/askvalue.h"
#include "tui/editfield.h"
#include "tui/editmemo.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

void DrawDesk() {
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(0x17);
  ClearWindow();
  TextAttr(0x70);
  WriteAt(1, 1, PadRight(" KLOTE - listy wyboru i formularze"_mz, ShortText(" "), kScreenCols));
  TextAttr(0x07);
}

ShortText Number(long n) {
  char buf[24];
  std::snprintf(buf, sizeof buf, "%ld", n);
  return ShortText(buf);
}

void LongList() {
  ShortText options;
  for (int i = 1; i <= 25; ++i) options += (i > 1 ? "@Poz. " : "Poz. ") + Number(i);
  unsigned char ch = 0, scan = 0;
  int16_t chosen = PickList(2, 1, 1, 0, 0, "Wybierz pozycję:\x07Strzałki, Home, End albo klawisz pozycji."_mz,
                            options, ch, scan);
  MessageBox("Wybrano: "_mz + Number(chosen), 0);
}

void Multi() {
  KeyPair key;
  uint32_t marks = 0;
  uint32_t value = PickMulti(1, 1, 1, 5, 4, "Towar ¥ Cena"_mz,
                             "Chleb ¥ 3.50@Masło extra ¥ 7.99@Mleko ¥ 2.80@Ser żółty ¥ 24.00"_mz, key, marks);
  MessageBox("Wartość zaznaczeń: "_mz + Number(static_cast<long>(value)), 0);
}

struct FormField {
  ShortText label;
  int mode, width;
  unsigned char fill;
  ShortText text;
};

// The form's loop: Up and Down move, Enter goes on (and confirms on the
// last field), F10 confirms, Esc cancels.
bool RunForm(FormField* fields, int count) {
  ScreenCopyPtr saved;
  ScreenSave(saved);
  MessageBox("Nazwa:                          @Data:@Kwota:@@╫╨ö - zatwierdzenie, ╤╥û - rezygnacja"_mz, 2);
  for (int i = 0; i < count; ++i) {
    GotoXY(9, i + 2);
    TextAttr(0x70);
    DrawMask(fields[i].mode, fields[i].fill, fields[i].width);
    WriteAt(9, i + 2, fields[i].text);
  }
  int at = 0;
  unsigned char key = 0;
  for (;;) {
    GotoXY(9, at + 2);
    TextAttr(0x70);
    ShortText out;
    EditFieldChecked(fields[at].mode, 3, fields[at].fill, fields[at].width, fields[at].text, key, out);
    fields[at].text = out;
    if (key == 27 || key == 238 || (key == 13 && at == count - 1)) break;
    if (key == 242 && at > 0) --at;
    else if ((key == 250 || key == 13) && at < count - 1) ++at;
  }
  ScreenRestore(saved);
  Window(1, 1, kScreenCols, kScreenRows);
  return key != 27;
}

void Form() {
  FormField fields[] = {{"Nazwa:"_mz, 1, 20, ' ', ShortText()},
                        {"Data:"_mz, 7, 8, '_', ShortText()},
                        {"Kwota:"_mz, 14, 10, ' ', ShortText()}};
  if (!RunForm(fields, 3)) return;
  MessageBox("Nazwa: "_mz + fields[0].text + "@Data: " + fields[1].text + "@Kwota: " + fields[2].text, 0);
}

void Range() {
  ShortText from("1"), to("100");
  if (AskValueRange("Zakres numerów dokumentów:"_mz, from, to, 8, 3, ShortText(), ShortText("1,100,1000")))
    MessageBox("Od "_mz + from + " do " + to, 0);
}

void Note() {
  std::string note = "Notatka do dokumentu.\nDruga linia.\n";
  if (EditMemo(note, MemoWindow{6, 6, 75, 14}, false)) {
    ShortText first(std::string_view(note).substr(0, note.find('\n')));
    MessageBox("Pierwsza linia: "_mz + first, 0);
  }
}

}  // namespace

int main() {
  TermInit();
  for (int16_t choice = 1;;) {
    DrawDesk();
    unsigned char ch = 0, scan = 0;
    choice = PickList(1, choice, 1, 0, 0,
                      "Pokaz list i formularzy:\x07Wybierz pozycję strzałkami i Enter albo jej klawiszem."_mz,
                      "Lista 25 pozycji@Wybór wielokrotny@Formularz@Zakres od - do@Notatka@Koniec"_mz, ch, scan);
    if (choice == 1) LongList();
    else if (choice == 2) Multi();
    else if (choice == 3) Form();
    else if (choice == 4) Range();
    else if (choice == 5) Note();
    else break;
  }
  Window(1, 1, kScreenCols, kScreenRows);
  TextAttr(0x07);
  ClearWindow();
  TermFlush();
  return 0;
}
