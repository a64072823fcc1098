#include "ui/TreeListModel.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using enum TTreeKey;

/// Records 0 (1 (2 3) 4 (5)) 6. What can be seen is one line: open branches with "-", closed ones with "+",
/// the current row after ">".
class TreeListModelTest : public testing::Test {
 protected:
  TreeListModelTest() {
    fModel.Attach(std::vector<TTreeRow>{{1, -1}, {2, 1}, {3, 2}, {4, 2}, {5, 1}, {6, 5}, {7, -1}}, -1);
  }

  std::string Seen() const {
    std::string seen;
    for (std::size_t line = 0; line < fModel.LineCount(); ++line) {
      const std::size_t node = fModel.NodeAt(line);
      if (!seen.empty()) seen += ' ';
      if (fModel.CurrentLine() == line) seen += '>';
      if (fModel.HasChildren(node)) seen += fModel.IsOpen(node) ? '-' : '+';
      seen += std::to_string(node);
    }
    return seen;
  }

  TTreeListModel fModel;
};

}  // namespace

TEST_F(TreeListModelTest, HandlesKeys) {
  EXPECT_EQ(Seen(), ">-0 +1 +4 6");
  const struct {
    TTreeKey Key;
    std::string Seen;
  } steps[] = {
      {Up, ">-0 +1 +4 6"},
      {Right, "-0 >+1 +4 6"},
      {Right, "-0 >-1 2 3 +4 6"},
      {Right, "-0 -1 >2 3 +4 6"},
      {Right, "-0 -1 >2 3 +4 6"},
      {Down, "-0 -1 2 >3 +4 6"},
      {Left, "-0 >-1 2 3 +4 6"},
      {Left, "-0 >+1 +4 6"},
      {Left, ">-0 +1 +4 6"},
      {OpenBranch, ">-0 -1 2 3 -4 5 6"},
      {PageDown, "-0 -1 2 >3 -4 5 6"},
      {PageDown, "-0 -1 2 3 -4 5 >6"},
      {Left, "-0 -1 2 3 -4 5 >6"},
      {PageUp, "-0 -1 2 >3 -4 5 6"},
      {Home, ">-0 -1 2 3 -4 5 6"},
      {Close, ">+0 6"},
      {End, "+0 >6"},
      {Home, ">+0 6"},
      {Open, ">-0 -1 2 3 -4 5 6"},
  };
  for (std::size_t i = 0; i < std::size(steps); ++i) {
    fModel.Press(steps[i].Key, 3);
    EXPECT_EQ(Seen(), steps[i].Seen) << "step " << i;
  }
  fModel.Clear();
  for (const TTreeKey key : {Up, Down, Left, Right, Home, End, PageUp, PageDown, Open, Close, OpenBranch}) {
    fModel.Press(key, 3);
  }
  EXPECT_EQ(fModel.Current(), TTreeListModel::kNone);
}

TEST_F(TreeListModelTest, RowsInARingStayVisible) {
  fModel.Attach(std::vector<TTreeRow>{{5, -1}, {3, 4}, {2, 3}, {4, 2}, {9, 4}}, -1);
  EXPECT_EQ(Seen(), ">0 -1 +2");
}
