#include "platform/ExistingFiles.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/System.h"

// What it says about files must be what the system says, whether the folder has been listed or not.

TEST(ExistingFilesContract, AnswersAsSystemDoes) {
  const UnicodeString folder = EnvironmentVariable(u"TEMP") + u"\\Vorhanden ß";
  const UnicodeString deep = folder + u"\\" + UnicodeString(120, u'e') + u"\\" + UnicodeString(120, u'ü');
  for (const TextView name : {TextView(u"\\Ordner.ipt"), TextView(u"\\leer")}) {
    ASSERT_TRUE(CreateFolders(UnicodeString(folder).append(name)));
  }
  ASSERT_TRUE(CreateFolders(deep));
  for (const UnicodeString& name : {folder + u"\\Größe.ipt", folder + u"\\Ein langer Name.idw",
                                    folder + u"\\~a", folder + u"\\4711", deep + u"\\tief.ipt"}) {
    TOutputFile(name, TCreate::Replace).Close();
  }
  std::vector<UnicodeString> paths = {u"",
                                      u"Größe.ipt",
                                      folder,
                                      folder + u"\\",
                                      u"\\\\?\\" + folder + u"\\4711",
                                      deep + u"\\tief.ipt",
                                      deep + u"\\fehlt.ipt"};
  const std::vector<std::vector<TextView>> kinds = {
      {u"Größe.ipt", u"GRÖSSE.IPT", u"GRÖßE.IPT", u"größe.IPT", u"fehlt.ipt", u"Ordner.ipt", u"ordner.IPT",
       u"~a", u"~b"},
      {u"Größe.ipt.", u"Größe.ipt . ", u" Größe.ipt", u"*.ipt", u"Gr??e.ipt", u"Ein langer Name.idw",
       u"EINLAN~1.IDW"},
      {u"4711", u"4711:Strom", u"4711::$DATA", u"4711\\", u"4711\\x", u"NUL", u"nul.txt", u"COM1", u"Com",
       u"CONIN$"},
      {u"leer", u".", u".\\4711", u"..\\4711", u"leer/4711", u"leer\\4711", u"leer\\..\\4711",
       u"fehlt\\4711"},
  };
  for (const auto& names : kinds) {
    for (const TextView name : names) {
      for (const TextView separator : {u"\\", u"/", u"\\\\"}) {
        paths.push_back(UnicodeString(folder).append(separator).append(name));
      }
    }
  }
  TExistingFiles files;
  for (int round = 0; round < 6; ++round) {
    for (const UnicodeString& path : paths) {
      EXPECT_EQ(files.Exists(path), FileExists(path)) << round << ": " << Utf8FromText(path);
    }
  }
  TOutputFile(folder + u"\\später", TCreate::Replace).Close();
  EXPECT_FALSE(files.Exists(folder + u"\\später")) << "the folder was listed before";
  EXPECT_TRUE(TExistingFiles().Exists(folder + u"\\später"));
}
