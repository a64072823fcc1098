#include "platform/FileOperations.h"

#include <windows.h>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/SystemPath.h"

namespace {

DWORD CALLBACK CopyProgress(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE,
                            HANDLE, void* budget) {
  static_cast<const TRetryBudget*>(budget)->KeepAlive();
  return PROGRESS_CONTINUE;
}

DWORD ResultOf(BOOL done) {
  return done ? ERROR_SUCCESS : ::GetLastError();
}

bool IsBusy(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

/// The error that `call` ends with. It is made again as long as another program's handle blocks it, or
/// `alsoBusy` comes, one more error that may pass.
template <class TCall>
DWORD Retry(TRetryBudget& budget, const TCall& call, DWORD alsoBusy = ERROR_SHARING_VIOLATION) {
  for (;;) {
    const DWORD error = ResultOf(call());
    if ((!IsBusy(error) && error != alsoBusy) || !budget.Pause()) return error;
  }
}

bool OpensForReading(const UnicodeString& systemPath) {
  const TFileHandle handle(::CreateFileW(Wide(systemPath), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  return static_cast<bool>(handle);
}

void AllowWriting(const UnicodeString& systemPath) {
  ::SetFileAttributesW(Wide(systemPath), FILE_ATTRIBUTE_NORMAL);
}

/// A system function that fills a text of any length: `call(buffer, size)` gives the length, or the size that
/// it needs.
template <class TCall>
UnicodeString Filled(TCall&& call) {
  UnicodeString text(MAX_PATH, u'\0');
  DWORD length = call(WideBuffer(text), static_cast<DWORD>(text.size()));
  if (length > text.size()) {
    text.resize(length);
    length = call(WideBuffer(text), static_cast<DWORD>(text.size()));
  }
  text.resize(length <= text.size() ? length : 0);
  return text;
}

/// "\\?\C:\x" is "C:\x", "\\?\UNC\server\x" is "\\server\x".
UnicodeString WithoutPrefix(UnicodeString path) {
  constexpr TextView kPrefix = u"\\\\?\\";
  constexpr TextView kSharePrefix = u"\\\\?\\UNC\\";
  if (path.starts_with(kSharePrefix)) return path.replace(0, kSharePrefix.size(), u"\\\\");
  if (path.starts_with(kPrefix) && path.find(u':') == kPrefix.size() + 1) path.erase(0, kPrefix.size());
  return path;
}

/// Short names made long as far as the path exists: a folder that is yet to be created may lie in one with
/// such a name.
UnicodeString WithLongNames(const UnicodeString& path) {
  const UnicodeString longName =
      Filled([&path](wchar_t* buffer, DWORD size) { return ::GetLongPathNameW(Wide(path), buffer, size); });
  if (!longName.empty()) return longName;
  const std::size_t separator = path.find_last_of(u'\\');
  if (separator == UnicodeString::npos || separator == 0) return path;
  return WithLongNames(path.substr(0, separator)) + path.substr(separator);
}

/// Everything in the folder, or as much of it as lets itself be removed.
void RemoveContents(const UnicodeString& folder, TRetryBudget& budget) {
  WIN32_FIND_DATAW found{};
  const TFindHandle search(::FindFirstFileW(Wide(SystemPath(folder + u"\\*")), &found));
  if (!search) return;
  do {
    const UnicodeString name(FromWide(found.cFileName));
    if (name == u"." || name == u"..") continue;
    const UnicodeString path = SystemPath(folder + u"\\" + name);
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0 && !IsLink(found)) AllowWriting(path);
    if (isFolder && !IsLink(found)) RemoveContents(path, budget);
    budget.KeepAlive();
    Retry(budget, [&] { return isFolder ? ::RemoveDirectoryW(Wide(path)) : ::DeleteFileW(Wide(path)); });
  } while (::FindNextFileW(search.Get(), &found));
}

}  // namespace

UnicodeString NormalisedPath(TextView path) {
  // The system drops all dots and blanks only from a name that ends the path; "..." before a separator stays.
  constexpr std::size_t kDriveLength = 3;
  while (path.size() > kDriveLength && (path.back() == u'\\' || path.back() == u'/')) path.remove_suffix(1);
  const UnicodeString name(path);
  UnicodeString full = Filled(
      [&name](wchar_t* buffer, DWORD size) { return ::GetFullPathNameW(Wide(name), size, buffer, nullptr); });
  if (full.find(u'~') != UnicodeString::npos) full = WithLongNames(full);
  while (full.ends_with(u'\\')) full.pop_back();
  return WithoutPrefix(std::move(full));
}

UnicodeString ResolvedPath(TextView path) {
  const UnicodeString normalised = NormalisedPath(path);
  if (const TFileHandle handle = OpenForQueries(path)) {
    UnicodeString full = Filled([&handle](wchar_t* buffer, DWORD size) {
      return ::GetFinalPathNameByHandleW(handle.Get(), buffer, size, FILE_NAME_NORMALIZED);
    });
    return full.empty() ? normalised : WithoutPrefix(std::move(full));
  }
  const std::size_t separator = normalised.find_last_of(u'\\');
  if (separator == UnicodeString::npos || separator == 0) return normalised;
  return ResolvedPath(TextView(normalised).substr(0, separator)) + normalised.substr(separator);
}

std::optional<TFileIdentity> IdentityOf(TextView path) {
  const TFileHandle handle = OpenForQueries(path);
  BY_HANDLE_FILE_INFORMATION information{};
  if (!handle || !::GetFileInformationByHandle(handle.Get(), &information)) return {};
  const std::uint64_t index = std::uint64_t{information.nFileIndexHigh} << 32 | information.nFileIndexLow;
  if (index == 0) return {};  // some network file systems number nothing
  return TFileIdentity{information.dwVolumeSerialNumber, index};
}

bool IsLink(TextView path) {
  WIN32_FIND_DATAW found{};
  const TFindHandle search(::FindFirstFileW(Wide(SystemPath(path)), &found));
  return search && IsLink(found);
}

bool CopyFileOver(TextView from, TextView to, TRetryBudget& budget) {
  const UnicodeString source = SystemPath(from);
  const UnicodeString target = SystemPath(to);
  if (IsLink(to)) ::DeleteFileW(Wide(target));
  const auto copy = [&] {
    return ::CopyFileExW(Wide(source), Wide(target), CopyProgress, &budget, nullptr, 0);
  };
  DWORD error = ResultOf(copy());
  if (error == ERROR_SUCCESS) return true;
  if (!OpensForReading(source)) return false;
  // The copy before it has taken the write protection over from its source.
  if (error == ERROR_ACCESS_DENIED) AllowWriting(target);
  if (error == ERROR_ACCESS_DENIED || IsBusy(error)) error = Retry(budget, copy);
  if (error == ERROR_SUCCESS) return true;
  // A target that could not even be opened is whole. Otherwise the copy has failed on its way, on a full disk
  // say, and Wine leaves the part.
  if (error != ERROR_ACCESS_DENIED && !IsBusy(error)) ::DeleteFileW(Wide(target));
  return false;
}

void RemoveFile(TextView path, TRetryBudget& budget) {
  const UnicodeString name = SystemPath(path);
  const DWORD error = Retry(budget, [&name] { return ::DeleteFileW(Wide(name)); });
  if (error != ERROR_SUCCESS) throw InputOutputError(error);
}

void RenameFile(TextView from, TextView to, TRetryBudget& budget) {
  const UnicodeString source = SystemPath(from);
  const UnicodeString target = SystemPath(to);
  const auto move = [&] { return ::MoveFileExW(Wide(source), Wide(target), MOVEFILE_REPLACE_EXISTING); };
  // A target that is removed while somebody has it open keeps its name until then and denies access.
  const DWORD error = Retry(budget, move, ERROR_ACCESS_DENIED);
  if (error != ERROR_SUCCESS) throw InputOutputError(error);
}

void RemoveFolder(TextView path, TRetryBudget& budget) noexcept {
  try {
    const UnicodeString folder = SystemPath(path);
    if (!IsLink(path)) RemoveContents(folder, budget);
    // Files that are removed while somebody has them open stay in it until then.
    const auto remove = [&folder] { return ::RemoveDirectoryW(Wide(folder)); };
    Retry(budget, remove, ERROR_DIR_NOT_EMPTY);
  } catch (...) {  // no memory for a name: the rest stays
  }
}

struct TLockFile::TImpl {
  TFileHandle Handle;
};

TLockFile::TLockFile(TextView path) {
  TFileHandle handle(::CreateFileW(Wide(SystemPath(path)), GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                                   FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
  const DWORD error = ::GetLastError();
  if (handle) {
    fImpl = std::make_unique<TImpl>(TImpl{std::move(handle)});
  } else if (error != ERROR_SHARING_VIOLATION) {
    throw InputOutputError(error);
  }
}

TLockFile::~TLockFile() = default;
