#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/System.h"
#include "tests/support/ProgramTest.h"

namespace {

using headless::Machine;

class MainDlgTest : public TProgramTest {
 protected:
  static constexpr TextView kRun = u"/P C:\\Teil.ipt C:\\Liste.txt";

  void SetUp() override {
    WriteFile(u"C:\\Teil.ipt", DocumentWith(TextProperty("A", "1")));
    WriteFile(u"C:\\Liste.txt", "A\n2\nB\n3\n");
  }
};

}  // namespace

TEST_F(MainDlgTest, ShowsWorkThenResultThenCloses) {
  Simulation.DelayMilliseconds =
      5000;  // longer than the timer: no event of it may get through during the task
  EXPECT_EQ(Run(kRun), (std::vector<std::string>{
                           "0 text \"Properties werden aktualisiert...\"",
                           "0 show 490,477 300x70",
                           "0 paint \"Properties werden aktualisiert...\"",
                           "5000 text \" ein Propertie neu angelegt...\rkeine Properties aktualisiert...\"",
                           "5000 paint \" ein Propertie neu angelegt...\rkeine Properties aktualisiert...\"",
                           "6500 quit",
                       }));
  EXPECT_EQ(LiveObjects(), 0);
  Machine().Dpi = 192;
  const auto log = Run(u"/RI C:\\Teil.ipt");
  EXPECT_EQ(log.at(1), "0 show 490,477 600x140");
  EXPECT_EQ(log.back(), "6500 quit");
}

TEST_F(MainDlgTest, ClosesOnlyWithoutArguments) {
  struct {
    TextView Arguments;
    std::vector<std::string> Log;
  } const cases[] = {
      {u"", {"0 quit"}},
      {u"\"\" /P", {"0 quit"}},
      {u"/p C:\\Teil.ipt", {"0 show 490,477 300x70", "0 paint \"\"", "0 idle"}},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Run(test.Arguments), test.Log) << Utf8FromText(test.Arguments);
    EXPECT_TRUE(Trace.empty());
  }
}

TEST_F(MainDlgTest, ShowsErrorsUntilTheTimerEnds) {
  struct {
    int FailCall;
    UnicodeString FailText;
    std::int32_t FailResult;
    std::int32_t RefuseCreation;
    UnicodeString Message;
  } const cases[] = {
      {2, u"Erste Zeile\r\nZweite Zeile", kUnspecifiedError, 0, u"Erste Zeile\r\nZweite Zeile"},
      {2, UnicodeString(u"\0Gesperrt", 9), HResult(0xA0ABCDEF), 0, u"Systemfehler A0ABCDEF"},
      {2, UnicodeString(u"Ge\0sperrt", 9), kUnspecifiedError, 0, u"Gesperrt"},
      {2, UnicodeString(30'000, u'x'), kUnspecifiedError, 0, UnicodeString(2048, u'x') + u"…"},
      {2, u"a" + UnicodeString(200, u'\n'), kUnspecifiedError, 0, u"a" + UnicodeString(39, u'\n') + u"…"},
      {2, u"", HResult(0xA0ABCDEF), 0, u"Systemfehler A0ABCDEF"},
      {0, u"", kUnspecifiedError, kClassNotRegistered, SystemErrorText(kClassNotRegistered)},
  };
  for (const auto& test : cases) {
    Simulation.FailCall = test.FailCall;
    Simulation.FailText = test.FailText;
    Simulation.FailResult = test.FailResult;
    RefuseCreation = test.RefuseCreation;
    Machine().PressOkAfter = {100};
    const auto log = Run(kRun);
    EXPECT_EQ(log.at(3), "0 error box \"Velmora\": " + Utf8FromText(test.Message));
    EXPECT_EQ(log.back(), "3600 quit");
    EXPECT_EQ(LiveObjects(), 0);
  }
}

TEST_F(MainDlgTest, TellsWhatSigningOutWaitsFor) {
  for (const TextView task : {kRun, TextView(u"/R C:\\Teil.ipt"), TextView(u"/RI C:\\Teil.ipt")}) {
    Run(task);
    EXPECT_EQ(ReasonAtWork, u"Ein Dokument wird geschrieben.") << Utf8FromText(task);
    EXPECT_EQ(Machine().ShutdownReason, u"");
  }
}
