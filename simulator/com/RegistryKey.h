#pragma once

#include <windows.h>

#include "platform/Handle.h"

struct TRegistryKeyTraits {
  using THandle = HKEY;
  static THandle None() noexcept { return nullptr; }
  static void Close(THandle key) noexcept { ::RegCloseKey(key); }
};
using TRegistryKey = TUniqueHandle<TRegistryKeyTraits>;
