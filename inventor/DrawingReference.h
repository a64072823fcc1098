#pragma once

#include <functional>

#include "platform/Text.h"

/// Re-points every reference of a drawing to the file beside the drawing that has the drawing's name and the
/// referenced file's extension, and saves the drawing in place. Whether those files exist is not checked.
/// A drawing that must be migrated first is left unchanged: `onMigrationNeeded` is called while it is still
/// open, and the result is false. Throws EError; the file is unchanged unless the save was executed.
bool ChangeDrawingReference(const UnicodeString& fileName, const std::function<void()>& onMigrationNeeded);
