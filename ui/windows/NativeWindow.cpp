#include "ui/NativeWindow.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "resources/Icons.h"
#include "ui/Application.h"
#include "ui/windows/Painting.h"
#include "ui/windows/WindowClass.h"

namespace {

constexpr TextView kPanelClass = u"TPanel";
constexpr TextView kLabelClass = u"TLabel";

struct TStyle {
  DWORD Style;
  DWORD ExtendedStyle;
};

/// WS_SYSMENU draws nothing on a window without a frame; it gives the task bar button its command to close.
constexpr TStyle StyleOf(TWindowKind kind) {
  if (kind == TWindowKind::StatusForm)
    return {WS_POPUP | WS_SYSMENU | WS_CLIPCHILDREN, WS_EX_TOPMOST | WS_EX_APPWINDOW};
  return {WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0};
}

HICON ProgramIcon() {
  return ::LoadIconW(ProgramInstance(), MAKEINTRESOURCEW(ICON_PROGRAM));
}

}  // namespace

/// The system finds it through the window's user data.
struct TNativeWindow::TImpl {
  TWindowEvents Events;
  UnicodeString Text;  // beside the window's own copy: painting must not ask for memory
  TFontHandle Font;
  int Bevel = 1;
  TWindow Window;  // the first to go: its last messages still reach the rest

  static TImpl* Of(HWND window) {
    return reinterpret_cast<TImpl*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  }

  static LRESULT CALLBACK FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  template <void (TImpl::*kPaint)(HDC dc, const RECT& area) const>
  static LRESULT CALLBACK ControlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  void PaintAsPanel(HDC dc, const RECT& area) const { PaintPanel(dc, area, Bevel); }
  void PaintAsLabel(HDC dc, const RECT& area) const { PaintCentredText(dc, area, Wide(Text), Font.Get()); }

  static UnicodeString ClassOf(TWindowKind kind, TextView formClass);
};

/// The name of the kind's window class, made known to the system. The label is no STATIC of the system's:
/// under the manifest that one loads the common controls, which cost a start more than anything else here.
UnicodeString TNativeWindow::TImpl::ClassOf(TWindowKind kind, TextView formClass) {
  switch (kind) {
    case TWindowKind::Panel:
      RegisterWindowClass(kPanelClass, ControlProc<&TImpl::PaintAsPanel>);
      return UnicodeString(kPanelClass);
    case TWindowKind::Label:
      RegisterWindowClass(kLabelClass, ControlProc<&TImpl::PaintAsLabel>);
      return UnicodeString(kLabelClass);
    case TWindowKind::StatusForm:
      break;
  }
  RegisterWindowClass(formClass, FormProc, ProgramIcon());
  return UnicodeString(formClass);
}

LRESULT CALLBACK TNativeWindow::TImpl::FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  TImpl* const self = Of(window);
  if (self != nullptr && message == WM_CLOSE) {
    Application->Guard([self] {
      if (self->Events.OnClose) self->Events.OnClose();
    });
    return 0;
  }
  if (self != nullptr && message == WM_DPICHANGED) {
    // The rectangle that the system suggests here is left alone: it would move the form off its place.
    Application->Guard([self, dpi = int{HIWORD(wParam)}] {
      if (self->Events.OnDpiChanged) self->Events.OnDpiChanged(dpi);
    });
    return 0;
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

template <void (TNativeWindow::TImpl::*kPaint)(HDC dc, const RECT& area) const>
LRESULT CALLBACK TNativeWindow::TImpl::ControlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const TImpl* const self = Of(window);
  if (message == WM_ERASEBKGND) return 1;
  if (self != nullptr && message == WM_GETFONT) return reinterpret_cast<LRESULT>(self->Font.Get());
  if (self != nullptr && message == WM_PAINT) {
    const TPaintScope paint(window);
    RECT area{};
    ::GetClientRect(window, &area);
    (self->*kPaint)(paint.Dc(), area);
    return 0;
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

TNativeWindow::TNativeWindow(TWindowKind kind, TextView className, TNativeWindow* parent,
                             TWindowEvents events)
    : fImpl(std::make_unique<TImpl>()) {
  fImpl->Events = std::move(events);
  const UnicodeString windowClass = TImpl::ClassOf(kind, className);
  const TStyle style = StyleOf(kind);
  const HWND parentWindow = parent != nullptr ? parent->fImpl->Window.Get() : nullptr;
  const HWND window = ::CreateWindowExW(style.ExtendedStyle, Wide(windowClass), L"", style.Style, 0, 0, 0, 0,
                                        parentWindow, nullptr, ProgramInstance(), nullptr);
  if (window == nullptr) throw LastSystemError();
  fImpl->Window.Reset(window);
  ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(fImpl.get()));
}

TNativeWindow::~TNativeWindow() = default;

TWindowHandle TNativeWindow::Handle() const {
  return reinterpret_cast<TWindowHandle>(fImpl->Window.Get());
}

void TNativeWindow::SetBounds(const TRect& bounds) {
  ::SetWindowPos(fImpl->Window.Get(), nullptr, bounds.Left, bounds.Top, bounds.Width(), bounds.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void TNativeWindow::SetText(TextView text) {
  fImpl->Text = text;
  ::SetWindowTextW(fImpl->Window.Get(), Wide(fImpl->Text));
  ::InvalidateRect(fImpl->Window.Get(), nullptr, FALSE);
}

void TNativeWindow::SetFont(const TFont& font, int dpi) {
  LOGFONTW description{};
  description.lfHeight = -ScaledToDpi(font.CharHeight, dpi);  // negative: without the leading
  description.lfWeight = font.Bold ? FW_BOLD : FW_NORMAL;
  description.lfCharSet = DEFAULT_CHARSET;
  CopyText(description.lfFaceName, font.Name);
  fImpl->Font.Reset(::CreateFontIndirectW(&description));
  fImpl->Bevel = std::max(1, ScaledToDpi(1, dpi));
  ::InvalidateRect(fImpl->Window.Get(), nullptr, FALSE);
}

void TNativeWindow::Show() {
  ::SetWindowPos(fImpl->Window.Get(), HWND_TOPMOST, 0, 0, 0, 0,
                 SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void TNativeWindow::Repaint() {
  ::RedrawWindow(fImpl->Window.Get(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  ::GdiFlush();  // what is batched would stay invisible while the task runs
}
