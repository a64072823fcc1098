#include "ui/TreeListModel.h"

#include <algorithm>
#include <utility>

namespace {

using TPosition = std::uint32_t;
constexpr TPosition kNobody = std::numeric_limits<TPosition>::max();

/// The record above each record; kNobody at the top level.
std::vector<TPosition> ParentsOf(std::span<const TTreeRow> rows, std::int64_t root) {
  std::vector<std::pair<std::int64_t, TPosition>> keys;
  keys.reserve(rows.size());
  for (const TTreeRow& row : rows) keys.emplace_back(row.Key, static_cast<TPosition>(keys.size()));
  std::ranges::sort(keys);
  std::vector<TPosition> parents(rows.size(), kNobody);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].Parent == root) continue;
    const auto found = std::ranges::lower_bound(keys, std::pair(rows[i].Parent, TPosition{0}));
    if (found != keys.end() && found->first == rows[i].Parent) parents[i] = found->second;
  }
  return parents;
}

/// Takes the parent from one record of each ring. Records are visited in order; each way up ends where an
/// earlier one has been.
void CutRings(std::vector<TPosition>& parents) {
  std::vector<TPosition> visitedFrom(parents.size(), kNobody);
  for (TPosition start = 0; start < parents.size(); ++start) {
    TPosition at = start;
    while (at != kNobody && visitedFrom[at] == kNobody) {
      visitedFrom[at] = start;
      at = parents[at];
    }
    if (at == kNobody || visitedFrom[at] != start) continue;
    TPosition first = at;
    for (TPosition member = parents[at]; member != at; member = parents[member]) {
      first = std::min(first, member);
    }
    parents[first] = kNobody;
  }
}

}  // namespace

void TTreeListModel::Attach(std::span<const TTreeRow> rows, std::int64_t root) {
  std::vector<TPosition> parents = ParentsOf(rows, root);
  CutRings(parents);
  std::vector<TNode> nodes = InTreeOrder(rows, std::move(parents));
  std::vector<std::uint32_t> lines = LinesOf(nodes);
  fNodes = std::move(nodes);
  fLines = std::move(lines);
  fCurrent = fNodes.empty() ? kNone : 0;
}

/// Walks the tree without recursion: a chain of rows may be as deep as there are rows.
std::vector<TTreeListModel::TNode> TTreeListModel::InTreeOrder(std::span<const TTreeRow> rows,
                                                               std::vector<TPosition> parents) {
  std::vector<TPosition> firstChild(rows.size(), kNobody);
  std::vector<TPosition> nextSibling(rows.size(), kNobody);
  TPosition firstRoot = kNobody;
  for (std::size_t i = rows.size(); i-- > 0;) {
    TPosition& first = parents[i] == kNobody ? firstRoot : firstChild[parents[i]];
    nextSibling[i] = std::exchange(first, static_cast<TPosition>(i));
  }
  std::vector<TNode> nodes;
  nodes.reserve(rows.size());
  TPosition parent = kNoParent;
  for (TPosition record = firstRoot; record != kNobody;) {
    const std::uint32_t level = parent == kNoParent ? 0 : nodes[parent].Level + 1;
    nodes.push_back({record, parent, 0, rows[record].Image, level & 0x7FFFFFFFu, level == 0 ? 1u : 0u});
    const auto end = static_cast<TPosition>(nodes.size());
    if (firstChild[record] != kNobody) {
      parent = end - 1;
      record = firstChild[record];
      continue;
    }
    nodes.back().End = end;
    record = nextSibling[record];
    for (; record == kNobody && parent != kNoParent; parent = nodes[parent].Parent) {
      nodes[parent].End = end;
      record = nextSibling[nodes[parent].Record];
    }
  }
  return nodes;
}

std::vector<std::uint32_t> TTreeListModel::LinesOf(const std::vector<TNode>& nodes) {
  std::vector<std::uint32_t> lines;
  lines.reserve(nodes.size());
  for (std::uint32_t node = 0; node < nodes.size(); node = nodes[node].Open ? node + 1 : nodes[node].End) {
    lines.push_back(node);
  }
  return lines;
}

void TTreeListModel::Clear() noexcept {
  fNodes.clear();
  fLines.clear();
  fCurrent = kNone;
}

std::size_t TTreeListModel::NodeOf(std::size_t record) const {
  const auto found = std::ranges::find(fNodes, record, &TNode::Record);
  return found == fNodes.end() ? kNone : static_cast<std::size_t>(found - fNodes.begin());
}

std::size_t TTreeListModel::Parent(std::size_t node) const {
  return fNodes[node].Parent == kNoParent ? kNone : fNodes[node].Parent;
}

bool TTreeListModel::HasNextSibling(std::size_t node) const {
  const std::size_t parent = Parent(node);
  return fNodes[node].End < (parent == kNone ? fNodes.size() : fNodes[parent].End);
}

std::size_t TTreeListModel::LineOf(std::size_t node) const {
  const auto found = std::ranges::lower_bound(fLines, node);
  if (found == fLines.end() || *found != node) return kNone;
  return static_cast<std::size_t>(found - fLines.begin());
}

void TTreeListModel::MakeCurrent(std::size_t node) {
  if (LineOf(node) == kNone) {
    for (std::size_t above = Parent(node); above != kNone; above = Parent(above)) fNodes[above].Open = true;
    fLines = LinesOf(fNodes);
  }
  fCurrent = node;
}

void TTreeListModel::Open(std::size_t node) {
  if (IsOpen(node) || !HasChildren(node)) return;
  fNodes[node].Open = true;
  fLines = LinesOf(fNodes);
}

void TTreeListModel::Close(std::size_t node) {
  if (!IsOpen(node)) return;
  fNodes[node].Open = false;
  if (fCurrent > node && fCurrent < fNodes[node].End) fCurrent = node;
  fLines = LinesOf(fNodes);
}

void TTreeListModel::Toggle(std::size_t node) {
  if (IsOpen(node)) {
    Close(node);
  } else {
    Open(node);
  }
}

void TTreeListModel::OpenBranch(std::size_t node) {
  for (std::size_t i = node; i < fNodes[node].End; ++i) fNodes[i].Open = true;
  fLines = LinesOf(fNodes);
}

void TTreeListModel::OpenAll() {
  for (TNode& node : fNodes) node.Open = true;
  fLines = LinesOf(fNodes);
}

void TTreeListModel::CloseAll() {
  for (TNode& node : fNodes) node.Open = false;
  while (fCurrent != kNone && Parent(fCurrent) != kNone) fCurrent = Parent(fCurrent);
  fLines = LinesOf(fNodes);
}

void TTreeListModel::MoveTo(std::size_t line) {
  fCurrent = fLines[std::min(line, fLines.size() - 1)];
}

void TTreeListModel::OpenOrEnter() {
  if (!HasChildren(fCurrent)) return;
  if (IsOpen(fCurrent)) {
    ++fCurrent;
  } else {
    Open(fCurrent);
  }
}

void TTreeListModel::CloseOrLeave() {
  if (IsOpen(fCurrent) && HasChildren(fCurrent)) {
    Close(fCurrent);
  } else if (Parent(fCurrent) != kNone) {
    fCurrent = Parent(fCurrent);
  }
}

void TTreeListModel::Press(TTreeKey key, std::size_t pageSize) {
  if (fCurrent == kNone) return;
  const std::size_t line = CurrentLine();
  const std::size_t page = std::max<std::size_t>(pageSize, 1);
  switch (key) {
    case TTreeKey::Up:
      return MoveTo(line - std::min<std::size_t>(line, 1));
    case TTreeKey::Down:
      return MoveTo(line + 1);
    case TTreeKey::Left:
      return CloseOrLeave();
    case TTreeKey::Right:
      return OpenOrEnter();
    case TTreeKey::Home:
      return MoveTo(0);
    case TTreeKey::End:
      return MoveTo(fLines.size() - 1);
    case TTreeKey::PageUp:
      return MoveTo(line - std::min(line, page));
    case TTreeKey::PageDown:
      return MoveTo(line + page);
    case TTreeKey::Open:
      return Open(fCurrent);
    case TTreeKey::Close:
      return Close(fCurrent);
    case TTreeKey::OpenBranch:
      return OpenBranch(fCurrent);
  }
}

bool TTreeListModel::Find(TextView prefix, std::size_t from, const TText& text) {
  for (std::size_t i = 0; i < fNodes.size(); ++i) {
    const std::size_t node = (from + i) % fNodes.size();
    const UnicodeString whole = text(Record(node));
    if (!SameText(TextView(whole).substr(0, prefix.size()), prefix)) continue;
    MakeCurrent(node);
    return true;
  }
  return false;
}
