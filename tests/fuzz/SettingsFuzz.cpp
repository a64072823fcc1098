// Integers in the settings against the standard library's reading of their digits.

#include <charconv>
#include <string>

#include "app/Settings.h"
#include "tests/fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text = fuzz::Bytes(data, size);
  const std::optional<std::int32_t> integer = IntegerFromText(TextFromAnsi(text));
  const auto take = [&text](char c) {
    const bool found = text.starts_with(c);
    if (found) text.remove_prefix(1);
    return found;
  };
  while (take(' ')) {
  }
  const bool negative = take('-');
  if (!negative) take('+');
  const bool hexadecimal = take('$');
  std::uint32_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value, hexadecimal ? 16 : 10);
  const bool fits = hexadecimal || value <= 0x7FFF'FFFFU + (negative ? 1U : 0U);
  const bool valid = !text.empty() && error == std::errc() && rest == end && fits;
  fuzz::Require(integer.has_value() == valid, "what an integer is");
  fuzz::Require(!valid || *integer == static_cast<std::int32_t>(negative ? 0U - value : value), "its value");
  return 0;
}
