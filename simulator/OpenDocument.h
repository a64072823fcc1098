#pragma once

#include "simulator/Simulator.h"

/// One document as OpenDocument has read it, shared by the document object, everything reached from it and
/// the save set. Changes are kept here until they are written.
class TOpenDocument {
 public:
  /// Throws EError when the file has another extension, cannot be read or is no document.
  TOpenDocument(TSimulator& simulator, UnicodeString fileName);

  const UnicodeString& FileName() const noexcept { return fFileName; }
  TDocumentFile& Content() noexcept { return fContent; }
  UnicodeString DisplayName() const;
  TPastEnd PastEnd() const;
  TDuplicateProperty DuplicateProperty() const;

  /// The full name of a referenced file, as the document writes it.
  UnicodeString FullName(TextView file) const;

  void Close() noexcept { fClosed = true; }
  void CheckOpen() const;
  /// Throws if the document is closed or must be migrated first.
  void CheckSavable() const;

  /// Replaces the property sets in the file as it is now; everything else in it stays.
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

/// The part after the last separator.
UnicodeString NameWithoutFolder(TextView fileName);
}  // namespace simulator
