#include <windows.h>

#include <commctrl.h>

#include <cmath>

#include "ui/windows/NativeWindowImpl.h"

// The system's control tells a screen reader how far the work is. What is seen of it is drawn here: the
// system's own drawing knows no text, and moves an endless bar by timer messages, which wait while the
// program works.

namespace {

constexpr int kRange = 100;

struct TBarImpl : TNativeControlImpl {
  double Begin = 0;
  double End = 0;
  WNDPROC SystemProc = nullptr;

  static LRESULT CALLBACK BarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
};

TBarImpl& Bar(TNativeWindow::TImpl& impl) {
  return static_cast<TBarImpl&>(impl);
}

LRESULT CALLBACK TBarImpl::BarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_ERASEBKGND) return 1;
  TImpl* const impl = Of(window);
  if (impl == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  const TBarImpl& self = Bar(*impl);
  if (message == WM_PAINT) {
    const TPaintScope paint(window);
    RECT area{};
    ::GetClientRect(window, &area);
    PaintProgress(paint.Dc(), area, self.Begin, self.End, Wide(self.Text), self.Font.Get());
    return 0;
  }
  return ::CallWindowProcW(self.SystemProc, window, message, wParam, lParam);
}

}  // namespace

TNativeBar::TNativeBar(const TNativeWindow& parent) : TNativeControl(std::make_unique<TBarImpl>()) {
  fImpl->Create(PROGRESS_CLASSW, TNativeControlImpl::kStyle, 0, reinterpret_cast<HWND>(parent.Handle()));
  const HWND window = fImpl->Window.Get();
  Bar(*fImpl).SystemProc = reinterpret_cast<WNDPROC>(
      ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&TBarImpl::BarProc)));
  ::SendMessageW(window, PBM_SETRANGE32, 0, kRange);
}

void TNativeBar::SetBar(double begin, double end) {
  Bar(*fImpl).Begin = begin;
  Bar(*fImpl).End = end;
  const HWND window = fImpl->Window.Get();
  if (begin == 0) ::SendMessageW(window, PBM_SETPOS, static_cast<WPARAM>(std::lround(end * kRange)), 0);
  ::InvalidateRect(window, nullptr, FALSE);
}
