#include "inventor/IndexHint.h"

bool AddIndexHint(const TDocument& document, const UnicodeString& oldIndex, const UnicodeString& newIndex,
                  const UnicodeString& hint) {
  if (oldIndex == newIndex) return false;
  document.PropertySets()
      .Item(kCustomPropertySet)
      .AddProperty(TVariant::Text(hint), UnicodeString(kIndexHintName), 0);
  return true;
}
