#pragma once

#include "inventor/ApprenticeServer.h"
#include "platform/Text.h"

// The hint that a document's revision index has changed: one text property among the custom ones. How
// a drawing displays it is up to the drawing.

/// Case-sensitive: a property whose name differs in letter case is no hint.
constexpr TextView kIndexHintName = u"IndexHinweis";

/// What the settings say about revision index and hint.
struct TIndexSettings {
  UnicodeString IndexProp;     ///< name of the property that holds the revision index
  UnicodeString IndexHint;     ///< value of a new hint
  bool AutoRemoveHint = true;  ///< a property update deletes the hints that it meets
};

/// Adds a hint if the two indexes differ in any way, letter case included, and returns whether it did. A hint
/// that the document has already makes no difference.
bool AddIndexHint(const TDocument& document, const UnicodeString& oldIndex, const UnicodeString& newIndex,
                  const UnicodeString& hint);

/// Removes the first hint of a document and returns whether there was one; the file is written only then. A
/// property of that name whose value is not text is no hint. Throws EError.
bool RemoveIndexHint(const UnicodeString& fileName);
