#include "zip/DataEstimate.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using TBytes = std::span<const unsigned char>;
using TCounts = std::array<std::uint32_t, 256>;

// A unit is looked at part by part: whether the first bytes of each repeat something that was marked before.
constexpr std::uint32_t kPart = 512;
constexpr std::size_t kMarkSpacing = 16;
/// Shorter repeats are chance in data of few byte values, and seldom worth a search.
constexpr std::size_t kRepeatSize = sizeof(std::uint64_t);
/// So long that a repeat that covers it cannot slip between two marks.
constexpr std::size_t kProbe = kMarkSpacing + kRepeatSize - 1;
constexpr std::uint32_t kReach = 32'768 - 262;  // zlib looks back no farther

// Bytes are counted in groups. A quarter of them says enough about a unit; the distance of the groups is odd,
// so that no column of a table of numbers is left out.
constexpr std::size_t kGroup = 16;
constexpr std::size_t kSparse = 61;

template <class T>
T ValueAt(const unsigned char* bytes) noexcept {
  T value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

/// How often each value is among the bytes of the groups, which begin `step` bytes apart.
TCounts CountBytes(TBytes data, std::size_t step) noexcept {
  // Four tables: with one, a run of equal bytes makes every step wait for the one before.
  std::array<std::array<std::uint16_t, 256>, 4> counts{};
  for (std::size_t begin = 0; begin < data.size(); begin += step) {
    const std::size_t end = std::min(begin + kGroup, data.size());
    std::size_t i = begin;
    for (; i + 4 <= end; i += 4) {
      const auto value = ValueAt<std::uint32_t>(&data[i]);
      ++counts[0][value & 0xFF];
      ++counts[1][value >> 8 & 0xFF];
      ++counts[2][value >> 16 & 0xFF];
      ++counts[3][value >> 24];
    }
    for (; i < end; ++i) ++counts[0][data[i]];
  }
  TCounts sums{};
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = std::uint32_t{counts[0][i]} + counts[1][i] + counts[2][i] + counts[3][i];
  }
  return sums;
}

std::uint32_t Sum(const TCounts& counts, unsigned char first, unsigned char last) noexcept {
  std::uint32_t sum = 0;
  for (std::size_t i = first; i <= last; ++i) sum += counts[i];
  return sum;
}

/// What Huffman codes save in at most kUnitSize bytes, while that is not much; where it is, too large a
/// number does no harm. It follows from how far the counts of the byte values are from being equal, in the
/// measure of the chi-squared test: about 255 for random bytes, however many they are.
double HuffmanSavings(const TCounts& counts, std::size_t size) noexcept {
  constexpr double kRandom = 255;
  constexpr double kUnevennessPerByte = 11;
  std::uint32_t squares = 0;
  for (const std::uint32_t count : counts) squares += count * count;
  const auto counted = static_cast<double>(Sum(counts, 0, 255));
  const double unevenness = static_cast<double>(squares) * 256 / counted - counted;
  return std::max(0.0, (unevenness - kRandom) / kUnevennessPerByte * static_cast<double>(size) / counted);
}

bool IsIncompressible(TBytes piece) noexcept {
  constexpr double kNoise = 20;  // random bytes seem to save as much now and then
  return HuffmanSavings(CountBytes(piece, kGroup), piece.size()) < kNoise;
}

std::uint32_t Fingerprint(const unsigned char* bytes) noexcept {
  return static_cast<std::uint32_t>(ValueAt<std::uint64_t>(bytes) * 0x9E3779B97F4A7C15U >> 32);
}

std::size_t Slot(std::uint32_t fingerprint) noexcept {
  return fingerprint >> 20;
}

}  // namespace

void TDataEstimate::Reset() noexcept {
  fMarks.fill({});
  fPosition = kReach + 1;  // the empty marks are out of reach
}

TDataEstimate::TResult TDataEstimate::Judge(TBytes unit) {
  TResult result;
  if (unit.empty()) return result;
  const TCounts counts = CountBytes(unit, kSparse);
  result.Savings = static_cast<std::size_t>(HuffmanSavings(counts, unit.size()));
  result.IsText = Sum(counts, ' ', '~') + Sum(counts, '\t', '\r') > Sum(counts, 0, 255) / 8 * 7;
  for (std::uint32_t begin = 0; begin < unit.size(); begin += kPart) {
    const TBytes part = unit.subspan(begin, std::min<std::size_t>(kPart, unit.size() - begin));
    const std::uint32_t distance = RepeatDistance(part.first(std::min(kProbe, part.size())));
    if (distance > 0) {
      result.HasRepeats = true;
      result.Savings += part.size();
      result.RepeatsEarlier = result.RepeatsEarlier || distance > begin;
    }
    Remember(part);
  }
  return result;
}

bool TDataEstimate::IsByteRun(TBytes unit) noexcept {
  return !unit.empty() && std::memcmp(unit.data(), unit.data() + 1, unit.size() - 1) == 0;
}

std::size_t TDataEstimate::IncompressiblePrefix(TBytes unit) noexcept {
  std::size_t size = 0;
  while (size + kPart <= unit.size() && IsIncompressible(unit.subspan(size, kPart))) size += kPart;
  return size;
}

std::size_t TDataEstimate::IncompressibleSuffix(TBytes unit) noexcept {
  std::size_t size = 0;
  while (size + kPart <= unit.size() && IsIncompressible(unit.last(size + kPart).first(kPart))) {
    size += kPart;
  }
  return size;
}

std::size_t TDataEstimate::HuffmanSize(TBytes data) noexcept {
  double bits = 0;
  for (const std::uint32_t count : CountBytes(data, kGroup)) {
    if (count > 0) bits += count * std::log2(static_cast<double>(data.size()) / count);
  }
  return static_cast<std::size_t>(bits / 8);
}

/// How far back the data begin that the next bytes repeat; 0: they repeat nothing.
std::uint32_t TDataEstimate::RepeatDistance(TBytes probe) const {
  for (std::size_t i = 0; i + kRepeatSize <= probe.size(); ++i) {
    const std::uint32_t value = Fingerprint(&probe[i]);
    const TMark& mark = fMarks[Slot(value)];
    const std::uint32_t distance = fPosition + static_cast<std::uint32_t>(i) - mark.Position;
    // Runs of one byte shrink by themselves.
    if (mark.Value == value && distance <= kReach && !IsByteRun(probe.subspan(i, kRepeatSize)))
      return distance;
  }
  return 0;
}

void TDataEstimate::Remember(TBytes part) {
  for (std::size_t i = 0; i + kRepeatSize <= part.size(); i += kMarkSpacing) {
    const std::uint32_t value = Fingerprint(&part[i]);
    fMarks[Slot(value)] = {value, fPosition + static_cast<std::uint32_t>(i)};
  }
  fPosition += static_cast<std::uint32_t>(part.size());
}
