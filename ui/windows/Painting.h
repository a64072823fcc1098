#pragma once

#include <windows.h>

#include "platform/Handle.h"
#include "platform/windows/Wide.h"
#include "ui/NativeWindow.h"

using TFontHandle = TUniqueHandle<HFONT, ::DeleteObject>;
using TIconHandle = TUniqueHandle<HICON, ::DestroyIcon>;

TFontHandle MakeFont(const TFont& font, int dpi);

/// The program's icon, shared: never destroyed.
HICON ProgramIcon() noexcept;
/// An icon of the resources, `size` pixels wide and high; none where there is no such icon.
/// Throws EError of kind System when the common controls cannot be loaded.
TIconHandle LoadProgramIcon(WORD id, int size);

/// The drawing surface of a WM_PAINT, for as long as it is handled.
class TPaintScope {
 public:
  explicit TPaintScope(HWND window) : fWindow(window) { ::BeginPaint(window, &fPaint); }
  ~TPaintScope() { ::EndPaint(fWindow, &fPaint); }
  TPaintScope(const TPaintScope&) = delete;
  TPaintScope& operator=(const TPaintScope&) = delete;

  HDC Dc() const noexcept { return fPaint.hdc; }

 private:
  HWND fWindow;
  PAINTSTRUCT fPaint{};
};

/// Puts the surface's earlier drawing objects back at the end.
class TSavedDc {
 public:
  explicit TSavedDc(HDC dc) : fDc(dc), fSaved(::SaveDC(dc)) {}
  ~TSavedDc() { ::RestoreDC(fDc, fSaved); }
  TSavedDc(const TSavedDc&) = delete;
  TSavedDc& operator=(const TSavedDc&) = delete;

 private:
  HDC fDc;
  int fSaved;
};

/// The screen, to measure with.
class TScreenDc {
 public:
  TScreenDc() : fDc(::GetDC(nullptr)), fSaved(::SaveDC(fDc)) {}
  ~TScreenDc() {
    ::RestoreDC(fDc, fSaved);
    ::ReleaseDC(nullptr, fDc);
  }
  TScreenDc(const TScreenDc&) = delete;
  TScreenDc& operator=(const TScreenDc&) = delete;

  HDC Dc() const noexcept { return fDc; }

 private:
  HDC fDc;
  int fSaved;
};

/// How wide `text` is in the surface's font.
inline int TextExtent(HDC dc, TextView text) noexcept {
  SIZE size{};
  ::GetTextExtentPoint32W(dc, Wide(text.data()), static_cast<int>(text.size()), &size);
  return size.cx;
}

void FillArea(HDC dc, const RECT& area, COLORREF colour) noexcept;

/// A triangle with its base at `base`, `length` pixels long and twice as high. It points to the right, or to
/// the left where `length` is negative.
void PaintArrow(HDC dc, POINT base, int length, COLORREF colour) noexcept;

/// The face of a panel: a lowered outer and a raised inner bevel, each `bevel` pixels wide, in the user's
/// colours.
void PaintPanel(HDC dc, const RECT& area, int bevel) noexcept;

/// `text` centred both ways in `area` and never wrapped; a carriage return begins a new line.
void PaintCentredText(HDC dc, const RECT& area, const wchar_t* text, HFONT font) noexcept;

/// A bar that is filled from `begin` to `end`, fractions of its width, with `text` centred over it.
void PaintProgress(HDC dc, const RECT& area, double begin, double end, const wchar_t* text,
                   HFONT font) noexcept;
