#include "export/ExportRun.h"

#include <utility>
#include <vector>

#include "export/HtmlListing.h"
#include "export/StagingFolder.h"
#include "platform/Error.h"
#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "ui/Application.h"
#include "ui/Cursor.h"
#include "zip/UnfinishedArchive.h"
#include "zip/ZipArchive.h"

namespace {

constexpr int kPause = 1;  // milliseconds after each row, so that the bar is seen

/// Runs its action when the scope is left, whether normally or by an error.
template <class TAction>
class TScopeExit {
 public:
  explicit TScopeExit(TAction action) : fAction(std::move(action)) {}
  ~TScopeExit() { fAction(); }
  TScopeExit(const TScopeExit&) = delete;
  TScopeExit& operator=(const TScopeExit&) = delete;

 private:
  TAction fAction;
};

}  // namespace

void TExportRun::Run(const UnicodeString& archive) {
  const TBusyScope busy(u"Die Baugruppe wird noch bearbeitet.");
  SetScreenCursor(TCursor::HourGlass);
  const TScopeExit guard([this] {
    SetScreenCursor(TCursor::Default);
    // A failed scan has left it raised once more.
    while (fTree.Updating()) fTree.EndUpdate();
  });
  const UnicodeString folder = StagingFolder(AsmFile);
  CheckStagingFolder(folder, archive, fFiles);
  if (FileExists(archive)) RemoveFile(archive);
  // What an earlier export has left in it stays and is packed as well.
  if (!CreateFolders(folder.substr(0, folder.size() - 1))) {
    throw EError(TErrorKind::InputOutput, kAccessDenied,
                 u"Der Ordner \"" + folder + u"\" kann nicht angelegt werden.");
  }
  WriteListing(folder + u"Export.html");
  StageFiles(folder);
  fBar.SetTextStyle(TProgressTextStyle::Text);
  fBar.Repaint();
  WaitMilliseconds(kPause);
  Pack(folder, archive);
  fBar.SetVisible(false);
  RemoveFolder(folder.substr(0, folder.size() - 1));
}

void TExportRun::WriteListing(const UnicodeString& path) const {
  if (IsLink(path)) RemoveFile(path);
  TOutputFile page(path, TCreate::Replace);
  // Asked on the first walk alone: asking the disk takes longer than all else here, and the answers of both
  // walks must be the same.
  std::vector<bool> missing;
  const auto rows = [&](const TListingVisitor& visit) {
    std::size_t i = 0;
    fTree.ForEachRow([&](const TTreeListRow& row) {
      KeepAlive();
      if (i == missing.size()) missing.push_back(!FileExists(row.Texts[2]));
      visit({row.Level, row.Image, row.Texts[0], row.Texts[1], row.Texts[2], missing[i++]});
    });
  };
  WriteHtmlListing(Title, rows, [&page](std::string_view piece) { page.Write(piece); });
  page.Close();
}

/// The copy marks are not asked: the supplier gets every file that exists.
void TExportRun::StageFiles(const UnicodeString& folder) {
  fTree.BeginUpdate();
  fFiles.First();
  fBar.SetMax(static_cast<int>(fFiles.RowCount()));
  fBar.SetPosition(0);
  fBar.SetTextStyle(TProgressTextStyle::Percent);
  fBar.SetVisible(true);
  const TField file = fFiles.Field(u"Filename");
  for (int k = 1; !fFiles.Eof(); fFiles.Next(), ++k) {
    fBar.SetPosition(k);
    fBar.Repaint();
    WaitMilliseconds(kPause);
    KeepAlive();
    StageFile(file.AsText(), folder);
  }
}

void TExportRun::Pack(const UnicodeString& folder, const UnicodeString& archive) {
  constexpr std::int64_t kFrameMilliseconds = 30;
  std::int64_t painted = TickMilliseconds();
  TUnfinishedArchive unfinished(archive);
  TZipArchive zip(unfinished.Path(), [this, &painted] {
    KeepAlive();
    if (TickMilliseconds() - painted < kFrameMilliseconds) return;
    painted = TickMilliseconds();
    fBar.Repaint();
  });
  zip.AddContents(folder);
  zip.Close();
  unfinished.Finish();
}
