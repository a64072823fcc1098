#include "platform/FileOperations.h"

#include <windows.h>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/SystemPath.h"

namespace {

DWORD CALLBACK CopyProgress(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE,
                            HANDLE, void* onBlock) {
  (*static_cast<const std::function<void()>*>(onBlock))();
  return PROGRESS_CONTINUE;
}

DWORD ResultOf(BOOL done) {
  return done ? ERROR_SUCCESS : ::GetLastError();
}

bool IsBusy(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

/// Scanners and indexers open a new file for a moment as soon as it has been closed. What they are in the way
/// of is tried again, for two seconds over all calls.
class TPatience {
 public:
  /// The error `call` has ended with. `alsoBusy`: one more that may pass.
  template <class TCall>
  DWORD Try(const TCall& call, DWORD alsoBusy = ERROR_SHARING_VIOLATION) {
    for (;; --fAttempts) {
      const DWORD error = ResultOf(call());
      if ((!IsBusy(error) && error != alsoBusy) || fAttempts == 0) return error;
      ::Sleep(kPause);
    }
  }

 private:
  static constexpr DWORD kPause = 50;

  int fAttempts = 40;
};

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
void RemoveContents(const UnicodeString& folder, TPatience& patience) {
  WIN32_FIND_DATAW found{};
  const TFindHandle search(::FindFirstFileW(Wide(SystemPath(folder + u"\\*")), &found));
  if (!search) return;
  do {
    const UnicodeString name(FromWide(found.cFileName));
    if (name == u"." || name == u"..") continue;
    const UnicodeString path = SystemPath(folder + u"\\" + name);
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0 && !IsLink(found)) AllowWriting(path);
    if (isFolder && !IsLink(found)) RemoveContents(path, patience);
    patience.Try([&] { return isFolder ? ::RemoveDirectoryW(Wide(path)) : ::DeleteFileW(Wide(path)); });
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
  return full;
}

bool IsLink(TextView path) {
  WIN32_FIND_DATAW found{};
  const TFindHandle search(::FindFirstFileW(Wide(SystemPath(path)), &found));
  return search && IsLink(found);
}

bool CopyFileOver(TextView from, TextView to, const std::function<void()>& onBlock) {
  const UnicodeString source = SystemPath(from);
  const UnicodeString target = SystemPath(to);
  if (IsLink(to)) ::DeleteFileW(Wide(target));
  const auto copy = [&] {
    return ::CopyFileExW(Wide(source), Wide(target), CopyProgress,
                         const_cast<std::function<void()>*>(&onBlock), nullptr, 0);
  };
  DWORD error = ResultOf(copy());
  if (error == ERROR_SUCCESS) return true;
  if (!OpensForReading(source)) return false;
  // The copy before it has taken the write protection over from its source.
  if (error == ERROR_ACCESS_DENIED) AllowWriting(target);
  if (error == ERROR_ACCESS_DENIED || IsBusy(error)) error = TPatience().Try(copy);
  if (error == ERROR_SUCCESS) return true;
  // A target that could not even be opened is whole. Otherwise the copy has failed on its way, on a full disk
  // say, and Wine leaves the part.
  if (error != ERROR_ACCESS_DENIED && !IsBusy(error)) ::DeleteFileW(Wide(target));
  return false;
}

void RemoveFile(TextView path) {
  const UnicodeString name = SystemPath(path);
  const DWORD error = TPatience().Try([&name] { return ::DeleteFileW(Wide(name)); });
  if (error != ERROR_SUCCESS) throw InputOutputError(error);
}

void RenameFile(TextView from, TextView to) {
  const UnicodeString source = SystemPath(from);
  const UnicodeString target = SystemPath(to);
  const auto move = [&] { return ::MoveFileExW(Wide(source), Wide(target), MOVEFILE_REPLACE_EXISTING); };
  // A target that is removed while somebody has it open keeps its name for so long and denies access.
  const DWORD error = TPatience().Try(move, ERROR_ACCESS_DENIED);
  if (error != ERROR_SUCCESS) throw InputOutputError(error);
}

void RemoveFolder(TextView path) noexcept {
  try {
    const UnicodeString folder = SystemPath(path);
    TPatience patience;
    if (!IsLink(path)) RemoveContents(folder, patience);
    // Files that are removed while somebody has them open stay in it for so long.
    patience.Try([&folder] { return ::RemoveDirectoryW(Wide(folder)); }, ERROR_DIR_NOT_EMPTY);
  } catch (...) {  // no memory for a name: the rest stays
  }
}
