#include "ui/windows/ToolTip.h"

#include "ui/windows/CommonControls.h"

namespace {

constexpr UINT_PTR kTrackedPlace = 1;
constexpr int kLongestLine = 10'000;  // wider than any screen: a path is not broken

TTTOOLINFOW ToolOf(HWND window, UINT flags, UINT_PTR id) {
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.uFlags = flags;
  tool.hwnd = window;
  tool.uId = id;
  return tool;
}

LPARAM Parameter(TTTOOLINFOW& tool) {
  return reinterpret_cast<LPARAM>(&tool);
}

}  // namespace

TToolTip::TToolTip(HWND owner) : fOwner(owner) {
  CommonControls();
  fWindow.Reset(::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                  WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, owner, nullptr,
                                  ProgramInstance(), nullptr));
  if (!fWindow) throw LastSystemError();
  ::SendMessageW(fWindow.Get(), TTM_SETMAXTIPWIDTH, 0, kLongestLine);
}

void TToolTip::AddChild(HWND child, const char16_t* text) {
  TTTOOLINFOW tool = ToolOf(fOwner, TTF_IDISHWND | TTF_SUBCLASS, reinterpret_cast<UINT_PTR>(child));
  tool.lpszText = const_cast<wchar_t*>(Wide(text));
  ::SendMessageW(fWindow.Get(), TTM_ADDTOOLW, 0, Parameter(tool));
}

void TToolTip::Track(HWND window, const RECT& area, TextView text) {
  if (fTracking != text.empty() && (text.empty() || (::EqualRect(&area, &fArea) && text == fText))) return;
  TTTOOLINFOW tool = ToolOf(window, TTF_SUBCLASS | TTF_TRANSPARENT, kTrackedPlace);
  if (fTracking) ::SendMessageW(fWindow.Get(), TTM_DELTOOLW, 0, Parameter(tool));
  fTracking = !text.empty();
  if (!fTracking) return;
  fArea = area;
  fText = text;
  tool.rect = area;
  tool.lpszText = WideBuffer(fText);
  ::SendMessageW(fWindow.Get(), TTM_ADDTOOLW, 0, Parameter(tool));
}

void TToolTip::SetFont(HFONT font) {
  ::SendMessageW(fWindow.Get(), WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}
