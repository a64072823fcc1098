#include "zip/UnfinishedArchive.h"

#include <utility>

#include "platform/Error.h"
#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/Path.h"

namespace {

constexpr int kRemovalMilliseconds = 2'000;
constexpr int kRenamingMilliseconds = 30'000;

/// A short name, so that it fits wherever the archive's own does. A program that was killed may have left
/// some of them.
UnicodeString FreeName(TextView target) {
  target.remove_suffix(FileNameWithoutFolder(target).size());
  for (int i = 1;; ++i) {
    UnicodeString name = UnicodeString(target).append(u"~Archiv").append(DecimalText(i)).append(u".tmp");
    if (!FileExists(name) && !FolderExists(name)) return name;
  }
}

}  // namespace

TUnfinishedArchive::TUnfinishedArchive(TextView target) : fTarget(target), fPath(FreeName(target)) {}

TUnfinishedArchive::~TUnfinishedArchive() {
  if (fPath.empty()) return;
  try {
    TRetryBudget budget(kRemovalMilliseconds);
    if (FileExists(fPath)) RemoveFile(fPath, budget);
  } catch (...) {  // The error that ended the export is the one to be shown.
  }
}

void TUnfinishedArchive::Finish(const std::function<void()>& keepAlive) {
  const UnicodeString finished = std::exchange(fPath, {});
  TRetryBudget budget(kRenamingMilliseconds, keepAlive);
  try {
    RenameFile(finished, fTarget, budget);
  } catch (const EError& error) {
    throw EError(error.Kind(), error.Code(),
                 u"Das Archiv ist vollständig, kann aber seinen Namen \"" + fTarget + u"\" nicht erhalten: " +
                     error.Message() + u". Es liegt unter \"" + finished + u"\".");
  }
}
