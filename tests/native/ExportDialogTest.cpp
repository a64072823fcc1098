#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "export/ExportAsmDlg.h"
#include "headless/DialogScreen.h"
#include "headless/TreeListScreen.h"
#include "platform/Files.h"
#include "tests/support/ProgramTest.h"

namespace {

using headless::Machine;
using TDialog = headless::TDialogScreen;
using TTree = headless::TTreeListScreen;
using TLines = std::vector<std::string>;

class ExportDialogTest : public TProgramTest {
 protected:
  ExportDialogTest() {
    WriteFile(u"C:\\P\\g.iam",
              R"({"displayName": "Getriebe", "references": ["u.iam", "fehlt.ipt", "C:/P/q/a.ipt"]})");
    WriteFile(u"C:\\P\\g.idw", "{}");
    WriteFile(u"C:\\P\\u.iam", R"({"references": ["a.ipt"]})");
    WriteFile(u"C:\\P\\a.ipt", "erste");
    WriteFile(u"C:\\P\\q\\a.ipt", "zweite");
  }

  /// Runs /E on `assembly` while the user does these things with the dialog.
  TLines RunExport(TextView assembly, const std::vector<std::function<void()>>& actions) {
    Machine().UserActions.assign(actions.begin(), actions.end());
    return Run(UnicodeString(u"/E ").append(assembly));
  }

  static bool Has(const TLines& log, const std::string& part) {
    return std::ranges::any_of(
        log, [&part](const std::string& line) { return line.find(part) != std::string::npos; });
  }

  /// What an independent reader finds in the archive: "name=content" of each entry: a page's text without
  /// blanks, six characters of another file.
  static std::string Archive(TextView path) {
    const std::string command =
        "python3 -c 'import re, sys, zipfile\nz = zipfile.ZipFile(sys.argv[1])\nassert z.testzip() is None\n"
        "text = lambda page: re.sub(\"<[^>]*>|\\\\s\", \"\", page[page.index(\"<h1\"):])\n"
        "print(*[i.filename + \"=\" + (text if i.filename.endswith(\".html\") else lambda t: t[:6])"
        "(z.read(i).decode()) for i in z.infolist()], sep=\" \", end=\"\")' '" +
        headless::HostPath(path).string() + "' 2>&1";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe.get())) {
      output.append(buffer.data(), count);
    }
    return output;
  }
};

}  // namespace

TEST_F(ExportDialogTest, ShowsTheTreeAndClosesTheProgram) {
  const std::vector<std::function<void()>> endings = {
      [] { TDialog::PressEnter(); }, [] { TDialog::PressEscape(); }, [] { TDialog::Press(u"Abbruch"); }};
  for (const auto& ending : endings) {
    const TLines log = RunExport(
        u"C:\\P\\g.iam",
        {[] {
           EXPECT_EQ(TTree::Headers(), "* | Bezeichnung | Datei");
           EXPECT_EQ(TTree::Info(), "1 von 6");
           EXPECT_EQ(
               TTree::Lines(),
               (TLines{">     94 | 1 | Getriebe | C:\\P\\g.iam", "  [-] 95 | 2 | Getriebe | C:\\P\\g.idw",
                       "    [+] 94 | 3 | u.iam | C:\\P\\u.iam",
                       "        93 | 5 | fehlt.ipt | (Datei nicht gefunden!) C:\\P\\fehlt.ipt",
                       "        93 | 6 | a.ipt | C:/P/q/a.ipt"}));
           TDialog::Press(u"Alle Knoten öffnen");
           EXPECT_EQ(TTree::Lines().size(), 6U);
           TDialog::Press(u"Alle Knoten schließen");
           EXPECT_EQ(TTree::Lines().size(), 2U);
           TDialog::Resize(100, 100);
         },
         ending});
    EXPECT_EQ(log, (TLines{"0 text \"\"", "0 show 490,477 300x70", "0 paint \"\"",
                           "0 title \"Baugruppe exportieren\"", "0 show dialog 171,197 939x630",
                           "0 cursor hourglass", "0 title \"Baugruppe \"Getriebe\" exportieren\"",
                           "0 cursor default", "0 cursor hourglass", "0 cursor hourglass", "0 cursor default",
                           "0 cursor hourglass", "0 cursor default", "0 hide dialog", "0 quit"}));
    EXPECT_EQ(LiveObjects(), 0);
    EXPECT_EQ(std::ranges::count(Trace, "server.OpenDocument(\"C:\\P\\g.iam\")"), 2) << "one scan";
  }
}

TEST_F(ExportDialogTest, HiddenFeaturesWorkOnTheTable) {
  RunExport(u"C:\\P\\g.iam", {[] {
              TfrmExportAsm& form = *frmExportAsm;
              const auto values = [&form](TextView field) {
                std::string all;
                for (form.nxQuery1.First(); !form.nxQuery1.Eof(); form.nxQuery1.Next()) {
                  all += Utf8FromText(form.nxQuery1.Field(field).AsText()) + ";";
                }
                return all;
              };
              form.ASMTreeListColumnHeaderClick(form.ASMTreeListcxDBTreeListColumn3);
              EXPECT_EQ(values(u"DoCopy"), "1;1;1;1;1;1;") << "another column's header";
              form.ASMTreeListcxDBTreeListColumn4.SetVisible(true);
              TTree::ClickHeader(3);
              EXPECT_EQ(values(u"DoCopy"), "1;0;0;0;0;0;") << "the assembly itself keeps its mark";
              EXPECT_EQ(TTree::Lines().size(), 6U) << "everything is open";
              TTree::ClickHeader(3);
              EXPECT_EQ(values(u"DoCopy"), "1;1;1;1;1;1;");

              form.nxQuery1.GoTo(2);
              form.ASMFile.SetText(u"Neuer.Name.iam");
              form.SpeedButton1Click();
              EXPECT_EQ(values(u"NewFilename"), ";;Neuer.Name;;;;");
              EXPECT_EQ(values(u"NewID"), "-1;-1;-10;-1;-1;-1;");
              form.nxQuery1.First();
              form.ASMFile.SetText(u"O'Neil.iam");
              EXPECT_THROW(form.SpeedButton1Click(), EError) << "the name goes into the statement as it is";
              EXPECT_TRUE(TTree::Lines().empty()) << "the list has let go";
              TTree::Mouse(TTreeListMouse::DoubleClick, 0);
            }});
}

TEST_F(ExportDialogTest, ExportPacksEveryFileThatExists) {
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
                                    EXPECT_EQ(std::accumulate(widths.begin(), widths.end(), 0), 1386)
                                        << "less the margin at the left";
                                    TDialog::Press(u"Exportieren");
                                  },
                                  [] { TDialog::Press(u"Exportieren"); }});
  EXPECT_TRUE(Has(log, "show dialog -64,40 1409x945"));
  EXPECT_EQ(ReadFile(u"C:\\P\\a.ipt"), "erste") << "no link is followed";
  EXPECT_TRUE(
      Has(log,
          "save dialog \"Baugruppe exportieren nach\" C:\\Users\\Größe\\Desktop | g.zip | Zipdatei=.zip | "
          "zip"));
  EXPECT_EQ(Archive(u"C:\\Ziel\\Archiv.zip"),
            "Export.html=Baugruppe&quot;Getriebe&quot;exportieren3Bauteile2Baugruppen1Zeichnung"
            "1Dateinichtgefunden*BezeichnungDatei1GetriebeC:\\P\\g.iam2GetriebeC:\\P\\g.idw3u.iamC:\\P\\u.iam"
            "4a.iptC:\\P\\a.iptGleicherDateinameauchineinemanderenOrdner5fehlt.iptC:\\P\\fehlt.ipt"
            "Dateinichtgefunden!6a.iptC:/P/q/a.iptGleicherDateinameauchineinemanderenOrdner "
            "Rest/übrig.txt=Rest a.ipt=zweite g.iam={\"disp g.idw={} u.iam={\"refe");
  EXPECT_FALSE(std::filesystem::exists(headless::HostPath(u"C:\\Temp\\g.iam")));
  for (const char* bar : {"0 bar 0-17 \"16 %\"", "3 bar 0-67 \"66 %\"", "5 bar 0-100 \"100 %\"",
                          "6 bar 0-25 \"das Archiv wird erzeugt...\""}) {
    EXPECT_TRUE(Has(log, bar)) << bar;
  }
  EXPECT_EQ(log.back(), "7 quit");
  EXPECT_EQ(std::ranges::count(Trace, "server.OpenDocument(\"C:\\P\\g.iam\")"), 2)
      << "no new scan after the save dialog";
  EXPECT_FALSE(Machine().HourGlass);
}

TEST_F(ExportDialogTest, FailuresOfTheExportLoseNothing) {
  WriteFile(u"C:\\leer.iam", "{}");
  WriteFile(u"C:\\Temp\\x.iam\\x.iam", R"({"references": []})");
  WriteFile(u"C:\\Temp\\y.iam", "kein Ordner");
  WriteFile(u"C:\\Q\\y.iam", "{}");
  std::filesystem::create_directory_symlink(headless::HostPath(u"C:\\P"),
                                            headless::HostPath(u"C:\\Temp\\leer.iam"));
  struct {
    TextView Assembly;
    TextView Archive;
    std::string Message;  ///< a part of it
  } const cases[] = {
      {u"C:\\P\\g.iam", u"C:\\gibt\\es\\nicht.zip", "Datei nicht gefunden"},
      {u"C:\\P\\g.iam", u"C:\\TEMP\\G.IAM\\drin.zip", "Das Archiv soll darin liegen."},
      {u"C:\\Temp\\x.iam\\x.iam", u"C:\\Ziel.zip", "Die Datei \"C:\\Temp\\x.iam\\x.iam\" liegt darin."},
      {u"C:\\P\\g.iam", u"C:/P/A.ipt", "Das Archiv würde die Datei \"C:\\P\\a.ipt\" ersetzen."},
      {u"C:\\leer.iam", u"C:\\Ziel.zip", "Er ist eine Verknüpfung."},
      {u"C:\\Q\\y.iam", u"C:\\Ziel.zip", "Dort liegt eine Datei."},
      {u"C:/P/g.iam", u"C:\\Ziel.zip", "Er liegt nicht unmittelbar im temporären Ordner."},
  };
  for (const auto& test : cases) {
    WriteFile(u"C:\\Ziel.zip", "altes Archiv");
    Machine().PressOkAfter = {0};
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
    EXPECT_FALSE(FileExists(u"C:\\~Archiv1.tmp"));
  }
  EXPECT_EQ(ReadFile(u"C:\\P\\a.ipt"), "erste");
  EXPECT_EQ(ReadFile(u"C:\\Temp\\x.iam\\x.iam"), R"({"references": []})");
}

TEST_F(ExportDialogTest, AfterAFailedScanTheRowsSoFarAreExported) {
  Simulation.FailCall = 20;
  Simulation.FailText = u"Gesperrt";
  Machine().PressOkAfter = {0, 0};
  Machine().DesktopFolder.reset();
  Machine().SaveAnswers = {u"C:\\Ziel.zip"};
  const TLines log = RunExport(u"C:\\P\\g.iam", {[] { TDialog::Press(u"Exportieren"); }});
  EXPECT_TRUE(Has(log, "error box \"SHGetMalloc(pMalloc)\": Fehler beim pointer zu IMalloc interface."));
  EXPECT_TRUE(Has(log, "save dialog \"Baugruppe exportieren nach\"  | g.zip"));
  EXPECT_EQ(
      Archive(u"C:\\Ziel.zip"),
      "Export.html=Baugruppe&quot;Getriebe&quot;exportieren0Bauteile2Baugruppen1ZeichnungKeineDateifehlt*"
      "BezeichnungDatei1GetriebeC:\\P\\g.iam2GetriebeC:\\P\\g.idw3u.iamC:\\P\\u.iam "
      "g.iam={\"disp g.idw={} u.iam={\"refe");
}
