#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/Path.h"
#include "ui/Application.h"
#include "ui/windows/NativeTreeListImpl.h"

// The messages of the tree list's windows.

namespace {

constexpr LONG kSearchPause = 1000;  // milliseconds after which a letter begins a new search

std::optional<TTreeKey> KeyOf(WPARAM virtualKey) {
  switch (virtualKey) {
    case VK_UP:
      return TTreeKey::Up;
    case VK_DOWN:
      return TTreeKey::Down;
    case VK_LEFT:
      return TTreeKey::Left;
    case VK_RIGHT:
      return TTreeKey::Right;
    case VK_HOME:
      return TTreeKey::Home;
    case VK_END:
      return TTreeKey::End;
    case VK_PRIOR:
      return TTreeKey::PageUp;
    case VK_NEXT:
      return TTreeKey::PageDown;
    default:
      return std::nullopt;
  }
}

UnicodeString TextOf(const TTreeListCell& cell) {
  return cell.Warning.empty() ? cell.Text : cell.Warning + u"  " + cell.Text;
}

}  // namespace

LRESULT TNativeTreeList::TImpl::HostProc(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      Arrange();
      break;
    case WM_SETFOCUS:
      ::SetFocus(List.Get());
      return 0;
    case WM_NOTIFY: {
      const auto answer = OnNotify(*reinterpret_cast<const NMHDR*>(lParam), lParam);
      if (answer) return *answer;
      break;
    }
    case WM_COMMAND:
      if (const auto key = TTreeNavigator::KeyOf(LOWORD(wParam)); key && HIWORD(wParam) == BN_CLICKED) {
        // Otherwise Enter would press the button again instead of the dialog's default button.
        ::SetFocus(List.Get());
        Application->Guard([this, key] { Events.OnKey(*key); });
        return 0;
      }
      break;
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
      RefreshColours();
      break;
    default:
      break;
  }
  return Default(Host, message, wParam, lParam);
}

LRESULT TNativeTreeList::TImpl::ListProc(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_KEYDOWN:
      if (OnKeyDown(wParam)) return 0;
      break;
    case WM_NOTIFY:
      if (const auto answer = OnHeaderNotify(*reinterpret_cast<const NMHEADERW*>(lParam))) return *answer;
      break;
    case WM_CHAR:
      if (OnChar(wParam)) return 0;
      break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
      OnButtonDown(message, lParam);
      return 0;
    case WM_MOUSEMOVE:
      OnMouseMove(lParam);
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE: {
      const LRESULT result = Default(List.Get(), message, wParam, lParam);
      RedrawCurrent();
      return result;
    }
    case WM_SIZE: {
      const LRESULT result = Default(List.Get(), message, wParam, lParam);
      Application->Guard([this] { Events.OnWidthChanged(); });
      return result;
    }
    default:
      break;
  }
  return Default(List.Get(), message, wParam, lParam);
}

/// As high as a row and a little more; the system leaves no room around a bold text.
LRESULT TNativeTreeList::TImpl::HeaderProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SETCURSOR) {
    POINT place{};
    ::GetCursorPos(&place);
    ::ScreenToClient(Header(), &place);
    if (IsFixedDivider(place)) {
      ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
      return TRUE;
    }
  }
  const LRESULT result = Default(Header(), message, wParam, lParam);
  if (message != HDM_LAYOUT) return result;
  const HDLAYOUT& layout = *reinterpret_cast<const HDLAYOUT*>(lParam);
  layout.pwpos->cy = HeaderHeight;
  layout.prc->top = HeaderHeight;
  return result;
}

std::optional<LRESULT> TNativeTreeList::TImpl::OnNotify(const NMHDR& header, LPARAM lParam) {
  if (header.hwndFrom != List.Get()) return std::nullopt;
  switch (header.code) {
    case NM_CUSTOMDRAW:
      return OnCustomDraw(*reinterpret_cast<const NMLVCUSTOMDRAW*>(lParam));
    case LVN_GETDISPINFOW:
      OnGetDispInfo(reinterpret_cast<NMLVDISPINFOW*>(lParam)->item);
      return 0;
    case LVN_ITEMCHANGED:
      OnItemChanged(*reinterpret_cast<const NMLISTVIEW*>(lParam));
      return 0;
    case LVN_COLUMNCLICK:
      OnColumnClick(*reinterpret_cast<const NMLISTVIEW*>(lParam));
      return 0;
    default:
      return std::nullopt;
  }
}

/// The list view never hears of a divider: the widths of all columns change together, or not at all.
std::optional<LRESULT> TNativeTreeList::TImpl::OnHeaderNotify(const NMHEADERW& notice) {
  if (notice.hdr.hwndFrom != Header() || SettingWidths) return std::nullopt;
  const auto column = static_cast<std::size_t>(notice.iItem - 1);
  switch (notice.hdr.code) {
    case HDN_ITEMCHANGINGA:
    case HDN_ITEMCHANGINGW:
      if (notice.pitem == nullptr || (notice.pitem->mask & HDI_WIDTH) == 0) return std::nullopt;
      if (notice.iItem > 0) Application->Guard([&] { Events.OnDividerMoved(column, notice.pitem->cxy); });
      return TRUE;
    case HDN_DIVIDERDBLCLICKA:
    case HDN_DIVIDERDBLCLICKW:
      if (notice.iItem > 0) Application->Guard([&] { Events.OnDividerDoubleClick(column); });
      return 0;
    default:
      return std::nullopt;
  }
}

/// A selection that we did not make: another program has set it, a screen reader for instance.
void TNativeTreeList::TImpl::OnItemChanged(const NMLISTVIEW& change) {
  const bool selected = (change.uNewState & ~change.uOldState & LVIS_SELECTED) != 0;
  if (!selected || change.iItem == Selected || change.iItem < 0) return;
  const auto line = static_cast<std::size_t>(change.iItem);
  Application->Guard([&] { Events.OnSelect(line); });
  if (Current != line) Select(Current);
}

/// The indicator's column takes no clicks.
void TNativeTreeList::TImpl::OnColumnClick(const NMLISTVIEW& click) {
  if (click.iSubItem == 0) return;
  Application->Guard([&] { Events.OnHeaderClick(static_cast<std::size_t>(click.iSubItem - 1)); });
}

bool TNativeTreeList::TImpl::OnKeyDown(WPARAM key) {
  // The list view would undo the selection, or fit its columns. The characters come by WM_CHAR.
  if (key == VK_SPACE || key == VK_ADD) return true;
  const auto meaning = KeyOf(key);
  if (!meaning) return false;
  Application->Guard([this, meaning] { Events.OnKey(*meaning); });
  return true;
}

bool TNativeTreeList::TImpl::OnChar(WPARAM letter) {
  constexpr WPARAM kCtrlC = 3;
  if (letter == kCtrlC) CopyCurrentRow();
  if (letter < u' ') return letter == kCtrlC;
  const LONG now = ::GetMessageTime();
  const bool continued = LastLetter != 0 && now - LastLetter < kSearchPause;
  LastLetter = now;
  Application->Guard([&] { Events.OnLetter(static_cast<char16_t>(letter), continued); });
  return true;
}

void TNativeTreeList::TImpl::OnButtonDown(UINT message, LPARAM position) {
  ::SetFocus(List.Get());
  const POINT place{static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
  const int line = LineAt(place);
  if (line == kNoLine) return;
  const auto number = static_cast<std::size_t>(line);
  Application->Guard([&] {
    const TTreeListLine shape = Events.Line(number);
    const int x = static_cast<int>(place.x - RowArea(line).left) - Painter.Metrics().Indicator;
    if (message != WM_RBUTTONDOWN && shape.HasChildren && !Widths.empty() && x < Widths.front() &&
        Painter.IsSign(x, shape.Indent)) {
      Events.OnToggle(number);
    } else if (message == WM_LBUTTONDBLCLK) {
      Events.OnDoubleClick(number);
    } else {
      Events.OnSelect(number);
    }
  });
}

/// Shows a hint over a cell that is too narrow for its text.
void TNativeTreeList::TImpl::OnMouseMove(LPARAM position) {
  const POINT place{static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
  const int line = LineAt(place);
  RECT cell = RowArea(line);
  cell.right = cell.left + Painter.Metrics().Indicator;
  UnicodeString hint;
  for (std::size_t i = 0; i < Columns.size() && line != kNoLine && !Frozen; ++i) {
    cell.left = std::exchange(cell.right, cell.right + Widths[i]);
    if (place.x < cell.left || place.x >= cell.right) continue;
    Application->Guard([&] {
      const auto number = static_cast<std::size_t>(line);
      const TTreeListCell content = Events.Cell(number, i);
      const TTreeListLine shape = Events.Line(number);
      const int tree = i == 0 ? Painter.TreeWidth(shape.Indent, shape.Image) : 0;
      if (tree + Painter.CellWidth(content) <= Widths[i]) return;
      hint = TextOf(content);
    });
    break;
  }
  ToolTip.Track(List.Get(), cell, hint);
}

// --- drawing ---

LRESULT TNativeTreeList::TImpl::OnCustomDraw(const NMLVCUSTOMDRAW& part) {
  switch (part.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      DrawGround(part.nmcd.hdc);
      return CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT:
      Application->Guard([&] { DrawRow(part.nmcd.hdc, static_cast<int>(part.nmcd.dwItemSpec)); });
      return CDRF_SKIPDEFAULT;
    default:
      return CDRF_DODEFAULT;
  }
}

/// The indicator's column continues below the last row.
void TNativeTreeList::TImpl::DrawGround(HDC dc) const {
  RECT area{};
  ::GetClientRect(List.Get(), &area);
  RECT header{};
  ::GetWindowRect(Header(), &header);
  area.top = header.bottom - header.top;
  Painter.PaintIndicatorGround(dc, area);
}

void TNativeTreeList::TImpl::DrawRow(HDC dc, int line) {
  const auto number = static_cast<std::size_t>(line);
  if (Frozen || number >= Count) return;
  TTreeRowView row;
  row.Area = RowArea(line);
  row.Widths = Widths;
  row.Columns = Columns;
  row.Line = Events.Line(number);
  std::vector<TTreeListCell> cells;
  for (std::size_t i = 0; i < Columns.size(); ++i) cells.push_back(Events.Cell(number, i));
  row.Cells = cells;
  row.First = line == 0;
  row.Current = number == Current;
  row.Focused = ::GetFocus() == List.Get();
  row.FocusCue = row.Focused && (ToList(WM_QUERYUISTATE) & UISF_HIDEFOCUS) == 0;
  row.Enabled = ::IsWindowEnabled(List.Get()) != FALSE;
  Painter.Paint(dc, row);
}

/// Screen readers ask for these texts. The indicator's column, drawn without text, holds the row's name: the
/// file's, then its place in the tree.
void TNativeTreeList::TImpl::OnGetDispInfo(LVITEMW& item) {
  if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return;
  UnicodeString text;
  Application->Guard([&] {
    const auto line = static_cast<std::size_t>(item.iItem);
    const auto column = static_cast<std::size_t>(item.iSubItem);
    if (Frozen || line >= Count || column > Columns.size()) return;
    if (column == 0) {
      text = Description(line);
      return;
    }
    text = TextOf(Events.Cell(line, column - 1));
  });
  const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax - 1));
  std::copy_n(Wide(text), length, item.pszText);
  item.pszText[length] = L'\0';
}

UnicodeString TNativeTreeList::TImpl::Description(std::size_t line) const {
  const auto path = std::ranges::find_if(Columns, &TTreeListHeader::Path);
  UnicodeString text;
  if (path != Columns.end()) {
    const TTreeListCell file = Events.Cell(line, static_cast<std::size_t>(path - Columns.begin()));
    text.append(FileNameWithoutFolder(file.Text)).append(u", ");
  }
  const TTreeListLine shape = Events.Line(line);
  text += u"Ebene " + DecimalText(shape.Level + 1);
  return !shape.HasChildren ? text : text + (shape.Open ? u", geöffnet" : u", geschlossen");
}

void TNativeTreeList::TImpl::CopyCurrentRow() const {
  if (Frozen || Current >= Count) return;
  UnicodeString text;
  Application->Guard([&] {
    for (std::size_t i = 0; i < Columns.size(); ++i)
      text += (i > 0 ? u"\t" : u"") + Events.Cell(Current, i).Text;
  });
  const std::size_t size = (text.size() + 1) * sizeof(char16_t);
  if (!::OpenClipboard(List.Get())) return;
  ::EmptyClipboard();
  if (const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, size); memory != nullptr) {
    std::memcpy(::GlobalLock(memory), text.c_str(), size);
    ::GlobalUnlock(memory);
    // The clipboard owns it from here on.
    if (::SetClipboardData(CF_UNICODETEXT, memory) == nullptr) ::GlobalFree(memory);
  }
  ::CloseClipboard();
}

// --- places ---

void TNativeTreeList::TImpl::Arrange() {
  RECT area{};
  ::GetClientRect(Host, &area);
  const int bar = std::min<int>(Navigator.Height(), area.bottom);
  ::SetWindowPos(List.Get(), nullptr, 0, 0, area.right, area.bottom - bar, SWP_NOZORDER | SWP_NOACTIVATE);
  Navigator.Arrange({0, area.bottom - bar, area.right, area.bottom});
}

void TNativeTreeList::TImpl::RefreshColours() {
  Navigator.UpdateColours();
  ToList(LVM_SETBKCOLOR, 0, static_cast<LPARAM>(::GetSysColor(COLOR_WINDOW)));
  ::RedrawWindow(Host, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

RECT TNativeTreeList::TImpl::RowArea(int line) const {
  RECT area{};
  area.left = LVIR_BOUNDS;
  ToList(LVM_GETITEMRECT, static_cast<WPARAM>(line), reinterpret_cast<LPARAM>(&area));
  return area;
}

int TNativeTreeList::TImpl::LineAt(POINT place) const {
  LVHITTESTINFO hit{};
  hit.pt = place;
  const auto line = static_cast<int>(ToList(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  return line >= 0 && static_cast<std::size_t>(line) < Count ? line : kNoLine;
}

void TNativeTreeList::TImpl::RedrawCurrent() {
  if (Current == TTreeListModel::kNone) return;
  ToList(LVM_REDRAWITEMS, Current, static_cast<LPARAM>(Current));
}

void TNativeTreeList::TImpl::SetWidth(std::size_t listColumn, int width) {
  SettingWidths = true;
  ToList(LVM_SETCOLUMNWIDTH, listColumn, MAKELPARAM(width, 0));
  SettingWidths = false;
}

/// The indicator's divider and the right edge of the whole cannot be moved.
bool TNativeTreeList::TImpl::IsFixedDivider(POINT place) const {
  HDHITTESTINFO hit{};
  hit.pt = place;
  ::SendMessageW(Header(), HDM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
  const bool divider = (hit.flags & (HHT_ONDIVIDER | HHT_ONDIVOPEN)) != 0;
  return divider && (hit.iItem == 0 || static_cast<std::size_t>(hit.iItem) == Columns.size());
}

/// Tells the list view, and by it screen readers, which row is the current one.
void TNativeTreeList::TImpl::Select(std::size_t line) {
  LVITEMW item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  const int wanted = line == TTreeListModel::kNone ? kNoLine : static_cast<int>(line);
  if (Selected != wanted && Selected != kNoLine && static_cast<std::size_t>(Selected) < Count) {
    ToList(LVM_SETITEMSTATE, static_cast<WPARAM>(Selected), reinterpret_cast<LPARAM>(&item));
  }
  RedrawCurrent();
  Selected = wanted;
  Current = line;
  if (wanted == kNoLine) return Navigator.Enable(false, false);
  item.state = item.stateMask;
  ToList(LVM_SETITEMSTATE, static_cast<WPARAM>(wanted), reinterpret_cast<LPARAM>(&item));
  RedrawCurrent();
  Navigator.Enable(line > 0, line + 1 < Count);
}
