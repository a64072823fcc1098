#include "platform/FileOperations.h"

#include <algorithm>
#include <vector>

#include "headless/Machine.h"
#include "platform/Error.h"
#include "platform/Files.h"

using headless::HostPath;

namespace {

constexpr std::int32_t kFileNotFound = 2;

TextView WithoutDotsAtEnd(TextView name) {
  const std::size_t last = name.find_last_not_of(u". ");
  return name.substr(0, last == TextView::npos ? 0 : last + 1);
}

void Check(const std::error_code& error) {
  if (error) throw InputOutputError(error.value());
}

}  // namespace

UnicodeString NormalisedPath(TextView path) {
  UnicodeString rest(path);
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

bool IsLink(TextView path) {
  if (headless::Fails("IsLink")) return false;
  std::error_code error;
  return std::filesystem::is_symlink(HostPath(path), error);
}

bool CopyFileOver(TextView from, TextView to, const std::function<void()>& onBlock) {
  if (headless::Fails("CopyFileOver")) return false;
  std::error_code error;
  if (IsLink(to)) std::filesystem::remove(HostPath(to), error);
  onBlock();
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

void RemoveFile(TextView path) {
  headless::ThrowIfFails("RemoveFile");
  std::error_code error;
  const bool removed = std::filesystem::remove(HostPath(path), error);
  Check(error);
  if (!removed) throw InputOutputError(kFileNotFound);
}

void RenameFile(TextView from, TextView to) {
  headless::ThrowIfFails("RenameFile");
  std::error_code error;
  std::filesystem::rename(HostPath(from), HostPath(to), error);
  Check(error);
}

void RemoveFolder(TextView path) noexcept {
  if (headless::Fails("RemoveFolder")) return;
  std::error_code error;
  std::filesystem::remove_all(HostPath(path), error);
}
