#include "platform/Text.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf16(UnicodeString& text, char32_t codePoint) {
  if (codePoint < 0x10000) {
    text.push_back(static_cast<char16_t>(codePoint));
    return;
  }
  codePoint -= 0x10000;
  text.push_back(static_cast<char16_t>(0xD800 + (codePoint >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF)));
}

/// Reads one code point at `at` and moves past it; a byte that begins none is skipped alone.
char32_t NextFromUtf8(std::string_view bytes, std::size_t& at) {
  const auto byte = [&bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byte(at++);
  if (lead < 0x80) return lead;
  const std::size_t following = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead >= 0xF5 || bytes.size() - at < following) return kReplacement;
  char32_t codePoint = lead & (0x3Fu >> following);
  for (std::size_t i = 0; i < following; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return kReplacement;
    codePoint = (codePoint << 6) | (byte(at + i) & 0x3Fu);
  }
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  const bool surrogate = codePoint >= 0xD800 && codePoint < 0xE000;
  if (codePoint < kSmallest[following] || surrogate || codePoint > 0x10FFFF) return kReplacement;
  at += following;
  return codePoint;
}

}  // namespace

UnicodeString TextFromUtf8(std::string_view bytes) {
  UnicodeString text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) AppendUtf16(text, NextFromUtf8(bytes, at));
  return text;
}

void AppendUtf8(std::string& bytes, char32_t codePoint) {
  const auto put = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
  const auto continuation = [codePoint](int shift) { return 0x80 | ((codePoint >> shift) & 0x3F); };
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < 0x800) {
    put(0xC0 | (codePoint >> 6));
    put(continuation(0));
  } else if (codePoint < 0x10000) {
    put(0xE0 | (codePoint >> 12));
    put(continuation(6));
    put(continuation(0));
  } else {
    put(0xF0 | (codePoint >> 18));
    put(continuation(12));
    put(continuation(6));
    put(continuation(0));
  }
}

char32_t NextCodePoint(TextView text, std::size_t& at) {
  const char32_t unit = text[at++];
  if ((unit & 0xF800) != 0xD800) return unit;
  if (unit >= 0xDC00 || at == text.size() || (text[at] & 0xFC00) != 0xDC00) return kReplacement;
  return 0x10000 + ((unit & 0x3FF) << 10) + (text[at++] & 0x3FF);
}

std::string Utf8FromText(TextView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendUtf8(bytes, NextCodePoint(text, at));
  return bytes;
}

UnicodeString DecimalText(std::int64_t value) {
  const std::string digits = std::to_string(value);
  return {digits.begin(), digits.end()};
}

UnicodeString HexText(std::uint32_t value) {
  UnicodeString digits(8, u'0');
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, value >>= 4) {
    *digit = u"0123456789ABCDEF"[value & 0xF];
  }
  return digits;
}
