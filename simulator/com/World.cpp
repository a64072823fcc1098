#include "simulator/com/World.h"

#include <windows.h>

#include <array>
#include <charconv>
#include <limits>

#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

namespace {

std::string Load(const UnicodeString& path) {
  TInputFile file = TInputFile::OpenShared(path);
  std::string bytes;
  std::array<char, 64 * 1024> block;
  while (const std::size_t count = file.Read(block)) bytes.append(block.data(), count);
  return bytes;
}

/// Written beside its target and renamed when it is complete: a host that is killed here leaves the old file.
void Store(const UnicodeString& path, const std::string& bytes) {
  // Some systems check only the folder when a file is replaced, not the file itself.
  const DWORD attributes = ::GetFileAttributesW(Wide(path));
  const bool present = attributes != INVALID_FILE_ATTRIBUTES;
  if (present && (attributes & FILE_ATTRIBUTE_READONLY) != 0) throw InputOutputError(kAccessDenied);
  const UnicodeString temporary = path + u"." + DecimalText(::GetCurrentProcessId()) + u".tmp";
  try {
    TOutputFile file(temporary, TCreate::Replace);
    file.Write(bytes);
    file.Close();
    TRetryBudget budget(2'000);
    RenameFile(temporary, path, budget);
  } catch (const EError&) {
    ::DeleteFileW(Wide(temporary));
    throw;
  }
}

/// Appends lines to a file that several processes may share. Each line is one write that the system has
/// before the call returns: a killed process loses none.
std::function<void(std::string_view)> TraceTo(const UnicodeString& path) {
  if (path.empty()) return {};
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const auto file = std::make_shared<TFileHandle>(::CreateFileW(Wide(path), FILE_APPEND_DATA, kShare, nullptr,
                                                                OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!*file) throw LastSystemError();
  return [file](std::string_view line) {
    const std::string bytes = std::string(line) + "\n";
    DWORD count = 0;
    ::WriteFile(file->Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
  };
}

[[noreturn]] void Refuse(TextView name) {
  throw EError(TErrorKind::System, ERROR_INVALID_PARAMETER, u"Ungültiger Wert in " + UnicodeString(name));
}

/// Decimal digits, or hexadecimal ones after "0x".
std::int64_t Number(TextView name, std::int64_t largest, std::int64_t fallback) {
  const std::string text = Utf8FromText(EnvironmentVariable(name));
  if (text.empty()) return fallback;
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const char* first = text.data() + (hexadecimal ? 2 : 0);
  const char* last = text.data() + text.size();
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(first, last, value, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != last || value < 0 || value > largest) Refuse(name);
  return value;
}

/// A word of one of the documents' switches; `Parse` knows them.
template <auto Parse>
auto Switch(TextView name) -> decltype(Parse("")) {
  const std::string word = Utf8FromText(EnvironmentVariable(name));
  if (word.empty()) return std::nullopt;
  const auto value = Parse(word);
  if (!value) Refuse(name);
  return value;
}

std::int32_t FailResult() {
  constexpr auto kLargest = std::numeric_limits<std::uint32_t>::max();
  const auto result =
      Number(u"APPRENTICE_FAIL_RESULT", kLargest, static_cast<std::uint32_t>(kUnspecifiedError));
  const std::int32_t code = HResult(static_cast<std::uint32_t>(result));
  if (code >= 0) Refuse(u"APPRENTICE_FAIL_RESULT");  // would be a success
  return code;
}

}  // namespace

namespace simulator {

std::unique_ptr<TSimulator> NewWorld() {
  TSimulatorSettings settings;
  settings.Trace = TraceTo(EnvironmentVariable(u"APPRENTICE_TRACE"));
  settings.FailCall = Number(u"APPRENTICE_FAIL_CALL", std::numeric_limits<std::int64_t>::max(), 0);
  settings.FailText = EnvironmentVariable(u"APPRENTICE_FAIL_TEXT");
  settings.FailResult = FailResult();
  settings.DelayMilliseconds =
      static_cast<int>(Number(u"APPRENTICE_DELAY_MS", std::numeric_limits<int>::max(), 0));
  settings.Sleep = WaitMilliseconds;
  settings.PastEnd = Switch<PastEndFromWord>(u"APPRENTICE_PAST_END");
  settings.DuplicateProperty = Switch<DuplicatePropertyFromWord>(u"APPRENTICE_DUPLICATE");
  return std::make_unique<TSimulator>(TFileAccess{Load, Store}, std::move(settings));
}

}  // namespace simulator
