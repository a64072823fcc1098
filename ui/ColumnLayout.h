#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// `pixels` of a monitor with `dpi` at kDesignDpi, rounded up, so that what was measured still fits.
int DesignedWidth(int pixels, int dpi);

/// Divides `available` pixels among columns in proportion to their shares. The widths together are exactly
/// `available`, whatever the rounding; a share below 1 counts as 1.
std::vector<int> DivideWidth(std::span<const int> shares, int available);

/// How wide the columns of a tree list are: together they always fill the room. Knows no window; owned by the
/// tree list. Shares are pixels at kDesignDpi, widths and room are pixels at `dpi`.
class TColumnLayout {
 public:
  /// Begins anew with the designed widths.
  void SetShares(std::vector<int> shares);
  /// The first column gets this share, but at most half, and keeps it as long as half of the room is enough.
  void KeepFirst(int share);
  std::vector<int> Widths(int room, int dpi) const;
  /// Makes a column `width` wide, as far as the columns after it can give way, the nearest one first; those
  /// before it for the last column.
  void Resize(std::size_t column, int width, int room, int dpi);

 private:
  std::vector<int> fShares;
  int fKept = 0;
};
