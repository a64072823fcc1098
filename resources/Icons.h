#pragma once

// Identifiers of the icons, for the resource compiler and for C++ alike: macros are all that both understand.
// The lowest one is the icon that the Explorer and the task bar show. Part, assembly and drawing also stand
// in the working table, as the image of a row: these three numbers are part of its format.
// NOLINTBEGIN(modernize-macro-to-enum, cppcoreguidelines-macro-usage)
#define ICON_PROGRAM 1
#define ICON_PART 93
#define ICON_ASSEMBLY 94
#define ICON_DRAWING 95
#define ICON_WARNING 96
#define ICON_EXPAND_ALL 97
#define ICON_COLLAPSE_ALL 98
#define ICON_EXPORT 99
// NOLINTEND(modernize-macro-to-enum, cppcoreguidelines-macro-usage)
