#include "ui/ColumnLayout.h"

#include <gtest/gtest.h>

#include <vector>

TEST(ColumnLayoutTest, FillsTheWidth) {
  EXPECT_EQ(DivideWidth(std::vector{1, 1, 1}, 100), (std::vector{33, 34, 33}));
  EXPECT_EQ(DivideWidth(std::vector{0, 0}, 10), (std::vector{5, 5}));
  EXPECT_EQ(DivideWidth(std::vector{50, 50}, -3), (std::vector{0, 0}));
}

TEST(ColumnLayoutTest, ResizedColumnTakesFromOthers) {
  const struct {
    std::size_t Column;
    int Width;
    std::vector<int> Widths;
  } cases[] = {
      {0, 100, {100, 408, 380}}, {0, -5, {32, 476, 380}}, {0, 500, {500, 32, 356}},
      {0, 999, {824, 32, 32}},   {1, 999, {54, 802, 32}}, {1, 400, {54, 400, 434}},
      {2, 480, {54, 354, 480}},  {2, 999, {32, 32, 824}}, {2, 30, {54, 802, 32}},
  };
  for (const auto& test : cases) {
    TColumnLayout layout;
    layout.SetShares({54, 454, 380});
    layout.Resize(test.Column, test.Width, 888, 96);
    EXPECT_EQ(layout.Widths(888, 96), test.Widths) << test.Column << " " << test.Width;
  }
}
