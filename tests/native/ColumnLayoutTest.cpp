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
