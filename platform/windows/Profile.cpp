#include "platform/Profile.h"

#include "platform/windows/Wide.h"

UnicodeString ReadProfileText(TextView file, TextView section, TextView key, TextView fallback) {
  constexpr std::size_t kLongestValue = 2047;
  UnicodeString value(kLongestValue + 1, u'\0');
  const DWORD length = ::GetPrivateProfileStringW(
      Wide(UnicodeString(section)), Wide(UnicodeString(key)), Wide(UnicodeString(fallback)),
      WideBuffer(value), static_cast<DWORD>(value.size()), Wide(UnicodeString(file)));
  value.resize(length);
  return value;
}

void FlushProfile(TextView file) {
  ::WritePrivateProfileStringW(nullptr, nullptr, nullptr, Wide(UnicodeString(file)));
}
