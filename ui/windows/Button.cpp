#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <utility>

#include "ui/Application.h"
#include "ui/windows/NativeWindowImpl.h"
#include "ui/windows/ToolTip.h"

namespace {

// In pixels at kDesignDpi.
constexpr int kImageSize = 16;
constexpr int kImageGap = 6;

struct TButtonImpl : TNativeControlImpl {
  std::function<void()> OnClick;
  std::optional<WORD> Image;
  TIconHandle Icon;
  std::optional<TToolTip> ToolTip;

  void Notified(WORD code) override {
    if (code == BN_CLICKED) Application->Guard(OnClick);
  }
  void Rescaled() override {
    if (!Image) return;
    TIconHandle icon = LoadProgramIcon(*Image, ScaledToDpi(kImageSize, Dpi));
    ::SendMessageW(Window.Get(), BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon.Get()));
    Icon = std::move(icon);
    RECT margin{ScaledToDpi(kImageGap, Dpi), 0, 0, 0};
    ::SendMessageW(Window.Get(), BCM_SETTEXTMARGIN, 0, reinterpret_cast<LPARAM>(&margin));
  }
};

TButtonImpl& Button(TNativeWindow::TImpl& impl) {
  return static_cast<TButtonImpl&>(impl);
}

}  // namespace

/// IDOK is the button that IsDialogMessage presses for Enter, and that DM_GETDEFID names.
TNativeButton::TNativeButton(TButtonRole role, const TNativeWindow& parent, std::function<void()> onClick)
    : TNativeControl(std::make_unique<TButtonImpl>()) {
  Button(*fImpl).OnClick = std::move(onClick);
  const bool isDefault = role == TButtonRole::Default;
  const DWORD style =
      TNativeControlImpl::kStyle | WS_TABSTOP | (isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON);
  fImpl->Create(L"BUTTON", style, 0, reinterpret_cast<HWND>(parent.Handle()), isDefault ? IDOK : 0);
}

void TNativeButton::SetImage(int icon) {
  Button(*fImpl).Image = static_cast<WORD>(icon);
  Button(*fImpl).Rescaled();
}

void TNativeButton::SetTextHidden() {
  const HWND window = fImpl->Window.Get();
  ::SetWindowLongPtrW(window, GWL_STYLE, ::GetWindowLongPtrW(window, GWL_STYLE) | BS_ICON);
  Button(*fImpl).ToolTip.emplace(::GetParent(window));
  Button(*fImpl).ToolTip->AddChild(window, fImpl->Text.c_str());
}
