#include "ui/NativeTreeList.h"

#include <algorithm>
#include <utility>

#include "ui/Application.h"
#include "ui/windows/NativeTreeListImpl.h"

namespace {

constexpr UINT_PTR kSubclass = 1;

/// Holds back the list view's drawing: it would draw all rows at once for each column that is set.
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

TWindow MakeLabel(HWND host) {
  TWindow label(
      ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 0, 0, host, nullptr, ProgramInstance(), nullptr));
  if (!label) throw LastSystemError();
  return label;
}

TWindow MakeList(HWND host) {
  CommonControls();
  constexpr DWORD kStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | LVS_REPORT | LVS_OWNERDATA |
                           LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS;
  TWindow list(
      ::CreateWindowExW(0, WC_LISTVIEWW, L"", kStyle, 0, 0, 0, 0, host, nullptr, ProgramInstance(), nullptr));
  if (!list) throw LastSystemError();
  constexpr DWORD kExtended = LVS_EX_DOUBLEBUFFER | LVS_EX_FULLROWSELECT;
  ::SendMessageW(list.Get(), LVM_SETEXTENDEDLISTVIEWSTYLE, kExtended, kExtended);
  ::SendMessageW(list.Get(), LVM_SETTOOLTIPS, 0, 0);  // its own hints do not know what we draw
  return list;
}

}  // namespace

TNativeTreeList::TImpl::TImpl(HWND host, TTreeListEvents events)
    : Events(std::move(events)),
      Host(host),
      Label(MakeLabel(host)),
      List(MakeList(host)),
      ToolTip(host),
      Navigator(host, ToolTip) {
  Navigator.Enable(false, false);
  Listen(Host, SubclassProc<&TImpl::HostProc>);
  Listen(List.Get(), SubclassProc<&TImpl::ListProc>);
  Listen(Header(), SubclassProc<&TImpl::HeaderProc>);
  Living = true;
}

TNativeTreeList::TImpl::~TImpl() {
  Living = false;
  StopListening();
}

/// The constructor's last steps; if one fails, nothing may go on calling an object that was never completed.
void TNativeTreeList::TImpl::Listen(HWND window, SUBCLASSPROC procedure) {
  if (CommonControls().SetWindowSubclass(window, procedure, kSubclass, reinterpret_cast<DWORD_PTR>(this)))
    return;
  StopListening();
  throw EError(TErrorKind::System, ERROR_NOT_ENOUGH_MEMORY, u"Die Liste kann nicht angelegt werden");
}

void TNativeTreeList::TImpl::StopListening() noexcept {
  const TCommonControls& controls = CommonControls();
  controls.RemoveWindowSubclass(Header(), SubclassProc<&TImpl::HeaderProc>, kSubclass);
  controls.RemoveWindowSubclass(List.Get(), SubclassProc<&TImpl::ListProc>, kSubclass);
  controls.RemoveWindowSubclass(Host, SubclassProc<&TImpl::HostProc>, kSubclass);
}

/// Handlers guard their calls to the control; this is the last barrier, for a lack of memory and the like.
template <LRESULT (TNativeTreeList::TImpl::*kProc)(UINT message, WPARAM wParam, LPARAM lParam)>
LRESULT CALLBACK TNativeTreeList::TImpl::SubclassProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                                      UINT_PTR, DWORD_PTR data) {
  auto* const self = reinterpret_cast<TImpl*>(data);
  if (!self->Living) return Default(window, message, wParam, lParam);
  LRESULT result = 0;
  Application->Guard([&] { result = (self->*kProc)(message, wParam, lParam); });
  return result;
}

TNativeTreeList::TNativeTreeList(TNativeWindow& host, TTreeListEvents events)
    : fImpl(std::make_unique<TImpl>(reinterpret_cast<HWND>(host.Handle()), std::move(events))) {}

TNativeTreeList::~TNativeTreeList() = default;

void TNativeTreeList::SetName(TextView name) {
  const UnicodeString text(name);
  ::SetWindowTextW(fImpl->Label.Get(), Wide(text));
  ::SetWindowTextW(fImpl->List.Get(), Wide(text));
}

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
  fImpl->SetWidth(0, painter.Metrics().Indicator);
  fImpl->Arrange();
  // The list view lays out a header of another height only with a new frame.
  ::SetWindowPos(fImpl->List.Get(), nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
  ::InvalidateRect(fImpl->Host, nullptr, TRUE);
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
  const bool clickable = std::ranges::any_of(columns, &TTreeListHeader::Clickable);
  const LONG_PTR style = ::GetWindowLongPtrW(fImpl->Header(), GWL_STYLE) & ~LONG_PTR{HDS_BUTTONS};
  ::SetWindowLongPtrW(fImpl->Header(), GWL_STYLE, clickable ? style | HDS_BUTTONS : style);
}

/// Those that shrink come first: columns wider than the window, even for a moment, show a scroll bar.
void TNativeTreeList::SetColumnWidths(std::span<const int> widths) {
  if (std::ranges::equal(widths, fImpl->Widths)) return;
  const TDrawingPause pause(fImpl->List.Get());
  for (const bool shrinking : {true, false}) {
    for (std::size_t i = 0; i < std::min(widths.size(), fImpl->Widths.size()); ++i) {
      if (widths[i] == fImpl->Widths[i] || (widths[i] < fImpl->Widths[i]) != shrinking) continue;
      fImpl->Widths[i] = widths[i];
      fImpl->SetWidth(i + 1, widths[i]);
    }
  }
}

void TNativeTreeList::SetLines(std::size_t count, std::size_t current) {
  fImpl->Count = count;
  fImpl->Current = TTreeListModel::kNone;
  const TDrawingPause pause(fImpl->List.Get());
  fImpl->ToList(LVM_SETITEMCOUNT, count, LVSICF_NOSCROLL);
  fImpl->Select(current);
  // A screen reader's name of the row says whether it is open.
  if (current != TTreeListModel::kNone) {
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

int TNativeTreeList::NeededWidth(const TTreeListCell& cell) const {
  return fImpl->Painter.CellWidth(cell);
}

int TNativeTreeList::TreeWidth(int indent) const {
  return fImpl->Painter.WidestTree(indent);
}

int TNativeTreeList::NeededHeaderWidth(TextView caption) const {
  const TScreenDc screen;
  ::SelectObject(screen.Dc(), fImpl->HeaderFont.Get());
  return TextExtent(screen.Dc(), caption) + 3 * fImpl->Painter.Metrics().Padding;
}
