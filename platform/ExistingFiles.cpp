#include "platform/ExistingFiles.h"

#include <algorithm>
#include <array>

namespace {

// A server answers a question, or gives some hundred names of a folder, in the time of one message to and
// fro. So a folder is listed with the fifth question if it has no more than a thousand names, and one with
// 100,000 names not before question 500. A listing that has to stop is tried again with twice as many
// questions: all in all it never costs more than a small multiple of the questions themselves.
constexpr std::size_t kQuestionsToList = 5;
constexpr std::size_t kNamesForQuestion = 200;

constexpr std::size_t kNamesBetweenCalls = 64;  // of the owner, while a folder is listed

/// The beginning of a share's path up to the end of the share's name, `begin` being where the server's
/// begins; empty if `path` is none.
TextView ShareOf(TextView path, std::size_t begin, TextView separators) {
  const std::size_t share = path.find_first_of(separators, begin) + 1;
  if (share == 0 || share == begin + 1) return {};
  const std::size_t end = path.find_first_of(separators, share);
  return end == TextView::npos || end == share ? TextView() : path.substr(0, end);
}

TextView DriveOf(TextView path, std::size_t begin, TextView separators) {
  const bool isDrive = path.size() > begin + 2 && path[begin + 1] == u':' &&
                       separators.find(path[begin + 2]) != TextView::npos;
  return isDrive ? path.substr(0, begin + 2) : TextView();
}

struct TParts {
  TextView Root;  ///< drive or share; empty for a path that does not begin with one
  TextView Folder;
  TextView Name;
};

/// Takes a path apart by the system's rules. Behind "\\?\" it takes names as they are.
TParts PartsOf(TextView path) {
  constexpr TextView kLiteral = u"\\\\?\\";
  constexpr TextView kLiteralShare = u"\\\\?\\UNC\\";
  const TextView separators = path.starts_with(kLiteral) ? u"\\" : u"\\/";
  const auto separates = [&](std::size_t at) { return separators.find(path[at]) != TextView::npos; };
  TextView root;
  if (path.starts_with(kLiteralShare)) {
    root = ShareOf(path, kLiteralShare.size(), separators);
  } else if (path.starts_with(kLiteral)) {
    root = DriveOf(path, kLiteral.size(), separators);
  } else if (path.size() > 3 && separates(0) && separates(1)) {
    const bool isDevice = (path[2] == u'.' || path[2] == u'?') && separates(3);
    root = isDevice ? TextView() : ShareOf(path, 2, separators);
  } else {
    root = DriveOf(path, 0, separators);
  }
  if (root.empty()) return {};
  const std::size_t separator = path.find_last_of(separators);
  return {root, path.substr(0, separator), path.substr(separator + 1)};
}

/// Devices are found in every folder, with any extension.
bool NamesDevice(TextView name) {
  constexpr std::array kDevices = {u"CON", u"PRN", u"AUX", u"NUL", u"COM", u"LPT"};
  const TextView base = name.substr(0, name.find_first_of(u". "));
  const auto isDevice = [base](TextView device) {
    return std::ranges::equal(base.substr(0, device.size()), device, {},
                              [](char16_t c) { return c & ~0x20; });
  };
  return (base.size() == 3 || base.size() == 4 || base.ends_with(u'$')) &&
         std::ranges::any_of(kDevices, isDevice);
}

/// True for a name that may not stand in the listing as it is written here, and exist.
bool IsListedOtherwise(TextView name) {
  return name.empty() || name.back() == u'.' || name.back() == u' ' || NamesDevice(name) ||
         std::ranges::any_of(name,
                             [](char16_t c) { return c < u' ' || c == u'~' || c == u':' || c == u'/'; });
}

}  // namespace

bool TExistingFiles::Exists(TextView path) {
  const auto [root, folderPath, name] = PartsOf(path);
  if (root.empty()) return FileExists(path);
  TFolder& folder = Folder(folderPath, root);
  if (folder.Listing == TListing::NotYet && folder.Root->Answers) {
    if (++folder.Questions >= folder.QuestionsToList) List(folder, folderPath, root);
  }
  if (!folder.Root->Answers) return false;
  return folder.Listing == TListing::Complete ? ExistsInListing(folder, name, path) : FileExists(path);
}

TExistingFiles::TRoot& TExistingFiles::Root(TextView root) {
  auto known = fRoots.find(root);
  if (known == fRoots.end()) known = fRoots.emplace(root, TRoot{RootAnswers(root)}).first;
  return known->second;
}

TExistingFiles::TFolder& TExistingFiles::Folder(TextView folder, TextView root) {
  auto known = fFolders.find(folder);
  if (known == fFolders.end()) {
    known = fFolders.emplace(folder, TFolder{.Root = &Root(root), .QuestionsToList = kQuestionsToList}).first;
  }
  return known->second;
}

void TExistingFiles::List(TFolder& folder, TextView path, TextView root) {
  std::size_t left = folder.Questions * kNamesForQuestion;
  const auto enter = [&](TextView name, TEntryKind kind) {
    if (left-- == 0) return false;
    if (left % kNamesBetweenCalls == 0) fOnBlock();
    const auto [entry, isNew] =
        folder.Names.try_emplace(UpperFileName(name), TListedName{UnicodeString(name), kind});
    if (!isNew) entry->second.Kind = TEntryKind::Other;  // two that differ in case alone: the system knows
    return true;
  };
  switch (ListNames(path, enter)) {
    case TListingEnd::Complete:
      folder.Listing = TListing::Complete;
      return;
    case TListingEnd::Stopped:
      folder.QuestionsToList = 2 * folder.Questions;
      break;
    case TListingEnd::NoFolder:
      folder.Listing = TListing::Complete;
      break;
    case TListingEnd::NoAnswer:
      // Either the whole root has gone, or just this folder, which is a link to somewhere else.
      folder.Root->Answers = RootAnswers(root);
      folder.Listing = TListing::Complete;
      break;
    case TListingEnd::Refused:
      folder.Listing = TListing::Impossible;
      break;
  }
  folder.Names.clear();
}

bool TExistingFiles::ExistsInListing(TFolder& folder, TextView name, TextView path) {
  if (IsListedOtherwise(name)) return FileExists(path);
  const auto found = folder.Names.find(UpperFileName(name));
  if (found == folder.Names.end()) return false;
  const auto& [spelling, kind] = found->second;
  if (kind != TEntryKind::Other && (folder.IgnoresCase || name == spelling)) return kind == TEntryKind::File;
  const bool exists = FileExists(path);
  // Some folders, of shares say, distinguish capitals. One that does not says so with the first such name.
  if (exists && kind == TEntryKind::File) folder.IgnoresCase = true;
  return exists;
}
