#pragma once

#include <string>
#include <vector>

#include "ui/NativeTreeList.h"

namespace headless {

/// What a user sees of the newest tree list that is still there, and what can be done with it. Texts are
/// UTF-8; lines count from the first one of the list.
struct TTreeListScreen {
  /// The lines in view, such as "> [-] 94 | 2 | Getriebe | C:\x.iam": an arrow before the current one, two
  /// blanks for each indent, "[+]" or "[-]" before a branch, the image, the cells. A warning stands in
  /// brackets before its cell's text.
  static std::vector<std::string> Lines();
  static std::string Headers();  ///< such as "* | Bezeichnung"
  static std::string Info();
  static std::vector<int> ColumnWidths();
  static bool Frozen();

  static void Press(TTreeKey key);
  /// Letters in quick succession.
  static void Type(TextView letters);
  static void Select(std::size_t line);
  static void Toggle(std::size_t line);
  static void DoubleClick(std::size_t line);
  static void ClickHeader(std::size_t column);
  /// The divider after the column; until the column is `width` wide.
  static void MoveDivider(std::size_t column, int width);
  static void DoubleClickDivider(std::size_t column);
};

}  // namespace headless
