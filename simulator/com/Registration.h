#pragma once

#include <windows.h>

#include "platform/Text.h"

namespace simulator {

// `scope` says whose entry in the registry is meant: HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER.

/// Enters `dllPath` as the in-process server of the class. Refuses with SELFREG_E_CLASS if another file is
/// registered for it, for the machine or the user, in process or as a program of its own: the real component
/// must stay the one that its clients get.
HRESULT Register(HKEY scope, const UnicodeString& dllPath);

/// Removes the entry that names `dllPath`; any other one is left alone, which is a success.
HRESULT Unregister(HKEY scope, const UnicodeString& dllPath);

}  // namespace simulator
