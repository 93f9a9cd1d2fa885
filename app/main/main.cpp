// klote: the interactive application. It runs in the firm's directory and
// serves every menu entry in this one process.
#include "app/startup.h"

int main(int argc, char* argv[]) {
  AppState state;
  (void)RunStart(state, argc, argv);
  EndProgram();
  return 0;
}
