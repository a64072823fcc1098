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
