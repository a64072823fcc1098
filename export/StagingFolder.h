#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "database/Query.h"
#include "platform/FileOperations.h"
#include "platform/Text.h"

/// The folder in which the files of an archive are gathered, below the folder for short-lived files and named
/// like the assembly. It is removed with all that is in it, so nothing of the user's may ever be in it. Made
/// for one export.
class TStagingFolder {
 public:
  /// `assembly` is a file name without its folder. Touches nothing.
  explicit TStagingFolder(TextView assembly);

  /// Without a separator at its end.
  const UnicodeString& Path() const noexcept { return fPath; }
  /// What the export may wait for files that other programs hold; keeps the window alive.
  TRetryBudget& Budget() noexcept { return fBudget; }

  /// Keeps other exports away from the folder until this object goes, or the process. Throws EError of kind
  /// InputOutput, with a text for the user, where another export uses the folder, or it must not be used: it
  /// is no child of the folder for short-lived files or a link, or a file of the working table or `archive`
  /// is in it; also when `archive` is such a file itself, as what has its name is removed. Touches neither
  /// folder nor archive, and leaves the query's cursor where it was.
  void Reserve(TextView archive, TQuery& files);
  /// What an earlier export has left in it stays. Throws EError of kind InputOutput.
  void Create() const;
  /// Copies a file that exists into the folder, over one of its name. False when it cannot be copied.
  bool Stage(const UnicodeString& file);
  /// With all that is in it; what cannot be removed stays.
  void Remove() noexcept { RemoveFolder(fPath, fBudget); }

 private:
  UnicodeString fPath;
  TRetryBudget fBudget;
  std::optional<TLockFile> fLock;
  std::unordered_map<std::string, UnicodeString> fStaged;  // the source of each name, by its SameTextKey
};

/// The file's name in the folder: everything after the last separator, "/" too, so that nothing in it leads
/// out of the folder.
TextView StagedName(TextView file);
