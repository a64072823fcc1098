#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/Text.h"

/// What became of a row's file.
enum class TFileFate {
  Packed,
  NotFound,
  NotCopied,  ///< it exists, but could not be copied into the archive
};

/// One row of the exported tree as the listing shows it.
struct TListingRow {
  int Level = 0;  ///< 0 is the top
  int Image = 0;  ///< ICON_PART, ICON_ASSEMBLY or ICON_DRAWING
  TextView Key;
  TextView Name;
  TextView File;
  TFileFate Fate = TFileFate::Packed;
};

/// The listing: a page of HTML in UTF-8 that needs no other file. It takes each row once, in the tree's
/// order, and keeps its markup until the page is written.
class THtmlListing {
 public:
  static constexpr std::size_t kKindCount = 3;
  using TWriter = std::function<void(std::string_view)>;

  void AddRow(const TListingRow& row);
  /// `warning` stands at the page's head; empty: there is none. `write` gets the page piece by piece, each at
  /// most some tens of KiB.
  void Write(TextView title, TextView warning, const TWriter& write) const;

 private:
  struct TFileName {
    std::size_t Hash;  // of its key
    std::size_t Key;   // where this begins in fKeys
    std::size_t KeySize;
    const std::string* Folder;  // one of fFolders
    std::size_t Row;
  };

  class TPage;

  void AddName(TextView path);
  std::vector<bool> RowsWithSharedNames() const;
  void WriteSummary(TPage& page, TextView warning) const;
  void WriteRows(TPage& page) const;

  std::string fMarkup;                       // of all rows
  std::vector<std::size_t> fRows;            // the end of each one's markup
  std::vector<TFileName> fNames;             // of the rows that name a file
  std::string fKeys;                         // of all names
  std::unordered_set<std::string> fFolders;  // the keys of all folders
  std::array<std::int64_t, kKindCount> fCounts{};
  std::int64_t fMissing = 0;
};
