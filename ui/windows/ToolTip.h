#pragma once

#include "platform/Text.h"
#include "ui/windows/WindowClass.h"

/// The hints of one window's children and of one place in it that moves with the mouse. Owned by the native
/// list, or by a button for its own hint.
class TToolTip {
 public:
  /// Throws EError of kind System.
  explicit TToolTip(HWND owner);

  /// `child`'s own hint; `text` must live as long.
  void AddChild(HWND child, const char16_t* text);
  /// The hint of the place `area` in `window`, instead of the one before; none for an empty text.
  void Track(HWND window, const RECT& area, TextView text);
  void SetFont(HFONT font);

 private:
  HWND fOwner;
  TWindow fWindow;
  RECT fArea{};
  UnicodeString fText;
  bool fTracking = false;
};
