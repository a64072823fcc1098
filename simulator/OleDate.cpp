#include "simulator/OleDate.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

using namespace std::chrono;

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr sys_days kDayZero = 1899y / December / 30;
constexpr sys_days kFirstDay = 100y / January / 1;
constexpr sys_days kLastDay = 9999y / December / 31;

/// The digits at `at`, exactly `count` of them.
std::optional<int> Digits(std::string_view text, std::size_t at, std::size_t count) {
  int value = 0;
  for (const char digit : text.substr(at, count)) {
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  return value;
}

std::optional<sys_days> DayOf(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto y = Digits(text, 0, 4);
  const auto m = Digits(text, 5, 2);
  const auto d = Digits(text, 8, 2);
  if (!y || !m || !d) return std::nullopt;
  const year_month_day date = year(*y) / month(static_cast<unsigned>(*m)) / day(static_cast<unsigned>(*d));
  if (!date.ok() || sys_days(date) < kFirstDay) return std::nullopt;
  return sys_days(date);
}

/// Seconds since midnight of "T10:00:00"; an empty text is midnight.
std::optional<int> SecondsOf(std::string_view text) {
  if (text.empty()) return 0;
  if (text.size() != 9 || text[0] != 'T' || text[3] != ':' || text[6] != ':') return std::nullopt;
  const auto h = Digits(text, 1, 2);
  const auto m = Digits(text, 4, 2);
  const auto s = Digits(text, 7, 2);
  if (!h || !m || !s || *h > 23 || *m > 59 || *s > 59) return std::nullopt;
  return (*h * 60 + *m) * 60 + *s;
}

/// Seconds since day zero on a scale without the fold at it.
std::int64_t SecondsSinceDayZero(double date) {
  const double wholeDays = std::trunc(date);
  const double timeOfDay = std::abs(date - wholeDays) * kSecondsPerDay;
  return static_cast<std::int64_t>(wholeDays) * kSecondsPerDay + std::llround(timeOfDay);
}

}  // namespace

namespace simulator {

bool IsOleDate(double date) {
  const double first = static_cast<double>((kFirstDay - kDayZero).count());
  const double last = static_cast<double>((kLastDay - kDayZero).count());
  // Half a second before the end, so that no date is rounded up into the year 10000.
  return date > first - 1 && date < last + 1 - 0.5 / kSecondsPerDay;
}

std::string IsoFromOleDate(double date) {
  const std::int64_t total = SecondsSinceDayZero(date);
  const sys_seconds moment = sys_seconds(kDayZero) + seconds(total);
  const sys_days today = floor<days>(moment);
  const year_month_day ymd(today);
  const auto time = static_cast<int>((moment - today).count());
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(ymd.year()),
                static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()));
  std::string iso = text.data();
  if (time == 0) return iso;
  std::snprintf(text.data(), text.size(), "T%02d:%02d:%02d", time / 3600, time / 60 % 60, time % 60);
  return iso + text.data();
}

std::optional<double> OleDateFromIso(std::string_view text) {
  const auto date = DayOf(text.substr(0, 10));
  const auto time = date ? SecondsOf(text.substr(10)) : std::nullopt;
  if (!time) return std::nullopt;
  const auto wholeDays = static_cast<double>((*date - kDayZero).count());
  const double fraction = static_cast<double>(*time) / kSecondsPerDay;
  return wholeDays < 0 ? wholeDays - fraction : wholeDays + fraction;
}

}  // namespace simulator
