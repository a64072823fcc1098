#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

/// Sole owner of one handle of the system: of type `T`, closed by the function `kClose`. `kNone` is the value
/// that stands for "none", in pointers too.
template <class T, auto kClose, std::intptr_t kNone = 0>
class TUniqueHandle {
 public:
  TUniqueHandle() noexcept = default;
  explicit TUniqueHandle(T handle) noexcept : fHandle(handle) {}
  TUniqueHandle(TUniqueHandle&& other) noexcept : fHandle(other.Detach()) {}
  TUniqueHandle& operator=(TUniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Detach());
    return *this;
  }
  ~TUniqueHandle() { Reset(); }

  explicit operator bool() const noexcept { return fHandle != None(); }
  T Get() const noexcept { return fHandle; }
  T Detach() noexcept { return std::exchange(fHandle, None()); }
  void Reset(T handle = None()) noexcept {
    if (*this) kClose(fHandle);
    fHandle = handle;
  }

 private:
  static T None() noexcept {
    if constexpr (std::is_pointer_v<T>) {
      return reinterpret_cast<T>(kNone);  // NOLINT(performance-no-int-to-ptr): how the system writes it
    } else {
      return static_cast<T>(kNone);
    }
  }

  T fHandle = None();
};
