#include <windows.h>

#include <optional>
#include <utility>

#include "ui/Application.h"
#include "ui/Cursor.h"
#include "ui/windows/NativeWindowImpl.h"

// Status forms and dialogs. A dialog is a window of our own and none of the system's dialog manager: what a
// dialog owes to IsDialogMessage is done here.

/// Handlers answer nothing where the system's own handling is wanted as well.
struct TNativeFormImpl : TNativeWindow::TImpl {
  TNativeFormImpl(TFormKind kind, TFormEvents events) : Kind(kind), Events(std::move(events)) {}

  TFormKind Kind;
  TFormEvents Events;
  int Dpi = kDesignDpi;
  SIZE LeastSize{};          // of the client area, at kDesignDpi
  HWND LastFocus = nullptr;  // the control that gets the focus when the form becomes active
  bool Rescaling = false;

  static LRESULT CALLBACK FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  DWORD Style() const;
  DWORD ExtendedStyle() const;
  /// The size of the form with this client area.
  SIZE WithFrame(int width, int height) const;
  void SetClientSize(int width, int height) const;
  /// Takes the size for a monitor with `dpi`: with `place` that rectangle, else in proportion and in its
  /// place.
  void Rescale(int dpi, const RECT* place);
  void ReportSize();
  void WakeModalLoop() const noexcept;

  std::optional<LRESULT> OnClose(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnQueryEndSession(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnDpiChanged(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnSize(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnGetMinMaxInfo(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnCommand(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnGetDefId(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnActivate(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnMouseActivate(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnNextDlgCtl(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnSetCursor(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> OnSysColorChange(WPARAM wParam, LPARAM lParam);
};

namespace {

struct TFormMessage {
  UINT Message;
  std::optional<LRESULT> (TNativeFormImpl::*Handle)(WPARAM wParam, LPARAM lParam);
};

constexpr TFormMessage kFormMessages[] = {
    {WM_CLOSE, &TNativeFormImpl::OnClose},
    {WM_QUERYENDSESSION, &TNativeFormImpl::OnQueryEndSession},
    {WM_DPICHANGED, &TNativeFormImpl::OnDpiChanged},
    {WM_SIZE, &TNativeFormImpl::OnSize},
    {WM_GETMINMAXINFO, &TNativeFormImpl::OnGetMinMaxInfo},
    {WM_COMMAND, &TNativeFormImpl::OnCommand},
    {DM_GETDEFID, &TNativeFormImpl::OnGetDefId},
    {WM_ACTIVATE, &TNativeFormImpl::OnActivate},
    {WM_MOUSEACTIVATE, &TNativeFormImpl::OnMouseActivate},
    {WM_NEXTDLGCTL, &TNativeFormImpl::OnNextDlgCtl},
    {WM_SETCURSOR, &TNativeFormImpl::OnSetCursor},
    {WM_SYSCOLORCHANGE, &TNativeFormImpl::OnSysColorChange},
};

TNativeFormImpl& Form(TNativeWindow::TImpl& impl) {
  return static_cast<TNativeFormImpl&>(impl);
}

}  // namespace

LRESULT CALLBACK TNativeFormImpl::FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (TImpl* const self = Of(window); self != nullptr) {
    for (const TFormMessage& known : kFormMessages) {
      if (known.Message != message) continue;
      if (const std::optional<LRESULT> result = (Form(*self).*known.Handle)(wParam, lParam)) return *result;
    }
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

DWORD TNativeFormImpl::Style() const {
  // WS_SYSMENU draws nothing on a window without a frame; it gives the task bar button its command to close.
  if (Kind == TFormKind::Status) return WS_POPUP | WS_SYSMENU | WS_CLIPCHILDREN;
  return WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MAXIMIZEBOX | WS_CLIPCHILDREN;
}

DWORD TNativeFormImpl::ExtendedStyle() const {
  return Kind == TFormKind::Status ? WS_EX_TOPMOST | WS_EX_APPWINDOW : 0;
}

SIZE TNativeFormImpl::WithFrame(int width, int height) const {
  RECT rect{0, 0, width, height};
  ::AdjustWindowRectExForDpi(&rect, Style(), FALSE, ExtendedStyle(), static_cast<UINT>(Dpi));
  return {rect.right - rect.left, rect.bottom - rect.top};
}

void TNativeFormImpl::SetClientSize(int width, int height) const {
  const SIZE size = WithFrame(width, height);
  ::SetWindowPos(Window.Get(), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void TNativeFormImpl::Rescale(int dpi, const RECT* place) {
  // With its new size the form may be mostly on the old monitor again: answered, this would go on forever.
  if (Rescaling) return;
  Rescaling = true;
  RECT client{};
  ::GetClientRect(Window.Get(), &client);
  const int old = std::exchange(Dpi, dpi);
  if (place != nullptr) {
    ::SetWindowPos(Window.Get(), nullptr, place->left, place->top, place->right - place->left,
                   place->bottom - place->top, SWP_NOZORDER | SWP_NOACTIVATE);
  } else {
    SetClientSize(::MulDiv(client.right, dpi, old), ::MulDiv(client.bottom, dpi, old));
  }
  Rescaling = false;
  ReportSize();
}

/// The size that the form has in the end: the system makes no window larger than the screen.
void TNativeFormImpl::ReportSize() {
  RECT client{};
  ::GetClientRect(Window.Get(), &client);
  Application->Guard([&] { Events.OnSized(client.right, client.bottom, Dpi); });
}

/// Another program that sends this message, and does not post it, reaches the form in the middle of its work.
std::optional<LRESULT> TNativeFormImpl::OnClose(WPARAM, LPARAM) {
  if (Application->Busy()) return 0;
  Application->Guard(Events.OnClose);
  WakeModalLoop();
  return 0;
}

/// Work that ends half done leaves its remains behind. The user may still insist.
std::optional<LRESULT> TNativeFormImpl::OnQueryEndSession(WPARAM, LPARAM) {
  if (!Application->Busy()) return std::nullopt;
  return FALSE;
}

std::optional<LRESULT> TNativeFormImpl::OnDpiChanged(WPARAM wParam, LPARAM lParam) {
  // The system's rectangle follows the mouse that drags a dialog, keeps a maximised one on its whole screen,
  // and comes back to the same size with the old scale. A form that is not yet visible is being placed.
  const bool dragged = Kind == TFormKind::Dialog && ::IsWindowVisible(Window.Get());
  Rescale(HIWORD(wParam), dragged ? reinterpret_cast<const RECT*>(lParam) : nullptr);
  return 0;
}

std::optional<LRESULT> TNativeFormImpl::OnSize(WPARAM wParam, LPARAM) {
  if (wParam != SIZE_MINIMIZED && !Rescaling) ReportSize();
  return std::nullopt;
}

std::optional<LRESULT> TNativeFormImpl::OnGetMinMaxInfo(WPARAM, LPARAM lParam) {
  const SIZE least = WithFrame(ScaledToDpi(LeastSize.cx, Dpi), ScaledToDpi(LeastSize.cy, Dpi));
  reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {least.cx, least.cy};
  return 0;
}

std::optional<LRESULT> TNativeFormImpl::OnCommand(WPARAM wParam, LPARAM lParam) {
  // Esc comes from IsDialogMessage and not from a control.
  if (lParam == 0) return LOWORD(wParam) == IDCANCEL ? OnClose(0, 0) : std::nullopt;
  const HWND control = reinterpret_cast<HWND>(lParam);
  if (!::IsChild(Window.Get(), control)) return std::nullopt;
  if (TImpl* const impl = Of(control); impl != nullptr) impl->Notified(HIWORD(wParam));
  WakeModalLoop();
  return 0;
}

/// A message that another program or a screen reader has sent, and not posted, does not make the loop ask
/// whether the dialog has ended.
void TNativeFormImpl::WakeModalLoop() const noexcept {
  ::PostMessageW(Window.Get(), WM_NULL, 0, 0);
}

std::optional<LRESULT> TNativeFormImpl::OnGetDefId(WPARAM, LPARAM) {
  if (::GetDlgItem(Window.Get(), IDOK) == nullptr) return std::nullopt;
  return MAKELRESULT(IDOK, DC_HASDEFID);
}

/// The child that has the focus gets it again when the form comes back to the front.
std::optional<LRESULT> TNativeFormImpl::OnActivate(WPARAM wParam, LPARAM) {
  if (Kind != TFormKind::Dialog) return std::nullopt;
  if (LOWORD(wParam) == WA_INACTIVE) {
    if (const HWND focus = ::GetFocus(); ::IsChild(Window.Get(), focus)) LastFocus = focus;
    return std::nullopt;
  }
  if (!::IsWindow(LastFocus)) LastFocus = ::GetNextDlgTabItem(Window.Get(), nullptr, FALSE);
  ::SetFocus(LastFocus);
  return 0;
}

/// A click on the status window would take the keyboard from the host.
std::optional<LRESULT> TNativeFormImpl::OnMouseActivate(WPARAM, LPARAM) {
  if (Kind == TFormKind::Status) return MA_NOACTIVATE;
  return std::nullopt;
}

std::optional<LRESULT> TNativeFormImpl::OnNextDlgCtl(WPARAM wParam, LPARAM lParam) {
  const HWND control = reinterpret_cast<HWND>(wParam);
  if (lParam == FALSE || !::IsChild(Window.Get(), control)) return std::nullopt;
  if (::GetActiveWindow() == Window.Get()) {
    ::SetFocus(control);
  } else {
    LastFocus = control;
  }
  return 0;
}

std::optional<LRESULT> TNativeFormImpl::OnSetCursor(WPARAM, LPARAM) {
  // Children ask their form first.
  if (ScreenCursor() != TCursor::HourGlass) return std::nullopt;
  SetScreenCursor(TCursor::HourGlass);
  return TRUE;
}

/// Only forms hear of it.
std::optional<LRESULT> TNativeFormImpl::OnSysColorChange(WPARAM, LPARAM) {
  const auto tell = [](HWND child, LPARAM) -> BOOL {
    ::SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
    ::InvalidateRect(child, nullptr, TRUE);
    return TRUE;
  };
  ::EnumChildWindows(Window.Get(), tell, 0);
  return std::nullopt;
}

TNativeForm::TNativeForm(TFormKind kind, TextView className, const TNativeForm* owner, TFormEvents events)
    : TNativeWindow(std::make_unique<TNativeFormImpl>(kind, std::move(events))) {
  const UnicodeString windowClass(className);
  RegisterWindowClass(windowClass, TNativeFormImpl::FormProc, ProgramIcon());
  const TNativeFormImpl& form = Form(*fImpl);
  const HWND ownerWindow = owner != nullptr ? owner->fImpl->Window.Get() : nullptr;
  fImpl->Create(Wide(windowClass), form.Style(), form.ExtendedStyle(), ownerWindow);
}

void TNativeForm::SetPosition(int left, int top) {
  ::SetWindowPos(fImpl->Window.Get(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void TNativeForm::SetClientSize(int width, int height) {
  Form(*fImpl).SetClientSize(width, height);
}

void TNativeForm::SetLeastClientSize(int width, int height) {
  Form(*fImpl).LeastSize = {width, height};
}

void TNativeForm::ScaleTo(int dpi) {
  Form(*fImpl).Rescale(dpi, nullptr);
}

void TNativeForm::Show() {
  constexpr UINT kShow = SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE;
  if (Form(*fImpl).Kind == TFormKind::Status) {
    ::SetWindowPos(fImpl->Window.Get(), HWND_TOPMOST, 0, 0, 0, 0, kShow | SWP_NOACTIVATE);
  } else {
    // Not ShowWindow: the first one of a process does what the starting program has asked for.
    ::SetWindowPos(fImpl->Window.Get(), HWND_TOP, 0, 0, 0, 0, kShow);
    ::SetForegroundWindow(fImpl->Window.Get());
  }
  Repaint();
}

void TNativeForm::Hide() {
  ::ShowWindow(fImpl->Window.Get(), SW_HIDE);
}

void TNativeForm::SetShutdownReason(TextView reason) const {
  if (reason.empty()) {
    ::ShutdownBlockReasonDestroy(fImpl->Window.Get());
  } else {
    ::ShutdownBlockReasonCreate(fImpl->Window.Get(), Wide(UnicodeString(reason)));
  }
}
