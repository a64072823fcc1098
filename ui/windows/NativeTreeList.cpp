#include "ui/NativeTreeList.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "ui/Application.h"
#include "ui/windows/CommonControls.h"
#include "ui/windows/ToolTip.h"
#include "ui/windows/TreeNavigator.h"
#include "ui/windows/TreeRowPainter.h"

namespace {

constexpr std::size_t kNone = TTreeListModel::kNone;
constexpr LONG kSearchPause = 1000;  // milliseconds after which a letter begins a new search
constexpr int kNoLine = -1;
constexpr UINT_PTR kSubclass = 1;

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

/// Holds back the list view's drawing: it would draw at once, and all rows, for each column that is set.
class TDrawingPause {
 public:
  explicit TDrawingPause(HWND list) : fList(list) { ::SendMessageW(list, WM_SETREDRAW, FALSE, 0); }
  ~TDrawingPause() {
    ::SendMessageW(fList, WM_SETREDRAW, TRUE, 0);
    ::RedrawWindow(fList, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
  }
  TDrawingPause(const TDrawingPause&) = delete;
  TDrawingPause& operator=(const TDrawingPause&) = delete;

 private:
  HWND fList;
};

TWindow MakeList(HWND host) {
  CommonControls();
  constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | LVS_REPORT | LVS_OWNERDATA |
                           LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS;
  TWindow list(
      ::CreateWindowExW(0, WC_LISTVIEWW, L"", kStyle, 0, 0, 0, 0, host, nullptr, ProgramInstance(), nullptr));
  if (!list) throw LastSystemError();
  constexpr DWORD kExtended = LVS_EX_DOUBLEBUFFER | LVS_EX_FULLROWSELECT;
  ::SendMessageW(list.Get(), LVM_SETEXTENDEDLISTVIEWSTYLE, kExtended, kExtended);
  ::SendMessageW(list.Get(), LVM_SETTOOLTIPS, 0, 0);  // its own hints know nothing of what we draw
  return list;
}

}  // namespace

/// Two windows of the system are listened to: the host, which hears what the list reports, and the list,
/// whose keys and mouse go to the control instead. The list view scrolls, keeps the header and speaks to
/// screen readers; which row is current, and every drawn pixel of a row, is ours.
struct TNativeTreeList::TImpl {
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
  std::size_t Current = kNone;
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

TNativeTreeList::TImpl::TImpl(HWND host, TTreeListEvents events)
    : Events(std::move(events)), Host(host), List(MakeList(host)), ToolTip(host), Navigator(host, ToolTip) {
  ::SetWindowLongPtrW(Header(), GWL_STYLE, ::GetWindowLongPtrW(Header(), GWL_STYLE) | HDS_NOSIZING);
  Navigator.Enable(false, false);
  Listen(Host, SubclassProc<&TImpl::HandleHost>);
  Listen(List.Get(), SubclassProc<&TImpl::HandleList>);
  Listen(Header(), SubclassProc<&TImpl::HandleHeader>);
  Living = true;
}

TNativeTreeList::TImpl::~TImpl() {
  Living = false;
  StopListening();
}

/// The constructor's last steps; when one fails, nothing may go on calling an object that never came to be.
void TNativeTreeList::TImpl::Listen(HWND window, SUBCLASSPROC procedure) {
  if (CommonControls().SetWindowSubclass(window, procedure, kSubclass, reinterpret_cast<DWORD_PTR>(this)))
    return;
  StopListening();
  throw EError(TErrorKind::System, ERROR_NOT_ENOUGH_MEMORY, u"Die Liste kann nicht angelegt werden");
}

void TNativeTreeList::TImpl::StopListening() noexcept {
  const TCommonControls& controls = CommonControls();
  controls.RemoveWindowSubclass(Header(), SubclassProc<&TImpl::HandleHeader>, kSubclass);
  controls.RemoveWindowSubclass(List.Get(), SubclassProc<&TImpl::HandleList>, kSubclass);
  controls.RemoveWindowSubclass(Host, SubclassProc<&TImpl::HandleHost>, kSubclass);
}

/// Handlers guard what they hand to the control; this is the last barrier, for want of memory and its like.
template <LRESULT (TNativeTreeList::TImpl::*kHandle)(UINT message, WPARAM wParam, LPARAM lParam)>
LRESULT CALLBACK TNativeTreeList::TImpl::SubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                                      UINT_PTR, DWORD_PTR data) {
  auto* const self = reinterpret_cast<TImpl*>(data);
  if (!self->Living) return Default(window, message, wParam, lParam);
  LRESULT result = 0;
  Application->Guard([&] { result = (self->*kHandle)(message, wParam, lParam); });
  return result;
}

// --- messages ---

LRESULT TNativeTreeList::TImpl::HandleHost(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      Arrange();
      break;
    case WM_SETFOCUS:
      ::SetFocus(List.Get());
      return 0;
    case WM_NOTIFY: {
      const auto answer = HandleNotification(*reinterpret_cast<const NMHDR*>(lParam), lParam);
      if (answer) return *answer;
      break;
    }
    case WM_COMMAND:
      if (const auto key = TTreeNavigator::KeyOf(LOWORD(wParam)); key && HIWORD(wParam) == BN_CLICKED) {
        // Else Enter would press the button again instead of the dialog's default button.
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

LRESULT TNativeTreeList::TImpl::HandleList(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_KEYDOWN:
      if (HandleKey(wParam)) return 0;
      break;
    case WM_CHAR:
      if (HandleLetter(wParam)) return 0;
      break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
      HandleMouse(message, lParam);
      return 0;
    case WM_MOUSEMOVE:
      ShowHint(lParam);
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
LRESULT TNativeTreeList::TImpl::HandleHeader(UINT message, WPARAM wParam, LPARAM lParam) {
  const LRESULT result = Default(Header(), message, wParam, lParam);
  if (message != HDM_LAYOUT) return result;
  const HDLAYOUT& layout = *reinterpret_cast<const HDLAYOUT*>(lParam);
  layout.pwpos->cy = HeaderHeight;
  layout.prc->top = HeaderHeight;
  return result;
}

std::optional<LRESULT> TNativeTreeList::TImpl::HandleNotification(const NMHDR& header, LPARAM lParam) {
  if (header.hwndFrom != List.Get()) return std::nullopt;
  switch (header.code) {
    case NM_CUSTOMDRAW:
      return DrawPart(*reinterpret_cast<const NMLVCUSTOMDRAW*>(lParam));
    case LVN_GETDISPINFOW:
      GiveText(reinterpret_cast<NMLVDISPINFOW*>(lParam)->item);
      return 0;
    case LVN_COLUMNCLICK:
      if (const int column = reinterpret_cast<const NMLISTVIEW*>(lParam)->iSubItem; column > 0) {
        Application->Guard([this, column] { Events.OnHeaderClick(static_cast<std::size_t>(column - 1)); });
      }
      return 0;
    default:
      return std::nullopt;
  }
}

bool TNativeTreeList::TImpl::HandleKey(WPARAM key) {
  // The list view would take back the selection, or fit its columns: what such a key types comes as a letter.
  if (key == VK_SPACE || key == VK_ADD) return true;
  const auto meaning = KeyOf(key);
  if (!meaning) return false;
  Application->Guard([this, meaning] { Events.OnKey(*meaning); });
  return true;
}

bool TNativeTreeList::TImpl::HandleLetter(WPARAM letter) {
  if (letter < u' ') return false;
  const LONG now = ::GetMessageTime();
  const bool continued = LastLetter != 0 && now - LastLetter < kSearchPause;
  if (letter == u' ' && !continued) return true;
  const bool isCommand = !continued && (letter == u'+' || letter == u'-' || letter == u'*');
  LastLetter = isCommand ? 0 : now;
  Application->Guard([&] { Events.OnLetter(static_cast<char16_t>(letter), continued); });
  return true;
}

void TNativeTreeList::TImpl::HandleMouse(UINT message, LPARAM position) {
  ::SetFocus(List.Get());
  const POINT place{static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
  const int line = LineAt(place);
  if (line == kNoLine) return;
  const auto number = static_cast<std::size_t>(line);
  Application->Guard([&] {
    const TTreeListLine shape = Events.Line(number);
    const int x = static_cast<int>(place.x - RowArea(line).left) - Painter.Metrics().Indicator;
    if (message != WM_RBUTTONDOWN && shape.HasChildren && Painter.IsSign(x, shape.Level)) {
      Events.OnMouse(TTreeListMouse::Toggle, number);
    } else {
      Events.OnMouse(message == WM_LBUTTONDBLCLK ? TTreeListMouse::DoubleClick : TTreeListMouse::Select,
                     number);
    }
  });
}

/// A hint where the mouse is over a cell that is too narrow for its text.
void TNativeTreeList::TImpl::ShowHint(LPARAM position) {
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
      const int tree = i == 0 ? Painter.TreeWidth(shape.Level, shape.Image) : 0;
      if (tree + Painter.CellWidth(content, Columns[i]) <= Widths[i]) return;
      hint = content.HasWarning ? content.Warning + u"  " + content.Text : content.Text;
    });
    break;
  }
  ToolTip.Track(List.Get(), cell, hint);
}

// --- drawing ---

LRESULT TNativeTreeList::TImpl::DrawPart(const NMLVCUSTOMDRAW& part) {
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

/// The indicator's column goes on below the last row.
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

/// What a screen reader says. The indicator's column is its name for the row, and drawn without text.
void TNativeTreeList::TImpl::GiveText(LVITEMW& item) {
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
    const TTreeListCell cell = Events.Cell(line, column - 1);
    if (cell.HasWarning) text = cell.Warning + u"  ";
    text += Columns[column - 1].CheckBox ? UnicodeString(cell.Checked ? u"Ja" : u"Nein") : cell.Text;
  });
  const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax - 1));
  std::copy_n(Wide(text), length, item.pszText);
  item.pszText[length] = L'\0';
}

UnicodeString TNativeTreeList::TImpl::Description(std::size_t line) const {
  const TTreeListLine shape = Events.Line(line);
  const UnicodeString level = u"Ebene " + DecimalText(shape.Level + 1);
  return !shape.HasChildren ? level : level + (shape.Open ? u", geöffnet" : u", geschlossen");
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
  if (Current == kNone) return;
  ToList(LVM_REDRAWITEMS, Current, static_cast<LPARAM>(Current));
}

/// Tells the list view, and by it screen readers, which row is the current one.
void TNativeTreeList::TImpl::Select(std::size_t line) {
  LVITEMW item{};
  item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  const int wanted = line == kNone ? kNoLine : static_cast<int>(line);
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

// --- contract ---

TNativeTreeList::TNativeTreeList(TNativeWindow& host, TTreeListEvents events)
    : fImpl(std::make_unique<TImpl>(reinterpret_cast<HWND>(host.Handle()), std::move(events))) {}

TNativeTreeList::~TNativeTreeList() = default;

void TNativeTreeList::SetScale(const TFont& rows, const TFont& headers, int dpi) {
  TTreeRowPainter& painter = fImpl->Painter;
  painter.SetScale(rows, dpi);
  fImpl->HeaderFont = MakeFont(headers, dpi);
  fImpl->HeaderHeight =
      std::max(painter.RowHeight(), ScaledToDpi(headers.CharHeight, dpi)) + ScaledToDpi(3, dpi);
  fImpl->ToList(WM_SETFONT, reinterpret_cast<WPARAM>(painter.Font()));
  ::SendMessageW(fImpl->Header(), WM_SETFONT, reinterpret_cast<WPARAM>(fImpl->HeaderFont.Get()), TRUE);
  TImageListHandle images(CommonControls().ImageListCreate(1, painter.RowHeight(), ILC_COLOR, 0, 0));
  fImpl->ToList(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
  fImpl->RowHeightImages = std::move(images);
  fImpl->ToolTip.SetFont(painter.Font());
  fImpl->Navigator.SetScale(painter.Font(), dpi);
  fImpl->ToList(LVM_SETCOLUMNWIDTH, 0, painter.Metrics().Indicator);
  fImpl->Arrange();
  // The list view lays out a header of another height only with a new frame.
  ::SetWindowPos(fImpl->List.Get(), nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
  ::InvalidateRect(fImpl->Host, nullptr, TRUE);
}

void TNativeTreeList::SetNodeImage(int image, TNodeIcon icon) {
  fImpl->Painter.SetNodeImage(image, icon);
  ::InvalidateRect(fImpl->List.Get(), nullptr, FALSE);
}

void TNativeTreeList::SetColumns(std::span<const TTreeListHeader> columns) {
  while (fImpl->ToList(LVM_DELETECOLUMN, 0) != FALSE) {
  }
  LVCOLUMNW column{};
  column.mask = LVCF_WIDTH | LVCF_TEXT | LVCF_FMT;
  column.cx = fImpl->Painter.Metrics().Indicator;
  column.pszText = const_cast<wchar_t*>(L"");
  fImpl->ToList(LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
  fImpl->Columns.assign(columns.begin(), columns.end());
  fImpl->Widths.assign(columns.size(), 0);
  column.cx = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    column.fmt = columns[i].Alignment == TAlignment::Centre ? LVCFMT_CENTER : LVCFMT_LEFT;
    column.pszText = WideBuffer(fImpl->Columns[i].Caption);
    fImpl->ToList(LVM_INSERTCOLUMNW, i + 1, reinterpret_cast<LPARAM>(&column));
  }
}

/// Those that shrink come first: what is wider than the window for a moment would show a scroll bar.
void TNativeTreeList::SetColumnWidths(std::span<const int> widths) {
  if (std::ranges::equal(widths, fImpl->Widths)) return;
  const TDrawingPause pause(fImpl->List.Get());
  for (const bool shrinking : {true, false}) {
    for (std::size_t i = 0; i < std::min(widths.size(), fImpl->Widths.size()); ++i) {
      if (widths[i] == fImpl->Widths[i] || (widths[i] < fImpl->Widths[i]) != shrinking) continue;
      fImpl->Widths[i] = widths[i];
      fImpl->ToList(LVM_SETCOLUMNWIDTH, i + 1, MAKELPARAM(widths[i], 0));
    }
  }
}

void TNativeTreeList::SetLines(std::size_t count, std::size_t current) {
  fImpl->Count = count;
  fImpl->Current = kNone;
  const TDrawingPause pause(fImpl->List.Get());
  fImpl->ToList(LVM_SETITEMCOUNT, count, LVSICF_NOSCROLL);
  fImpl->Select(current);
  // The row's name tells whether it is open.
  if (current != kNone) {
    ::NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, fImpl->List.Get(), OBJID_CLIENT,
                     static_cast<LONG>(current + 1));
  }
}

void TNativeTreeList::SetCurrent(std::size_t line) {
  fImpl->Select(line);
  fImpl->ToList(LVM_ENSUREVISIBLE, line, FALSE);
}

void TNativeTreeList::SetInfo(TextView text) {
  fImpl->Navigator.SetInfo(UnicodeString(text));
}

void TNativeTreeList::SetFrozen(bool frozen) {
  fImpl->Frozen = frozen;
  if (!frozen) ::InvalidateRect(fImpl->List.Get(), nullptr, FALSE);
}

int TNativeTreeList::ColumnSpace() const {
  RECT area{};
  ::GetClientRect(fImpl->List.Get(), &area);
  return std::max(0, static_cast<int>(area.right) - fImpl->Painter.Metrics().Indicator);
}

std::size_t TNativeTreeList::PageSize() const {
  return static_cast<std::size_t>(std::max<LRESULT>(1, fImpl->ToList(LVM_GETCOUNTPERPAGE)));
}

int TNativeTreeList::NeededWidth(TextView text) const {
  return fImpl->Painter.TextWidth(text) + 2 * fImpl->Painter.Metrics().Padding;
}

int TNativeTreeList::TreeWidth(int level) const {
  return fImpl->Painter.WidestTree(level);
}

int TNativeTreeList::NeededHeaderWidth(TextView caption) const {
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fImpl->HeaderFont.Get());
  return TextExtent(screen.Dc(), caption) + 3 * fImpl->Painter.Metrics().Padding;
}
