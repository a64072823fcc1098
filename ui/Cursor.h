#pragma once

enum class TCursor { Default, HourGlass };

/// The mouse cursor over all windows of the program. It changes at once and stays until it is set again.
void SetScreenCursor(TCursor cursor);
TCursor ScreenCursor();
