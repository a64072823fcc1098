#pragma once

#include <cstddef>
#include <memory>

#include "simulator/Simulator.h"

/// One document as OpenDocument has read it, shared by the document object, everything reached from it and
/// the save set. Changes stay in here until they are written.
class TOpenDocument {
 public:
  /// Throws EError when the file has another extension, cannot be read or is no document.
  TOpenDocument(TSimulator& simulator, UnicodeString fileName);

  const UnicodeString& FileName() const noexcept { return fFileName; }
  TDocumentFile& Content() noexcept { return fContent; }
  UnicodeString DisplayName() const;
  TPastEnd PastEnd() const;
  TDuplicateProperty DuplicateProperty() const;

  /// The full name of the reference at `index`, from 0.
  UnicodeString ReferencedFile(std::size_t index) const;

  void Close() noexcept { fClosed = true; }
  void CheckOpen() const;
  void CheckMigrated() const;

  /// Puts the property sets into the file as it is now; everything else in it stays.
  void WriteProperties() const;
  /// Writes the whole document to `fileName`.
  void SaveAs(const UnicodeString& fileName) const;

 private:
  void Store(const UnicodeString& fileName, const TDocumentFile& content) const;

  TSimulator& fSimulator;
  UnicodeString fFileName;
  TDocumentFile fContent;
  bool fClosed = false;
};

namespace simulator {

/// The part behind the last separator.
UnicodeString NameWithoutFolder(TextView fileName);
/// `fileName` seen from the folder of `document`; a full name stays as it is.
UnicodeString ResolvedName(TextView document, TextView fileName);

}  // namespace simulator
