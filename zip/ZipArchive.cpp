#include "zip/ZipArchive.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "zip/ArchiveFile.h"
#include "zip/Checksum.h"
#include "zip/PackedStream.h"
#include "zip/ZipRecords.h"

namespace {

/// In UTF-8, which cannot hold unpaired surrogates. Each becomes the replacement character and its number, as
/// does that character itself, so that different names stay different.
std::string EntryName(TextView name) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string entry;
  for (std::size_t at = 0; at < name.size();) {
    const char16_t unit = name[at];
    const char32_t codePoint = NextCodePoint(name, at);
    AppendUtf8(entry, codePoint == U'\\' ? U'/' : codePoint);
    if (codePoint == kReplacement) entry += Utf8FromText(HexText(unit).substr(4));
  }
  return entry;
}

/// An upper bound for the packed size of this many bytes: whatever kind it is of, no unit grows by a
/// hundredth.
std::uint64_t MostPacked(std::uint64_t size) {
  return size + size / 64 + 1024;
}

}  // namespace

struct TZipArchive::TImpl {
  TImpl(TextView path, std::function<void()> onBlock)
      : File(path), Stream(File), OnBlock(std::move(onBlock)) {}

  void Pack(TInputFile& input, TZipEntry& entry, std::uint64_t limit);
  void AddToDirectory(const TZipEntry& entry);

  TArchiveFile File;
  TPackedStream Stream;
  std::function<void()> OnBlock;
  /// The directory's bytes as they will be written, in pieces: one string would be copied whole each time it
  /// grows.
  std::vector<std::string> Directory;
  std::uint64_t Entries = 0;
};

/// Packs at most `limit` bytes and notes sizes and checksum.
void TZipArchive::TImpl::Pack(TInputFile& input, TZipEntry& entry, std::uint64_t limit) {
  const std::uint64_t begin = File.Position();
  Stream.Begin();
  while (entry.Size < limit) {
    const std::span<char> room = Stream.Room();
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(limit - entry.Size, room.size()));
    const std::size_t count = input.Read(room.first(most));
    if (count == 0) break;
    entry.Crc = Checksum(entry.Crc, {reinterpret_cast<const unsigned char*>(room.data()), count});
    entry.Size += count;
    Stream.Pack(count);
    if (OnBlock) OnBlock();
  }
  Stream.Finish();
  entry.PackedSize = File.Position() - begin;
}

void TZipArchive::TImpl::AddToDirectory(const TZipEntry& entry) {
  constexpr std::size_t kPieceSize = 65'536;
  const std::string header = zip_records::DirectoryHeader(entry);
  if (Directory.empty() || Directory.back().size() + header.size() > Directory.back().capacity()) {
    Directory.emplace_back().reserve(std::max(kPieceSize, header.size()));
  }
  Directory.back() += header;
  ++Entries;
}

TZipArchive::TZipArchive(TextView path, std::function<void()> onBlock)
    : fImpl(std::make_unique<TImpl>(path, std::move(onBlock))) {}
TZipArchive::~TZipArchive() = default;

void TZipArchive::AddFile(TextView path, TextView name) {
  TInputFile input = TInputFile::OpenShared(path);
  const TInputFile::TState state = input.State();
  TZipEntry entry;
  entry.Name = EntryName(name);
  entry.Modified = state.Modified;
  entry.Position = fImpl->File.Position();
  entry.HasLongHeader = zip_records::IsLong(MostPacked(state.Size));
  fImpl->File.Write(zip_records::LocalHeader(entry));
  fImpl->Pack(input, entry, state.Size);
  fImpl->File.Patch(entry.Position, zip_records::LocalHeader(entry));
  fImpl->AddToDirectory(entry);
}

void TZipArchive::AddFolder(TextView name, TLocalTime modified) {
  TZipEntry entry;
  entry.Name = EntryName(name);
  if (!entry.IsFolder()) entry.Name += '/';
  entry.Modified = modified;
  entry.Position = fImpl->File.Position();
  fImpl->File.Write(zip_records::LocalHeader(entry));
  fImpl->AddToDirectory(entry);
}

void TZipArchive::AddContents(TextView folder) {
  AddContents(folder, {});
}

void TZipArchive::AddContents(TextView folder, TextView prefix) {
  std::vector<TFolderEntry> entries = ListFolder(folder);
  // With its separator a folder's name sorts as the names of what is in it.
  for (TFolderEntry& entry : entries) {
    if (entry.Kind == TEntryKind::Folder) entry.Name += u'/';
  }
  std::ranges::sort(entries, {}, &TFolderEntry::Name);
  for (const TFolderEntry& entry : entries) {
    const UnicodeString name = UnicodeString(prefix) + entry.Name;
    UnicodeString path = UnicodeString(folder) + u'\\' + entry.Name;
    if (entry.Kind == TEntryKind::File) AddFile(path, name);
    if (entry.Kind != TEntryKind::Folder) continue;
    path.pop_back();
    const std::uint64_t before = fImpl->Entries;
    AddContents(path, name);
    if (fImpl->Entries == before) AddFolder(name, entry.Modified);
  }
}

void TZipArchive::Close() {
  const std::uint64_t position = fImpl->File.Position();
  for (const std::string& piece : fImpl->Directory) fImpl->File.Write(piece);
  fImpl->File.Write(zip_records::DirectoryEnd(fImpl->Entries, position, fImpl->File.Position() - position));
  fImpl->File.Close();
}
