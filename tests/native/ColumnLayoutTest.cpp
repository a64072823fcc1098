#include "ui/ColumnLayout.h"

#include <gtest/gtest.h>

#include <vector>

TEST(ColumnLayoutTest, FillsTheWidth) {
  const struct {
    std::vector<int> Shares;
    int Available;
    std::vector<int> Widths;
  } cases[] = {
      {{}, 100, {}},
      {{54, 454, 380}, 888, {54, 454, 380}},
      {{1, 1, 1}, 100, {33, 34, 33}},
      {{1, 2}, 900, {300, 600}},
      {{0, 0}, 10, {5, 5}},
      {{50, 50}, -3, {0, 0}},
      {{1'000'000, 2'000'000}, 30'000, {10'000, 20'000}},
  };
  for (const auto& test : cases) EXPECT_EQ(DivideWidth(test.Shares, test.Available), test.Widths);
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
