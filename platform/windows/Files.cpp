#include "platform/Files.h"

#include <algorithm>
#include <limits>

#include "platform/Error.h"
#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

namespace {

/// The attributes alone would also count a link whose target is gone.
bool OpensAsFolder(const UnicodeString& path) {
  const TFileHandle handle(::CreateFileW(Wide(path), 0,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  return static_cast<bool>(handle);
}

/// The folder that `path` lies in; empty at the top.
UnicodeString ParentFolder(const UnicodeString& path) {
  const std::size_t separator = path.find_last_of(u"\\/");
  return separator == UnicodeString::npos ? UnicodeString() : path.substr(0, separator);
}

}  // namespace

bool FolderExists(TextView path) {
  const UnicodeString name(path);
  const DWORD attributes = ::GetFileAttributesW(Wide(name));
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return false;
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 || OpensAsFolder(name);
}

bool FileExists(TextView path) {
  const DWORD attributes = ::GetFileAttributesW(Wide(UnicodeString(path)));
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool CreateFolders(TextView path) {
  const UnicodeString name(path);
  if (::CreateDirectoryW(Wide(name), nullptr)) return true;
  if (::GetLastError() == ERROR_PATH_NOT_FOUND) {
    const UnicodeString parent = ParentFolder(name);
    if (!parent.empty() && CreateFolders(parent)) return ::CreateDirectoryW(Wide(name), nullptr) != 0;
  }
  return FolderExists(path);
}

struct TInputFile::TImpl {
  TFileHandle Own;  // none: standard input, which belongs to the process
  HANDLE Handle;
};

TInputFile::TInputFile() = default;
TInputFile::TInputFile(std::unique_ptr<TImpl> impl) : fImpl(std::move(impl)) {}
TInputFile::TInputFile(TInputFile&&) noexcept = default;
TInputFile& TInputFile::operator=(TInputFile&&) noexcept = default;
TInputFile::~TInputFile() = default;

TInputFile TInputFile::Open(TextView path) {
  TFileHandle handle(::CreateFileW(Wide(UnicodeString(path)), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!handle) return {};
  const HANDLE raw = handle.Get();
  return TInputFile(std::make_unique<TImpl>(TImpl{std::move(handle), raw}));
}

TInputFile TInputFile::StandardInput() {
  return TInputFile(std::make_unique<TImpl>(TImpl{TFileHandle(), ::GetStdHandle(STD_INPUT_HANDLE)}));
}

std::size_t TInputFile::Read(std::span<char> buffer) {
  DWORD count = 0;
  const auto size =
      static_cast<DWORD>(std::min<std::size_t>(buffer.size(), std::numeric_limits<DWORD>::max()));
  if (::ReadFile(fImpl->Handle, buffer.data(), size, &count, nullptr)) return count;
  const DWORD error = ::GetLastError();
  if (error == ERROR_BROKEN_PIPE) return 0;  // the writer has closed its end: that is the end of the file
  throw InputOutputError(static_cast<std::int32_t>(error));
}
