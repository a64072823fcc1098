#include "ui/Timer.h"

void TTimer::Enable() {
  Disable();
  fId = StartNativeTimer(fInterval, [this] { OnTimer(); });
}

void TTimer::Disable() {
  if (fId != 0) StopNativeTimer(fId);
  fId = 0;
}
