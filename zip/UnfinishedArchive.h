#pragma once

#include <functional>

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
  /// Gives the closed file the target's name, in place of a file that has it. Where a scanner or a backup has
  /// the new file open it is waited for, up to half a minute, with calls of `keepAlive`. Throws EError of
  /// kind InputOutput; the complete archive then stays, and the message says where.
  void Finish(const std::function<void()>& keepAlive);

 private:
  UnicodeString fTarget;
  UnicodeString fPath;  // empty once it is finished
};
