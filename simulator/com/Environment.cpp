#include "simulator/com/Environment.h"

#include <windows.h>

#include <charconv>
#include <limits>
#include <memory>

#include "platform/System.h"
#include "simulator/com/TraceFile.h"

namespace {

[[noreturn]] void Refuse(TextView name) {
  throw EError(TErrorKind::System, ERROR_INVALID_PARAMETER, u"Ungültiger Wert in " + UnicodeString(name));
}

/// Decimal digits, or hexadecimal ones behind "0x".
std::int64_t Number(TextView name, std::int64_t largest, std::int64_t fallback) {
  const std::string text = Utf8FromText(EnvironmentVariable(name));
  if (text.empty()) return fallback;
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const char* first = text.data() + (hexadecimal ? 2 : 0);
  const char* last = text.data() + text.size();
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(first, last, value, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != last || value < 0 || value > largest) Refuse(name);
  return value;
}

/// A word of one of the documents' switches; `Parse` knows them.
template <auto Parse>
auto Switch(TextView name) -> decltype(Parse("")) {
  const std::string word = Utf8FromText(EnvironmentVariable(name));
  if (word.empty()) return std::nullopt;
  const auto value = Parse(word);
  if (!value) Refuse(name);
  return value;
}

std::function<void(std::string_view)> TraceTo(const UnicodeString& path) {
  if (path.empty()) return {};
  return [file = std::make_shared<TTraceFile>(path)](std::string_view line) { file->Append(line); };
}

std::int32_t FailResult() {
  constexpr auto kLargest = std::numeric_limits<std::uint32_t>::max();
  const auto result =
      Number(u"APPRENTICE_FAIL_RESULT", kLargest, static_cast<std::uint32_t>(kUnspecifiedError));
  const std::int32_t code = HResult(static_cast<std::uint32_t>(result));
  if (code >= 0) Refuse(u"APPRENTICE_FAIL_RESULT");  // would be a success
  return code;
}

}  // namespace

namespace simulator {

TSimulatorSettings SettingsFromEnvironment() {
  TSimulatorSettings settings;
  settings.Trace = TraceTo(EnvironmentVariable(u"APPRENTICE_TRACE"));
  settings.FailCall = Number(u"APPRENTICE_FAIL_CALL", std::numeric_limits<std::int64_t>::max(), 0);
  settings.FailText = EnvironmentVariable(u"APPRENTICE_FAIL_TEXT");
  settings.FailResult = FailResult();
  settings.DelayMilliseconds =
      static_cast<int>(Number(u"APPRENTICE_DELAY_MS", std::numeric_limits<int>::max(), 0));
  settings.Sleep = [](int milliseconds) { ::Sleep(static_cast<DWORD>(milliseconds)); };
  settings.PastEnd = Switch<PastEndFromWord>(u"APPRENTICE_PAST_END");
  settings.DuplicateProperty = Switch<DuplicatePropertyFromWord>(u"APPRENTICE_DUPLICATE");
  return settings;
}

}  // namespace simulator
