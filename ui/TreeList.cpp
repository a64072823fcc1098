#include "ui/TreeList.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "ui/Application.h"

namespace {

std::optional<TTreeKey> CommandOf(char16_t letter) {
  switch (letter) {
    case u'+':
      return TTreeKey::Open;
    case u'-':
      return TTreeKey::Close;
    case u'*':
      return TTreeKey::OpenBranch;
    default:
      return std::nullopt;
  }
}

}  // namespace

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

UnicodeString TTreeColumn::KnownWarning(const UnicodeString& value) const {
  const auto known = fWarnings.find(value);
  return known == fWarnings.end() ? UnicodeString() : known->second;
}

TTreeList::TTreeList(TForm& form)
    : TControl(form.Layout()), fWindow(TControlKind::Ground, form.Window()), fNative(fWindow, Events()) {
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
      .OnDividerMoved = [this](std::size_t column, int width) { DividerMoved(column, width); },
      .OnDividerDoubleClick = [this](std::size_t column) { DividerDoubleClicked(column); },
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
  std::vector<int> shares;
  for (const auto& column : fColumns) {
    if (!column->Visible()) continue;
    fVisible.push_back(column.get());
    const TTreeColumnDesign& design = column->fDesign;
    headers.push_back({design.Caption, design.Alignment, design.Clickable, design.Path});
    shares.push_back(design.Width);
  }
  fLayout.SetShares(std::move(shares));
  BindFields();
  fNative.SetColumns(headers);
  FitWidths();
}

void TTreeList::FitWidths() {
  if (fVisible.empty()) return;
  const std::vector<int> widths = fLayout.Widths(fNative.ColumnSpace(), Dpi());
  LimitIndent(widths.front());
  fNative.SetColumnWidths(widths);
}

/// Where the tree's column cannot have what it needs, deep levels are drawn less far to the right: their
/// texts, or half of a column that was never fitted, stay free.
void TTreeList::LimitIndent(int columnWidth) {
  fIndentLimit = std::numeric_limits<int>::max();
  if (fTreeNeeds != 0 && columnWidth >= ScaledToDpi(fTreeNeeds, Dpi())) return;
  const int text = fTreeNeeds != 0 ? ScaledToDpi(fTreeTextNeeds, Dpi()) : columnWidth / 2;
  const int level = std::max(fNative.TreeWidth(1) - fNative.TreeWidth(0), 1);
  fIndentLimit = std::max((columnWidth - text - fNative.TreeWidth(0)) / level, 0);
}

void TTreeList::FitWantedColumns() {
  for (std::size_t i = 0; i < fVisible.size(); ++i) {
    if (!std::exchange(fVisible[i]->fFitWanted, false) || fModel.NodeCount() == 0) continue;
    const int needed = NeededWidth(i);
    if (i == 0) {
      fLayout.KeepFirst(fTreeNeeds);
    } else {
      fLayout.Resize(i, needed, fNative.ColumnSpace(), Dpi());
    }
  }
  FitWidths();
}

/// One walk over all rows.
int TTreeList::NeededWidth(std::size_t column) {
  const TCursorKeeper keeper(*fQuery);
  const TTreeColumn& owner = *fVisible[column];
  int needed = fNative.NeededHeaderWidth(owner.Caption());
  int widestText = 0;
  for (std::size_t node = 0; node < fModel.NodeCount(); ++node) {
    fQuery->GoTo(fModel.Record(node));
    TTreeListCell cell{fFields[column].AsText(), {}};
    cell.Warning = owner.KnownWarning(cell.Text);
    const int width = fNative.NeededWidth(cell);
    widestText = std::max(widestText, width);
    needed = std::max(needed, column == 0 ? width + fNative.TreeWidth(fModel.Level(node)) : width);
  }
  if (column == 0) {
    fTreeNeeds = DesignedWidth(needed, Dpi());
    fTreeTextNeeds = DesignedWidth(widestText, Dpi());
  }
  return needed;
}

void TTreeList::DividerMoved(std::size_t column, int width) {
  if (column >= fVisible.size()) return;
  fLayout.Resize(column, width, fNative.ColumnSpace(), Dpi());
  FitWidths();
}

void TTreeList::DividerDoubleClicked(std::size_t column) {
  if (Updating() || Application->Busy() || fModel.NodeCount() == 0) return;
  DividerMoved(column, NeededWidth(column));
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
  if (change == TQueryChange::Opened) {
    for (const auto& column : fColumns) column->fWarnings.clear();
  }
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

void TTreeList::ShowLines() {
  fNative.SetLines(fModel.LineCount(), fModel.CurrentLine());
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

/// The same letter again finds the next row that begins with it. A sign for a branch is a letter only while a
/// search is on and a name goes on with it.
void TTreeList::LetterTyped(char16_t letter, bool continued) {
  if (Updating() || Application->Busy() || fModel.NodeCount() == 0 || fVisible.empty()) return;
  if (!continued) fTyped.clear();
  const bool searching = !fTyped.empty();
  if (!searching && letter == u' ') return;
  const std::optional<TTreeKey> command = CommandOf(letter);
  if (fTyped != TextView(&letter, 1)) fTyped += letter;
  if ((searching || !command) && FindTyped()) return;
  if (!command) return;
  fTyped.clear();
  KeyPressed(*command);
}

bool TTreeList::FindTyped() {
  const std::size_t from = fModel.Current() + (fTyped.size() == 1 ? 1 : 0);
  bool found = false;
  Perform(true, [this, from, &found] {
    const TCursorKeeper keeper(*fQuery);
    const TField field = fQuery->Field(SearchField.empty() ? fVisible.front()->FieldName() : SearchField);
    found = fModel.Find(fTyped, from, [this, &field](std::size_t record) {
      fQuery->GoTo(record);
      return field.AsText();
    });
  });
  return found;
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
  const int level = fModel.Level(node);
  TTreeListLine answer{.Level = level,
                       .Indent = std::min(level, fIndentLimit),
                       .Image = fModel.Image(node),
                       .HasChildren = fModel.HasChildren(node),
                       .Open = fModel.IsOpen(node),
                       .Continues = {}};
  answer.Continues.resize(static_cast<std::size_t>(answer.Indent) + 1);
  for (std::size_t i = node; i != TTreeListModel::kNone; i = fModel.Parent(i)) {
    const auto indent = static_cast<std::size_t>(std::min(fModel.Level(i), fIndentLimit));
    if (fModel.HasNextSibling(i)) answer.Continues[indent] = true;
  }
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
    row.Texts.reserve(fields.size());
    for (const TField& field : fields) row.Texts.push_back(field.AsText());
    visit(row);
  }
}
