#pragma once

#include <windows.h>

#include "platform/Handle.h"

/// A file; "none" is what CreateFile answers when it fails.
struct TFileHandleTraits {
  using THandle = HANDLE;
  static THandle None() noexcept { return INVALID_HANDLE_VALUE; }
  static void Close(THandle handle) noexcept { ::CloseHandle(handle); }
};
using TFileHandle = TUniqueHandle<TFileHandleTraits>;

/// Closes a file whose closing may fail; the destructor could not tell.
inline bool CloseChecked(TFileHandle& handle) noexcept {
  return ::CloseHandle(handle.Detach()) != 0;
}

/// A search through a folder.
struct TFindHandleTraits {
  using THandle = HANDLE;
  static THandle None() noexcept { return INVALID_HANDLE_VALUE; }
  static void Close(THandle handle) noexcept { ::FindClose(handle); }
};
using TFindHandle = TUniqueHandle<TFindHandleTraits>;

struct TTimerHandleTraits {
  using THandle = HANDLE;
  static THandle None() noexcept { return nullptr; }
  static void Close(THandle handle) noexcept { ::CloseHandle(handle); }
};
using TTimerHandle = TUniqueHandle<TTimerHandleTraits>;

/// One counted reference to an object of the system.
template <class T>
struct TComTraits {
  using THandle = T*;
  static THandle None() noexcept { return nullptr; }
  static void Close(THandle handle) noexcept { handle->Release(); }
};

template <class T>
class TComReference : public TUniqueHandle<TComTraits<T>> {
 public:
  T* operator->() const noexcept { return this->Get(); }

  /// Runs a call that answers with a reference, which is then owned here.
  template <class TCall>
  HRESULT ReceiveFrom(TCall&& call) {
    T* object = nullptr;
    const HRESULT result = call(&object);
    this->Reset(object);
    return result;
  }
};
