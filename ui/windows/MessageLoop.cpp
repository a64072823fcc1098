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

void RunModalLoop(const TNativeForm& dialog, const std::function<bool()>& ended) {
  const HWND window = reinterpret_cast<HWND>(dialog.Handle());
  const HWND owner = ::GetWindow(window, GW_OWNER);
  ::EnableWindow(owner, FALSE);
  MSG message;
  while (!ended() && !Application->Terminated() && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (::IsDialogMessageW(window, &message)) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  // Before the dialog goes: the system then activates its owner and not another program.
  ::EnableWindow(owner, TRUE);
}

void KeepAlive() noexcept {
  constexpr ULONGLONG kPause = 50;
  static ULONGLONG last = 0;
  const ULONGLONG now = ::GetTickCount64();
  if (now - last < kPause) return;
  last = now;
  MSG message;
  ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

void DiscardInput() noexcept {
  struct {
    UINT First;
    UINT Last;
  } constexpr kInput[] = {{WM_KEYFIRST, WM_KEYLAST},
                          {WM_MOUSEFIRST, WM_MOUSELAST},
                          {WM_NCLBUTTONDOWN, WM_NCXBUTTONDBLCLK},
                          {WM_NCPOINTERUPDATE, WM_POINTERHWHEEL}};
  MSG message;
  for (const auto& range : kInput) {
    while (::PeekMessageW(&message, nullptr, range.First, range.Last, PM_REMOVE)) {
      // Comes through whatever range is asked for.
      if (message.message == WM_QUIT) return ::PostQuitMessage(static_cast<int>(message.wParam));
    }
  }
}

void PostQuit() {
  ::PostQuitMessage(0);
}

void ShowMessageBox(const TNativeForm* owner, TextView text, TextView caption, TBoxIcon icon) {
  const HWND ownerWindow = owner != nullptr ? reinterpret_cast<HWND>(owner->Handle()) : nullptr;
  const UINT style = MB_OK | (icon == TBoxIcon::Error ? MB_ICONERROR : 0);
  ::MessageBoxW(ownerWindow, Wide(UnicodeString(text)), Wide(UnicodeString(caption)), style);
}
