#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string>
#include <vector>

#include "platform/FileOperations.h"
#include "tests/support/ExportTest.h"

namespace {

using headless::Machine;
using TDialog = headless::TDialogScreen;
using TTree = headless::TTreeListScreen;
using TLines = std::vector<std::string>;

class ExportRunTest : public TExportTest {
 protected:
  /// What an independent reader finds in the archive: "name=content" of each entry. The content is a page's
  /// text without blanks, or the first six characters of another file.
  static std::string Archive(TextView path) {
    const std::string command =
        "python3 -c 'import re, sys, zipfile\nz = zipfile.ZipFile(sys.argv[1])\nassert z.testzip() is None\n"
        "text = lambda page: re.sub(\"<[^>]*>|\\\\s\", \"\", page[page.index(\"<h1\"):])\n"
        "print(*[i.filename + \"=\" + (text if i.filename.endswith(\".html\") else lambda t: t[:6])"
        "(z.read(i).decode()) for i in z.infolist()], sep=\" \", end=\"\")' '" +
        headless::HostPath(path).string() + "' >'" + headless::HostPath(u"C:\\Leser.txt").string() + "' 2>&1";
    EXPECT_NE(std::system(command.c_str()), -1);
    return ReadFile(u"C:\\Leser.txt");
  }
};

}  // namespace

TEST_F(ExportRunTest, PacksEveryExistingFile) {
  WriteFile(u"C:\\Users\\Größe\\AppData\\VelMora\\Velmora.ini", "[ExportAsm]\r\nDestPath=C:\\Anderswo\r\n");
  WriteFile(u"C:\\Ziel\\Archiv.zip", "altes Archiv");
  WriteFile(u"C:\\Temp\\g.iam\\Rest\\übrig.txt", "Rest");
  Machine().SaveAnswers = {std::nullopt, u"C:\\Ziel\\Archiv"};
  Machine().Dpi = 144;
  std::filesystem::create_symlink(headless::HostPath(u"C:\\P\\a.ipt"),
                                  headless::HostPath(u"C:\\Temp\\g.iam\\Export.html"));
  const TLines log =
      RunExport(u"C:\\P\\g.iam", {[] {
                                    const auto widths = TTree::ColumnWidths();
                                    EXPECT_EQ(std::accumulate(widths.begin(), widths.end(), 0), 1257)
                                        << "less the margin at the left";
                                    TDialog::Press(u"Exportieren");
                                  },
                                  [] { TDialog::Press(u"Exportieren"); }});
  EXPECT_TRUE(Has(log, "show dialog 0,40 1280x945")) << "no wider than the screen";
  EXPECT_EQ(ReadFile(u"C:\\P\\a.ipt"), "erste") << "no link is followed";
  EXPECT_TRUE(
      Has(log,
          "save dialog \"Baugruppe exportieren nach\" C:\\Users\\Größe\\Desktop | g.zip | Zipdatei=.zip | "
          "zip"));
  EXPECT_EQ(Archive(u"C:\\Ziel\\Archiv.zip"),
            "Export.html=Baugruppe&quot;Getriebe&quot;3Bauteile2Baugruppen1Zeichnung1Dateifehlt*"
            "BezeichnungDatei1GetriebeC:\\P\\g.iam2GetriebeC:\\P\\g.idw3u.iamC:\\P\\u.iam"
            "4a.iptC:\\P\\a.iptGleicherDateinameauchineinemanderenOrdner5fehlt.iptC:\\P\\fehlt.ipt"
            "Dateinichtgefunden!6a.iptC:/P/q/a.iptGleicherDateinameauchineinemanderenOrdner "
            "Rest/übrig.txt=Rest a.ipt=zweite g.iam={\"disp g.idw={} u.iam={\"refe");
  EXPECT_FALSE(Exists(u"C:\\Temp\\g.iam"));
  for (const char* bar : {"0 bar 0-17 \"16 %\"", "3 bar 0-67 \"66 %\"", "5 bar 0-100 \"100 %\"",
                          "6 bar 0-25 \"das Archiv wird erzeugt...\""}) {
    EXPECT_TRUE(Has(log, bar)) << bar;
  }
  EXPECT_EQ(log.back(), "7 quit");
  EXPECT_EQ(std::ranges::count(Trace, "server.OpenDocument(\"C:\\P\\g.iam\")"), 2)
      << "no new scan after the save dialog";
  EXPECT_FALSE(Machine().HourGlass);
}

TEST_F(ExportRunTest, RefusedExportsChangeNothing) {
  WriteFile(u"C:\\leer.iam", "{}");
  WriteFile(u"C:\\Temp\\x.iam\\x.iam", R"({"references": []})");
  WriteFile(u"C:\\Temp\\y.iam", "kein Ordner");
  WriteFile(u"C:\\Q\\y.iam", "{}");
  WriteFile(u"C:\\P\\x.iam", "{}");
  std::filesystem::create_directory_symlink(headless::HostPath(u"C:\\P"),
                                            headless::HostPath(u"C:\\Temp\\leer.iam"));
  // Other spellings of folders and files that exist.
  for (const char* target : {"P", "Temp/x.iam"}) {
    std::filesystem::create_directory_symlink(
        headless::HostPath(u"C:\\") / target,
        headless::HostPath(u"C:\\Verweis-" + TextFromUtf8(target).substr(0, 1)));
  }
  const TLockFile other(u"C:\\Temp\\u.iam~Export.tmp");
  struct {
    TextView Assembly;
    TextView Archive;
    std::string Message;  ///< a part of it
  } const cases[] = {
      {u"C:\\P\\g.iam", u"C:\\gibt\\es\\nicht.zip", "Datei nicht gefunden"},
      {u"C:\\P\\g.iam", u"C:\\TEMP\\G.IAM\\drin.zip",
       "Das Archiv kann nicht unter \"C:\\TEMP\\G.IAM\\drin.zip\" gespeichert werden: In diesem Ordner"},
      {u"C:\\Temp\\x.iam\\x.iam", u"C:\\Ziel.zip", "Die Datei \"C:\\Temp\\x.iam\\x.iam\" liegt darin."},
      {u"C:\\Verweis-T\\x.iam", u"C:\\Ziel.zip", "Die Datei \"C:\\Verweis-T\\x.iam\" liegt darin."},
      {u"C:\\P\\x.iam", u"C:\\Verweis-T\\q.zip", "In diesem Ordner werden die Dateien"},
      {u"C:\\P\\g.iam", u"C:/P/A.ipt", "Es würde die Datei \"C:\\P\\a.ipt\" ersetzen."},
      {u"C:\\P\\g.iam", u"C:\\Verweis-P\\a.ipt", "Es würde die Datei \"C:\\P\\a.ipt\" ersetzen."},
      {u"C:\\leer.iam", u"C:\\Ziel.zip", "Er ist eine Verknüpfung."},
      {u"C:\\Q\\y.iam", u"C:\\Ziel.zip", "Dort liegt eine Datei."},
      {u"C:\\P\\..", u"C:\\Ziel.zip", "Er liegt nicht unmittelbar im temporären Ordner."},
      {u"C:\\P\\u.iam", u"C:\\Ziel.zip", "Ein anderer Export benutzt ihn gerade."},
  };
  for (const auto& test : cases) {
    WriteFile(u"C:\\Ziel.zip", "altes Archiv");
    Machine().PressOkAfter = {0, 0};
    Machine().SaveAnswers = {UnicodeString(test.Archive)};
    const TLines log = RunExport(test.Assembly, {[] { TDialog::Press(u"Exportieren"); },
                                                 [] {
                                                   EXPECT_FALSE(TTree::Frozen());
                                                   EXPECT_FALSE(Machine().HourGlass);
                                                   TDialog::PressEscape();
                                                 }});
    EXPECT_TRUE(Has(log, "error box \"Velmora\": ") && Has(log, test.Message)) << test.Message;
    EXPECT_EQ(log.back().substr(log.back().find(' ')), " quit") << test.Message;
    EXPECT_EQ(ReadFile(u"C:\\Ziel.zip"), "altes Archiv") << test.Message;
    EXPECT_FALSE(Exists(u"C:\\~Archiv1.tmp"));
  }
  EXPECT_EQ(ReadFile(u"C:\\P\\a.ipt"), "erste");
  EXPECT_EQ(ReadFile(u"C:\\Temp\\x.iam\\x.iam"), R"({"references": []})");
}

TEST_F(ExportRunTest, CompletesNamesThatLackTheirExtension) {
  WriteFile(u"C:\\Q\\4711.01.iam", "{}");
  const std::pair<UnicodeString, TextView> answers[] = {{u"C:\\4711.01", u"C:\\4711.01.zip"},
                                                        {u"C:\\4711.02", u"C:\\4711.02"}};
  for (const auto& [answer, archive] : answers) {
    Machine().SaveAnswers = {answer};
    RunExport(u"C:\\Q\\4711.01.iam", {[] { TDialog::Press(u"Exportieren"); }});
    EXPECT_TRUE(Exists(archive)) << Utf8FromText(archive);
  }
}

TEST_F(ExportRunTest, ExportsTheRowsOfAFailedScan) {
  Simulation.FailCall = 20;
  Simulation.FailText = u"Gesperrt";
  Machine().PressOkAfter = {0, 0};
  Machine().DesktopFolder.reset();
  Machine().SaveAnswers = {u"C:\\Ziel.zip"};
  const TLines log = RunExport(u"C:\\P\\g.iam", {[] { TDialog::Press(u"Exportieren"); }});
  EXPECT_TRUE(Has(log, "error box \"SHGetMalloc(pMalloc)\": Fehler beim pointer zu IMalloc interface."));
  EXPECT_TRUE(Has(log, "save dialog \"Baugruppe exportieren nach\"  | g.zip"));
  EXPECT_EQ(Archive(u"C:\\Ziel.zip"),
            "Export.html=Baugruppe&quot;Getriebe&quot;DieBaugruppewurdeunvollständigeingelesen:Gesperrt"
            "0Bauteile2Baugruppen1Zeichnung*"
            "BezeichnungDatei1GetriebeC:\\P\\g.iam2GetriebeC:\\P\\g.idw3u.iamC:\\P\\u.iam "
            "g.iam={\"disp g.idw={} u.iam={\"refe");
}

TEST_F(ExportRunTest, WaitsForHeldFilesWithinLimits) {
  constexpr std::int64_t kForever = 1'000'000;
  WriteFile(u"C:\\P\\g.iam", R"({"references": ["a.ipt", "b.ipt", "a.ipt", "b.ipt"]})");
  WriteFile(u"C:\\P\\b.ipt", "b");
  const struct {
    UnicodeString Held;
    std::int64_t Until;
    std::int64_t LeastEnd;  ///< when the program ends
    std::int64_t MostEnd;
    std::string Message;  ///< a part of it; empty: none
    std::string Content;  ///< a part of what the archive holds
  } cases[] = {
      {u"C:\\Temp\\g.iam\\a.ipt", kForever, 5'000, 6'000, "", "Dateikonntenichtkopiertwerden!"},
      {u"C:\\~Archiv1.tmp", 25'000, 25'000, 26'000, "", "b.ipt=b"},
      {u"C:\\Ziel.zip", kForever, 5'000, 6'000, "E/A-Fehler 32", "BadZipFile"},
      {u"C:\\~Archiv1.tmp", kForever, 30'000, 31'000, "Es liegt unter \"C:\\~Archiv1.tmp\".", "b.ipt=b"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(Utf8FromText(test.Held) + " " + std::to_string(test.Until));
    WriteFile(u"C:\\Ziel.zip", "altes Archiv");
    Machine().HeldUntil = {{test.Held, test.Until}};
    Machine().PressOkAfter = {0};
    Machine().SaveAnswers = {u"C:\\Ziel.zip"};
    const TLines log =
        RunExport(u"C:\\P\\g.iam", {[] { TDialog::Press(u"Exportieren"); }, [] { TDialog::PressEscape(); }});
    EXPECT_GE(Machine().Now, test.LeastEnd);
    EXPECT_LE(Machine().Now, test.MostEnd);
    EXPECT_EQ(Has(log, "error box"), !test.Message.empty());
    EXPECT_TRUE(Has(log, test.Message));
    EXPECT_EQ(Exists(u"C:\\~Archiv1.tmp"), test.LeastEnd == 30'000);
    const TextView archive = test.LeastEnd == 30'000 ? u"C:\\~Archiv1.tmp" : u"C:\\Ziel.zip";
    EXPECT_NE(Archive(archive).find(test.Content), std::string::npos);
  }
}
