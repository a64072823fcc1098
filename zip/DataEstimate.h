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
  /// What is judged as one; shorter data less reliably.
  static constexpr std::size_t kUnitSize = 4096;

  /// The unit that the data begin with, of at most kUnitSize bytes: either a long run of zeros or none of it,
  /// as that would hide what the other bytes are like.
  static std::span<const unsigned char> NextUnit(std::span<const unsigned char> data) noexcept;

  /// Forgets what came before.
  void Reset() noexcept;

  struct TResult {
    std::size_t Savings = 0;      ///< the bytes that Deflate would probably save
    bool IsZeros = false;         ///< a long run of zeros
    bool HasRepeats = false;      ///< of data in the unit or before it
    bool RepeatsEarlier = false;  ///< of data before the unit
  };
  /// Judges the next unit of the data.
  TResult Judge(std::span<const unsigned char> unit);

  /// How many bytes at the start, or at the end, of a unit without repeats are not worth compressing.
  static std::size_t IncompressiblePrefix(std::span<const unsigned char> unit) noexcept;
  static std::size_t IncompressibleSuffix(std::span<const unsigned char> unit) noexcept;
  /// Whether as much as a unit at the start of the data is ASCII, by and large.
  static bool IsText(std::span<const unsigned char> data) noexcept;
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
