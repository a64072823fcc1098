#pragma once

#include <cstdint>
#include <string>

#include "platform/Files.h"

/// What the archive tells about one entry.
struct TZipEntry {
  std::string Name;  ///< UTF-8, "/" between folders and at the end of a folder's own name
  TLocalTime Modified{};
  std::uint32_t Crc = 0;
  std::uint64_t PackedSize = 0;
  std::uint64_t Size = 0;
  std::uint64_t Position = 0;  ///< of the local header
  bool HasLongHeader = false;  ///< the local header has room for sizes beyond 32 bits

  bool IsFolder() const noexcept { return Name.ends_with('/'); }
};

// The records of a ZIP archive, as bytes. All but the local header use the long form (Zip64) exactly where a
// number does not fit the plain one.
namespace zip_records {

/// Its length does not depend on the sizes. Throws EError of kind InputOutput when the name is too long for
/// the format.
std::string LocalHeader(const TZipEntry& entry);
std::string DirectoryHeader(const TZipEntry& entry);

/// What follows the directory.
std::string DirectoryEnd(std::uint64_t entries, std::uint64_t position, std::uint64_t size);

/// Whether a field of 32 bits cannot hold the value: its largest one stands for "see the long form".
constexpr bool IsLong(std::uint64_t value) {
  return value >= 0xFFFFFFFF;
}

}  // namespace zip_records
