#pragma once

#include "platform/DesktopWindows.h"
#include "platform/Text.h"

/// The first top-level window in Z order whose title contains `word` exactly as written; null when there is
/// none. Hidden windows count like any other. `own` is where the walk starts from.
TWindowHandle FindHostWindow(TWindowHandle own, TextView word);

/// The rectangle that the program's windows are centred on: that of the host's window, else the work area of
/// the monitor nearest to `own`.
TRect HostRect(TWindowHandle own);
