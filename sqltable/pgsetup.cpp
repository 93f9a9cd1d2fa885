// Start of the connection: where the parameters come from and in which order
// they are read. The parameter file lies in the user's home, a Unix path that
// the DOS path rules would fold to lower case: it is opened as it stands.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "base/csv.h"
#include "sqltable/pgconn.h"
#include "sqltable/pglib.h"

namespace {

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

enum class LineRead { Ok, End, Error };

// One line without its end; the end of the file reads as an empty line.
LineRead ReadLine(std::FILE* f, std::string& line) {
  line.clear();
  int c;
  while ((c = std::fgetc(f)) != EOF && c != '\n') line += static_cast<char>(c);
  if (std::ferror(f)) return LineRead::Error;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return c == EOF && line.empty() ? LineRead::End : LineRead::Ok;
}

// "pxengine.cfg" may name the parameter file, and with a second field of 1
// asks that alpha values lose their trailing blanks.
std::string ParameterFileName() {
  std::string name;
  if (File f{std::fopen("pxengine.cfg", "r")}) {
    std::string line;
    (void)ReadLine(f.get(), line);
    const ShortText first(line);
    name = first.Str();
    if (CsvFieldCount(first) > 1) {
      if (CsvFieldInt(first, 2) == 1) PGTrimAlpha = true;
      name = CsvField(first, 1).Str();
    }
  }
  if (name.empty()) {
    const char* home = std::getenv("HOME");
    name = std::string(home ? home : "") + "/orbel-sql/conn_parm.cfg";
  }
  return name;
}

// The six lines host, hostaddr, port, user, password, dbname; false when the
// file cannot be opened or read. The password stays in memory only.
bool ReadParameters(const std::string& fileName, std::string lines[6]) {
  File f{std::fopen(fileName.c_str(), "r")};
  if (!f) return false;
  for (int i = 0; i < 6; ++i) {
    if (ReadLine(f.get(), lines[i]) == LineRead::Error) {
      lines[i].clear();
      return false;
    }
  }
  return true;
}

}  // namespace

int16_t PGSetDefaults() {
  PGLastOp = "PGSetDefaults:@";
  std::string lines[6];
  if (!ReadParameters(ParameterFileName(), lines)) return kPGNoParameters;
  return PGConnectWithInfo(PGKeywordString(lines));
}
