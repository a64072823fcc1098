#include "ui/TreeList.h"

#include "database/Session.h"
#include "headless/TreeListScreen.h"
#include "tests/support/TestMachine.h"
#include "ui/Application.h"

namespace {

using TScreen = headless::TTreeListScreen;
using TLines = std::vector<std::string>;

/// A tree list of five lines over a table of nodes, and an application that shows its errors.
class TreeListTest : public TMachineTest {
 protected:
  TreeListTest() {
    fDatabase.Folder = u"C:\\Temp";
    fSession.Open();
    fDatabase.Open();
    fList.KeyField = u"ID";
    fList.ParentField = u"Parent";
    fList.ImageField = u"Image";
    fList.SearchField = u"Name";
    fList.RootValue = -1;
    fList.SetBounds({0, 0, 415, 140});
    fId = &fList.AddColumn({.Caption = u"*", .FieldName = u"ID", .Width = 100});
    fName = &fList.AddColumn({.Caption = u"Bezeichnung", .FieldName = u"name", .Width = 300});
    fList.SetDataSource(&fQuery);
    fQuery.SQL.Add(u"CREATE TABLE T (Image Integer, Parent Integer, Name Char(9), ID AutoInc);");
    fQuery.SQL.Add(u"SELECT * FROM T");
  }

  void Insert(std::int64_t parent, TextView name) { fQuery.InsertRecord({std::int64_t{7}, parent, name}); }
  void Fill() {
    fList.BeginUpdate();
    fQuery.Open();
    Insert(-1, u"Wanne");
    Insert(1, u"Rad");
    Insert(2, u"Nabe");
    Insert(0, u"Achse");
    EXPECT_EQ(fQuery.Row(), 3U) << "the cursor stays on what is new";
    EXPECT_EQ(TScreen::Lines(), TLines());
    EXPECT_EQ(TScreen::Info(), "0 von 0");
    fList.EndUpdate();
  }

  TApplication fApplication{u"Velmora"};
  TForm fForm{TFormKind::Status, u"TForm", u"", 415, 140};
  TSession fSession;
  TDatabase fDatabase{fSession};
  TQuery fQuery{fDatabase};
  TTreeList fList{fForm};
  TTreeColumn* fId = nullptr;
  TTreeColumn* fName = nullptr;
};

}  // namespace

TEST_F(TreeListTest, TreeColumnFitsAllRows) {
  Fill();
  fId->ApplyBestFit();
  fList.SetBounds({0, 0, 215, 140});
  EXPECT_EQ(TScreen::ColumnWidths(), (std::vector<int>{82, 118})) << "the widest row is in a closed branch";
  fList.FullExpand();
  EXPECT_EQ(TScreen::Lines()[2], "          7 | 3 | Nabe");
  fList.SetBounds({0, 0, 115, 140});
  EXPECT_EQ(TScreen::ColumnWidths(), (std::vector<int>{50, 50})) << "half of the room is the others'";
  EXPECT_EQ(TScreen::Lines()[2], "      7 | 3 | Nabe") << "no room to indent it";
  fList.SetBounds({0, 0, 215, 140});
  TScreen::MoveDivider(0, 66);
  EXPECT_EQ(TScreen::ColumnWidths(), (std::vector<int>{66, 134}));
  EXPECT_EQ(TScreen::Lines()[2], "        7 | 3 | Nabe");
  TScreen::DoubleClickDivider(1);
  EXPECT_EQ(TScreen::ColumnWidths(), (std::vector<int>{122, 78}));
  TScreen::DoubleClickDivider(0);
  EXPECT_EQ(TScreen::ColumnWidths(), (std::vector<int>{82, 118}));
}

TEST_F(TreeListTest, CursorFollowsCurrentRow) {
  Fill();
  TScreen::Type(u"na");
  EXPECT_EQ(fQuery.Row(), 2U);
  EXPECT_EQ(TScreen::Info(), "3 von 4");
  TScreen::Toggle(1);
  EXPECT_EQ(TScreen::Lines(), (TLines{"  [-] 7 | 1 | Wanne", ">   [+] 7 | 2 | Rad", "      7 | 4 | Achse"}));
  TScreen::Type(u"wa-");
  EXPECT_EQ(TScreen::Lines(), (TLines{"> [+] 7 | 1 | Wanne", "      7 | 4 | Achse"}));
  TScreen::Toggle(0);
  TScreen::Select(2);
  TScreen::Toggle(0);
  EXPECT_EQ(fQuery.Row(), 3U) << "another branch was closed";
  TScreen::Type(u"na");
  EXPECT_EQ(TScreen::Lines().size(), 4U) << "all that hid the row is open";
  fList.FullCollapse();
  EXPECT_EQ(fQuery.Row(), 0U);
  fQuery.First();
  while (!fQuery.Eof()) fQuery.Next();
  std::string rows;
  fList.ForEachRow([&rows](const TTreeListRow& row) {
    rows += std::to_string(row.Level) + Utf8FromText(row.Texts[1]) + " ";
  });
  EXPECT_EQ(rows, "0Wanne 1Rad 2Nabe 0Achse ");
  EXPECT_TRUE(fQuery.Eof()) << "drawing and listing leave the cursor alone";
}

TEST_F(TreeListTest, ValidatesEachTextOnce) {
  std::string asked;
  fName->OnValidateDrawValue = [&asked](const UnicodeString& value) -> UnicodeString {
    asked += Utf8FromText(value) + " ";
    if (value == u"Rad") throw EError(TErrorKind::System, 5, u"Zugriff verweigert");
    return value == u"Achse" ? u"Fehlt!" : u"";
  };
  Fill();
  for (int i = 0; i < 2; ++i) EXPECT_EQ(TScreen::Lines().back(), "      7 | 4 | (Fehlt!) Achse");
  EXPECT_EQ(asked, "Wanne Rad Achse ");
  fQuery.SQL.Clear();
  fQuery.SQL.Add(u"SELECT * FROM T");
  fQuery.Open();
  TScreen::Lines();
  EXPECT_EQ(asked, "Wanne Rad Achse Wanne Rad Achse ") << "the table is opened anew";
  EXPECT_EQ(headless::Machine().Log.front(), "0 error box without owner \"Velmora\": Zugriff verweigert");
}
