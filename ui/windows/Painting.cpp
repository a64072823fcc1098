#include "ui/windows/Painting.h"

namespace {

void FillSystem(HDC dc, const RECT& area, int colour) {
  ::FillRect(dc, &area, ::GetSysColorBrush(colour));
}

/// A frame along the inside of `area`; `area` shrinks to what is left.
void PaintFrame(HDC dc, RECT& area, int width, int topLeft, int bottomRight) {
  FillSystem(dc, {area.left, area.top, area.right, area.top + width}, topLeft);
  FillSystem(dc, {area.left, area.top, area.left + width, area.bottom}, topLeft);
  FillSystem(dc, {area.left, area.bottom - width, area.right, area.bottom}, bottomRight);
  FillSystem(dc, {area.right - width, area.top, area.right, area.bottom}, bottomRight);
  ::InflateRect(&area, -width, -width);
}

}  // namespace

TFontHandle MakeFont(const TFont& font, int dpi) {
  LOGFONTW description{};
  description.lfHeight = -ScaledToDpi(font.CharHeight, dpi);  // negative: without the leading
  description.lfWeight = font.Bold ? FW_BOLD : FW_NORMAL;
  description.lfCharSet = DEFAULT_CHARSET;
  CopyText(description.lfFaceName, font.Name);
  return TFontHandle(::CreateFontIndirectW(&description));
}

void PaintPanel(HDC dc, const RECT& area, int bevel) noexcept {
  RECT rest = area;
  PaintFrame(dc, rest, bevel, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
  PaintFrame(dc, rest, bevel, COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW);
  FillSystem(dc, rest, COLOR_BTNFACE);
}

void PaintCentredText(HDC dc, const RECT& area, const wchar_t* text, HFONT font) noexcept {
  constexpr UINT kFormat = DT_CENTER | DT_NOPREFIX;
  const TSavedDc saved(dc);
  FillSystem(dc, area, COLOR_BTNFACE);
  ::SelectObject(dc, font);
  ::SetBkMode(dc, TRANSPARENT);
  ::SetTextColor(dc, ::GetSysColor(COLOR_WINDOWTEXT));
  RECT needed = area;
  const int height = ::DrawTextW(dc, text, -1, &needed, kFormat | DT_CALCRECT);
  RECT place = area;
  place.top += (area.bottom - area.top - height) / 2;
  ::DrawTextW(dc, text, -1, &place, kFormat);
}
