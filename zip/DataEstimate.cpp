#include "zip/DataEstimate.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using TBytes = std::span<const unsigned char>;
using TCounts = std::array<std::uint16_t, 256>;  // of at most a unit

// A unit is looked at part by part: whether the first bytes of each repeat something that was marked before.
constexpr std::uint32_t kPart = 1024;
constexpr std::size_t kMarkSpacing = 32;
/// Shorter repeats are chance in data of few byte values, and seldom worth a search.
constexpr std::size_t kRepeatSize = sizeof(std::uint64_t);
/// So long that a repeat that covers it cannot slip between two marks.
constexpr std::size_t kProbe = kMarkSpacing + kRepeatSize - 1;
constexpr std::uint32_t kReach = 32'768 - 262;  // zlib looks back no farther

// Bytes are counted in groups. An eighth of them says enough about a unit; the distance of the groups is odd,
// so that no column of a table of numbers is left out.
constexpr std::size_t kGroup = 16;
constexpr std::size_t kSparse = 125;

/// The incompressible bytes at either side of a unit are found in pieces of this size.
constexpr std::size_t kPiece = 512;

/// Shorter runs of zeros are not worth leaving stored data for, nor a table of codes for what is between
/// them.
constexpr std::size_t kLongRun = 128;

template <class T>
T ValueAt(const unsigned char* bytes) noexcept {
  T value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

/// How often each value is among the bytes of the groups, which begin `step` bytes apart.
TCounts CountBytes(TBytes data, std::size_t step) noexcept {
  TCounts counts{};
  for (std::size_t begin = 0; begin < data.size(); begin += step) {
    for (const unsigned char byte : data.subspan(begin, std::min(kGroup, data.size() - begin)))
      ++counts[byte];
  }
  return counts;
}

bool IsByteRun(TBytes data) noexcept {
  return std::memcmp(data.data(), data.data() + 1, data.size() - 1) == 0;
}

/// How many zeros the data begin with, up to a unit.
std::size_t LeadingZeros(TBytes data) noexcept {
  const std::size_t size = std::min(data.size(), TDataEstimate::kUnitSize);
  std::size_t count = 0;
  while (count + sizeof(std::uint64_t) <= size && ValueAt<std::uint64_t>(&data[count]) == 0) {
    count += sizeof(std::uint64_t);
  }
  while (count < size && data[count] == 0) ++count;
  return count;
}

bool BeginsWithLongRun(TBytes data) noexcept {
  return data.size() >= kLongRun && data.front() == 0 && IsByteRun(data.first(kLongRun));
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
  for (const std::uint16_t count : counts) squares += std::uint32_t{count} * count;
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
  fPosition += kReach + 1;  // puts all marks out of reach
}

TBytes TDataEstimate::NextUnit(TBytes data) noexcept {
  if (BeginsWithLongRun(data)) return data.first(LeadingZeros(data));
  const std::size_t size = std::min(data.size(), kUnitSize);
  // So close to each other that no long run is between them.
  constexpr std::size_t kStep = kLongRun - sizeof(std::uint64_t);
  for (std::size_t i = kStep; i + sizeof(std::uint64_t) <= data.size() && i < size; i += kStep) {
    if (ValueAt<std::uint64_t>(&data[i]) != 0) continue;
    std::size_t begin = i;
    while (data[begin - 1] == 0) --begin;
    if (BeginsWithLongRun(data.subspan(begin))) return data.first(begin);
  }
  return data.first(size);
}

TDataEstimate::TResult TDataEstimate::Judge(TBytes unit) {
  TResult result;
  if (BeginsWithLongRun(unit)) {
    fPosition += static_cast<std::uint32_t>(unit.size());
    return {.Savings = unit.size(), .IsZeros = true};
  }
  result.Savings = static_cast<std::size_t>(HuffmanSavings(CountBytes(unit, kSparse), unit.size()));
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

std::size_t TDataEstimate::IncompressiblePrefix(TBytes unit) noexcept {
  std::size_t size = 0;
  while (size + kPiece <= unit.size() && IsIncompressible(unit.subspan(size, kPiece))) size += kPiece;
  return size;
}

std::size_t TDataEstimate::IncompressibleSuffix(TBytes unit) noexcept {
  std::size_t size = 0;
  while (size + kPiece <= unit.size() && IsIncompressible(unit.last(size + kPiece).first(kPiece))) {
    size += kPiece;
  }
  return size;
}

bool TDataEstimate::IsText(TBytes data) noexcept {
  const TCounts counts = CountBytes(data.first(std::min(data.size(), kUnitSize)), kSparse);
  return Sum(counts, ' ', '~') + Sum(counts, '\t', '\r') > Sum(counts, 0, 255) / 8 * 7;
}

std::size_t TDataEstimate::HuffmanSize(TBytes data) noexcept {
  const auto size = static_cast<double>(data.size());
  double bits = 0;
  for (const std::uint16_t count : CountBytes(data, kGroup)) {
    if (count > 0) bits += count * std::log2(size / count);
  }
  return static_cast<std::size_t>(std::max(bits, size) / 8);  // no code is shorter than a bit
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
