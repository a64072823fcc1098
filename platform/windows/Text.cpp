#include "platform/Text.h"

#include "platform/windows/Wide.h"

bool SameText(TextView a, TextView b) {
  // Views without a buffer are refused by the system, and the empty text equals nothing but itself here.
  if (a.empty() || b.empty()) return a.empty() && b.empty();
  return ::CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, Wide(a.data()), static_cast<int>(a.size()),
                          Wide(b.data()), static_cast<int>(b.size())) == CSTR_EQUAL;
}

UnicodeString TextFromAnsi(std::string_view bytes) {
  if (bytes.empty()) return {};
  const int size = static_cast<int>(bytes.size());
  UnicodeString text(bytes.size(), u'\0');  // no code page makes more characters than there are bytes
  const int length = ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, WideBuffer(text), size);
  text.resize(static_cast<std::size_t>(length));
  return text;
}
