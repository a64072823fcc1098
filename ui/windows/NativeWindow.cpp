#include "ui/NativeWindow.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "ui/windows/NativeWindowImpl.h"

namespace {

constexpr TextView kPanelClass = u"TPanel";
constexpr TextView kLabelClass = u"TLabel";
constexpr TextView kTreeListClass = u"TTreeList";

struct TStyle {
  DWORD Style;
  DWORD ExtendedStyle;
};

constexpr DWORD kChild = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS;

constexpr TStyle StyleOf(TWindowKind kind) {
  switch (kind) {
    case TWindowKind::StatusForm:
      // WS_SYSMENU draws nothing on a window without a frame; it gives the task bar button its command to
      // close.
      return {WS_POPUP | WS_SYSMENU | WS_CLIPCHILDREN, WS_EX_TOPMOST | WS_EX_APPWINDOW};
    case TWindowKind::Dialog:
      return {WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MAXIMIZEBOX | WS_CLIPCHILDREN, 0};
    case TWindowKind::Button:
      return {kChild | WS_TABSTOP | BS_PUSHBUTTON, 0};
    case TWindowKind::DefaultButton:
      return {kChild | WS_TABSTOP | BS_DEFPUSHBUTTON, 0};
    case TWindowKind::Edit:
      return {kChild | WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE};
    case TWindowKind::ProgressBar:
      return {kChild, 0};
    case TWindowKind::TreeList:
      return {kChild | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT};  // the focus goes to its list
    case TWindowKind::Panel:
    case TWindowKind::Label:
      break;
  }
  return {kChild | WS_CLIPCHILDREN, 0};
}

/// The system and we find a control by its window; only the default button is asked for by its number.
HMENU NextControlId() {
  static INT_PTR last = 100;
  return reinterpret_cast<HMENU>(++last);
}

}  // namespace

/// The label is no STATIC of the system's: under the manifest that one loads the common controls, which cost
/// a start more than anything else here.
UnicodeString TNativeWindow::TImpl::ClassOf(TWindowKind kind, TextView formClass) {
  switch (kind) {
    case TWindowKind::Panel:
      RegisterWindowClass(kPanelClass, ControlProc<&TImpl::PaintAsPanel>);
      return UnicodeString(kPanelClass);
    case TWindowKind::Label:
      RegisterWindowClass(kLabelClass, ControlProc<&TImpl::PaintAsLabel>);
      return UnicodeString(kLabelClass);
    case TWindowKind::TreeList:
      RegisterWindowClass(kTreeListClass, ControlProc<&TImpl::PaintAsGround>);
      return UnicodeString(kTreeListClass);
    case TWindowKind::Button:
    case TWindowKind::DefaultButton:
      return u"BUTTON";
    case TWindowKind::Edit:
      return u"EDIT";
    case TWindowKind::ProgressBar:
      return UnicodeString(FromWide(PROGRESS_CLASSW));
    case TWindowKind::StatusForm:
    case TWindowKind::Dialog:
      break;
  }
  RegisterWindowClass(formClass, FormProc, ProgramIcon());
  return UnicodeString(formClass);
}

template <void (TNativeWindow::TImpl::*kPaint)(HDC dc, const RECT& area) const>
LRESULT CALLBACK TNativeWindow::TImpl::ControlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const TImpl* const self = Of(window);
  if (message == WM_ERASEBKGND) return 1;
  if (self != nullptr && message == WM_GETFONT) return reinterpret_cast<LRESULT>(self->Font.Get());
  // Themed buttons have the ground below their rounded corners drawn by their parent.
  if (self != nullptr && message == WM_PRINTCLIENT) {
    RECT area{};
    ::GetClientRect(window, &area);
    (self->*kPaint)(reinterpret_cast<HDC>(wParam), area);
    return 0;
  }
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
    : fImpl(new TImpl{.Kind = kind, .Events = std::move(events)}) {
  const UnicodeString windowClass = TImpl::ClassOf(kind, className);
  const TStyle style = StyleOf(kind);
  const HWND parentWindow = parent != nullptr ? parent->fImpl->Window.Get() : nullptr;
  const HMENU id = (style.Style & WS_CHILD) != 0 ? NextControlId() : nullptr;
  const HWND window = ::CreateWindowExW(style.ExtendedStyle, Wide(windowClass), L"", style.Style, 0, 0, 0, 0,
                                        parentWindow, id, ProgramInstance(), nullptr);
  if (window == nullptr) throw LastSystemError();
  fImpl->Window.Reset(window);
  ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(fImpl.get()));
  if (kind == TWindowKind::ProgressBar) fImpl->BecomeProgressBar();
}

TNativeWindow::~TNativeWindow() = default;

TWindowHandle TNativeWindow::Handle() const {
  return reinterpret_cast<TWindowHandle>(fImpl->Window.Get());
}

void TNativeWindow::SetBounds(const TRect& bounds) {
  ::SetWindowPos(fImpl->Window.Get(), nullptr, bounds.Left, bounds.Top, bounds.Width(), bounds.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void TNativeWindow::SetPosition(int left, int top) {
  ::SetWindowPos(fImpl->Window.Get(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

SIZE TNativeWindow::TImpl::WithFrame(int width, int height, int dpi) const {
  const TStyle style = StyleOf(Kind);
  RECT rect{0, 0, width, height};
  ::AdjustWindowRectExForDpi(&rect, style.Style, FALSE, style.ExtendedStyle, static_cast<UINT>(dpi));
  return {rect.right - rect.left, rect.bottom - rect.top};
}

void TNativeWindow::SetClientSize(int width, int height, int dpi) {
  const SIZE size = fImpl->WithFrame(width, height, dpi);
  ::SetWindowPos(fImpl->Window.Get(), nullptr, 0, 0, size.cx, size.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void TNativeWindow::SetLeastClientSize(int width, int height, int dpi) {
  fImpl->LeastSize = fImpl->WithFrame(width, height, dpi);
}

void TNativeWindow::SetText(TextView text) {
  fImpl->Text = text;
  ::SetWindowTextW(fImpl->Window.Get(), Wide(fImpl->Text));
  ::InvalidateRect(fImpl->Window.Get(), nullptr, FALSE);
}

UnicodeString TNativeWindow::Text() const {
  const HWND window = fImpl->Window.Get();
  UnicodeString text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, u'\0');
  text.resize(
      static_cast<std::size_t>(::GetWindowTextW(window, WideBuffer(text), static_cast<int>(text.size()))));
  return text;
}

void TNativeWindow::SetFont(const TFont& font, int dpi) {
  fImpl->Font = MakeFont(font, dpi);
  fImpl->Dpi = dpi;
  ::SendMessageW(fImpl->Window.Get(), WM_SETFONT, reinterpret_cast<WPARAM>(fImpl->Font.Get()), FALSE);
  fImpl->LoadButtonImage();
  ::InvalidateRect(fImpl->Window.Get(), nullptr, FALSE);
}

void TNativeWindow::Show() {
  constexpr UINT kShow = SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE;
  if (fImpl->Kind == TWindowKind::StatusForm) {
    ::SetWindowPos(fImpl->Window.Get(), HWND_TOPMOST, 0, 0, 0, 0, kShow | SWP_NOACTIVATE);
  } else {
    // Not ShowWindow: the first one of a process does what the starting program has asked for.
    ::SetWindowPos(fImpl->Window.Get(), HWND_TOP, 0, 0, 0, 0, kShow);
    ::SetForegroundWindow(fImpl->Window.Get());
    Repaint();
  }
}

void TNativeWindow::Hide() {
  ::ShowWindow(fImpl->Window.Get(), SW_HIDE);
}

void TNativeWindow::SetVisible(bool visible) {
  ::ShowWindow(fImpl->Window.Get(), visible ? SW_SHOWNA : SW_HIDE);
}

void TNativeWindow::Focus() {
  HWND target = fImpl->Window.Get();
  // A ground hands the focus to its list.
  if (fImpl->Kind == TWindowKind::TreeList) target = ::GetNextDlgTabItem(target, nullptr, FALSE);
  const HWND form = ::GetAncestor(target, GA_ROOT);
  if (::GetActiveWindow() == form) {
    ::SetFocus(target);
  } else if (TImpl* const owner = TImpl::Of(form); owner != nullptr) {
    owner->LastFocus = target;
  }
}

void TNativeWindow::Repaint() {
  ::RedrawWindow(fImpl->Window.Get(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  ::GdiFlush();  // what is batched would stay invisible while the task runs
}
