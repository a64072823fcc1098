#pragma once

#include <functional>

#include "platform/Text.h"

/// Re-points every reference of a drawing to the file beside the drawing that has the drawing's name and the
/// referenced file's extension, and saves the drawing in place. Whether those files exist is not looked at.
/// A drawing that must be migrated first is left alone: `tellMigration` is called while it is still open, and
/// the answer is false. Throws EError; the file is unchanged unless the save itself had been executed.
bool ChangeDrawingReference(const UnicodeString& fileName, const std::function<void()>& tellMigration);
