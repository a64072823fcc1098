#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// Guesses at a fraction of Deflate's cost what Deflate would make of a piece of data: from how unevenly its
/// byte values are spread, and from a look for repeats of what came before. Used by one stream, piece after
/// piece.
class TDataEstimate {
 public:
  /// The pieces that it is made for. Longer ones must be taken apart, shorter ones are judged less surely.
  static constexpr std::size_t kUnitSize = 4096;

  /// Forgets what came before.
  void Reset() noexcept;

  struct TResult {
    std::size_t Savings;  ///< the bytes that Deflate would probably save
    bool HasRepeats;      ///< some of them because the data before this piece hold the same
    bool IsText;          ///< of ASCII, by and large
  };
  /// Judges the next piece of the data.
  TResult Judge(std::span<const unsigned char> unit);
  /// The next piece of the data needs no judgement.
  void Skip(std::span<const unsigned char> unit) { Remember(unit); }

  /// How many bytes at the start of a piece without repeats are not worth anything to Deflate.
  static std::size_t RandomStart(std::span<const unsigned char> unit);

 private:
  struct TMark {
    std::uint32_t Value;
    std::uint32_t Position;
  };

  std::size_t RepeatedProbes(std::span<const unsigned char> unit) const;
  void Remember(std::span<const unsigned char> unit);

  std::array<TMark, 4096> fMarks{};
  std::uint32_t fPosition = 0;
};
