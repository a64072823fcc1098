#pragma once

#include <windows.h>

#include "platform/Error.h"
#include "platform/System.h"

/// The system's error `code` with its text.
inline EError SystemError(DWORD code) {
  const auto signedCode = static_cast<std::int32_t>(code);
  return {TErrorKind::System, signedCode, SystemErrorText(signedCode)};
}

/// The same, of a file or a folder.
inline EError InputOutputError(DWORD code) {
  return InputOutputError(static_cast<std::int32_t>(code));
}

/// What the last call of the system left behind.
inline EError LastSystemError() {
  return SystemError(::GetLastError());
}

inline EError LastInputOutputError() {
  return InputOutputError(::GetLastError());
}
