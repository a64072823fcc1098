#include "platform/Files.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <limits>

#include "platform/Path.h"
#include "platform/windows/SystemHandles.h"
#include "platform/windows/SystemPath.h"
#include "platform/windows/Wide.h"

namespace {

/// By the rules for summer time of its own date, as the system's shell shows it.
TLocalTime LocalTime(const FILETIME& time) {
  SYSTEMTIME utc{};
  SYSTEMTIME local{};
  if (!::FileTimeToSystemTime(&time, &utc) || !::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
    return {};
  const auto byte = [](WORD value) { return static_cast<std::uint8_t>(value); };
  return {local.wYear,       byte(local.wMonth),  byte(local.wDay),
          byte(local.wHour), byte(local.wMinute), byte(local.wSecond)};
}

std::uint64_t Joined(DWORD high, DWORD low) {
  return std::uint64_t{high} << 32 | low;
}

TEntryKind KindOf(const WIN32_FIND_DATAW& found) {
  if (IsLink(found)) return TEntryKind::Other;
  return (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? TEntryKind::Folder : TEntryKind::File;
}

TFolderEntry Entry(const WIN32_FIND_DATAW& found) {
  const TEntryKind kind = KindOf(found);
  const auto size = kind == TEntryKind::File ? Joined(found.nFileSizeHigh, found.nFileSizeLow) : 0;
  return {UnicodeString(FromWide(found.cFileName)), kind, size, LocalTime(found.ftLastWriteTime)};
}

/// Shows `onFound` what is in the folder until it answers false, which is no error. The end of the folder is
/// ERROR_NO_MORE_FILES.
template <class TCall>
DWORD Search(TextView folder, const TCall& onFound) {
  WIN32_FIND_DATAW found{};
  const TFindHandle search(::FindFirstFileExW(Wide(SystemPath(UnicodeString(folder) + u"\\*")),
                                              FindExInfoBasic, &found, FindExSearchNameMatch, nullptr,
                                              FIND_FIRST_EX_LARGE_FETCH));
  if (search) {
    do {
      const TextView name = FromWide(found.cFileName);
      if (name != u"." && name != u".." && !onFound(found)) return ERROR_SUCCESS;
    } while (::FindNextFileW(search.Get(), &found));
  }
  // An empty top folder of a drive has not even the entries "." and "..".
  const DWORD error = ::GetLastError();
  return error == ERROR_FILE_NOT_FOUND ? ERROR_NO_MORE_FILES : error;
}

/// What the system says of a whole drive or server that is not there or does not answer, often after seconds.
/// Errors that pass with the next question, as that of a lost connection, are not among them.
bool IsSilence(DWORD error) {
  constexpr std::array kErrors = {ERROR_INVALID_DRIVE,       ERROR_NOT_READY,          ERROR_REM_NOT_LIST,
                                  ERROR_BAD_NETPATH,         ERROR_BAD_NET_NAME,       ERROR_SEM_TIMEOUT,
                                  ERROR_CONNECTION_UNAVAIL,  ERROR_NO_NET_OR_BAD_PATH, ERROR_NO_NETWORK,
                                  ERROR_NETWORK_UNREACHABLE, ERROR_HOST_UNREACHABLE};
  return std::ranges::find(kErrors, static_cast<long>(error)) != kErrors.end();
}

DWORD ClampedSize(std::size_t size) {
  return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()));
}

}  // namespace

bool FolderExists(TextView path) {
  const UnicodeString name = SystemPath(path);
  const DWORD attributes = ::GetFileAttributesW(Wide(name));
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return false;
  // The attributes alone would also count a link whose target is gone.
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 || OpenForQueries(path);
}

bool FileExists(TextView path) {
  const DWORD attributes = ::GetFileAttributesW(Wide(SystemPath(path)));
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

UnicodeString TemporaryFolder() {
  UnicodeString folder(::GetTempPathW(0, nullptr), u'\0');  // with the closing zero
  folder.resize(::GetTempPathW(static_cast<DWORD>(folder.size()), WideBuffer(folder)));
  return folder;
}

/// Through the shell's own memory, as its calls for special folders demand. The shell is loaded here and not
/// with the program, whose other tasks do not need it.
std::optional<UnicodeString> DesktopFolder() {
  const HMODULE shell = ::LoadLibraryExW(L"shell32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (shell == nullptr) return std::nullopt;
  const auto find = [shell]<class TFunction>(const char* name, TFunction*) {
    return reinterpret_cast<TFunction*>(reinterpret_cast<void*>(::GetProcAddress(shell, name)));
  };
  const auto getMalloc = find("SHGetMalloc", &::SHGetMalloc);
  const auto getLocation = find("SHGetSpecialFolderLocation", &::SHGetSpecialFolderLocation);
  const auto getPath = find("SHGetPathFromIDListW", &::SHGetPathFromIDListW);
  TComReference<IMalloc> memory;
  if (getMalloc == nullptr || FAILED(memory.ReceiveFrom(getMalloc))) return std::nullopt;
  LPITEMIDLIST item = nullptr;
  if (getLocation == nullptr || FAILED(getLocation(nullptr, CSIDL_DESKTOP, &item))) return std::nullopt;
  std::array<wchar_t, MAX_PATH> path{};
  if (getPath == nullptr || !getPath(item, path.data())) path[0] = L'\0';
  memory->Free(item);
  return UnicodeString(FromWide(path.data()));
}

bool RootAnswers(TextView root) {
  const UnicodeString folder = UnicodeString(root) + u"\\";
  if (::GetFileAttributesW(Wide(folder)) != INVALID_FILE_ATTRIBUTES) return true;
  const DWORD error = ::GetLastError();
  return error != ERROR_PATH_NOT_FOUND && error != ERROR_FILE_NOT_FOUND && !IsSilence(error);
}

UnicodeString UpperFileName(TextView name) {
  UnicodeString upper(name);
  const int size = static_cast<int>(name.size());
  // Without a flag for linguistic casing the call follows the file system's rules.
  ::LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, Wide(name.data()), size, WideBuffer(upper), size);
  return upper;
}

bool CreateFolders(TextView path) {
  const UnicodeString name = SystemPath(path);
  if (::CreateDirectoryW(Wide(name), nullptr)) return true;
  if (::GetLastError() == ERROR_PATH_NOT_FOUND) {
    const TextView parent = ParentFolder(path);
    if (!parent.empty() && CreateFolders(parent)) return ::CreateDirectoryW(Wide(name), nullptr) != 0;
  }
  return FolderExists(path);
}

TListingEnd ListNames(TextView folder, const std::function<bool(TextView, TEntryKind)>& onName) {
  const DWORD end = Search(folder, [&onName](const WIN32_FIND_DATAW& found) {
    return onName(FromWide(found.cFileName), KindOf(found));
  });
  switch (end) {
    case ERROR_NO_MORE_FILES:
      return TListingEnd::Complete;
    case ERROR_SUCCESS:
      return TListingEnd::Stopped;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY:
      return TListingEnd::NoFolder;
    default:
      return IsSilence(end) ? TListingEnd::NoAnswer : TListingEnd::Refused;
  }
}

std::vector<TFolderEntry> ListFolder(TextView path) {
  std::vector<TFolderEntry> entries;
  const DWORD end = Search(path, [&entries](const WIN32_FIND_DATAW& found) {
    entries.push_back(Entry(found));
    return true;
  });
  if (end != ERROR_NO_MORE_FILES) throw InputOutputError(end);
  return entries;
}

struct TInputFile::TImpl {
  TFileHandle Own;  // none: standard input, which belongs to the process
  HANDLE Handle;
};

TInputFile::TInputFile() = default;
TInputFile::TInputFile(std::unique_ptr<TImpl> impl) : fImpl(std::move(impl)) {}
TInputFile::~TInputFile() = default;

TInputFile TInputFile::Open(TextView path) {
  TFileHandle handle(::CreateFileW(Wide(SystemPath(path)), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!handle) return {};
  const HANDLE raw = handle.Get();
  return TInputFile(std::make_unique<TImpl>(TImpl{std::move(handle), raw}));
}

TInputFile TInputFile::OpenShared(TextView path) {
  TFileHandle handle(::CreateFileW(Wide(SystemPath(path)), GENERIC_READ,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!handle) throw LastInputOutputError();
  const HANDLE raw = handle.Get();
  return TInputFile(std::make_unique<TImpl>(TImpl{std::move(handle), raw}));
}

TInputFile TInputFile::StandardInput() {
  return TInputFile(std::make_unique<TImpl>(TImpl{TFileHandle(), ::GetStdHandle(STD_INPUT_HANDLE)}));
}

std::size_t TInputFile::Read(std::span<char> buffer) {
  DWORD count = 0;
  if (::ReadFile(fImpl->Handle, buffer.data(), ClampedSize(buffer.size()), &count, nullptr)) return count;
  const DWORD error = ::GetLastError();
  if (error == ERROR_BROKEN_PIPE) return 0;  // the writer has closed its end: that is the end of the file
  throw InputOutputError(error);
}

TInputFile::TState TInputFile::State() const {
  BY_HANDLE_FILE_INFORMATION information{};
  if (!::GetFileInformationByHandle(fImpl->Handle, &information)) throw LastInputOutputError();
  return {Joined(information.nFileSizeHigh, information.nFileSizeLow),
          LocalTime(information.ftLastWriteTime)};
}

struct TOutputFile::TImpl {
  TFileHandle Handle;
  std::uint64_t End = 0;

  void Write(std::uint64_t position, std::span<const char> bytes) {
    while (!bytes.empty()) {
      OVERLAPPED place{};
      place.Offset = static_cast<DWORD>(position);
      place.OffsetHigh = static_cast<DWORD>(position >> 32);
      DWORD count = 0;
      if (!::WriteFile(Handle.Get(), bytes.data(), ClampedSize(bytes.size()), &count, &place))
        throw LastInputOutputError();
      bytes = bytes.subspan(count);
      position += count;
    }
  }
};

TOutputFile::TOutputFile(TextView path, TCreate how) : fImpl(std::make_unique<TImpl>()) {
  fImpl->Handle = TFileHandle(::CreateFileW(Wide(SystemPath(path)), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                            how == TCreate::New ? CREATE_NEW : CREATE_ALWAYS,
                                            FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!fImpl->Handle) throw LastInputOutputError();
}
TOutputFile::~TOutputFile() = default;

void TOutputFile::Write(std::span<const char> bytes) {
  fImpl->Write(fImpl->End, bytes);
  fImpl->End += bytes.size();
}

void TOutputFile::WriteAt(std::uint64_t position, std::span<const char> bytes) {
  fImpl->Write(position, bytes);
}

void TOutputFile::Sync() {
  if (!::FlushFileBuffers(fImpl->Handle.Get())) throw LastInputOutputError();
}

void TOutputFile::Close() {
  if (!CloseChecked(fImpl->Handle)) throw LastInputOutputError();
}
