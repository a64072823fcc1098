#include "platform/FileOperations.h"

#include <gtest/gtest.h>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/System.h"

// What every back end owes to the export. Not here: links, which not every user of Windows may make, and the
// calls while a file is copied, which Wine leaves out.

TEST(FileOperationsContract, NormalisesPaths) {
  struct {
    TextView Path;
    TextView Normalised;
  } const cases[] = {
      {u"C:\\", u"C:"},
      {u"C:/P//Größe.iam/", u"C:\\P\\Größe.iam"},
      {u"C:\\..\\P\\.\\q\\..\\r", u"C:\\P\\r"},
      {u"C:\\P\\..", u"C:"},
      {u"C:\\P\\...\\", u"C:\\P"},
      {u"C:\\P\\q. .", u"C:\\P\\q"},
      {u"C:\\P\\q~1\\x:y", u"C:\\P\\q~1\\x:y"},  // no short name of anything
      {u"\\\\?\\C:\\P\\q", u"C:\\P\\q"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Utf8FromText(NormalisedPath(test.Path)), Utf8FromText(test.Normalised));
  }
  const UnicodeString longPath = u"C:\\P\\" + UnicodeString(200, u'ä') + u"\\" + UnicodeString(200, u'ö');
  EXPECT_EQ(NormalisedPath(longPath + u"\\"), longPath);
}

TEST(FileOperationsContract, CopiesRenamesAndRemoves) {
  const UnicodeString folder = EnvironmentVariable(u"TEMP") + u"\\Umgang ß";
  const auto path = [&folder](TextView name) { return (folder + u"\\").append(name); };
  const auto read = [&path](TextView name) {
    std::string bytes(100, ' ');
    bytes.resize(FileExists(path(name)) ? TInputFile::OpenShared(path(name)).Read(bytes) : 0);
    return bytes;
  };
  TRetryBudget budget(2'000);
  RemoveFolder(folder, budget);
  const UnicodeString deep = UnicodeString(120, u'e') + u"\\" + UnicodeString(120, u'ü');
  for (const TextView name : {TextView(deep), TextView(u"Ordner")}) ASSERT_TRUE(CreateFolders(path(name)));
  TOutputFile(path(u"lang"), TCreate::New).Write(std::string("ein längerer Inhalt als der neue"));
  TOutputFile(path(u"Öl \U0001F529 & 'x' %TEMP%"), TCreate::New).Write(std::string("neu"));
  struct {
    UnicodeString From;
    UnicodeString To;
    bool Copied;
    std::string Content;
  } const copies[] = {
      {u"Öl \U0001F529 & 'x' %TEMP%", u"lang", true, "neu"},
      {u"lang", deep + u"\\tief", true, "neu"},
      {deep + u"\\tief", u"b", true, "neu"},
      {u"fehlt", u"b", false, "neu"},
      {u"Ordner", u"b", false, "neu"},
      {u"b", u"fehlt\\x", false, ""},
      {u"b", u"Ordner", false, ""},
  };
  for (const auto& test : copies) {
    EXPECT_EQ(CopyFileOver(path(test.From), path(test.To), budget), test.Copied) << Utf8FromText(test.To);
    EXPECT_EQ(read(test.To), test.Content) << Utf8FromText(test.To);
  }
  EXPECT_FALSE(IsLink(path(u"b")) || IsLink(path(u"Ordner")) || IsLink(path(u"fehlt")));

  EXPECT_THROW(RenameFile(path(u"fehlt"), path(u"b"), budget), EError);
  EXPECT_THROW(RenameFile(path(u"b"), path(u"fehlt\\b"), budget), EError);
  EXPECT_THROW(RenameFile(path(u"b"), path(u"Ordner"), budget), EError);
  TOutputFile(path(u"c"), TCreate::New).Write(std::string("c"));
  RenameFile(path(u"c"), path(u"b"), budget);
  EXPECT_EQ(read(u"b"), "c");
  RemoveFile(path(u"b"), budget);
  EXPECT_THROW(RemoveFile(path(u"b"), budget), EError);
  RemoveFolder(folder, budget);
  EXPECT_FALSE(FolderExists(folder));
}

TEST(FileOperationsContract, IdentifiesFiles) {
  const UnicodeString folder = EnvironmentVariable(u"TEMP") + u"\\Kennung";
  TRetryBudget budget(0);
  ASSERT_TRUE(CreateFolders(folder));
  const auto identity = [&folder](TextView name) { return IdentityOf((folder + u"\\").append(name)); };
  for (const TextView name : {u"a", u"b"})
    TOutputFile((folder + u"\\").append(name), TCreate::Replace).Close();
  EXPECT_TRUE(identity(u"a") && identity(u"b") && identity(u"."));
  EXPECT_EQ(identity(u"a"), identity(u"..\\Kennung\\a"));
  EXPECT_NE(identity(u"a"), identity(u"b"));
  EXPECT_NE(identity(u"a"), identity(u"."));
  EXPECT_EQ(identity(u"c"), std::nullopt);
  EXPECT_TRUE(SameText(ResolvedPath(folder + u"\\..\\Kennung\\c\\d"), ResolvedPath(folder) + u"\\c\\d"));
  RemoveFolder(folder, budget);
}
