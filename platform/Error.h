#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "platform/Text.h"

/// Where an error comes from. It decides what `EError::Code` counts in.
enum class TErrorKind {
  Component,    ///< the COM component; Code is an HRESULT
  InputOutput,  ///< files; Code is the runtime's input/output code or the system's error code
  System,       ///< a call of the system; Code is the system's error code
  Sql,          ///< the SQL engine; Code is the engine's extended result code
};

/// The one error of the program. It travels unchanged from where it arises to the event handler's caller,
/// which shows Message to the user.
class EError : public std::exception {
 public:
  EError(TErrorKind kind, std::int32_t code, UnicodeString message, UnicodeString source = {});

  TErrorKind Kind() const noexcept { return fKind; }
  std::int32_t Code() const noexcept { return fCode; }
  const UnicodeString& Message() const noexcept { return fMessage; }
  /// What the component names as the origin; empty for every other kind.
  const UnicodeString& Source() const noexcept { return fSource; }
  /// Message in UTF-8, for debuggers and test output.
  const char* what() const noexcept override { return fUtf8.c_str(); }

 private:
  TErrorKind fKind;
  std::int32_t fCode;
  UnicodeString fMessage;
  UnicodeString fSource;
  std::string fUtf8;
};

/// Codes of the runtime's input/output errors that this program raises itself.
constexpr std::int32_t kInvalidFileName = 3;
constexpr std::int32_t kAccessDenied = 5;
constexpr std::int32_t kNotOpenForInput = 104;

/// An input/output error with its German text; codes without a text of their own read "E/A-Fehler <code>".
EError InputOutputError(std::int32_t code);

/// A failed call of the component: carries its description or, where that would show nothing (blank, or NUL
/// at its beginning), the system's text for `result`.
EError ComponentError(std::int32_t result, UnicodeString description = {}, UnicodeString source = {});

/// HRESULTs that are compared or raised here (winerror.h).
constexpr std::int32_t HResult(std::uint32_t code) {
  return static_cast<std::int32_t>(code);
}
constexpr std::int32_t kNoInterface = HResult(0x80004002);
constexpr std::int32_t kClassNotRegistered = HResult(0x80040154);
constexpr std::int32_t kMemberNotFound = HResult(0x80020003);
constexpr std::int32_t kTypeMismatch = HResult(0x80020005);
constexpr std::int32_t kException = HResult(0x80020009);
constexpr std::int32_t kBadIndex = HResult(0x8002000B);
constexpr std::int32_t kBadParamCount = HResult(0x8002000E);
