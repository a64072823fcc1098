#include "platform/FileOperations.h"

#include <sys/resource.h>

#include <csignal>

#include "platform/Files.h"
#include "tests/support/TestMachine.h"

class FileOperationsTest : public TMachineTest {};

TEST_F(FileOperationsTest, DoesNotFollowLinks) {
  WriteFile(u"C:\\Quelle\\a", "a");
  WriteFile(u"C:\\neu", "neu");
  CreateFolders(u"C:\\Ordner");
  for (const char* target : {"../Quelle/a", "../Quelle", "../fehlt"}) {
    const TextView link = u"C:\\Ordner\\Verweis";
    std::filesystem::create_symlink(target, headless::HostPath(link));
    EXPECT_TRUE(IsLink(link)) << target;
    EXPECT_TRUE(CopyFileOver(u"C:\\neu", link, [] {})) << target;
    EXPECT_FALSE(IsLink(link)) << target;
    RemoveFile(link);
    std::filesystem::create_symlink(target, headless::HostPath(link));
    RemoveFolder(link);
    std::filesystem::create_symlink(target, headless::HostPath(link));
    RemoveFolder(u"C:\\Ordner");
    EXPECT_TRUE(CreateFolders(u"C:\\Ordner"));
  }
  EXPECT_EQ(ReadFile(u"C:\\Quelle\\a"), "a");
  EXPECT_FALSE(FileExists(u"C:\\fehlt"));
}

TEST_F(FileOperationsTest, FailedCopyLeavesNoFile) {
  WriteFile(u"C:\\groß", std::string(600'000, 'x'));
  WriteFile(u"C:\\alt", "alt");
  std::filesystem::permissions(headless::HostPath(u"C:\\alt"), std::filesystem::perms::owner_read);
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit full{500'000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  EXPECT_FALSE(CopyFileOver(u"C:\\groß", u"C:\\alt", [] {}));
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_FALSE(FileExists(u"C:\\alt"));
}
