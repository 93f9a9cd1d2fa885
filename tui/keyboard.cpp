// The key buffer and the translations of ReadKeyRaw.
#include "tui/keyboard.h"

#include <sys/ioctl.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/tiocl.h>
#endif

#include "base/codepage.h"
#include "tui/keyboard_detail.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

struct KeyRing {
  KeyPair keys[kKeyBufferSize];
  int read = 0;   // index of the next key to read
  int count = 0;  // keys waiting
};

KeyRing g_ring;
bool g_caps = false;
unsigned char g_capsCellAttr = kAttrNormal;
ShortText g_clipboard;
void (*g_idleHook)() = nullptr;

constexpr KeyPair kGrave{0x60, 41};

bool PopBuffered(KeyPair& k) {
  if (g_ring.count == 0) return false;
  k = g_ring.keys[g_ring.read];
  g_ring.read = (g_ring.read + 1) % kKeyBufferSize;
  --g_ring.count;
  return true;
}

// The next raw pair: buffered keys first, then the terminal; Esc when the
// input has ended, so that no wait for a key can hang on a closed terminal.
KeyPair NextPair() {
  KeyPair k;
  if (PopBuffered(k)) return k;
  TermFlush();
  if (g_idleHook) {
    g_idleHook();
    if (PopBuffered(k)) return k;
  }
  if (tui_detail::ReadTerminalKey(k)) return k;
  return keys::kEsc;
}

// A key that a terminal sends right behind the one in hand (the second byte of a letter).
bool KeyFollowsAtOnce() { return g_ring.count > 0 || tui_detail::TerminalKeyWaiting(50); }

struct Utf8Letter {
  unsigned char lead, next, maz, scan;
};

constexpr Utf8Letter kUtf8Letters[] = {
    {0xC4, 0x99, 0x91, 18}, {0xC4, 0x98, 0x90, 18}, {0xC4, 0x85, 0x86, 30}, {0xC4, 0x84, 0x8F, 30},
    {0xC4, 0x87, 0x8D, 46}, {0xC4, 0x86, 0x95, 46}, {0xC3, 0xB3, 0xA2, 24}, {0xC3, 0x93, 0xA3, 24},
    {0xC5, 0x9B, 0x9E, 31}, {0xC5, 0x9A, 0x98, 31}, {0xC5, 0x82, 0x92, 38}, {0xC5, 0x81, 0x9C, 38},
    {0xC5, 0xBC, 0xA7, 44}, {0xC5, 0xBB, 0xA1, 44}, {0xC5, 0xBA, 0xA6, 45}, {0xC5, 0xB9, 0xA0, 45},
    {0xC5, 0x84, 0xA4, 49}, {0xC5, 0x83, 0xA5, 49},
};

bool IsUtf8Lead(KeyPair k) {
  return (k.ch == 0xC4 && k.scan == 32) || (k.ch == 0xC3 && k.scan == 46) || (k.ch == 0xC5 && k.scan == 18);
}

KeyPair CombineUtf8(KeyPair lead) {
  if (!KeyFollowsAtOnce()) return lead;
  KeyPair next = NextPair();
  for (const auto& l : kUtf8Letters)
    if (l.lead == lead.ch && l.next == next.ch) return KeyPair{l.maz, l.scan};
  PushKeyFront(next.ch, next.scan);
  return lead;
}

// Scan of each small Polish letter, in the order of the Mazovia letters below.
constexpr unsigned char kLetterScan[9] = {30, 46, 18, 38, 49, 24, 31, 45, 44};  // ą ć ę ł ń ó ś ź ż
constexpr unsigned char kMazSmall[9] = {0x86, 0x8D, 0x91, 0x92, 0xA4, 0xA2, 0x9E, 0xA6, 0xA7};

// A letter typed in ISO 8859-2 or Windows 1250 arrives as its byte with the
// scan the decoder gives that byte; it leaves as Mazovia with its letter's scan.
KeyPair SingleByteLetter(KeyPair k) {
  if (k.ch < 0x80 || k.scan != KeyOfByte(k.ch).scan) return k;
  unsigned char maz = Term().inCodePage == 2 ? Cp1250ToMaz(k.ch) : IsoToMaz(k.ch);
  if (maz == k.ch || !IsPolishLetter(maz)) return k;
  unsigned char small = MazLowCase(maz);
  for (int i = 0; i < 9; ++i)
    if (kMazSmall[i] == small) return KeyPair{maz, kLetterScan[i]};
  return k;
}

void ShowCapsIndicator(bool on) {
  uint16_t wmin = WindowMinPacked(), wmax = WindowMaxPacked();
  int x = WhereX(), y = WhereY();
  unsigned char attr = CurrentAttr();
  Window(1, 1, kScreenCols, kScreenRows);
  GotoXY(2, 1);
  if (on) {
    g_capsCellAttr = AttrAtCursor();
    TextAttr(kAttrPrompt);
    PutCh(2, 1, 237);
  } else {
    TextAttr(g_capsCellAttr);
    PutCh(2, 1, ' ');
  }
  WindowPacked(wmin, wmax);
  GotoXY(x, y);
  TextAttr(attr);
}

constexpr KeyPair kCtrlV{22, 47};

// keepPaste: an editor reads Ctrl+V as the paste it is; everywhere else it is End.
KeyPair FixedTranslation(KeyPair k, bool keepPaste) {
  if (k == KeyPair{5, 18}) return KeyPair{10, 28};
  if (k == kCtrlV && !keepPaste) return KeyPair{224, 79};
  if (k == KeyPair{2, 48}) return KeyPair{127, 14};
  if (k == KeyPair{0, 6} || k == KeyPair{28, 43}) return KeyPair{224, 147};
  if (k == KeyPair{0, 165} || k == KeyPair{0, 20}) return KeyPair{0, 15};
  if (k == KeyPair{12, 38}) {
    g_caps = !g_caps;
    ShowCapsIndicator(g_caps);
  }
  return k;
}

// Steps that every key read passes: modifiers on Tab, input code pages,
// fixed translations.
KeyPair ReadTranslated(bool keepPaste) {
  KeyPair k = NextPair();
  if (k == keys::kTab && (ShiftState() & 5)) k = keys::kShiftTab;
  if (Term().outCodePage == 2 && k.ch >= 134 && k.ch <= 228 && k.scan < 54) k.ch = Latin2ToMaz(k.ch);
  if (Term().inCodePage == 1) {
    if (IsUtf8Lead(k)) k = CombineUtf8(k);
  } else {
    k = SingleByteLetter(k);
  }
  return FixedTranslation(k, keepPaste);
}

bool IsExtended(KeyPair k, unsigned char scan) { return (k.ch == 0 || k.ch == 224) && k.scan == scan; }

// The key after the grave accent alone.
KeyPair PrefixedKey(KeyPair k) {
  if (IsExtended(k, 72)) return KeyPair{224, 141};
  if (IsExtended(k, 80)) return KeyPair{224, 145};
  if (IsExtended(k, 82)) return KeyPair{224, 146};
  if (IsExtended(k, 83)) return KeyPair{224, 147};
  if (IsExtended(k, 73)) return KeyPair{0, 153};
  if (IsExtended(k, 81)) return KeyPair{0, 161};
  if (k == keys::kBackspace) return KeyPair{127, 14};
  if (k == keys::F(1)) return keys::F(11);
  if (k == keys::F(2)) return keys::F(12);
  if (k.scan == 15) return keys::kShiftTab;
  return k;
}

KeyPair FunctionKeyScan(KeyPair k, int first10, int first11) {
  if (k.ch == 0 && k.scan >= 59 && k.scan <= 68) return KeyPair{0, static_cast<unsigned char>(first10 + k.scan - 59)};
  if (k.ch == 0 && (k.scan == 133 || k.scan == 134))
    return KeyPair{0, static_cast<unsigned char>(first11 + k.scan - 133)};
  return k;
}

KeyPair ControlKey(KeyPair k) {
  static constexpr struct { unsigned char from, to; } kMoves[] = {
      {71, 119}, {79, 117}, {72, 141}, {80, 145}, {73, 132}, {81, 118}, {83, 147}};
  for (const auto& m : kMoves)
    if (IsExtended(k, m.from)) return KeyPair{k.ch, m.to};
  if (k == keys::kBackspace) return KeyPair{127, 14};
  if (k == keys::kTab) return KeyPair{0, 148};
  if (k == keys::kEnter) return KeyPair{10, 28};
  return FunctionKeyScan(k, 94, 137);
}

// After ` A, ` S or ` C the third key gets that modifier.
KeyPair ModifiedKey(unsigned char modifierScan, KeyPair k) {
  if (modifierScan == 30) return FunctionKeyScan(k, 104, 139);
  if (modifierScan == 31) return k == keys::kTab ? keys::kShiftTab : FunctionKeyScan(k, 84, 135);
  return ControlKey(k);
}

// A key with the prefix key's combinations resolved.
KeyPair ReadKeyPair(bool keepPaste) {
  KeyPair k = ReadTranslated(keepPaste);
  if (k != kGrave) return k;
  KeyPair next = ReadTranslated(keepPaste);
  if (next.scan != 30 && next.scan != 31 && next.scan != 46) return PrefixedKey(next);
  return ModifiedKey(next.scan, ReadTranslated(keepPaste));
}

constexpr unsigned char kPolishAltScans[9] = {18, 24, 30, 31, 38, 44, 45, 46, 49};
constexpr unsigned char kPolishAltLetters[9] = {0x91, 0xA2, 0x86, 0x9E, 0x92, 0xA7, 0xA6, 0x8D, 0xA4};

}  // namespace

void KeyboardReset() {
  g_ring = KeyRing{};
  g_caps = false;
}

bool KeyPressed() { return g_ring.count > 0 || tui_detail::TerminalKeyWaiting(0); }

KeyPair ReadKeyRaw() { return ReadKeyPair(false); }

void ReadKeyRaw(unsigned char& ch, unsigned char& scan) {
  KeyPair k = ReadKeyRaw();
  ch = k.ch;
  scan = k.scan;
}

KeyPair ReadKeyEdit() {
  KeyPair k = ReadKeyPair(true);
  if (unsigned char letter = k.ch == 0 ? PolishAltLetter(k.scan) : 0)
    k.ch = (ShiftState() & 1) ? MazUpCase(letter) : letter;
  return k;
}

KeyPair ReadKeyUpper() {
  KeyPair k = ReadKeyRaw();
  if (unsigned char letter = k.ch == 0 ? PolishAltLetter(k.scan) : 0) k.ch = MazUpCase(letter);
  return k;
}

bool PushKey(unsigned char ch, unsigned char scan) {
  if (g_ring.count == kKeyBufferSize) return false;
  g_ring.keys[(g_ring.read + g_ring.count) % kKeyBufferSize] = KeyPair{ch, scan};
  ++g_ring.count;
  return true;
}

bool PushKeyFront(unsigned char ch, unsigned char scan) {
  if (g_ring.count == kKeyBufferSize) return false;
  g_ring.read = (g_ring.read + kKeyBufferSize - 1) % kKeyBufferSize;
  g_ring.keys[g_ring.read] = KeyPair{ch, scan};
  ++g_ring.count;
  return true;
}

int KeysBuffered() { return g_ring.count; }

void DiscardPendingKeys() {
  g_ring.count = 0;
  tui_detail::DiscardTerminalInput();
}

void Beep(int) {}

void SetKeyIdleHook(void (*hook)()) { g_idleHook = hook; }

bool CapsIndicator() { return g_caps; }

unsigned char KeyCodeOf(KeyPair key) {
  if (key == keys::kTab) return 250;
  if (key == keys::kShiftTab) return 242;
  if (key.ch != 0 && key.ch != 224) return key.ch;
  int s = key.scan;
  if (s == 25 || s == 37 || (s >= 59 && s <= 68) || (s >= 71 && s <= 73) || s == 75 || s == 77 ||
      (s >= 79 && s <= 83))
    s += 170;
  else if (s == 111 || (s >= 115 && s <= 119))
    s += 109;
  return s == 237 ? 221 : static_cast<unsigned char>(s);
}

unsigned char PolishAltLetter(unsigned char scan) {
  for (int i = 0; i < 9; ++i)
    if (kPolishAltScans[i] == scan) return kPolishAltLetters[i];
  return 0;
}

int ShiftState() {
#ifdef __linux__
  int fd = tui_detail::InputFd();
  if (Term().kind != 3 || fd < 0 || !isatty(fd)) return 0;
  char arg = TIOCL_GETSHIFTSTATE;
  if (ioctl(fd, TIOCLINUX, &arg) != 0) return 0;
  return static_cast<unsigned char>(arg);
#else
  return 0;
#endif
}

const ShortText& ClipboardText() { return g_clipboard; }
void ClipboardSet(const ShortText& text) { g_clipboard = text; }
