#pragma once

#include "platform/Text.h"

/// The file of an archive that is being written, beside its target under another name: it gets the target's
/// name only as a whole. What is not finished is removed by the destructor.
class TUnfinishedArchive {
 public:
  /// Chooses a free name; creates nothing.
  explicit TUnfinishedArchive(TextView target);
  ~TUnfinishedArchive();
  TUnfinishedArchive(const TUnfinishedArchive&) = delete;
  TUnfinishedArchive& operator=(const TUnfinishedArchive&) = delete;

  /// Where the archive is to be written.
  const UnicodeString& Path() const noexcept { return fPath; }
  /// Gives the closed file the target's name, in place of a file that has it. Throws EError of kind
  /// InputOutput.
  void Finish();

 private:
  UnicodeString fTarget;
  UnicodeString fPath;  // empty once it is finished
};
