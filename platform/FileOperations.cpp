#include "platform/FileOperations.h"

#include <utility>

#include "platform/System.h"

TRetryBudget::TRetryBudget(int milliseconds, std::function<void()> keepAlive)
    : fMilliseconds(milliseconds), fKeepAlive(std::move(keepAlive)) {}

bool TRetryBudget::Pause() {
  constexpr int kPause = 50;
  if (fMilliseconds <= 0) return false;
  fMilliseconds -= kPause;
  KeepAlive();
  WaitMilliseconds(kPause);
  return true;
}
