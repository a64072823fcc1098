#pragma once

#include <functional>

#include "ui/NativeTimer.h"

/// Calls OnTimer again and again while it is enabled. Enabling starts the interval from its beginning.
class TTimer {
 public:
  explicit TTimer(int intervalMilliseconds) : fInterval(intervalMilliseconds) {}
  ~TTimer() { Disable(); }
  TTimer(const TTimer&) = delete;
  TTimer& operator=(const TTimer&) = delete;

  std::function<void()> OnTimer;

  void Enable();
  void Disable();
  /// Takes effect with the next Enable.
  void SetInterval(int milliseconds) { fInterval = milliseconds; }

 private:
  int fInterval;
  TTimerId fId = 0;
};
