#include "ui/TreeListModel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using enum TTreeKey;
constexpr std::int64_t kRoot = -1;

/// The whole tree in one line: keys in tree order, children in brackets.
std::string Shape(const std::vector<TTreeRow>& rows) {
  TTreeListModel model;
  model.Attach(rows, kRoot);
  std::string shape;
  int level = 0;
  for (std::size_t node = 0; node < model.NodeCount(); ++node) {
    const int deeper = model.Level(node) - level;
    shape += deeper > 0 ? std::string("(") : std::string(static_cast<std::size_t>(-deeper), ')');
    if (node > 0 && deeper <= 0) shape += ' ';
    shape += std::to_string(rows[model.Record(node)].Key);
    level = model.Level(node);
  }
  return shape + std::string(static_cast<std::size_t>(level), ')');
}

/// Records 0 (1 (2 3) 4 (5)) 6: what can be seen in one line, open branches with "-", closed ones with "+",
/// the current row after ">".
class TreeListModelTest : public testing::Test {
 protected:
  TreeListModelTest() {
    fModel.Attach(std::vector<TTreeRow>{{1, -1}, {2, 1}, {3, 2}, {4, 2}, {5, 1}, {6, 5}, {7, -1}}, kRoot);
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

TEST_F(TreeListModelTest, AttachesRowsToParents) {
  const struct {
    const char* What;
    std::vector<TTreeRow> Rows;
    std::string Shape;
  } cases[] = {
      {"no rows", {}, ""},
      {"record order among children", {{1, -1}, {3, 1}, {2, 1}, {4, 3}, {5, -1}}, "1(3(4) 2) 5"},
      {"children before their parents", {{3, 2}, {2, 1}, {1, -1}}, "1(2(3))"},
      {"a parent that is no key", {{1, -1}, {2, 0}, {3, 2}}, "1 2(3)"},
      {"equal keys: the first counts", {{1, -1}, {1, -1}, {2, 1}}, "1(2) 1"},
      {"a ring, cut at its first record", {{5, -1}, {3, 4}, {2, 3}, {4, 2}, {9, 4}}, "5 3(2(4(9)))"},
      {"a row before the ring it hangs on", {{9, 3}, {4, 3}, {3, 4}}, "4(3(9))"},
  };
  for (const auto& test : cases) EXPECT_EQ(Shape(test.Rows), test.Shape) << test.What;
}

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
      {Open, "-0 -1 >2 3 +4 6"},
      {Down, "-0 -1 2 >3 +4 6"},
      {Left, "-0 >-1 2 3 +4 6"},
      {Left, "-0 >+1 +4 6"},
      {Left, ">-0 +1 +4 6"},
      {OpenBranch, ">-0 -1 2 3 -4 5 6"},
      {PageDown, "-0 -1 2 >3 -4 5 6"},
      {PageDown, "-0 -1 2 3 -4 5 >6"},
      {PageDown, "-0 -1 2 3 -4 5 >6"},
      {Left, "-0 -1 2 3 -4 5 >6"},
      {PageUp, "-0 -1 2 >3 -4 5 6"},
      {Home, ">-0 -1 2 3 -4 5 6"},
      {Close, ">+0 6"},
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

TEST_F(TreeListModelTest, CurrentRowStaysVisible) {
  fModel.MakeCurrent(3);
  EXPECT_EQ(Seen(), "-0 -1 2 >3 +4 6");
  fModel.OpenAll();
  EXPECT_EQ(Seen(), "-0 -1 2 >3 -4 5 6");
  fModel.Toggle(4);
  EXPECT_EQ(Seen(), "-0 -1 2 >3 +4 6") << "another branch";
  fModel.Close(1);
  EXPECT_EQ(Seen(), "-0 >+1 +4 6") << "its own branch";
  fModel.MakeCurrent(5);
  fModel.Toggle(1);
  fModel.Toggle(1);
  EXPECT_EQ(Seen(), "-0 +1 -4 >5 6") << "a branch above";
  fModel.CloseAll();
  EXPECT_EQ(Seen(), ">+0 6");
  fModel.Open(0);
  EXPECT_EQ(Seen(), ">-0 +1 +4 6") << "the deeper ones stay closed";
}
