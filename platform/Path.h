#pragma once

#include "platform/Text.h"

// Parts of file names: "\" and ":" are the separators, nothing else is.

/// From the last "." to the end, the dot included; empty when there is no "." after the last separator.
TextView FileExtension(TextView fileName);

/// The folder that a file or folder is in, without the separator after it; empty when `path` names none. As
/// for the system, "/" separates as well.
TextView ParentFolder(TextView path);

/// Everything after the last separator.
TextView FileNameWithoutFolder(TextView fileName);

/// `fileName` with `extension` (dot included) in place of its own, or after it when it has none.
UnicodeString ChangeFileExtension(TextView fileName, TextView extension);
