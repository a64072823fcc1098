#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "export/ExportAsmDlg.h"
#include "platform/Error.h"
#include "tests/support/ExportTest.h"

namespace {

using TTree = headless::TTreeListScreen;
using TDialog = headless::TDialogScreen;
using headless::Machine;
using TLines = std::vector<std::string>;

class ExportDialogTest : public TExportTest {};

}  // namespace

TEST_F(ExportDialogTest, ShowsTreeAndClosesProgram) {
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

TEST_F(ExportDialogTest, HiddenFeaturesChangeTheTable) {
  RunExport(u"C:\\P\\g.iam", {[] {
              TfrmExportAsm& form = *frmExportAsm;
              const auto values = [&form](TextView field) {
                std::string all;
                for (form.nxQuery1.First(); !form.nxQuery1.Eof(); form.nxQuery1.Next()) {
                  all += Utf8FromText(form.nxQuery1.Field(field).AsText()) + ";";
                }
                return all;
              };
              form.ASMTreeListcxDBTreeListColumn4.SetVisible(true);
              TTree::ClickHeader(3);
              EXPECT_EQ(values(u"DoCopy"), "1;0;0;0;0;0;") << "the assembly itself keeps its mark";
              EXPECT_EQ(TTree::Lines().size(), 6U) << "everything is open";
              form.nxQuery1.GoTo(2);
              form.ASMFile.SetText(u"Neuer.Name.iam");
              form.SpeedButton1Click();
              EXPECT_EQ(values(u"NewFilename"), ";;Neuer.Name;;;;");
              EXPECT_EQ(values(u"NewID"), "-1;-1;-10;-1;-1;-1;");
              form.nxQuery1.First();
              form.ASMFile.SetText(u"O'Neil.iam");
              EXPECT_THROW(form.SpeedButton1Click(), EError) << "the name goes into the statement as it is";
              EXPECT_TRUE(TTree::Lines().empty()) << "nothing is bound";
            }});
}

TEST_F(ExportDialogTest, OpensEmptyWithoutDatabaseFolder) {
  WriteFile(u"C:\\Users\\Größe\\AppData\\VelMora\\DBExt", "a file where the folder should be");
  Machine().PressOkAfter = {0, 0};
  const TLines log = RunExport(u"C:\\P\\g.iam", {[] { EXPECT_TRUE(TTree::Lines().empty()); }});
  EXPECT_TRUE(Has(log, "AppData\\VelMora\\DBExt\" ist nicht vorhanden."));
  EXPECT_TRUE(Has(log, "error box \"Velmora\": Die Datenbank ist nicht geöffnet."));
  EXPECT_TRUE(Trace.empty());
}
