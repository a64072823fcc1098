#include "ui/ColumnLayout.h"

#include <algorithm>
#include <cstdint>

std::vector<int> DivideWidth(std::span<const int> shares, int available) {
  std::int64_t total = 0;
  for (const int share : shares) total += std::max(share, 1);
  std::vector<int> widths;
  std::int64_t sum = 0;
  int left = 0;
  for (const int share : shares) {
    // Edges are rounded, not widths: the last edge is the right one of the whole.
    sum += std::max(share, 1);
    const int right = static_cast<int>((sum * std::max(available, 0) + total / 2) / total);
    widths.push_back(right - left);
    left = right;
  }
  return widths;
}
