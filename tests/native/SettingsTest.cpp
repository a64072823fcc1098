#include "app/Settings.h"

#include <algorithm>
#include <string>

#include "tests/support/ProgramTest.h"

namespace {

class SettingsTest : public TProgramTest {};

}  // namespace

// The fuzz target compares the integers with the standard library's reading.
TEST_F(SettingsTest, ReadsSettings) {
  struct {
    const char* Lines;
    bool RemovesHint;
  } const cases[] = {
      {"", true},
      {"INV_AutoRemoveHint=0x0", false},
      {"INV_AutoRemoveHint=0x", true},
      {"INV_AutoRemoveHint=0X0", false},
      {"INV_AutoRemoveHint=False", true},
      {"INV_IndexHint=\nINV_AutoRemoveHint=0", false},
  };
  WriteFile(u"C:\\Liste.txt", "A\n2\nB\n3\n");
  Simulation.PastEnd = TPastEnd::Empty;
  for (const auto& test : cases) {
    WriteFile(u"C:\\Users\\Größe\\AppData\\VelMora\\Velmora.ini",
              std::string("[Andere]\r\nINV_AutoRemoveHint=0\r\n[inventor]\r\n") + test.Lines);
    WriteFile(u"C:\\Teil.ipt", DocumentWith(TextProperty("IndexHinweis", "alt")));
    Run(u"/P C:\\Teil.ipt C:\\Liste.txt");
    EXPECT_EQ(std::ranges::count(Trace, "property.Delete()") != 0, test.RemovesHint) << test.Lines;
  }
}
