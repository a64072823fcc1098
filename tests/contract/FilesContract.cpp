#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "tests/support/InputOutputCode.h"

// What every back end owes to the callers of the files and folders.

TEST(FilesContract, WritesListsAndReadsFiles) {
  // Longer than 260 characters, with each of its parts short.
  UnicodeString folder = EnvironmentVariable(u"TEMP") + u"\\Schreiben";
  for (int i = 0; i < 6; ++i) folder += u"\\" + UnicodeString(50, u'ä');
  for (int i = 0; i < 2; ++i) ASSERT_TRUE(CreateFolders(folder + u"\\Unterordner"));
  EXPECT_TRUE(FolderExists(folder) && FolderExists(folder + u"\\"));
  EXPECT_FALSE(FolderExists(folder + u"\\fehlt\\"));
  EXPECT_FALSE(TInputFile::Open(folder).IsOpen()) << "a folder is no file";
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

TEST(FilesContract, ErrorsCarrySystemCode) {
  const UnicodeString missing = EnvironmentVariable(u"TEMP") + u"\\fehlt";
  EXPECT_EQ(InputOutputCode([&] { TInputFile::OpenShared(missing); }), 2);
  EXPECT_NE(InputOutputCode([&] { TInputFile::OpenShared(EnvironmentVariable(u"TEMP")); }), 0) << "a folder";
  EXPECT_NE(InputOutputCode([&] { ListFolder(missing); }), 0);
  EXPECT_NE(InputOutputCode([&] { TOutputFile(missing + u"\\a", TCreate::Replace); }), 0);
}
