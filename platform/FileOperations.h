#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Text.h"

// Whole files and folders: what the export does with those it stages.

/// How long operations are retried that another program's open handle blocks, as a scanner opens each new
/// file: so many milliseconds in all, over all operations that share the budget.
class TRetryBudget {
 public:
  /// `keepAlive` is called in each pause, and by the operations again and again while they work. It must not
  /// throw.
  explicit TRetryBudget(int milliseconds, std::function<void()> keepAlive = {});

  /// Pauses for a moment before another attempt; false, at once, when the time is used up.
  bool Pause();
  void KeepAlive() const {
    if (fKeepAlive) fKeepAlive();
  }

 private:
  int fMilliseconds;
  std::function<void()> fKeepAlive;
};

/// `path` as the system understands it: absolute, with "\" alone, without "\\?\", ".", "..", dots and blanks
/// at the ends of names, and a separator at its own end; short names made long. For comparing paths, not for
/// opening them.
UnicodeString NormalisedPath(TextView path);

/// The same with all links followed, as far as the path exists.
UnicodeString ResolvedPath(TextView path);

/// Distinguishes a file or folder from every other one, however its path is spelled.
struct TFileIdentity {
  std::uint64_t Volume;
  std::uint64_t Index;
  bool operator==(const TFileIdentity&) const = default;
};
/// Links are followed. Nothing when it does not exist, or when the file system gives no identities.
std::optional<TFileIdentity> IdentityOf(TextView path);

/// True for a link to a file or a folder, also when it leads nowhere.
bool IsLink(TextView path);

/// Copies a file over whatever file has the name `to`, write-protected or a link: a link is replaced, not
/// followed. False when it fails: a source or target that cannot be opened leaves what is there, and no copy
/// is left half.
bool CopyFileOver(TextView from, TextView to, TRetryBudget& budget);

/// Throws EError of kind InputOutput with the system's code, for a write-protected file too.
void RemoveFile(TextView path, TRetryBudget& budget);

/// Gives a file another name in the same folder, in place of the file that has it. Throws like RemoveFile.
void RenameFile(TextView from, TextView to, TRetryBudget& budget);

/// Removes a folder with all that is in it. Links are removed, not followed; what cannot be removed stays.
void RemoveFolder(TextView path, TRetryBudget& budget) noexcept;

/// A file that only one process can hold: it shows the others that something is in use. It goes with the
/// object, and with the process however that ends.
class TLockFile {
 public:
  /// Check IsHeld: false when somebody holds the file. Throws EError of kind InputOutput with the system's
  /// code when it cannot be made.
  explicit TLockFile(TextView path);
  ~TLockFile();
  TLockFile(const TLockFile&) = delete;
  TLockFile& operator=(const TLockFile&) = delete;

  bool IsHeld() const noexcept { return fImpl != nullptr; }

 private:
  struct TImpl;
  std::unique_ptr<TImpl> fImpl;
};
