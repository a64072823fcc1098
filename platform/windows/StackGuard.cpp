// The stack protector's two names. The compiler's own library for them draws the guard from the system's
// cryptography, whose libraries take a tenth of the program's whole start to load. Here it is made of what
// the system's own compiler makes its guard of.

#include <windows.h>

#include <cstdint>

extern "C" {

/// Stands between a function's arrays and its return address.
std::uintptr_t __stack_chk_guard = 0;

/// Called by a function that finds it changed.
[[noreturn]] void __stack_chk_fail() {
  ::RaiseFailFastException(nullptr, nullptr, 0);
  __builtin_unreachable();
}
}

namespace {

/// Runs before all other constructors: no protected function may be on its way meanwhile.
__attribute__((constructor(101), no_stack_protector)) void MakeGuard() {
  LARGE_INTEGER counter{};
  ::QueryPerformanceCounter(&counter);
  FILETIME time{};
  ::GetSystemTimeAsFileTime(&time);
  std::uintptr_t guard = reinterpret_cast<std::uintptr_t>(&counter);  // the stack's place is random, too
  guard ^= static_cast<std::uintptr_t>(counter.QuadPart) << 16;
  guard ^= static_cast<std::uintptr_t>(time.dwHighDateTime) << 32 ^ time.dwLowDateTime;
  guard ^= static_cast<std::uintptr_t>(::GetCurrentProcessId()) << 24 ^ ::GetCurrentThreadId();
  __stack_chk_guard = guard << 8;  // its first byte is a zero, which ends the copy of a text
}

}  // namespace
