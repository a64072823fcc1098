#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "ui/NativeTreeList.h"
#include "ui/windows/CommonControls.h"
#include "ui/windows/ToolTip.h"
#include "ui/windows/TreeNavigator.h"
#include "ui/windows/TreeRowPainter.h"

/// Two windows of the system are listened to: the host, which hears what the list reports, and the list,
/// whose keys and mouse go to the control instead. The list view scrolls, keeps the header and speaks to
/// screen readers; which row is current, and every drawn pixel of a row, is ours.
struct TNativeTreeList::TImpl {
  static constexpr int kNoLine = -1;

  TImpl(HWND host, TTreeListEvents events);
  ~TImpl();
  TImpl(const TImpl&) = delete;
  TImpl& operator=(const TImpl&) = delete;

  TTreeListEvents Events;
  HWND Host;
  TTreeRowPainter Painter{kDesignDpi};
  TFontHandle HeaderFont;
  TImageListHandle RowHeightImages;  // an image list is the one way to set the height of a list view's rows
  TWindow List;
  TToolTip ToolTip;
  TTreeNavigator Navigator;

  std::vector<TTreeListHeader> Columns;
  std::vector<int> Widths;
  std::size_t Count = 0;
  std::size_t Current = TTreeListModel::kNone;
  int Selected = kNoLine;  // what the list view believes
  int HeaderHeight = 0;
  LONG LastLetter = 0;
  bool Frozen = false;
  bool Living = false;  // what is reported while windows come and go is nobody's concern

  template <LRESULT (TImpl::*kHandle)(UINT message, WPARAM wParam, LPARAM lParam)>
  static LRESULT CALLBACK SubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                       DWORD_PTR);
  LRESULT HandleHost(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HandleList(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HandleHeader(UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT Default(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return CommonControls().DefSubclassProc(window, message, wParam, lParam);
  }
  LRESULT ToList(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return ::SendMessageW(List.Get(), message, wParam, lParam);
  }

  std::optional<LRESULT> HandleNotification(const NMHDR& header, LPARAM lParam);
  LRESULT DrawPart(const NMLVCUSTOMDRAW& part);
  void DrawRow(HDC dc, int line);
  void DrawGround(HDC dc) const;
  void GiveText(LVITEMW& item);
  bool HandleKey(WPARAM key);
  bool HandleLetter(WPARAM letter);
  void HandleMouse(UINT message, LPARAM position);
  void ShowHint(LPARAM position);

  void Listen(HWND window, SUBCLASSPROC procedure);
  void StopListening() noexcept;
  void Arrange();
  void RefreshColours();
  void Select(std::size_t line);
  void RedrawCurrent();
  HWND Header() const { return reinterpret_cast<HWND>(ToList(LVM_GETHEADER)); }
  RECT RowArea(int line) const;
  int LineAt(POINT place) const;
  UnicodeString Description(std::size_t line) const;
};
