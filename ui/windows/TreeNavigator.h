#pragma once

#include <array>
#include <optional>

#include "ui/TreeListModel.h"
#include "ui/windows/CommonControls.h"
#include "ui/windows/Painting.h"
#include "ui/windows/ToolTip.h"
#include "ui/windows/WindowClass.h"

/// The bar below the rows of a tree list: four buttons that move the current row, and where it stands. The
/// buttons are children of the list's ground and report to it by their commands. They take no part in the tab
/// order, as the list's keys do the same.
class TTreeNavigator {
 public:
  TTreeNavigator(HWND ground, TToolTip& toolTip);

  void SetScale(HFONT font, int dpi);
  void SetInfo(const UnicodeString& text);
  void Enable(bool backwards, bool forwards);
  /// The images are drawn in the user's colours.
  void UpdateColours();

  int Height() const;
  void Arrange(const RECT& area);
  /// What a command of the ground means; nothing for one that is none of these buttons'.
  static std::optional<TTreeKey> KeyOf(WORD command);

 private:
  static constexpr std::size_t kButtonCount = 4;
  struct TButton {
    TIconHandle Image;
    TWindow Window;
  };

  std::array<TButton, kButtonCount> fButtons;
  TWindow fInfo;
  int fDpi;
};
