#pragma once

#include <optional>
#include <vector>

#include "ui/NativeWindow.h"

struct TFileFilter {
  UnicodeString Description;
  UnicodeString Pattern;
};

struct TSaveRequest {
  UnicodeString Title;
  UnicodeString Folder;     ///< one that does not exist is as good as none
  UnicodeString FileName;   ///< proposed, without folder
  UnicodeString Extension;  ///< without dot, for a name without one; may be empty
  std::vector<TFileFilter> Filters;
};

/// The system's dialog for the name of a new file, above `owner`; nothing when the user cancels. Handles
/// messages until it is closed. Throws EError of kind System.
std::optional<UnicodeString> AskForSaveName(const TNativeWindow& owner, const TSaveRequest& request);
