#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace {

/// The characters 0x80 to 0x9F of code page 1252; the five that it leaves open stay what they are.
constexpr char16_t kUpperControls[] = {
    0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
    0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178,
};
static_assert(std::size(kUpperControls) == 32);

/// Enough of a locale for German names: ASCII and Latin-1.
char16_t Folded(char16_t c) {
  const bool ascii = c >= u'A' && c <= u'Z';
  const bool latin1 = c >= 0xC0 && c <= 0xDE && c != 0xD7;
  return ascii || latin1 ? static_cast<char16_t>(c + 0x20) : c;
}

}  // namespace

bool SameText(TextView a, TextView b) {
  return std::ranges::equal(a, b, {}, Folded, Folded);
}

std::string SameTextKey(TextView text) {
  UnicodeString folded;
  std::ranges::transform(text, std::back_inserter(folded), Folded);
  return {reinterpret_cast<const char*>(folded.data()), folded.size() * sizeof(char16_t)};
}

UnicodeString TextFromAnsi(std::string_view bytes) {
  UnicodeString text;
  std::ranges::transform(bytes, std::back_inserter(text), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : char16_t{byte};
  });
  return text;
}
