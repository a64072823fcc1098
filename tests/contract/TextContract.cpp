#include "platform/Text.h"

#include <gtest/gtest.h>

#include <string>

// What every back end owes to the callers of the texts, and the conversions that both share.

TEST(TextContract, IgnoresCaseByLocale) {
  struct {
    TextView A;
    TextView B;
    bool Same;
  } const cases[] = {
      {u"", u"", true},         {u"", u"A", false},
      {u"Name", u"nAME", true}, {u"Größe", u"GRÖSSE1", false},
      {u"ÄÖÜé", u"äöüÉ", true}, {u"Name", u"Name ", false},
      {u"a", u"ä", false},      {u"A=B", u"a=b", true},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(SameText(test.A, test.B), test.Same) << Utf8FromText(test.A) << " / " << Utf8FromText(test.B);
    EXPECT_EQ(SameTextKey(test.A) == SameTextKey(test.B), test.Same) << "keys of " << Utf8FromText(test.A);
  }
}

TEST(TextContract, ConvertsUtf8) {
  const TextView text = u"aÄ€\U0001F600";
  EXPECT_EQ(Utf8FromText(text), "a\xC3\x84\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(TextFromUtf8(Utf8FromText(text)), text);
  EXPECT_EQ(Utf8FromText(UnicodeString(1, char16_t{0xD800}) + u"x"), "\xEF\xBF\xBDx");
}
