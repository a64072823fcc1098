#pragma once

#include <cstdint>

#include "platform/Text.h"

// The process, its machine and the clock.

/// The program itself, called by the system's entry point. Returns the exit code.
int ProgramMain();

/// The process's command line as one text, the program's own name first.
UnicodeString CommandLine();

/// The whole value, nothing in it expanded; empty when the variable is unset or empty.
UnicodeString EnvironmentVariable(TextView name);

/// The machine's network name, at most 15 characters; empty when it cannot be read.
UnicodeString ComputerName();

/// A clock that only goes forward, in milliseconds; its zero means nothing.
std::int64_t TickMilliseconds();

/// Waits for about this time, also where the system's own clock ticks less often.
void WaitMilliseconds(int milliseconds);

/// The system's text for an error code or HRESULT in the user's language, without the line break and blanks
/// at its end. A code without a text gives "Systemfehler" and its hexadecimal digits.
UnicodeString SystemErrorText(std::int32_t code);
