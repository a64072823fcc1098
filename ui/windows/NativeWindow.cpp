#include "ui/NativeWindow.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "ui/Application.h"
#include "ui/windows/Painting.h"
#include "ui/windows/WindowClass.h"

namespace {

constexpr TextView kPanelClass = u"TPanel";
constexpr TextView kLabelClass = u"STATIC";  // what screen readers know as a text
constexpr WORD kProgramIcon = 1;             // in the resources

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
  return ::LoadIconW(ProgramInstance(), MAKEINTRESOURCEW(kProgramIcon));
}

/// The name of the kind's window class, made known if it is one of ours.
UnicodeString ClassOf(TWindowKind kind, TextView formClass, WNDPROC formProc, WNDPROC panelProc) {
  if (kind == TWindowKind::Label) return UnicodeString(kLabelClass);
  const bool form = kind == TWindowKind::StatusForm;
  const TextView name = form ? formClass : kPanelClass;
  RegisterWindowClass(name, form ? formProc : panelProc, form ? ProgramIcon() : nullptr);
  return UnicodeString(name);
}

}  // namespace

/// The system finds it through the window's user data (forms, panels) or the subclass's reference (labels).
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
  static LRESULT CALLBACK PanelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK LabelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                    DWORD_PTR reference);

  void PaintPanelWindow(HWND window) const noexcept;
  void PaintLabelWindow(HWND window) const noexcept;
};

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

LRESULT CALLBACK TNativeWindow::TImpl::PanelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_ERASEBKGND) return 1;
  if (message != WM_PAINT || Of(window) == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  Of(window)->PaintPanelWindow(window);
  return 0;
}

LRESULT CALLBACK TNativeWindow::TImpl::LabelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                                 UINT_PTR id, DWORD_PTR reference) {
  if (message == WM_NCDESTROY) ::RemoveWindowSubclass(window, LabelProc, id);
  if (message == WM_ERASEBKGND) return 1;
  if (message == WM_PAINT) {
    reinterpret_cast<const TImpl*>(reference)->PaintLabelWindow(window);
    return 0;
  }
  if (message == WM_SETTEXT) {
    // Past the control itself, which would draw the new text its own way at once.
    const LRESULT result = ::DefWindowProcW(window, message, wParam, lParam);
    ::InvalidateRect(window, nullptr, FALSE);
    return result;
  }
  return ::DefSubclassProc(window, message, wParam, lParam);
}

void TNativeWindow::TImpl::PaintPanelWindow(HWND window) const noexcept {
  const TPaintScope paint(window);
  RECT area{};
  ::GetClientRect(window, &area);
  PaintPanel(paint.Dc(), area, Bevel);
}

void TNativeWindow::TImpl::PaintLabelWindow(HWND window) const noexcept {
  const TPaintScope paint(window);
  RECT area{};
  ::GetClientRect(window, &area);
  PaintCentredText(paint.Dc(), area, Wide(Text), Font.Get());
}

TNativeWindow::TNativeWindow(TWindowKind kind, TextView className, TNativeWindow* parent,
                             TWindowEvents events)
    : fImpl(std::make_unique<TImpl>()) {
  fImpl->Events = std::move(events);
  const UnicodeString windowClass = ClassOf(kind, className, TImpl::FormProc, TImpl::PanelProc);
  const TStyle style = StyleOf(kind);
  const HWND parentWindow = parent != nullptr ? parent->fImpl->Window.Get() : nullptr;
  const HWND window = ::CreateWindowExW(style.ExtendedStyle, Wide(windowClass), L"", style.Style, 0, 0, 0, 0,
                                        parentWindow, nullptr, ProgramInstance(), nullptr);
  if (window == nullptr) throw LastSystemError();
  fImpl->Window.Reset(window);
  if (kind == TWindowKind::Label) {
    const auto reference = reinterpret_cast<DWORD_PTR>(fImpl.get());
    if (!::SetWindowSubclass(window, TImpl::LabelProc, 0, reference)) throw LastSystemError();
  } else {
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(fImpl.get()));
  }
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
}

void TNativeWindow::SetFont(const TFont& font, int dpi) {
  LOGFONTW description{};
  description.lfHeight = -ScaledToDpi(font.CharHeight, dpi);  // negative: without the leading
  description.lfWeight = font.Bold ? FW_BOLD : FW_NORMAL;
  description.lfCharSet = DEFAULT_CHARSET;
  CopyText(description.lfFaceName, font.Name);
  TFontHandle created(::CreateFontIndirectW(&description));
  ::SendMessageW(fImpl->Window.Get(), WM_SETFONT, reinterpret_cast<WPARAM>(created.Get()), FALSE);
  fImpl->Font = std::move(created);
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
