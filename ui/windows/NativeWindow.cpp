#include "ui/NativeWindow.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "ui/Application.h"
#include "ui/windows/NativeWindowImpl.h"

// What all windows have in common, and the controls that need nothing more.

void TNativeWindow::TImpl::Create(const wchar_t* windowClass, DWORD style, DWORD extendedStyle, HWND parent,
                                  int id) {
  Window.Reset(::CreateWindowExW(extendedStyle, windowClass, L"", style, 0, 0, 0, 0, parent,
                                 reinterpret_cast<HMENU>(INT_PTR{id}), ProgramInstance(), nullptr));
  if (!Window) throw LastSystemError();
  ::SetWindowLongPtrW(Window.Get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

TNativeWindow::TNativeWindow(std::unique_ptr<TImpl> impl) : fImpl(std::move(impl)) {}

TNativeWindow::~TNativeWindow() {
  if (Application != nullptr && Application->Terminated()) {
    // The system destroys the windows of a process that ends, in a fraction of the time.
    ::SetWindowLongPtrW(fImpl->Window.Detach(), GWLP_USERDATA, 0);
  } else {
    fImpl->Window.Reset();  // its last messages still find the rest
  }
}

TWindowHandle TNativeWindow::Handle() const {
  return reinterpret_cast<TWindowHandle>(fImpl->Window.Get());
}

void TNativeWindow::SetText(TextView text) {
  fImpl->Text = text;
  ::SetWindowTextW(fImpl->Window.Get(), Wide(fImpl->Text));
  ::InvalidateRect(fImpl->Window.Get(), nullptr, FALSE);
}

void TNativeWindow::Repaint() {
  ::RedrawWindow(fImpl->Window.Get(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  ::GdiFlush();  // what is batched would stay invisible while the task runs
}

namespace {

// Both bevels of a panel, at kDesignDpi. Scaled as one length, they never reach below what is placed inside
// them.
constexpr int kBevels = 2;

TNativeControlImpl& Control(TNativeWindow::TImpl& impl) {
  return static_cast<TNativeControlImpl&>(impl);
}

LRESULT CALLBACK ControlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_ERASEBKGND) return 1;
  auto* const impl = TNativeWindow::TImpl::Of(window);
  if (impl == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  const TNativeControlImpl& self = Control(*impl);
  if (message == WM_GETFONT) return reinterpret_cast<LRESULT>(self.Font.Get());
  if (message != WM_PAINT && message != WM_PRINTCLIENT) {
    return ::DefWindowProcW(window, message, wParam, lParam);
  }
  RECT area{};
  ::GetClientRect(window, &area);
  if (message == WM_PAINT) {
    const TPaintScope paint(window);
    self.Paint(paint.Dc(), area);
  } else {
    // Themed buttons have the ground below their rounded corners drawn by their parent.
    self.Paint(reinterpret_cast<HDC>(wParam), area);
  }
  return 0;
}

/// The window class of a kind, registered. The label is no STATIC of the system's: under the manifest that
/// one loads the common controls, which cost a start more than anything else here.
const wchar_t* ClassOf(TControlKind kind) {
  if (kind == TControlKind::Edit) return L"EDIT";
  const TextView name = kind == TControlKind::Panel   ? u"TPanel"
                        : kind == TControlKind::Label ? u"TLabel"
                                                      : u"TTreeList";
  RegisterWindowClass(name, ControlProc);
  return Wide(name.data());
}

}  // namespace

void TNativeControlImpl::Paint(HDC dc, const RECT& area) const {
  if (Kind == TControlKind::Label) return PaintCentredText(dc, area, Wide(Text), Font.Get());
  if (Kind == TControlKind::Panel) return PaintPanel(dc, area, std::max(1, ScaledToDpi(kBevels, Dpi) / 2));
  ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNFACE));
}

TNativeControl::TNativeControl(TControlKind kind, const TNativeWindow& parent)
    : TNativeWindow(std::make_unique<TNativeControlImpl>()) {
  Control(*fImpl).Kind = kind;
  const bool edit = kind == TControlKind::Edit;
  const DWORD style = edit ? WS_TABSTOP | ES_AUTOHSCROLL : WS_CLIPCHILDREN;
  // The focus goes to what fills a ground.
  const DWORD extended = edit ? WS_EX_CLIENTEDGE : kind == TControlKind::Ground ? WS_EX_CONTROLPARENT : 0;
  fImpl->Create(ClassOf(kind), TNativeControlImpl::kStyle | style, extended,
                reinterpret_cast<HWND>(parent.Handle()));
}

void TNativeControl::SetBounds(const TRect& bounds) {
  ::SetWindowPos(fImpl->Window.Get(), nullptr, bounds.Left, bounds.Top, bounds.Width(), bounds.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void TNativeControl::SetFont(const TFont& font, int dpi) {
  TNativeControlImpl& control = Control(*fImpl);
  control.Font = MakeFont(font, dpi);
  ::SendMessageW(control.Window.Get(), WM_SETFONT, reinterpret_cast<WPARAM>(control.Font.Get()), FALSE);
  if (control.Dpi != dpi) {
    control.Dpi = dpi;
    control.Rescaled();
  }
  ::InvalidateRect(control.Window.Get(), nullptr, FALSE);
}

void TNativeControl::SetVisible(bool visible) {
  ::ShowWindow(fImpl->Window.Get(), visible ? SW_SHOWNA : SW_HIDE);
}

void TNativeControl::Focus() {
  HWND target = fImpl->Window.Get();
  // A ground hands the focus to its list.
  if (Control(*fImpl).Kind == TControlKind::Ground) target = ::GetNextDlgTabItem(target, nullptr, FALSE);
  ::SendMessageW(::GetAncestor(target, GA_ROOT), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(target), TRUE);
}

UnicodeString TNativeControl::Text() const {
  const HWND window = fImpl->Window.Get();
  UnicodeString text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, u'\0');
  text.resize(
      static_cast<std::size_t>(::GetWindowTextW(window, WideBuffer(text), static_cast<int>(text.size()))));
  return text;
}
