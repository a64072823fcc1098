#pragma once

#include <vector>

#include "platform/Text.h"

/// The arguments of a command line. Blanks and control characters separate arguments; a double quote starts
/// or ends a stretch in which they belong to the argument, wherever it stands. The quotes themselves are
/// dropped and there is no escape character: a backslash before a quote is a backslash, as in "C:\Projekt\".
class TCommandLine {
 public:
  /// `text` begins with the program's own name.
  explicit TCommandLine(TextView text);

  /// The arguments after the program's name, up to the first empty one.
  int Count() const noexcept { return static_cast<int>(fArguments.size()); }
  /// Argument `number`, counted from 1; empty beyond Count.
  UnicodeString Argument(int number) const;

 private:
  std::vector<UnicodeString> fArguments;
};
