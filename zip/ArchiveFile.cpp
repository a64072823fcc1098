#include "zip/ArchiveFile.h"

#include <algorithm>

namespace {

constexpr std::size_t kBufferSize = 65'536;

}  // namespace

TArchiveFile::TArchiveFile(TextView path) : fFile(path, TCreate::New), fBuffer(kBufferSize) {}

void TArchiveFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::span<char> room = Room();
    const std::size_t count = bytes.copy(room.data(), room.size());
    Advance(count);
    bytes.remove_prefix(count);
  }
}

void TArchiveFile::Patch(std::uint64_t position, std::string_view bytes) {
  if (position >= fWritten) {
    std::ranges::copy(bytes, fBuffer.begin() + static_cast<std::ptrdiff_t>(position - fWritten));
    return;
  }
  Flush();
  fFile.WriteAt(position, bytes);
}

std::span<char> TArchiveFile::Room() {
  if (fUsed == fBuffer.size()) Flush();
  return std::span(fBuffer).subspan(fUsed);
}

void TArchiveFile::Close() {
  Flush();
  fFile.Sync();
  fFile.Close();
}

void TArchiveFile::Flush() {
  fFile.Write(std::span(fBuffer).first(fUsed));
  fWritten += fUsed;
  fUsed = 0;
}
