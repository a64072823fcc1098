#include "platform/Text.h"

#include "platform/windows/Wide.h"

bool SameText(TextView a, TextView b) {
  // Views without a buffer are refused by the system, and the empty text equals nothing but itself here.
  if (a.empty() || b.empty()) return a.empty() && b.empty();
  return ::CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, Wide(a.data()), static_cast<int>(a.size()),
                          Wide(b.data()), static_cast<int>(b.size())) == CSTR_EQUAL;
}

std::string SameTextKey(TextView text) {
  if (text.empty()) return {};
  // With LCMAP_SORTKEY the result is bytes, and its size is counted in bytes.
  const auto sortKey = [text](char* key, int size) {
    return ::LCMapStringW(LOCALE_USER_DEFAULT, LCMAP_SORTKEY | NORM_IGNORECASE, Wide(text.data()),
                          static_cast<int>(text.size()), reinterpret_cast<wchar_t*>(key), size);
  };
  std::string key(static_cast<std::size_t>(sortKey(nullptr, 0)), '\0');
  sortKey(key.data(), static_cast<int>(key.size()));
  return key;
}

UnicodeString TextFromAnsi(std::string_view bytes) {
  if (bytes.empty()) return {};
  const int size = static_cast<int>(bytes.size());
  UnicodeString text(bytes.size(), u'\0');  // no code page makes more characters than there are bytes
  const int length = ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, WideBuffer(text), size);
  text.resize(static_cast<std::size_t>(length));
  return text;
}
