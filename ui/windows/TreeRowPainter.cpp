#include "ui/windows/TreeRowPainter.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "resources/Icons.h"
#include "ui/windows/WindowClass.h"

namespace {

constexpr UINT kOneLine = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

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
  if (dpi != fMetrics.Dpi) fIcons.clear();
  fMetrics = TTreeMetrics(dpi);
  fFont = MakeFont(font, dpi);
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fFont.Get());
  if (!::GetCharWidth32W(screen.Dc(), 0, static_cast<UINT>(fCharWidths.size() - 1), fCharWidths.data())) {
    throw LastSystemError();
  }
}

/// Loaded with its first row.
HICON TTreeRowPainter::Icon(int number) const {
  TIconHandle& icon = fIcons[number];
  if (!icon) icon = LoadProgramIcon(static_cast<WORD>(number), fMetrics.Icon);
  return icon.Get();
}

int TTreeRowPainter::RowHeight() const {
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fFont.Get());
  TEXTMETRICW text{};
  ::GetTextMetricsW(screen.Dc(), &text);
  return std::max<int>(fMetrics.Icon, text.tmHeight) + ScaledToDpi(4, fMetrics.Dpi);
}

/// Asking the system takes longer than adding up; a fit asks for all rows.
int TTreeRowPainter::TextWidth(TextView text) const {
  if (std::ranges::all_of(text, [this](char16_t letter) { return letter < fCharWidths.size(); })) {
    return std::transform_reduce(text.begin(), text.end(), 0, std::plus(),
                                 [this](char16_t letter) { return fCharWidths[letter]; });
  }
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fFont.Get());
  return TextExtent(screen.Dc(), text);
}

int TTreeRowPainter::TreeWidth(int indent, int image) const {
  return image == kNoImage ? WidestTree(indent) - fMetrics.Icon : WidestTree(indent);
}

int TTreeRowPainter::CellWidth(const TTreeListCell& cell) const {
  int width = 2 * fMetrics.Padding + TextWidth(cell.Text);
  if (!cell.Warning.empty()) {
    width += fMetrics.Icon + 2 * fMetrics.Gap + fMetrics.Padding + TextWidth(cell.Warning);
  }
  return width;
}

bool TTreeRowPainter::IsSign(int x, int indent) const {
  return x >= indent * fMetrics.Level && x < (indent + 1) * fMetrics.Level;
}

void TTreeRowPainter::Paint(HDC dc, const TTreeRowView& row) const {
  const TSavedDc saved(dc);
  const TColours colours = TColours::Of(row);
  FillArea(dc, row.Area, colours.Ground);
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
  PaintArrow(dc, {x, y}, half, ::GetSysColor(COLOR_BTNTEXT));
}

/// Lines, sign and image; `cell` shrinks to what is left for the text.
void TTreeRowPainter::PaintTree(HDC dc, const TTreeRowView& row, RECT& cell, const TColours& colours) const {
  const auto columnOf = [&](int indent) {
    return static_cast<int>(cell.left) + indent * fMetrics.Level + fMetrics.Level / 2;
  };
  const auto vertical = [&](int x, LONG top, LONG bottom) {
    FillArea(dc, {x, top, x + fMetrics.Line, bottom}, colours.Lines);
  };
  const int indent = row.Line.Indent;
  const int y = Middle(cell.top, cell.bottom);
  for (int above = 0; above < indent && columnOf(above) < cell.right; ++above) {
    if (row.Line.Continues[static_cast<std::size_t>(above)]) vertical(columnOf(above), cell.top, cell.bottom);
  }
  const int x = columnOf(indent);
  const bool goesOn = !row.Line.Continues.empty() && row.Line.Continues.back();
  vertical(x, row.First ? y : cell.top, goesOn ? cell.bottom : y);
  FillArea(dc, {x, y, cell.left + (indent + 1) * fMetrics.Level - fMetrics.Line, y + fMetrics.Line},
           colours.Lines);
  if (row.Line.HasChildren) PaintSign(dc, {x, y}, row.Line.Open, colours);
  if (row.Line.Image != kNoImage)
    PaintIcon(dc, cell.left + (indent + 1) * fMetrics.Level, cell, row.Line.Image);
  cell.left += TreeWidth(indent, row.Line.Image);
}

void TTreeRowPainter::PaintSign(HDC dc, POINT middle, bool open, const TColours& colours) const {
  const int half = fMetrics.Sign / 2;
  const int line = fMetrics.Line;
  const RECT box{middle.x - half, middle.y - half, middle.x + half + line, middle.y + half + line};
  RECT inside = box;
  ::InflateRect(&inside, -line, -line);
  FillArea(dc, box, colours.Lines);
  FillArea(dc, inside, colours.Ground);
  ::InflateRect(&inside, -line, -line);
  FillArea(dc, {inside.left, middle.y, inside.right, middle.y + line}, colours.Text);
  if (!open) FillArea(dc, {middle.x, inside.top, middle.x + line, inside.bottom}, colours.Text);
}

void TTreeRowPainter::PaintIcon(HDC dc, LONG left, const RECT& cell, int number) const {
  const int size = fMetrics.Icon;
  const int top = Middle(cell.top, cell.bottom) - size / 2;
  ::DrawIconEx(dc, left, top, Icon(number), size, size, 0, nullptr, DI_NORMAL);
}

/// `cell` shrinks to what is left for the cell's own text.
void TTreeRowPainter::PaintWarning(HDC dc, RECT& cell, const UnicodeString& warning) const {
  PaintIcon(dc, cell.left, cell, ICON_WARNING);
  cell.left += fMetrics.Icon + fMetrics.Gap;
  ::DrawTextW(dc, Wide(warning), -1, &cell, kOneLine | DT_LEFT);
  cell.left += TextExtent(dc, warning) + fMetrics.Gap + fMetrics.Padding;
}

void TTreeRowPainter::PaintCell(HDC dc, RECT cell, const TTreeListCell& content,
                                const TTreeListHeader& header) const {
  cell.left += fMetrics.Padding;
  cell.right -= fMetrics.Padding;
  if (!content.Warning.empty()) PaintWarning(dc, cell, content.Warning);
  if (cell.left >= cell.right) return;
  const UINT alignment = header.Alignment == TAlignment::Centre ? DT_CENTER : DT_LEFT;
  ::DrawTextW(dc, Wide(content.Text), -1, &cell, kOneLine | alignment | (header.Path ? DT_PATH_ELLIPSIS : 0));
}
