#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "ui/Application.h"
#include "ui/NativeTimer.h"

// What every back end owes to the users of timers and of the message loop.

TEST(TimerContract, TimersRunUntilStoppedWithUniqueIds) {
  TApplication application(u"Velmora");
  std::set<TTimerId> ids;
  std::vector<int> events;
  TTimerId first = 0;
  const TTimerId never = StartNativeTimer(20, [&] { events.push_back(-1); });
  first = StartNativeTimer(10, [&] {
    events.push_back(static_cast<int>(events.size()));
    if (events.size() < 3) return;
    StopNativeTimer(first);  // from its own event
    ids.insert(StartNativeTimer(30, [&] { application.Terminate(); }));
  });
  ids.insert({never, first});
  StopNativeTimer(never);
  StopNativeTimer(never);  // one that has gone is no error
  RunMessageLoop();
  EXPECT_EQ(events, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(ids.size(), 3U);
  EXPECT_EQ(ids.count(0), 0U);
  for (const TTimerId id : ids) StopNativeTimer(id);
}
