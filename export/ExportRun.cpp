#include <utility>
#include <vector>

#include "app/MainDlg.h"
#include "export/ExportAsmDlg.h"
#include "export/HtmlListing.h"
#include "export/StagingFolder.h"
#include "platform/Error.h"
#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/Path.h"
#include "platform/System.h"
#include "ui/Application.h"
#include "ui/Screen.h"
#include "zip/ZipArchive.h"

// The export dialog's work on a click on "Exportieren".

namespace {

constexpr int kPause = 1;  // milliseconds after each row, so that the bar is seen

/// An archive under another name beside its own, which it gets only as a whole.
class TUnfinishedArchive {
 public:
  explicit TUnfinishedArchive(TextView target) : fTarget(target), fPath(FreeName(target)) {}
  ~TUnfinishedArchive() {
    if (fPath.empty()) return;
    try {
      if (FileExists(fPath)) RemoveFile(fPath);
    } catch (...) {  // The error that has led here is the one to be shown.
    }
  }
  TUnfinishedArchive(const TUnfinishedArchive&) = delete;
  TUnfinishedArchive& operator=(const TUnfinishedArchive&) = delete;

  const UnicodeString& Path() const noexcept { return fPath; }
  void Finish() {
    RenameFile(fPath, fTarget);
    fPath.clear();
  }

 private:
  /// A short name, so that it fits wherever the archive's own does. A program that was killed may have left
  /// some behind.
  static UnicodeString FreeName(TextView target) {
    target.remove_suffix(FileNameWithoutFolder(target).size());
    for (int i = 1;; ++i) {
      UnicodeString name = UnicodeString(target).append(u"~Archiv").append(DecimalText(i)).append(u".tmp");
      if (!FileExists(name) && !FolderExists(name)) return name;
    }
  }

  UnicodeString fTarget;
  UnicodeString fPath;
};

/// Runs its action at the end, however that comes.
template <class TAction>
class TAtEnd {
 public:
  explicit TAtEnd(TAction action) : fAction(std::move(action)) {}
  ~TAtEnd() { fAction(); }
  TAtEnd(const TAtEnd&) = delete;
  TAtEnd& operator=(const TAtEnd&) = delete;

 private:
  TAction fAction;
};

/// The user's desktop, or an empty text after a message.
UnicodeString DesktopOrMessage() {
  const std::optional<UnicodeString> desktop = DesktopFolder();
  if (desktop) return *desktop;
  Application->MessageBox(u"Fehler beim pointer zu IMalloc interface.", TBoxIcon::Error,
                          u"SHGetMalloc(pMalloc)");
  return {};
}

}  // namespace

void TfrmExportAsm::btnExportClick() {
  SaveDialog.Title = u"Baugruppe exportieren nach";
  // ProgrammIni is a full path itself, so that the folder stands twice in this name and the lookup always
  // gives the default. Designers have come to expect the desktop: a file that was found here would now send
  // them elsewhere.
  SaveDialog.InitialDir = ReadProfileText(frmMain->ProgrammPfad + frmMain->ProgrammIni, u"ExportAsm",
                                          u"DestPath", DesktopOrMessage());
  SaveDialog.FileName = ChangeFileExtension(fAsmFile, u".zip");
  if (Application->Terminated() || !SaveDialog.Execute(*this) || Application->Terminated()) return;
  ExportTo(SaveDialog.FileName);
  Close();
}

void TfrmExportAsm::ExportTo(const UnicodeString& archive) {
  const TBusyScope busy;
  SetScreenCursor(TCursor::HourGlass);
  const TAtEnd guard([this] {
    SetScreenCursor(TCursor::Default);
    // A scan that failed has left it raised once more.
    while (ASMTreeList.Updating()) ASMTreeList.EndUpdate();
  });
  const UnicodeString folder = StagingFolder(fAsmFile);
  CheckStagingFolder(folder, archive, nxQuery1);
  if (FileExists(archive)) RemoveFile(archive);
  // What an earlier export has left in it stays and is packed as well.
  if (!CreateFolders(folder.substr(0, folder.size() - 1))) {
    throw EError(TErrorKind::InputOutput, kAccessDenied,
                 u"Der Ordner \"" + folder + u"\" kann nicht angelegt werden.");
  }
  WriteListing(folder + u"Export.html");
  StageFiles(folder);
  cxProgressBar.SetTextStyle(TProgressTextStyle::Text);
  cxProgressBar.Repaint();
  WaitMilliseconds(kPause);
  Pack(folder, archive);
  cxProgressBar.SetVisible(false);
  RemoveFolder(folder.substr(0, folder.size() - 1));
}

void TfrmExportAsm::WriteListing(const UnicodeString& path) const {
  if (IsLink(path)) RemoveFile(path);
  TOutputFile page(path, TCreate::Replace);
  // Asked on the first walk alone: asking the disk takes longer than all else here, and the answers of both
  // walks must be the same.
  std::vector<bool> missing;
  const auto rows = [&](const TListingVisitor& visit) {
    std::size_t i = 0;
    ASMTreeList.ForEachRow([&](const TTreeListRow& row) {
      KeepAlive();
      if (i == missing.size()) missing.push_back(!FileExists(row.Texts[2]));
      visit({row.Level, row.Image, row.Texts[0], row.Texts[1], row.Texts[2], missing[i++]});
    });
  };
  WriteHtmlListing(Caption(), rows, [&page](std::string_view piece) { page.Write(piece); });
  page.Close();
}

/// The copy marks are not asked: the supplier gets every file that exists.
void TfrmExportAsm::StageFiles(const UnicodeString& folder) {
  ASMTreeList.BeginUpdate();
  nxQuery1.First();
  cxProgressBar.SetMax(static_cast<int>(nxQuery1.RowCount()));
  cxProgressBar.SetPosition(0);
  cxProgressBar.SetTextStyle(TProgressTextStyle::Percent);
  cxProgressBar.SetVisible(true);
  const TField file = nxQuery1.Field(u"Filename");
  for (int k = 1; !nxQuery1.Eof(); nxQuery1.Next(), ++k) {
    cxProgressBar.SetPosition(k);
    cxProgressBar.Repaint();
    WaitMilliseconds(kPause);
    KeepAlive();
    StageFile(file.AsText(), folder);
  }
}

void TfrmExportAsm::Pack(const UnicodeString& folder, const UnicodeString& archive) {
  constexpr std::int64_t kFrameMilliseconds = 30;
  std::int64_t painted = TickMilliseconds();
  TUnfinishedArchive unfinished(archive);
  TZipArchive zip(unfinished.Path(), [this, &painted] {
    KeepAlive();
    if (TickMilliseconds() - painted < kFrameMilliseconds) return;
    painted = TickMilliseconds();
    cxProgressBar.Repaint();
  });
  zip.AddContents(folder);
  zip.Close();
  unfinished.Finish();
}
