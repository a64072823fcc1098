#pragma once

#include "platform/Text.h"

class TForm;

/// Asks the user for the name of a file to write. It does not ask before a file is overwritten.
class TSaveDialog {
 public:
  UnicodeString Title;
  UnicodeString InitialDir;  ///< empty: where the user was last
  UnicodeString FileName;    ///< what is proposed, and afterwards the full path that was chosen
  UnicodeString DefaultExt;  ///< a pattern such as "*.txt": its extension goes behind a name that has none
  UnicodeString Filter;      ///< descriptions and patterns by turns, with "|" between them

  /// False when the user cancels; FileName then stays. Throws EError of kind System.
  bool Execute(const TForm& owner);
};
