#include "inventor/IndexHint.h"

namespace {

bool DeleteFirstHint(const TDocument& document) {
  const std::int32_t count = CustomProperties(document).Count();
  for (std::int32_t index = 1; index <= count; ++index) {
    if (!CustomProperty(document, index).Value().IsText()) continue;
    if (CustomProperty(document, index).Name() != kIndexHintName) continue;
    CustomProperty(document, index).Delete();
    return true;
  }
  return false;
}

}  // namespace

TPropertySet CustomProperties(const TDocument& document) {
  return document.PropertySets().Item(kCustomPropertySet);
}

TProperty CustomProperty(const TDocument& document, std::int32_t index) {
  return CustomProperties(document).Item(index);
}

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
