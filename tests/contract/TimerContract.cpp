#include <gtest/gtest.h>

#include <vector>

#include "ui/Application.h"
#include "ui/Form.h"
#include "ui/Timer.h"

// What every back end owes to the users of timers and of the message loop.

TEST(TimerContract, TimersRunUntilDisabledAndBeginAnew) {
  TApplication application(u"Velmora");
  const TForm form(TFormKind::Status, u"TTimerForm", u"", 300, 70);
  std::vector<int> events;
  TTimer first(form, 10);
  TTimer never(form, 20);
  TTimer last(form, 30);
  never.OnTimer = [&] { events.push_back(-1); };
  first.OnTimer = [&] {
    events.push_back(static_cast<int>(events.size()));
    if (events.size() < 3) return;
    first.Disable();  // from its own event
    last.Enable();
  };
  last.OnTimer = [&] { application.Terminate(); };
  never.Enable();
  first.Enable();
  never.Disable();
  never.Disable();  // one that is disabled already is no error
  RunMessageLoop();
  EXPECT_EQ(events, (std::vector<int>{0, 1, 2}));
  last.SetInterval(20);
  last.Enable();
  last.Enable();
  last.Disable();
}
