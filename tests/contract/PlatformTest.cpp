#include <gtest/gtest.h>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "platform/Text.h"

// What every back end owes to the callers of the texts, files and system calls.

TEST(TextContract, ComparesWithoutRegardToCaseByTheLocale) {
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

TEST(TextContract, ReadsBytesThroughTheAnsiCodePage) {
  EXPECT_EQ(TextFromAnsi("Gr\xF6\xDF"
                         "e \x80 \x95"),
            u"Größe € •");
  EXPECT_EQ(TextFromAnsi("\xEF\xBB\xBF"), u"ï»¿");
  EXPECT_EQ(TextFromAnsi(""), u"");
}

TEST(FilesContract, FoldersAreCreatedWithTheirParents) {
  const UnicodeString top = EnvironmentVariable(u"TEMP") + u"\\Vertrag ä";
  const UnicodeString folder = top + u"\\Eins\\Zwei";
  EXPECT_FALSE(FolderExists(top + u"\\fehlt\\"));
  EXPECT_TRUE(CreateFolders(folder));
  EXPECT_TRUE(FolderExists(folder));
  EXPECT_TRUE(FolderExists(folder + u"\\"));
  EXPECT_TRUE(CreateFolders(folder)) << "one that is there";
  EXPECT_FALSE(TInputFile::Open(folder).IsOpen()) << "a folder is no file";
  EXPECT_FALSE(TInputFile::Open(folder + u"\\fehlt.txt").IsOpen());
}

TEST(SystemContract, MissingThingsGiveTheirDefaults) {
  EXPECT_EQ(EnvironmentVariable(u"VELMORA_GIBT_ES_NICHT"), u"");
  EXPECT_EQ(
      ReadProfileText(EnvironmentVariable(u"TEMP") + u"\\fehlt.ini", u"Inventor", u"Schlüssel", u"Vorgabe ä"),
      u"Vorgabe ä");
  EXPECT_EQ(SystemErrorText(HResult(0xA0ABCDEF)), u"Systemfehler A0ABCDEF");
  const UnicodeString known = SystemErrorText(kClassNotRegistered);
  EXPECT_FALSE(known.empty());
  EXPECT_NE(known.back(), u'\n');
}
