#include "ui/ColumnLayout.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

#include "platform/Geometry.h"

namespace {

constexpr int kLeastWidth = 32;  // of a column that is resized, in pixels at kDesignDpi

}  // namespace

int DesignedWidth(int pixels, int dpi) {
  return (pixels * kDesignDpi + dpi - 1) / dpi;
}

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

void TColumnLayout::SetShares(std::vector<int> shares) {
  fShares = std::move(shares);
  fKept = 0;
}

void TColumnLayout::KeepFirst(int share) {
  const int total = std::accumulate(fShares.begin(), fShares.end(), 0);
  fKept = std::min(share, std::max(total / 2, 1));
  fShares.front() = fKept;
}

std::vector<int> TColumnLayout::Widths(int room, int dpi) const {
  std::vector<int> widths = DivideWidth(fShares, room);
  const int kept = std::min(ScaledToDpi(fKept, dpi), room / 2);
  if (kept > 0 && widths.front() < kept) {
    widths = DivideWidth(std::span(fShares).subspan(1), room - kept);
    widths.insert(widths.begin(), kept);
  }
  return widths;
}

void TColumnLayout::Resize(std::size_t column, int width, int room, int dpi) {
  std::vector<int> widths = Widths(room, dpi);
  const int least = ScaledToDpi(kLeastWidth, dpi);
  int missing = std::max(width, least) - widths[column];
  const auto take = [&](int& from) {
    const int given = std::min(missing, std::max(from - least, 0));
    from -= given;
    widths[column] += given;
    missing -= given;
  };
  const bool isLast = column + 1 == widths.size();
  for (std::size_t i = column + 1; i < widths.size(); ++i) take(widths[i]);
  for (std::size_t i = column; isLast && i-- > 0;) take(widths[i]);
  std::ranges::transform(widths, fShares.begin(), [dpi](int pixels) { return DesignedWidth(pixels, dpi); });
  fKept = std::min(fKept, fShares.front());
}
