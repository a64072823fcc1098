#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/Text.h"
#include "platform/Variant.h"

/// What a property set answers when it is asked for a property past its last one.
enum class TPastEnd { Error, Empty };

/// What a property set answers when it is to add a name that it already has.
enum class TDuplicateProperty { Refuse, Accept };

// `Extra` holds the members of the file that are not known here, as the text of a JSON object, or is empty:
// a document that is written back keeps its notes.

struct TPropertyData {
  UnicodeString Name;
  TVariant Value;
  std::string Extra;
  bool Deleted = false;  ///< from its set; clients may still hold an object for it
};

struct TPropertySetData {
  UnicodeString Name;  ///< for the reader: sets are addressed by number; may be empty
  std::string Extra;
  std::vector<std::shared_ptr<TPropertyData>> Properties;
  std::unordered_multiset<UnicodeString> Names;  ///< of Properties

  bool Has(const UnicodeString& name) const { return Names.contains(name); }
  const std::shared_ptr<TPropertyData>& Add(TPropertyData property);
  void Remove(TPropertyData& property);
};

struct TReferenceData {
  UnicodeString File;  ///< as the document writes it; may be relative to the document's folder
  std::optional<UnicodeString> DisplayName;
  std::string Extra;
};

/// The contents of one document.
struct TDocumentFile {
  std::optional<UnicodeString> DisplayName;
  std::optional<std::int16_t> NeedsMigration;  ///< a VARIANT_BOOL, any value
  std::vector<TPropertySetData> PropertySets;
  std::vector<TReferenceData> References;
  std::optional<TPastEnd> PastEnd;
  std::optional<TDuplicateProperty> DuplicateProperty;
  std::string Extra;
};

namespace simulator {

/// Throws EError, with a message about the contents alone, when they are no document.
TDocumentFile ParseDocument(std::string_view bytes);

/// Two blanks for each level, known members first and always in the same order, UTF-8 without escapes.
std::string SerialiseDocument(const TDocumentFile& document);

/// Nothing for a word that is none of the switch's.
std::optional<TPastEnd> PastEndFromWord(std::string_view word);
std::optional<TDuplicateProperty> DuplicatePropertyFromWord(std::string_view word);

}  // namespace simulator
