#pragma once

#include <vector>

#include "platform/Text.h"

/// The property values that the host hands over: an ordered list of texts "name=value". Every operation works
/// on that text, so "A=B=v" is found by "A" (value "B=v") and by "A=B" (value "v"). Positions count from 0.
class TPropertyList {
 public:
  int Count() const noexcept { return static_cast<int>(fEntries.size()); }

  /// The first entry that begins with `name`, compared without regard to case by the user's locale, and "="
  /// directly behind it; -1 when there is none.
  int Find(TextView name) const;
  /// What follows the name and its "=" in the entry that Find finds; empty when there is none.
  UnicodeString Value(TextView name) const;
  /// The text before the first "=".
  UnicodeString NameAt(int position) const;

  void Append(TextView name, TextView value);
  void Delete(int position);

 private:
  std::vector<UnicodeString> fEntries;
};

/// What one property list file says.
struct TPropertyListFile {
  TPropertyList Properties;
  /// The value that the file gives for the index property; empty when it names it not or without a value.
  UnicodeString NewIndex;
};

/// Reads a property list file: records of two lines each, a name and its value, in the ANSI code page. The
/// empty name stands for standard input. Throws EError of kind InputOutput.
TPropertyListFile ReadPropertyListFile(TextView fileName, TextView indexProperty);
