#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// Guesses at a fraction of Deflate's cost what Deflate would make of a unit of data: from how unevenly its
/// byte values are distributed, and from a look for repeats of earlier data. Used by one stream, unit after
/// unit.
class TDataEstimate {
 public:
  /// Longer data must be split into units of this size; shorter ones are judged less reliably.
  static constexpr std::size_t kUnitSize = 4096;

  /// Forgets what came before.
  void Reset() noexcept;

  struct TResult {
    std::size_t Savings = 0;      ///< the bytes that Deflate would probably save
    bool HasRepeats = false;      ///< of data in the unit or before it
    bool RepeatsEarlier = false;  ///< of data before the unit
    bool IsText = false;          ///< of ASCII, by and large
  };
  /// Judges the next unit of the data.
  TResult Judge(std::span<const unsigned char> unit);

  /// Whether all bytes are the same.
  static bool IsByteRun(std::span<const unsigned char> unit) noexcept;
  /// How many bytes at the start, or at the end, of a unit without repeats are not worth compressing.
  static std::size_t IncompressiblePrefix(std::span<const unsigned char> unit) noexcept;
  static std::size_t IncompressibleSuffix(std::span<const unsigned char> unit) noexcept;
  /// The size of the data as Huffman codes only.
  static std::size_t HuffmanSize(std::span<const unsigned char> data) noexcept;

 private:
  struct TMark {
    std::uint32_t Value;
    std::uint32_t Position;
  };
  std::uint32_t RepeatDistance(std::span<const unsigned char> probe) const;
  void Remember(std::span<const unsigned char> part);

  std::array<TMark, 4096> fMarks{};
  std::uint32_t fPosition = 0;
};
