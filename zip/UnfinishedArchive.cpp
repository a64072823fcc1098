#include "zip/UnfinishedArchive.h"

#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/Path.h"

namespace {

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
    if (FileExists(fPath)) RemoveFile(fPath);
  } catch (...) {  // The error that ended the export is the one to be shown.
  }
}

void TUnfinishedArchive::Finish() {
  RenameFile(fPath, fTarget);
  fPath.clear();
}
