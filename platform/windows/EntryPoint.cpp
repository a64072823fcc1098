#include "platform/System.h"

#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
  // A drive without a medium is one without the file, nothing to ask the user about.
  ::SetErrorMode(SEM_FAILCRITICALERRORS);
  // A single call of the component may take longer than the system's patience. The pale copy that it would
  // put in the window's place offers to end the program, in the middle of writing a document.
  ::DisableProcessWindowsGhosting();
  return ProgramMain();
}
