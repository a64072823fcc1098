// Linked into the bare program, it shows what each task shows at the least: one topmost window with a text,
// on the screen before the first call of the component.

#include <windows.h>

namespace {

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_PAINT) return ::DefWindowProcW(window, message, wParam, lParam);
  PAINTSTRUCT paint{};
  const HDC dc = ::BeginPaint(window, &paint);
  RECT area{};
  ::GetClientRect(window, &area);
  ::DrawTextW(dc, L"Properties werden aktualisiert...", -1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  ::EndPaint(window, &paint);
  return 0;
}

/// The system destroys the window with the process.
const bool shown = [] {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = WindowProc;
  windowClass.hInstance = ::GetModuleHandleW(nullptr);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = L"TBareWindow";
  ::RegisterClassExW(&windowClass);
  const HWND window = ::CreateWindowExW(WS_EX_TOPMOST, L"TBareWindow", L"Velmora", WS_POPUP, 490, 477, 300,
                                        70, nullptr, nullptr, windowClass.hInstance, nullptr);
  ::ShowWindow(window, SW_SHOWNOACTIVATE);
  ::UpdateWindow(window);
  ::GdiFlush();
  return window != nullptr;
}();

}  // namespace
