#include "zip/ZipRecords.h"

#include <algorithm>

#include "platform/Error.h"

namespace {

constexpr std::uint32_t kLocalHeader = 0x04034B50;
constexpr std::uint32_t kDirectoryHeader = 0x02014B50;
constexpr std::uint32_t kDirectoryEnd = 0x06054B50;
constexpr std::uint32_t kLongDirectoryEnd = 0x06064B50;
constexpr std::uint32_t kLongDirectoryLocator = 0x07064B50;

constexpr std::uint16_t kPlainVersion = 20;  // what a reader must know: Deflate and folders
constexpr std::uint16_t kLongVersion = 45;   // and the long form
constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kUtf8Name = 1 << 11;
constexpr std::uint16_t kLongField = 1;
// The entries are declared as made on Unix: of others unzip reads the names in a code page of DOS, UTF-8 or
// not.
constexpr std::uint16_t kMadeOnUnix = 3 << 8;
constexpr std::uint32_t kFolderAttributes = 0040755U << 16 | 0x10;
constexpr std::uint32_t kFileAttributes = 0100644U << 16 | 0x20;
constexpr std::uint64_t kMost16 = 0xFFFF;
constexpr std::uint64_t kMost32 = 0xFFFFFFFF;

/// A record that grows; its numbers have their low byte first.
class TRecord {
 public:
  TRecord& Add16(std::uint64_t value) { return AddNumber(value, 2); }
  TRecord& Add32(std::uint64_t value) { return AddNumber(value, 4); }
  TRecord& Add64(std::uint64_t value) { return AddNumber(value, 8); }
  TRecord& Add(const std::string& bytes) {
    fBytes += bytes;
    return *this;
  }
  const std::string& Bytes() const noexcept { return fBytes; }

 private:
  TRecord& AddNumber(std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) fBytes.push_back(static_cast<char>(value >> 8 * i & 0xFF));
    return *this;
  }

  std::string fBytes;
};

/// Date and time in the format's 32 bits, which hold 1980 to 2107 and even seconds.
std::uint32_t PackedTime(TLocalTime time) {
  if (time.Year < 1980) time = {1980, 1, 1, 0, 0, 0};
  if (time.Year > 2107) time = {2107, 12, 31, 23, 59, 58};
  const int second = std::min<int>(time.Second, 59);  // a leap second has no place
  const int date = (time.Year - 1980) << 9 | time.Month << 5 | time.Day;
  return static_cast<std::uint32_t>(date) << 16 |
         static_cast<std::uint32_t>(time.Hour << 11 | time.Minute << 5 | second / 2);
}

/// From the version that a reader needs to the checksum: what both headers have in common.
void AddCommonPart(TRecord& record, const TZipEntry& entry, bool isLong) {
  if (entry.Name.size() > kMost16) throw InputOutputError(kInvalidFileName);
  const bool isAscii =
      std::ranges::all_of(entry.Name, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  record.Add16(isLong ? kLongVersion : kPlainVersion)
      .Add16(isAscii ? 0 : kUtf8Name)
      .Add16(entry.IsFolder() ? kStored : kDeflated)
      .Add32(PackedTime(entry.Modified))
      .Add32(entry.Crc);
}

/// The numbers that do not fit, in an extra field of their own.
std::string LongField(const TRecord& numbers) {
  const std::string& bytes = numbers.Bytes();
  return bytes.empty() ? bytes : TRecord().Add16(kLongField).Add16(bytes.size()).Add(bytes).Bytes();
}

}  // namespace

namespace zip_records {

std::string LocalHeader(const TZipEntry& entry) {
  TRecord numbers;
  if (entry.HasLongHeader) numbers.Add64(entry.Size).Add64(entry.PackedSize);
  const std::string longField = LongField(numbers);

  TRecord record;
  record.Add32(kLocalHeader);
  AddCommonPart(record, entry, entry.HasLongHeader);
  return record.Add32(entry.HasLongHeader ? kMost32 : entry.PackedSize)
      .Add32(entry.HasLongHeader ? kMost32 : entry.Size)
      .Add16(entry.Name.size())
      .Add16(longField.size())
      .Add(entry.Name)
      .Add(longField)
      .Bytes();
}

std::string DirectoryHeader(const TZipEntry& entry) {
  TRecord numbers;
  for (const std::uint64_t number : {entry.Size, entry.PackedSize, entry.Position}) {
    if (IsLong(number)) numbers.Add64(number);
  }
  const std::string longField = LongField(numbers);

  const bool isLong = !longField.empty() || entry.HasLongHeader;
  TRecord record;
  record.Add32(kDirectoryHeader).Add16(kMadeOnUnix | (isLong ? kLongVersion : kPlainVersion));
  AddCommonPart(record, entry, isLong);
  return record.Add32(std::min(entry.PackedSize, kMost32))
      .Add32(std::min(entry.Size, kMost32))
      .Add16(entry.Name.size())
      .Add16(longField.size())
      .Add16(0)  // comment
      .Add16(0)  // first disk
      .Add16(0)  // internal attributes
      .Add32(entry.IsFolder() ? kFolderAttributes : kFileAttributes)
      .Add32(std::min(entry.Position, kMost32))
      .Add(entry.Name)
      .Add(longField)
      .Bytes();
}

std::string DirectoryEnd(std::uint64_t entries, std::uint64_t position, std::uint64_t size) {
  TRecord record;
  if (entries > kMost16 || IsLong(position) || IsLong(size)) {
    constexpr std::uint64_t kRestOfRecord = 44;
    record.Add32(kLongDirectoryEnd)
        .Add64(kRestOfRecord)
        .Add16(kMadeOnUnix | kLongVersion)
        .Add16(kLongVersion);
    record.Add32(0).Add32(0).Add64(entries).Add64(entries).Add64(size).Add64(position);
    record.Add32(kLongDirectoryLocator).Add32(0).Add64(position + size).Add32(1);
  }
  record.Add32(kDirectoryEnd).Add16(0).Add16(0);
  record.Add16(std::min(entries, kMost16)).Add16(std::min(entries, kMost16));
  return record.Add32(std::min(size, kMost32)).Add32(std::min(position, kMost32)).Add16(0).Bytes();
}

}  // namespace zip_records
