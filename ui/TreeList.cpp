#include "ui/TreeList.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "ui/Application.h"
#include "ui/ColumnLayout.h"

/// Puts the query's cursor back to where it was, even if that was after the last row.
struct TTreeList::TCursorKeeper {
  explicit TCursorKeeper(TQuery& query) : Query(query), Row(query.Row()) {}
  TCursorKeeper(const TCursorKeeper&) = delete;
  TCursorKeeper& operator=(const TCursorKeeper&) = delete;
  ~TCursorKeeper() { Query.GoTo(Row); }

  TQuery& Query;
  std::size_t Row;
};

void TTreeColumn::SetVisible(bool visible) {
  fDesign.Visible = visible;
  fList.ShowColumns();
}

void TTreeColumn::ApplyBestFit() {
  fFitWanted = true;
  if (!fList.Updating()) fList.FitWantedColumns();
}

/// The answer is entered before it is asked for: a handler that fails is not called again and again.
const UnicodeString& TTreeColumn::WarningFor(const UnicodeString& value) {
  const auto [entry, isNew] = fWarnings.try_emplace(value);
  if (isNew && OnValidateDrawValue) {
    Application->Guard([this, &entry = *entry] { entry.second = OnValidateDrawValue(entry.first); });
  }
  return entry->second;
}

TTreeList::TTreeList(TForm& form) : TControl(TWindowKind::TreeList, form), fNative(Window(), Events()) {
  TTreeList::Arranged();
  ShowCurrent();
}

TTreeList::~TTreeList() {
  if (fQuery != nullptr) fQuery->OnChange = nullptr;
}

TTreeListEvents TTreeList::Events() {
  return {
      .Line = [this](std::size_t line) { return LineAt(line); },
      .Cell = [this](std::size_t line, std::size_t column) { return CellAt(line, column); },
      .OnKey = [this](TTreeKey key) { KeyPressed(key); },
      .OnLetter = [this](char16_t letter, bool continued) { LetterTyped(letter, continued); },
      .OnSelect = [this](std::size_t line) { LineSelected(line); },
      .OnToggle = [this](std::size_t line) { LineToggled(line); },
      .OnDoubleClick =
          [this](std::size_t line) {
            LineToggled(line);
            if (OnDblClick && line < fModel.LineCount()) OnDblClick();
          },
      .OnHeaderClick =
          [this](std::size_t column) {
            if (OnColumnHeaderClick && !Application->Busy()) OnColumnHeaderClick(*fVisible.at(column));
          },
      .OnWidthChanged = [this] { FitWidths(); },
  };
}

// --- columns ---

TTreeColumn& TTreeList::AddColumn(TTreeColumnDesign design) {
  fColumns.push_back(std::make_unique<TTreeColumn>(*this, std::move(design)));
  if (fColumns.back()->Visible()) ShowColumns();
  return *fColumns.back();
}

void TTreeList::SetHeaderFont(const TFont& font) {
  fHeaderFont = font;
  fScaledDpi = 0;
  Arranged();
}

/// A new place alone costs no new fonts.
void TTreeList::Arranged() {
  if (fScaledDpi != Dpi() || fScaledFont != Font()) {
    fScaledDpi = Dpi();
    fScaledFont = Font();
    fNative.SetScale(fScaledFont, fHeaderFont, fScaledDpi);
  }
  FitWidths();
}

void TTreeList::ShowColumns() {
  fVisible.clear();
  std::vector<TTreeListHeader> headers;
  for (const auto& column : fColumns) {
    if (!column->Visible()) continue;
    fVisible.push_back(column.get());
    headers.push_back({column->Caption(), column->Alignment()});
  }
  BindFields();
  fNative.SetColumns(headers);
  FitWidths();
}

void TTreeList::FitWidths() {
  std::vector<int> shares;
  for (const TTreeColumn* column : fVisible) shares.push_back(ShareOf(*column));
  const int space = fNative.ColumnSpace();
  std::vector<int> widths = DivideWidth(shares, space);
  // Where room is short, the other columns give way to what the tree's column needs.
  const bool fitted = !fVisible.empty() && fVisible.front()->fFittedWidth != 0;
  const int needed = fitted ? std::min(ScaledToDpi(shares.front(), Dpi()), space / 2) : 0;
  if (needed != 0 && widths.front() < needed) {
    widths = DivideWidth(std::span(shares).subspan(1), space - needed);
    widths.insert(widths.begin(), needed);
  }
  fNative.SetColumnWidths(widths);
}

/// The tree's column grows with the branches that are opened, but leaves half of the width to the others.
int TTreeList::ShareOf(const TTreeColumn& column) const {
  if (column.fFittedWidth == 0) return column.fDesign.Width;
  if (&column != fVisible.front()) return column.fFittedWidth;
  int designed = 0;
  for (const TTreeColumn* each : fVisible) designed += each->fDesign.Width;
  const int level = std::min(fDepth, designed);  // deeper than there are pixels
  return std::min(column.fFittedWidth + Designed(fNative.TreeWidth(level)), std::max(designed / 2, 1));
}

int TTreeList::Designed(int pixels) const {
  return (pixels * kDesignDpi + Dpi() - 1) / Dpi();
}

void TTreeList::FitWantedColumns() {
  for (TTreeColumn* column : fVisible) {
    if (std::exchange(column->fFitWanted, false)) Fit(*column);
  }
  FitWidths();
}

/// One walk over the rows in view, and one measurement.
void TTreeList::Fit(TTreeColumn& column) {
  if (fModel.LineCount() == 0) return;
  const TCursorKeeper keeper(*fQuery);
  const TField& field =
      fFields[static_cast<std::size_t>(std::ranges::find(fVisible, &column) - fVisible.begin())];
  const UnicodeString longest = fModel.LongestText([this, &field](std::size_t record) {
    fQuery->GoTo(record);
    return field.AsText();
  });
  const int caption = fNative.NeededHeaderWidth(column.Caption());
  column.fFittedWidth = Designed(std::max(caption, fNative.NeededWidth(longest)));
}

// --- binding ---

void TTreeList::SetDataSource(TQuery* query) {
  if (fQuery != nullptr) {
    Unbind();
    fQuery->OnChange = nullptr;
  }
  fQuery = query;
  if (fQuery == nullptr) return;
  fQuery->OnChange = [this](TQueryChange change) { QueryChanged(change); };
  if (fQuery->Active()) QueryChanged(TQueryChange::Opened);
}

void TTreeList::QueryChanged(TQueryChange change) {
  if (change == TQueryChange::Closing) return Unbind();
  fBindWanted = Updating();
  // The cursor is on the new row, and stays there.
  if (!Updating()) Bind(change == TQueryChange::Inserted ? fQuery->Row() : TTreeListModel::kNone);
}

void TTreeList::Bind(std::size_t currentRecord) {
  try {
    fModel.Clear();
    AttachRows(fModel);
    BindFields();
    const std::size_t node = fModel.NodeOf(currentRecord);
    if (node != TTreeListModel::kNone) fModel.MakeCurrent(node);
    MoveCursor();
  } catch (...) {
    Unbind();
    throw;
  }
  ShowLines();
  ShowCurrent();
}

/// Leaves the query's cursor at the end.
void TTreeList::AttachRows(TTreeListModel& model) const {
  const TField key = fQuery->Field(KeyField);
  const TField parent = fQuery->Field(ParentField);
  std::optional<TField> image;
  if (!ImageField.empty()) image.emplace(fQuery->Field(ImageField));
  std::vector<TTreeRow> rows;
  rows.reserve(fQuery->RowCount());
  for (fQuery->First(); !fQuery->Eof(); fQuery->Next()) {
    const std::int64_t number = image ? image->AsInteger() : kNoImage;
    rows.push_back({key.AsInteger(), parent.AsInteger(), static_cast<std::int32_t>(number)});
  }
  model.Attach(rows, RootValue);
}

void TTreeList::BindFields() {
  fFields.clear();
  if (fModel.NodeCount() == 0) return;
  for (const TTreeColumn* column : fVisible) fFields.push_back(fQuery->Field(column->FieldName()));
}

void TTreeList::Unbind() noexcept {
  fModel.Clear();
  fFields.clear();
  fBindWanted = false;
  Application->Guard([this] {
    ShowLines();
    ShowCurrent();
  });
}

void TTreeList::MoveCursor() {
  if (fModel.Current() != TTreeListModel::kNone) fQuery->GoTo(fModel.Record(fModel.Current()));
}

void TTreeList::BeginUpdate() {
  if (fUpdates++ == 0) fNative.SetFrozen(true);
}

void TTreeList::EndUpdate() noexcept {
  if (fUpdates == 0 || --fUpdates > 0) return;
  Application->Guard([this] {
    if (std::exchange(fBindWanted, false)) {
      Bind(TTreeListModel::kNone);
    } else {
      MoveCursor();
      ShowLines();
      ShowCurrent();
    }
    FitWantedColumns();
  });
  Application->Guard([this] { fNative.SetFrozen(false); });
}

// --- what the user sees and does ---

/// The depth comes first: where the native list gets a scroll bar it fits the widths by itself, and fitting
/// them once more then changes nothing.
void TTreeList::ShowLines() {
  const bool depthChanged = std::exchange(fDepth, fModel.Depth()) != fModel.Depth();
  fNative.SetLines(fModel.LineCount(), fModel.CurrentLine());
  if (depthChanged) FitWidths();
}

void TTreeList::ShowCurrent() {
  const std::size_t current = fModel.Current();
  std::size_t position = 0;
  if (current != TTreeListModel::kNone) {
    fNative.SetCurrent(fModel.CurrentLine());
    position = fModel.Record(current) + 1;
  }
  fNative.SetInfo(DecimalText(static_cast<std::int64_t>(position)) + u" von " +
                  DecimalText(static_cast<std::int64_t>(fModel.NodeCount())));
}

/// Changes the model and shows the difference; `reveal` also brings a current row that stayed the same into
/// view.
template <class TChange>
void TTreeList::Perform(bool reveal, TChange&& change) {
  const std::size_t current = fModel.Current();
  const std::size_t lines = fModel.LineCount();
  change();
  const bool moved = fModel.Current() != current;
  if (moved) MoveCursor();
  if (Updating()) return;
  if (fModel.LineCount() != lines) ShowLines();
  if (moved || reveal) ShowCurrent();
}

void TTreeList::FullExpand() {
  Perform(true, [this] { fModel.OpenAll(); });
}

void TTreeList::FullCollapse() {
  Perform(true, [this] { fModel.CloseAll(); });
}

void TTreeList::KeyPressed(TTreeKey key) {
  if (Updating() || Application->Busy()) return;
  Perform(true, [this, key] { fModel.Press(key, fNative.PageSize()); });
}

/// The same letter again looks for the next row that begins with it.
void TTreeList::LetterTyped(char16_t letter, bool continued) {
  if (Updating() || Application->Busy() || fModel.NodeCount() == 0 || fVisible.empty()) return;
  if (!continued) {
    if (letter == u'+') return KeyPressed(TTreeKey::Open);
    if (letter == u'-') return KeyPressed(TTreeKey::Close);
    if (letter == u'*') return KeyPressed(TTreeKey::OpenBranch);
    fTyped.clear();
  }
  if (fTyped != TextView(&letter, 1)) fTyped += letter;
  const std::size_t from = fModel.Current() + (fTyped.size() == 1 ? 1 : 0);
  Perform(true, [this, from] {
    const TCursorKeeper keeper(*fQuery);
    const TField field = fQuery->Field(SearchField.empty() ? fVisible.front()->FieldName() : SearchField);
    fModel.Find(fTyped, from, [this, &field](std::size_t record) {
      fQuery->GoTo(record);
      return field.AsText();
    });
  });
}

void TTreeList::LineSelected(std::size_t line) {
  if (Updating() || Application->Busy() || line >= fModel.LineCount()) return;
  Perform(true, [this, line] { fModel.MakeCurrent(fModel.NodeAt(line)); });
}

void TTreeList::LineToggled(std::size_t line) {
  if (Updating() || Application->Busy() || line >= fModel.LineCount()) return;
  Perform(false, [this, line] { fModel.Toggle(fModel.NodeAt(line)); });
}

// --- drawing ---

TTreeListLine TTreeList::LineAt(std::size_t line) const {
  if (Updating() || line >= fModel.LineCount()) return {};
  const std::size_t node = fModel.NodeAt(line);
  TTreeListLine answer{
      fModel.Level(node), fModel.Image(node), fModel.HasChildren(node), fModel.IsOpen(node), {}};
  for (std::size_t i = node; i != TTreeListModel::kNone; i = fModel.Parent(i)) {
    answer.Continues.push_back(fModel.HasNextSibling(i));
  }
  std::reverse(answer.Continues.begin(), answer.Continues.end());
  return answer;
}

/// A row that can no longer be read would fail again with each drawing: the list becomes empty.
TTreeListCell TTreeList::CellAt(std::size_t line, std::size_t column) {
  if (Updating() || line >= fModel.LineCount() || column >= fVisible.size()) return {};
  TTreeColumn& owner = *fVisible[column];
  TTreeListCell cell;
  try {
    const TCursorKeeper keeper(*fQuery);
    fQuery->GoTo(fModel.Record(fModel.NodeAt(line)));
    cell.Text = fFields[column].AsText();
  } catch (...) {
    Unbind();
    throw;
  }
  cell.Warning = owner.WarningFor(cell.Text);
  return cell;
}

void TTreeList::ForEachRow(const std::function<void(const TTreeListRow&)>& visit) const {
  if (fQuery == nullptr || !fQuery->Active()) return;
  const TCursorKeeper keeper(*fQuery);
  TTreeListModel unbound;
  if (fBindWanted) AttachRows(unbound);
  const TTreeListModel& model = fBindWanted ? unbound : fModel;
  std::vector<TField> fields;
  for (const TTreeColumn* column : fVisible) fields.push_back(fQuery->Field(column->FieldName()));
  for (std::size_t node = 0; node < model.NodeCount(); ++node) {
    fQuery->GoTo(model.Record(node));
    TTreeListRow row{model.Level(node), model.Image(node), {}};
    for (const TField& field : fields) row.Texts.push_back(field.AsText());
    visit(row);
  }
}
