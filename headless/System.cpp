#include "platform/System.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>

#include "headless/Machine.h"
#include "platform/Error.h"
#include "platform/Profile.h"

using headless::Machine;

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

constexpr std::size_t kLongestProfileValue = 2047;

TextView Trimmed(TextView text) {
  const std::size_t first = text.find_first_not_of(u" \t");
  if (first == TextView::npos) return {};
  return text.substr(first, text.find_last_not_of(u" \t") - first + 1);
}

TextView Unquoted(TextView value) {
  const bool quoted = value.size() > 1 && (value[0] == u'"' || value[0] == u'\'') && value.back() == value[0];
  return quoted ? value.substr(1, value.size() - 2) : value;
}

/// The name between the brackets of a line that begins a section.
std::optional<TextView> SectionName(TextView line) {
  const std::size_t end = line.rfind(u']');
  if (!line.starts_with(u'[') || end == TextView::npos) return std::nullopt;
  return Trimmed(line.substr(1, end - 1));
}

/// A later section of the same name is not looked into.
std::optional<UnicodeString> FindProfileValue(TextView lines, TextView section, TextView key) {
  bool inSection = false;
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find_first_of(u"\r\n"), lines.size());
    const TextView line = Trimmed(lines.substr(0, end));
    lines.remove_prefix(std::min(end + 1, lines.size()));
    const std::size_t equals = line.find(u'=');
    if (const auto name = SectionName(line)) {
      if (inSection) break;
      inSection = SameText(*name, section);
    } else if (inSection && equals != TextView::npos && !line.starts_with(u';') &&
               SameText(Trimmed(line.substr(0, equals)), key)) {
      return UnicodeString(Unquoted(Trimmed(line.substr(equals + 1))));
    }
  }
  return std::nullopt;
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

UnicodeString CommandLine() {
  return Machine().CommandLine;
}

UnicodeString EnvironmentVariable(TextView name) {
  const auto found = Machine().Environment.find(name);
  return found != Machine().Environment.end() ? found->second : UnicodeString();
}

UnicodeString ComputerName() {
  if (headless::Fails("ComputerName")) return {};
  return Machine().ComputerName;
}

std::int64_t TickMilliseconds() {
  return Machine().Now;
}

void WaitMilliseconds(int milliseconds) {
  Machine().Now += milliseconds;
}

UnicodeString SystemErrorText(std::int32_t code) {
  switch (code) {
    case kNoInterface:
      return u"Schnittstelle nicht unterstützt";
    case kClassNotRegistered:
      return u"Klasse nicht registriert";
    case kMemberNotFound:
      return u"Mitglied nicht gefunden.";
    case kTypeMismatch:
      return u"Typenkonflikt.";
    default:
      return u"Systemfehler " + HexText(static_cast<std::uint32_t>(code));
  }
}

UnicodeString ReadProfileText(TextView file, TextView section, TextView key, TextView fallback) {
  std::ifstream stream(headless::HostPath(file), std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(stream), {});
  UnicodeString value = FindProfileValue(TextFromAnsi(bytes), section, key).value_or(UnicodeString(fallback));
  value.resize(std::min(value.size(), kLongestProfileValue));
  return value;
}

void FlushProfile(TextView) {}  // nothing is cached here
