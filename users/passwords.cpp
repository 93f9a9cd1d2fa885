// Passwords: the prompt at an account and the entry of a new one. The typed
// text never reaches the screen: the field shows blanks and the cursor moves.
#include "base/mazovia.h"
#include "tui/keyboard.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "users/users.h"
#include "users/users_detail.h"

namespace {

constexpr unsigned char kFieldAttr = kAttrReverse;

bool Typable(KeyPair k) { return k.ch >= 32 && k.ch != 127 && k.ch != 224; }

// Reads a secret of at most kUserPasswordMax bytes at the cursor until Enter
// (true) or Esc (false); other keys are refused.
bool ReadSecret(ShortText& typed) {
  const int x = WhereX(), y = WhereY();
  TextAttr(kFieldAttr);
  WriteAt(x, y, ShortText("          "));
  typed.Clear();
  for (;;) {
    GotoXY(x + typed.Length(), y);
    const KeyPair k = ReadKeyEdit();
    if (k.ch == 13) return true;
    if (k.ch == 27) return false;
    if (k.ch == 8 && !typed.Empty()) typed.SetLength(typed.Length() - 1);
    else if (Typable(k) && typed.Length() < kUserPasswordMax) typed += static_cast<char>(k.ch);
    else Beep(1000);
  }
}

// Opens a box of text whose last line is empty and reads the secret there.
bool AskSecret(const ShortText& text, ShortText& typed) {
  users_detail::BoxKeeper keeper;
  int lines = 1;
  for (int i = 1; i <= text.Length(); ++i)
    if (text.At(i) == '@') ++lines;
  MessageBox(text, 2);  // the window is now the box, its frame in column and row 1
  GotoXY(2, lines + 1);
  return ReadSecret(typed);
}

}  // namespace

bool PGPasswordAsk(const ShortText& stored) {
  if (stored.Empty()) return true;
  if (PasswordLocked(stored)) return false;
  ShortText typed;
  return AskSecret("Podaj hasło:@"_mz, typed) && typed == stored;
}

bool PGPasswordNew(const ShortText& name, ShortText& password) {
  ShortText typed;
  if (!AskSecret("Dla użytkownika "_mz + name + ":" + "@Podaj nowe hasło:@"_mz, typed)) return false;
  password = typed;
  return true;
}
