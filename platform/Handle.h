#pragma once

#include <utility>

/// Sole owner of one handle of the system. `Traits` names the handle's type, the value that stands for "none"
/// and the function that closes it: `THandle`, `None()`, `Close(THandle)`.
template <class Traits>
class TUniqueHandle {
 public:
  using THandle = typename Traits::THandle;

  TUniqueHandle() noexcept = default;
  explicit TUniqueHandle(THandle handle) noexcept : fHandle(handle) {}
  TUniqueHandle(TUniqueHandle&& other) noexcept : fHandle(other.Detach()) {}
  TUniqueHandle& operator=(TUniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Detach());
    return *this;
  }
  ~TUniqueHandle() { Reset(); }

  explicit operator bool() const noexcept { return fHandle != Traits::None(); }
  THandle Get() const noexcept { return fHandle; }
  THandle Detach() noexcept { return std::exchange(fHandle, Traits::None()); }
  void Reset(THandle handle = Traits::None()) noexcept {
    if (*this) Traits::Close(fHandle);
    fHandle = handle;
  }

 private:
  THandle fHandle = Traits::None();
};
