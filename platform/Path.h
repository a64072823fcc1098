#pragma once

#include "platform/Text.h"

// File names as the program takes them apart: "\" and ":" separate, nothing else does.

/// From the last "." to the end, the dot included; empty when no "." stands behind the last separator.
TextView FileExtension(TextView fileName);

/// Everything behind the last separator.
TextView FileNameWithoutFolder(TextView fileName);

/// `fileName` with `extension` (dot included) in place of its own, or behind it when it has none.
UnicodeString ChangeFileExtension(TextView fileName, TextView extension);
