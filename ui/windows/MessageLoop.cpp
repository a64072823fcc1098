#include "ui/MessageLoop.h"

#include <windows.h>

#include "platform/windows/Wide.h"
#include "ui/Application.h"

void RunMessageLoop() {
  MSG message;
  // The flag and not the quit message decides: a modal loop of the component could have swallowed the
  // message.
  while (!Application->Terminated() && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
}

void PostQuit() {
  ::PostQuitMessage(0);
}

void ShowMessageBox(const TNativeWindow* owner, TextView text, TextView caption, TBoxIcon icon) {
  const HWND ownerWindow = owner != nullptr ? reinterpret_cast<HWND>(owner->Handle()) : nullptr;
  const UINT style = MB_OK | (icon == TBoxIcon::Error ? MB_ICONERROR : 0);
  ::MessageBoxW(ownerWindow, Wide(UnicodeString(text)), Wide(UnicodeString(caption)), style);
}
