#pragma once

#include <cstdint>

#include "inventor/IndexHint.h"
#include "platform/Text.h"

/// Writes the values of a property list file into the custom properties of one document and returns how many
/// properties it created, the index hint included. Every text property of the set that the list does not name
/// ends up empty. Updates are not counted.
/// Throws EError; the document's file is unchanged unless the error came after the properties were written.
std::int32_t UpdateProperties(const UnicodeString& fileName, const UnicodeString& listFileName,
                              const TIndexSettings& settings);
