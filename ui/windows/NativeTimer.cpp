#include "ui/NativeTimer.h"

#include <windows.h>

#include <map>
#include <utility>

#include "ui/Application.h"
#include "ui/windows/WindowClass.h"

namespace {

constexpr TextView kClassName = u"TVelmoraTimers";

/// The running timers and the window that hears of them: a message-only one, so that it has no place in the Z
/// order and no other program finds it.
struct TTimers {
  TWindow Window;
  std::map<TTimerId, std::function<void()>> Running;
  TTimerId LastId = 0;
};

TTimers& Timers() {
  static TTimers timers;
  return timers;
}

LRESULT CALLBACK TimerWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_TIMER) return ::DefWindowProcW(window, message, wParam, lParam);
  Application->Guard([wParam] {
    // A message may still be on its way when its timer has been stopped.
    const auto found = Timers().Running.find(wParam);
    if (found == Timers().Running.end()) return;
    const std::function<void()> onElapsed = found->second;  // the event may stop its own timer
    onElapsed();
  });
  return 0;
}

HWND TimerWindow() {
  TWindow& window = Timers().Window;
  if (!window) {
    RegisterWindowClass(kClassName, TimerWindowProc);
    window.Reset(::CreateWindowExW(0, Wide(kClassName.data()), L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                   ProgramInstance(), nullptr));
    if (!window) throw LastSystemError();
  }
  return window.Get();
}

}  // namespace

TTimerId StartNativeTimer(int milliseconds, std::function<void()> onElapsed) {
  const HWND window = TimerWindow();
  const TTimerId id = ++Timers().LastId;
  Timers().Running.emplace(id, std::move(onElapsed));
  if (::SetTimer(window, id, static_cast<UINT>(milliseconds), nullptr) == 0) {
    const EError error = LastSystemError();
    Timers().Running.erase(id);
    throw error;
  }
  return id;
}

void StopNativeTimer(TTimerId id) {
  if (Timers().Running.erase(id) != 0) ::KillTimer(Timers().Window.Get(), id);
}
