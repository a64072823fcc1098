#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/Text.h"

/// The property values that the host hands over: an ordered list of texts "name=value". An entry has a name
/// if its text begins with that name, compared without regard to case by the user's locale, directly followed
/// by "=". So "A=B=v" is found by "A" (value "B=v") and by "A=B" (value "v").
class TPropertyList {
 public:
  bool Has(TextView name) const { return Find(name) != kNone; }
  /// What follows the name and its "=" in the first entry of that name; empty if there is none.
  UnicodeString Value(TextView name) const;
  /// The text before the first "=" of each entry, in order.
  std::vector<UnicodeString> Names() const;

  void Append(TextView name, TextView value);
  /// Removes the first entry of that name, if there is one.
  void Delete(TextView name);

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  using TIndex = std::unordered_map<std::string, std::vector<std::size_t>>;

  std::size_t Find(TextView name) const;
  void Enter(TIndex& index, std::size_t length, std::size_t position) const;

  std::vector<UnicodeString> fEntries;  ///< a deleted one is empty
  /// For each length of a name that was looked for: the entries with "=" after so many characters, by the key
  /// of these. Keeps reading from comparing each name with all before it.
  mutable std::map<std::size_t, TIndex> fIndexes;
};

/// What one property list file says.
struct TPropertyListFile {
  TPropertyList Properties;
  /// The value that the file gives for the index property; empty if it gives none.
  UnicodeString NewIndex;
};

/// Reads a property list file: records of two lines each, a name and its value, in the ANSI code page. The
/// empty name stands for standard input. Throws EError of kind InputOutput.
TPropertyListFile ReadPropertyListFile(TextView fileName, TextView indexProperty);
