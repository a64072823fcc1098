#pragma once

#include <windows.h>

#include <algorithm>
#include <optional>

#include "ui/NativeWindow.h"
#include "ui/windows/Painting.h"
#include "ui/windows/ToolTip.h"
#include "ui/windows/WindowClass.h"

/// The system finds it through the window's user data.
struct TNativeWindow::TImpl {
  TWindowKind Kind;
  TWindowEvents Events;
  UnicodeString Text{};  // beside the window's own copy: painting must not ask for memory
  TFontHandle Font{};
  int Dpi = kDesignDpi;
  std::optional<TButtonImage> Image{};
  TIconHandle Icon{};
  SIZE LeastSize{};          // of a form with its frame
  HWND LastFocus = nullptr;  // of a form's children, while the form is not active
  bool Rescaling = false;    // of a form, from a change of scale until it has its new size
  double BarBegin = 0;
  double BarEnd = 0;
  WNDPROC SystemProc = nullptr;  // of a progress bar
  std::optional<TToolTip> ToolTip{};
  TWindow Window{};  // the first to go: its last messages still reach the rest

  static TImpl* Of(HWND window) {
    return reinterpret_cast<TImpl*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  }

  /// The name of the kind's window class, made known to the system.
  static UnicodeString ClassOf(TWindowKind kind, TextView formClass);
  static LRESULT CALLBACK FormProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  template <void (TImpl::*kPaint)(HDC dc, const RECT& area) const>
  static LRESULT CALLBACK ControlProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK ProgressBarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  void BecomeProgressBar();
  void LoadButtonImage();
  /// The size of a form with this client area.
  SIZE WithFrame(int width, int height, int dpi) const;

  void PaintAsGround(HDC dc, const RECT& area) const {
    ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNFACE));
  }
  void PaintAsPanel(HDC dc, const RECT& area) const {
    PaintPanel(dc, area, std::max(1, ScaledToDpi(1, Dpi)));
  }
  void PaintAsLabel(HDC dc, const RECT& area) const { PaintCentredText(dc, area, Wide(Text), Font.Get()); }

  void WakeModalLoop() const noexcept;

  // A form's messages: nothing where the system's own handling is wanted as well.
  std::optional<LRESULT> Close(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> QueryEndSession(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> DpiChanged(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> Sized(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> LimitSize(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> Command(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> TellDefaultButton(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> KeepFocus(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> ColoursChanged(WPARAM wParam, LPARAM lParam);
  std::optional<LRESULT> SetCursor(WPARAM wParam, LPARAM lParam);
};
