#include "fiscal/elzab_stream.h"

#include "base/filevar.h"
#include "base/mazovia.h"
#include "fiscal/elzab.h"
#include "fiscal/elzab_line.h"
#include "tui/msgbox.h"

namespace {

constexpr char kSentMark = '*';
// Bytes of a command that must go before a dead line may be resumed.
constexpr int kBytesBeforeResume = 3;

bool TimedOut() { return ElzabLine().timedOut; }

std::string ReadAll(const ShortText& path, bool& ok) {
  FileVar f;
  AssignFile(f, path);
  std::string bytes;
  ok = f.Reset(kFileModeReadOnly) == 0;
  char block[512];
  for (int got = 1; ok && got > 0;) {
    ok = f.Read(block, sizeof block, got) == 0;
    if (ok) bytes.append(block, static_cast<std::size_t>(got));
  }
  return bytes;
}

void MarkSent(const ShortText& path) {
  FileVar f;
  AssignFile(f, path);
  if (f.Reset(kFileModeReadWrite) == 0) (void)f.Write(&kSentMark, 1);
}

void ShowLineFailure(const ShortText& step) {
  MessageBox(step + "@Błąd łącza szeregowego !@Operacja nie będzie zapisana w pamięci drukarki fiskalnej."_mz, 0);
}

// The operator's choice after a stop: Enter resumes, Esc gives up.
bool OperatorResumes(const ShortText& text) {
  return MessageBox(text + "@Usuń lepiej usterkę, ale jeżeli chcesz przerwać i nie zapisywać operacji"_mz +
                        "@w pamięci drukarki, wciśnij ╤╥û"_mz,
                    1);
}

enum class Sent { kAccepted, kRefused, kLineDead, kGivenUp };

// Sends the command byte by byte and reads its response. A dead line before the
// third byte is final; later the operator may resume (the byte goes again).
Sent SendCommand(int port, const std::string& command, ShortText& step) {
  int resumes = 0;
  step = "Zapis do portu.";
  for (std::size_t i = 0; i < command.size(); ++i) {
    ElzabSendByte(port, static_cast<uint8_t>(command[i]));
    if (!TimedOut()) continue;
    if (static_cast<int>(i) < kBytesBeforeResume) return Sent::kLineDead;
    step = resumes++ == 0 ? "Zapis do portu - wznowienie 1." : "Zapis do portu - wznowienie 2.";
    if (!OperatorResumes(step + "@Błąd łącza szeregowego !"_mz)) return Sent::kGivenUp;
    --i;
  }
  step = "Odczyt z portu.";
  uint8_t answer = ElzabReadResponse(port);
  if (TimedOut()) {
    step = "Odczyt z portu - wznowienie 3.";
    if (!OperatorResumes(step + "@Błąd łącza szeregowego !"_mz)) return Sent::kGivenUp;
    answer = ElzabReadResponse(port);
    if (TimedOut()) return Sent::kLineDead;
  }
  return answer == kElzabNak ? Sent::kRefused : Sent::kAccepted;
}

// The cancel after a stop inside a receipt, so that the printer is not left in it.
void CancelOpenReceipt(int port) {
  ElzabPurge(port);
  ElzabSendText(port, ElzabCancelCommand());
  if (!TimedOut()) (void)ElzabReadResponse(port);
  ElzabPurge(port);
}

// One command until it is accepted; a refusal is shown with the printer's reason
// and Enter sends it again. False when the operator gave up or the line died.
bool PlayCommand(int port, const std::string& command) {
  for (;;) {
    ShortText step;
    switch (SendCommand(port, command, step)) {
      case Sent::kAccepted: return true;
      case Sent::kLineDead: ShowLineFailure(step); return false;
      case Sent::kGivenUp: return false;
      case Sent::kRefused: break;
    }
    if (!OperatorResumes("Błąd drukarki ELZAB.@("_mz + ElzabStatusText(port) + ")")) return false;
  }
}

}  // namespace

int ElzabWriteStream(const ShortText& path, const std::vector<std::string>& commands) {
  std::string bytes;
  for (const std::string& c : commands) {
    bytes += static_cast<char>(c.size());
    bytes += c;
  }
  FileVar f;
  AssignFile(f, path);
  int rc = f.Rewrite();
  if (rc == 0) rc = f.Write(bytes.data(), static_cast<int>(bytes.size()));
  const int closed = f.Close();
  return rc != 0 ? rc : closed;
}

bool ElzabParseStream(const std::string& bytes, std::vector<std::string>& commands) {
  commands.clear();
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    const std::size_t length = static_cast<unsigned char>(bytes[pos++]);
    if (pos + length > bytes.size()) return false;
    commands.push_back(bytes.substr(pos, length));
    pos += length;
  }
  return true;
}

bool ElzabPlayStream(int port, const ShortText& path) {
  bool read = false;
  const std::string bytes = ReadAll(path, read);
  // A receipt's first command is six bytes long, so its length byte is never the mark.
  if (read && !bytes.empty() && bytes[0] == kSentMark) return true;
  std::vector<std::string> commands;
  if (!read || !ElzabParseStream(bytes, commands)) return false;
  ElzabOpen(port);
  if (TimedOut()) return ShowLineFailure("Inicjacja łącza."_mz), false;
  ElzabPurge(port);
  if (TimedOut()) return ShowLineFailure("Czyszczenie portu."), false;
  for (const std::string& command : commands) {
    if (PlayCommand(port, command)) continue;
    CancelOpenReceipt(port);
    return false;
  }
  ElzabPurge(port);
  MarkSent(path);
  return true;
}
