#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cmath>

#include "ui/windows/NativeWindowImpl.h"

// The progress bar: the system's control tells a screen reader how far it is; what is seen of it is drawn
// here, as the system's own knows no text, and moves its endless bar by timer messages, which wait while the
// program works.

namespace {

constexpr int kRange = 100;

}  // namespace

void TNativeWindow::TImpl::BecomeProgressBar() {
  const LONG_PTR own = reinterpret_cast<LONG_PTR>(&ProgressBarProc);
  SystemProc = reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(Window.Get(), GWLP_WNDPROC, own));
  ::SendMessageW(Window.Get(), PBM_SETRANGE32, 0, kRange);
}

LRESULT CALLBACK TNativeWindow::TImpl::ProgressBarProc(HWND window, UINT message, WPARAM wParam,
                                                       LPARAM lParam) {
  const TImpl* const self = Of(window);
  if (self == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  if (message == WM_ERASEBKGND) return 1;
  if (message == WM_PAINT) {
    const TPaintScope paint(window);
    RECT area{};
    ::GetClientRect(window, &area);
    PaintProgress(paint.Dc(), area, self->BarBegin, self->BarEnd, Wide(self->Text), self->Font.Get());
    return 0;
  }
  return ::CallWindowProcW(self->SystemProc, window, message, wParam, lParam);
}

void TNativeWindow::SetBar(double begin, double end) {
  fImpl->BarBegin = begin;
  fImpl->BarEnd = end;
  ::SendMessageW(fImpl->Window.Get(), PBM_SETPOS, static_cast<WPARAM>(std::lround(end * kRange)), 0);
  ::InvalidateRect(fImpl->Window.Get(), nullptr, FALSE);
}
