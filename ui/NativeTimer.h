#pragma once

#include <cstdint>
#include <functional>

/// Names one running timer; 0 names none. No id is given twice in the life of the process, so that a late
/// message of a stopped timer is recognised and dropped.
using TTimerId = std::uintptr_t;

/// Calls `onElapsed` from the message loop each time `milliseconds` have passed, until it is stopped. Errors
/// that leave `onElapsed` go to the application's default handling. Throws EError of kind System.
TTimerId StartNativeTimer(int milliseconds, std::function<void()> onElapsed);

/// May be called from the timer's own event.
void StopNativeTimer(TTimerId id);
