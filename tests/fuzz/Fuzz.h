#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "platform/Text.h"

/// Judges one input; a broken promise ends the process. Each target is a program, which defines it once;
/// libFuzzer or Mutations.cpp calls it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

inline std::string_view Bytes(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Any text: each byte is a character, but 0xFF is followed by the two bytes of one UTF-16 unit.
inline UnicodeString AnyText(std::string_view bytes) {
  UnicodeString text;
  const auto byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool unit = byte(i) == 0xFF && i + 2 < bytes.size();
    text.push_back(static_cast<char16_t>(unit ? byte(i + 1) << 8 | byte(i + 2) : byte(i)));
    if (unit) i += 2;
  }
  return text;
}

/// The parts between the separators, at least one.
inline std::vector<std::string_view> Split(std::string_view bytes, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = bytes.find(separator);
    parts.push_back(bytes.substr(0, end));
    if (end == std::string_view::npos) return parts;
    bytes.remove_prefix(end + 1);
  }
}

}  // namespace fuzz
