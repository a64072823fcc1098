#pragma once

#include "database/Query.h"
#include "database/Session.h"
#include "platform/ExistingFiles.h"
#include "platform/Text.h"
#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/ProgressBar.h"
#include "ui/SaveDialog.h"
#include "ui/TreeList.h"

/// The export dialog: shows the files that an assembly uses as a tree, and packs them. Reads the assembly's
/// name and the program's folders from the status window, its owner; the working table lives as long as the
/// dialog is open.
class TfrmExportAsm : public TForm {
 public:
  explicit TfrmExportAsm(TForm& owner);
  ~TfrmExportAsm();

  TSession nxSession1;
  TDatabase nxDatabase1{nxSession1};
  TQuery nxQuery1{nxDatabase1};

  TTreeList ASMTreeList;
  TTreeColumn& ASMTreeListcxDBTreeListColumn1;
  TTreeColumn& ASMTreeListcxDBTreeListColumn2;
  TTreeColumn& ASMTreeListcxDBTreeListColumn3;
  TTreeColumn& ASMTreeListcxDBTreeListColumn4;
  TTreeColumn& ASMTreeListcxDBTreeListColumn5;
  TTreeColumn& ASMTreeListcxDBTreeListColumn6;
  TTreeColumn& ASMTreeListcxDBTreeListColumn7;
  TButton btnExpand;
  TButton btnCollapse;
  TProgressBar cxProgressBar;
  TButton btnExport;
  TButton btnAbbruch;
  TSaveDialog SaveDialog;
  TEdit ASMFile;
  TButton SpeedButton1;

  UnicodeString Hint = u"Baugruppe \"%S\" exportieren";  ///< the caption, once the assembly's name is known

  void FormShow();
  void FormActivate();
  void FormClose();
  void btnAbbruchClick();
  void btnExportClick();
  void btnCollapseClick();
  void btnExpandClick();
  void ASMTreeListDblClick();
  void ASMTreeListColumnHeaderClick(const TTreeColumn& column);
  UnicodeString ASMTreeListcxDBTreeListColumn3ValidateDrawValue(const UnicodeString& value);
  void SpeedButton1Click();

  /// Makes the working table anew and fills it with `datei` and all files below it.
  void FirstOpenAssembly(const UnicodeString& datei);

 private:
  void DesignTree();
  void DesignButtons();
  /// Runs one statement on the working table, then shows the table anew.
  void ChangeWorkingTable(const UnicodeString& change, const UnicodeString& condition);

  bool DoCopy = true;      // toggled by each click on the copy column's header
  UnicodeString UserN;     // end of the working table's name
  UnicodeString fAsmFile;  // without folder
  UnicodeString fAsmFullFile;
  UnicodeString fAssemblyName;  // as the assembly calls itself, or else its file name
  UnicodeString fScanFailure;   // why the scan has broken off; empty: it came to its end
  TExistingFiles fFiles;        // as the last scan has seen them
};

/// The export dialog while it is open.
extern TfrmExportAsm* frmExportAsm;
