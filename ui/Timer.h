#pragma once

#include <cstdint>
#include <functional>

class TForm;

/// Calls OnTimer from the message loop again and again while it is enabled. Errors that leave OnTimer go to
/// the application's default handling.
class TTimer {
 public:
  /// `form` outlives the timer.
  TTimer(const TForm& form, int intervalMilliseconds) : fForm(form), fInterval(intervalMilliseconds) {}
  ~TTimer() { Disable(); }
  TTimer(const TTimer&) = delete;
  TTimer& operator=(const TTimer&) = delete;

  std::function<void()> OnTimer;

  /// Starts the interval from its beginning. Throws EError of kind System.
  void Enable();
  /// No event follows, not even one that is due already. May be called from OnTimer.
  void Disable() noexcept;
  /// Takes effect with the next Enable.
  void SetInterval(int milliseconds) { fInterval = milliseconds; }

 private:
  [[maybe_unused]] const TForm& fForm;  // the headless back end's timers have no window
  int fInterval;
  std::uintptr_t fId = 0;  // 0: disabled; none is used twice, so that a late message of an old one is known
};
