#include "platform/Profile.h"
#include "platform/System.h"

#include <gtest/gtest.h>

#include "platform/Error.h"

// What every back end owes to the callers of the system.

TEST(SystemContract, MissingValuesGiveDefaults) {
  EXPECT_EQ(EnvironmentVariable(u"VELMORA_GIBT_ES_NICHT"), u"");
  EXPECT_EQ(
      ReadProfileText(EnvironmentVariable(u"TEMP") + u"\\fehlt.ini", u"Inventor", u"Schlüssel", u"Vorgabe ä"),
      u"Vorgabe ä");
  EXPECT_EQ(SystemErrorText(HResult(0xA0ABCDEF)), u"Systemfehler A0ABCDEF");
  const UnicodeString known = SystemErrorText(kClassNotRegistered);
  EXPECT_FALSE(known.empty());
  EXPECT_NE(known.back(), u'\n');
}
