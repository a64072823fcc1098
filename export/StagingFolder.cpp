#include "export/StagingFolder.h"

#include <algorithm>
#include <map>
#include <unordered_set>
#include <utility>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/Path.h"
#include "ui/MessageLoop.h"

namespace {

constexpr int kRetryMilliseconds = 5'000;

EError Refusal(UnicodeString message) {
  return {TErrorKind::InputOutput, kAccessDenied, std::move(message)};
}

EError FolderRefusal(TextView folder, TextView reason) {
  UnicodeString message = u"Der Ordner \"";
  message.append(folder).append(u"\" kann nicht für den Export verwendet werden: ").append(reason);
  return Refusal(std::move(message));
}

EError ArchiveRefusal(TextView archive, TextView reason) {
  UnicodeString message = u"Das Archiv kann nicht unter \"";
  message.append(archive).append(u"\" gespeichert werden: ").append(reason);
  return Refusal(std::move(message));
}

/// Both normalised.
bool IsIn(TextView path, TextView folder) {
  return path.size() > folder.size() && path[folder.size()] == u'\\' &&
         SameText(path.substr(0, folder.size()), folder);
}

/// Both normalised: in the folder itself, not deeper.
bool IsChildOf(TextView path, TextView folder) {
  return IsIn(path, folder) && path.find_first_of(u"\\:", folder.size() + 1) == TextView::npos;
}

/// The lock stands beside the folder, as all that is in the folder gets into the archive.
UnicodeString LockPath(TextView folder) {
  constexpr std::size_t kMostOfName = 200;
  const std::size_t name = FileNameWithoutFolder(folder).size();
  return UnicodeString(folder.substr(0, folder.size() - name + std::min(name, kMostOfName))) + u"~Export.tmp";
}

/// Tells which files are in a folder, also those that are named by another drive, share or link.
class TFolderTest {
 public:
  explicit TFolderTest(const UnicodeString& folder) : fFolder(folder), fIdentity(IdentityOf(folder)) {}

  bool Contains(TextView file) {
    if (IsIn(NormalisedPath(file), fFolder)) return true;
    // Nothing can be in a folder that does not exist.
    return fIdentity && IsOrIsIn(UnicodeString(ParentFolder(ResolvedPath(file))));
  }

 private:
  /// Each folder is asked once.
  bool IsOrIsIn(const UnicodeString& folder) {
    if (folder.empty() || folder.ends_with(u':')) return false;
    const auto known = fKnown.find(folder);
    if (known != fKnown.end()) return known->second;
    const bool result = IdentityOf(folder) == fIdentity || IsOrIsIn(UnicodeString(ParentFolder(folder)));
    fKnown.emplace(folder, result);
    return result;
  }

  UnicodeString fFolder;
  std::optional<TFileIdentity> fIdentity;
  std::map<UnicodeString, bool> fKnown;
};

/// Tells whether a path names a certain file, which may not exist yet.
class TFileTest {
 public:
  explicit TFileTest(TextView file) : fPath(NormalisedPath(file)), fIdentity(IdentityOf(file)) {}

  bool Is(TextView file) const {
    return SameText(NormalisedPath(file), fPath) || (fIdentity && IdentityOf(file) == fIdentity);
  }

 private:
  UnicodeString fPath;
  std::optional<TFileIdentity> fIdentity;
};

/// Throws where a file of the assembly would be lost.
void CheckFiles(const UnicodeString& folder, TFolderTest& contents, TextView archive, TQuery& files) {
  const TFileTest target(archive);
  std::unordered_set<UnicodeString> seen;
  const TField file = files.Field(u"Filename");
  for (files.First(); !files.Eof(); files.Next()) {
    KeepAlive();
    const UnicodeString name = file.AsText();
    if (!seen.insert(name).second) continue;
    if (contents.Contains(name)) throw FolderRefusal(folder, u"Die Datei \"" + name + u"\" liegt darin.");
    if (target.Is(name)) throw ArchiveRefusal(archive, u"Es würde die Datei \"" + name + u"\" ersetzen.");
  }
}

}  // namespace

TStagingFolder::TStagingFolder(TextView assembly)
    : fPath(TemporaryFolder().append(assembly)), fBudget(kRetryMilliseconds, [] { KeepAlive(); }) {}

void TStagingFolder::Reserve(TextView archive, TQuery& files) {
  const UnicodeString own = NormalisedPath(fPath);
  if (!IsChildOf(own, NormalisedPath(TemporaryFolder()))) {
    throw FolderRefusal(fPath, u"Er liegt nicht unmittelbar im temporären Ordner.");
  }
  // Before the first look at what is there: nothing may change between the looks and the first touch.
  fLock.emplace(LockPath(own));
  if (!fLock->IsHeld()) throw FolderRefusal(fPath, u"Ein anderer Export benutzt ihn gerade.");
  if (IsLink(own)) throw FolderRefusal(fPath, u"Er ist eine Verknüpfung.");
  if (FileExists(own)) throw FolderRefusal(fPath, u"Dort liegt eine Datei.");
  TFolderTest contents(own);
  if (contents.Contains(archive)) {
    throw ArchiveRefusal(archive, u"In diesem Ordner werden die Dateien für das Archiv gesammelt.");
  }
  const std::size_t row = files.Row();
  CheckFiles(fPath, contents, archive, files);
  files.GoTo(row);
}

void TStagingFolder::Create() const {
  if (!CreateFolders(fPath)) throw Refusal(u"Der Ordner \"" + fPath + u"\" kann nicht angelegt werden.");
}

/// A screw that is referenced a thousand times is copied once, unless another file of its name came between:
/// the later row wins.
bool TStagingFolder::Stage(const UnicodeString& file) {
  const UnicodeString name(StagedName(file));
  // A short name, or dots and blanks at the end, may be another spelling of any name.
  if (name.find(u'~') != UnicodeString::npos || name.ends_with(u'.') || name.ends_with(u' ')) fStaged.clear();
  UnicodeString& source = fStaged[SameTextKey(name)];
  if (source == file) return true;
  source.clear();
  if (!CopyFileOver(file, fPath + u"\\" + name, fBudget)) return false;
  source = file;
  return true;
}

TextView StagedName(TextView file) {
  const TextView name = FileNameWithoutFolder(file);
  return name.substr(name.find_last_of(u'/') + 1);
}
