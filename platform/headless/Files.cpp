#include "platform/Files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/Error.h"
#include "platform/Handle.h"
#include "platform/headless/Machine.h"

namespace {

constexpr std::int32_t kInvalidHandle = 6;  // what Windows reports for a read without a handle

struct TDescriptorTraits {
  using THandle = int;
  static THandle None() noexcept { return -1; }
  static void Close(THandle handle) noexcept { ::close(handle); }
};
using TDescriptor = TUniqueHandle<TDescriptorTraits>;

}  // namespace

bool FolderExists(TextView path) {
  std::error_code error;
  return std::filesystem::is_directory(headless::HostPath(path), error);
}

bool FileExists(TextView path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(headless::HostPath(path), error);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool CreateFolders(TextView path) {
  std::error_code error;
  std::filesystem::create_directories(headless::HostPath(path), error);
  return FolderExists(path);
}

/// Without a descriptor of its own it reads the machine's standard input.
struct TInputFile::TImpl {
  TDescriptor Descriptor;
  std::size_t Position = 0;
};

TInputFile::TInputFile() = default;
TInputFile::TInputFile(std::unique_ptr<TImpl> impl) : fImpl(std::move(impl)) {}
TInputFile::TInputFile(TInputFile&&) noexcept = default;
TInputFile& TInputFile::operator=(TInputFile&&) noexcept = default;
TInputFile::~TInputFile() = default;

TInputFile TInputFile::Open(TextView path) {
  const std::filesystem::path host = headless::HostPath(path);
  TDescriptor descriptor(::open(host.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor || FolderExists(path)) return {};
  return TInputFile(std::make_unique<TImpl>(TImpl{std::move(descriptor)}));
}

TInputFile TInputFile::StandardInput() {
  return TInputFile(std::make_unique<TImpl>());
}

std::size_t TInputFile::Read(std::span<char> buffer) {
  if (fImpl->Descriptor) {
    const ssize_t count = ::read(fImpl->Descriptor.Get(), buffer.data(), buffer.size());
    if (count < 0) throw InputOutputError(errno);
    return static_cast<std::size_t>(count);
  }
  const std::optional<std::string>& input = headless::Machine().StandardInput;
  if (!input) throw InputOutputError(kInvalidHandle);
  const std::size_t count = input->copy(buffer.data(), buffer.size(), fImpl->Position);
  fImpl->Position += count;
  return count;
}
