#include "export/ExportAsmDlg.h"

#include "app/MainDlg.h"
#include "export/AssemblyScan.h"
#include "export/ExportRun.h"
#include "export/WorkingTable.h"
#include "platform/Files.h"
#include "platform/Path.h"
#include "platform/Profile.h"
#include "platform/System.h"
#include "ui/Application.h"

TfrmExportAsm* frmExportAsm = nullptr;

namespace {

// In pixels at kDesignDpi.
constexpr int kClientWidth = 939;
constexpr int kClientHeight = 630;
constexpr int kLeastWidth = 480;
constexpr int kLeastHeight = 240;
constexpr int kTreeBottom = 589;
constexpr int kButtonTop = 597;
constexpr int kButtonBottom = 622;

constexpr TAnchors kAllSides{.Left = true, .Top = true, .Right = true, .Bottom = true};
constexpr TAnchors kBottomLeft{.Left = true, .Top = false, .Right = false, .Bottom = true};
constexpr TAnchors kBottomRight{.Left = false, .Top = false, .Right = true, .Bottom = true};
constexpr TAnchors kBottom{.Left = true, .Top = false, .Right = true, .Bottom = true};

const TFont kDialogFont{.Name = u"Tahoma", .CharHeight = 11, .Bold = false};
const TFont kHeaderFont{.Name = u"Tahoma", .CharHeight = 12, .Bold = true};
const TFont kProgressFont{.Name = u"Tahoma", .CharHeight = 11, .Bold = true};

constexpr int kCopyColumn = 2;  // the tag of the column with the copy marks

UnicodeString Formatted(UnicodeString format, const UnicodeString& name) {
  constexpr TextView kPlace = u"%S";
  const std::size_t place = format.find(kPlace);
  return place != UnicodeString::npos ? format.replace(place, kPlace.size(), name) : format;
}

/// The user's desktop, or an empty text after a message.
UnicodeString DesktopOrMessage() {
  const std::optional<UnicodeString> desktop = DesktopFolder();
  if (desktop) return *desktop;
  Application->MessageBox(u"Fehler beim pointer zu IMalloc interface.", TBoxIcon::Error,
                          u"SHGetMalloc(pMalloc)");
  return {};
}

}  // namespace

TfrmExportAsm::TfrmExportAsm(TForm& owner)
    : TForm(TWindowKind::Dialog, u"TfrmExportAsm", u"Baugruppe exportieren", kClientWidth, kClientHeight,
            &owner),
      ASMTreeList(*this),
      ASMTreeListcxDBTreeListColumn1(ASMTreeList.AddColumn(
          {.Caption = u"*", .FieldName = u"AutoID", .Width = 54, .Alignment = TAlignment::Centre})),
      ASMTreeListcxDBTreeListColumn2(
          ASMTreeList.AddColumn({.Caption = u"Bezeichnung", .FieldName = u"DisplayName", .Width = 454})),
      ASMTreeListcxDBTreeListColumn3(
          ASMTreeList.AddColumn({.Caption = u"Datei", .FieldName = u"Filename", .Width = 380, .Path = true})),
      ASMTreeListcxDBTreeListColumn4(ASMTreeList.AddColumn({.Caption = u"Kopieren",
                                                            .FieldName = u"DoCopy",
                                                            .Visible = false,
                                                            .Clickable = true,
                                                            .Tag = kCopyColumn})),
      ASMTreeListcxDBTreeListColumn5(
          ASMTreeList.AddColumn({.Caption = u"DTID", .FieldName = u"DTID", .Visible = false})),
      ASMTreeListcxDBTreeListColumn6(
          ASMTreeList.AddColumn({.Caption = u"NewID", .FieldName = u"NewID", .Visible = false})),
      ASMTreeListcxDBTreeListColumn7(
          ASMTreeList.AddColumn({.Caption = u"NewFilename", .FieldName = u"NewFilename", .Visible = false})),
      btnExpand(*this),
      btnCollapse(*this),
      cxProgressBar(*this),
      btnExport(*this),
      btnAbbruch(*this, TButtonRole::Default),
      ASMFile(*this),
      SpeedButton1(*this) {
  SetLeastClientSize(kLeastWidth, kLeastHeight);
  DesignTree();
  DesignButtons();
  OnShow = [this] { FormShow(); };
  OnActivate = [this] { FormActivate(); };
  OnClose = [this] { FormClose(); };
  frmExportAsm = this;  // last: after an error in here there is no dialog
}

TfrmExportAsm::~TfrmExportAsm() {
  frmExportAsm = nullptr;
}

void TfrmExportAsm::DesignTree() {
  ASMTreeList.SetBounds({0, 0, kClientWidth, kTreeBottom}, kAllSides);
  ASMTreeList.SetFont(kDialogFont);
  ASMTreeList.SetHeaderFont(kHeaderFont);
  ASMTreeList.SetName(u"Dateien der Baugruppe");
  ASMTreeList.KeyField = u"AutoID";
  ASMTreeList.ParentField = u"Parent";
  ASMTreeList.ImageField = u"ImgIndex";
  ASMTreeList.SearchField = u"DisplayName";
  ASMTreeList.RootValue = kRootParent;
  ASMTreeList.OnDblClick = [this] { ASMTreeListDblClick(); };
  ASMTreeList.OnColumnHeaderClick = [this](const TTreeColumn& column) {
    ASMTreeListColumnHeaderClick(column);
  };
  ASMTreeListcxDBTreeListColumn3.OnValidateDrawValue = [this](const UnicodeString& value) {
    return ASMTreeListcxDBTreeListColumn3ValidateDrawValue(value);
  };
  ASMTreeList.SetDataSource(&nxQuery1);
}

void TfrmExportAsm::DesignButtons() {
  btnExpand.SetBounds({8, kButtonTop, 36, kButtonBottom}, kBottomLeft);
  btnExpand.SetImageOnly(TButtonImage::ExpandAll, u"Alle Knoten öffnen");
  btnExpand.OnClick = [this] { btnExpandClick(); };
  btnCollapse.SetBounds({40, kButtonTop, 68, kButtonBottom}, kBottomLeft);
  btnCollapse.SetImageOnly(TButtonImage::CollapseAll, u"Alle Knoten schließen");
  btnCollapse.OnClick = [this] { btnCollapseClick(); };

  cxProgressBar.SetBounds({80, kButtonTop + 2, 700, kButtonBottom - 2}, kBottom);
  cxProgressBar.SetFont(kProgressFont);
  cxProgressBar.SetText(u"das Archiv wird erzeugt...");
  cxProgressBar.SetVisible(false);

  btnExport.SetBounds({712, kButtonTop, 822, kButtonBottom}, kBottomRight);
  btnExport.SetCaption(u"Exportieren");
  btnExport.SetImage(TButtonImage::Export);
  btnExport.OnClick = [this] { btnExportClick(); };
  btnAbbruch.SetBounds({830, kButtonTop, 931, kButtonBottom}, kBottomRight);
  btnAbbruch.SetCaption(u"Abbruch");
  btnAbbruch.ModalResult = TModalResult::Abort;
  btnAbbruch.OnClick = [this] { btnAbbruchClick(); };
  for (TButton* const button : {&btnExpand, &btnCollapse, &btnExport, &btnAbbruch})
    button->SetFont(kDialogFont);

  SaveDialog.DefaultExt = u"*.zip";
  // Without "*" this pattern matches no archive, so that the dialog shows none: nobody picks an old one by
  // mistake.
  SaveDialog.Filter = u"Zipdatei|.zip";

  ASMFile.SetVisible(false);
  SpeedButton1.SetVisible(false);
  SpeedButton1.OnClick = [this] { SpeedButton1Click(); };
}

void TfrmExportAsm::FormShow() {
  ASMTreeList.SetFocus();
  nxDatabase1.Folder = frmMain->ProgrammPfad + u"DBExt";
  nxSession1.Open();
  nxDatabase1.Open();
}

/// An error in the scan leaves the tree in its update state: nothing half is shown.
void TfrmExportAsm::FormActivate() {
  const TBusyScope busy;
  ASMTreeList.BeginUpdate();
  fAsmFile = FileNameWithoutFolder(frmMain->AsmFileName);
  fAsmFullFile = frmMain->AsmFileName;
  FirstOpenAssembly(fAsmFullFile);
  ASMTreeList.EndUpdate();
}

void TfrmExportAsm::FormClose() {
  nxQuery1.Close();
  nxDatabase1.Close();
  nxSession1.Close();
}

void TfrmExportAsm::FirstOpenAssembly(const UnicodeString& datei) {
  UserN = ComputerName();
  CreateWorkingTable(nxQuery1, UserN);
  DoCopy = true;
  TAssemblyScan scan(nxQuery1);
  scan.OnRootOpened = [this](const UnicodeString& displayName) { SetCaption(Formatted(Hint, displayName)); };
  scan.OnLevelScanned = [this] { ASMTreeListcxDBTreeListColumn1.ApplyBestFit(); };
  scan.FirstOpenAssembly(datei);
}

void TfrmExportAsm::btnAbbruchClick() {
  Close();
}

void TfrmExportAsm::btnExportClick() {
  SaveDialog.Title = u"Baugruppe exportieren nach";
  // ProgrammIni is a full path itself, so that the folder stands twice in this name and the lookup always
  // gives the default. Designers have come to expect the desktop: a file that was found here would now send
  // them elsewhere.
  SaveDialog.InitialDir = ReadProfileText(frmMain->ProgrammPfad + frmMain->ProgrammIni, u"ExportAsm",
                                          u"DestPath", DesktopOrMessage());
  SaveDialog.FileName = ChangeFileExtension(fAsmFile, u".zip");
  if (Application->Terminated() || !SaveDialog.Execute(*this) || Application->Terminated()) return;
  TExportRun run(ASMTreeList, nxQuery1, cxProgressBar);
  run.AsmFile = fAsmFile;
  run.Title = Caption();
  run.Run(SaveDialog.FileName);
  Close();
}

/// The keys go to the tree again: the next thing users want is to move in it.
void TfrmExportAsm::btnCollapseClick() {
  ASMTreeList.FullCollapse();
  ASMTreeList.SetFocus();
}

void TfrmExportAsm::btnExpandClick() {
  ASMTreeList.FullExpand();
  ASMTreeList.SetFocus();
}

void TfrmExportAsm::ASMTreeListDblClick() {}  // opening a file is the host's business

void TfrmExportAsm::ASMTreeListColumnHeaderClick(const TTreeColumn& column) {
  if (column.Tag() != kCopyColumn) return;
  DoCopy = !DoCopy;
  // The assembly itself is always copied.
  ChangeWorkingTable(DoCopy ? u" SET DOCOPY = TRUE" : u" SET DOCOPY = FALSE", u"Where AutoID > 1");
  ASMTreeList.FullExpand();
}

UnicodeString TfrmExportAsm::ASMTreeListcxDBTreeListColumn3ValidateDrawValue(const UnicodeString& value) {
  return FileExists(value) ? u"" : u"Datei nicht gefunden!";
}

/// The name goes into the statement as it is, quotes too: nothing shows this button.
void TfrmExportAsm::SpeedButton1Click() {
  const UnicodeString name = ChangeFileExtension(ASMFile.Text(), u"");
  const UnicodeString id = nxQuery1.Field(u"AutoID").AsText();
  ChangeWorkingTable(u" SET NewID = -10, NewFilename = '" + name + u"' Where AutoID = " + id, u"");
}

void TfrmExportAsm::ChangeWorkingTable(const UnicodeString& change, const UnicodeString& condition) {
  nxQuery1.SQL.Clear();
  nxQuery1.SQL.Add(u"UPDATE ##SA_" + UserN + change);
  if (!condition.empty()) nxQuery1.SQL.Add(condition);
  nxQuery1.Execute();
  nxQuery1.SQL.Clear();
  nxQuery1.SQL.Add(u"SELECT * FROM ##SA_" + UserN);
  nxQuery1.Open();
}
