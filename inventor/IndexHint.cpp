#include "inventor/IndexHint.h"

namespace {

bool DeleteFirstHint(const TDocument& document) {
  const std::int32_t count = document.CustomProperties().Count();
  for (std::int32_t done = 0; done < count; ++done) {
    const std::int32_t index = done + 1;
    if (!document.CustomProperty(index).Value().IsText()) continue;
    if (document.CustomProperty(index).Name() != kIndexHintName) continue;
    document.CustomProperty(index).Delete();
    return true;
  }
  return false;
}

}  // namespace

bool AddIndexHint(const TDocument& document, const UnicodeString& oldIndex, const UnicodeString& newIndex,
                  const UnicodeString& hint) {
  if (oldIndex == newIndex) return false;
  document.CustomProperties().AddProperty(TVariant::Text(hint), UnicodeString(kIndexHintName), 0);
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
