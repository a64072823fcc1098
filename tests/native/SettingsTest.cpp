#include "app/Settings.h"

#include <algorithm>
#include <string>

#include "tests/support/ProgramTest.h"

namespace {

class SettingsTest : public TProgramTest {};

}  // namespace

TEST_F(SettingsTest, ParsesDecimalAndDollarHexadecimal) {
  const struct {
    TextView Text;
    std::int32_t Value;
  } cases[] = {{u"0", 0},     {u" 7", 7},         {u"-1", -1},    {u"+5", 5},
               {u"$fF", 255}, {u"$FFFFFFFF", -1}, {u"-$10", -16}, {u"-2147483648", -2147483647 - 1}};
  for (const auto& test : cases) EXPECT_EQ(IntegerFromText(test.Text), test.Value) << Utf8FromText(test.Text);
  for (const TextView text : std::initializer_list<TextView>{u"", u"$", u"-", u"1 ", u"0x1", u"nein", u"1,5",
                                                             u"2147483648", u"$100000000"}) {
    EXPECT_EQ(IntegerFromText(text), std::nullopt) << Utf8FromText(text);
  }
}

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
