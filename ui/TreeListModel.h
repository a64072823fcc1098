#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <vector>

#include "platform/Text.h"

/// A record's place in the tree.
struct TTreeRow {
  std::int64_t Key = 0;
  std::int64_t Parent = 0;
  std::int32_t Image = 0;
};

/// What the user can ask of the tree without the mouse.
enum class TTreeKey { Up, Down, Left, Right, Home, End, PageUp, PageDown, Open, Close, OpenBranch };

/// Records in a tree: which of them are visible, which are open, and which one is current. A node is a
/// record's position in tree order, a line its position among the visible ones. Knows no texts and no window;
/// owned by the tree list.
class TTreeListModel {
 public:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
  /// The text that stands for a record.
  using TText = std::function<UnicodeString(std::size_t record)>;

  /// Replaces the earlier rows; the top level is open, the first line current. A row whose parent is `root`
  /// or no key is at the top level; of equal keys the first counts; a ring of rows is cut at its first one.
  /// Strong guarantee.
  void Attach(std::span<const TTreeRow> rows, std::int64_t root);
  void Clear() noexcept;

  std::size_t NodeCount() const noexcept { return fNodes.size(); }
  std::size_t Record(std::size_t node) const { return fNodes[node].Record; }
  std::size_t NodeOf(std::size_t record) const;
  std::size_t Parent(std::size_t node) const;
  int Level(std::size_t node) const { return static_cast<int>(fNodes[node].Level); }
  int Image(std::size_t node) const { return fNodes[node].Image; }
  bool HasChildren(std::size_t node) const { return fNodes[node].End > node + 1; }
  bool IsOpen(std::size_t node) const { return fNodes[node].Open; }
  /// Whether another child of the same parent follows.
  bool HasNextSibling(std::size_t node) const;

  std::size_t LineCount() const noexcept { return fLines.size(); }
  std::size_t NodeAt(std::size_t line) const { return fLines[line]; }
  /// kNone for a node that is not visible.
  std::size_t LineOf(std::size_t node) const;

  /// kNone when there are no rows; otherwise always a visible node.
  std::size_t Current() const noexcept { return fCurrent; }
  std::size_t CurrentLine() const { return fCurrent == kNone ? kNone : LineOf(fCurrent); }
  /// Opens what hides the node.
  void MakeCurrent(std::size_t node);

  void Open(std::size_t node);
  /// A current row that becomes hidden gives way to `node`.
  void Close(std::size_t node);
  void Toggle(std::size_t node);
  void OpenBranch(std::size_t node);
  void OpenAll();
  void CloseAll();

  /// `pageSize`: how many lines fit into the window.
  void Press(TTreeKey key, std::size_t pageSize);
  /// Makes the next row current whose text begins with `prefix`, case-insensitively by the user's locale;
  /// begins at `from` and wraps around. False when there is none.
  bool Find(TextView prefix, std::size_t from, const TText& text);

 private:
  struct TNode {
    std::uint32_t Record;
    std::uint32_t Parent;  ///< kNoParent at the top level
    std::uint32_t End;     ///< the node after its last descendant
    std::int32_t Image;
    std::uint32_t Level : 31;
    std::uint32_t Open : 1;
  };
  static constexpr std::uint32_t kNoParent = std::numeric_limits<std::uint32_t>::max();

  static std::vector<TNode> InTreeOrder(std::span<const TTreeRow> rows, std::vector<std::uint32_t> parents);
  static std::vector<std::uint32_t> LinesOf(const std::vector<TNode>& nodes);
  void MoveTo(std::size_t line);
  void OpenOrEnter();
  void CloseOrLeave();

  std::vector<TNode> fNodes;
  std::vector<std::uint32_t> fLines;  // nodes, ascending
  std::size_t fCurrent = kNone;
};
