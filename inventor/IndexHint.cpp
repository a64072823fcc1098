#include "inventor/IndexHint.h"

namespace {

/// Fetched anew for every access: positions are all that is kept of a property.
TProperty PropertyAt(const TDocument& document, std::int32_t index) {
  return document.PropertySets().Item(kCustomPropertySet).Item(index);
}

bool DeleteFirstHint(const TDocument& document) {
  const std::int32_t count = document.PropertySets().Item(kCustomPropertySet).Count();
  for (std::int32_t index = 1; index <= count; ++index) {
    if (!PropertyAt(document, index).Value().IsText()) continue;
    if (PropertyAt(document, index).Name() != kIndexHintName) continue;
    PropertyAt(document, index).Delete();
    return true;
  }
  return false;
}

}  // namespace

bool AddIndexHint(const TDocument& document, const UnicodeString& oldIndex, const UnicodeString& newIndex,
                  const UnicodeString& hint) {
  if (oldIndex == newIndex) return false;
  document.PropertySets()
      .Item(kCustomPropertySet)
      .AddProperty(TVariant::Text(hint), UnicodeString(kIndexHintName), 0);
  return true;
}

bool RemoveIndexHint(const UnicodeString& fileName) {
  const TApprenticeServer server;
  const TDocument document = server.OpenDocument(fileName);
  const bool found = DeleteFirstHint(document);
  if (found) document.PropertySets().WritePropertiesToFile();
  document.CloseDocument();
  return found;
}
