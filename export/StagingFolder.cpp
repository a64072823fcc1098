#include "export/StagingFolder.h"

#include "platform/Error.h"
#include "platform/FileOperations.h"
#include "platform/Files.h"
#include "platform/Path.h"
#include "ui/MessageLoop.h"

namespace {

EError Refusal(TextView folder, TextView reason) {
  UnicodeString message = u"Der Ordner \"";
  message.append(folder).append(u"\" kann nicht für den Export verwendet werden: ").append(reason);
  return {TErrorKind::InputOutput, kAccessDenied, std::move(message)};
}

/// Both normalised.
bool LiesIn(TextView path, TextView folder) {
  return path.size() > folder.size() && path[folder.size()] == u'\\' &&
         SameText(path.substr(0, folder.size()), folder);
}

/// Both normalised: in the folder itself, not deeper.
bool IsChildOf(TextView path, TextView folder) {
  return LiesIn(path, folder) && path.find_first_of(u"\\:", folder.size() + 1) == TextView::npos;
}

/// What speaks against the export as far as the assembly's files go; empty for nothing. All but `files` are
/// normalised.
UnicodeString Obstacle(TextView folder, TextView archive, TQuery& files) {
  const TField file = files.Field(u"Filename");
  for (files.First(); !files.Eof(); files.Next()) {
    KeepAlive();
    const UnicodeString name = file.AsText();
    const UnicodeString path = NormalisedPath(name);
    if (LiesIn(path, folder)) return u"Die Datei \"" + name + u"\" liegt darin.";
    if (SameText(path, archive)) return u"Das Archiv würde die Datei \"" + name + u"\" ersetzen.";
  }
  return {};
}

}  // namespace

UnicodeString StagingFolder(TextView fileName) {
  return TemporaryFolder().append(fileName) + u"\\";
}

void CheckStagingFolder(TextView folder, TextView archive, TQuery& files) {
  const UnicodeString own = NormalisedPath(folder);
  if (!IsChildOf(own, NormalisedPath(TemporaryFolder()))) {
    throw Refusal(folder, u"Er liegt nicht unmittelbar im temporären Ordner.");
  }
  if (IsLink(own)) throw Refusal(folder, u"Er ist eine Verknüpfung.");
  if (FileExists(own)) throw Refusal(folder, u"Dort liegt eine Datei.");
  const UnicodeString target = NormalisedPath(archive);
  if (LiesIn(target, own)) throw Refusal(folder, u"Das Archiv soll darin liegen.");
  const std::size_t row = files.Row();
  const UnicodeString obstacle = Obstacle(own, target, files);
  files.GoTo(row);
  if (!obstacle.empty()) throw Refusal(folder, obstacle);
}

TextView StagedName(TextView file) {
  const TextView name = FileNameWithoutFolder(file);
  return name.substr(name.find_last_of(u'/') + 1);
}

void StageFile(TextView file, TextView folder) {
  CopyFileOver(file, UnicodeString(folder).append(StagedName(file)), [] { KeepAlive(); });
}
