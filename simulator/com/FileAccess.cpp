#include "simulator/com/FileAccess.h"

#include <windows.h>

#include <utility>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

namespace {

/// Deletes the file at its end unless it was kept.
class TTemporaryFile {
 public:
  explicit TTemporaryFile(UnicodeString path) : fPath(std::move(path)) {}
  ~TTemporaryFile() {
    if (!fKept) ::DeleteFileW(Wide(fPath));
  }
  TTemporaryFile(const TTemporaryFile&) = delete;
  TTemporaryFile& operator=(const TTemporaryFile&) = delete;

  const UnicodeString& Path() const noexcept { return fPath; }

  /// Puts the file in the place of `target`.
  void MoveTo(const UnicodeString& target) {
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (!::MoveFileExW(Wide(fPath), Wide(target), kFlags)) throw LastSystemError();
    fKept = true;
  }

 private:
  UnicodeString fPath;
  bool fKept = false;
};

std::string Load(const UnicodeString& path) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const TFileHandle file(::CreateFileW(Wide(path), GENERIC_READ, kShare, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw LastSystemError();
  std::string bytes;
  for (DWORD count = 1; count > 0;) {
    constexpr DWORD kBlock = 64 * 1024;
    const std::size_t before = bytes.size();
    bytes.resize(before + kBlock);
    if (!::ReadFile(file.Get(), bytes.data() + before, kBlock, &count, nullptr)) throw LastSystemError();
    bytes.resize(before + count);
  }
  return bytes;
}

void Write(const UnicodeString& path, const std::string& bytes) {
  const TFileHandle file(
      ::CreateFileW(Wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw LastSystemError();
  DWORD count = 0;
  if (!::WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr)) {
    throw LastSystemError();
  }
}

/// Written beside its target and put in its place when complete: a host that is killed here leaves the old
/// file.
void Store(const UnicodeString& path, const std::string& bytes) {
  // Some systems ask only the folder whether a file may be replaced, not the file itself.
  const DWORD attributes = ::GetFileAttributesW(Wide(path));
  const bool present = attributes != INVALID_FILE_ATTRIBUTES;
  if (present && (attributes & FILE_ATTRIBUTE_READONLY) != 0) throw SystemError(ERROR_ACCESS_DENIED);
  TTemporaryFile temporary(path + u"." + DecimalText(::GetCurrentProcessId()) + u".tmp");
  Write(temporary.Path(), bytes);
  temporary.MoveTo(path);
}

}  // namespace

namespace simulator {

TFileAccess SystemFiles() {
  return {Load, Store};
}

}  // namespace simulator
