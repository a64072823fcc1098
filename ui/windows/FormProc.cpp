#include <windows.h>

#include "ui/Application.h"
#include "ui/Screen.h"
#include "ui/windows/NativeWindowImpl.h"

// The messages of status forms and dialogs. A dialog is a window of our own and none of the system's dialog
// manager: what a dialog owes to IsDialogMessage is done here.

namespace {

struct TFormMessage {
  UINT Message;
  std::optional<LRESULT> (TNativeWindow::TImpl::*Handle)(WPARAM wParam, LPARAM lParam);
};

constexpr TFormMessage kFormMessages[] = {
    {WM_CLOSE, &TNativeWindow::TImpl::Close},
    {WM_QUERYENDSESSION, &TNativeWindow::TImpl::QueryEndSession},
    {WM_DPICHANGED, &TNativeWindow::TImpl::DpiChanged},
    {WM_SIZE, &TNativeWindow::TImpl::Sized},
    {WM_GETMINMAXINFO, &TNativeWindow::TImpl::LimitSize},
    {WM_COMMAND, &TNativeWindow::TImpl::Command},
    {DM_GETDEFID, &TNativeWindow::TImpl::TellDefaultButton},
    {WM_ACTIVATE, &TNativeWindow::TImpl::KeepFocus},
    {WM_SETCURSOR, &TNativeWindow::TImpl::SetCursor},
    {WM_SYSCOLORCHANGE, &TNativeWindow::TImpl::ColoursChanged},
};

}  // namespace

LRESULT CALLBACK TNativeWindow::TImpl::FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (TImpl* const self = Of(window); self != nullptr) {
    for (const TFormMessage& known : kFormMessages) {
      if (known.Message != message) continue;
      if (const std::optional<LRESULT> result = (self->*known.Handle)(wParam, lParam)) return *result;
    }
  }
  return ::DefWindowProcW(window, message, wParam, lParam);
}

std::optional<LRESULT> TNativeWindow::TImpl::Close(WPARAM, LPARAM) {
  Application->Guard([this] {
    if (Events.OnClose) Events.OnClose();
  });
  WakeModalLoop();
  return 0;
}

/// Half an export would leave its remains behind. The user may still insist.
std::optional<LRESULT> TNativeWindow::TImpl::QueryEndSession(WPARAM, LPARAM) {
  if (!Application->Busy()) return std::nullopt;
  ::ShutdownBlockReasonCreate(Window.Get(), L"Die Baugruppe wird noch bearbeitet.");
  return FALSE;
}

std::optional<LRESULT> TNativeWindow::TImpl::DpiChanged(WPARAM wParam, LPARAM lParam) {
  // With its new size the form may lie mostly on the old monitor again: answered, the two would take turns.
  if (Rescaling) return 0;
  Rescaling = true;
  Application->Guard([this, dpi = int{HIWORD(wParam)}] {
    if (Events.OnDpiChanged) Events.OnDpiChanged(dpi);
  });
  // The place that the system suggests follows the mouse that drags a dialog. A form that is not yet visible
  // is being placed, and stays where it is put.
  if (Kind == TWindowKind::Dialog && ::IsWindowVisible(Window.Get())) {
    const RECT& place = *reinterpret_cast<const RECT*>(lParam);
    ::SetWindowPos(Window.Get(), nullptr, place.left, place.top, 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  Rescaling = false;
  return 0;
}

std::optional<LRESULT> TNativeWindow::TImpl::Sized(WPARAM wParam, LPARAM lParam) {
  if (wParam == SIZE_MINIMIZED) return std::nullopt;
  Application->Guard([this, width = int{LOWORD(lParam)}, height = int{HIWORD(lParam)}] {
    if (Events.OnSized) Events.OnSized(width, height);
  });
  return std::nullopt;
}

std::optional<LRESULT> TNativeWindow::TImpl::LimitSize(WPARAM, LPARAM lParam) {
  reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {LeastSize.cx, LeastSize.cy};
  return 0;
}

std::optional<LRESULT> TNativeWindow::TImpl::Command(WPARAM wParam, LPARAM lParam) {
  // Esc comes from IsDialogMessage and not from a control.
  if (lParam == 0) return LOWORD(wParam) == IDCANCEL ? Close(0, 0) : std::nullopt;
  TImpl* const button = Of(reinterpret_cast<HWND>(lParam));
  if (HIWORD(wParam) != BN_CLICKED || button == nullptr || !button->Events.OnClick) return std::nullopt;
  Application->Guard(button->Events.OnClick);
  WakeModalLoop();
  return 0;
}

/// A message that another program or a screen reader has sent, and not posted, does not bring the loop to ask
/// whether the dialog has ended.
void TNativeWindow::TImpl::WakeModalLoop() const noexcept {
  ::PostMessageW(Window.Get(), WM_NULL, 0, 0);
}

std::optional<LRESULT> TNativeWindow::TImpl::TellDefaultButton(WPARAM, LPARAM) {
  for (HWND child = ::GetWindow(Window.Get(), GW_CHILD); child != nullptr;
       child = ::GetWindow(child, GW_HWNDNEXT)) {
    const TImpl* const control = Of(child);
    if (control != nullptr && control->Kind == TWindowKind::DefaultButton) {
      return MAKELRESULT(::GetDlgCtrlID(child), DC_HASDEFID);
    }
  }
  return std::nullopt;
}

/// The child that has the focus gets it again when the form comes back to the front.
std::optional<LRESULT> TNativeWindow::TImpl::KeepFocus(WPARAM wParam, LPARAM) {
  if (Kind != TWindowKind::Dialog) return std::nullopt;
  if (LOWORD(wParam) == WA_INACTIVE) {
    if (const HWND focus = ::GetFocus(); ::IsChild(Window.Get(), focus)) LastFocus = focus;
    return std::nullopt;
  }
  if (!::IsWindow(LastFocus)) LastFocus = ::GetNextDlgTabItem(Window.Get(), nullptr, FALSE);
  ::SetFocus(LastFocus);
  return 0;
}

std::optional<LRESULT> TNativeWindow::TImpl::SetCursor(WPARAM, LPARAM) {
  // Children ask their form first.
  if (ScreenCursor() != TCursor::HourGlass) return std::nullopt;
  SetScreenCursor(TCursor::HourGlass);
  return TRUE;
}

/// Only forms hear of it.
std::optional<LRESULT> TNativeWindow::TImpl::ColoursChanged(WPARAM, LPARAM) {
  const auto tell = [](HWND child, LPARAM) -> BOOL {
    ::SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
    ::InvalidateRect(child, nullptr, TRUE);
    return TRUE;
  };
  ::EnumChildWindows(Window.Get(), tell, 0);
  return std::nullopt;
}
