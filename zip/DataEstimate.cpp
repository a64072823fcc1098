#include "zip/DataEstimate.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kMarkSpacing = 16;
constexpr std::size_t kProbes = 8;              // places in a unit at which repeats are looked for
constexpr std::uint32_t kReach = 32'768 - 262;  // zlib looks back no farther

std::uint32_t ValueAt(const unsigned char* bytes) noexcept {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

/// Rows of one byte shrink by themselves.
bool IsRow(std::uint32_t value) noexcept {
  return value == (value & 0xFF) * 0x01010101U;
}

std::size_t Slot(std::uint32_t value) noexcept {
  return value * 0x9E3779B1U >> 20;
}

struct TSpread {
  double Savings;
  bool IsText;
};

/// What Huffman codes save in a piece of at most kUnitSize bytes, while that is not much; where it is, too
/// large a number does no harm. It follows from how far the counts of the byte values are from being equal,
/// in the measure of the chi-squared test: about 255 for random bytes, whatever their number.
TSpread Spread(std::span<const unsigned char> unit) noexcept {
  // Four tables: with one, a row of equal bytes makes every step wait for the one before. Half of the bytes
  // are as good as all; the step is odd, so that no column of a table of numbers is passed over.
  constexpr std::size_t kCounted = 16;
  constexpr std::size_t kStep = 31;
  std::array<std::array<std::uint16_t, 256>, 4> counts{};
  std::size_t counted = 0;
  for (std::size_t begin = 0; begin < unit.size(); begin += kStep) {
    const std::size_t end = std::min(begin + kCounted, unit.size());
    counted += end - begin;
    std::size_t i = begin;
    for (; i + 4 <= end; i += 4) {
      const std::uint32_t value = ValueAt(&unit[i]);
      ++counts[0][value & 0xFF];
      ++counts[1][value >> 8 & 0xFF];
      ++counts[2][value >> 16 & 0xFF];
      ++counts[3][value >> 24];
    }
    for (; i < end; ++i) ++counts[0][unit[i]];
  }

  std::uint32_t squares = 0;
  std::uint32_t letters = 0;
  for (std::size_t value = 0; value < 256; ++value) {
    const std::uint32_t count =
        std::uint32_t{counts[0][value]} + counts[1][value] + counts[2][value] + counts[3][value];
    squares += count * count;
  }
  for (std::size_t value = ' '; value <= '~'; ++value) {
    letters += std::uint32_t{counts[0][value]} + counts[1][value] + counts[2][value] + counts[3][value];
  }
  constexpr double kRandom = 255;
  constexpr double kUnevennessPerByte = 11;
  const auto size = static_cast<double>(counted);
  const double unevenness = static_cast<double>(squares) * 256 / size - size;
  const double savings =
      (unevenness - kRandom) / kUnevennessPerByte * static_cast<double>(unit.size()) / size;
  return {std::max(0.0, savings), letters > counted / 8 * 7};
}

}  // namespace

void TDataEstimate::Reset() noexcept {
  fMarks.fill({});
  fPosition = kReach + 1;  // the empty marks are out of reach
}

TDataEstimate::TResult TDataEstimate::Judge(std::span<const unsigned char> unit) {
  if (unit.empty()) return {0, false, false};
  const TSpread spread = Spread(unit);
  const std::size_t repeats = RepeatedProbes(unit);
  Remember(unit);
  return {static_cast<std::size_t>(spread.Savings) + repeats * unit.size() / kProbes, repeats > 0,
          spread.IsText};
}

std::size_t TDataEstimate::RandomStart(std::span<const unsigned char> unit) {
  constexpr std::size_t kPiece = 512;
  constexpr double kNoise = 20;  // random bytes seem to save as much now and then
  std::size_t size = 0;
  while (size + kPiece <= unit.size() && Spread(unit.subspan(size, kPiece)).Savings < kNoise) size += kPiece;
  return size;
}

/// At how many places something stands that was marked within reach. A place is as long as two marks are
/// apart, so that a repeat which covers it cannot slip between them.
std::size_t TDataEstimate::RepeatedProbes(std::span<const unsigned char> unit) const {
  std::size_t found = 0;
  for (std::size_t probe = 0; probe < kProbes; ++probe) {
    const std::size_t begin = probe * unit.size() / kProbes;
    for (std::size_t i = begin; i < begin + kMarkSpacing && i + sizeof(std::uint32_t) <= unit.size(); ++i) {
      const std::uint32_t value = ValueAt(&unit[i]);
      const TMark& mark = fMarks[Slot(value)];
      const std::uint32_t position = fPosition + static_cast<std::uint32_t>(i);
      if (mark.Value == value && !IsRow(value) && position - mark.Position <= kReach) {
        ++found;
        break;
      }
    }
  }
  return found;
}

void TDataEstimate::Remember(std::span<const unsigned char> unit) {
  for (std::size_t i = 0; i + sizeof(std::uint32_t) <= unit.size(); i += kMarkSpacing) {
    const std::uint32_t value = ValueAt(&unit[i]);
    fMarks[Slot(value)] = {value, fPosition + static_cast<std::uint32_t>(i)};
  }
  fPosition += static_cast<std::uint32_t>(unit.size());
}
