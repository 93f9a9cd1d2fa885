// The screen's part of the DBF layer: the progress of appending and the box
// of an error that ends the program.
#include <cstdlib>

#include "base/mazovia.h"
#include "exchange/dbf/dbf.h"
#include "tui/msgbox.h"
#include "tui/screen.h"
#include "tui/term.h"

namespace {

// The bar moves at most a hundred times, however long the file.
void ShowAppendProgress(void* context, int64_t done, int64_t total) {
  const int64_t step = total / 100 > 0 ? total / 100 : 1;
  if (done % step == 0 || done == total) ShowProgress(*static_cast<ProgressBar*>(context), done, total);
}

}  // namespace

int DbfAppendFrom(const ShortText& source, const ShortText& target, bool showProgress) {
  if (!showProgress) return DbfAppendFromFiles(source, target);
  const ShortText text =
      "Dopisywanie DBF@z: "_mz + source + "@do: "_mz + target + "@[          /          ]"_mz;
  ScreenCopyPtr saved;
  ScreenSave(saved);
  MessageBox(text, 2);
  ProgressBar bar = FindProgressBar(text);
  const int result = DbfAppendFromFiles(source, target, ShowAppendProgress, &bar);
  ScreenRestore(saved);
  return result;
}

void DbfStop(int code, bool fromOutside, bool dataUnsafe) {
  MessageBox(DbfStopText(code, fromOutside, dataUnsafe), 0);
  TermFlush();
  std::exit(0);
}
