#include "app/Settings.h"

#include <algorithm>
#include <limits>

#include "platform/Files.h"
#include "platform/Profile.h"
#include "platform/System.h"

namespace {

constexpr TextView kSection = u"Inventor";

/// The digit's value, or nothing for a character that is no digit to this base.
std::optional<std::int64_t> DigitValue(char16_t c, int base) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  const char16_t lower = c | 0x20;
  if (base == 16 && lower >= u'a' && lower <= u'f') return lower - u'a' + 10;
  return std::nullopt;
}

/// Digits alone, at least one; nothing above `most`.
std::optional<std::int64_t> Magnitude(TextView digits, int base, std::int64_t most) {
  if (digits.empty()) return std::nullopt;
  std::int64_t value = 0;
  for (const char16_t c : digits) {
    const auto digit = DigitValue(c, base);
    if (!digit) return std::nullopt;
    value = value * base + *digit;
    if (value > most) return std::nullopt;
  }
  return value;
}

/// Anything that is not an integer counts as true: only a zero switches the setting off.
bool ReadBoolean(const UnicodeString& file, TextView key) {
  UnicodeString text = ReadProfileText(file, kSection, key, u"");
  const bool prefixed = text.size() > 2 && text[0] == u'0' && (text[1] == u'x' || text[1] == u'X');
  if (prefixed) text.replace(0, 2, u"$");
  return IntegerFromText(text).value_or(1) != 0;
}

}  // namespace

std::optional<std::int32_t> IntegerFromText(TextView text) {
  text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with(u'$');
  if (hexadecimal) text.remove_prefix(1);

  // Hexadecimal digits may fill all 32 bits ("$FFFFFFFF" is -1); decimal ones have the sign beside them.
  const std::int64_t most = hexadecimal
                                ? std::numeric_limits<std::uint32_t>::max()
                                : std::numeric_limits<std::int32_t>::max() + (negative ? std::int64_t{1} : 0);
  const auto magnitude = Magnitude(text, hexadecimal ? 16 : 10, most);
  if (!magnitude) return std::nullopt;
  return static_cast<std::int32_t>(negative ? -*magnitude : *magnitude);
}

UnicodeString ReadProgramFolder() {
  return EnvironmentVariable(u"APPDATA") + u"\\VelMora\\";
}

void EnsureDatabaseFolder(const UnicodeString& programFolder) {
  if (!FolderExists(programFolder + u"DBExt\\")) CreateFolders(programFolder + u"DBExt");
}

TIndexSettings ReadIndexSettings(const UnicodeString& settingsFile) {
  TIndexSettings settings;
  settings.IndexProp = ReadProfileText(settingsFile, kSection, u"INV_IndexProp", u"INTZUSTAND-EOF");
  settings.IndexHint =
      ReadProfileText(settingsFile, kSection, u"INV_IndexHint", u"ACHTUNG! Geänderte Zeichnung");
  settings.AutoRemoveHint = ReadBoolean(settingsFile, u"INV_AutoRemoveHint");
  FlushProfile(settingsFile);
  return settings;
}
