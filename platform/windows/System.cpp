#include "platform/System.h"

#include <windows.h>

#include <array>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

namespace {

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
