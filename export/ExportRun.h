#pragma once

#include <set>

#include "database/Query.h"
#include "export/StagingFolder.h"
#include "platform/ExistingFiles.h"
#include "platform/Text.h"
#include "ui/ProgressBar.h"
#include "ui/TreeList.h"

/// One export: gathers the files of the working table and a listing of the tree in the staging folder and
/// packs them. The export dialog makes it for one click and lends it tree, table and progress bar.
class TExportRun {
 public:
  TExportRun(TTreeList& tree, TQuery& files, TProgressBar& bar);

  // Set before the run.
  UnicodeString AsmFile;  ///< the assembly's file name without its folder; names the staging folder
  UnicodeString Title;    ///< the listing's heading
  UnicodeString Warning;  ///< stands at the listing's head; empty: none

  /// However it ends, the cursor is the default one and the tree's update state has ended. An error leaves no
  /// archive under this name, but the staging folder.
  void Run(const UnicodeString& archive);

 private:
  void WriteListing(TStagingFolder& folder);
  void StageFiles(TStagingFolder& folder);
  void Pack(const UnicodeString& folder, const UnicodeString& archive);

  TTreeList& fTree;
  TQuery& fFiles;
  TProgressBar& fBar;
  TExistingFiles fExisting;
  std::set<UnicodeString> fNotCopied;  // files that exist
  bool fListingReplaced = false;       // by a file of the assembly that has its name
};
