#pragma once

#include <functional>
#include <memory>

#include "platform/Files.h"

/// A ZIP archive that is being written, entry after entry in the order of the calls. Every error is an EError
/// of kind InputOutput; after one the archive is of no use, and its file, which the destructor closes, is the
/// caller's to remove. It reads no archives, and adds nothing to one that exists.
class TZipArchive {
 public:
  /// Creates the file `path`, which must not exist. `onBlock`, if any, is called after each block of data:
  /// often enough to keep a window alive.
  explicit TZipArchive(TextView path, std::function<void()> onBlock = {});
  TZipArchive(const TZipArchive&) = delete;
  TZipArchive& operator=(const TZipArchive&) = delete;
  ~TZipArchive();

  /// Packs a file under `name`, in which "\" and "/" separate folders. If somebody writes to it meanwhile,
  /// what is read ends at the size that it had when it was opened.
  void AddFile(TextView path, TextView name);
  /// An entry for a folder itself; only an empty one needs it.
  void AddFolder(TextView name, TLocalTime modified);
  /// Packs everything in a folder, and in the folders in it, under its path from there, in the order of
  /// the names' UTF-16 code units. Links are left out.
  void AddContents(TextView folder);
  /// Writes the directory, without which the archive cannot be read. No other call is allowed afterwards.
  void Close();

 private:
  struct TImpl;

  void AddContents(TextView folder, TextView prefix);

  std::unique_ptr<TImpl> fImpl;
};
