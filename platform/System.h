#pragma once

#include <cstdint>
#include <optional>

#include "platform/Text.h"

/// The process's command line as one text, the program's own name first.
UnicodeString CommandLine();

/// The whole value, nothing in it expanded; empty when the variable is unset or empty.
UnicodeString EnvironmentVariable(TextView name);

/// The machine's network name, at most 15 characters; empty when it cannot be read.
UnicodeString ComputerName();

/// A clock that only goes forward, in milliseconds; its zero means nothing.
std::int64_t TickMilliseconds();

/// Waits about so long, also where the system's own clock ticks less often.
void WaitMilliseconds(int milliseconds);

/// The folder for short-lived files, with a separator at its end.
UnicodeString TemporaryFolder();

/// The user's desktop; nothing when the shell cannot tell.
std::optional<UnicodeString> DesktopFolder();

/// The system's text for an error code or HRESULT in the user's language, without the line break and blanks
/// at its end. A code without a text gives "Systemfehler" and its hexadecimal digits.
UnicodeString SystemErrorText(std::int32_t code);

/// The value of `key` in a profile (INI) file, cut off after 2047 characters. `fallback` stands for a missing
/// file, section or key, not for an empty value. `file` is a full path.
UnicodeString ReadProfileText(TextView file, TextView section, TextView key, TextView fallback);

/// Asks the system to let go of its cached copy of a profile file. Neither creates nor changes the file.
void FlushProfile(TextView file);
