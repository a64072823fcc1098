#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Text is UTF-16 throughout the program; other encodings are converted where they enter or leave it.
using UnicodeString = std::u16string;
using TextView = std::u16string_view;

/// Equal by the user's locale, without regard to letter case. For an exact comparison use `==`.
bool SameText(TextView a, TextView b);
/// Bytes that are equal for two texts exactly when SameText calls these the same: for looking up one of many.
std::string SameTextKey(TextView text);

/// `bytes` read through the machine's ANSI code page. Bytes without a character of their own become what the
/// system makes of them; this never fails.
UnicodeString TextFromAnsi(std::string_view bytes);

/// Ill-formed input becomes U+FFFD.
UnicodeString TextFromUtf8(std::string_view bytes);
/// Lone surrogates become U+FFFD.
std::string Utf8FromText(TextView text);

/// Reads the code point at `at` and moves past it; a lone surrogate is read as U+FFFD.
char32_t NextCodePoint(TextView text, std::size_t& at);
/// `codePoint` is no surrogate.
void AppendUtf8(std::string& bytes, char32_t codePoint);

/// Plain decimal digits, no grouping, a minus sign for negatives.
UnicodeString DecimalText(std::int64_t value);
/// Eight upper-case hexadecimal digits, the way a system code is usually quoted.
UnicodeString HexText(std::uint32_t value);
