#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/Files.h"

/// The archive's file behind a buffer, which counts its bytes and takes most of the later changes, so that a
/// small entry costs no call of the system. Owned by the archive; knows nothing of the format.
class TArchiveFile {
 public:
  /// Creates the file; it is an error when one is there.
  explicit TArchiveFile(TextView path);

  std::uint64_t Position() const noexcept { return fWritten + fUsed; }

  void Write(std::string_view bytes);
  /// Writes over earlier bytes.
  void Patch(std::uint64_t position, std::string_view bytes);
  /// Free space to write into, never empty; Advance tells how much of it was used. Valid until the next call.
  std::span<char> Room();
  void Advance(std::size_t count) noexcept { fUsed += count; }
  /// Returns when all is on the disk itself: a power cut must not leave a torn archive under a good name.
  void Close();

 private:
  void Flush();

  TOutputFile fFile;
  std::vector<char> fBuffer;
  std::size_t fUsed = 0;
  std::uint64_t fWritten = 0;
};
