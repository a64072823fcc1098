#pragma once

#include <cstdint>

#include "platform/Text.h"

/// The status text after a property update: a line for the properties created and, after a carriage return,
/// one for those updated.
UnicodeString UpdateReport(std::int32_t created, std::int32_t updated);
