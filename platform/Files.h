#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/Text.h"

/// True also for a folder that is reached through a link whose target exists.
bool FolderExists(TextView path);

/// False for a folder. Asks the system each time; for many files see TExistingFiles.
bool FileExists(TextView path);

/// False where asking for any file of a drive or share ("C:", "\\Server\Share") would be in vain: there is no
/// such root, or it does not answer.
bool RootAnswers(TextView root);

/// `name` as the file system compares it: two names are the same file to it when these are equal.
UnicodeString UpperFileName(TextView name);

/// The folder for short-lived files, with a separator at its end.
UnicodeString TemporaryFolder();

/// The user's desktop; nothing when the shell cannot tell.
std::optional<UnicodeString> DesktopFolder();

/// Creates the folder with every missing folder above it. False when it does not exist afterwards.
bool CreateFolders(TextView path);

/// A moment as the user's clock showed it. It has no time zone; a moment that the system cannot say is all
/// zero.
struct TLocalTime {
  std::uint16_t Year = 0;
  std::uint8_t Month = 0;
  std::uint8_t Day = 0;
  std::uint8_t Hour = 0;
  std::uint8_t Minute = 0;
  std::uint8_t Second = 0;
};

enum class TEntryKind {
  File,
  Folder,
  Other,  ///< a link, whatever it leads to, or a thing that is neither file nor folder
};

struct TFolderEntry {
  UnicodeString Name;
  TEntryKind Kind;
  std::uint64_t Size;  ///< 0 for all but files
  TLocalTime Modified;
};

enum class TListingEnd {
  Complete,
  Stopped,   ///< by the caller
  NoFolder,  ///< there is no such folder
  NoAnswer,  ///< from the drive or server that the folder is on
  Refused,   ///< for any other reason: files that are asked for by name may still be found
};
/// Shows `onName` the names in the folder, in no order, until it answers false.
TListingEnd ListNames(TextView folder, const std::function<bool(TextView name, TEntryKind kind)>& onName);

/// What is in the folder itself, in no order. Throws EError of kind InputOutput with the system's code.
std::vector<TFolderEntry> ListFolder(TextView path);

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
  /// Opens `path` for reading whoever else writes, renames or removes it meanwhile. Throws EError of kind
  /// InputOutput with the system's code.
  static TInputFile OpenShared(TextView path);
  /// Counts as open even where the process has no standard input; the first read then fails.
  static TInputFile StandardInput();

  bool IsOpen() const noexcept { return fImpl != nullptr; }

  /// Reads at least one byte, at most `buffer.size()`; 0 at the end (also at the end of a pipe whose writer
  /// has gone). Throws EError of kind InputOutput with the system's code.
  std::size_t Read(std::span<char> buffer);

  struct TState {
    std::uint64_t Size;
    TLocalTime Modified;
  };
  /// Of an opened file as it is now; standard input has none. Throws as Read does.
  TState State() const;

 private:
  struct TImpl;
  explicit TInputFile(std::unique_ptr<TImpl> impl);
  std::unique_ptr<TImpl> fImpl;
};

enum class TCreate {
  New,      ///< a file that is there already is an error
  Replace,  ///< a file that is there already is emptied
};

/// A file that is written from front to back, with places in it changed afterwards. Where the system can keep
/// others out they may read it meanwhile, nothing else. Every error is an EError of kind InputOutput with the
/// system's code. A file that is destroyed without Close is closed silently and stays as it is.
class TOutputFile {
 public:
  TOutputFile(TextView path, TCreate how);
  TOutputFile(TOutputFile&&) noexcept;
  TOutputFile& operator=(TOutputFile&&) noexcept;
  ~TOutputFile();

  /// Writes all of `bytes` at the end.
  void Write(std::span<const char> bytes);
  /// Overwrites what is at `position`; all of it must be before the end.
  void WriteAt(std::uint64_t position, std::span<const char> bytes);
  /// Some file systems report only here that the data could not be kept. No other call is allowed afterwards.
  void Close();

 private:
  struct TImpl;
  std::unique_ptr<TImpl> fImpl;
};
