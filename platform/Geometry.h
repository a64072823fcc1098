#pragma once

/// A rectangle in pixels; Right and Bottom are just outside it.
struct TRect {
  int Left = 0;
  int Top = 0;
  int Right = 0;
  int Bottom = 0;

  int Width() const { return Right - Left; }
  int Height() const { return Bottom - Top; }
};

/// Dots per inch at which all sizes are designed.
constexpr int kDesignDpi = 96;

/// `designed` at kDesignDpi in the pixels of a monitor with `dpi`, rounded to the nearest.
constexpr int ScaledToDpi(int designed, int dpi) {
  return (designed * dpi + kDesignDpi / 2) / kDesignDpi;
}
