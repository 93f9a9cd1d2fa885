// klote: the interactive application. It runs in the firm's directory and
// serves every menu entry in this one process.
#include "app/startup.h"

int main() {
  AppState state;
  (void)RunStart(state);
  EndProgram();
  return 0;
}
