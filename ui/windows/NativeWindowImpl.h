#pragma once

#include <windows.h>

#include "ui/NativeWindow.h"
#include "ui/windows/Painting.h"
#include "ui/windows/WindowClass.h"

/// The system finds it through the window's user data.
struct TNativeWindow::TImpl {
  TImpl() = default;
  virtual ~TImpl() = default;
  TImpl(const TImpl&) = delete;
  TImpl& operator=(const TImpl&) = delete;

  UnicodeString Text;  // beside the window's own copy: painting must not ask for memory
  TWindow Window;

  static TImpl* Of(HWND window) {
    return reinterpret_cast<TImpl*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  }

  /// `id` is a child's number. Throws EError of kind System.
  void Create(const wchar_t* windowClass, DWORD style, DWORD extendedStyle, HWND parent, int id = 0);
  /// What a child reports to its form with WM_COMMAND.
  virtual void Notified(WORD /*code*/) {}
};

struct TNativeControlImpl : TNativeWindow::TImpl {
  static constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS;

  TControlKind Kind = TControlKind::Ground;
  TFontHandle Font;
  int Dpi = kDesignDpi;

  /// Draws a control of a class of our own.
  void Paint(HDC dc, const RECT& area) const;
  /// Dpi has changed.
  virtual void Rescaled() {}
};
