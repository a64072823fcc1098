#pragma once

#include <windows.h>

#include "platform/Error.h"
#include "platform/System.h"

/// What the last call of the system left behind, with the system's text.
inline EError LastSystemError() {
  const auto code = static_cast<std::int32_t>(::GetLastError());
  return {TErrorKind::System, code, SystemErrorText(code)};
}
