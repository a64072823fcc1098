#pragma once

#include <windows.h>

#include "platform/Error.h"
#include "platform/Handle.h"
#include "platform/System.h"

// What calls of the system leave behind: handles, references and errors.

using TFileHandle = TUniqueHandle<HANDLE, ::CloseHandle, -1>;  // INVALID_HANDLE_VALUE
using TFindHandle = TUniqueHandle<HANDLE, ::FindClose, -1>;

/// Closes a file whose closing may fail; the destructor could not tell.
inline bool CloseChecked(TFileHandle& handle) noexcept {
  return ::CloseHandle(handle.Detach()) != 0;
}

template <class T>
void ReleaseComObject(T* object) noexcept {
  object->Release();
}

/// One counted reference to an object of the system.
template <class T>
class TComReference : public TUniqueHandle<T*, ReleaseComObject<T>> {
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

/// The system's error `code` with its text.
inline EError SystemError(DWORD code) {
  const auto signedCode = static_cast<std::int32_t>(code);
  return {TErrorKind::System, signedCode, SystemErrorText(signedCode)};
}

/// The same, of a file or a folder.
inline EError InputOutputError(DWORD code) {
  return InputOutputError(static_cast<std::int32_t>(code));
}

inline EError LastSystemError() {
  return SystemError(::GetLastError());
}

inline EError LastInputOutputError() {
  return InputOutputError(::GetLastError());
}
