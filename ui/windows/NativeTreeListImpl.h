#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "ui/NativeTreeList.h"
#include "ui/windows/CommonControls.h"
#include "ui/windows/ToolTip.h"
#include "ui/windows/TreeNavigator.h"
#include "ui/windows/TreeRowPainter.h"

/// Three windows are subclassed: the host, to which the list view reports; the list view, whose keys and
/// mouse go to the control instead; and its header, for its height and its
/// dividers. The list view scrolls and speaks to
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
  TImageListHandle RowHeightImages;  // an image list is the only way to set the height of a list view's rows
  TWindow Label;                     // never visible: screen readers name a list by the label before it
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
  bool SettingWidths = false;  // not the user does it, but the control
  bool Living = false;         // reports from windows that are being made or destroyed are ignored

  template <LRESULT (TImpl::*kProc)(UINT message, WPARAM wParam, LPARAM lParam)>
  static LRESULT CALLBACK SubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                       DWORD_PTR);
  LRESULT HostProc(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT ListProc(UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT HeaderProc(UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT Default(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return CommonControls().DefSubclassProc(window, message, wParam, lParam);
  }
  LRESULT ToList(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return ::SendMessageW(List.Get(), message, wParam, lParam);
  }

  std::optional<LRESULT> OnNotify(const NMHDR& header, LPARAM lParam);
  LRESULT OnCustomDraw(const NMLVCUSTOMDRAW& part);
  void OnGetDispInfo(LVITEMW& item);
  std::optional<LRESULT> OnHeaderNotify(const NMHEADERW& notice);
  void OnColumnClick(const NMLISTVIEW& click);
  void OnItemChanged(const NMLISTVIEW& change);
  bool OnKeyDown(WPARAM key);
  bool OnChar(WPARAM letter);
  void OnButtonDown(UINT message, LPARAM position);
  void OnMouseMove(LPARAM position);

  void DrawRow(HDC dc, int line);
  void DrawGround(HDC dc) const;

  void Listen(HWND window, SUBCLASSPROC procedure);
  void StopListening() noexcept;
  void Arrange();
  void RefreshColours();
  void Select(std::size_t line);
  void SetWidth(std::size_t listColumn, int width);
  bool IsFixedDivider(POINT place) const;
  void CopyCurrentRow() const;
  void RedrawCurrent();
  HWND Header() const { return reinterpret_cast<HWND>(ToList(LVM_GETHEADER)); }
  RECT RowArea(int line) const;
  int LineAt(POINT place) const;
  UnicodeString Description(std::size_t line) const;
};
