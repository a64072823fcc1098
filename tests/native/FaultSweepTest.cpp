#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/ProgramTest.h"

// Every call of the component fails in turn, in every task, until a run survives.

namespace {

struct TSweep {
  TextView Arguments;
  std::string Document;
  std::string WritingCall;  ///< from its return on the file may differ
  std::int64_t LeastCalls;  ///< a sweep that is shorter has not gone through the task
  bool ClosesAfterFailedSave;
};

class FaultSweepTest : public TProgramTest {
 protected:
  void Sweep(const TSweep& sweep) {
    for (Simulation.FailCall = 1;; ++Simulation.FailCall) {
      SCOPED_TRACE(Simulation.FailCall);
      WriteFile(u"C:\\Teil.idw", sweep.Document);
      Simulation.FailText = u"Gesperrt durch Müller, Aufruf " + DecimalText(Simulation.FailCall);
      const auto log = Run(sweep.Arguments);
      EXPECT_EQ(LiveObjects(), 0);
      const bool written = std::ranges::count(Trace, sweep.WritingCall) != 0;
      EXPECT_EQ(ReadFile(u"C:\\Teil.idw") != sweep.Document, written);
      if (log.back() == "1500 quit") break;
      EXPECT_EQ(log.at(3), "0 error box \"Velmora\": " + Utf8FromText(Simulation.FailText));
      EXPECT_EQ(log.back(), "3600 quit") << "the timer ends the program with the box";
      if (sweep.ClosesAfterFailedSave) CheckClosed();
    }
    EXPECT_GT(Simulation.FailCall, sweep.LeastCalls);
  }

 private:
  /// Once the save has begun, both are closed whatever fails; before it, neither.
  void CheckClosed() {
    const auto called = [this](std::string_view name) {
      return std::ranges::any_of(Trace, [name](const auto& line) { return line.starts_with(name); });
    };
    EXPECT_EQ(called("document.CloseDocument"), called("server.SaveSet"));
    EXPECT_EQ(called("server.CloseServer"), called("server.SaveSet"));
  }
};

}  // namespace

TEST_F(FaultSweepTest, LeavesNothingHalfDone) {
  const std::string properties = TextProperty("A", "1") + "," + TextProperty("INTZUSTAND-EOF", "a") + "," +
                                 TextProperty("IndexHinweis", "alt");
  WriteFile(u"C:\\Liste.txt", "A\n2\nB\n3\nINTZUSTAND-EOF\nb\n");
  Sweep({u"/P C:\\Teil.idw C:\\Liste.txt", DocumentWith(properties), "propertysets.WritePropertiesToFile()",
         60, false});
  Sweep({u"/R C:\\Teil.idw", DocumentWith("", R"("references": ["X:\\a.ipt", "X:\\b.iam"],)"),
         "saveset.ExecuteSave()", 16, true});
  Sweep({u"/RI C:\\Teil.idw", DocumentWith(properties), "propertysets.WritePropertiesToFile()", 20, false});
}
