#pragma once

#include <windows.h>

#include "platform/Handle.h"
#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

using TWindow = TUniqueHandle<HWND, ::DestroyWindow>;

inline HINSTANCE ProgramInstance() noexcept {
  return ::GetModuleHandleW(nullptr);
}

/// Makes a window class known; one that is known already stays as it is.
inline void RegisterWindowClass(TextView name, WNDPROC procedure, HICON icon = nullptr) {
  const UnicodeString className(name);
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = ProgramInstance();
  windowClass.hIcon = icon;
  windowClass.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = Wide(className);
  if (::RegisterClassExW(&windowClass) == 0 && ::GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
    throw LastSystemError();
  }
}
