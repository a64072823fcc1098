#include "ui/windows/Painting.h"

#include <cmath>

#include "resources/Icons.h"
#include "ui/windows/CommonControls.h"
#include "ui/windows/WindowClass.h"

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

constexpr COLORREF kProgressGreen = RGB(6, 176, 37);

bool InHighContrast() noexcept {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof contrast;
  return ::SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

/// A surface of the same size in memory, put on the screen as a whole at its end: nothing flickers.
class TBufferedDc {
 public:
  TBufferedDc(HDC dc, const RECT& area) noexcept
      : fTarget(dc),
        fWidth(area.right - area.left),
        fHeight(area.bottom - area.top),
        fDc(::CreateCompatibleDC(dc)),
        fBitmap(::CreateCompatibleBitmap(dc, fWidth, fHeight)),
        fOldBitmap(::SelectObject(fDc, fBitmap)) {}
  ~TBufferedDc() {
    ::BitBlt(fTarget, 0, 0, fWidth, fHeight, fDc, 0, 0, SRCCOPY);
    ::SelectObject(fDc, fOldBitmap);
    ::DeleteObject(fBitmap);
    ::DeleteDC(fDc);
  }
  TBufferedDc(const TBufferedDc&) = delete;
  TBufferedDc& operator=(const TBufferedDc&) = delete;

  HDC Dc() const noexcept { return fDc; }

 private:
  HDC fTarget;
  int fWidth;
  int fHeight;
  HDC fDc;
  HBITMAP fBitmap;
  HGDIOBJ fOldBitmap;
};

/// The part of `text`, centred in `area`, that lies within `clip`.
void PaintTextWithin(HDC dc, const RECT& clip, const RECT& area, const wchar_t* text,
                     COLORREF colour) noexcept {
  const TSavedDc saved(dc);
  ::IntersectClipRect(dc, clip.left, clip.top, clip.right, clip.bottom);
  ::SetTextColor(dc, colour);
  RECT place = area;
  ::DrawTextW(dc, text, -1, &place, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
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

HICON ProgramIcon() noexcept {
  return ::LoadIconW(ProgramInstance(), MAKEINTRESOURCEW(ICON_PROGRAM));
}

TIconHandle LoadProgramIcon(WORD id, int size) {
  HICON icon = nullptr;
  CommonControls().LoadIconWithScaleDown(ProgramInstance(), MAKEINTRESOURCEW(id), size, size, &icon);
  return TIconHandle(icon);
}

void FillArea(HDC dc, const RECT& area, COLORREF colour) noexcept {
  ::SetDCBrushColor(dc, colour);
  ::FillRect(dc, &area, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

void PaintArrow(HDC dc, POINT base, int length, COLORREF colour) noexcept {
  const TSavedDc saved(dc);
  ::SelectObject(dc, ::GetStockObject(DC_BRUSH));
  ::SelectObject(dc, ::GetStockObject(DC_PEN));
  ::SetDCBrushColor(dc, colour);
  ::SetDCPenColor(dc, colour);
  const POINT corners[] = {{base.x, base.y - length}, {base.x + length, base.y}, {base.x, base.y + length}};
  ::Polygon(dc, corners, 3);
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

void PaintProgress(HDC dc, const RECT& area, double begin, double end, const wchar_t* text,
                   HFONT font) noexcept {
  const bool highContrast = InHighContrast();
  const TBufferedDc buffer(dc, area);
  RECT rest{0, 0, area.right - area.left, area.bottom - area.top};
  PaintFrame(buffer.Dc(), rest, 1, COLOR_BTNSHADOW, COLOR_BTNSHADOW);
  const auto at = [&rest](double part) { return rest.left + std::lround(part * (rest.right - rest.left)); };
  const RECT filled{at(begin), rest.top, at(end), rest.bottom};
  FillSystem(buffer.Dc(), rest, highContrast ? COLOR_WINDOW : COLOR_3DLIGHT);
  if (highContrast) {
    FillSystem(buffer.Dc(), filled, COLOR_HIGHLIGHT);
  } else {
    ::SetBkColor(buffer.Dc(), kProgressGreen);
    ::ExtTextOutW(buffer.Dc(), 0, 0, ETO_OPAQUE, &filled, nullptr, 0, nullptr);
  }
  ::SelectObject(buffer.Dc(), font);
  ::SetBkMode(buffer.Dc(), TRANSPARENT);
  const COLORREF black = RGB(0, 0, 0);
  PaintTextWithin(buffer.Dc(), rest, rest, text, highContrast ? ::GetSysColor(COLOR_WINDOWTEXT) : black);
  if (highContrast) PaintTextWithin(buffer.Dc(), filled, rest, text, ::GetSysColor(COLOR_HIGHLIGHTTEXT));
}
