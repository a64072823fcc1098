#pragma once

#include "platform/Text.h"

// Profile (INI) files, read as the system reads them. `file` is a full path.

/// The value of `key`, cut off after 2047 characters. `fallback` stands for a missing file, section or key,
/// not for an empty value.
UnicodeString ReadProfileText(TextView file, TextView section, TextView key, TextView fallback);

/// Asks the system to drop its cached copy of a file. Neither creates nor changes the file.
void FlushProfile(TextView file);
