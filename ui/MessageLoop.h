#pragma once

#include <functional>

#include "platform/Text.h"
#include "ui/NativeWindow.h"

/// Handles messages until the application is terminated.
void RunMessageLoop();

/// Handles messages until `ended` says so, asked after each of them, or the application is terminated. The
/// dialog's owner takes no input meanwhile; Tab and the arrow keys move between the dialog's children, Enter
/// and Esc do what a dialog wants.
void RunModalLoop(const TNativeForm& dialog, const std::function<bool()>& ended);

/// Ends a message box that is open and wakes the message loop. What is still to be painted stays unpainted.
void PostQuit();

/// To be called often in a long piece of work: the system sees that the program is alive. Handles no
/// message that waits, takes none away.
void KeepAlive() noexcept;
/// Throws away the keys, clicks and touches that wait.
void DiscardInput() noexcept;

enum class TBoxIcon { None, Error };

/// A box with the single button OK, above `owner` (null: none). Handles messages until it is closed, timers
/// included; returns also when the program is asked to end meanwhile.
void ShowMessageBox(const TNativeForm* owner, TextView text, TextView caption, TBoxIcon icon);
