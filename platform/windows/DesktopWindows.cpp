#include "platform/DesktopWindows.h"

#include <windows.h>

#include <shellscalingapi.h>

#include <array>

#include "platform/windows/Wide.h"

namespace {

constexpr int kTitleBuffer = 255;  // with the closing zero

HWND SystemHandle(TWindowHandle window) {
  return reinterpret_cast<HWND>(window);
}
TWindowHandle OurHandle(HWND window) {
  return reinterpret_cast<TWindowHandle>(window);
}

TRect OurRect(const RECT& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

HMONITOR MonitorAt(const TRect& rect) {
  const RECT area{rect.Left, rect.Top, rect.Right, rect.Bottom};
  return ::MonitorFromRect(&area, MONITOR_DEFAULTTONEAREST);
}

}  // namespace

TWindowHandle FirstWindow(TWindowHandle sibling) {
  return OurHandle(::GetWindow(SystemHandle(sibling), GW_HWNDFIRST));
}

TWindowHandle NextWindow(TWindowHandle window) {
  return OurHandle(::GetWindow(SystemHandle(window), GW_HWNDNEXT));
}

UnicodeString WindowTitle(TWindowHandle window) {
  std::array<wchar_t, kTitleBuffer> title{};
  const int length = ::GetWindowTextW(SystemHandle(window), title.data(), kTitleBuffer);
  return UnicodeString(FromWide(title.data(), static_cast<std::size_t>(length)));
}

std::optional<TRect> WindowRect(TWindowHandle window) {
  RECT rect{};
  if (!::GetWindowRect(SystemHandle(window), &rect)) return std::nullopt;
  return OurRect(rect);
}

TRect WorkAreaAt(const TRect& rect) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  ::GetMonitorInfoW(MonitorAt(rect), &info);
  return OurRect(info.rcWork);
}

int DpiAt(const TRect& rect) {
  UINT horizontal = kDesignDpi;
  UINT vertical = kDesignDpi;
  ::GetDpiForMonitor(MonitorAt(rect), MDT_EFFECTIVE_DPI, &horizontal, &vertical);
  return static_cast<int>(vertical);
}
