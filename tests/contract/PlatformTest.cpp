#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "platform/Text.h"
#include "tests/support/InputOutputCode.h"

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

TEST(FilesContract, FilesAreWrittenListedAndRead) {
  // Longer than 260 characters, with each of its parts short.
  UnicodeString folder = EnvironmentVariable(u"TEMP") + u"\\Schreiben";
  for (int i = 0; i < 6; ++i) folder += u"\\" + UnicodeString(50, u'ä');
  ASSERT_TRUE(CreateFolders(folder + u"\\Unterordner"));
  const UnicodeString path = folder + u"\\Öl.txt";

  TOutputFile file(path, TCreate::Replace);
  file.Write(std::string("0123456789"));
  file.WriteAt(3, std::string("DEF"));
  file.Write(std::string("ab"));
  file.Close();
  EXPECT_THROW(TOutputFile(path, TCreate::New), EError) << "it is there";

  std::vector<TFolderEntry> entries = ListFolder(folder);
  std::ranges::sort(entries, {}, &TFolderEntry::Name);
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].Name, u"Unterordner");
  EXPECT_EQ(entries[0].Kind, TEntryKind::Folder);
  EXPECT_EQ(entries[1].Name, u"Öl.txt");
  EXPECT_EQ(entries[1].Kind, TEntryKind::File);
  EXPECT_EQ(entries[1].Size, 12U);

  TInputFile input = TInputFile::OpenShared(path);
  const TInputFile::TState state = input.State();
  EXPECT_EQ(state.Size, 12U);
  EXPECT_GE(state.Modified.Year, 2024);
  EXPECT_EQ(state.Modified.Minute, entries[1].Modified.Minute);
  TOutputFile(path, TCreate::Replace).Write(std::string("neu"));
  std::string bytes(20, ' ');
  bytes.resize(input.Read(bytes));
  EXPECT_EQ(bytes, "neu") << "others may write what is open for shared reading";
  TOutputFile(path, TCreate::Replace).WriteAt(std::uint64_t{5} << 30, std::string("x"));
  EXPECT_EQ(input.State().Size, (std::uint64_t{5} << 30) + 1) << "beyond 32 bits";
  TOutputFile(path, TCreate::Replace).Close();
}

TEST(FilesContract, ErrorsCarryTheSystemsCode) {
  const UnicodeString missing = EnvironmentVariable(u"TEMP") + u"\\fehlt";
  EXPECT_EQ(InputOutputCode([&] { TInputFile::OpenShared(missing); }), 2);
  EXPECT_NE(InputOutputCode([&] { TInputFile::OpenShared(EnvironmentVariable(u"TEMP")); }), 0) << "a folder";
  EXPECT_NE(InputOutputCode([&] { ListFolder(missing); }), 0);
  EXPECT_NE(InputOutputCode([&] { TOutputFile(missing + u"\\a", TCreate::Replace); }), 0);
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
