#pragma once

#include "platform/Text.h"
#include "ui/NativeWindow.h"

/// Handles messages until the application is terminated.
void RunMessageLoop();

/// Ends a message box that is open and wakes the message loop. What is still to be painted stays unpainted.
void PostQuit();

enum class TBoxIcon { None, Error };

/// A box with the single button OK, above `owner` (null: none). Handles messages until it is closed, timers
/// included; returns also when the program is asked to end meanwhile.
void ShowMessageBox(const TNativeWindow* owner, TextView text, TextView caption, TBoxIcon icon);
