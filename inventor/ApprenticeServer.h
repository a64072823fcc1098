#pragma once

#include <cstdint>

#include "platform/Dispatch.h"
#include "platform/Text.h"
#include "platform/Variant.h"

// The Inventor Apprentice server, as far as the program uses it. Each class holds one counted reference and
// calls its members by dispatch identifier; nothing is looked up by name and nothing is cached: every call
// goes to the component, every `Item` fetches a fresh reference. Positions in a collection count from 1.
// Every operation throws EError of kind Component when the component refuses it.

/// A custom property of a document.
class TProperty {
 public:
  explicit TProperty(TDispatch reference) : fReference(std::move(reference)) {}

  UnicodeString Name() const;
  TVariant Value() const;
  void Value(const TVariant& value) const;
  void Delete() const;

 private:
  TDispatch fReference;
};

class TPropertySet {
 public:
  explicit TPropertySet(TDispatch reference) : fReference(std::move(reference)) {}

  std::int32_t Count() const;
  TProperty Item(std::int32_t index) const;
  /// `id` is the component's own number for the property; 0 lets it choose.
  TProperty AddProperty(const TVariant& value, const UnicodeString& name, std::int32_t id) const;

 private:
  TDispatch fReference;
};

/// The property sets of a document.
class TPropertySets {
 public:
  explicit TPropertySets(TDispatch reference) : fReference(std::move(reference)) {}

  TPropertySet Item(std::int32_t index) const;
  /// Writes the properties of all sets into the document's file.
  void WritePropertiesToFile() const;

 private:
  TDispatch fReference;
};

/// A file that a document refers to.
class TReferencedFile {
 public:
  explicit TReferencedFile(TDispatch reference) : fReference(std::move(reference)) {}

  UnicodeString FullFileName() const;
  UnicodeString DisplayName() const;
  void ReplaceReference(const UnicodeString& fullFileName) const;

 private:
  TDispatch fReference;
};

class TReferencedFiles {
 public:
  explicit TReferencedFiles(TDispatch reference) : fReference(std::move(reference)) {}

  std::int32_t Count() const;
  TReferencedFile Item(std::int32_t index) const;

 private:
  TDispatch fReference;
};

class TDocument {
 public:
  explicit TDocument(TDispatch reference) : fReference(std::move(reference)) {}

  UnicodeString DisplayName() const;
  TPropertySets PropertySets() const;
  /// The set of the program's own (custom) properties, and one property of it. Positions shift when a
  /// property is deleted: keep nothing but the position between two steps.
  TPropertySet CustomProperties() const;
  TProperty CustomProperty(std::int32_t index) const;
  TReferencedFiles ReferencedFiles() const;
  bool NeedsMigration() const;
  void CloseDocument() const;

 private:
  friend class TSaveSet;
  TDispatch fReference;
};

/// Documents to be saved with their references.
class TSaveSet {
 public:
  explicit TSaveSet(TDispatch reference) : fReference(std::move(reference)) {}

  void AddDocumentToSave(const TDocument& document, const UnicodeString& fullFileName) const;
  void ExecuteSave() const;

 private:
  TDispatch fReference;
};

/// One instance of the server. Releasing it does not call CloseServer.
class TApprenticeServer {
 public:
  /// Creates a new instance; nothing is shared with other ones that are still held.
  TApprenticeServer();

  TDocument OpenDocument(const UnicodeString& fullFileName) const;
  TSaveSet SaveSet() const;
  void CloseServer() const;

 private:
  TDispatch fReference;
};
