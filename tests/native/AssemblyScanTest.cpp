#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/Session.h"
#include "export/AssemblyScan.h"
#include "export/WorkingTable.h"
#include "platform/Path.h"
#include "tests/support/ProgramTest.h"

namespace {

using TLines = std::vector<std::string>;

/// A file below C:\P; without references it is not a document but anything else that exists.
struct TFile {
  std::string Name;
  TLines References;
};

class AssemblyScanTest : public TProgramTest {
 protected:
  AssemblyScanTest() {
    fDatabase.Folder = u"C:\\Temp";
    fSession.Open();
    fDatabase.Open();
  }

  static void WriteTree(const std::vector<TFile>& files) {
    for (const TFile& file : files) {
      std::string references;
      for (const std::string& name : file.References) {
        references += (references.empty() ? "" : ", ") + ("\"" + name + "\"");
      }
      WriteFile(u"C:\\P\\" + TextFromUtf8(file.Name), R"({"references": [)" + references + "]}");
    }
  }

  /// Scans C:\P\<name> into a new table; returns the error's text, or an empty one.
  UnicodeString Scan(const std::string& name) {
    StartComponent();
    CreateWorkingTable(fQuery, u"PC-01");
    TExistingFiles files;
    TAssemblyScan scan(fQuery, files);
    scan.OnRootOpened = [](const UnicodeString&) {};
    scan.OnLevelScanned = [] {};
    try {
      scan.FirstOpenAssembly(u"C:\\P\\" + TextFromUtf8(name));
    } catch (const EError& error) {
      return error.Message();
    }
    return u"";
  }

  /// Each row as "AutoID<Parent ImgIndex IamIndex Filename", the folder C:\P left out.
  TLines Rows() {
    TLines rows;
    for (fQuery.First(); !fQuery.Eof(); fQuery.Next()) {
      const auto text = [this](TextView field) { return Utf8FromText(fQuery.Field(field).AsText()); };
      std::string file = text(u"Filename");
      if (file.starts_with("C:\\P\\")) file.erase(0, 5);
      rows.push_back(text(u"AutoID") + "<" + text(u"Parent") + " " + text(u"ImgIndex") + " " +
                     text(u"IamIndex") + " " + file);
    }
    return rows;
  }

  TSession fSession;
  TDatabase fDatabase{fSession};
  TQuery fQuery{fDatabase};
};

}  // namespace

TEST_F(AssemblyScanTest, EntersFilesDepthFirst) {
  struct {
    const char* Name;
    std::vector<TFile> Files;
    TLines Rows;
  } const cases[] = {
      {"leer", {{"leer.iam", {}}}, {"1<-1 94 0 leer.iam"}},
      {"Zeichnung neben der Wurzel",
       {{"z.iam", {"a.ipt", "b.ipt"}}, {"z.idw", {}}},
       {"1<-1 94 2 z.iam", "2<0 95 2 z.idw", "3<2 93 1 a.ipt", "4<2 93 2 b.ipt"}},
      {"ein Teil in zwei Baugruppen",
       {{"g.iam", {"u1.iam", "u2.iam"}}, {"u1.iam", {"t.ipt"}}, {"u2.iam", {"t.ipt"}}},
       {"1<-1 94 2 g.iam", "2<1 94 1 u1.iam", "3<2 93 1 t.ipt", "4<1 94 2 u2.iam", "5<4 93 1 t.ipt"}},
      {"Zeichnungen: hinter dem Teil, vor der Baugruppe",
       {{"r.iam", {"t.ipt", "v.iam", "w.iam", "x.ipt"}},
        {"v.iam", {"i.ipt"}},
        {"w.iam", {}},
        {"t.idw", {}},
        {"v.idw", {}}},
       {"1<-1 94 4 r.iam", "2<1 93 1 t.ipt", "3<1 95 1 t.idw", "4<1 95 2 v.idw", "5<1 94 2 v.iam",
        "6<5 93 1 i.ipt", "7<1 94 3 w.iam", "8<1 93 4 x.ipt"}},
      {"Endungen; nur .ipt ist ein Teil, die Datei muss es nicht geben",
       {{"e.iam", {"A.IPT", "B.Ipt", "c.IAM", "d.ipn", "ä.teil.ipt", "D:/fehlt\\\\f.ipt"}},
        {"c.IAM", {}},
        {"d.ipn", {}}},
       {"1<-1 94 6 e.iam", "2<1 93 1 A.IPT", "3<1 93 2 B.Ipt", "4<1 94 3 c.IAM", "5<1 94 4 d.ipn",
        "6<1 93 5 ä.teil.ipt", "7<1 93 6 D:/fehlt\\f.ipt"}},
      {"ein Ordner ist keine Zeichnung", {{"o.iam", {}}, {"o.idw/x", {}}}, {"1<-1 94 0 o.iam"}},
  };
  for (const auto& test : cases) {
    WriteTree(test.Files);
    EXPECT_EQ(Scan(test.Files[0].Name), u"") << test.Name;
    EXPECT_EQ(Rows(), test.Rows) << test.Name;
    EXPECT_EQ(LiveObjects(), 0) << test.Name;
  }
}

TEST_F(AssemblyScanTest, OpensOneServerPerLevel) {
  WriteFile(u"C:\\P\\w.iam", R"({"displayName": "Wurzel", "references": ["u.iam"]})");
  WriteFile(u"C:\\P\\u.iam", R"({"references": [{"file": "t.ipt", "displayName": "Teil:1"}]})");
  ASSERT_EQ(Scan("w.iam"), u"");
  EXPECT_EQ(
      Trace,
      (TLines{"server.Create", "server.OpenDocument(\"C:\\P\\w.iam\")", "document.DisplayName = \"Wurzel\"",
              "document.DisplayName = \"Wurzel\"", "document.ReferencedFiles", "referencedfiles.Count = 1",
              "server.CloseServer()", "document.Release", "server.Release",
              //
              "server.Create", "server.OpenDocument(\"C:\\P\\w.iam\")", "document.ReferencedFiles",
              "referencedfiles.Count = 1", "document.ReferencedFiles", "referencedfiles.Item(1)",
              "referencedfile.FullFileName = \"C:\\P\\u.iam\"", "document.ReferencedFiles",
              "referencedfiles.Item(1)", "referencedfile.DisplayName = \"u.iam\"",
              //
              "server.Create", "server.OpenDocument(\"C:\\P\\u.iam\")", "document.ReferencedFiles",
              "referencedfiles.Count = 1", "document.ReferencedFiles", "referencedfiles.Item(1)",
              "referencedfile.FullFileName = \"C:\\P\\t.ipt\"", "document.ReferencedFiles",
              "referencedfiles.Item(1)", "referencedfile.DisplayName = \"Teil:1\"", "server.CloseServer()",
              "document.Release", "server.Release",
              //
              "server.CloseServer()", "document.Release", "server.Release"}));
  fQuery.GoTo(2);
  const auto text = [this](TextView field) { return fQuery.Field(field).AsText(); };
  EXPECT_EQ(text(u"DisplayName"), u"Teil:1");
  EXPECT_EQ(text(u"DoCopy") + text(u"DTID") + text(u"Tabelle") + text(u"NewID"), u"10-1");
  EXPECT_TRUE(fQuery.Field(u"NewFilename").IsNull());
}

TEST_F(AssemblyScanTest, FaultsKeepEnteredRows) {
  WriteTree({{"eins.iam", {"zwei.iam", "zwei.iam"}}, {"zwei.iam", {"drei.iam"}}, {"drei.iam", {}}});
  EXPECT_EQ(Scan("eins.iam"), u"") << "beside itself it may stand";
  std::filesystem::remove(headless::HostPath(u"C:\\P\\drei.iam"));
  std::filesystem::create_symlink("eins.iam", headless::HostPath(u"C:\\P\\drei.iam"));
  EXPECT_EQ(Scan("eins.iam"),
            u"Die Datei \"C:\\P\\drei.iam\" verweist auf sich selbst, auch über andere Dateien.");
  EXPECT_EQ(Rows(), (TLines{"1<-1 94 2 eins.iam", "2<1 94 1 zwei.iam", "3<2 94 1 drei.iam"}));
  EXPECT_EQ(LiveObjects(), 0);

  // Nor is a file lost that no server opens.
  WriteTree({{"k.iam", {"ohne", "a.ipt"}}});
  EXPECT_NE(Scan("k.iam"), u"");
  EXPECT_EQ(Rows(), (TLines{"1<-1 94 2 k.iam", "2<1 94 1 ohne"}));
}

TEST_F(AssemblyScanTest, DepthHasNoLimit) {
  constexpr int kDepth = 10'000;
  const auto load = [](const UnicodeString& path) {
    const int level = std::stoi(Utf8FromText(FileNameWithoutFolder(path)));
    return level == kDepth ? "{}" : R"({"references": [")" + std::to_string(level + 1) + ".iam\"]}";
  };
  TSimulator simulator({load, {}}, {});
  headless::Machine().CreateInstance = [&](const TGuid&, const TGuid&) { return simulator.CreateServer(); };
  CreateWorkingTable(fQuery, u"PC-01");
  TExistingFiles files;
  TAssemblyScan scan(fQuery, files);
  scan.OnRootOpened = [](const UnicodeString&) {};
  scan.OnLevelScanned = [] {};
  scan.FirstOpenAssembly(u"C:\\P\\1.iam");
  EXPECT_EQ(fQuery.RowCount(), kDepth);
  EXPECT_EQ(simulator.LiveObjects(), 0);
}
