#include "export/ExportRun.h"

#include <utility>

#include "export/HtmlListing.h"
#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "ui/Application.h"
#include "ui/Cursor.h"
#include "ui/MessageLoop.h"
#include "zip/UnfinishedArchive.h"
#include "zip/ZipArchive.h"

namespace {

constexpr int kPause = 1;  // milliseconds after each row, so that the bar is seen
constexpr TextView kListingName = u"Export.html";

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

TExportRun::TExportRun(TTreeList& tree, TQuery& files, TProgressBar& bar)
    : fTree(tree), fFiles(files), fBar(bar), fExisting([] { KeepAlive(); }) {}

void TExportRun::Run(const UnicodeString& archive) {
  const TBusyScope busy(u"Die Baugruppe wird noch bearbeitet.");
  SetScreenCursor(TCursor::HourGlass);
  const TScopeExit guard([this] {
    SetScreenCursor(TCursor::Default);
    // A failed scan has left it raised once more.
    while (fTree.Updating()) fTree.EndUpdate();
  });
  TStagingFolder folder(AsmFile);
  folder.Reserve(archive, fFiles);
  if (FileExists(archive)) RemoveFile(archive, folder.Budget());
  folder.Create();
  WriteListing(folder);
  StageFiles(folder);
  // Only now is it known which files could be read.
  if (!fNotCopied.empty() && !fListingReplaced) WriteListing(folder);
  fBar.SetTextStyle(TProgressTextStyle::Text);
  fBar.Repaint();
  WaitMilliseconds(kPause);
  Pack(folder.Path(), archive);
  fBar.SetVisible(false);
  folder.Remove();
}

void TExportRun::WriteListing(TStagingFolder& folder) {
  THtmlListing listing;
  fTree.ForEachRow([&](const TTreeListRow& row) {
    KeepAlive();
    const UnicodeString& file = row.Texts[2];
    TFileFate fate = TFileFate::Packed;
    if (!fExisting.Exists(file)) fate = TFileFate::NotFound;
    if (fNotCopied.contains(file)) fate = TFileFate::NotCopied;
    listing.AddRow({row.Level, row.Image, row.Texts[0], row.Texts[1], file, fate});
  });
  const UnicodeString path = (folder.Path() + u"\\").append(kListingName);
  if (IsLink(path)) RemoveFile(path, folder.Budget());
  TOutputFile page(path, TCreate::Replace);
  listing.Write(Title, Warning, [&page](std::string_view piece) { page.Write(piece); });
  page.Close();
}

/// The copy marks are not asked: the supplier gets every file that exists.
void TExportRun::StageFiles(TStagingFolder& folder) {
  fTree.BeginUpdate();
  fFiles.First();
  fBar.SetMax(static_cast<int>(fFiles.RowCount()));
  fBar.SetPosition(0);
  fBar.SetTextStyle(TProgressTextStyle::Percent);
  fBar.SetVisible(true);
  const TField field = fFiles.Field(u"Filename");
  for (int k = 1; !fFiles.Eof(); fFiles.Next(), ++k) {
    fBar.SetPosition(k);
    fBar.Repaint();
    WaitMilliseconds(kPause);
    KeepAlive();
    const UnicodeString file = field.AsText();
    if (!fExisting.Exists(file)) continue;
    if (!folder.Stage(file)) {
      fNotCopied.insert(file);
      continue;
    }
    fNotCopied.erase(file);
    if (SameText(StagedName(file), kListingName)) fListingReplaced = true;
  }
}

void TExportRun::Pack(const UnicodeString& folder, const UnicodeString& archive) {
  constexpr std::int64_t kFrameMilliseconds = 30;
  std::int64_t painted = TickMilliseconds();
  const auto showProgress = [this, &painted] {
    KeepAlive();
    if (TickMilliseconds() - painted < kFrameMilliseconds) return;
    painted = TickMilliseconds();
    fBar.Repaint();
  };
  TUnfinishedArchive unfinished(archive);
  TZipArchive zip(unfinished.Path(), showProgress);
  zip.AddContents(folder);
  zip.Close();
  unfinished.Finish(showProgress);
}
