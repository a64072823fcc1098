#pragma once

#include <map>
#include <memory>
#include <vector>

#include "database/Query.h"
#include "ui/ColumnLayout.h"
#include "ui/Controls.h"
#include "ui/NativeTreeList.h"
#include "ui/TreeListModel.h"

class TTreeList;

/// How a column is designed; Width in pixels at kDesignDpi. No cell can be edited, so that no column is
/// marked as read-only.
struct TTreeColumnDesign {
  UnicodeString Caption;
  UnicodeString FieldName;
  int Width = 64;
  TAlignment Alignment = TAlignment::Left;
  bool Visible = true;
  bool Clickable = false;  ///< the header answers to clicks, and looks like it
  bool Path = false;       ///< shows paths, which are shortened in the middle
  int Tag = 0;
};

/// One column of a tree list, which owns it. It shows a field of the query as text.
class TTreeColumn {
 public:
  TTreeColumn(TTreeList& list, TTreeColumnDesign design) : fList(list), fDesign(std::move(design)) {}
  TTreeColumn(const TTreeColumn&) = delete;
  TTreeColumn& operator=(const TTreeColumn&) = delete;

  /// Asked once for each text that is drawn; the answer is remembered until the query is opened anew. A
  /// warning is drawn before the text, after an icon; an empty one is none.
  std::function<UnicodeString(const UnicodeString& value)> OnValidateDrawValue;

  const UnicodeString& Caption() const noexcept { return fDesign.Caption; }
  const UnicodeString& FieldName() const noexcept { return fDesign.FieldName; }
  bool Visible() const noexcept { return fDesign.Visible; }
  int Tag() const noexcept { return fDesign.Tag; }

  void SetVisible(bool visible);
  /// Makes the column as wide as its widest row, in open and closed branches, as far as there is room.
  void ApplyBestFit();

 private:
  friend class TTreeList;
  const UnicodeString& WarningFor(const UnicodeString& value);
  /// Empty also for a text that was not drawn yet.
  UnicodeString KnownWarning(const UnicodeString& value) const;

  TTreeList& fList;
  TTreeColumnDesign fDesign;
  bool fFitWanted = false;
  std::map<UnicodeString, UnicodeString> fWarnings;
};

/// A row of the tree, to be listed elsewhere.
struct TTreeListRow {
  int Level = 0;
  int Image = 0;
  std::vector<UnicodeString> Texts;  ///< of the visible columns
};

/// Shows a query's rows as a tree: key and parent fields make its branches. The query's cursor follows the
/// current row. The list reads cells only while it draws them, and is empty before the query's result closes.
/// It neither sorts nor edits nor deletes.
class TTreeList : public TControl {
 public:
  explicit TTreeList(TForm& form);
  ~TTreeList() override;

  UnicodeString KeyField;
  UnicodeString ParentField;
  UnicodeString ImageField;   ///< a row's icon, by its number among the resources; empty: no images
  UnicodeString SearchField;  ///< what typed letters look for; empty: the tree column's field
  std::int64_t RootValue = 0;

  std::function<void()> OnDblClick;
  std::function<void(TTreeColumn& column)> OnColumnHeaderClick;

  /// To be called once the fields are named. The query outlives the list, or null is set before it ends; this
  /// list is its only listener. Throws what reading an open query throws, and is empty then.
  void SetDataSource(TQuery* query);
  TTreeColumn& AddColumn(TTreeColumnDesign design);
  void SetHeaderFont(const TFont& font);
  /// What a screen reader calls the list.
  void SetName(TextView name) { fNative.SetName(name); }

  /// Between these nothing is bound, measured or drawn; it is made up for at the end of the outermost pair.
  /// An end without a beginning does nothing. Errors of the binding go to the application's default handling.
  void BeginUpdate();
  void EndUpdate() noexcept;
  bool Updating() const noexcept { return fUpdates > 0; }

  void FullExpand();
  void FullCollapse();

  /// Visits all rows in tree order, also those in closed branches and those that wait for the end of an
  /// update. The query's cursor is where it was afterwards.
  void ForEachRow(const std::function<void(const TTreeListRow&)>& visit) const;

 private:
  friend class TTreeColumn;
  struct TCursorKeeper;

  TTreeListEvents Events();
  void Arranged() override;
  void QueryChanged(TQueryChange change);
  void Bind(std::size_t currentRecord);
  void AttachRows(TTreeListModel& model) const;
  void BindFields();
  void Unbind() noexcept;
  void MoveCursor();

  template <class TChange>
  void Perform(bool reveal, TChange&& change);
  void ShowColumns();
  void ShowLines();
  void ShowCurrent();
  void FitWidths();
  void LimitIndent(int columnWidth);
  int NeededWidth(std::size_t column);
  void FitWantedColumns();

  TTreeListLine LineAt(std::size_t line) const;
  TTreeListCell CellAt(std::size_t line, std::size_t column);
  void KeyPressed(TTreeKey key);
  void LetterTyped(char16_t letter, bool continued);
  bool FindTyped();
  void DividerMoved(std::size_t column, int width);
  void DividerDoubleClicked(std::size_t column);
  void LineSelected(std::size_t line);
  void LineToggled(std::size_t line);

  std::vector<std::unique_ptr<TTreeColumn>> fColumns;
  std::vector<TTreeColumn*> fVisible;
  std::vector<TField> fFields;  // of the visible columns, while rows are bound
  TColumnLayout fLayout;
  TTreeListModel fModel;
  TQuery* fQuery = nullptr;
  int fUpdates = 0;
  bool fBindWanted = false;
  UnicodeString fTyped;
  TFont fHeaderFont;
  TFont fScaledFont;
  int fScaledDpi = 0;  // what the native list has been told
  // What the tree's column needs, in pixels at kDesignDpi, once it was fitted: for all, and for its texts
  // alone.
  int fTreeNeeds = 0;
  int fTreeTextNeeds = 0;
  int fIndentLimit = 0;     // deeper levels are drawn at this indent
  TNativeTreeList fNative;  // declared last, destroyed first: its events use the members above
};
