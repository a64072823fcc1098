#include "platform/EntryPoint.h"

#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
  return ProgramMain();
}
