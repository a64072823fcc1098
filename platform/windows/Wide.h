#pragma once

#include <windows.h>

#include "platform/Text.h"

// The one place where our characters become the system's: both are 16 bits wide, but different types to the
// language. The Windows part is compiled with -fno-strict-aliasing for this.

inline const wchar_t* Wide(const char16_t* text) noexcept {
  return reinterpret_cast<const wchar_t*>(text);
}
inline const wchar_t* Wide(const UnicodeString& text) noexcept {
  return Wide(text.c_str());
}
/// Room for the system to write into.
inline wchar_t* WideBuffer(UnicodeString& text) noexcept {
  return reinterpret_cast<wchar_t*>(text.data());
}

/// As much of `text` as the system's fixed array takes, with a closing zero.
template <std::size_t kSize>
void CopyText(wchar_t (&target)[kSize], TextView text) noexcept {
  const std::size_t length = text.copy(reinterpret_cast<char16_t*>(target), kSize - 1);
  target[length] = L'\0';
}

inline TextView FromWide(const wchar_t* text, std::size_t length) noexcept {
  return {reinterpret_cast<const char16_t*>(text), length};
}
inline TextView FromWide(const wchar_t* text) noexcept {
  return text != nullptr ? TextView(reinterpret_cast<const char16_t*>(text)) : TextView();
}
