#include "ui/NativeTreeList.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "headless/Machine.h"
#include "headless/TreeListScreen.h"
#include "ui/Application.h"

namespace {

constexpr int kCharacterWidth = 6;
constexpr int kLineHeight = 20;
constexpr int kIndicatorWidth = 15;
constexpr int kLevelWidth = 16;

struct TList {
  const headless::TDesktopWindow& Host;
  TTreeListEvents Events;
  int Dpi = kDesignDpi;
  std::vector<TTreeListHeader> Columns{};
  std::vector<int> Widths{};
  std::size_t LineCount = 0;
  std::size_t Current = TTreeListModel::kNone;
  std::size_t Top = 0;
  UnicodeString Info{};
  bool Frozen = false;

  static std::vector<TList*>& Living() {
    static std::vector<TList*> living;
    return living;
  }
  /// Throws std::out_of_range where there is no list.
  static TList& Shown() { return *Living().at(Living().size() - 1); }

  int Scaled(int designed) const { return ScaledToDpi(designed, Dpi); }
  /// Header and button bar take one line each.
  std::size_t PageSize() const {
    return static_cast<std::size_t>(std::max(Host.Bounds.Height() / Scaled(kLineHeight) - 2, 1));
  }
  std::string Drawn(std::size_t line) const;
};

std::string TList::Drawn(std::size_t line) const {
  const TTreeListLine shape = Events.Line(line);
  std::string text = line == Current ? "> " : "  ";
  text.append(2 * static_cast<std::size_t>(shape.Indent), ' ');
  text += !shape.HasChildren ? "    " : shape.Open ? "[-] " : "[+] ";
  text += std::to_string(shape.Image);
  for (std::size_t column = 0; column < Columns.size(); ++column) {
    const TTreeListCell cell = Events.Cell(line, column);
    text += " | ";
    if (!cell.Warning.empty()) text += "(" + Utf8FromText(cell.Warning) + ") ";
    text += Utf8FromText(cell.Text);
  }
  return text;
}

}  // namespace

struct TNativeTreeList::TImpl : TList {};

TNativeTreeList::TNativeTreeList(TNativeWindow& host, TTreeListEvents events)
    : fImpl(new TImpl{{*reinterpret_cast<headless::TDesktopWindow*>(host.Handle()), std::move(events)}}) {
  TList::Living().push_back(fImpl.get());
}

TNativeTreeList::~TNativeTreeList() {
  std::erase(TList::Living(), fImpl.get());
}

void TNativeTreeList::SetName(TextView) {}

void TNativeTreeList::SetScale(const TFont&, const TFont&, int dpi) {
  fImpl->Dpi = dpi;
}

void TNativeTreeList::SetColumns(std::span<const TTreeListHeader> columns) {
  fImpl->Columns.assign(columns.begin(), columns.end());
}

void TNativeTreeList::SetColumnWidths(std::span<const int> widths) {
  fImpl->Widths.assign(widths.begin(), widths.end());
}

void TNativeTreeList::SetLines(std::size_t count, std::size_t current) {
  fImpl->LineCount = count;
  fImpl->Current = current;
  fImpl->Top = std::min(fImpl->Top, count - std::min(count, fImpl->PageSize()));
}

void TNativeTreeList::SetCurrent(std::size_t line) {
  fImpl->Current = line;
  fImpl->Top = std::min(fImpl->Top, line);
  if (line >= fImpl->Top + fImpl->PageSize()) fImpl->Top = line + 1 - fImpl->PageSize();
}

void TNativeTreeList::SetInfo(TextView text) {
  fImpl->Info = text;
}

void TNativeTreeList::SetFrozen(bool frozen) {
  fImpl->Frozen = frozen;
}

int TNativeTreeList::ColumnSpace() const {
  return std::max(fImpl->Host.Bounds.Width() - fImpl->Scaled(kIndicatorWidth), 0);
}

std::size_t TNativeTreeList::PageSize() const {
  return fImpl->PageSize();
}

int TNativeTreeList::NeededWidth(const TTreeListCell& cell) const {
  return fImpl->Scaled(kCharacterWidth * static_cast<int>(cell.Text.size() + cell.Warning.size() + 2));
}

int TNativeTreeList::TreeWidth(int indent) const {
  return fImpl->Scaled((indent + 2) * kLevelWidth);
}

int TNativeTreeList::NeededHeaderWidth(TextView caption) const {
  return fImpl->Scaled(kCharacterWidth * static_cast<int>(caption.size() + 2));
}

namespace headless {

std::vector<std::string> TTreeListScreen::Lines() {
  const TList& list = TList::Shown();
  std::vector<std::string> lines;
  if (list.Frozen) return lines;
  for (std::size_t line = list.Top; line < std::min(list.LineCount, list.Top + list.PageSize()); ++line) {
    Application->Guard([&] { lines.push_back(list.Drawn(line)); });
  }
  return lines;
}

std::string TTreeListScreen::Headers() {
  std::string headers;
  for (const TTreeListHeader& column : TList::Shown().Columns) {
    headers += (headers.empty() ? "" : " | ") + Utf8FromText(column.Caption);
  }
  return headers;
}

std::string TTreeListScreen::Info() {
  return Utf8FromText(TList::Shown().Info);
}

std::vector<int> TTreeListScreen::ColumnWidths() {
  return TList::Shown().Widths;
}

bool TTreeListScreen::Frozen() {
  return TList::Shown().Frozen;
}

void TTreeListScreen::Press(TTreeKey key) {
  Application->Guard([key] { TList::Shown().Events.OnKey(key); });
}

void TTreeListScreen::Type(TextView letters) {
  Application->Guard([letters] {
    for (std::size_t i = 0; i < letters.size(); ++i) TList::Shown().Events.OnLetter(letters[i], i > 0);
  });
}

void TTreeListScreen::Select(std::size_t line) {
  Application->Guard([line] { TList::Shown().Events.OnSelect(line); });
}

void TTreeListScreen::Toggle(std::size_t line) {
  Application->Guard([line] { TList::Shown().Events.OnToggle(line); });
}

void TTreeListScreen::DoubleClick(std::size_t line) {
  Application->Guard([line] { TList::Shown().Events.OnDoubleClick(line); });
}

void TTreeListScreen::MoveDivider(std::size_t column, int width) {
  Application->Guard([=] { TList::Shown().Events.OnDividerMoved(column, width); });
}

void TTreeListScreen::DoubleClickDivider(std::size_t column) {
  Application->Guard([column] { TList::Shown().Events.OnDividerDoubleClick(column); });
}

void TTreeListScreen::ClickHeader(std::size_t column) {
  Application->Guard([column] { TList::Shown().Events.OnHeaderClick(column); });
}

}  // namespace headless
