#include "app/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(CommandLineTest, SplitsAtBlanksOutsideQuotes) {
  struct {
    TextView Text;
    std::vector<UnicodeString> Arguments;
  } const cases[] = {
      {u"", {}},
      {u"velmora.exe", {}},
      {u"\"C:\\Pro gramme\\v.exe\"  \t ", {}},
      {u"v.exe /P\tC:\\a.ipt\nC:\\l.txt", {u"/P", u"C:\\a.ipt", u"C:\\l.txt"}},
      {u"v.exe /P \"D:\\Mein Teil.ipt\" 4 5", {u"/P", u"D:\\Mein Teil.ipt", u"4", u"5"}},
      {u"v.exe \"/P \" x", {u"/P ", u"x"}},
      {u"v.exe /R \"C:\\Ordner\\\" x", {u"/R", u"C:\\Ordner\\", u"x"}},
      {u"v.exe /E \"ohne Ende x", {u"/E", u"ohne Ende x"}},
      {u"v.exe \"\" /P", {}},
      {u"v.exe /P \"\" C:\\l.txt", {u"/P"}},
      {u"v.exe /P Tür's&Co.ipt €\U0001F600", {u"/P", u"Tür's&Co.ipt", u"€\U0001F600"}},
  };
  for (const auto& test : cases) {
    const TCommandLine line(test.Text);
    std::vector<UnicodeString> arguments;
    for (int i = 1; i <= line.Count(); ++i) arguments.push_back(line.Argument(i));
    EXPECT_EQ(arguments, test.Arguments) << Utf8FromText(test.Text);
    EXPECT_EQ(line.Argument(line.Count() + 1), u"");
  }
}
