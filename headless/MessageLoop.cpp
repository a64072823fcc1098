#include "ui/MessageLoop.h"

#include <algorithm>
#include <map>
#include <optional>

#include "headless/Machine.h"
#include "ui/Application.h"
#include "ui/NativeTimer.h"

using headless::Machine;

namespace {

struct TRunningTimer {
  int Interval;
  std::int64_t Due;
  std::function<void()> OnElapsed;
};

struct TQueue {
  std::map<TTimerId, TRunningTimer> Timers;
  TTimerId LastId = 0;
  bool Quit = false;
};

TQueue& Queue() {
  static TQueue queue;
  return queue;
}

/// Moves the clock to the next timer that is due not later than `limit` and runs its event; false without
/// one.
bool RunNextTimer(std::optional<std::int64_t> limit) {
  auto& timers = Queue().Timers;
  const auto next = std::ranges::min_element(timers, {}, [](const auto& timer) { return timer.second.Due; });
  if (next == timers.end() || (limit && next->second.Due > *limit)) return false;
  TRunningTimer& timer = next->second;
  Machine().Now = std::max(Machine().Now, timer.Due);
  timer.Due = Machine().Now + timer.Interval;
  const std::function<void()> onElapsed = timer.OnElapsed;  // the event may stop its own timer
  Application->Guard(onElapsed);
  return true;
}

}  // namespace

TTimerId StartNativeTimer(int milliseconds, std::function<void()> onElapsed) {
  headless::ThrowIfFails("StartTimer");
  const TTimerId id = ++Queue().LastId;
  Queue().Timers.emplace(id, TRunningTimer{milliseconds, Machine().Now + milliseconds, std::move(onElapsed)});
  return id;
}

void StopNativeTimer(TTimerId id) {
  Queue().Timers.erase(id);
}

void PostQuit() {
  Queue().Quit = true;
}

/// The user does one thing after the other with the dialog. Where nothing is left that could ever happen, the
/// log says "dialog idle" and the loop ends, so that a test can go on.
void RunModalLoop(TNativeWindow&, const std::function<bool()>& ended) {
  while (!Queue().Quit && !ended()) {
    auto& actions = Machine().UserActions;
    if (!actions.empty()) {
      const std::function<void()> action = std::move(actions.front());
      actions.pop_front();
      action();
    } else if (!RunNextTimer(std::nullopt)) {
      Machine().Record("dialog idle");
      return;
    }
  }
}

void KeepAlive() noexcept {}
void DiscardInput() noexcept {}

/// Where nothing is left that could ever happen, the window would stay until the user closes it: the log says
/// "idle" and the loop ends, so that a test can go on.
void RunMessageLoop() {
  while (!Queue().Quit) {
    if (RunNextTimer(std::nullopt)) continue;
    Machine().Record("idle");
    return;
  }
  Machine().Record("quit");
  Queue().Quit = false;
}

void ShowMessageBox(const TNativeWindow* owner, TextView text, TextView caption, TBoxIcon icon) {
  Machine().Record(std::string(icon == TBoxIcon::Error ? "error" : "plain") + " box" +
                   (owner != nullptr ? "" : " without owner") + " \"" + Utf8FromText(caption) +
                   "\": " + Utf8FromText(text));
  auto& answers = Machine().PressOkAfter;
  std::optional<std::int64_t> closing;
  if (!answers.empty()) {
    if (answers.front()) closing = Machine().Now + *answers.front();
    answers.pop_front();
  }
  while (!Queue().Quit && RunNextTimer(closing)) {
  }
  if (closing && !Queue().Quit) Machine().Now = std::max(Machine().Now, *closing);
  Machine().Record(Queue().Quit ? "box ended by quit" : closing ? "box closed" : "box stays");
}
