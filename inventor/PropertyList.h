#pragma once

#include <optional>
#include <vector>

#include "platform/Text.h"

/// The property values that the host hands over: an ordered list of texts "name=value". Every operation works
/// on that text: a name is found wherever the text before one of its "=" equals it, without regard to case by
/// the user's locale. So "A=B=v" is found by "A" (value "B=v") and by "A=B" (value "v"); the first match
/// counts.
class TPropertyList {
 public:
  int Count() const noexcept { return static_cast<int>(fEntries.size()); }

  bool Contains(TextView name) const { return Find(name).has_value(); }
  /// Empty when no entry has the name.
  UnicodeString Value(TextView name) const;
  /// The text before the first "=". `position` counts from 0 and must be below Count.
  UnicodeString NameAt(int position) const;

  void Append(TextView name, TextView value);
  /// Deletes the entry that the name is found in; without effect when there is none.
  void Delete(TextView name);

 private:
  struct TMatch {
    std::size_t Position;
    std::size_t ValueStart;
  };
  std::optional<TMatch> Find(TextView name) const;

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
