#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// Automation dates count days from 30 December 1899. The fraction is the time of day and always counts
/// forward, also before that day: -1.25 is 29 December 1899, 06:00. Years 100 to 9999, seconds at the finest.
bool IsOleDate(double date);

/// "2024-03-15", with "T10:00:00" behind it unless it is midnight. `date` satisfies IsOleDate.
std::string IsoFromOleDate(double date);
/// Nothing when `text` is no such date.
std::optional<double> OleDateFromIso(std::string_view text);

}  // namespace simulator
