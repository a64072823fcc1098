#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "platform/Text.h"

/// True also for a folder that is reached through a link whose target exists.
bool FolderExists(TextView path);

/// False for a folder.
bool FileExists(TextView path);

/// Creates the folder with every missing folder above it. False when it does not exist afterwards.
bool CreateFolders(TextView path);

/// A file, or the process's standard input, open for reading from front to back. Closes what it opened
/// itself; standard input stays open.
class TInputFile {
 public:
  TInputFile();
  TInputFile(TInputFile&&) noexcept;
  TInputFile& operator=(TInputFile&&) noexcept;
  ~TInputFile();

  /// Opens `path` for reading while nobody writes to it. Check IsOpen: a failure is not reported here.
  static TInputFile Open(TextView path);
  /// Counts as open even where the process has no standard input; the first read then fails.
  static TInputFile StandardInput();

  bool IsOpen() const noexcept { return fImpl != nullptr; }

  /// Reads at least one byte, at most `buffer.size()`; 0 at the end (also at the end of a pipe whose writer
  /// has gone). Throws EError of kind InputOutput with the system's code.
  std::size_t Read(std::span<char> buffer);

 private:
  struct TImpl;
  explicit TInputFile(std::unique_ptr<TImpl> impl);
  std::unique_ptr<TImpl> fImpl;
};
