#include <windows.h>

#include <commctrl.h>

#include "resources/Icons.h"
#include "ui/windows/NativeWindowImpl.h"

// Images and tool tips of the push buttons.

namespace {

// In pixels at kDesignDpi.
constexpr int kImageSize = 16;
constexpr int kImageGap = 6;

WORD IconOf(TButtonImage image) {
  switch (image) {
    case TButtonImage::ExpandAll:
      return ICON_EXPAND_ALL;
    case TButtonImage::CollapseAll:
      return ICON_COLLAPSE_ALL;
    case TButtonImage::Export:
      break;
  }
  return ICON_EXPORT;
}

}  // namespace

void TNativeWindow::SetImage(TButtonImage image) {
  fImpl->Image = image;
  fImpl->LoadButtonImage();
}

void TNativeWindow::TImpl::LoadButtonImage() {
  if (!Image) return;
  TIconHandle icon = LoadProgramIcon(IconOf(*Image), ScaledToDpi(kImageSize, Dpi));
  ::SendMessageW(Window.Get(), BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon.Get()));
  Icon = std::move(icon);
  RECT margin{ScaledToDpi(kImageGap, Dpi), 0, 0, 0};
  ::SendMessageW(Window.Get(), BCM_SETTEXTMARGIN, 0, reinterpret_cast<LPARAM>(&margin));
}

void TNativeWindow::SetTextHidden() {
  const LONG_PTR style = ::GetWindowLongPtrW(fImpl->Window.Get(), GWL_STYLE);
  ::SetWindowLongPtrW(fImpl->Window.Get(), GWL_STYLE, style | BS_ICON);
  fImpl->ToolTip.emplace(::GetParent(fImpl->Window.Get()));
  fImpl->ToolTip->AddChild(fImpl->Window.Get(), fImpl->Text.c_str());
}
