#include "ui/windows/TreeRowPainter.h"

#include <algorithm>
#include <iterator>

#include "resources/Icons.h"
#include "ui/windows/WindowClass.h"

namespace {

constexpr UINT kOneLine = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

WORD ResourceOf(TNodeIcon icon) {
  switch (icon) {
    case TNodeIcon::Part:
      return ICON_PART;
    case TNodeIcon::Assembly:
      return ICON_ASSEMBLY;
    case TNodeIcon::Drawing:
      return ICON_DRAWING;
  }
  return 0;
}

void Fill(HDC dc, const RECT& area, COLORREF colour) {
  ::SetDCBrushColor(dc, colour);
  ::FillRect(dc, &area, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

/// Draws with pen and brush of one colour.
void FillPolygon(HDC dc, std::span<const POINT> points, COLORREF colour) {
  ::SelectObject(dc, ::GetStockObject(DC_BRUSH));
  ::SelectObject(dc, ::GetStockObject(DC_PEN));
  ::SetDCBrushColor(dc, colour);
  ::SetDCPenColor(dc, colour);
  ::Polygon(dc, points.data(), static_cast<int>(points.size()));
}

int Middle(LONG from, LONG to) {
  return static_cast<int>((from + to) / 2);
}

}  // namespace

struct TTreeRowPainter::TColours {
  COLORREF Ground;
  COLORREF Text;
  COLORREF Lines;

  static TColours Of(const TTreeRowView& row) {
    const auto colour = [](int index) { return ::GetSysColor(index); };
    if (!row.Enabled) return {colour(COLOR_BTNFACE), colour(COLOR_GRAYTEXT), colour(COLOR_GRAYTEXT)};
    if (!row.Current) return {colour(COLOR_WINDOW), colour(COLOR_WINDOWTEXT), colour(COLOR_GRAYTEXT)};
    if (!row.Focused) return {colour(COLOR_BTNFACE), colour(COLOR_BTNTEXT), colour(COLOR_BTNTEXT)};
    return {colour(COLOR_HIGHLIGHT), colour(COLOR_HIGHLIGHTTEXT), colour(COLOR_HIGHLIGHTTEXT)};
  }
};

TTreeMetrics::TTreeMetrics(int dpi)
    : Dpi(dpi),
      Indicator(ScaledToDpi(15, dpi)),
      Level(ScaledToDpi(18, dpi)),
      Sign(ScaledToDpi(9, dpi) | 1),
      Icon(ScaledToDpi(16, dpi)),
      Padding(ScaledToDpi(6, dpi)),
      Gap(ScaledToDpi(4, dpi)),
      Line(std::max(1, dpi / kDesignDpi)) {}

void TTreeRowPainter::SetScale(const TFont& font, int dpi) {
  const bool iconsFit = fWarning && dpi == fMetrics.Dpi;
  fMetrics = TTreeMetrics(dpi);
  fFont = MakeFont(font, dpi);
  if (!iconsFit) LoadIcons();
}

void TTreeRowPainter::LoadIcons() {
  for (auto& [index, image] : fImages) image.Handle = LoadProgramIcon(ResourceOf(image.Icon), fMetrics.Icon);
  fWarning = LoadProgramIcon(ICON_WARNING, fMetrics.Icon);
}

void TTreeRowPainter::SetNodeImage(int image, TNodeIcon icon) {
  fImages.insert_or_assign(image, TNodeImage{icon, LoadProgramIcon(ResourceOf(icon), fMetrics.Icon)});
}

int TTreeRowPainter::RowHeight() const {
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fFont.Get());
  TEXTMETRICW text{};
  ::GetTextMetricsW(screen.Dc(), &text);
  return std::max<int>(fMetrics.Icon, text.tmHeight) + ScaledToDpi(4, fMetrics.Dpi);
}

int TTreeRowPainter::TextWidth(TextView text) const {
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fFont.Get());
  return TextExtent(screen.Dc(), text);
}

int TTreeRowPainter::TreeWidth(int level, int image) const {
  return fImages.contains(image) ? WidestTree(level) : WidestTree(level) - fMetrics.Icon;
}

int TTreeRowPainter::CellWidth(const TTreeListCell& cell, const TTreeListHeader& header) const {
  int width = 2 * fMetrics.Padding;
  if (cell.HasWarning) width += fMetrics.Icon + 2 * fMetrics.Gap + fMetrics.Padding + TextWidth(cell.Warning);
  return header.CheckBox ? width + fMetrics.Icon : width + TextWidth(cell.Text);
}

bool TTreeRowPainter::IsSign(int x, int level) const {
  return x >= level * fMetrics.Level && x < (level + 1) * fMetrics.Level;
}

void TTreeRowPainter::Paint(HDC dc, const TTreeRowView& row) const {
  const TSavedDc saved(dc);
  const TColours colours = TColours::Of(row);
  Fill(dc, row.Area, colours.Ground);
  ::SelectObject(dc, fFont.Get());
  ::SetBkMode(dc, TRANSPARENT);
  ::SetTextColor(dc, colours.Text);
  PaintIndicator(dc, row);
  RECT cell = row.Area;
  cell.right = cell.left + fMetrics.Indicator;
  for (std::size_t i = 0; i < row.Cells.size(); ++i) {
    cell.left = cell.right;
    cell.right = cell.left + row.Widths[i];
    RECT rest = cell;
    const TSavedDc clipped(dc);
    ::IntersectClipRect(dc, cell.left, cell.top, cell.right, cell.bottom);
    if (i == 0) PaintTree(dc, row, rest, colours);
    PaintCell(dc, rest, row.Cells[i], row.Columns[i]);
  }
  if (!row.Current || !row.FocusCue) return;
  const RECT focus{row.Area.left + fMetrics.Indicator, row.Area.top, cell.right, row.Area.bottom};
  ::SetBkMode(dc, OPAQUE);
  ::DrawFocusRect(dc, &focus);
}

void TTreeRowPainter::PaintIndicatorGround(HDC dc, RECT area) const {
  area.right = area.left + fMetrics.Indicator;
  ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNFACE));
  area.left = area.right - fMetrics.Line;
  ::FillRect(dc, &area, ::GetSysColorBrush(COLOR_BTNSHADOW));
}

void TTreeRowPainter::PaintIndicator(HDC dc, const TTreeRowView& row) const {
  PaintIndicatorGround(dc, row.Area);
  if (!row.Current) return;
  const int half = ScaledToDpi(4, fMetrics.Dpi);
  const LONG x = row.Area.left + (fMetrics.Indicator - fMetrics.Line - half) / 2;
  const LONG y = Middle(row.Area.top, row.Area.bottom);
  const POINT arrow[] = {{x, y - half}, {x + half, y}, {x, y + half}};
  const TSavedDc saved(dc);
  FillPolygon(dc, arrow, ::GetSysColor(COLOR_BTNTEXT));
}

/// Lines, sign and image; `cell` shrinks to what is left for the text.
void TTreeRowPainter::PaintTree(HDC dc, const TTreeRowView& row, RECT& cell, const TColours& colours) const {
  const auto columnOf = [&](int level) {
    return static_cast<int>(cell.left) + level * fMetrics.Level + fMetrics.Level / 2;
  };
  const auto vertical = [&](int x, LONG top, LONG bottom) {
    Fill(dc, {x, top, x + fMetrics.Line, bottom}, colours.Lines);
  };
  const int level = row.Line.Level;
  const int y = Middle(cell.top, cell.bottom);
  for (int above = 0; above < level && columnOf(above) < cell.right; ++above) {
    if (row.Line.Continues[static_cast<std::size_t>(above)]) vertical(columnOf(above), cell.top, cell.bottom);
  }
  const int x = columnOf(level);
  const bool goesOn = !row.Line.Continues.empty() && row.Line.Continues.back();
  vertical(x, row.First ? y : cell.top, goesOn ? cell.bottom : y);
  Fill(dc, {x, y, cell.left + (level + 1) * fMetrics.Level - fMetrics.Line, y + fMetrics.Line},
       colours.Lines);
  if (row.Line.HasChildren) PaintSign(dc, {x, y}, row.Line.Open, colours);
  const auto image = fImages.find(row.Line.Image);
  if (image != fImages.end())
    PaintNodeImage(dc, columnOf(level) - fMetrics.Level / 2 + fMetrics.Level, cell, image->second);
  cell.left += TreeWidth(level, row.Line.Image);
}

void TTreeRowPainter::PaintSign(HDC dc, POINT middle, bool open, const TColours& colours) const {
  const int half = fMetrics.Sign / 2;
  const int line = fMetrics.Line;
  const RECT box{middle.x - half, middle.y - half, middle.x + half + line, middle.y + half + line};
  RECT inside = box;
  ::InflateRect(&inside, -line, -line);
  Fill(dc, box, colours.Lines);
  Fill(dc, inside, colours.Ground);
  ::InflateRect(&inside, -line, -line);
  Fill(dc, {inside.left, middle.y, inside.right, middle.y + line}, colours.Text);
  if (!open) Fill(dc, {middle.x, inside.top, middle.x + line, inside.bottom}, colours.Text);
}

/// Without the resource, a square stands for the kind of node.
void TTreeRowPainter::PaintNodeImage(HDC dc, int left, const RECT& cell, const TNodeImage& image) const {
  const int top = Middle(cell.top, cell.bottom) - fMetrics.Icon / 2;
  if (image.Handle) {
    ::DrawIconEx(dc, left, top, image.Handle.Get(), fMetrics.Icon, fMetrics.Icon, 0, nullptr, DI_NORMAL);
    return;
  }
  constexpr COLORREF kColours[] = {RGB(0x3A, 0x7E, 0xBF), RGB(0xD9, 0x9A, 0x26), RGB(0x5B, 0x9E, 0x5F)};
  const int inset = fMetrics.Icon / 8;
  const int right = left + fMetrics.Icon - inset;
  Fill(dc, {left + inset, top + inset, right, top + fMetrics.Icon - inset},
       kColours[static_cast<std::size_t>(image.Icon)]);
}

/// `cell` shrinks to what is left for the cell's own text.
void TTreeRowPainter::PaintWarning(HDC dc, RECT& cell, const UnicodeString& warning) const {
  const int size = fMetrics.Icon;
  const LONG top = Middle(cell.top, cell.bottom) - size / 2;
  const LONG left = cell.left;
  if (fWarning) {
    ::DrawIconEx(dc, left, top, fWarning.Get(), size, size, 0, nullptr, DI_NORMAL);
  } else {
    const TSavedDc saved(dc);
    const LONG middle = left + size / 2;
    const POINT triangle[] = {{middle, top + 1}, {left + size - 1, top + size - 2}, {left, top + size - 2}};
    FillPolygon(dc, triangle, RGB(0xF2, 0xB7, 0x05));
    const int bar = std::max(1, size / 8);
    Fill(dc, {middle - bar / 2, top + size * 3 / 8, middle - bar / 2 + bar, top + size * 5 / 8},
         RGB(0, 0, 0));
    Fill(dc,
         {middle - bar / 2, top + size * 6 / 8 - bar / 2, middle - bar / 2 + bar,
          top + size * 6 / 8 - bar / 2 + bar},
         RGB(0, 0, 0));
  }
  cell.left += size + fMetrics.Gap;
  ::DrawTextW(dc, Wide(warning), -1, &cell, kOneLine | DT_LEFT);
  cell.left += TextExtent(dc, warning) + fMetrics.Gap + fMetrics.Padding;
}

void TTreeRowPainter::PaintCell(HDC dc, RECT cell, const TTreeListCell& content,
                                const TTreeListHeader& header) const {
  cell.left += fMetrics.Padding;
  cell.right -= fMetrics.Padding;
  if (content.HasWarning) PaintWarning(dc, cell, content.Warning);
  if (cell.left >= cell.right) return;
  if (header.CheckBox) {
    const int size = ScaledToDpi(13, fMetrics.Dpi);
    RECT box{Middle(cell.left, cell.right) - size / 2, Middle(cell.top, cell.bottom) - size / 2, 0, 0};
    box.right = box.left + size;
    box.bottom = box.top + size;
    ::DrawFrameControl(dc, &box, DFC_BUTTON,
                       DFCS_BUTTONCHECK | DFCS_FLAT | (content.Checked ? DFCS_CHECKED : 0));
    return;
  }
  const bool centred = header.Alignment == TAlignment::Centre;
  ::DrawTextW(dc, Wide(content.Text), -1, &cell, kOneLine | (centred ? DT_CENTER : DT_LEFT));
}
