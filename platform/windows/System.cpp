#include "platform/System.h"

#include <windows.h>

#include <shlobj.h>

#include <array>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

namespace {

constexpr std::size_t kLongestProfileValue = 2047;

void TrimEnd(UnicodeString& text) {
  const std::size_t last = text.find_last_not_of(u" \t\r\n");
  text.resize(last == UnicodeString::npos ? 0 : last + 1);
}

}  // namespace

UnicodeString CommandLine() {
  return UnicodeString(FromWide(::GetCommandLineW()));
}

UnicodeString EnvironmentVariable(TextView name) {
  const UnicodeString key(name);
  UnicodeString value(::GetEnvironmentVariableW(Wide(key), nullptr, 0), u'\0');
  value.resize(::GetEnvironmentVariableW(Wide(key), WideBuffer(value), static_cast<DWORD>(value.size())));
  return value;
}

UnicodeString ComputerName() {
  std::array<wchar_t, MAX_COMPUTERNAME_LENGTH + 1> name{};
  DWORD length = static_cast<DWORD>(name.size());
  if (!::GetComputerNameW(name.data(), &length)) return {};
  return UnicodeString(FromWide(name.data(), length));
}

std::int64_t TickMilliseconds() {
  return static_cast<std::int64_t>(::GetTickCount64());
}

void WaitMilliseconds(int milliseconds) {
  constexpr LONGLONG kUnitsPerMillisecond = 10'000;
  // CREATE_WAITABLE_TIMER_HIGH_RESOLUTION, in Windows since 10.1803; older headers lack it.
  constexpr DWORD kHighResolution = 2;
  using TTimerHandle = TUniqueHandle<HANDLE, ::CloseHandle>;
  static const TTimerHandle timer(
      ::CreateWaitableTimerExW(nullptr, nullptr, kHighResolution, TIMER_ALL_ACCESS));
  LARGE_INTEGER due{};
  due.QuadPart = -milliseconds * kUnitsPerMillisecond;
  if (timer && ::SetWaitableTimer(timer.Get(), &due, 0, nullptr, nullptr, FALSE)) {
    ::WaitForSingleObject(timer.Get(), INFINITE);
    return;
  }
  LARGE_INTEGER frequency{};
  LARGE_INTEGER now{};
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&now);
  const LONGLONG end = now.QuadPart + milliseconds * frequency.QuadPart / 1000;
  while (now.QuadPart < end) {
    ::SwitchToThread();
    ::QueryPerformanceCounter(&now);
  }
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

UnicodeString SystemErrorText(std::int32_t code) {
  std::array<wchar_t, 1024> buffer{};
  const DWORD flags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_ARGUMENT_ARRAY;
  const DWORD length = ::FormatMessageW(flags, nullptr, static_cast<DWORD>(code), 0, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr);
  UnicodeString text(FromWide(buffer.data(), length));
  TrimEnd(text);
  return !text.empty() ? text : u"Systemfehler " + HexText(static_cast<std::uint32_t>(code));
}

UnicodeString ReadProfileText(TextView file, TextView section, TextView key, TextView fallback) {
  UnicodeString value(kLongestProfileValue + 1, u'\0');
  const DWORD length = ::GetPrivateProfileStringW(
      Wide(UnicodeString(section)), Wide(UnicodeString(key)), Wide(UnicodeString(fallback)),
      WideBuffer(value), static_cast<DWORD>(value.size()), Wide(UnicodeString(file)));
  value.resize(length);
  return value;
}

void FlushProfile(TextView file) {
  ::WritePrivateProfileStringW(nullptr, nullptr, nullptr, Wide(UnicodeString(file)));
}
