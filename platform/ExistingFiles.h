#pragma once

#include <cstddef>
#include <functional>
#include <unordered_map>

#include "platform/Files.h"
#include "platform/Text.h"

/// Says which files exist, for the length of one scan or one export, and asks the system as little as it can:
/// a folder from which more than a few files are asked for is listed once, a drive or share that does not
/// answer is asked once. What has been learnt is never looked at again.
class TExistingFiles {
 public:
  /// `onBlock` is called again and again while a folder is listed; it must not throw.
  explicit TExistingFiles(std::function<void()> onBlock) : fOnBlock(std::move(onBlock)) {}

  /// The answer of FileExists. Where a listing cannot tell, FileExists itself is asked: for links, streams,
  /// short names, names that the system changes before it looks for them, and in unreadable folders.
  bool Exists(TextView path);

 private:
  struct THash : std::hash<TextView> {
    using is_transparent = void;
  };
  template <class TValue>
  using TMap = std::unordered_map<UnicodeString, TValue, THash, std::equal_to<>>;

  struct TRoot {
    bool Answers;
  };
  struct TListedName {
    UnicodeString Spelling;
    TEntryKind Kind;
  };
  enum class TListing { NotYet, Complete, Impossible };
  struct TFolder {
    TRoot* Root;
    TListing Listing = TListing::NotYet;
    std::size_t Questions = 0;
    std::size_t QuestionsToList;
    bool IgnoresCase = false;      ///< as far as has been seen
    TMap<TListedName> Names = {};  ///< by the name in capitals
  };

  TRoot& Root(TextView root);
  TFolder& Folder(TextView folder, TextView root);
  void List(TFolder& folder, TextView path, TextView root);
  static bool ExistsInListing(TFolder& folder, TextView name, TextView path);

  std::function<void()> fOnBlock;
  TMap<TRoot> fRoots;
  TMap<TFolder> fFolders;
};
