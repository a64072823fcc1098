#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "ui/NativeWindow.h"
#include "ui/TreeListModel.h"

enum class TAlignment { Left, Centre };

/// What a row without an image has in place of an icon's number among the resources.
constexpr int kNoImage = -1;

/// A column on the screen. The first one carries the tree.
struct TTreeListHeader {
  UnicodeString Caption;
  TAlignment Alignment = TAlignment::Left;
  bool Clickable = false;  ///< only then does the header look as if a click did something
  bool Path = false;       ///< texts too long are shortened in the middle: file names stay readable
};

/// What is drawn of a line beside its cells.
struct TTreeListLine {
  int Level = 0;
  int Indent = 0;  ///< how many levels it is drawn to the right: fewer than Level where the column is narrow
  int Image = kNoImage;
  bool HasChildren = false;
  bool Open = false;
  /// For each indent up to the line's own: whether a sibling follows there, so that the tree's line goes on.
  std::vector<bool> Continues;
};

struct TTreeListCell {
  UnicodeString Text;
  UnicodeString Warning;  ///< drawn before the text, after an icon; empty: none
};

/// What the list asks while it draws, and what the user does. Lines are 0-based, columns count the headers.
/// Errors that leave one go to the application's default handling; a line that cannot be answered stays
/// empty.
struct TTreeListEvents {
  std::function<TTreeListLine(std::size_t line)> Line;
  std::function<TTreeListCell(std::size_t line, std::size_t column)> Cell;
  std::function<void(TTreeKey key)> OnKey;
  /// `continued`: soon after the letter before, so that both belong to one search.
  std::function<void(char16_t letter, bool continued)> OnLetter;
  /// By the mouse, or by another program such as a screen reader.
  std::function<void(std::size_t line)> OnSelect;
  std::function<void(std::size_t line)> OnToggle;
  std::function<void(std::size_t line)> OnDoubleClick;
  std::function<void(std::size_t column)> OnHeaderClick;
  /// The divider after a column is dragged: the user wants the column this wide.
  std::function<void(std::size_t column, int width)> OnDividerMoved;
  std::function<void(std::size_t column)> OnDividerDoubleClick;
  /// The room for the columns has changed, by a new size or because a scroll bar came or went.
  std::function<void()> OnWidthChanged;
};

/// The part of a tree list that the system draws: headers, rows, row indicator, scroll bar, and below them a
/// bar with four buttons to move the current row. It fills `host`, draws only the rows in view, asks for
/// their texts each time, and decides nothing. Ctrl+C copies the current row's texts. All widths are pixels
/// of the screen.
class TNativeTreeList {
 public:
  /// `host` outlives the list and is of the kind TreeList. Throws EError of kind System.
  TNativeTreeList(TNativeWindow& host, TTreeListEvents events);
  ~TNativeTreeList();
  TNativeTreeList(const TNativeTreeList&) = delete;
  TNativeTreeList& operator=(const TNativeTreeList&) = delete;

  /// What a screen reader calls the list.
  void SetName(TextView name);
  /// Fonts and all sizes of its own for a monitor with `dpi`; what was measured before is void.
  void SetScale(const TFont& rows, const TFont& headers, int dpi);
  void SetColumns(std::span<const TTreeListHeader> columns);
  void SetColumnWidths(std::span<const int> widths);

  /// Takes over new lines and draws them when the message loop comes to it. `current` may be
  /// TTreeListModel::kNone.
  void SetLines(std::size_t count, std::size_t current);
  /// Moves the selection and brings it into view.
  void SetCurrent(std::size_t line);
  /// The bar's text, such as "3 von 17".
  void SetInfo(TextView text);
  /// While it is frozen the list draws no rows and asks nothing.
  void SetFrozen(bool frozen);

  /// The room for all columns together, beside row indicator and scroll bar.
  int ColumnSpace() const;
  /// How many whole lines are in view.
  std::size_t PageSize() const;
  /// How wide a column must be to show `cell` in full; the tree's column needs TreeWidth more.
  int NeededWidth(const TTreeListCell& cell) const;
  int TreeWidth(int indent) const;
  /// The same for a header.
  int NeededHeaderWidth(TextView caption) const;

 private:
  struct TImpl;
  std::unique_ptr<TImpl> fImpl;
};
