#pragma once

#include <span>
#include <vector>

/// Divides `available` pixels among columns in proportion to their shares. The widths together are exactly
/// `available`, whatever the rounding; a share below 1 counts as 1.
std::vector<int> DivideWidth(std::span<const int> shares, int available);
