#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <memory>
#include <utility>

#include "headless/Machine.h"
#include "platform/Error.h"
#include "platform/FileOperations.h"
#include "platform/Handle.h"
#include "platform/System.h"

using headless::Fails;
using headless::HostPath;
using headless::Machine;
using headless::ThrowIfFails;

namespace {

constexpr std::int32_t kInvalidHandle = 6;  // what Windows reports for a read without a handle

using TDescriptor = TUniqueHandle<int, ::close, -1>;

TDescriptor OpenDescriptor(TextView path, int flags) {
  TDescriptor descriptor(::open(HostPath(path).c_str(), flags | O_CLOEXEC, 0666));
  if (!descriptor) throw InputOutputError(errno);
  return descriptor;
}

struct stat Status(const TDescriptor& descriptor) {
  struct stat status = {};
  if (::fstat(descriptor.Get(), &status) != 0) throw InputOutputError(errno);
  return status;
}

TLocalTime LocalTime(std::time_t time) {
  std::tm local{};
  if (::localtime_r(&time, &local) == nullptr) return {};
  const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
  const int year = std::clamp(local.tm_year + 1900, 0, 0xFFFF);
  return {static_cast<std::uint16_t>(year),
          byte(local.tm_mon + 1),
          byte(local.tm_mday),
          byte(local.tm_hour),
          byte(local.tm_min),
          byte(local.tm_sec)};
}

TEntryKind KindOf(unsigned mode) {
  if (S_ISREG(mode)) return TEntryKind::File;
  return S_ISDIR(mode) ? TEntryKind::Folder : TEntryKind::Other;
}

TFolderEntry Entry(int folder, const char* name) {
  struct stat status = {};
  if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) throw InputOutputError(errno);
  const TEntryKind kind = KindOf(status.st_mode);
  const auto size = kind == TEntryKind::File ? static_cast<std::uint64_t>(status.st_size) : 0;
  return {TextFromUtf8(name), kind, size, LocalTime(status.st_mtime)};
}

/// Shows `onEntry` what is in the folder until it answers false. Returns the error that ended it otherwise.
template <class TCall>
int Search(TextView path, const TCall& onEntry) {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(HostPath(path).c_str()),
                                                   [](DIR* open) { return ::closedir(open); });
  while (folder != nullptr) {
    errno = 0;
    const dirent* entry = ::readdir(folder.get());
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != ".." && !onEntry(folder.get(), *entry)) return 0;
  }
  return errno;
}

constexpr std::int32_t kFileNotFound = 2;

TextView WithoutDotsAtEnd(TextView name) {
  const std::size_t last = name.find_last_not_of(u". ");
  return name.substr(0, last == TextView::npos ? 0 : last + 1);
}

/// Waits while the script says that another program has the file open; false when the budget was too small.
bool WaitUntilFree(TextView path, TRetryBudget& budget) {
  const auto& held = Machine().HeldUntil;
  const auto entry = held.find(path);
  while (entry != held.end() && Machine().Now < entry->second) {
    if (!budget.Pause()) return false;
  }
  return true;
}

void CheckFree(TextView path, TRetryBudget& budget) {
  constexpr std::int32_t kSharingViolation = 32;
  if (!WaitUntilFree(path, budget)) throw InputOutputError(kSharingViolation);
}

void Check(const std::error_code& error) {
  if (error) throw InputOutputError(error.value());
}

}  // namespace

bool FolderExists(TextView path) {
  if (Fails("FolderExists")) return false;
  std::error_code error;
  return std::filesystem::is_directory(HostPath(path), error);
}

bool FileExists(TextView path) {
  if (Fails("FileExists")) return false;
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(HostPath(path), error);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

UnicodeString TemporaryFolder() {
  return EnvironmentVariable(u"TEMP") + u"\\";
}

std::optional<UnicodeString> DesktopFolder() {
  if (Fails("DesktopFolder")) return std::nullopt;
  return Machine().DesktopFolder;
}

bool RootAnswers(TextView root) {
  if (Fails("RootAnswers")) return false;
  std::error_code error;
  return std::filesystem::is_directory(HostPath(root), error);
}

UnicodeString UpperFileName(TextView name) {
  return UnicodeString(name);  // letter case matters on this machine
}

bool CreateFolders(TextView path) {
  if (Fails("CreateFolders")) return false;
  std::error_code error;
  std::filesystem::create_directories(HostPath(path), error);
  return FolderExists(path);
}

TListingEnd ListNames(TextView folder, const std::function<bool(TextView, TEntryKind)>& onName) {
  if (Fails("ListNames")) return TListingEnd::Refused;
  bool stopped = false;
  const int error = Search(folder, [&](DIR*, const dirent& entry) {
    stopped = !onName(TextFromUtf8(entry.d_name), KindOf(static_cast<unsigned>(DTTOIF(entry.d_type))));
    return !stopped;
  });
  if (error == ENOENT || error == ENOTDIR) return TListingEnd::NoFolder;
  if (error != 0) return TListingEnd::Refused;
  return stopped ? TListingEnd::Stopped : TListingEnd::Complete;
}

std::vector<TFolderEntry> ListFolder(TextView path) {
  ThrowIfFails("ListFolder");
  std::vector<TFolderEntry> entries;
  const int error = Search(path, [&entries](DIR* folder, const dirent& entry) {
    entries.push_back(Entry(::dirfd(folder), entry.d_name));
    return true;
  });
  if (error != 0) throw InputOutputError(error);
  return entries;
}

/// Without a descriptor of its own it reads the machine's standard input.
struct TInputFile::TImpl {
  TDescriptor Descriptor;
  std::size_t Position = 0;
};

TInputFile::TInputFile() = default;
TInputFile::TInputFile(std::unique_ptr<TImpl> impl) : fImpl(std::move(impl)) {}
TInputFile::~TInputFile() = default;

TInputFile TInputFile::Open(TextView path) {
  if (Fails("Open")) return {};
  const std::filesystem::path host = HostPath(path);
  TDescriptor descriptor(::open(host.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor || FolderExists(path)) return {};
  return TInputFile(std::make_unique<TImpl>(TImpl{std::move(descriptor)}));
}

TInputFile TInputFile::OpenShared(TextView path) {
  ThrowIfFails("OpenShared");
  TDescriptor descriptor = OpenDescriptor(path, O_RDONLY);
  if (S_ISDIR(Status(descriptor).st_mode)) throw InputOutputError(EISDIR);
  return TInputFile(std::make_unique<TImpl>(TImpl{std::move(descriptor)}));
}

TInputFile TInputFile::StandardInput() {
  return TInputFile(std::make_unique<TImpl>());
}

std::size_t TInputFile::Read(std::span<char> buffer) {
  ThrowIfFails("Read");
  if (fImpl->Descriptor) {
    const ssize_t count = ::read(fImpl->Descriptor.Get(), buffer.data(), buffer.size());
    if (count < 0) throw InputOutputError(errno);
    return static_cast<std::size_t>(count);
  }
  const std::optional<std::string>& input = Machine().StandardInput;
  if (!input) throw InputOutputError(kInvalidHandle);
  const std::size_t count = input->copy(buffer.data(), buffer.size(), fImpl->Position);
  fImpl->Position += count;
  return count;
}

TInputFile::TState TInputFile::State() const {
  ThrowIfFails("State");
  const struct stat status = Status(fImpl->Descriptor);
  return {static_cast<std::uint64_t>(status.st_size), LocalTime(status.st_mtime)};
}

struct TOutputFile::TImpl {
  TDescriptor Descriptor;
};

TOutputFile::TOutputFile(TextView path, TCreate how) : fImpl(std::make_unique<TImpl>()) {
  ThrowIfFails("Create");
  fImpl->Descriptor = OpenDescriptor(path, O_WRONLY | O_CREAT | (how == TCreate::New ? O_EXCL : O_TRUNC));
}
TOutputFile::~TOutputFile() = default;

void TOutputFile::Write(std::span<const char> bytes) {
  ThrowIfFails("Write");
  while (!bytes.empty()) {
    const ssize_t count = ::write(fImpl->Descriptor.Get(), bytes.data(), bytes.size());
    if (count < 0) throw InputOutputError(errno);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void TOutputFile::WriteAt(std::uint64_t position, std::span<const char> bytes) {
  ThrowIfFails("WriteAt");
  while (!bytes.empty()) {
    const ssize_t count =
        ::pwrite(fImpl->Descriptor.Get(), bytes.data(), bytes.size(), static_cast<off_t>(position));
    if (count < 0) throw InputOutputError(errno);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
    position += static_cast<std::uint64_t>(count);
  }
}

void TOutputFile::Sync() {
  ThrowIfFails("Sync");
  if (::fsync(fImpl->Descriptor.Get()) != 0) throw InputOutputError(errno);
}

void TOutputFile::Close() {
  ThrowIfFails("Close");
  if (::close(fImpl->Descriptor.Detach()) != 0) throw InputOutputError(errno);
}

UnicodeString NormalisedPath(TextView path) {
  UnicodeString rest(path.starts_with(u"\\\\?\\") ? path.substr(4) : path);
  std::ranges::replace(rest, u'/', u'\\');
  if (rest.size() < 2 || rest[1] != u':') rest.insert(0, u"C:\\");
  std::vector<UnicodeString> names;
  for (std::size_t begin = 0; begin < rest.size();) {
    const std::size_t end = std::min(rest.find(u'\\', begin), rest.size());
    const UnicodeString name = rest.substr(begin, end - begin);
    begin = end + 1;
    if (name == u"..") {
      if (names.size() > 1) names.pop_back();
    } else if (const TextView kept = WithoutDotsAtEnd(name); !kept.empty()) {
      names.emplace_back(kept);
    }
  }
  UnicodeString whole;
  for (const UnicodeString& name : names) whole.append(whole.empty() ? u"" : u"\\").append(name);
  return whole;
}

UnicodeString ResolvedPath(TextView path) {
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::weakly_canonical(HostPath(path), error);
  const std::filesystem::path root = std::filesystem::canonical(Machine().Root, error);
  UnicodeString below = TextFromUtf8(resolved.lexically_relative(root).string());
  return error ? NormalisedPath(path) : NormalisedPath(below.insert(1, u":"));
}

std::optional<TFileIdentity> IdentityOf(TextView path) {
  if (Fails("IdentityOf")) return {};
  struct stat status = {};
  if (::stat(HostPath(path).c_str(), &status) != 0) return {};
  return TFileIdentity{status.st_dev, status.st_ino};
}

bool IsLink(TextView path) {
  if (Fails("IsLink")) return false;
  std::error_code error;
  return std::filesystem::is_symlink(HostPath(path), error);
}

bool CopyFileOver(TextView from, TextView to, TRetryBudget& budget) {
  if (Fails("CopyFileOver") || !TInputFile::Open(from).IsOpen()) return false;
  if (!WaitUntilFree(to, budget)) return false;
  std::error_code error;
  if (IsLink(to)) std::filesystem::remove(HostPath(to), error);
  budget.KeepAlive();
  const std::filesystem::path target = HostPath(to);
  const auto copy = [&] {
    return std::filesystem::copy_file(HostPath(from), target,
                                      std::filesystem::copy_options::overwrite_existing, error);
  };
  if (copy()) return true;
  if (error == std::errc::permission_denied) {
    std::filesystem::permissions(target, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add, error);
    if (copy()) return true;
  }
  const bool isFile = std::filesystem::is_regular_file(target, error);
  if (isFile && TInputFile::Open(from).IsOpen()) std::filesystem::remove(target, error);
  return false;
}

void RemoveFile(TextView path, TRetryBudget& budget) {
  ThrowIfFails("RemoveFile");
  CheckFree(path, budget);
  std::error_code error;
  const bool removed = std::filesystem::remove(HostPath(path), error);
  Check(error);
  if (!removed) throw InputOutputError(kFileNotFound);
}

void RenameFile(TextView from, TextView to, TRetryBudget& budget) {
  ThrowIfFails("RenameFile");
  CheckFree(from, budget);
  std::error_code error;
  std::filesystem::rename(HostPath(from), HostPath(to), error);
  Check(error);
}

void RemoveFolder(TextView path, TRetryBudget& budget) noexcept {
  if (Fails("RemoveFolder")) return;
  budget.KeepAlive();
  std::error_code error;
  std::filesystem::remove_all(HostPath(path), error);
}

struct TLockFile::TImpl {
  TImpl(std::filesystem::path path, TDescriptor descriptor)
      : Path(std::move(path)), Descriptor(std::move(descriptor)) {}
  TImpl(const TImpl&) = delete;
  TImpl& operator=(const TImpl&) = delete;
  ~TImpl() { ::unlink(Path.c_str()); }

  std::filesystem::path Path;
  TDescriptor Descriptor;
};

TLockFile::TLockFile(TextView path) {
  ThrowIfFails("Lock");
  const std::filesystem::path host = HostPath(path);
  TDescriptor descriptor(::open(host.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (!descriptor) throw InputOutputError(errno);
  if (::flock(descriptor.Get(), LOCK_EX | LOCK_NB) != 0) return;
  fImpl = std::make_unique<TImpl>(host, std::move(descriptor));
}

TLockFile::~TLockFile() = default;
