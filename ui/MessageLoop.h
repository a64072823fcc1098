#pragma once

#include "platform/Text.h"
#include "ui/NativeWindow.h"

/// Handles messages until the one that PostQuit asked for is reached.
void RunMessageLoop();

/// Ends the message loop when it has handled what was posted before. A message box that is open ends by
/// itself.
void PostQuit();

enum class TBoxIcon { None, Error };

/// A box with the single button OK, above `owner` (null: none). Handles messages until it is closed, timers
/// included; returns also when the program is asked to end meanwhile.
void ShowMessageBox(const TNativeWindow* owner, TextView text, TextView caption, TBoxIcon icon);
