#include "simulator/OpenDocument.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "simulator/SimulatedObject.h"

using simulator::Failure;
using simulator::Quoted;

namespace {

/// Everything up to the last separator, which is included; empty for a bare name.
TextView FolderOf(TextView fileName) {
  const std::size_t separator = fileName.find_last_of(u"\\/:");
  return separator == TextView::npos ? TextView() : fileName.substr(0, separator + 1);
}

bool HasDocumentExtension(TextView fileName) {
  constexpr std::array<TextView, 4> kExtensions{u".ipt", u".iam", u".idw", u".ipn"};
  const TextView extension = fileName.substr(fileName.size() - std::min<std::size_t>(fileName.size(), 4));
  return std::ranges::any_of(kExtensions, [extension](TextView known) { return SameText(extension, known); });
}

bool IsFullName(TextView fileName) {
  const bool rooted = fileName.starts_with(u'\\') || fileName.starts_with(u'/');
  return rooted || (fileName.size() > 1 && fileName[1] == u':');
}

std::string Load(const TSimulator& simulator, const UnicodeString& fileName) {
  try {
    return simulator.Files().Load(fileName);
  } catch (const EError& error) {
    throw Failure(Quoted(fileName) + u" kann nicht gelesen werden: " + error.Message());
  }
}

TDocumentFile Parse(const UnicodeString& fileName, const std::string& bytes) {
  try {
    return simulator::ParseDocument(bytes);
  } catch (const EError& error) {
    throw Failure(Quoted(fileName) + u" ist kein lesbares Dokument: " + error.Message());
  }
}

UnicodeString Checked(UnicodeString fileName) {
  if (HasDocumentExtension(fileName)) return fileName;
  throw Failure(Quoted(fileName) + u" ist keine Inventor-Datei (.ipt, .iam, .idw oder .ipn).");
}

/// `fileName` seen from the folder of `document`; a full name stays as it is.
UnicodeString ResolvedName(TextView document, TextView fileName) {
  if (IsFullName(fileName)) return UnicodeString(fileName);
  UnicodeString folder(FolderOf(document));
  UnicodeString rest(fileName);
  // A document with Windows paths gets Windows separators, whatever its author typed.
  if (folder.find(u'\\') != UnicodeString::npos) std::ranges::replace(rest, u'/', u'\\');
  const auto begins = [&rest](TextView dots) {
    return rest.starts_with(dots) && rest.size() > dots.size() &&
           (rest[dots.size()] == u'\\' || rest[dots.size()] == u'/');
  };
  for (;;) {
    if (begins(u".")) {
      rest.erase(0, 2);
    } else if (begins(u"..") && folder.size() > 1) {
      rest.erase(0, 3);
      folder.pop_back();
      folder = FolderOf(folder);
    } else {
      return folder + rest;
    }
  }
}

}  // namespace

TOpenDocument::TOpenDocument(TSimulator& simulator, UnicodeString fileName)
    : fSimulator(simulator),
      fFileName(Checked(std::move(fileName))),
      fContent(Parse(fFileName, Load(simulator, fFileName))) {}

UnicodeString TOpenDocument::DisplayName() const {
  return fContent.DisplayName.value_or(simulator::NameWithoutFolder(fFileName));
}

TPastEnd TOpenDocument::PastEnd() const {
  return fSimulator.Settings().PastEnd.value_or(fContent.PastEnd.value_or(TPastEnd::Error));
}

TDuplicateProperty TOpenDocument::DuplicateProperty() const {
  return fSimulator.Settings().DuplicateProperty.value_or(
      fContent.DuplicateProperty.value_or(TDuplicateProperty::Refuse));
}

UnicodeString TOpenDocument::FullName(TextView file) const {
  return ResolvedName(fFileName, file);
}

void TOpenDocument::CheckOpen() const {
  if (fClosed) throw Failure(u"Das Dokument " + Quoted(fFileName) + u" ist geschlossen.");
}

void TOpenDocument::CheckSavable() const {
  CheckOpen();
  if (fContent.NeedsMigration.value_or(0) == 0) return;
  throw Failure(u"Das Dokument " + Quoted(fFileName) + u" muss vor dem Speichern migriert werden.");
}

void TOpenDocument::WriteProperties() const {
  TDocumentFile content = Parse(fFileName, Load(fSimulator, fFileName));
  content.PropertySets = fContent.PropertySets;
  Store(fFileName, content);
}

void TOpenDocument::SaveAs(const UnicodeString& fileName) const {
  TDocumentFile content = fContent;
  // Relative names are only right in the same folder.
  if (!SameText(FolderOf(fileName), FolderOf(fFileName))) {
    for (TReferenceData& reference : content.References) reference.File = FullName(reference.File);
  }
  Store(Checked(fileName), content);
}

void TOpenDocument::Store(const UnicodeString& fileName, const TDocumentFile& content) const {
  const std::string bytes = simulator::SerialiseDocument(content);
  try {
    fSimulator.Files().Store(fileName, bytes);
  } catch (const EError& error) {
    throw Failure(Quoted(fileName) + u" kann nicht geschrieben werden: " + error.Message());
  }
}

namespace simulator {

UnicodeString NameWithoutFolder(TextView fileName) {
  return UnicodeString(fileName.substr(FolderOf(fileName).size()));
}

}  // namespace simulator
