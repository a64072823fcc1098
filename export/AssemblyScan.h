#pragma once

#include <functional>

#include "database/Query.h"
#include "platform/ExistingFiles.h"
#include "platform/Text.h"

/// Fills the working table with the files that an assembly uses, at every depth, and the drawings beside
/// them. Each level has a server of its own. An error ends the scan where it stands: the rows so far stay,
/// the cursor stays the hourglass, and the servers that are open are released without being closed.
class TAssemblyScan {
 public:
  /// `query` is open on the empty working table; `files` says which drawings there are. Both outlive the
  /// scan.
  TAssemblyScan(TQuery& query, TExistingFiles& files) : fQuery(query), fFiles(files) {}

  // Both are set before the scan begins.
  std::function<void(const UnicodeString& displayName)> OnRootOpened;
  std::function<void()> OnLevelScanned;

  /// Enters `datei` itself, then everything below it. A file below itself is an error; depth has no limit.
  void FirstOpenAssembly(const UnicodeString& datei);

 private:
  void InsertRoot(const UnicodeString& datei);
  /// Enters everything below `datei`, whose row is the current one.
  void ScanAssembly(const UnicodeString& datei);
  void EnterPart(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                 std::int64_t parent);
  void EnterAssembly(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                     std::int64_t parent);
  /// Enters the drawing of the same name beside `file`, if there is one.
  void EnterDrawing(const UnicodeString& file, const UnicodeString& name, std::int32_t index,
                    std::int64_t parent);

  TQuery& fQuery;
  TExistingFiles& fFiles;
};
