#pragma once

#include "inventor/ApprenticeServer.h"
#include "platform/Text.h"

// The hint that a document's revision index has changed: one text property among the program's own. Whatever
// shows it on a drawing is part of the drawing; here it is a property and nothing else.

/// The set that holds the program's own (custom) properties.
constexpr std::int32_t kCustomPropertySet = 4;

/// That set, and one property of it. Both fetch the whole chain anew: positions shift when a property goes,
/// so nothing but the position is kept between two steps.
TPropertySet CustomProperties(const TDocument& document);
TProperty CustomProperty(const TDocument& document, std::int32_t index);

/// Exactly so; a property named in other letter case is no hint.
constexpr TextView kIndexHintName = u"IndexHinweis";

/// What the settings say about revision index and hint.
struct TIndexSettings {
  UnicodeString IndexProp;     ///< name of the property that holds the revision index
  UnicodeString IndexHint;     ///< value of a new hint
  bool AutoRemoveHint = true;  ///< a property update drops the hints that it meets
};

/// Adds a hint when the two indexes differ in any way, letter case included, and returns whether it did. Does
/// not look whether the document has one already.
bool AddIndexHint(const TDocument& document, const UnicodeString& oldIndex, const UnicodeString& newIndex,
                  const UnicodeString& hint);

/// Removes the first hint of a document and returns whether there was one. Only then the file is written. At
/// most one goes; a property of that name that holds no text is none. Throws EError.
bool RemoveIndexHint(const UnicodeString& fileName);
