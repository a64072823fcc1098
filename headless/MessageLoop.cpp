#include "ui/MessageLoop.h"

#include <algorithm>
#include <map>
#include <optional>

#include "headless/Machine.h"
#include "ui/Application.h"
#include "ui/Cursor.h"
#include "ui/SaveDialog.h"
#include "ui/Timer.h"

using headless::Machine;

namespace {

struct TRunningTimer {
  int Interval;
  std::int64_t Due;
  const std::function<void()>* OnElapsed;
};

struct TQueue {
  std::map<std::uintptr_t, TRunningTimer> Timers;
  std::uintptr_t LastId = 0;
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
  Application->Guard(*timer.OnElapsed);
  return true;
}

}  // namespace

void TTimer::Enable() {
  Disable();
  headless::ThrowIfFails("StartTimer");
  fId = ++Queue().LastId;
  Queue().Timers.emplace(fId, TRunningTimer{fInterval, Machine().Now + fInterval, &OnTimer});
}

void TTimer::Disable() noexcept {
  Queue().Timers.erase(fId);
  fId = 0;
}

void PostQuit() {
  Queue().Quit = true;
}

/// The user does one thing after the other with the dialog. Where nothing is left that could ever happen, the
/// log says "dialog idle" and the loop ends, so that a test can go on.
void RunModalLoop(const TNativeForm&, const std::function<bool()>& ended) {
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

void ShowMessageBox(const TNativeForm* owner, TextView text, TextView caption, TBoxIcon icon) {
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

std::optional<UnicodeString> TSaveDialog::Ask(const TForm&) const {
  headless::ThrowIfFails("SaveDialog");
  std::string filters;
  for (const TFilter& filter : Filters()) {
    filters += " " + Utf8FromText(filter.Description) + "=" + Utf8FromText(filter.Pattern);
  }
  Machine().Record("save dialog \"" + Utf8FromText(Title) + "\" " + Utf8FromText(InitialDir) + " | " +
                   Utf8FromText(FileName) + " |" + filters + " | " + Utf8FromText(Extension()));
  auto& answers = Machine().SaveAnswers;
  if (answers.empty()) return std::nullopt;
  std::optional<UnicodeString> answer = answers.front();
  answers.pop_front();
  return answer;
}

void SetScreenCursor(TCursor cursor) {
  Machine().HourGlass = cursor == TCursor::HourGlass;
  Machine().Record(Machine().HourGlass ? "cursor hourglass" : "cursor default");
}

TCursor ScreenCursor() {
  return Machine().HourGlass ? TCursor::HourGlass : TCursor::Default;
}
