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
