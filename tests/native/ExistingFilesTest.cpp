#include "platform/ExistingFiles.h"

#include "tests/support/TestMachine.h"

using headless::Machine;

class ExistingFilesTest : public TMachineTest {
 protected:
  /// How often the system is asked about `rows` rows, spread over `folders` folders below `root`. Only the
  /// first file of each folder of C: is there.
  static std::int64_t Questions(TextView root, int folders, int rows) {
    TExistingFiles files;
    const std::int64_t before = Machine().CallCount;
    for (int row = 0; row < rows; ++row) {
      UnicodeString path(root);
      path.append(DecimalText(row % folders))
          .append(u"\\")
          .append(DecimalText(row / folders))
          .append(u".ipt");
      EXPECT_EQ(files.Exists(path), row < folders && root.starts_with(u'C')) << Utf8FromText(path);
    }
    return Machine().CallCount - before;
  }
};

TEST_F(ExistingFilesTest, AsksFewQuestions) {
  for (int i = 0; i < 40; ++i) WriteFile(u"C:\\P\\" + DecimalText(i) + u"\\0.ipt", "");
  EXPECT_EQ(Questions(u"C:\\P\\", 40, 10'000), 1 + 40 * 5)
      << "the drive, and for each folder four and a listing";
  EXPECT_EQ(Questions(u"C:\\P\\", 40, 40), 1 + 40);
  EXPECT_EQ(Questions(u"\\\\Server\\Freigabe\\", 40, 40), 1) << "does not answer";
  EXPECT_EQ(Questions(u"Z:\\", 40, 10'000), 1) << "does not answer";
}

TEST_F(ExistingFilesTest, AsksWhereListingCannotTell) {
  WriteFile(u"C:\\P\\Datei", "");
  std::filesystem::create_symlink("Datei", headless::HostPath(u"C:\\P\\zur Datei"));
  std::filesystem::create_symlink("../P", headless::HostPath(u"C:\\P\\zum Ordner"));
  std::filesystem::create_symlink("fehlt", headless::HostPath(u"C:\\P\\ins Leere"));
  TExistingFiles files;
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(files.Exists(u"C:\\P\\Datei"));
    EXPECT_TRUE(files.Exists(u"C:\\P\\zur Datei"));
    EXPECT_FALSE(files.Exists(u"C:\\P\\zum Ordner"));
    EXPECT_FALSE(files.Exists(u"C:\\P\\ins Leere"));
  }
}
