#pragma once

#include <array>
#include <map>
#include <span>

#include "ui/NativeTreeList.h"
#include "ui/windows/CommonControls.h"
#include "ui/windows/Painting.h"

/// Lengths of a tree list in pixels of its monitor.
struct TTreeMetrics {
  explicit TTreeMetrics(int dpi);

  int Dpi;
  int Indicator;  ///< width of the row indicator
  int Level;      ///< indent of a level, and room for the sign that opens a branch
  int Sign;       ///< that sign; odd, so that it has a middle
  int Icon;
  int Padding;  ///< between a cell's edge and its text
  int Gap;      ///< between icon and text
  int Line;     ///< thickness of the tree's lines
};

/// A row to be drawn.
struct TTreeRowView {
  RECT Area{};
  std::span<const int> Widths;
  std::span<const TTreeListHeader> Columns;
  TTreeListLine Line;
  std::span<const TTreeListCell> Cells;
  bool First = false;
  bool Current = false;
  bool Focused = false;  ///< the list has the input focus
  bool FocusCue = false;
  bool Enabled = true;
};

/// Draws the rows of a tree list in the user's colours and knows where everything is in them. Owned by the
/// native list; asks nothing of it.
class TTreeRowPainter {
 public:
  explicit TTreeRowPainter(int dpi) : fMetrics(dpi) {}

  const TTreeMetrics& Metrics() const noexcept { return fMetrics; }
  HFONT Font() const noexcept { return fFont.Get(); }
  void SetScale(const TFont& font, int dpi);

  int RowHeight() const;
  int TextWidth(TextView text) const;
  /// What a cell in the tree's column needs before its text.
  int TreeWidth(int indent, int image) const;
  /// The same for a node with an image.
  int WidestTree(int indent) const { return (indent + 1) * fMetrics.Level + fMetrics.Icon; }
  /// What a cell needs in all.
  int CellWidth(const TTreeListCell& cell) const;
  /// Whether `x`, from the left edge of the tree's column, is within the place of a branch's sign.
  bool IsSign(int x, int indent) const;

  void Paint(HDC dc, const TTreeRowView& row) const;
  /// The row indicator's column of `area`, without an arrow.
  void PaintIndicatorGround(HDC dc, RECT area) const;

 private:
  struct TColours;

  HICON Icon(int number) const;
  void PaintIndicator(HDC dc, const TTreeRowView& row) const;
  void PaintTree(HDC dc, const TTreeRowView& row, RECT& cell, const TColours& colours) const;
  void PaintSign(HDC dc, POINT middle, bool open, const TColours& colours) const;
  void PaintIcon(HDC dc, LONG left, const RECT& cell, int number) const;
  void PaintWarning(HDC dc, RECT& cell, const UnicodeString& warning) const;
  void PaintCell(HDC dc, RECT cell, const TTreeListCell& content, const TTreeListHeader& header) const;

  TTreeMetrics fMetrics;
  TFontHandle fFont;
  std::array<INT, 256> fCharWidths{};
  mutable std::map<int, TIconHandle> fIcons;  // by number among the resources, for this scale
};
