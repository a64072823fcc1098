#pragma once

#include <optional>

#include "platform/Geometry.h"
#include "platform/Text.h"

// The top-level windows of all programs, and the monitors that they are on.

/// A window of this or another process, never owned through this. It may vanish at any time.
using TWindowHandle = struct TWindowTag*;

/// The first top-level window in Z order, seen from the top-level window `sibling`; null when there is none.
TWindowHandle FirstWindow(TWindowHandle sibling);
/// The next one in Z order; null after the last, and when `window` has vanished.
TWindowHandle NextWindow(TWindowHandle window);

/// At most 254 characters of the title; empty for a window without one or one that has vanished.
UnicodeString WindowTitle(TWindowHandle window);
/// The window with its frame, in screen pixels; nothing when it has vanished.
std::optional<TRect> WindowRect(TWindowHandle window);

// Of the monitor that holds most of `rect` or is nearest to it.
/// The screen without the task bar.
TRect WorkAreaAt(const TRect& rect);
/// Dots per inch.
int DpiAt(const TRect& rect);
