#pragma once

#include <windows.h>

#include "platform/Text.h"

namespace simulator {

/// Whose entry in the registry is meant; `HKEY_LOCAL_MACHINE` or `HKEY_CURRENT_USER`.
using TRegistrationScope = HKEY;

/// Enters `dllPath` as the in-process server of the class. Refuses with SELFREG_E_CLASS where another file is
/// registered for it, for the machine or the user, in process or as a program of its own: the real component
/// must stay the one that its clients get.
HRESULT Register(TRegistrationScope scope, const UnicodeString& dllPath);

/// Takes out the entry that names `dllPath`; any other one is left alone, and that is a success.
HRESULT Unregister(TRegistrationScope scope, const UnicodeString& dllPath);

}  // namespace simulator
