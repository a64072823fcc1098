#pragma once

#include <cstdint>
#include <optional>

#include "inventor/IndexHint.h"
#include "platform/Text.h"

/// The per-user folder of the settings file and the database, with a backslash at its end.
UnicodeString ReadProgramFolder();

/// Creates the folder of the export dialog's database below `programFolder` where it is missing. Reports
/// nothing: only the export needs it, and complains then.
void EnsureDatabaseFolder(const UnicodeString& programFolder);

/// The section "Inventor" of the settings file, with defaults for what is missing. Never writes the file.
TIndexSettings ReadIndexSettings(const UnicodeString& settingsFile);

/// A whole text as a 32-bit integer: decimal, or hexadecimal after "$", a sign before either, blanks before
/// that. Nothing for any other text and for numbers that do not fit.
std::optional<std::int32_t> IntegerFromText(TextView text);
