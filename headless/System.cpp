#include "platform/System.h"

#include <algorithm>
#include <fstream>
#include <optional>

#include "headless/Machine.h"
#include "platform/Error.h"

using headless::Machine;

namespace {

constexpr std::size_t kLongestProfileValue = 2047;

TextView Trimmed(TextView text) {
  const std::size_t first = text.find_first_not_of(u" \t\r");
  if (first == TextView::npos) return {};
  return text.substr(first, text.find_last_not_of(u" \t\r") - first + 1);
}

TextView Unquoted(TextView value) {
  const bool quoted = value.size() > 1 && (value[0] == u'"' || value[0] == u'\'') && value.back() == value[0];
  return quoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<UnicodeString> FindProfileValue(std::istream& file, TextView section, TextView key) {
  bool inSection = false;
  for (std::string bytes; std::getline(file, bytes);) {
    const UnicodeString text = TextFromAnsi(bytes);
    const TextView line = Trimmed(text);
    if (line.starts_with(u'[')) {
      inSection = SameText(line.substr(1, line.find(u']') - 1), section);
      continue;
    }
    const std::size_t equals = line.find(u'=');
    if (!inSection || line.starts_with(u';') || equals == TextView::npos) continue;
    if (SameText(Trimmed(line.substr(0, equals)), key)) {
      return UnicodeString(Unquoted(Trimmed(line.substr(equals + 1))));
    }
  }
  return std::nullopt;
}

}  // namespace

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

UnicodeString TemporaryFolder() {
  return EnvironmentVariable(u"TEMP") + u"\\";
}

std::optional<UnicodeString> DesktopFolder() {
  if (headless::Fails("DesktopFolder")) return std::nullopt;
  return Machine().DesktopFolder;
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
  UnicodeString value = FindProfileValue(stream, section, key).value_or(UnicodeString(fallback));
  value.resize(std::min(value.size(), kLongestProfileValue));
  return value;
}

void FlushProfile(TextView) {}  // nothing is cached here
