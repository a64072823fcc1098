#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "app/Settings.h"
#include "app/UpdateReport.h"

// Rules of text that need nothing around them.

TEST(CommandLine, IsSplitAtBlanksOutsideQuotes) {
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

TEST(Settings, IntegersAreDecimalOrHexadecimalBehindADollar) {
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

TEST(UpdateReport, HasALineForEachCount) {
  struct {
    int Created;
    int Updated;
    TextView Text;
  } const cases[] = {
      {0, 0, u" keine neue Properties angelegt...\rkeine Properties aktualisiert..."},
      {1, 1, u" ein Propertie neu angelegt...\r ein Propertie aktualisiert..."},
      {3, 0, u"3 Properties neu angelegt...\rkeine Properties aktualisiert..."},
      {2, 5, u"2 Properties neu angelegt...\r2 Properties aktualisiert..."},
      {-1, 0, u"\rkeine Properties aktualisiert..."},
      {-1, -1, u""},
  };
  for (const auto& test : cases) EXPECT_EQ(UpdateReport(test.Created, test.Updated), test.Text);
}

TEST(Text, Utf8IsConvertedBothWays) {
  const TextView text = u"aÄ€\U0001F600";
  EXPECT_EQ(Utf8FromText(text), "a\xC3\x84\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(TextFromUtf8(Utf8FromText(text)), text);
  // Each ill-formed byte is replaced: a cut-off sequence, an overlong one, a surrogate, a value out of range.
  for (const std::string bytes :
       {"\xE2\x82", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF", "\x80"}) {
    EXPECT_EQ(TextFromUtf8(bytes), UnicodeString(bytes.size(), u'\xFFFD'));
  }
  EXPECT_EQ(Utf8FromText(UnicodeString(1, char16_t{0xD800}) + u"x"), "\xEF\xBF\xBDx");
}
