#pragma once

#include <optional>
#include <vector>

#include "platform/Text.h"

class TForm;

/// Asks the user for the name of a file to write. It does not ask before a file is overwritten.
class TSaveDialog {
 public:
  UnicodeString Title;
  UnicodeString InitialDir;  ///< empty, or a folder that does not exist: where the user was last
  UnicodeString FileName;    ///< the proposal without folder; after Execute the full path that was chosen
  UnicodeString DefaultExt;  ///< a pattern such as "*.txt": a name without extension gets this one
  UnicodeString Filter;      ///< pairs of description and pattern, with "|" between all of them

  /// Handles messages until the dialog is closed. False when the user cancels; FileName then stays. Throws
  /// EError of kind System.
  bool Execute(const TForm& owner);

 private:
  struct TFilter {
    UnicodeString Description;
    UnicodeString Pattern;
  };

  /// Of DefaultExt, without dot; may be empty.
  TextView Extension() const;
  std::vector<TFilter> Filters() const;
  /// The system's dialog above `owner`, by the back end: the path that was chosen, nothing when the user
  /// cancels.
  std::optional<UnicodeString> Ask(const TForm& owner) const;
};
